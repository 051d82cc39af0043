// Correlation jobs over synthetic speckle pictures: the pictures come from the
// generator, the data file from the setup window's engine (areas, grid, start
// search, walk, save), and the result is read back by the analysis.
#pragma once

#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "analysis/newanalyse.h"
#include "formats/datafile.h"
#include "results/resultfile.h"
#include "setup/areaform.h"
#include "setup/areas.h"
#include "support/tempdir.h"
#include "synth/texture.h"
#include "ui/scriptedui.h"

namespace tessiva::testing {

struct JobSetup {
  std::string ref = "ref.bmp", def = "def.bmp";
  int32_t interpolation = 1;
  int32_t largeStrain = 0;
  int32_t lpatMin = 21, lpatMax = 25, lgrid = 10;
  int32_t x1 = 40, y1 = 40, x2 = 120, y2 = 120;  // the one rectangular area
  // A start point at the area's middle: found by the start search when no
  // displacement is given, left out altogether when `withStart` is false.
  bool withStart = true;
  std::optional<std::pair<int32_t, int32_t>> startDisplacement;
};

// Writes `name` (a .don) in `dir` over the job's two pictures there.
inline void MakeDataFile(const std::string& dir, const std::string& name, const JobSetup& job) {
  AppState s;
  ControlRegistry frame;
  ScriptedUi ui{frame};
  Param param{s};
  AreaForm form{s, ui, param};
  s.LastDir = s.StartDir = dir;
  s.PicRefName = job.ref;
  s.PicDefName = job.def;
  s.PicRefPath = dir + "/" + job.ref;
  s.PicDefPath = dir + "/" + job.def;
  ASSERT_TRUE(form.LoadPictures());
  std::tie(s.Lgrid, s.LpatMin, s.LpatMax, s.Interpolation, s.Correlation, s.LargeStrain) =
      std::tuple(job.lgrid, job.lpatMin, job.lpatMax, job.interpolation, 1, job.largeStrain);
  param.Controls().SetText("Text4", "100");
  param.ParamShow();
  ASSERT_TRUE(StoreArea(s, {{job.x1, job.y1}, {job.x2, job.y1}, {job.x2, job.y2}, {job.x1, job.y2}, {job.x1, job.y1}}, 0));
  form.CreateRectArea();
  if (job.withStart) {
    const int32_t x = (job.x1 + job.x2) / 2, y = (job.y1 + job.y2) / 2;
    int32_t du = 0, dv = 0;
    if (job.startDisplacement)
      std::tie(du, dv) = *job.startDisplacement;
    else
      ASSERT_TRUE(form.Engine().search.ChercheSoluArea(s, x, y, du, dv));
    s.ResizeStartPoints(s.NbStart = 1);
    std::tie(s.XStart[1], s.YStart[1], s.DuStart[1], s.DvStart[1]) = std::tuple(x, y, du, dv);
    s.StartOk[1] = true;
    s.CurStart = 1;
    form.PropagArea();
  }
  s.ResizeSequence(1);
  s.DataFileName[1] = name;
  s.DataFilePath[1] = dir + "/" + name;
  form.Controls().SetText("Text1", name);
  ASSERT_TRUE(SauveDonArea(form, 1));
}

// The analysis window reading one result file.
struct ResultView {
  AppState s;
  ControlRegistry frame;
  ScriptedUi ui{frame};
  Param param{s};
  NewAnalyse window{s, ui, param};

  bool Read(const std::string& dir, const std::string& resPath) {
    s.LastDir = dir;
    s.NbSeq = 1;
    s.ResizeSequence(1);
    s.DataFilePath[1] = resPath;
    return LecRes(window, 1, false);
  }
};

}  // namespace tessiva::testing

// Correlation jobs over synthetic speckle pictures: the pictures come from the
// generator, the data file from the setup window's engine (areas, grid, start
// search, walk, save), and the result is read back by the analysis.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "analysis/analysisfiles.h"
#include "analysis/newanalyse.h"
#include "results/resultfile.h"
#include "setup/rectanglesetup.h"
#include "support/tempdir.h"
#include "synth/texture.h"
#include "ui/scriptedui.h"

namespace tessiva::testing {

using JobSetup = RectangleSetup;

// Writes `name` (a .don) in `dir` over the job's two pictures there.
inline void MakeDataFile(const std::string& dir, const std::string& name, JobSetup job) {
  job.dir = dir;
  job.dataName = name;
  ASSERT_EQ(SetUpRectangle(job), "");
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

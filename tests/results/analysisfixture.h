// An analysis window over its own state, a scripted port and a scratch
// directory, and the reading of result files written for known fields; and,
// for the mesh and its exports, pattern stores filled without a file.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <vector>

#include "analysis/analysisfiles.h"
#include "analysis/newanalyse.h"
#include "results/resultfile.h"
#include "setup/param.h"
#include "state/parameters.h"
#include "support/resultwriter.h"
#include "support/tempdir.h"
#include "ui/scriptedui.h"

namespace tessiva::testing {

// A picture of lima x hima at grid step lgrid, its pattern stores sized for it.
inline void SetPicture(AppState& s, int32_t lima, int32_t hima, int32_t lgrid, int32_t lpatMax) {
  std::tie(s.Lima, s.Hima, s.Lgrid, s.Lpas, s.LpatMax) = std::tuple(lima, hima, lgrid, 2 * (lgrid / 2), lpatMax);
  s.LpatMin = s.LpatEven = lgrid;
  AllocPat(s);
}

// The patterns put straight into the stores, as the reader puts them.
inline void PutPatterns(AppState& s, const std::vector<ResultPattern>& patterns) {
  s.NbPat = static_cast<int32_t>(patterns.size());
  for (int32_t i = 1; i <= s.NbPat; ++i) {
    const ResultPattern& p = patterns[static_cast<size_t>(i - 1)];
    std::tie(s.FlagPat[i], s.XPat[i], s.YPat[i]) = std::tie(p.flag, p.x, p.y);
    s.AuPat[i] = p.u[0], s.BuPat[i] = p.u[1], s.CuPat[i] = p.u[2], s.DuPat[i] = p.u[3];
    s.AvPat[i] = p.v[0], s.BvPat[i] = p.v[1], s.CvPat[i] = p.v[2], s.DvPat[i] = p.v[3];
  }
}

class AnalysisFixture : public ::testing::Test {
 protected:
  AnalysisFixture() { s.LastDir = dir.Path(); }

  // Makes the files members 1, 2, ... of the sequence.
  void UseSequence(const std::vector<std::string>& paths) {
    s.NbSeq = static_cast<int32_t>(paths.size());
    s.ResizeSequence(s.NbSeq);
    for (size_t i = 0; i < paths.size(); ++i) s.DataFilePath[i + 1] = paths[i];
  }

  // Writes one result file as member `index` (in a sequence of that length) and reads it.
  bool ReadResult(const ResultHead& head, const std::vector<ResultPattern>& patterns, int32_t index = 1) {
    return ReadText(ResultFileText(head, patterns), index);
  }

  bool ReadText(const std::string& text, int32_t index = 1) {
    // A new name each time, so that no reader can mistake one file for another.
    const std::string path = dir.Write("result" + std::to_string(++written_) + ".res", text);
    std::vector<std::string> paths(static_cast<size_t>(index));
    for (size_t i = 0; i < paths.size(); ++i) paths[i] = i + 1 < paths.size() ? s.DataFilePath.at(i + 1) : path;
    UseSequence(paths);
    return LecRes(window, index, false);
  }

  TempDir dir;
  AppState s;
  ControlRegistry frame;
  ScriptedUi ui{frame};
  Param param{s};
  NewAnalyse window{s, ui, param};

 private:
  int written_ = 0;
};

}  // namespace tessiva::testing

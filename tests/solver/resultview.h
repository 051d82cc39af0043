// The analysis window reading one result file, without GoogleTest, so that the
// benchmarks can read a solved job's result as the tests do.
#pragma once

#include <string>

#include "analysis/analysisfiles.h"
#include "analysis/newanalyse.h"
#include "results/resultfile.h"
#include "setup/param.h"
#include "ui/scriptedui.h"

namespace tessiva::testing {

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

// An analysis window over its own state, a scripted port and a scratch
// directory, and the reading of result files written for known fields.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "analysis/newanalyse.h"
#include "results/resultfile.h"
#include "support/resultwriter.h"
#include "support/tempdir.h"
#include "ui/scriptedui.h"

namespace tessiva::testing {

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

// The large result written to a directory of the benchmark's own and an
// analysis window over it, the side files (correl.ini, the working copy of
// a selection) kept in that directory too.
#pragma once

#include <unistd.h>

#include <filesystem>
#include <string>

#include "analysis/analysisfiles.h"
#include "analysis/newanalyse.h"
#include "largeresult.h"
#include "ui/scriptedui.h"

namespace tessiva::bench {

class LargeResultWindow {
 public:
  explicit LargeResultWindow(const std::string& name)
      : dir_(std::filesystem::temp_directory_path() / ("tessiva-bench-" + name + "-" + std::to_string(::getpid()))) {
    std::filesystem::create_directories(dir_);
    const std::string path = (dir_ / "large.res").string();
    WriteResultFile(path);
    s.LastDir = s.StartDir = dir_.string();
    s.IniPath = (dir_ / "correl.ini").string();
    s.FileTitle = "large.res";
    s.ResizeSequence(1);
    s.DataFilePath[1] = path;
    s.DataFileName[1] = "large.res";
  }
  ~LargeResultWindow() {
    std::error_code ignored;
    std::filesystem::remove_all(dir_, ignored);
  }
  LargeResultWindow(const LargeResultWindow&) = delete;
  LargeResultWindow& operator=(const LargeResultWindow&) = delete;

  // Reads the result as the window does; false unless every pattern was read.
  bool Read() { return LecRes(window, 1, false) && s.NbPat == kSide * kSide; }

  AppState s;
  ControlRegistry frame;
  ScriptedUi ui{frame};
  Param param{s};
  NewAnalyse window{s, ui, param};

 private:
  std::filesystem::path dir_;
};

}  // namespace tessiva::bench

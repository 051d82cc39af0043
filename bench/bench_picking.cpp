// Replaying a stored selection on a result of 250,000 patterns over a 2048 x
// 2048 picture, as a change of file does (the working copy read back, then
// the table made): a rectangle table over most of the picture and a line
// along its diagonal, both on "Epsilon I Major Hencky". Target: each under 50 ms.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <filesystem>
#include <string>

#include "analysis/analysisfiles.h"
#include "analysis/fieldlist.h"
#include "analysis/newanalyse.h"
#include "largeresult.h"
#include "ui/pointer.h"
#include "ui/scriptedui.h"

namespace tessiva {
namespace {

// A result read into an analysis window with no map attached, the working
// copy of the selection kept in a directory of the benchmark's own.
class PickBench {
 public:
  PickBench()
      : dir_(std::filesystem::temp_directory_path() / ("tessiva-bench-pick-" + std::to_string(::getpid()))) {
    std::filesystem::create_directories(dir_);
    const std::string path = (dir_ / "large.res").string();
    bench::WriteResultFile(path);
    s.LastDir = s.StartDir = dir_.string();
    s.IniPath = (dir_ / "correl.ini").string();
    s.FileTitle = "large.res";
    s.ResizeSequence(1);
    s.DataFilePath[1] = path;
    s.DataFileName[1] = "large.res";
    ok_ = LecRes(window, 1, false) && s.NbPat == bench::kSide * bench::kSide;
    window.OnCombo2Click(*FieldIndexOfName("Epsilon I Major Hencky"));
  }
  ~PickBench() {
    std::error_code ignored;
    std::filesystem::remove_all(dir_, ignored);
  }
  PickBench(const PickBench&) = delete;
  PickBench& operator=(const PickBench&) = delete;

  // Arms the tool and drags from (x1, y1) to (x2, y2); false when no selection was made.
  bool Select(const std::string& key, double x1, double y1, double x2, double y2) {
    if (!ok_ || !window.OnToolbar1Click(key)) return false;
    window.OnPicAnaMouseDown(kLeftButton, 0, x1, y1);
    window.OnPicAnaMouseMove(kLeftButton, 0, x2, y2);
    window.OnPicAnaMouseUp(kLeftButton, 0, x2, y2);
    return window.PickingTools().NboxAOS() != kAosNone;
  }

  AppState s;
  ControlRegistry frame;
  ScriptedUi ui{frame};
  Param param{s};
  NewAnalyse window{s, ui, param};

 private:
  std::filesystem::path dir_;
  bool ok_ = false;
};

PickBench& Bench() {
  static PickBench bench;
  return bench;
}

// About 31 x 31 cells: the box is stepped by a thirtieth of each side.
void BM_ReplayRectangleTable(benchmark::State& state) {
  PickBench& b = Bench();
  if (!b.Select("rectangle", 20, 20, 2000, 2000)) {
    state.SkipWithError("no rectangle selection");
    return;
  }
  for (auto _ : state) {
    b.ui.log.clear();
    b.window.AfterFileChange();
    benchmark::DoNotOptimize(b.ui.clipboardText.data());
  }
  state.counters["bytes"] = static_cast<double>(b.ui.clipboardText.size());
}
BENCHMARK(BM_ReplayRectangleTable)->Unit(benchmark::kMillisecond);

// 2,800 pixels sampled every Lpas / 3 = 4/3 pixel: about 2,100 rows of three strains.
void BM_ReplayLine(benchmark::State& state) {
  PickBench& b = Bench();
  if (!b.Select("trait", 20, 20, 2000, 2000)) {
    state.SkipWithError("no line selection");
    return;
  }
  for (auto _ : state) {
    b.window.AfterFileChange();
    benchmark::DoNotOptimize(b.window.Info.DataText().data());
  }
  state.counters["bytes"] = static_cast<double>(b.window.Info.DataText().size());
}
BENCHMARK(BM_ReplayLine)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace tessiva

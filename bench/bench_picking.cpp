// Replaying a stored selection on a result of 250,000 patterns over a 2048 x
// 2048 picture, as a change of file does (the working copy read back, then
// the table made): a rectangle table over most of the picture and a line
// along its diagonal, both on "Epsilon I Major Hencky". Target: each under 50 ms.
#include <benchmark/benchmark.h>

#include "analysis/fieldlist.h"
#include "largeresultwindow.h"
#include "ui/pointer.h"

namespace tessiva {
namespace {

// A result read into an analysis window with no map attached, the working
// copy of the selection kept in a directory of the benchmark's own.
class PickBench : public bench::LargeResultWindow {
 public:
  PickBench() : LargeResultWindow("pick") {
    ok_ = Read();
    window.OnCombo2Click(*FieldIndexOfName("Epsilon I Major Hencky"));
  }

  // Arms the tool and drags from (x1, y1) to (x2, y2); false when no selection was made.
  bool Select(const std::string& key, double x1, double y1, double x2, double y2) {
    if (!ok_ || !window.OnToolbar1Click(key)) return false;
    window.OnPicAnaMouseDown(kLeftButton, 0, x1, y1);
    window.OnPicAnaMouseMove(kLeftButton, 0, x2, y2);
    window.OnPicAnaMouseUp(kLeftButton, 0, x2, y2);
    return window.PickingTools().NboxAOS() != kAosNone;
  }

 private:
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

// One forming-limit section recalculated as the scroll bar "Line position"
// moves, on a result of 250,000 patterns over a 2048 x 2048 picture: the 79
// points sampled again across the band, both determinations, and the graph
// drawn into a 600 x 400 picture. Target: under 5 ms.
#include <benchmark/benchmark.h>

#include "largeresultwindow.h"
#include "qimagecanvas.h"
#include "ui/pointer.h"

namespace tessiva {
namespace {

class FlcBench : public bench::LargeResultWindow {
 public:
  FlcBench() : LargeResultWindow("flc") {
    ok_ = Read();
    window.Graphe = &graph;
    window.Flc.GraphShown = true;
    // A band across the whole picture, as the section tool draws it.
    window.ArmSectionTool(SectionKind::FormingLimit);
    window.OnPicAnaMouseDown(kLeftButton, 0, 100, 1000);
    window.OnPicAnaMouseMove(kLeftButton, 0, 1948, 1100);
    window.OnPicAnaMouseUp(kLeftButton, 0, 1948, 1100);
    ok_ = ok_ && window.Flc.NbSection == FormingLimits::kSteps - 1;
  }
  bool Ok() const { return ok_; }

  QImageCanvas graph{600, 400};

 private:
  bool ok_ = false;
};

void BM_SectionWhileTheScrollBarMoves(benchmark::State& state) {
  FlcBench bench;
  if (!bench.Ok()) {
    state.SkipWithError("the large result or its section could not be made");
    return;
  }
  int position = 30;
  for (auto _ : state) {
    bench.window.Flc.OnPosScrollChange(position);
    position = position == 70 ? 30 : position + 1;
    benchmark::DoNotOptimize(bench.window.Flc.Limits.cosineMajor);
  }
}
BENCHMARK(BM_SectionWhileTheScrollBarMoves)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace tessiva

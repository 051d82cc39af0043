// A change of member in a sequence of results of 250,000 patterns over a
// 2048 x 2048 picture: the member read, its mesh, strains and ranges, the
// map of the first displacement painted into a QImage, and a point
// selection replayed on it, as the navigation keys and Run do.
#include <benchmark/benchmark.h>

#include <chrono>

#include "largeresultwindow.h"
#include "qimagecanvas.h"
#include "ui/pointer.h"

namespace tessiva {
namespace {

// Two members, both the large result, and a map and a bar that are QImages.
class FileChangeBench : public bench::LargeResultWindow {
 public:
  FileChangeBench() : LargeResultWindow("filechange") {
    s.NbSeq = 2;
    s.ResizeSequence(2);
    s.DataFilePath[2] = s.DataFilePath[1];
    s.DataFileName[2] = s.DataFileName[1];
    window.PicAna = &map;
    window.IsoPic = &bar;
  }

  // The first member read and a point picked in the middle of the map.
  bool Open() {
    if (!Read()) return false;
    window.OnToolbar1Click("point");
    window.OnPicAnaMouseUp(kLeftButton, 0, 1024, 1024);
    return window.PickingTools().NboxAOS() == kAosPoint;
  }

  QImageCanvas map{2048, 2048};
  QImageCanvas bar{318, 40};
};

void BM_FileChange(benchmark::State& state) {
  FileChangeBench bench;
  if (!bench.Open()) return state.SkipWithError("the result was not read or the point not picked");
  const size_t rowsBefore = bench.window.Info.DataText().size();
  for (auto _ : state) {
    const auto start = std::chrono::steady_clock::now();
    const bool read = bench.window.GoToFile(2);
    state.SetIterationTime(std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
    if (!read) return state.SkipWithError("the second member was not read");
  }
  if (bench.window.Info.DataText().size() <= rowsBefore) state.SkipWithError("the point was not replayed");
  state.counters["patterns"] = static_cast<double>(bench.s.NbPat);
}
BENCHMARK(BM_FileChange)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(5);

}  // namespace
}  // namespace tessiva

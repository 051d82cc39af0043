// The capture of a map of 250,000 patterns over a 2048 x 2048 picture, as the
// Film keys and tessiva-cli film make it: the texts printed, the surfaces
// joined with the legend, and the picture encoded as PNG (a film's frame)
// and as BMP.
#include <benchmark/benchmark.h>


#include "analysis/capture.h"
#include "capturepicture.h"
#include "largeresultwindow.h"
#include "qimagecanvas.h"

namespace tessiva {
namespace {

class CaptureBench : public bench::LargeResultWindow {
 public:
  CaptureBench() : LargeResultWindow("capture") {
    window.PicAna = &map;
    window.IsoPic = &bar;
    window.Repere = &axes;
  }

  QImageCanvas map{2048, 2048};
  QImageCanvas bar{318, 40};
  QImageCanvas axes{kCaptureAxesSide, kCaptureAxesSide};
  QtCapture port;
};

void BM_ComposeCapture(benchmark::State& state) {
  CaptureBench bench;
  if (!bench.Read()) return state.SkipWithError("the result was not read");
  bench.window.PicAnaRefresh();
  for (auto _ : state) benchmark::DoNotOptimize(ComposeCapture(bench.window, bench.port));
}
BENCHMARK(BM_ComposeCapture)->Unit(benchmark::kMillisecond);

void BM_EncodeCapture(benchmark::State& state, const char* format) {
  CaptureBench bench;
  if (!bench.Read()) return state.SkipWithError("the result was not read");
  bench.window.PicAnaRefresh();
  const auto picture = ComposeCapture(bench.window, bench.port);
  if (!picture) return state.SkipWithError("no picture was composed");
  for (auto _ : state) benchmark::DoNotOptimize(EncodedPicture(ToQImage(*picture), format));
}
BENCHMARK_CAPTURE(BM_EncodeCapture, png, "PNG")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_EncodeCapture, bmp, "BMP")->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace tessiva

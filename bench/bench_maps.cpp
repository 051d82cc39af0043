// Painting field maps of a result of 250,000 patterns over a 2048 x 2048
// picture into a QImage: "Epsilon I Major Hencky" with one sample a pattern
// and with smoothing 2, the value queries under the pointer, and the whole
// road from opening the result to its first map.
#include <benchmark/benchmark.h>

#include <chrono>
#include <random>
#include <string>

#include "analysis/fieldlist.h"
#include "largeresultwindow.h"
#include "qimagecanvas.h"

namespace tessiva {
namespace {

constexpr int32_t kMajorHenckyEntry = 6;

// A result read into an analysis window whose map and bar are QImages.
class MapBench : public bench::LargeResultWindow {
 public:
  MapBench() : LargeResultWindow("maps") {
    window.PicAna = &map;
    window.IsoPic = &bar;
  }
  bool Open() { return Read(); }
  void ShowMajorHencky(int32_t smooth) {
    window.Controls().SetChecked("Interpolation", smooth > 1);
    window.Controls().SetText("SmoothCombo", std::to_string(smooth));
    window.OnCombo2Click(kMajorHenckyEntry);
  }

  QImageCanvas map{2048, 2048};
  QImageCanvas bar{318, 40};
};

double Seconds(std::chrono::steady_clock::time_point start) {
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

void BM_PaintMajorHencky(benchmark::State& state) {
  MapBench bench;
  if (!bench.Open()) return state.SkipWithError("the result was not read");
  const auto smooth = static_cast<int32_t>(state.range(0));
  for (auto _ : state) {
    const auto start = std::chrono::steady_clock::now();
    bench.ShowMajorHencky(smooth);
    state.SetIterationTime(Seconds(start));
  }
  state.counters["squares"] = static_cast<double>(bench.s.NbPat) * smooth * smooth;
}
BENCHMARK(BM_PaintMajorHencky)->Arg(1)->Arg(2)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(5);

void BM_DonneIso(benchmark::State& state) {
  MapBench bench;
  if (!bench.Open()) return state.SkipWithError("the result was not read");
  std::mt19937 random(7);
  std::uniform_real_distribution<double> at(0.0, 2048.0);
  double sum = 0.0;
  for (auto _ : state) sum += bench.window.DonneIso(at(random), at(random), kViewH1);
  benchmark::DoNotOptimize(sum);
  state.counters["queries_per_s"] = benchmark::Counter(static_cast<double>(state.iterations()), benchmark::Counter::kIsRate);
}
BENCHMARK(BM_DonneIso);

// Read, mesh, strains, ranges and the first map, as the window's Timer1 runs them.
void BM_OpenToFirstMap(benchmark::State& state) {
  MapBench bench;
  for (auto _ : state) {
    const auto start = std::chrono::steady_clock::now();
    if (!bench.Open()) return state.SkipWithError("the result was not read");
    bench.ShowMajorHencky(1);
    state.SetIterationTime(Seconds(start));
  }
}
BENCHMARK(BM_OpenToFirstMap)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(3);

}  // namespace
}  // namespace tessiva

// The stress intensity calculation (CalculKI) on a result of 250,000
// patterns over a 2048 x 2048 picture: a crack from the left to the middle,
// with a ring of radius 600 pixels (some 35,000 patterns in it) and of 1200
// (most of the mesh). Target: under 100 ms.
#include <benchmark/benchmark.h>

#include "largeresultwindow.h"

namespace tessiva {
namespace {

class CrackBench : public bench::LargeResultWindow {
 public:
  CrackBench() : LargeResultWindow("sif") { ok = Read(); }

  bool ok = false;
};

CrackBench& Bench() {
  static CrackBench bench;
  return bench;
}

void BM_CalculKI(benchmark::State& state) {
  CrackBench& b = Bench();
  if (!b.ok) {
    state.SkipWithError("the large result wasn't read");
    return;
  }
  const double radius = static_cast<double>(state.range(0));
  b.s.FissureOn = true;
  b.s.XFissureArr = 1024, b.s.YFissureArr = 1024;
  b.s.XFissureDep = 1024 - radius, b.s.YFissureDep = 1024;
  b.s.RayonFissure = radius;
  for (auto _ : state) {
    b.window.CalculKI();
    benchmark::DoNotOptimize(b.window.Crack.KiResult.KI);
  }
  if (!b.window.Crack.KiResult.Usable()) state.SkipWithError("nothing usable in the ring");
  state.counters["gauss_points"] = b.window.Crack.KiResult.gaussPoints;
}
BENCHMARK(BM_CalculKI)->Arg(600)->Arg(1200)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace tessiva

// The stress intensity calculation (CalculKI) on a result of 250,000
// patterns over a 2048 x 2048 picture: a crack from the left to the middle,
// with a ring of radius 600 pixels (some 35,000 patterns in it) and of 1200
// (most of the mesh). Target: under 100 ms.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <filesystem>
#include <string>

#include "analysis/analysisfiles.h"
#include "analysis/newanalyse.h"
#include "largeresult.h"
#include "ui/scriptedui.h"

namespace tessiva {
namespace {

class CrackBench {
 public:
  CrackBench()
      : dir_(std::filesystem::temp_directory_path() / ("tessiva-bench-sif-" + std::to_string(::getpid()))) {
    std::filesystem::create_directories(dir_);
    const std::string path = (dir_ / "large.res").string();
    bench::WriteResultFile(path);
    s.LastDir = s.StartDir = dir_.string();
    s.IniPath = (dir_ / "correl.ini").string();
    s.ResizeSequence(1);
    s.DataFilePath[1] = path;
    s.DataFileName[1] = "large.res";
    ok = LecRes(window, 1, false) && s.NbPat == bench::kSide * bench::kSide;
  }
  ~CrackBench() {
    std::error_code ignored;
    std::filesystem::remove_all(dir_, ignored);
  }
  CrackBench(const CrackBench&) = delete;
  CrackBench& operator=(const CrackBench&) = delete;

  AppState s;
  ControlRegistry frame;
  ScriptedUi ui{frame};
  Param param{s};
  NewAnalyse window{s, ui, param};
  bool ok = false;

 private:
  std::filesystem::path dir_;
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

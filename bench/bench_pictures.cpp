// Reading a 4096 x 4096 picture pair into the grey-level arrays: time, and the
// growth of the process's peak resident memory over the load.
#include <benchmark/benchmark.h>
#include <sys/resource.h>
#include <unistd.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "setup/picture.h"

namespace {

using namespace tessiva;

constexpr int32_t kSide = 4096;
constexpr double kMiB = 1024.0 * 1024.0;

// A speckle-like pair written once into a scratch directory.
class PicturePair {
 public:
  PicturePair() : dir_(std::filesystem::temp_directory_path() / ("tessiva-bench-" + std::to_string(::getpid()))) {
    std::filesystem::create_directories(dir_);
    std::vector<uint8_t> levels(static_cast<size_t>(kSide) * kSide);
    uint32_t seed = 12345;
    for (uint8_t& level : levels) {
      seed = seed * 1664525u + 1013904223u;
      level = static_cast<uint8_t>(seed >> 24);
    }
    ok_ = SaveGreyBmp(Ref(), kSide, kSide, levels) && SaveGreyBmp(Def(), kSide, kSide, levels);
  }
  ~PicturePair() {
    std::error_code ignored;
    std::filesystem::remove_all(dir_, ignored);
  }
  bool Ok() const { return ok_; }
  std::string Ref() const { return (dir_ / "ref.bmp").string(); }
  std::string Def() const { return (dir_ / "def.bmp").string(); }

 private:
  std::filesystem::path dir_;
  bool ok_ = false;
};

// Resets the kernel's record of the peak resident size (Linux), so that each
// benchmark reports its own peak rather than the largest of the run so far.
void ResetPeakRss() {
  std::ofstream clearRefs("/proc/self/clear_refs");
  clearRefs << "5";
}

double PeakRssMiB() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return static_cast<double>(usage.ru_maxrss) * 1024.0 / kMiB;  // ru_maxrss is in KiB on Linux
}

double CurrentRssMiB() {
  std::ifstream statm("/proc/self/statm");
  long pages = 0, resident = 0;
  statm >> pages >> resident;
  return static_cast<double>(resident) * static_cast<double>(sysconf(_SC_PAGESIZE)) / kMiB;
}

const PicturePair& Pair() {
  static const PicturePair pair;
  return pair;
}

bool Load(AppState& s, int32_t gridStep) {
  s.Lpas = gridStep;
  s.PicRefPath = Pair().Ref();
  s.PicDefPath = Pair().Def();
  return ChargePicArea(s);
}

// Runs `body` as the timed loop and adds the memory counters: the peak resident
// growth over the loop (the pictures are made before, their buffers freed) and
// what the two grey-level arrays take by themselves.
template <typename Body>
void MeasureLoads(benchmark::State& state, Body body) {
  if (!Pair().Ok()) {
    state.SkipWithError("cannot write the pictures");
    return;
  }
  ResetPeakRss();
  const double before = CurrentRssMiB();
  for (auto _ : state)
    if (!body()) state.SkipWithError("load refused");
  state.counters["peak_rss_growth_MiB"] = PeakRssMiB() - before;
  state.counters["grey_arrays_MiB"] = 2.0 * (kSide + 1) * (kSide + 1) * sizeof(int32_t) / kMiB;
}

// A first load: every array is new memory. The argument is the grid step that
// sizes the pattern store renewed with the pictures: 0 leaves it empty and
// times the pictures alone, 8 is the step of a new data file.
void BM_FirstLoad4096Pair(benchmark::State& state) {
  MeasureLoads(state, [&] {
    AppState s;
    return Load(s, static_cast<int32_t>(state.range(0)));
  });
}
BENCHMARK(BM_FirstLoad4096Pair)->ArgName("grid_step")->Arg(0)->Arg(8)->Unit(benchmark::kMillisecond)->MinTime(2.0);

// The next data file of a sequence: the arrays of the same size are reused.
void BM_Reload4096Pair(benchmark::State& state) {
  AppState s;
  MeasureLoads(state, [&] { return Load(s, 8); });
}
BENCHMARK(BM_Reload4096Pair)->Unit(benchmark::kMillisecond)->MinTime(2.0);

}  // namespace

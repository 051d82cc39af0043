// Reading a result of 250,000 patterns (a 2048 x 2048 picture at grid step 4)
// with everything the analysis window derives from it: the result arrays, the
// mesh and its repair, the displacement ranges, and the strains at the cells
// and the nodes with their ranges.
#include <benchmark/benchmark.h>
#include <sys/resource.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <string>

#include "analysis/analysisfiles.h"
#include "largeresult.h"
#include "analysis/newanalyse.h"
#include "results/resultfile.h"
#include "state/files.h"
#include "ui/scriptedui.h"

namespace tessiva {
namespace {

using bench::kSide;
using bench::WriteResultFile;

double PeakRssMegabytes() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return static_cast<double>(usage.ru_maxrss) / 1024.0;
}

void BM_ReadLargeResult(benchmark::State& state) {
  const std::filesystem::path dir =
      std::filesystem::temp_directory_path() / ("tessiva-bench-results-" + std::to_string(::getpid()));
  std::filesystem::create_directories(dir);
  const std::string path = (dir / "large.res").string();
  WriteResultFile(path);

  AppState s;
  s.LastDir = dir.string();
  s.ResizeSequence(1);
  s.DataFilePath[1] = path;
  ControlRegistry frame;
  ScriptedUi ui(frame);
  Param param(s);
  NewAnalyse window(s, ui, param);

  // Each read is timed alone, with a new time stamp on the file, so that its
  // head is parsed anew as for a file never read.
  const auto timedRead = [&] {
    std::filesystem::last_write_time(path, std::filesystem::file_time_type::clock::now());
    const auto start = std::chrono::steady_clock::now();
    const bool read = LecRes(window, 1, false);
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
    if (!read || s.NbPat != kSide * kSide) state.SkipWithError("the result was not read");
    return elapsed.count();
  };
  // The first read also pays for the first touch of every page the arrays take.
  const double firstRead = timedRead();
  for (auto _ : state) state.SetIterationTime(timedRead());
  state.counters["first_read_ms"] = firstRead * 1000.0;
  // The ranges and strains on their own, as a change of option runs them.
  const auto rangesStart = std::chrono::steady_clock::now();
  window.MinMaxDeplacement();
  window.MinMaxDeformation();
  const std::chrono::duration<double> ranges = std::chrono::steady_clock::now() - rangesStart;
  state.counters["ranges_and_strains_ms"] = ranges.count() * 1000.0;
  int32_t good = 0;
  for (int32_t i = 1; i <= s.NbPat; ++i) good += s.FlagPat[i] == -1;
  state.counters["patterns"] = s.NbPat;
  state.counters["good_patterns"] = good;
  state.counters["peak_rss_MB"] = PeakRssMegabytes();
  std::error_code ignored;
  std::filesystem::remove_all(dir, ignored);
}

BENCHMARK(BM_ReadLargeResult)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(5);

}  // namespace
}  // namespace tessiva

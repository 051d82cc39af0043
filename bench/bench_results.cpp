// Reading a result of 250,000 patterns (a 2048 x 2048 picture at grid step 4)
// with everything the analysis window derives from it: the result arrays, the
// mesh and its repair, the displacement ranges, and the strains at the cells
// and the nodes with their ranges.
#include <benchmark/benchmark.h>
#include <sys/resource.h>
#include <unistd.h>

#include <chrono>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

#include "analysis/analysisfiles.h"
#include "analysis/newanalyse.h"
#include "results/resultfile.h"
#include "state/files.h"
#include "ui/scriptedui.h"

namespace tessiva {
namespace {

constexpr int kSide = 500;  // patterns a row and a column
constexpr int kStep = 4;
constexpr int kFirst = 12;  // clear of the first grid lines

// A smooth field with some curvature, so that no cell is trivially alike.
void Field(double x, double y, double& u, double& v) {
  u = 1.0 + 0.01 * x + 0.002 * y + 1e-6 * x * y;
  v = -0.5 - 0.005 * y + 2e-6 * x * x;
}

// The file a solver writes: a data file's head and four lines a pattern,
// whose bilinear form passes through the field at the pattern's corners.
void WriteResultFile(const std::string& path) {
  std::ofstream out(path, std::ios::binary);
  out << "; Tessiva RESULTS\n[RELEASE]\n  date=20240611\n[PICTURES]\n  PicRef=ref.bmp\n  PicDef=def.bmp\n"
         "  Lima =02048\n  Hima =02048\n[PARAMETERS]\n  LpatMin=04  \n  LpatMax=08  \n  Lgrid=04  \n"
         "  Interpolation=01  \n  Correlation=01  \n  LargeStrain=00  \n  Precision=0100  \n"
         "[OUTLINES]\n  Number=01  \n  Nbox1=05\n[UNIT]\n  UnitNameX=mm\n  UnitPX=0,01\n  UnitNameY=mm\n"
         "  UnitPY=0,01\n[MATERIAL]\n  YOUNG= 210000\n  POISSON= .3\n[RESULTS]\n";
  char line[256];
  const double l = kStep;
  for (int c = 0; c < kSide; ++c) {
    for (int r = 0; r < kSide; ++r) {
      const int x = kFirst + c * kStep, y = kFirst + r * kStep;
      const double x0 = x - l / 2, y0 = y - l / 2;
      double u00, v00, u10, v10, u01, v01, u11, v11, uc, vc;
      Field(x0, y0, u00, v00);
      Field(x0 + l, y0, u10, v10);
      Field(x0, y0 + l, u01, v01);
      Field(x0 + l, y0 + l, u11, v11);
      Field(x, y, uc, vc);
      std::snprintf(line, sizeof line, "-1 %d %d %.6f %.6f\n", x, y, uc, vc);
      out << line;
      std::snprintf(line, sizeof line, " %.9g %.9g %.9g %.9g\n", u10 - u00, u01 - u00, u11 - u10 - u01 + u00, u00);
      out << line;
      std::snprintf(line, sizeof line, " %.9g %.9g %.9g %.9g\n", v10 - v00, v01 - v00, v11 - v10 - v01 + v00, v00);
      out << line << " 1 8 0.0123\n";
    }
  }
}

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

// Pictures at full depth: the bias and random error of the solver over a
// sub-pixel translation sweep written as 8-bit BMP and as 16-bit TIFF (faint
// speckle, low noise, where the 8-bit steps dominate); the time to read a
// 512 x 512 pair at full depth, and the solver's throughput in patterns a
// second on that job in each format (pictures read, field solved, result
// written; one thread).
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <filesystem>
#include <string>

#include "../tests/solver/depthsweep.h"
#include "jobsetup.h"

namespace {

using namespace tessiva;

// A scratch directory for one benchmark.
class ScratchDir {
 public:
  explicit ScratchDir(const std::string& name)
      : path_(std::filesystem::temp_directory_path() / ("tessiva-bench-" + name + "-" + std::to_string(::getpid()))) {
    std::filesystem::create_directories(path_);
  }
  ~ScratchDir() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  std::string Path() const { return path_.string(); }

 private:
  std::filesystem::path path_;
};

PictureFileFormat FormatOf(const benchmark::State& state) {
  return state.range(0) == 8 ? PictureFileFormat::kBmp : PictureFileFormat::kTiff16;
}

void BM_SweepErrors(benchmark::State& state) {
  const ScratchDir dir("sweep");
  testing::SweepSettings sweep;
  sweep.size = 160;
  sweep.steps = 10;
  testing::SweepFigures figures;
  for (auto _ : state) figures = testing::SolveTranslationSweep(dir.Path(), FormatOf(state), sweep);
  if (!figures.failure.empty()) state.SkipWithError(figures.failure.c_str());
  state.counters["bias_px"] = figures.bias;
  state.counters["random_px"] = figures.randomError;
  state.counters["patterns"] = static_cast<double>(figures.patterns);
}
BENCHMARK(BM_SweepErrors)->Arg(8)->Arg(16)->Iterations(1)->Unit(benchmark::kMillisecond);

// A 512 x 512 pair of the benchmark's format and its data file, "job.don".
struct ThroughputJob {
  ScratchDir dir{"throughput"};
  RectangleSetup job;
  std::string problem;

  explicit ThroughputJob(PictureFileFormat format) {
    synth::SpeckleSettings st;
    st.width = st.height = 512;
    st.noiseSigma = 1.0;
    const std::string extension(ExtensionOf(format));
    job.dir = dir.Path();
    job.ref = "ref." + extension;
    job.def = "def." + extension;
    job.dataName = "job.don";
    if (!synth::WriteSyntheticPair(dir.Path(), st, {synth::FieldKind::Translation, 0.37, -0.21}, format))
      problem = "the pictures can't be written";
    if (problem.empty()) problem = SetUpRectangle(job);
  }
};

// The part of a job's time that reading its two pictures at full depth takes.
void BM_ReadPicturePair(benchmark::State& state) {
  const ThroughputJob setup(FormatOf(state));
  std::string problem = setup.problem;
  AppState s;
  for (auto _ : state) {
    if (!problem.empty()) break;
    problem = solver::ReadPicturePair(JoinPath(setup.dir.Path(), setup.job.ref),
                                      JoinPath(setup.dir.Path(), setup.job.def), s);
  }
  if (!problem.empty()) state.SkipWithError(problem.c_str());
}
BENCHMARK(BM_ReadPicturePair)->Arg(8)->Arg(16)->Unit(benchmark::kMillisecond);

void BM_SolverThroughput(benchmark::State& state) {
  const ThroughputJob setup(FormatOf(state));
  const ScratchDir& dir = setup.dir;
  const RectangleSetup& job = setup.job;
  std::string problem = setup.problem;
  int64_t patterns = 0;
  for (auto _ : state) {
    if (!problem.empty()) break;
    const solver::JobOutcome outcome = solver::RunDataFile(dir.Path(), job.dataName, {1});
    if (!outcome.ok) problem = outcome.message;
    patterns += outcome.patterns;
  }
  if (!problem.empty()) state.SkipWithError(problem.c_str());
  state.counters["patterns_per_s"] = benchmark::Counter(static_cast<double>(patterns), benchmark::Counter::kIsRate);
}
BENCHMARK(BM_SolverThroughput)->Arg(8)->Arg(16)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace

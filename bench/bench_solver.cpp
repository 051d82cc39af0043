// The solver's figures: subsets per second per core (21 x 21, cubic B-spline)
// on one and two threads, the mean bias over a 0..1 pixel translation sweep,
// and the random error at grey-level noise 2 against its prediction
// sqrt(2) sigma / sqrt(sum of squared gradients).
#include <benchmark/benchmark.h>

#include <cmath>
#include <vector>

#include "icgn.h"
#include "interpolation.h"
#include "propagation.h"
#include "synth/texture.h"

namespace tessiva::solver {
namespace {

constexpr int32_t kSide = 21;

GreyArray ToGrey(const std::vector<uint8_t>& levels, int32_t width, int32_t height) {
  GreyArray grey;
  grey.Allocate(width, height);
  for (int32_t y = 0; y < height; ++y)
    for (int32_t x = 0; x < width; ++x) grey(x, y) = levels[static_cast<size_t>(y) * width + x];
  return grey;
}

struct Pair {
  SampledPicture ref, def;
};

Pair MakePair(int32_t size, const synth::FieldSpec& field, double noise, uint32_t noiseSeed = 11) {
  synth::SpeckleSettings st;
  st.width = st.height = size;
  st.noiseSigma = noise;
  const synth::Speckle speckle(st);
  const auto ref = ToGrey(synth::Render(speckle, st, nullptr, noiseSeed), size, size);
  const auto def = ToGrey(synth::Render(speckle, st, &field, noiseSeed + 1), size, size);
  return {SampledPicture(ref, size, size, Interpolant::CubicBSpline), SampledPicture(def, size, size, Interpolant::CubicBSpline)};
}

// A grid of patterns every `step` pixels, 20 pixels clear of the edges.
FieldProblem GridProblem(const Pair& pair, int32_t step, int32_t threads) {
  FieldProblem p;
  p.ref = &pair.ref;
  p.def = &pair.def;
  p.sideMin = p.sideMax = kSide;
  p.threads = threads;
  const int32_t size = pair.ref.Width(), count = (size - 40) / step;
  for (int32_t c = 0; c < count; ++c)
    for (int32_t r = 0; r < count; ++r) {
      p.x.push_back(20 + c * step);
      p.y.push_back(20 + r * step);
    }
  p.neighbours.resize(p.x.size());
  for (int32_t k = 1; k < static_cast<int32_t>(p.x.size()); ++k) {
    const int32_t c = (k - 1) / count, r = (k - 1) % count;
    p.neighbours[k] = {c > 0 ? k - count : 0, c + 1 < count ? k + count : 0, r > 0 ? k - 1 : 0,
                       r + 1 < count ? k + 1 : 0};
  }
  return p;
}

void BM_SubsetsPerSecondPerCore(benchmark::State& state) {
  const auto threads = static_cast<int32_t>(state.range(0));
  static const Pair pair = MakePair(512, {synth::FieldKind::Translation, 0.37, -0.21}, 0.0);
  const FieldProblem problem = GridProblem(pair, 4, threads);
  const int32_t middle = static_cast<int32_t>(problem.x.size()) / 2;
  int64_t patterns = 0;
  for (auto _ : state) {
    const FieldSolution field = SolveField(problem, {{middle, 0.0, 0.0}});
    benchmark::DoNotOptimize(field.patterns.data());
    patterns += static_cast<int64_t>(problem.x.size()) - 1;
  }
  state.counters["patterns_per_s"] = benchmark::Counter(static_cast<double>(patterns), benchmark::Counter::kIsRate);
  state.counters["patterns_per_s_per_core"] =
      benchmark::Counter(static_cast<double>(patterns) / threads, benchmark::Counter::kIsRate);
}
BENCHMARK(BM_SubsetsPerSecondPerCore)->Arg(1)->Arg(2)->UseRealTime()->Unit(benchmark::kMillisecond);

// Mean error of u and v over a grid of subsets, each started from the whole-pixel shift.
std::pair<double, double> MeanError(const Pair& pair, double u, double v, std::vector<double>* uErrors = nullptr) {
  SubsetCorrelator correlator(pair.ref, pair.def, {0.0001, 40});
  double su = 0, sv = 0;
  int32_t n = 0;
  for (int32_t y = 24; y < pair.ref.Height() - 24; y += 8)
    for (int32_t x = 24; x < pair.ref.Width() - 24; x += 8) {
      const SubsetResult r = correlator.Solve(x, y, kSide, {std::round(u), 0, 0, std::round(v), 0, 0});
      if (!r.converged) continue;
      su += r.warp.u - u;
      sv += r.warp.v - v;
      if (uErrors) uErrors->push_back(r.warp.u - u);
      ++n;
    }
  return {su / std::max(n, 1), sv / std::max(n, 1)};
}

void BM_TranslationSweepBias(benchmark::State& state) {
  double worst = 0.0, sum = 0.0;
  for (auto _ : state) {
    worst = sum = 0.0;
    for (int32_t i = 0; i <= 10; ++i) {
      const double u = 0.1 * i, v = 0.05 * i;
      const auto [bu, bv] = MeanError(MakePair(192, {synth::FieldKind::Translation, u, v}, 0.0), u, v);
      worst = std::max({worst, std::abs(bu), std::abs(bv)});
      sum += std::abs(bu) + std::abs(bv);
    }
  }
  state.counters["max_abs_mean_bias_px"] = worst;
  state.counters["mean_abs_bias_px"] = sum / 22;
}
BENCHMARK(BM_TranslationSweepBias)->Iterations(1)->Unit(benchmark::kMillisecond);

// At a whole-pixel shift the deformed subset isn't interpolated, so the noise
// reaches the solution unfiltered, as the prediction assumes.
void BM_RandomErrorAtNoise2(benchmark::State& state) {
  constexpr double kSigma = 2.0;
  double measured = 0.0, predicted = 0.0;
  for (auto _ : state) {
    const Pair noisy = MakePair(256, {synth::FieldKind::Translation, 3.0, 0.0}, kSigma, 5);
    const Pair clean = MakePair(256, {synth::FieldKind::Translation, 3.0, 0.0}, 0.0);
    std::vector<double> errors;
    MeanError(noisy, 3.0, 0.0, &errors);
    double mean = 0, sq = 0;
    for (double e : errors) mean += e;
    mean /= static_cast<double>(errors.size());
    for (double e : errors) sq += (e - mean) * (e - mean);
    measured = std::sqrt(sq / static_cast<double>(errors.size() - 1));
    double inverseSum = 0;
    int32_t n = 0;
    const int32_t half = kSide / 2;
    for (int32_t y = 24; y < 256 - 24; y += 8)
      for (int32_t x = 24; x < 256 - 24; x += 8, ++n) {
        double sssig = 0;
        for (int32_t dy = -half; dy <= half; ++dy)
          for (int32_t dx = -half; dx <= half; ++dx) sssig += std::pow(clean.ref.At(x + dx, y + dy).dx, 2);
        inverseSum += 2 * kSigma * kSigma / sssig;
      }
    predicted = std::sqrt(inverseSum / n);
  }
  state.counters["random_error_px"] = measured;
  state.counters["predicted_px"] = predicted;
  state.counters["ratio"] = measured / predicted;
}
BENCHMARK(BM_RandomErrorAtNoise2)->Iterations(1)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace tessiva::solver

// The solver's figures: subsets per second per core (21 x 21, cubic B-spline)
// on one and two threads, on an easy job and on the strict job users run; the
// mean bias over a 0..1 pixel translation sweep, and the random error at
// grey-level noise 2 against its prediction sqrt(2) sigma / sqrt(sum of
// squared gradients).
#include <benchmark/benchmark.h>

#include <cmath>
#include <memory>
#include <vector>

#include "icgn.h"
#include "interpolation.h"
#include "propagation.h"
#include "synth/texture.h"
#include "workerpool.h"

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

struct GreyPair {
  GreyArray ref, def;
};

GreyPair MakeGreyPair(int32_t size, const synth::FieldSpec& field, double noise, uint32_t noiseSeed) {
  synth::SpeckleSettings st;
  st.width = st.height = size;
  st.noiseSigma = noise;
  const synth::Speckle speckle(st);
  return {ToGrey(synth::Render(speckle, st, nullptr, noiseSeed), size, size),
          ToGrey(synth::Render(speckle, st, &field, noiseSeed + 1), size, size)};
}

struct Pair {
  SampledPicture ref, def;
};

Pair Sampled(const GreyPair& grey, int32_t size) {
  return {SampledPicture(grey.ref, size, size, Interpolant::CubicBSpline),
          SampledPicture(grey.def, size, size, Interpolant::CubicBSpline)};
}

Pair MakePair(int32_t size, const synth::FieldSpec& field, double noise, uint32_t noiseSeed = 11) {
  return Sampled(MakeGreyPair(size, field, noise, noiseSeed), size);
}

// `count` x `count` patterns every `step` pixels from (first, first), numbered column by column.
FieldProblem GridProblem(const SampledPicture& ref, const SampledPicture& def, int32_t first, int32_t step,
                         int32_t count, int32_t threads) {
  FieldProblem p;
  p.ref = &ref;
  p.def = &def;
  p.sideMin = p.sideMax = kSide;
  p.threads = threads;
  for (int32_t c = 0; c < count; ++c)
    for (int32_t r = 0; r < count; ++r) {
      p.x.push_back(first + c * step);
      p.y.push_back(first + r * step);
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
  const FieldProblem problem = GridProblem(pair.ref, pair.def, 20, 4, (512 - 40) / 4, threads);
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

// The job users run: 1024 x 1024 pictures strained 1 % across and -0.5 %
// down with grey-level noise 1, a pattern every 4 pixels over the middle four
// fifths (42,025 patterns, as tessiva-cli setup lays them), stop at 0.001
// pixel, and integer starts: each pattern starts from the whole-pixel
// displacement of the true field, with no gradient, as a start search would
// give it. Each run builds the sampled pictures too, as a job does.
void BM_StrictJobPatternsPerSecond(benchmark::State& state) {
  constexpr int32_t kSize = 1024, kFirst = 104, kStep = 4, kCount = 205;
  const auto threads = static_cast<int32_t>(state.range(0));
  const synth::FieldSpec field{synth::FieldKind::UniformStrain, 0.01, -0.005, 0.0, 0.3, kSize / 2.0, kSize / 2.0};
  static const GreyPair grey = MakeGreyPair(kSize, field, 1.0, 11);
  std::vector<Warp> starts(kCount * kCount);
  for (int32_t i = 0; i < kCount * kCount; ++i) {
    const synth::Vec2 d = synth::Displacement(field, kFirst + kStep * (i / kCount), kFirst + kStep * (i % kCount));
    starts[i] = {std::round(d.u), 0, 0, std::round(d.v), 0, 0};
  }
  int64_t patterns = 0, iterations = 0, converged = 0;
  double refBytes = 0.0, defBytes = 0.0;
  for (auto _ : state) {
    state.PauseTiming();
    GreyPair pictures = grey;
    state.ResumeTiming();
    WorkerPool pool(threads);
    const SampledPair sampled(pictures.ref, pictures.def, kSize, kSize, Interpolant::CubicBSpline, pool);
    refBytes = sampled.ref.BytesPerPixel();
    defBytes = sampled.def.BytesPerPixel();
    std::vector<std::unique_ptr<SubsetCorrelator>> correlators;
    for (int32_t w = 0; w < threads; ++w)
      correlators.push_back(std::make_unique<SubsetCorrelator>(sampled.ref, sampled.def, IcgnSettings{0.001, 40}));
    std::vector<SubsetResult> results(kCount * kCount);
    pool.ForEach(kCount * kCount, [&](int32_t i, int32_t w) {
      const int32_t x = kFirst + kStep * (i / kCount), y = kFirst + kStep * (i % kCount);
      results[i] = correlators[w]->Solve(x, y, kSide, starts[i]);
    });
    for (const SubsetResult& r : results) {
      iterations += r.iterations;
      converged += r.converged ? 1 : 0;
    }
    patterns += kCount * kCount;
  }
  state.counters["patterns_per_s"] = benchmark::Counter(static_cast<double>(patterns), benchmark::Counter::kIsRate);
  state.counters["patterns_per_s_per_core"] =
      benchmark::Counter(static_cast<double>(patterns) / threads, benchmark::Counter::kIsRate);
  state.counters["iterations_per_pattern"] = static_cast<double>(iterations) / static_cast<double>(patterns);
  state.counters["converged_fraction"] = static_cast<double>(converged) / static_cast<double>(patterns);
  state.counters["ref_bytes_per_pixel"] = refBytes;
  state.counters["def_bytes_per_pixel"] = defBytes;
}
BENCHMARK(BM_StrictJobPatternsPerSecond)->Arg(1)->Arg(2)->UseRealTime()->Unit(benchmark::kMillisecond);

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

#include "propagation.h"

#include <memory>

#include "workerpool.h"

namespace tessiva::solver {
namespace {

bool Acceptable(const SubsetResult& r, double minZncc) { return r.converged && r.zncc >= minZncc; }

// The smaller subset first; the larger one where the smaller fails.
PatternSolution SolvePattern(SubsetCorrelator& c, const FieldProblem& p, int32_t k, const Warp& guess) {
  PatternSolution out;
  for (int32_t side : {p.sideMin, p.sideMax}) {
    const SubsetResult r = c.Solve(p.x[k], p.y[k], side, guess);
    out = {Acceptable(r, p.minZncc), r.warp, r.iterations, side, r.zncc};
    if (out.good || p.sideMax == p.sideMin) break;
  }
  return out;
}

// A start pattern under large strain: its gradient is unknown, so a range of
// stretches is tried and the best correlation kept.
PatternSolution SolveStart(SubsetCorrelator& c, const FieldProblem& p, const StartSeed& seed) {
  const Warp plain{seed.du, 0, 0, seed.dv, 0, 0};
  PatternSolution best = SolvePattern(c, p, seed.pattern, plain);
  if (!p.largeStrain) return best;
  for (int32_t i = -3; i <= 7; ++i)
    for (int32_t j = -3; j <= 7; ++j) {
      const PatternSolution s = SolvePattern(c, p, seed.pattern, {seed.du, 0.1 * i, 0, seed.dv, 0, 0.1 * j});
      if (s.good && (!best.good || s.zncc > best.zncc)) best = s;
    }
  return best;
}

// The guess a solved neighbour gives: its shape function carried to this centre.
Warp CarriedFrom(const FieldProblem& p, int32_t from, int32_t to, const Warp& w) {
  const double dx = p.x[to] - p.x[from], dy = p.y[to] - p.y[from];
  return {w.u + w.ux * dx + w.uy * dy, w.ux, w.uy, w.v + w.vx * dx + w.vy * dy, w.vx, w.vy};
}

// The guess for pattern k in wave `wave`: the warp of its best good
// neighbour from an earlier wave, carried to it.
Warp GuessFor(const FieldProblem& p, const LargeArray<PatternSolution>& sol, const std::vector<int32_t>& waveOf,
              int32_t wave, int32_t k) {
  int32_t best = 0;
  for (int32_t n : p.neighbours[k])
    if (n > 0 && waveOf[n] != 0 && waveOf[n] < wave && sol[n].good && (best == 0 || sol[n].zncc > sol[best].zncc))
      best = n;
  return CarriedFrom(p, best, k, sol[best].warp);
}

}  // namespace

FieldSolution SolveField(const FieldProblem& p, const std::vector<StartSeed>& seeds) {
  WorkerPool pool(p.threads);
  return SolveField(p, seeds, pool);
}

FieldSolution SolveField(const FieldProblem& p, const std::vector<StartSeed>& seeds, WorkerPool& pool) {
  const auto count = static_cast<int32_t>(p.x.size()) - 1;
  std::vector<std::unique_ptr<SubsetCorrelator>> correlators;
  for (int32_t w = 0; w < pool.Workers(); ++w) correlators.push_back(std::make_unique<SubsetCorrelator>(*p.ref, *p.def, p.icgn));
  FieldSolution field{LargeArray<PatternSolution>(static_cast<size_t>(count) + 1), std::vector<bool>(seeds.size())};
  auto& sol = field.patterns;

  std::vector<PatternSolution> seedSolutions(seeds.size());
  pool.ForEach(static_cast<int32_t>(seeds.size()), [&](int32_t i, int32_t w) {
    seedSolutions[i] = SolveStart(*correlators[w], p, seeds[i]);
  });
  // The wave each pattern is tried in, 0 for none yet; the good start
  // patterns make wave 1.
  std::vector<int32_t> waveOf(static_cast<size_t>(count) + 1, 0);
  std::vector<int32_t> wave;
  for (size_t i = 0; i < seeds.size(); ++i) {
    field.seedGood[i] = seedSolutions[i].good;
    PatternSolution& slot = sol[seeds[i].pattern];
    if (seedSolutions[i].good && (!slot.good || seedSolutions[i].zncc > slot.zncc)) slot = seedSolutions[i];
    if (seedSolutions[i].good) {
      wave.push_back(seeds[i].pattern);
      waveOf[seeds[i].pattern] = 1;
    }
  }
  std::vector<int32_t> next;
  for (int32_t number = 2; !wave.empty(); ++number) {
    // The untried neighbours of the last wave's good patterns. Each is seeded
    // from the earlier waves only, never from one solved beside it in this
    // wave, so the field is the same whatever order the workers take them in.
    next.clear();
    for (int32_t k : wave)
      for (int32_t n : p.neighbours[k])
        if (n > 0 && waveOf[n] == 0) {
          waveOf[n] = number;
          next.push_back(n);
        }
    pool.ForEach(static_cast<int32_t>(next.size()), [&](int32_t i, int32_t w) {
      const int32_t k = next[i];
      sol[k] = SolvePattern(*correlators[w], p, k, GuessFor(p, sol, waveOf, number, k));
    });
    std::erase_if(next, [&](int32_t k) { return !sol[k].good; });
    wave.swap(next);
  }
  return field;
}

}  // namespace tessiva::solver

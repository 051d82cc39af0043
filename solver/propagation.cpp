#include "propagation.h"

#include <algorithm>
#include <memory>

#include "workerpool.h"

namespace tessiva::solver {
namespace {

bool Acceptable(const SubsetResult& r, double minZncc) { return r.converged && r.zncc >= minZncc; }

// The smaller subset first; the larger one where the smaller fails.
PatternSolution SolvePattern(SubsetCorrelator& c, const FieldProblem& p, int32_t k, const Warp& guess) {
  PatternSolution out;
  out.tried = true;
  for (int32_t side : {p.sideMin, p.sideMax}) {
    const SubsetResult r = c.Solve(p.x[k], p.y[k], side, guess);
    out = {Acceptable(r, p.minZncc), true, r.warp, r.iterations, side, r.zncc};
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

// The guess for pattern k: the warp of its best solved neighbour carried to it.
Warp GuessFor(const FieldProblem& p, const LargeArray<PatternSolution>& sol, int32_t k) {
  int32_t best = 0;
  for (int32_t n : p.neighbours[k])
    if (n > 0 && sol[n].good && (best == 0 || sol[n].zncc > sol[best].zncc)) best = n;
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
  std::vector<int32_t> wave;
  for (size_t i = 0; i < seeds.size(); ++i) {
    field.seedGood[i] = seedSolutions[i].good;
    PatternSolution& slot = sol[seeds[i].pattern];
    if (seedSolutions[i].good && (!slot.good || seedSolutions[i].zncc > slot.zncc)) slot = seedSolutions[i];
    if (seedSolutions[i].good) wave.push_back(seeds[i].pattern);
  }
  std::vector<int32_t> next;
  std::vector<PatternSolution> solved;
  while (!wave.empty()) {
    // The untried neighbours of this wave, each seeded from its best solved
    // neighbour. Their solutions are kept aside until the wave is done, so
    // that every guess reads the field as the wave found it.
    next.clear();
    for (int32_t k : wave)
      for (int32_t n : p.neighbours[k])
        if (n > 0 && !sol[n].tried) {
          sol[n].tried = true;
          next.push_back(n);
        }
    std::sort(next.begin(), next.end());
    solved.resize(next.size());
    pool.ForEach(static_cast<int32_t>(next.size()), [&](int32_t i, int32_t w) {
      solved[i] = SolvePattern(*correlators[w], p, next[i], GuessFor(p, sol, next[i]));
    });
    wave.clear();
    for (size_t i = 0; i < next.size(); ++i) {
      sol[next[i]] = solved[i];
      if (solved[i].good) wave.push_back(next[i]);
    }
  }
  return field;
}

}  // namespace tessiva::solver

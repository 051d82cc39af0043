// Propagation over the pattern grid in breadth-first waves from the start
// patterns: each wave solves, in parallel, every untried pattern next to one
// the wave before solved, seeded from its solved neighbour of best
// correlation. A pattern that fails seeds no neighbour; there is no priority
// queue, so a poor pattern is not put off until its better neighbours are
// done. A wave depends only on the waves before it, so the field is the same
// whatever the number of threads.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "icgn.h"
#include "largearray.h"

namespace tessiva::solver {

class WorkerPool;

struct PatternSolution {
  bool good = false;
  Warp warp;
  int32_t iterations = 0;
  int32_t side = 0;  // subset side that gave the solution
  double zncc = -1.0;
};

struct FieldProblem {
  const SampledPicture* ref = nullptr;
  const SampledPicture* def = nullptr;
  // Pattern centres and their four grid neighbours (0 for none), 1-based.
  std::vector<int32_t> x{0}, y{0};
  std::vector<std::array<int32_t, 4>> neighbours{{}};
  int32_t sideMin = 21;
  int32_t sideMax = 21;
  IcgnSettings icgn;
  double minZncc = 0.9;   // poorer patterns are flagged bad
  bool largeStrain = false;  // start patterns search the displacement gradient too
  int32_t threads = 1;
};

struct StartSeed {
  int32_t pattern = 0;
  double du = 0.0, dv = 0.0;  // whole-pixel displacement of the start point
};

struct FieldSolution {
  LargeArray<PatternSolution> patterns;  // 1-based
  std::vector<bool> seedGood;            // per start seed
};

// Solves the field on the pool's workers (problem.threads is not read).
FieldSolution SolveField(const FieldProblem& problem, const std::vector<StartSeed>& seeds, WorkerPool& pool);
// The same on a pool of problem.threads workers.
FieldSolution SolveField(const FieldProblem& problem, const std::vector<StartSeed>& seeds);

}  // namespace tessiva::solver

// Sub-pixel correlation of one square subset: inverse-compositional
// Gauss-Newton with a first-order shape function and the zero-normalised
// criterion. The Hessian and steepest-descent images come from the reference
// picture once per subset; each iteration warps only the deformed side.
#pragma once

#include <cstdint>
#include <vector>

#include "interpolation.h"

namespace tessiva::solver {

// The first-order shape function at the subset centre: displacement and its
// gradient, u(X) = u + ux dX + uy dY, v(X) = v + vx dX + vy dY.
struct Warp {
  double u = 0.0, ux = 0.0, uy = 0.0;
  double v = 0.0, vx = 0.0, vy = 0.0;
};

// Inverts a 6 x 6 matrix (the Gauss-Newton Hessian) by Gauss-Jordan
// elimination with partial pivoting. False, and `inverse` undefined, when the
// matrix is singular: a pivot vanishes next to the matrix's largest entry,
// whatever the grey scale of the pictures.
bool Invert6(const double a[36], double inverse[36]);

// The inverse-compositional update W(p) <- W(p) o W(dp)^-1. False, and `w`
// unchanged, when W(dp) can't be inverted.
bool ComposeInverse(Warp& w, const Warp& dp);

struct SubsetResult {
  Warp warp;
  bool converged = false;
  int32_t iterations = 0;
  double zncc = -1.0;  // 1 for a perfect match
};

struct IcgnSettings {
  double tolerance = 0.01;  // stop when the displacement increment is below this, in pixels
  int32_t maxIterations = 40;
};

// Per-thread scratch: the subset's reference values and steepest-descent images.
// Aligned to a cache line so that two threads' correlators never share one.
class alignas(64) SubsetCorrelator {
 public:
  // The subset's sums take the deformed picture's sampler: AVX2 or portable.
  SubsetCorrelator(const SampledPicture& ref, const SampledPicture& def, IcgnSettings settings)
      : ref_(ref), def_(def), settings_(settings), sampler_(def.SamplerUsed()) {}

  // Correlates the subset of side `side` centred on the whole pixel (cx, cy),
  // starting from `guess`. Not converged when the subset leaves either
  // picture, has no texture, or the iteration doesn't settle.
  SubsetResult Solve(int32_t cx, int32_t cy, int32_t side, const Warp& guess);

 private:
  bool PrepareReference(int32_t cx, int32_t cy, int32_t half);
  // Fills the warped deformed subset; false when it leaves the picture.
  bool SampleDeformed(int32_t cx, int32_t cy, int32_t half, const Warp& w);

  const SampledPicture& ref_;
  const SampledPicture& def_;
  IcgnSettings settings_;
  Sampler sampler_;
  std::vector<double> f_;   // zero-mean reference levels
  std::vector<double> g_;   // warped deformed levels
  std::vector<double> sd_;  // the 6 steepest-descent images, one after the other
  double sdF_[6] = {};      // each image's products with f summed
  double fNorm_ = 0.0;
  double hessianInverse_[36] = {};
};

}  // namespace tessiva::solver

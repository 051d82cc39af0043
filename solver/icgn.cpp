#include "icgn.h"

#include <algorithm>
#include <cmath>

namespace tessiva::solver {
namespace {

// The Gauss-Newton Hessian of the first-order shape function over the
// subset, from its gradients gx and gy (row by row). Its entries are sums of
// gx gx, gx gy and gy gy times 1, dX, dY, dX^2, dX dY and dY^2; summing the
// dX powers along each row first, then weighting the row by its dY powers,
// takes 9 running sums a pixel instead of 21 products.
void GaussNewtonHessian(const double* gx, const double* gy, int32_t half, double h[36]) {
  enum { kXX, kXY, kYY };
  double sum[3][6] = {};  // [gradient product][1, dX, dY, dX^2, dX dY, dY^2]
  size_t k = 0;
  for (int32_t dy = -half; dy <= half; ++dy) {
    double row[3][3] = {};  // [gradient product][1, dX, dX^2]
    for (int32_t dx = -half; dx <= half; ++dx, ++k) {
      const double products[3] = {gx[k] * gx[k], gx[k] * gy[k], gy[k] * gy[k]};
      for (int p = 0; p < 3; ++p) {
        row[p][0] += products[p];
        row[p][1] += products[p] * dx;
        row[p][2] += products[p] * dx * dx;
      }
    }
    for (int p = 0; p < 3; ++p) {
      sum[p][0] += row[p][0];
      sum[p][1] += row[p][1];
      sum[p][2] += row[p][0] * dy;
      sum[p][3] += row[p][2];
      sum[p][4] += row[p][1] * dy;
      sum[p][5] += row[p][0] * dy * dy;
    }
  }
  // The monomial of each pair of parameters (u, ux, uy) or (v, vx, vy) carries.
  static constexpr int kMonomial[3][3] = {{0, 1, 2}, {1, 3, 4}, {2, 4, 5}};
  for (int r = 0; r < 3; ++r)
    for (int c = 0; c < 3; ++c) {
      const int m = kMonomial[r][c];
      h[r * 6 + c] = sum[kXX][m];
      h[(r + 3) * 6 + (c + 3)] = sum[kYY][m];
      h[r * 6 + (c + 3)] = h[(c + 3) * 6 + r] = sum[kXY][m];
    }
}

// What a subset's levels g give against the zero-mean reference f and the
// steepest-descent images sd: for the warped deformed subset, all an
// iteration needs; for the reference levels themselves, f's mean and norm and
// the images' products with f.
struct SubsetSums {
  double mean = 0.0;   // of g
  double gg = 0.0;     // sum of (g - mean)^2
  double fg = 0.0;     // sum of f (g - mean)
  double sdG[6] = {};  // sum of sd (g - mean), per image
};

// The sums are kept as kLanes interleaved partial sums, which the compiler
// may hold in vector registers: it can't split one running sum itself
// without changing its rounding. Compiled for AVX2, the eight sums of the
// second pass fit in eight registers.
constexpr size_t kLanes = 4;

[[gnu::always_inline]] inline SubsetSums SumsOverBody(const double* f, const double* g, const double* sd, size_t n) {
  SubsetSums out;
  double partial[kLanes] = {};
  const size_t whole = n - n % kLanes;
  for (size_t k = 0; k < whole; k += kLanes)
    for (size_t l = 0; l < kLanes; ++l) partial[l] += g[k + l];
  double sum = 0.0;
  for (size_t k = whole; k < n; ++k) sum += g[k];
  for (double p : partial) sum += p;
  out.mean = sum / static_cast<double>(n);
  // Eight sums of products with g - mean: the square, f, and the six images.
  double sums[8][kLanes] = {};
  const auto add = [&](size_t k, size_t l) {
    const double gc = g[k] - out.mean;
    sums[0][l] += gc * gc;
    sums[1][l] += f[k] * gc;
    for (size_t r = 0; r < 6; ++r) sums[2 + r][l] += sd[r * n + k] * gc;
  };
  for (size_t k = 0; k < whole; k += kLanes)
    for (size_t l = 0; l < kLanes; ++l) add(k + l, l);
  for (size_t k = whole; k < n; ++k) add(k, 0);
  double total[8];
  for (size_t i = 0; i < 8; ++i) total[i] = (sums[i][0] + sums[i][1]) + (sums[i][2] + sums[i][3]);
  out.gg = total[0];
  out.fg = total[1];
  for (size_t r = 0; r < 6; ++r) out.sdG[r] = total[2 + r];
  return out;
}

SubsetSums SumsOverPortable(const double* f, const double* g, const double* sd, size_t n) {
  return SumsOverBody(f, g, sd, n);
}

#if defined(__x86_64__)
[[gnu::target("avx2,fma")]] SubsetSums SumsOverAvx2(const double* f, const double* g, const double* sd, size_t n) {
  return SumsOverBody(f, g, sd, n);
}
#endif

SubsetSums SumsOver(Sampler sampler, const double* f, const double* g, const double* sd, size_t n) {
#if defined(__x86_64__)
  if (sampler == Sampler::Avx2) return SumsOverAvx2(f, g, sd, n);
#endif
  return SumsOverPortable(f, g, sd, n);
}

// The affine warp as a 3x3 matrix acting on (dX, dY, 1).
struct Affine {
  double a11, a12, a13, a21, a22, a23;
};

Affine ToAffine(const Warp& w) { return {1.0 + w.ux, w.uy, w.u, w.vx, 1.0 + w.vy, w.v}; }
Warp FromAffine(const Affine& m) { return {m.a13, m.a11 - 1.0, m.a12, m.a23, m.a21, m.a22 - 1.0}; }

}  // namespace

bool Invert6(const double a[36], double inv[36]) {
  double m[6][12];
  double largest = 0.0;
  for (int r = 0; r < 6; ++r)
    for (int c = 0; c < 12; ++c) {
      m[r][c] = c < 6 ? a[r * 6 + c] : (c - 6 == r ? 1.0 : 0.0);
      if (c < 6) largest = std::max(largest, std::fabs(m[r][c]));
    }
  // Hessian entries grow with the subset's contrast and size, so a pivot is
  // judged against the largest entry: a rank-deficient Hessian leaves pivots
  // of rounding size, about 1e-16 of it, which an absolute bound would pass.
  const double vanishing = 1e-12 * largest;
  for (int col = 0; col < 6; ++col) {
    int pivot = col;
    for (int r = col + 1; r < 6; ++r)
      if (std::fabs(m[r][col]) > std::fabs(m[pivot][col])) pivot = r;
    if (!(std::fabs(m[pivot][col]) > vanishing)) return false;
    if (pivot != col)
      for (int c = 0; c < 12; ++c) std::swap(m[pivot][c], m[col][c]);
    const double scale = 1.0 / m[col][col];
    for (int c = 0; c < 12; ++c) m[col][c] *= scale;
    for (int r = 0; r < 6; ++r) {
      if (r == col || m[r][col] == 0.0) continue;
      const double f = m[r][col];
      for (int c = 0; c < 12; ++c) m[r][c] -= f * m[col][c];
    }
  }
  for (int r = 0; r < 6; ++r)
    for (int c = 0; c < 6; ++c) inv[r * 6 + c] = m[r][c + 6];
  return true;
}

bool ComposeInverse(Warp& w, const Warp& dp) {
  const Affine d = ToAffine(dp);
  const double det = d.a11 * d.a22 - d.a12 * d.a21;
  if (std::fabs(det) < 1e-12) return false;
  const Affine di{d.a22 / det,  -d.a12 / det, (d.a12 * d.a23 - d.a22 * d.a13) / det,
                  -d.a21 / det, d.a11 / det,  (d.a21 * d.a13 - d.a11 * d.a23) / det};
  const Affine m = ToAffine(w);
  w = FromAffine({m.a11 * di.a11 + m.a12 * di.a21, m.a11 * di.a12 + m.a12 * di.a22,
                  m.a11 * di.a13 + m.a12 * di.a23 + m.a13, m.a21 * di.a11 + m.a22 * di.a21,
                  m.a21 * di.a12 + m.a22 * di.a22, m.a21 * di.a13 + m.a22 * di.a23 + m.a23});
  return true;
}

bool SubsetCorrelator::PrepareReference(int32_t cx, int32_t cy, int32_t half) {
  if (!ref_.Inside(cx - half, cy - half) || !ref_.Inside(cx + half, cy + half)) return false;
  const size_t n = static_cast<size_t>(2 * half + 1) * (2 * half + 1);
  f_.resize(n);
  g_.resize(n);
  sd_.resize(6 * n);
  // The reference levels go through g_ first: their sums against the images
  // are those an iteration takes of the deformed levels.
  size_t k = 0;
  for (int32_t dy = -half; dy <= half; ++dy)
    for (int32_t dx = -half; dx <= half; ++dx, ++k) {
      const Sample s = ref_.AtPixel(cx + dx, cy + dy);
      g_[k] = s.value;
      const double image[6] = {s.dx, s.dx * dx, s.dx * dy, s.dy, s.dy * dx, s.dy * dy};
      for (size_t r = 0; r < 6; ++r) sd_[r * n + k] = image[r];
    }
  const SubsetSums sums = SumsOver(sampler_, g_.data(), g_.data(), sd_.data(), n);
  fNorm_ = std::sqrt(sums.gg);
  if (fNorm_ < 1e-6) return false;
  for (k = 0; k < n; ++k) f_[k] = g_[k] - sums.mean;
  std::copy(sums.sdG, sums.sdG + 6, sdF_);
  double hessian[36];
  GaussNewtonHessian(&sd_[0], &sd_[3 * n], half, hessian);
  return Invert6(hessian, hessianInverse_);
}

bool SubsetCorrelator::SampleDeformed(int32_t cx, int32_t cy, int32_t half, const Warp& w) {
  const auto corner = [&](int32_t dx, int32_t dy) {
    return def_.Inside(cx + dx + w.u + w.ux * dx + w.uy * dy, cy + dy + w.v + w.vx * dx + w.vy * dy);
  };
  if (!corner(-half, -half) || !corner(half, -half) || !corner(-half, half) || !corner(half, half)) return false;
  const int32_t side = 2 * half + 1;
  for (int32_t dy = -half; dy <= half; ++dy) {
    const double x = cx - half + w.u + w.ux * -half + w.uy * dy;
    const double y = cy + dy + w.v + w.vx * -half + w.vy * dy;
    def_.ValuesAlong(x, y, 1.0 + w.ux, w.vx, side, &g_[static_cast<size_t>(dy + half) * side]);
  }
  return true;
}

SubsetResult SubsetCorrelator::Solve(int32_t cx, int32_t cy, int32_t side, const Warp& guess) {
  SubsetResult result;
  result.warp = guess;
  const int32_t half = side / 2;
  if (!PrepareReference(cx, cy, half)) return result;
  const size_t n = f_.size();
  Warp& w = result.warp;
  while (result.iterations < settings_.maxIterations) {
    ++result.iterations;
    if (!SampleDeformed(cx, cy, half, w)) return result;
    const SubsetSums sums = SumsOver(sampler_, f_.data(), g_.data(), sd_.data(), n);
    const double gNorm = std::sqrt(sums.gg);
    if (gNorm < 1e-6) return result;
    // Gradient of the zero-normalised SSD, in the reference's grey scale:
    // b = sum of sd (f - ratio (g - mean)), the sum of sd f taken once per subset.
    const double ratio = fNorm_ / gNorm;
    double b[6];
    for (int r = 0; r < 6; ++r) b[r] = sdF_[r] - ratio * sums.sdG[r];
    result.zncc = sums.fg / (fNorm_ * gNorm);
    double dp[6] = {};
    for (int r = 0; r < 6; ++r)
      for (int c = 0; c < 6; ++c) dp[r] -= hessianInverse_[r * 6 + c] * b[c];
    if (!ComposeInverse(w, {dp[0], dp[1], dp[2], dp[3], dp[4], dp[5]})) return result;
    // The largest displacement the increment makes over the subset.
    const double du = std::fabs(dp[0]) + half * (std::fabs(dp[1]) + std::fabs(dp[2]));
    const double dv = std::fabs(dp[3]) + half * (std::fabs(dp[4]) + std::fabs(dp[5]));
    if (du * du + dv * dv < settings_.tolerance * settings_.tolerance) {
      result.converged = true;
      return result;
    }
  }
  return result;
}

}  // namespace tessiva::solver

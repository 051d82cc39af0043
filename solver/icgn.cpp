#include "icgn.h"

#include <algorithm>
#include <cmath>

namespace tessiva::solver {
namespace {

// The Gauss-Newton Hessian of the first-order shape function over the subset.
// Its entries are sums of gx gx, gx gy and gy gy times 1, dX, dY, dX^2, dX dY
// and dY^2; summing the dX powers along each row first, then weighting the
// row by its dY powers, takes 9 running sums a pixel instead of 21 products.
void GaussNewtonHessian(const SampledPicture& ref, int32_t cx, int32_t cy, int32_t half, double h[36]) {
  enum { kXX, kXY, kYY };
  double sum[3][6] = {};  // [gradient product][1, dX, dY, dX^2, dX dY, dY^2]
  for (int32_t dy = -half; dy <= half; ++dy) {
    double row[3][3] = {};  // [gradient product][1, dX, dX^2]
    for (int32_t dx = -half; dx <= half; ++dx) {
      const Sample g = ref.AtPixel(cx + dx, cy + dy);
      const double products[3] = {g.dx * g.dx, g.dx * g.dy, g.dy * g.dy};
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
  double mean = 0.0;
  size_t k = 0;
  for (int32_t dy = -half; dy <= half; ++dy)
    for (int32_t dx = -half; dx <= half; ++dx, ++k) {
      const Sample s = ref_.AtPixel(cx + dx, cy + dy);
      f_[k] = s.value;
      mean += s.value;
      double* j = &sd_[6 * k];
      j[0] = s.dx, j[1] = s.dx * dx, j[2] = s.dx * dy, j[3] = s.dy, j[4] = s.dy * dx, j[5] = s.dy * dy;
    }
  mean /= static_cast<double>(n);
  double sq = 0.0;
  for (double& f : f_) {
    f -= mean;
    sq += f * f;
  }
  fNorm_ = std::sqrt(sq);
  if (fNorm_ < 1e-6) return false;
  double hessian[36];
  GaussNewtonHessian(ref_, cx, cy, half, hessian);
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
    double mean = 0.0;
    for (double g : g_) mean += g;
    mean /= static_cast<double>(n);
    double sq = 0.0;
    for (double& g : g_) {
      g -= mean;
      sq += g * g;
    }
    const double gNorm = std::sqrt(sq);
    if (gNorm < 1e-6) return result;
    // Gradient of the zero-normalised SSD, in the reference's grey scale.
    const double ratio = fNorm_ / gNorm;
    double b[6] = {}, ssd = 0.0;
    for (size_t k = 0; k < n; ++k) {
      const double e = f_[k] - ratio * g_[k];
      ssd += e * e;
      const double* j = &sd_[6 * k];
      for (int r = 0; r < 6; ++r) b[r] += j[r] * e;
    }
    result.zncc = 1.0 - 0.5 * ssd / (fNorm_ * fNorm_);
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

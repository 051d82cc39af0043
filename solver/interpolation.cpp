#include "interpolation.h"

#include <algorithm>
#include <cmath>

namespace tessiva::solver {
namespace {

// In-place prefilter of one line (stride apart) for the cubic B-spline:
// a causal and an anticausal first-order recursion with the pole sqrt(3) - 2,
// mirror-symmetric boundaries (Unser 1999).
void PrefilterLine(double* c, int32_t n, size_t stride) {
  if (n < 2) return;
  const double z = std::sqrt(3.0) - 2.0;
  const double gain = (1.0 - z) * (1.0 - 1.0 / z);
  auto at = [&](int32_t k) -> double& { return c[static_cast<size_t>(k) * stride]; };
  for (int32_t k = 0; k < n; ++k) at(k) *= gain;
  // Causal start: the sum over the mirrored line. A long line's is truncated
  // where z^k is negligible (z^30 < 1e-17); a shorter line's is summed over one
  // period of the mirrored line, 2n - 2 long, in closed form, since truncating
  // it there would leave an error of z^n (1e-7 on a 12-pixel line).
  constexpr int32_t kHorizon = 30;
  double sum = at(0);
  if (n > kHorizon) {
    double zk = z;
    for (int32_t k = 1; k < kHorizon; ++k, zk *= z) sum += zk * at(k);
  } else {
    // sum over k < 2n - 2 of z^k c(mirrored k), divided by 1 - z^(2n - 2)
    double zk = z, zMirror = std::pow(z, n - 1);
    sum += zMirror * at(n - 1);
    zMirror *= zMirror / z;  // z^(2n - 3)
    for (int32_t k = 1; k < n - 1; ++k, zk *= z, zMirror /= z) sum += (zk + zMirror) * at(k);
    sum /= 1.0 - zk * zk;  // zk is z^(n - 1) here
  }
  at(0) = sum;
  for (int32_t k = 1; k < n; ++k) at(k) += z * at(k - 1);
  at(n - 1) = (z / (z * z - 1.0)) * (at(n - 1) + z * at(n - 2));
  for (int32_t k = n - 2; k >= 0; --k) at(k) = z * (at(k + 1) - at(k));
}

// Floor without the library call std::floor becomes on plain x86-64: the
// samplers take it twice per sample.
inline int32_t FloorToInt(double v) {
  const auto i = static_cast<int32_t>(v);
  return i - (v < i ? 1 : 0);
}

// Cubic B-spline weights for the four knots round t in [0, 1).
void SplineValueWeights(double t, double w[4]) {
  const double t2 = t * t, t3 = t2 * t, s = 1.0 - t;
  w[0] = s * s * s / 6.0;
  w[1] = (3.0 * t3 - 6.0 * t2 + 4.0) / 6.0;
  w[2] = (-3.0 * t3 + 3.0 * t2 + 3.0 * t + 1.0) / 6.0;
  w[3] = t3 / 6.0;
}

// The same weights and their derivatives.
void SplineWeights(double t, double w[4], double d[4]) {
  const double s = 1.0 - t, t2 = t * t;
  SplineValueWeights(t, w);
  d[0] = -s * s / 2.0;
  d[1] = (3.0 * t2 - 4.0 * t) / 2.0;
  d[2] = (-3.0 * t2 + 2.0 * t + 1.0) / 2.0;
  d[3] = t2 / 2.0;
}

}  // namespace

SampledPicture::SampledPicture(const GreyArray& pixels, int32_t width, int32_t height, Interpolant kind)
    : width_(width), height_(height), kind_(kind), levels_(static_cast<size_t>(width) * height) {
  for (int32_t y = 0; y < height; ++y)
    for (int32_t x = 0; x < width; ++x) levels_[Index(x, y)] = pixels(x, y);
  if (kind == Interpolant::CubicBSpline) {
    coeffs_ = levels_;
    for (int32_t y = 0; y < height; ++y) PrefilterLine(&coeffs_[Index(0, y)], width, 1);
    for (int32_t x = 0; x < width; ++x) PrefilterLine(&coeffs_[Index(x, 0)], height, static_cast<size_t>(width));
  }
  ComputePixelGradients();
}

void SampledPicture::ComputePixelGradients() {
  gradX_.assign(levels_.size(), 0.0);
  gradY_.assign(levels_.size(), 0.0);
  for (int32_t y = 0; y < height_; ++y)
    for (int32_t x = 0; x < width_; ++x) {
      const size_t i = Index(x, y);
      if (kind_ == Interpolant::CubicBSpline && Inside(x, y)) {
        const Sample s = Spline(x, y);
        gradX_[i] = s.dx;
        gradY_[i] = s.dy;
        continue;
      }
      const int32_t xl = std::max(x - 1, 0), xr = std::min(x + 1, width_ - 1);
      const int32_t yl = std::max(y - 1, 0), yr = std::min(y + 1, height_ - 1);
      gradX_[i] = xr > xl ? (levels_[Index(xr, y)] - levels_[Index(xl, y)]) / (xr - xl) : 0.0;
      gradY_[i] = yr > yl ? (levels_[Index(x, yr)] - levels_[Index(x, yl)]) / (yr - yl) : 0.0;
    }
}

bool SampledPicture::Inside(double x, double y) const {
  // One knot before and two after the cell for the spline; the cell itself for bilinear.
  const double lo = kind_ == Interpolant::CubicBSpline ? 1.0 : 0.0;
  const double hi = kind_ == Interpolant::CubicBSpline ? 3.0 : 2.0;
  return x >= lo && y >= lo && x < width_ - hi && y < height_ - hi;
}

Sample SampledPicture::At(double x, double y) const {
  return kind_ == Interpolant::CubicBSpline ? Spline(x, y) : Bilinear(x, y);
}

void SampledPicture::ValuesAlong(double x, double y, double stepX, double stepY, int32_t count, double* out) const {
  // The interpolant is chosen once per row, so that each loop inlines its sampler.
  if (kind_ != Interpolant::CubicBSpline) {
    for (int32_t k = 0; k < count; ++k, x += stepX, y += stepY) out[k] = Bilinear(x, y).value;
    return;
  }
  for (int32_t k = 0; k < count; ++k, x += stepX, y += stepY) {
    const int32_t x0 = FloorToInt(x), y0 = FloorToInt(y);
    double wx[4], wy[4];
    SplineValueWeights(x - x0, wx);
    SplineValueWeights(y - y0, wy);
    double value = 0.0;
    for (int32_t j = 0; j < 4; ++j) {
      const double* row = &coeffs_[Index(x0 - 1, y0 - 1 + j)];
      value += wy[j] * (wx[0] * row[0] + wx[1] * row[1] + wx[2] * row[2] + wx[3] * row[3]);
    }
    out[k] = value;
  }
}

Sample SampledPicture::Bilinear(double x, double y) const {
  const int32_t x0 = FloorToInt(x), y0 = FloorToInt(y);
  const double tx = x - x0, ty = y - y0;
  const double* r0 = &levels_[Index(x0, y0)];
  const double* r1 = r0 + width_;
  const double top = r0[0] + tx * (r0[1] - r0[0]), bottom = r1[0] + tx * (r1[1] - r1[0]);
  return {top + ty * (bottom - top), (1.0 - ty) * (r0[1] - r0[0]) + ty * (r1[1] - r1[0]), bottom - top};
}

Sample SampledPicture::Spline(double x, double y) const {
  const int32_t x0 = FloorToInt(x), y0 = FloorToInt(y);
  double wx[4], dwx[4], wy[4], dwy[4];
  SplineWeights(x - x0, wx, dwx);
  SplineWeights(y - y0, wy, dwy);
  Sample s;
  for (int32_t j = 0; j < 4; ++j) {
    const double* row = &coeffs_[Index(x0 - 1, y0 - 1 + j)];
    double v = 0.0, dv = 0.0;
    for (int32_t i = 0; i < 4; ++i) {
      v += wx[i] * row[i];
      dv += dwx[i] * row[i];
    }
    s.value += wy[j] * v;
    s.dx += wy[j] * dv;
    s.dy += dwy[j] * v;
  }
  return s;
}

}  // namespace tessiva::solver

#include "interpolation.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <functional>

#if defined(__x86_64__)
#include <immintrin.h>
#endif

#include "workerpool.h"

namespace tessiva::solver {
namespace {

// Lines prefiltered side by side: a band of columns spans two cache lines.
constexpr int32_t kBand = 16;

// The pole of the cubic B-spline's prefilter.
const double kPole = std::sqrt(3.0) - 2.0;

// Runs body(first, end) over [0, count) in bands of `band`, on the pool's
// workers when there is one.
void ForBands(WorkerPool* pool, int32_t count, int32_t band, const std::function<void(int32_t, int32_t)>& body) {
  const int32_t bands = (count + band - 1) / band;
  const auto one = [&](int32_t b, int32_t) { body(b * band, std::min(count, (b + 1) * band)); };
  if (pool) {
    pool->ForEach(bands, one);
  } else {
    for (int32_t b = 0; b < bands; ++b) one(b, 0);
  }
}

// line[l] = op(line[l], other[l]) over `lanes` lines side by side.
template <class Op>
inline void Combine(double* __restrict line, const double* __restrict other, int32_t lanes, Op op) {
  for (int32_t l = 0; l < lanes; ++l) line[l] = op(line[l], other[l]);
}

// In-place prefilter of `lanes` (at most kBand) lines side by side for the
// cubic B-spline, element k of line l at c[k * stride + l]: a causal and an
// anticausal first-order recursion with the pole sqrt(3) - 2, mirror-symmetric
// boundaries (Unser 1999). Rows go one at a time; columns go in bands of
// neighbours, so that the inner loops run along contiguous memory.
void PrefilterLines(double* c, int32_t n, size_t stride, int32_t lanes) {
  if (n < 2) return;
  const double z = kPole, gain = (1.0 - z) * (1.0 - 1.0 / z);
  const auto line = [&](int32_t k) { return c + static_cast<size_t>(k) * stride; };
  for (int32_t k = 0; k < n; ++k)
    for (int32_t l = 0; l < lanes; ++l) line(k)[l] *= gain;
  // Causal start: the sum over the mirrored line. A long line's is truncated
  // where z^k is negligible (z^30 < 1e-17); a shorter line's is summed over one
  // period of the mirrored line, 2n - 2 long, in closed form, since truncating
  // it there would leave an error of z^n (1e-7 on a 12-pixel line).
  constexpr int32_t kHorizon = 30;
  double sum[kBand];
  std::copy(line(0), line(0) + lanes, sum);
  const auto addTimes = [](double factor) { return [factor](double a, double b) { return a + factor * b; }; };
  if (n > kHorizon) {
    double zk = z;
    for (int32_t k = 1; k < kHorizon; ++k, zk *= z) Combine(sum, line(k), lanes, addTimes(zk));
  } else {
    // sum over k < 2n - 2 of z^k c(mirrored k), divided by 1 - z^(2n - 2)
    double zk = z, zMirror = std::pow(z, n - 1);
    Combine(sum, line(n - 1), lanes, addTimes(zMirror));
    zMirror *= zMirror / z;  // z^(2n - 3)
    for (int32_t k = 1; k < n - 1; ++k, zk *= z, zMirror /= z) Combine(sum, line(k), lanes, addTimes(zk + zMirror));
    for (int32_t l = 0; l < lanes; ++l) sum[l] /= 1.0 - zk * zk;  // zk is z^(n - 1) here
  }
  std::copy(sum, sum + lanes, line(0));
  for (int32_t k = 1; k < n; ++k) Combine(line(k), line(k - 1), lanes, addTimes(z));
  const double end = z / (z * z - 1.0);
  Combine(line(n - 1), line(n - 2), lanes, [&](double last, double before) { return end * (last + z * before); });
  for (int32_t k = n - 2; k >= 0; --k)
    Combine(line(k), line(k + 1), lanes, [&](double here, double after) { return z * (after - here); });
}

// The spline coefficients of the levels: rows, then bands of columns, each
// spread over the pool.
PictureArray Prefiltered(const GreyArray& pixels, int32_t width, int32_t height, WorkerPool* pool) {
  PictureArray c(static_cast<size_t>(width) * height);
  const auto row = [&](int32_t y) { return c.data() + static_cast<size_t>(y) * width; };
  ForBands(pool, height, kBand, [&](int32_t first, int32_t end) {
    for (int32_t y = first; y < end; ++y) {
      for (int32_t x = 0; x < width; ++x) row(y)[x] = pixels(x, y);
      PrefilterLines(row(y), width, 1, 1);
    }
  });
  ForBands(pool, width, kBand, [&](int32_t first, int32_t end) {
    PrefilterLines(c.data() + first, height, static_cast<size_t>(width), end - first);
  });
  return c;
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

void SplineValuesAlongPortable(const double* coeffs, size_t width, double x, double y, double stepX, double stepY,
                               int32_t count, double* out) {
  for (int32_t k = 0; k < count; ++k) {
    const double px = x + k * stepX, py = y + k * stepY;
    const int32_t x0 = FloorToInt(px), y0 = FloorToInt(py);
    double wx[4], wy[4];
    SplineValueWeights(px - x0, wx);
    SplineValueWeights(py - y0, wy);
    double value = 0.0;
    for (int32_t j = 0; j < 4; ++j) {
      const double* row = coeffs + static_cast<size_t>(y0 - 1 + j) * width + (x0 - 1);
      value += wy[j] * (wx[0] * row[0] + wx[1] * row[1] + wx[2] * row[2] + wx[3] * row[3]);
    }
    out[k] = value;
  }
}

#if defined(__x86_64__)
bool ProcessorHasAvx2() { return __builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma"); }

// The four knots' weights along one axis for four samples, one a lane: the
// cubics in t by Horner's scheme.
[[gnu::target("avx2,fma")]] inline void SplineValueWeightsAvx2(__m256d t, __m256d w[4]) {
  static constexpr double kCubic[4][4] = {{1.0 / 6.0, -0.5, 0.5, -1.0 / 6.0},
                                          {4.0 / 6.0, 0.0, -1.0, 0.5},
                                          {1.0 / 6.0, 0.5, 0.5, -0.5},
                                          {0.0, 0.0, 0.0, 1.0 / 6.0}};
  for (int i = 0; i < 4; ++i) {
    const double* c = kCubic[i];
    w[i] = _mm256_fmadd_pd(_mm256_fmadd_pd(_mm256_fmadd_pd(_mm256_set1_pd(c[3]), t, _mm256_set1_pd(c[2])), t,
                                           _mm256_set1_pd(c[1])),
                           t, _mm256_set1_pd(c[0]));
  }
}

// Four samples a step. Each sample's four knot rows are weighted by its row
// weights and summed into one vector over its four knot columns; the four
// samples' vectors are transposed, so that the column weights, computed four
// samples at a time, apply lane by lane and the four values leave in one store.
[[gnu::target("avx2,fma")]] void SplineValuesAlongAvx2(const double* coeffs, size_t width, double x, double y,
                                                      double stepX, double stepY, int32_t count, double* out) {
  if (count < 4) return SplineValuesAlongPortable(coeffs, width, x, y, stepX, stepY, count, out);
  const __m256d lane = _mm256_setr_pd(0.0, 1.0, 2.0, 3.0);
  // A row that isn't a whole number of blocks ends on a block that overlaps
  // the one before: its first samples come out the same again.
  for (int32_t first = 0;; first += 4) {
    const int32_t k = std::min(first, count - 4);
    const __m256d step = _mm256_add_pd(_mm256_set1_pd(k), lane);
    const __m256d xs = _mm256_fmadd_pd(step, _mm256_set1_pd(stepX), _mm256_set1_pd(x));
    const __m256d ys = _mm256_fmadd_pd(step, _mm256_set1_pd(stepY), _mm256_set1_pd(y));
    const __m256d fx = _mm256_floor_pd(xs), fy = _mm256_floor_pd(ys);
    __m256d wx[4], wy[4];
    SplineValueWeightsAvx2(_mm256_sub_pd(xs, fx), wx);
    SplineValueWeightsAvx2(_mm256_sub_pd(ys, fy), wy);
    alignas(32) double rowWeights[4][4];
    for (int j = 0; j < 4; ++j) _mm256_store_pd(rowWeights[j], wy[j]);
    alignas(16) int32_t x0[4], y0[4];
    _mm_store_si128(reinterpret_cast<__m128i*>(x0), _mm256_cvttpd_epi32(fx));
    _mm_store_si128(reinterpret_cast<__m128i*>(y0), _mm256_cvttpd_epi32(fy));
    __m256d columns[4];  // per sample: its knot rows weighted and summed
    for (int s = 0; s < 4; ++s) {
      const double* r = coeffs + static_cast<size_t>(y0[s] - 1) * width + (x0[s] - 1);
      __m256d sum = _mm256_mul_pd(_mm256_loadu_pd(r), _mm256_broadcast_sd(&rowWeights[0][s]));
      for (int j = 1; j < 4; ++j)
        sum = _mm256_fmadd_pd(_mm256_loadu_pd(r + j * width), _mm256_broadcast_sd(&rowWeights[j][s]), sum);
      columns[s] = sum;
    }
    const __m256d low01 = _mm256_unpacklo_pd(columns[0], columns[1]);
    const __m256d high01 = _mm256_unpackhi_pd(columns[0], columns[1]);
    const __m256d low23 = _mm256_unpacklo_pd(columns[2], columns[3]);
    const __m256d high23 = _mm256_unpackhi_pd(columns[2], columns[3]);
    __m256d values = _mm256_mul_pd(_mm256_permute2f128_pd(low01, low23, 0x20), wx[0]);
    values = _mm256_fmadd_pd(_mm256_permute2f128_pd(high01, high23, 0x20), wx[1], values);
    values = _mm256_fmadd_pd(_mm256_permute2f128_pd(low01, low23, 0x31), wx[2], values);
    values = _mm256_fmadd_pd(_mm256_permute2f128_pd(high01, high23, 0x31), wx[3], values);
    _mm256_storeu_pd(out + k, values);
    if (k + 4 == count) return;
  }
}
#else
bool ProcessorHasAvx2() { return false; }
#endif

// The picture of `pixels`, which are released once it is prepared.
SampledPicture SampledAndReleased(GreyArray& pixels, int32_t width, int32_t height, Interpolant kind,
                                  const PictureOptions& options) {
  SampledPicture picture(pixels, width, height, kind, options);
  pixels = GreyArray{};
  return picture;
}

}  // namespace

Sampler FastestSampler() {
  static const Sampler fastest = [] {
    const char* portable = std::getenv("TESSIVA_PORTABLE_SAMPLER");
    return (portable && *portable) || !ProcessorHasAvx2() ? Sampler::Portable : Sampler::Avx2;
  }();
  return fastest;
}

SampledPicture::SampledPicture(const GreyArray& pixels, int32_t width, int32_t height, Interpolant kind,
                               const PictureOptions& options)
    : width_(width),
      height_(height),
      kind_(kind),
      sampler_(options.sampler == Sampler::Avx2 && ProcessorHasAvx2() ? Sampler::Avx2 : Sampler::Portable) {
  const bool reference = options.use != PictureUse::Deformed, deformed = options.use != PictureUse::Reference;
  const bool spline = kind == Interpolant::CubicBSpline;
  if (reference || !spline) {
    levels_.resize(static_cast<size_t>(width) * height);
    ForBands(options.pool, height, kBand, [&](int32_t first, int32_t end) {
      for (int32_t y = first; y < end; ++y)
        for (int32_t x = 0; x < width; ++x) levels_[Index(x, y)] = pixels(x, y);
    });
  }
  PictureArray coeffs;
  if (spline) coeffs = Prefiltered(pixels, width, height, options.pool);
  if (reference) ComputePixelGradients(coeffs, options.pool);
  if (spline && deformed) coeffs_ = std::move(coeffs);
}

void SampledPicture::ComputePixelGradients(const PictureArray& coeffs, WorkerPool* pool) {
  gradX_.resize(levels_.size());
  gradY_.resize(levels_.size());
  // The spline's gradient where Inside admits the pixel: at t = 0 the knot
  // weights are 1/6, 2/3, 1/6 and the derivative's -1/2, 0, 1/2.
  const bool spline = kind_ == Interpolant::CubicBSpline;
  const int32_t splineFrom = 1, splineEndX = spline ? width_ - 3 : 1, splineEndY = spline ? height_ - 3 : 1;
  ForBands(pool, height_, kBand, [&](int32_t first, int32_t end) {
    for (int32_t y = first; y < end; ++y) {
      const bool splineRow = y >= splineFrom && y < splineEndY;
      for (int32_t x = 0; x < width_; ++x) {
        const size_t i = Index(x, y);
        if (splineRow && x >= splineFrom && x < splineEndX) {
          const double *above = &coeffs[i - width_], *here = &coeffs[i], *below = &coeffs[i + width_];
          gradX_[i] = 0.5 * ((above[1] - above[-1]) / 6.0 + (here[1] - here[-1]) * (4.0 / 6.0) +
                             (below[1] - below[-1]) / 6.0);
          gradY_[i] = 0.5 * ((below[-1] - above[-1]) / 6.0 + (below[0] - above[0]) * (4.0 / 6.0) +
                             (below[1] - above[1]) / 6.0);
          continue;
        }
        const int32_t xl = std::max(x - 1, 0), xr = std::min(x + 1, width_ - 1);
        const int32_t yl = std::max(y - 1, 0), yr = std::min(y + 1, height_ - 1);
        gradX_[i] = xr > xl ? (levels_[Index(xr, y)] - levels_[Index(xl, y)]) / (xr - xl) : 0.0;
        gradY_[i] = yr > yl ? (levels_[Index(x, yr)] - levels_[Index(x, yl)]) / (yr - yl) : 0.0;
      }
    }
  });
}

SampledPair::SampledPair(GreyArray& refPixels, GreyArray& defPixels, int32_t width, int32_t height, Interpolant kind,
                         WorkerPool& pool)
    : ref(SampledAndReleased(refPixels, width, height, kind, {.use = PictureUse::Reference, .pool = &pool})),
      def(SampledAndReleased(defPixels, width, height, kind, {.use = PictureUse::Deformed, .pool = &pool})) {}

double SampledPicture::BytesPerPixel() const {
  const size_t values = levels_.size() + coeffs_.size() + gradX_.size() + gradY_.size();
  return static_cast<double>(values * sizeof(double)) / (static_cast<double>(width_) * height_);
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
#if defined(__x86_64__)
  if (sampler_ == Sampler::Avx2) return SplineValuesAlongAvx2(coeffs_.data(), width_, x, y, stepX, stepY, count, out);
#endif
  SplineValuesAlongPortable(coeffs_.data(), width_, x, y, stepX, stepY, count, out);
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

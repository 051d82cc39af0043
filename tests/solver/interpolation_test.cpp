// Sub-pixel sampling against polynomial pictures: the cubic B-spline
// reproduces polynomials up to the third degree and the bilinear interpolant
// linear ones, values and gradients alike, so both are known in closed form
// between the pixels. Every case runs on the portable sampler and on the
// AVX2 one (the same one twice on a processor without AVX2).
#include "interpolation.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <random>
#include <vector>

#include "workerpool.h"

namespace tessiva::solver {
namespace {

struct Field {
  const char* name;
  std::function<double(double, double)> f, fx, fy;
};

// Whole-valued at whole pixels, as pictures are.
const Field kLinear{"linear", [](double x, double y) { return 7 + 3 * x - 2 * y; },
                    [](double, double) { return 3.0; }, [](double, double) { return -2.0; }};
const Field kQuadratic{"quadratic", [](double x, double y) { return x * x - 3 * x * y + 2 * y * y + 5 * x; },
                       [](double x, double y) { return 2 * x - 3 * y + 5; },
                       [](double x, double y) { return -3 * x + 4 * y; }};
const Field kCubic{"cubic", [](double x, double y) { return x * x * x - 2 * x * y * y + y * y; },
                   [](double x, double y) { return 3 * x * x - 2 * y * y; },
                   [](double x, double y) { return -4 * x * y + 2 * y; }};

constexpr Sampler kSamplers[] = {Sampler::Portable, Sampler::Avx2};

const char* Named(Sampler sampler) { return sampler == Sampler::Portable ? "portable" : "AVX2"; }

SampledPicture Picture(const Field& field, int32_t size, Interpolant kind, Sampler sampler) {
  GreyArray pixels;
  pixels.Allocate(size - 1, size - 1);
  for (int32_t y = 0; y < size; ++y)
    for (int32_t x = 0; x < size; ++x) pixels(x, y) = static_cast<int32_t>(field.f(x, y));
  return SampledPicture(pixels, size, size, kind, {.sampler = sampler});
}

TEST(Interpolation, ReproducesPolynomialFieldsBetweenPixels) {
  struct Case {
    Interpolant kind;
    const Field& field;
    Sampler sampler;
  };
  std::vector<Case> cases;
  for (Sampler sampler : kSamplers) {
    cases.push_back({Interpolant::Bilinear, kLinear, sampler});
    cases.push_back({Interpolant::CubicBSpline, kLinear, sampler});
    cases.push_back({Interpolant::CubicBSpline, kQuadratic, sampler});
    cases.push_back({Interpolant::CubicBSpline, kCubic, sampler});
  }
  // The spline's mirror boundary disturbs a polynomial near the edges, by a
  // factor 0.27 less each pixel inwards: 24 pixels in, that is below rounding.
  constexpr int32_t kSize = 64, kFrom = 24, kTo = 40;
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.field.name) + (c.kind == Interpolant::Bilinear ? ", bilinear, " : ", spline, ") +
                 Named(c.sampler));
    const SampledPicture picture = Picture(c.field, kSize, c.kind, c.sampler);
    const double scale = std::abs(c.field.f(kTo, kTo)) + 1.0;  // rounding grows with the levels
    for (double y = kFrom; y < kTo; y += 1.37)
      for (double x = kFrom; x < kTo; x += 0.83) {
        ASSERT_TRUE(picture.Inside(x, y));
        const Sample s = picture.At(x, y);
        EXPECT_NEAR(s.value, c.field.f(x, y), 1e-9 * scale) << x << ", " << y;
        EXPECT_NEAR(s.dx, c.field.fx(x, y), 1e-9 * scale) << x << ", " << y;
        EXPECT_NEAR(s.dy, c.field.fy(x, y), 1e-9 * scale) << x << ", " << y;
      }
    // The gradients kept at whole pixels, which the reference subsets read.
    for (int32_t y = kFrom; y < kTo; y += 5)
      for (int32_t x = kFrom; x < kTo; x += 3) {
        const Sample s = picture.AtPixel(x, y);
        EXPECT_EQ(s.value, c.field.f(x, y));
        EXPECT_NEAR(s.dx, c.field.fx(x, y), 1e-9 * scale) << x << ", " << y;
        EXPECT_NEAR(s.dy, c.field.fy(x, y), 1e-9 * scale) << x << ", " << y;
      }
    // A row of a warped subset: stretched and slanted.
    constexpr int32_t kCount = 12;
    double row[kCount];
    const double x0 = kFrom + 0.3, y0 = kFrom + 2.6, stepX = 1.07, stepY = 0.21;
    picture.ValuesAlong(x0, y0, stepX, stepY, kCount, row);
    for (int32_t k = 0; k < kCount; ++k)
      EXPECT_NEAR(row[k], c.field.f(x0 + k * stepX, y0 + k * stepY), 1e-9 * scale) << k;
  }
}

// Whatever Inside admits is sampled from the picture's own pixels (the
// address sanitizer sees a read past the last row). The mirror boundary
// leaves a flat picture flat up to its edges, so the level comes back there
// with no gradient; the picture is narrower than the spline prefilter's
// truncated start, so that its closed form for short lines is the one used.
TEST(Interpolation, SamplesUpToTheEdgeOfTheInsideRegion) {
  const Field flat{"flat", [](double, double) { return 90.0; }, {}, {}};
  constexpr int32_t kSize = 12;
  for (Sampler sampler : kSamplers) {
    for (Interpolant kind : {Interpolant::Bilinear, Interpolant::CubicBSpline}) {
      SCOPED_TRACE(Named(sampler));
      const SampledPicture picture = Picture(flat, kSize, kind, sampler);
      // The region's corners, to a 64th of a pixel.
      double lo = -2.0, hi = kSize + 2.0;
      while (lo < kSize && !picture.Inside(lo, lo)) lo += 1.0 / 64;
      while (hi > lo && !picture.Inside(hi, hi)) hi -= 1.0 / 64;
      ASSERT_GT(hi, lo + 2.0);
      for (const auto& [x, y] : {std::pair{lo, lo}, {hi, lo}, {lo, hi}, {hi, hi}}) {
        ASSERT_TRUE(picture.Inside(x, y)) << x << ", " << y;
        const Sample s = picture.At(x, y);
        EXPECT_NEAR(s.value, 90.0, 1e-9);
        EXPECT_NEAR(s.dx, 0.0, 1e-9);
        EXPECT_NEAR(s.dy, 0.0, 1e-9);
        double row[2];
        picture.ValuesAlong(x, y, lo - x, 0.0, 2, row);  // from this corner back to the left edge
        EXPECT_NEAR(row[0], 90.0, 1e-9);
        EXPECT_NEAR(row[1], 90.0, 1e-9);
      }
    }
  }
}

// Random levels of a 16-bit camera: the spline passes through them at whole
// pixels on either sampler, and a pair prepared for its two sides over a pool
// samples as a picture prepared whole on one thread, keeping only what each
// side reads.
TEST(Interpolation, SixteenBitLevelsSampleAlikeWhateverThePreparation) {
  constexpr int32_t kWidth = 61, kHeight = 47;  // neither a whole number of bands
  std::mt19937 random(7);
  std::uniform_int_distribution<int32_t> level(0, 65535);
  GreyArray pixels;
  pixels.Allocate(kWidth, kHeight);
  for (int32_t y = 0; y <= kHeight; ++y)
    for (int32_t x = 0; x <= kWidth; ++x) pixels(x, y) = level(random);
  GreyArray refPixels = pixels, defPixels = pixels;
  WorkerPool pool(3);
  const SampledPair pair(refPixels, defPixels, kWidth, kHeight, Interpolant::CubicBSpline, pool);
  EXPECT_TRUE(refPixels.Empty() && defPixels.Empty()) << "the grey arrays are released once prepared";
  EXPECT_EQ(pair.ref.BytesPerPixel(), 24.0) << "levels and two gradients";
  EXPECT_EQ(pair.def.BytesPerPixel(), 8.0) << "the spline coefficients alone";
  constexpr double kRounding = 1e-8;  // the levels reach 65535
  for (Sampler sampler : kSamplers) {
    SCOPED_TRACE(Named(sampler));
    const SampledPicture whole(pixels, kWidth, kHeight, Interpolant::CubicBSpline, {.sampler = sampler});
    EXPECT_EQ(whole.BytesPerPixel(), 32.0);
    double row[kWidth], pairRow[kWidth];
    for (int32_t y = 1; y < kHeight - 3; ++y) {
      whole.ValuesAlong(1.0, y, 1.0, 0.0, kWidth - 4, row);
      for (int32_t x = 1; x < kWidth - 3; ++x) ASSERT_NEAR(row[x - 1], pixels(x, y), kRounding) << x << ", " << y;
      // A stretched row between the pixels, slanted down by a pixel.
      if (y + 1.4 < kHeight - 3) {
        whole.ValuesAlong(1.3, y + 0.4, 1.02, 0.018, kWidth - 6, row);
        pair.def.ValuesAlong(1.3, y + 0.4, 1.02, 0.018, kWidth - 6, pairRow);
        for (int32_t k = 0; k < kWidth - 6; ++k) ASSERT_NEAR(row[k], pairRow[k], kRounding) << k << ", " << y;
      }
      for (int32_t x = 0; x < kWidth; ++x) {
        const Sample a = whole.AtPixel(x, y), b = pair.ref.AtPixel(x, y);
        ASSERT_EQ(a.value, b.value);
        ASSERT_EQ(a.dx, b.dx) << x << ", " << y;
        ASSERT_EQ(a.dy, b.dy) << x << ", " << y;
      }
    }
  }
}

}  // namespace
}  // namespace tessiva::solver

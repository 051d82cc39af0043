// The algebra of one correlation step: the 6 x 6 inversion of the Hessian and
// the inverse-compositional update of the first-order warp; and one subset
// solved against a known strain.
#include "icgn.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <numbers>

#include "synth/texture.h"

namespace tessiva::solver {
namespace {

using Matrix = std::array<double, 36>;

// s (I + q q^T) and its closed-form inverse (I - q q^T / (1 + q.q)) / s.
std::pair<Matrix, Matrix> RankOneUpdate(double s, const double q[6]) {
  double qq = 0.0;
  for (int i = 0; i < 6; ++i) qq += q[i] * q[i];
  Matrix a{}, inverse{};
  for (int r = 0; r < 6; ++r)
    for (int c = 0; c < 6; ++c) {
      const double id = r == c ? 1.0 : 0.0;
      a[r * 6 + c] = s * (id + q[r] * q[c]);
      inverse[r * 6 + c] = (id - q[r] * q[c] / (1.0 + qq)) / s;
    }
  return {a, inverse};
}

// B^T B for the rows of B given: rank at most their count.
Matrix Gram(std::initializer_list<std::array<double, 6>> rows, double s) {
  Matrix a{};
  for (const auto& b : rows)
    for (int r = 0; r < 6; ++r)
      for (int c = 0; c < 6; ++c) a[r * 6 + c] += s * b[r] * b[c];
  return a;
}

TEST(HessianInverse, MatchesClosedFormsAtEveryGreyScale) {
  const double q[6] = {1.0, -2.0, 0.5, 3.0, 1.5, -0.25};
  // The Hessians of real subsets run from about 1 to 1e9: the test of a
  // vanishing pivot must not depend on that scale.
  for (double s : {1e-6, 1.0, 1e9}) {
    SCOPED_TRACE(s);
    const auto [a, expected] = RankOneUpdate(s, q);
    Matrix inverse{};
    ASSERT_TRUE(Invert6(a.data(), inverse.data()));
    for (int i = 0; i < 36; ++i) EXPECT_NEAR(inverse[i] * s, expected[i] * s, 1e-12) << i;
  }
  // Zeros on the diagonal: only a row exchange finds a pivot. The symmetric
  // permutation swapping 0<->3, 1<->4, 2<->5 is its own inverse.
  Matrix swap{};
  for (int i = 0; i < 3; ++i) swap[i * 6 + i + 3] = swap[(i + 3) * 6 + i] = 1.0;
  Matrix inverse{};
  ASSERT_TRUE(Invert6(swap.data(), inverse.data()));
  for (int i = 0; i < 36; ++i) EXPECT_NEAR(inverse[i], swap[i], 1e-15) << i;
}

TEST(HessianInverse, ReportsSingularMatrices) {
  struct Case {
    const char* name;
    Matrix a;
  };
  const Case cases[] = {
      {"all zero", Matrix{}},
      // A texture that varies along x only: nothing fixes v, vx or vy.
      {"no gradient along y", Gram({{1, 2, 3, 0, 0, 0}, {2, -1, 0.5, 0, 0, 0}, {0.3, 0.7, -2, 0, 0, 0}}, 1e6)},
      // Rank 5 with entries that don't cancel exactly: the last pivot is
      // rounding noise, large in absolute terms at this grey scale.
      {"rank five, large scale",
       Gram({{1, std::numbers::sqrt2, 0.3, -0.7, std::numbers::pi, 0.1},
             {0.2, 1.1, -std::numbers::e, 0.4, 0.9, -0.6},
             {-1.3, 0.25, 0.8, std::numbers::sqrt3, -0.45, 0.35},
             {0.6, -0.9, 0.15, 1.2, 0.05, std::numbers::ln2},
             {0.45, 0.55, -0.65, 0.75, -0.85, 0.95}},
            1e8)},
  };
  for (const Case& c : cases) {
    Matrix inverse{};
    EXPECT_FALSE(Invert6(c.a.data(), inverse.data())) << c.name;
  }
}

Warp Rotation(double degrees) {
  const double t = degrees * std::numbers::pi / 180.0;
  return {0.0, std::cos(t) - 1.0, -std::sin(t), 0.0, std::sin(t), std::cos(t) - 1.0};
}

TEST(WarpUpdate, ComposesWithTheInverseIncrement) {
  struct Case {
    const char* name;
    Warp w, dp, expected;
  };
  const Warp general{1.5, 0.04, -0.02, -0.7, 0.03, -0.05};
  const Case cases[] = {
      {"an increment equal to the warp gives the identity", general, general, {}},
      {"translations subtract", {2.5, 0, 0, -1.0, 0, 0}, {0.5, 0, 0, 0.25, 0, 0}, {2.0, 0, 0, -1.25, 0, 0}},
      // x -> 1.2 x + 1 after the inverse of x -> 1.1 x + 0.3.
      {"stretch and shift", {1.0, 0.2, 0, 0, 0, 0}, {0.3, 0.1, 0, 0, 0, 0},
       {1.0 - 1.2 * 0.3 / 1.1, 1.2 / 1.1 - 1.0, 0, 0, 0, 0}},
      {"rotations subtract their angles", Rotation(10.0), Rotation(4.0), Rotation(6.0)},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    Warp w = c.w;
    ASSERT_TRUE(ComposeInverse(w, c.dp));
    EXPECT_NEAR(w.u, c.expected.u, 1e-12);
    EXPECT_NEAR(w.ux, c.expected.ux, 1e-12);
    EXPECT_NEAR(w.uy, c.expected.uy, 1e-12);
    EXPECT_NEAR(w.v, c.expected.v, 1e-12);
    EXPECT_NEAR(w.vx, c.expected.vx, 1e-12);
    EXPECT_NEAR(w.vy, c.expected.vy, 1e-12);
  }

  // In general the updated warp, applied after the increment, is the old warp.
  const Warp dp{0.3, -0.06, 0.02, 0.2, 0.01, 0.07};
  Warp w = general;
  ASSERT_TRUE(ComposeInverse(w, dp));
  const auto apply = [](const Warp& p, double x, double y) {
    return std::pair{x + p.u + p.ux * x + p.uy * y, y + p.v + p.vx * x + p.vy * y};
  };
  for (const auto& [x, y] : {std::pair{0.0, 0.0}, {10.0, -7.0}, {-12.0, 12.0}}) {
    const auto [dx, dy] = apply(dp, x, y);
    const auto [gx, gy] = apply(w, dx, dy);
    const auto [ex, ey] = apply(general, x, y);
    EXPECT_NEAR(gx, ex, 1e-12) << x << ", " << y;
    EXPECT_NEAR(gy, ey, 1e-12) << x << ", " << y;
  }

  // An increment that folds the subset flat can't be undone; the warp stays.
  Warp kept = general;
  EXPECT_FALSE(ComposeInverse(kept, {0.0, -1.0, 0.0, 0.0, 0.0, 0.0}));
  EXPECT_EQ(kept.u, general.u);
  EXPECT_EQ(kept.vy, general.vy);
}

// A subset of a noisy speckle pair under a uniform strain, solved from no
// displacement at all with the stop rule users set strictest: the true warp
// is found on either sampler, and the same one to far below the stop rule.
TEST(SubsetCorrelation, FindsAKnownStrainAlikeOnEitherSampler) {
  constexpr int32_t kSize = 96;
  synth::SpeckleSettings st;
  st.width = st.height = kSize;
  st.noiseSigma = 1.0;
  const synth::FieldSpec field{synth::FieldKind::UniformStrain, 0.01, -0.005, 0.0, 0.3, kSize / 2.0, kSize / 2.0};
  const synth::Speckle speckle(st);
  const auto grey = [&](const synth::FieldSpec* f, uint32_t seed) {
    const std::vector<uint8_t> levels = synth::Render(speckle, st, f, seed);
    GreyArray pixels;
    pixels.Allocate(kSize, kSize);
    for (int32_t y = 0; y < kSize; ++y)
      for (int32_t x = 0; x < kSize; ++x) pixels(x, y) = levels[static_cast<size_t>(y) * kSize + x];
    return pixels;
  };
  const GreyArray ref = grey(nullptr, 3), def = grey(&field, 4);
  constexpr int32_t kX = 70, kY = 30;
  const synth::Vec2 truth = synth::Displacement(field, kX, kY);
  std::vector<Warp> found;
  for (Sampler sampler : {Sampler::Portable, Sampler::Avx2}) {
    SCOPED_TRACE(sampler == Sampler::Portable ? "portable" : "AVX2");
    const auto picture = [&](const GreyArray& pixels, PictureUse use) {
      return SampledPicture(pixels, kSize, kSize, Interpolant::CubicBSpline, {.use = use, .sampler = sampler});
    };
    const SampledPicture r = picture(ref, PictureUse::Reference), d = picture(def, PictureUse::Deformed);
    SubsetCorrelator correlator(r, d, {0.001, 40});
    const SubsetResult result = correlator.Solve(kX, kY, 21, {});
    ASSERT_TRUE(result.converged);
    EXPECT_GT(result.zncc, 0.99);
    EXPECT_NEAR(result.warp.u, truth.u, 0.02);
    EXPECT_NEAR(result.warp.v, truth.v, 0.02);
    EXPECT_NEAR(result.warp.ux, 0.01, 0.002);
    EXPECT_NEAR(result.warp.vy, -0.005, 0.002);
    found.push_back(result.warp);
  }
  EXPECT_NEAR(found[0].u, found[1].u, 1e-7);
  EXPECT_NEAR(found[0].v, found[1].v, 1e-7);
}

}  // namespace
}  // namespace tessiva::solver

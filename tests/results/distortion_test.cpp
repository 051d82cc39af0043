// The distortion correction: the cubic fit and its effect on the strains.
#include "results/distortion.h"

#include <gtest/gtest.h>

#include <cmath>

#include "results/analysisfixture.h"
#include "results/mesh.h"

namespace tessiva {
namespace {

using testing::AnalysisFixture;
using testing::Displacement;
using testing::GridPatterns;
using testing::ResultHead;

struct Samples {
  std::vector<int32_t> x, y;
  std::vector<double> values;
};

// Values of a function on a 21 x 21 grid spanning a 2048 x 2048 picture.
template <class F>
Samples Sampled(F f) {
  Samples s;
  for (int32_t x = 0; x <= 2000; x += 100)
    for (int32_t y = 24; y <= 2024; y += 100) {
      s.x.push_back(x);
      s.y.push_back(y);
      s.values.push_back(f(x, y));
    }
  return s;
}

double Cubic(const Poly3& c, double x, double y) {
  return c[1] * x * x * x + c[2] * y * y * y + c[3] * x * x * y + c[4] * x * y * y + c[5] * x * x + c[6] * y * y +
         c[7] * x * y + c[8] * x + c[9] * y + c[10];
}

int32_t Count(const Samples& s) { return static_cast<int32_t>(s.x.size()); }

TEST(AjustePoly3, RecoversACubicFieldOnPixelCoordinates) {
  // The size of a lens distortion: a few pixels at the picture's edges.
  const Poly3 truth{0, 2e-10, -1e-10, 3e-10, -2e-10, 1e-7, 2e-7, -1e-7, 1e-3, -2e-3, 0.75};
  const Samples s = Sampled([&](double x, double y) { return Cubic(truth, x, y); });
  Poly3 fitted{};
  ASSERT_TRUE(AjustePoly3(fitted, Count(s), s.x, s.y, s.values));
  for (double x : {0.0, 517.0, 1024.0, 2047.0})
    for (double y : {0.0, 333.0, 2047.0}) EXPECT_NEAR(Cubic(fitted, x, y), Cubic(truth, x, y), 1e-6) << x << ", " << y;
}

using CorrectedStrains = AnalysisFixture;

// A distortion of p x along x scales corrected positions and displacements
// alike, so a measured stretch g keeps its strain g + g^2 / 2; correcting only
// one of them would give (1 - p) g or g / (1 - p).
TEST_F(CorrectedStrains, ALinearDistortionCorrectsPositionsAndDisplacementsAlike) {
  const double g = 0.1, p = 0.05;
  const auto stretch = [g](double x, double) { return Displacement{g * (x - 100), 0.0}; };
  ASSERT_TRUE(ReadResult(ResultHead{}, GridPatterns(stretch, 64, 64, 6, 6, 8, 8)));
  window.Distor.DistorOn = -1;
  window.Distor.CoefDu[8] = p;
  window.MinMaxDeformation();
  for (int32_t i = 1; i <= s.NbPat; ++i) {
    ASSERT_EQ(s.FlagPat[i], -1);
    for (int32_t n : s.Mailles[static_cast<size_t>(NumMaille(s, s.XPat[i], s.YPat[i]))].Noeud)
      EXPECT_NEAR(s.Noeuds[static_cast<size_t>(n)].E11, (g + g * g / 2) * 100, 1e-9);
  }
}

}  // namespace
}  // namespace tessiva

// Value ranges against a closed-form field read through the whole chain
// (reader, mesh, repair, ranges, strains), and the trimming to the bulk of a
// histogram.
#include "results/ranges.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "results/analysisfixture.h"

namespace tessiva {
namespace {

using testing::AnalysisFixture;
using testing::Displacement;
using testing::ResultHead;

constexpr double kDeg = 180.0 / std::numbers::pi;

// A block of 6 x 6 patterns at 70..120, grid step and pattern size 10: at
// nodes 10 pixels apart the field below takes values that doubles hold
// exactly, so every cell has exactly the same strains.
constexpr int32_t kFirst = 70, kStep = 10, kCount = 6;

// 10 % stretch along x about x = 100, moved by (0.75, -0.25): at the nodes,
// x = 65..125, u runs from -2.75 to 3.25 and |u| is least, 0.25, at x = 95.
Displacement Stretch(double x, double) { return {0.1 * (x - 100.0) + 0.75, -0.25}; }

class RangeFields : public AnalysisFixture {
 protected:
  void ReadStretch() {
    ResultHead head;
    head.lpatMin = head.lpatMax = head.lgrid = kStep;
    ASSERT_TRUE(ReadResult(head, testing::GridPatterns(Stretch, kFirst, kFirst, kCount, kCount, kStep, kStep)));
  }
  const ValueRanges& r = window.Ranges;
};

void ExpectRange(double max, double min, double expectedMax, double expectedMin, const char* what) {
  EXPECT_NEAR(max, expectedMax, 1e-9) << "max " << what;
  EXPECT_NEAR(min, expectedMin, 1e-9) << "min " << what;
}

// Every node has the same strains, so each strain range is closed and then
// opened by 0.001, and the angles get their 0.01 margin.
TEST_F(RangeFields, UniformStretchGivesTheFieldsExtremesAndOpenedStrainRanges) {
  struct Case {
    const char* name;
    bool initial;
    double maxU, minU, v;  // the field, taken backwards from the deformed picture
    // Strains of the map the strains are computed on: F = diag(1.1, 1) or its inverse.
    double e11, h1, h2, teta;
  };
  const double stretched = 100 * std::log(1.1), shrunk = -stretched;
  const Case cases[] = {
      {"Intial -> Final", true, 3.25, -2.75, -0.25, 10.5, stretched, 0.0, 0.0},
      // The deformed cell's first side points along +y, so Teta is t less a full turn.
      {"Final -> Initial", false, 2.75, -3.25, 0.25, (1 / 1.21 - 1) / 2 * 100, 0.0, shrunk, -360.0},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    window.bInitial = c.initial;
    ReadStretch();
    const double gamma = 2 * std::atan(1 / 1.1) * kDeg;
    ExpectRange(r.MaxU, r.MinU, c.maxU, c.minU, "U");
    ExpectRange(r.MaxV, r.MinV, c.v + 0.001, c.v, "V (one value, opened)");
    ExpectRange(r.MaxN, r.MinN, std::hypot(3.25, 0.25), std::hypot(0.25, 0.25), "norm");
    ExpectRange(r.MaxE11, r.MinE11, c.e11 + 0.001, c.e11, "E11");
    ExpectRange(r.MaxE22, r.MinE22, 0.001, 0.0, "E22");
    ExpectRange(r.MaxE12, r.MinE12, 0.001, 0.0, "E12");
    ExpectRange(r.MaxH1, r.MinH1, c.h1 + 0.001, c.h1, "H1");
    ExpectRange(r.MaxH2, r.MinH2, c.h2 + 0.001, c.h2, "H2");
    const double h3 = -(c.h1 + c.h2);
    ExpectRange(r.MaxH3, r.MinH3, h3 + 0.001, h3, "H3");
    ExpectRange(r.MaxTresca, r.MinTresca, c.h1 - c.h2 + 0.001, c.h1 - c.h2, "Tresca");
    ExpectRange(r.MaxTeta, r.MinTeta, c.teta + 0.011, c.teta - 0.01, "Teta");
    ExpectRange(r.MaxGamma, r.MinGamma, gamma + 0.011, gamma - 0.01, "Gamma");
  }
}

// `h` with `count` in bins from..to.
Histogram Filled(Histogram h, int from, int to, int32_t count) {
  for (int j = from; j <= to; ++j) h[static_cast<size_t>(j)] = count;
  return h;
}

TEST(TrimToBulk, KeepsTheBinsAroundThePeakAboveAHundredthOfIt) {
  struct Case {
    const char* name;
    Histogram histogram;
    double max, min;
  };
  const Case cases[] = {
      // The outlier in bin 95 is below the threshold of 2.
      {"one bulk and an outlier", Filled(Filled({}, 20, 59, 200), 95, 95, 1), 10 + 0.60 * 200, 10 + 0.19 * 200},
      // The last fall above the peak wins.
      {"two bulks", Filled(Filled({}, 20, 39, 300), 70, 79, 50), 10 + 0.80 * 200, 10 + 0.19 * 200},
      // No fall above: the maximum goes to the old minimum.
      {"bulk up to the top bin", Filled({}, 50, 100, 10), 10.0, 10 + 0.49 * 200},
      // Bin 0 is no candidate for the peak, and nothing else counts.
      {"only bin 0", Filled({}, 0, 0, 40), 10.0, 10.0},
  };
  for (const Case& c : cases) {
    double max = 210.0, min = 10.0;
    TrimToBulk(c.histogram, max, min);
    EXPECT_NEAR(max, c.max, 1e-12) << c.name;
    EXPECT_NEAR(min, c.min, 1e-12) << c.name;
  }
}

}  // namespace
}  // namespace tessiva

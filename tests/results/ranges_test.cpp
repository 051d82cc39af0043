// Value ranges against closed-form fields read through the whole chain
// (reader, mesh, repair, ranges, strains), the range options of the window,
// and the trimming to the bulk of a histogram.
#include "results/ranges.h"

#include <gtest/gtest.h>

#include <algorithm>
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

// 10 % stretch along x about x = 100, moved by (0.75, -0.25).
Displacement Stretch(double x, double) { return {0.1 * (x - 100.0) + 0.75, -0.25}; }

// Extremes of the field, taken backwards when sign is -1, over the nodes of
// the block's cells; the field varies with x alone.
struct FieldExtremes {
  double maxU = -1e9, minU = 1e9, maxV = -1e9, minV = 1e9, maxN = -1e9, minN = 1e9;
};
FieldExtremes ExtremesOverNodes(double sign) {
  FieldExtremes e;
  for (int x = kFirst - kStep / 2; x <= kFirst + kCount * kStep - kStep / 2; x += kStep) {
    const double u = sign * Stretch(x, 0).u, v = sign * Stretch(x, 0).v, n = std::hypot(u, v);
    e.maxU = std::max(e.maxU, u), e.minU = std::min(e.minU, u);
    e.maxV = std::max(e.maxV, v), e.minV = std::min(e.minV, v);
    e.maxN = std::max(e.maxN, n), e.minN = std::min(e.minN, n);
  }
  return e;
}

class RangeFields : public AnalysisFixture {
 protected:
  void ReadStretch() { ASSERT_TRUE(ReadResult(Head(), Patterns())); }
  static ResultHead Head() {
    ResultHead head;
    head.lpatMin = head.lpatMax = head.lgrid = kStep;
    return head;
  }
  static std::vector<testing::ResultPattern> Patterns() {
    return testing::GridPatterns(Stretch, kFirst, kFirst, kCount, kCount, kStep, kStep);
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
    // Strains of the map the strains are computed on: F = diag(1.1, 1) or its inverse.
    double e11, h1, h2, teta;
  };
  const double stretched = 100 * std::log(1.1), shrunk = -stretched;
  const Case cases[] = {
      {"Intial -> Final", true, 10.5, stretched, 0.0, 0.0},
      // The deformed cell's first side points along +y, so Teta is t less a full turn.
      {"Final -> Initial", false, (1 / 1.21 - 1) / 2 * 100, 0.0, shrunk, -360.0},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    window.bInitial = c.initial;
    ReadStretch();
    const FieldExtremes e = ExtremesOverNodes(c.initial ? 1.0 : -1.0);
    const double gamma = 2 * std::atan(1 / 1.1) * kDeg;
    ExpectRange(r.MaxU, r.MinU, e.maxU, e.minU, "U");
    ExpectRange(r.MaxV, r.MinV, e.minV + 0.001, e.minV, "V (one value, opened)");
    ExpectRange(r.MaxN, r.MinN, e.maxN, e.minN, "norm");
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
    EXPECT_EQ(window.StoredRanges.MaxE11, r.MaxE11) << "stored copy";
  }
}

// The user's axis 1 at 30 degrees: a uniform strain turns as a tensor, and the
// displacement extremes turn as vectors.
TEST_F(RangeFields, UserAxesTurnTheExtremes) {
  const double theta = std::numbers::pi / 6;
  window.Teta1 = theta;
  window.Cos2Teta = std::cos(2 * theta);
  window.Sin2Teta = std::sin(2 * theta);
  ReadStretch();
  const double c = std::cos(theta), sn = std::sin(theta);
  // E' = Q^T E Q with E = diag(10.5, 0): E11' = 10.5 c^2, E22' = 10.5 s^2, E12' = -10.5 c s.
  ExpectRange(r.MaxE11, r.MinE11, 10.5 * c * c + 0.001, 10.5 * c * c, "E11");
  ExpectRange(r.MaxE22, r.MinE22, 10.5 * sn * sn + 0.001, 10.5 * sn * sn, "E22");
  ExpectRange(r.MaxE12, r.MinE12, -10.5 * c * sn + 0.001, -10.5 * c * sn, "E12");
  const FieldExtremes e = ExtremesOverNodes(1.0);
  const double maxV = e.minV + 0.001;  // V has one value: its range was opened before the turn
  ExpectRange(r.MaxU, r.MinU, c * e.maxU + sn * maxV, c * e.minU + sn * e.minV, "U");
  ExpectRange(r.MaxV, r.MinV, -sn * e.minU + c * e.minV, -sn * e.maxU + c * maxV, "V");
}

// A fitted field of 0.1 x is taken off: U + Du(X + U) - Du(X) = 0.9 U, with
// no turn of sign on the deformed configuration.
TEST_F(RangeFields, DistortionCorrectionTakesTheFittedFieldOffWithoutTheSign) {
  window.Distor.DistorOn = -1;
  window.Distor.CoefDu[8] = 0.1;
  window.bInitial = false;
  ReadStretch();
  const FieldExtremes e = ExtremesOverNodes(1.0);
  ExpectRange(r.MaxU, r.MinU, 0.9 * e.maxU, 0.9 * e.minU, "U");
  ExpectRange(r.MaxV, r.MinV, e.minV + 0.001, e.minV, "V");
}

TEST_F(RangeFields, NoValidNodeLeavesTheNoDataMarkAndSkipsTheStrains) {
  std::vector<testing::ResultPattern> bad = Patterns();
  for (auto& p : bad) p.flag = 0;
  window.StoredRanges.MaxU = 7.0;
  window.Ranges.MaxE11 = 42.0;
  ASSERT_TRUE(ReadResult(Head(), bad));
  EXPECT_EQ(r.MaxU, NewAnalyse::kNoData);
  EXPECT_EQ(r.MaxV, NewAnalyse::kNoData);
  EXPECT_EQ(window.StoredRanges.MaxU, 7.0);
  EXPECT_EQ(r.MaxE11, 42.0);
}

// "Keep Min-Max between sequence" holds every range through new searches;
// "Find Min-Max every time" asks first, then searches anew.
TEST_F(RangeFields, KeptRangesStandUntilFindEveryTimeIsConfirmed) {
  ReadStretch();
  window.OptionMinMax(1);
  const double maxU = r.MaxU, maxE11 = r.MaxE11;
  window.Controls().SetChecked("SubMeanCheck", true);
  window.bInitial = false;
  window.MinMaxDeplacement();
  window.MinMaxDeformation();
  EXPECT_EQ(r.MaxU, maxU);
  EXPECT_EQ(r.MaxE11, maxE11);

  window.OptionMinMax(0);  // answered No
  EXPECT_TRUE(window.KeepMinMax);
  EXPECT_TRUE(window.Controls().Checked("OptionMinMax(1)"));
  EXPECT_EQ(ui.Messages().back(), "Do you really want to reinitialize min/max values  ?");
  EXPECT_EQ(r.MaxU, maxU);

  ui.messageAnswers.push_back(MsgAnswer::Yes);
  window.OptionMinMax(0);
  EXPECT_FALSE(window.KeepMinMax);
  EXPECT_TRUE(window.Controls().Checked("OptionMinMax(0)"));
  const FieldExtremes backwards = ExtremesOverNodes(-1.0);
  EXPECT_NEAR(r.MinU, backwards.minU + s.MoyD1, 1e-9) << "searched with the mean off and the sign turned";
}

// A typed limit stands until "Find Min-Max every time" restores the stored
// copy; for the accuracy view that is the mesh's scatter range.
TEST_F(RangeFields, TypedLimitsAreCheckedAndFindEveryTimeRestoresTheStoredRange) {
  ReadStretch();
  s.UnitPX = 0.5;
  window.VueCourante = kViewU;
  const double maxU = r.MaxU, minU = r.MinU;
  struct Case {
    int label;
    const char* typed;
    double max, min;
  };
  const Case cases[] = {
      {0, "-2,5", maxU, -5.0},      // decimal comma, display unit 0.5 mm a pixel
      {4, "-3", maxU, -5.0},        // not above the minimum: refused
      {4, "10", 20.0, -5.0},
      {0, "abc", 20.0, 0.0},        // not a number: reads 0, which is below the maximum
      {0, "11", 20.0, 0.0},         // not below the maximum: refused
  };
  for (const Case& c : cases) {
    ui.inputAnswers.push_back(c.typed);
    window.LabEchelle(c.label);
    EXPECT_EQ(r.MaxU, c.max) << c.typed;
    EXPECT_EQ(r.MinU, c.min) << c.typed;
  }
  EXPECT_EQ(ui.log.back().text, "Give a new minimum value");
  window.OptionMinMax(0);
  EXPECT_EQ(r.MaxU, maxU);
  EXPECT_EQ(r.MinU, minU);

  window.VueCourante = kViewEcart;
  const double ecartMax = s.EcartMax;
  ui.inputAnswers.push_back("5");
  window.LabEchelle(4);
  EXPECT_EQ(s.EcartMax, 5.0);
  window.OptionMinMax(0);
  EXPECT_EQ(s.EcartMax, ecartMax);
}

// "Auto adjust Min-Max" trims after the stored copy is written: a measure
// with one value has no fall on either side, so its range closes at the old
// minimum, and the angles take a margin of 1 degree.
TEST_F(RangeFields, AutoAdjustTrimsAfterStoring) {
  ReadStretch();
  const ValueRanges found = r;
  window.OptionMinMax(2);
  EXPECT_TRUE(window.AutoMinMax);
  EXPECT_EQ(window.StoredRanges.MaxH1, found.MaxH1);
  EXPECT_EQ(r.MaxH1, found.MinH1);
  EXPECT_EQ(r.MinH1, found.MinH1);
  // Teta is 0 everywhere: 0.01 above the minimum of a range 0.021 wide, in bin 47.
  const double width = found.MaxTeta - found.MinTeta;
  EXPECT_NEAR(r.MaxTeta, found.MinTeta + 0.48 * width + 1.0, 1e-12);
  EXPECT_NEAR(r.MinTeta, found.MinTeta + 0.46 * width - 1.0, 1e-12);
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

TEST(CountInHistogram, BinsFractionsFromZeroToOneInclusive) {
  Histogram h{};
  for (const double value : {10.0, 19.999, 20.0, 9.999, 20.001}) CountInHistogram(h, value, 20.0, 10.0);
  EXPECT_EQ(h, Filled(Filled(Filled({}, 0, 0, 1), 99, 99, 1), 100, 100, 1));
}

}  // namespace
}  // namespace tessiva

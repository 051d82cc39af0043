// The forming-limit fits on closed forms: the cosine-linear model and a
// parabola given back from exact data, the count of points a fit needs, and
// a synthetic neck whose undisturbed maximum both determinations recover.
#include "analysis/flcfit.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <numbers>

namespace tessiva {
namespace {

constexpr double kPi = std::numbers::pi;

// A section of `n` points, 1-based, at abscissae s(i) = step i.
struct Section {
  explicit Section(int32_t points, double step = 1.0)
      : s(points + 1, 0.0), e1(points + 1, 0.0), e2(points + 1, 0.0), state(points + 1, kPointUsed), n(points) {
    for (int32_t i = 1; i <= n; ++i) s[i] = step * i;
  }
  std::vector<double> s, e1, e2;
  std::vector<int32_t> state;
  int32_t n;
};

TEST(FitCosLin, GivesBackTheCoefficientsOfExactModelData) {
  struct Case {
    const char* name;
    double a1, a2, a3;
    double step;
    std::vector<int32_t> notUsed;  // points without data or rejected
  };
  const Case cases[] = {
      {"all points", 2.5, -0.75, 30.0, 1.0, {}},
      {"uneven states", -4.0, 1.25, 12.0, 0.37, {1, 2, 17, 40, 79}},
      {"a linear profile", 0.0, 3.0, -5.0, 2.5, {3, 4, 5}},
  };
  for (const Case& c : cases) {
    Section section(79, c.step);
    for (const int32_t i : c.notUsed) section.state[i] = i % 2 ? kPointRejected : kPointNoData;
    double smin = 1e9, smax = -1e9;
    for (int32_t i = 1; i <= section.n; ++i)
      if (section.state[i] == kPointUsed) smin = std::min(smin, section.s[i]), smax = std::max(smax, section.s[i]);
    for (int32_t i = 1; i <= section.n; ++i) {
      const double t = 2 * kPi * (section.s[i] - smin) / (smax - smin) - kPi;
      // Points left out of the fit hold values the model doesn't: they must not count.
      section.e1[i] = section.state[i] == kPointUsed ? c.a1 * std::cos(t) + c.a2 * t + c.a3 : 1000.0;
    }
    CosLinCoefficients coef{};
    double quality = 0.0;
    ASSERT_EQ(FitCosLin(section.s, section.e1, section.state, section.n, coef, quality), -1) << c.name;
    EXPECT_NEAR(coef[1], c.a1, 1e-9) << c.name;
    EXPECT_NEAR(coef[2], c.a2, 1e-9) << c.name;
    EXPECT_NEAR(coef[3], c.a3, 1e-9) << c.name;
    EXPECT_DOUBLE_EQ(coef[4], smin) << c.name;
    EXPECT_DOUBLE_EQ(coef[5], smax) << c.name;
    EXPECT_NEAR(quality, 1.0, 1e-12) << c.name << ": an exact fit correlates fully";
  }
}

TEST(FitCosLin, NeedsFiveUsedPoints) {
  for (const int32_t used : {0, 4, 5}) {
    Section section(79);
    for (int32_t i = 1; i <= section.n; ++i) {
      section.state[i] = i <= used ? kPointUsed : (i % 2 ? kPointRejected : kPointNoData);
      section.e1[i] = 10 + i;
    }
    CosLinCoefficients coef{};
    coef[1] = 7.0;
    double quality = 0.0;
    const int result = FitCosLin(section.s, section.e1, section.state, section.n, coef, quality);
    EXPECT_EQ(result, used >= 5 ? -1 : 1) << used << " used points";
    if (used < 5) {
      EXPECT_EQ(coef[1], 7.0) << "a refused fit leaves the coefficients";
    }
  }
}

TEST(FitCosLin, SingularSystemIsReportedAsZero) {
  // Five points at one abscissa: t can't be formed, the system is degenerate.
  Section section(5, 0.0);
  for (int32_t i = 1; i <= 5; ++i) section.e1[i] = i;
  CosLinCoefficients coef{};
  double quality = 0.0;
  EXPECT_EQ(FitCosLin(section.s, section.e1, section.state, 5, coef, quality), 0);
}

TEST(Quad9, GivesHalfTheSecondDerivativeOfAParabolaAnywhereAlongIt) {
  Section section(30, 0.5);
  for (int32_t i = 1; i <= 30; ++i) section.e1[i] = 1.5 * section.s[i] * section.s[i] - 4 * section.s[i] + 2;
  for (const double x0 : {0.5, 1.2, 7.3, 14.9, 15.0})
    EXPECT_NEAR(Quad9(section.s, section.e1, 30, x0), 1.5, 1e-9) << "at " << x0;
  EXPECT_EQ(Quad9(section.s, section.e1, 30, 40.0), 0.0) << "off the section";
}

TEST(Log10Safe, TakesTwoForWhatHasNoLogarithm) {
  EXPECT_DOUBLE_EQ(Log10Safe(100.0), 2.0);
  EXPECT_DOUBLE_EQ(Log10Safe(0.1), -1.0);
  EXPECT_DOUBLE_EQ(Log10Safe(0.0), 2.0);
  EXPECT_DOUBLE_EQ(Log10Safe(-3.0), 2.0);
}

// A smooth major strain of maximum 27 % at s = 40 mm, a raised-cosine neck of
// 8 % on it within 6 mm of the middle, the minor strain -0.3 times the major.
constexpr double kNeck = 40.0, kNeckHalfWidth = 6.0, kUndisturbed = 27.0, kRatio = -0.3;
Section SyntheticNeck() {
  Section section(79);
  for (int32_t i = 1; i <= section.n; ++i) {
    const double x = section.s[i] - kNeck;
    const double smooth = 25.0 + 2.0 * std::cos(2 * kPi * x / 78.0);
    const double neck = std::abs(x) < kNeckHalfWidth ? 4.0 * (1 + std::cos(kPi * x / kNeckHalfWidth)) : 0.0;
    section.e1[i] = smooth + neck;
    section.e2[i] = kRatio * section.e1[i];
  }
  return section;
}

TEST(NeckDetermination, BothMethodsRecoverTheUndisturbedMaximumWithTheNeckRejected) {
  Section section = SyntheticNeck();
  for (int32_t i = 1; i <= section.n; ++i)
    if (std::abs(section.s[i] - kNeck) < kNeckHalfWidth) section.state[i] = kPointRejected;

  CosLinCoefficients major{}, minor{};
  double quality = 0.0;
  ASSERT_EQ(FitCosLin(section.s, section.e1, section.state, section.n, major, quality), -1);
  ASSERT_EQ(FitCosLin(section.s, section.e2, section.state, section.n, minor, quality), -1);
  EXPECT_NEAR(CosLinExtreme(major, true), kUndisturbed, 0.5);
  EXPECT_NEAR(CosLinExtreme(minor, false), kRatio * kUndisturbed, 0.5);

  const IsoNeckLimit iso = IsoNeckDetermination(section.s, section.e1, section.e2, section.state, section.n, 1.0);
  ASSERT_TRUE(iso.found) << iso.problem;
  EXPECT_NEAR(iso.major, kUndisturbed, 0.5);
  EXPECT_NEAR(iso.minor, kRatio * kUndisturbed, 0.5);
  EXPECT_NEAR(iso.position, kNeck, 1.0);
  EXPECT_DOUBLE_EQ(iso.width, 10 * (1 + kRatio)) << "10 (1 + e2/e1) mm at 1 mm an abscissa unit";
  // The windows start where the neck begins to bend the profile up.
  EXPECT_NEAR(iso.leftInner, kNeck - kNeckHalfWidth, 1.0);
  EXPECT_NEAR(iso.rightInner, kNeck + kNeckHalfWidth, 1.0);
}

TEST(NeckDetermination, FindsAndRejectsTheNeckItself) {
  Section section = SyntheticNeck();
  ASSERT_TRUE(RejectNeck(section.s, section.e1, section.e2, section.state, section.n, 1.0));
  for (int32_t i = 1; i <= section.n; ++i) {
    const double x = std::abs(section.s[i] - kNeck);
    if (x < kNeckHalfWidth - 1) {
      EXPECT_EQ(section.state[i], kPointRejected) << "inside the neck, s = " << section.s[i];
    } else if (x > kNeckHalfWidth + 1) {
      EXPECT_EQ(section.state[i], kPointUsed) << "outside the neck, s = " << section.s[i];
    }
  }
}

TEST(NeckDetermination, WindowWidthIsKeptBetweenTwoAndTwentyMillimetres) {
  // Equibiaxial: 10 (1 + 1) = 20 mm; pixels of 0.5 mm make it 40 abscissa units.
  Section section = SyntheticNeck();
  for (int32_t i = 1; i <= section.n; ++i) section.e2[i] = 1.2 * section.e1[i];
  EXPECT_DOUBLE_EQ(IsoNeckDetermination(section.s, section.e1, section.e2, section.state, section.n, 0.5).width, 40.0);
  for (int32_t i = 1; i <= section.n; ++i) section.e2[i] = -0.9 * section.e1[i];
  EXPECT_DOUBLE_EQ(IsoNeckDetermination(section.s, section.e1, section.e2, section.state, section.n, 1.0).width, 2.0);
}

TEST(NeckDetermination, RefusesProfilesWithoutANeck) {
  struct Case {
    const char* name;
    std::function<double(double)> e1;
    int32_t withData;
  };
  const Case cases[] = {
      {"strain rising to an end", [](double s) { return 10 + 0.2 * s; }, 79},
      {"no positive strain", [](double s) { return -1 - 0.001 * (s - 40) * (s - 40); }, 79},
      {"four points", [](double s) { return 30 - 0.01 * (s - 2.5) * (s - 2.5); }, 4},
  };
  for (const Case& c : cases) {
    Section section(79);
    for (int32_t i = 1; i <= section.n; ++i) {
      section.e1[i] = c.e1(section.s[i]);
      if (i > c.withData) section.state[i] = kPointNoData;
    }
    const IsoNeckLimit iso = IsoNeckDetermination(section.s, section.e1, section.e2, section.state, section.n, 1.0);
    EXPECT_FALSE(iso.found) << c.name;
    EXPECT_FALSE(iso.problem.empty()) << c.name;
    EXPECT_FALSE(RejectNeck(section.s, section.e1, section.e2, section.state, section.n, 1.0)) << c.name;
  }
}

}  // namespace
}  // namespace tessiva

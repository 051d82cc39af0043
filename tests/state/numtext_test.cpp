#include "state/numtext.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <tuple>
#include <vector>

namespace tessiva {
namespace {

TEST(Rounding, TiesGoToEvenAndTheOtherRulesRoundAsNamed) {
  struct Case {
    double x, round, intValue, fix;
  };
  const Case cases[] = {
      {2.5, 2, 2, 2}, {3.5, 4, 3, 3}, {-2.5, -2, -3, -2}, {-2.4, -2, -3, -2}, {0.5, 0, 0, 0}, {7.6, 8, 7, 7},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(Round(c.x), c.round) << c.x;
    EXPECT_EQ(Int(c.x), c.intValue) << c.x;
    EXPECT_EQ(Fix(c.x), c.fix) << c.x;
  }
}

TEST(Rounding, ConversionToInt32SaturatesInsteadOfOverflowing) {
  constexpr int32_t kMax = std::numeric_limits<int32_t>::max(), kMin = std::numeric_limits<int32_t>::min();
  EXPECT_EQ(std::tuple(RoundToInt32(1e20), RoundToInt32(-1e20), RoundToInt32(std::nan("")),
                       RoundToInt32(std::numeric_limits<double>::infinity())),
            std::tuple(kMax, kMin, 0, kMax));
}

TEST(ValNorm, ReadsNumbersWhateverTheirDecimalMark) {
  struct Case {
    const char* text;
    double value;
  };
  const Case cases[] = {
      {"210000", 210000},   {"210 000", 210000},  {"0,3", 0.3},      {"0.3", 0.3},      {"1.5E-03", 1.5},
      {"abc", 0},           {"-", 0},             {"", 0},           {"1,234.5", 1.234}, {"12-3", 12},
      {" -2,5", -2.5},      {"+7", 7},            {"1\xA0" "000", 1000}, {"1\xC2\xA0" "000", 1000},
      {"7,5", 7.5},         {".5", 0.5},          {"+-5", 0},        {"00512", 512},    {"3x4", 3},
  };
  for (const Case& c : cases) EXPECT_DOUBLE_EQ(ValNorm(c.text), c.value) << '"' << c.text << '"';
}

TEST(ValNorm, SurvivesAbsurdlyLongNumbers) {
  EXPECT_GT(ValNorm(std::string(400, '9')), 1e300);
  EXPECT_EQ(ValNorm("0." + std::string(400, '0') + "1"), 0.0);
}

TEST(Str, WritesTheShortestDecimalWithAPointAndASignPlace) {
  struct Case {
    double x;
    const char* text;
  };
  const Case cases[] = {
      {5, " 5"},          {0.3, " .3"},       {-0.25, "-.25"},      {0, " 0"},       {-0.0, " 0"},
      {1000000, " 1000000"}, {0.1 + 0.2, " .3"}, {123.456, " 123.456"}, {-7, "-7"}, {1e-7, " .0000001"},
      {210000, " 210000"}, {1e15, " 1000000000000000"},
  };
  for (const Case& c : cases) EXPECT_EQ(Str(c.x), c.text) << c.x;
}

TEST(Str, TextReadsBackThroughValNorm) {
  for (double x : {0.3, -0.25, 12.5, 210000.0, 0.001, -1234.5678, 1e-6})
    EXPECT_DOUBLE_EQ(ValNorm(Str(x)), x) << x;
}

TEST(Format, FillsDigitPlacesLiteralsAndExponents) {
  const std::string longPattern = "00.000E+00;-00.00E+00;0.00000000", shortPattern = "0.00000E+00;-0.0000E+00";
  struct Case {
    double value;
    std::string pattern;
    const char* text;
  };
  const Case cases[] = {
      {5, "0000", "0005"},
      {512, "00000", "00512"},
      {7, "00  ", "07  "},
      {3, " 00 ", " 03 "},
      {-1, "0000  ;-000  ", "-001  "},
      {12, "0000  ;-000  ", "0012  "},
      {-250, "0000  ;-000  ", "-250  "},
      {12345, "0000", "12345"},
      {-5, "0000", "-0005"},
      {2.5, "0", "3"},
      {0.15, "0.0", "0.2"},
      {3.14159, "##0.0000", "3.1416"},
      {0.5, "##0.0000", "0.5000"},
      {1234.5, "##0.0000", "1234.5000"},
      {20261122, "00000000", "20261122"},
      {3.14159, "#######0.000;-#######0.000", "3.142"},
      {-3.14159, "#######0.000;-#######0.000", "-3.142"},
      // The exponent patterns of tables and exports.
      {0, longPattern, "0.00000000"},
      {1234.5, longPattern, "12.345E+02"},
      {-1234.5, longPattern, "-12.35E+02"},
      {0.000123, longPattern, "12.300E-05"},
      {1.5, shortPattern, "0.15000E+01"},
      {-1.5, shortPattern, "-0.1500E+01"},
      {0, shortPattern, "0.00000E+00"},
      {0.999999, "0.00E+00", "0.10E+01"},
      {12345, "0.00E+000", "0.12E+005"},
      {0.05, "0.00E+00", "0.50E-01"},
  };
  for (const Case& c : cases) EXPECT_EQ(Format(c.value, c.pattern), c.text) << c.value << " " << c.pattern;
}

TEST(AppendFixed, GivesFormatsTextForEveryMagnitudeAndRoundingEdge) {
  const double edges[] = {0.0, -0.0, 0.0000005, -0.0000005, -0.0000004999, 0.9999995, -9.9999995, 999999.99999949,
                          2.5, 0.15, 1e-20, -1e-300, 1e20, 123456789012345678.0, 1e308, 5e-7, 4.9999999999999e-7,
                          std::numeric_limits<double>::quiet_NaN(), -std::numeric_limits<double>::infinity(),
                          // Exactly halfway between two 15-digit decimals, rounded to even first.
                          100000000.0078125, 100000000.0234375, 999999999.9999995, 0.000000000999999};
  std::vector<double> values(std::begin(edges), std::end(edges));
  std::mt19937_64 random(17);
  for (int i = 0; i < 3000; ++i) {
    const double magnitude = std::pow(10.0, std::uniform_real_distribution<double>(-9.0, 9.0)(random));
    values.push_back((i % 2 ? -1 : 1) * magnitude);
    // Halfway between two places shown, where the rounding rule decides.
    values.push_back((std::floor(magnitude * 1e6) + 0.5) / 1e6);
  }
  for (int decimals = 0; decimals <= 8; ++decimals) {
    const std::string pattern = decimals == 0 ? "0" : "0." + std::string(static_cast<size_t>(decimals), '0');
    for (double v : values) {
      std::string text = "x";
      AppendFixed(text, v, decimals);
      ASSERT_EQ(text, "x" + Format(v, pattern)) << v << " " << pattern;
    }
  }
}

TEST(FormatFortran, EditDescriptorsGiveFixedWidthFields) {
  struct Case {
    double value;
    const char* descriptor;
    const char* text;
  };
  const Case cases[] = {
      {12345, "I4", "####"},
      {2.7, "I3", "  2"},
      {-2.5, "I3", " -3"},
      {42, "I10", "        42"},
      {1.5, "3E13.5", "  0.15000E+01"},
      {-1.5, "3E13.5", "  -0.1500E+01"},
      {1.5, "3D25.16", "   0.1500000000000000D+01"},
      {-1.5, "3D25.16", "   -0.150000000000000D+01"},
      {3.14159, "F8.3", "   3.142"},
      {-3.14159, "F8.3", "  -3.142"},
      {123456.789, "F8.3", "123456.7"},
      // Without an exponent digit count the width is read from the third character on.
      {1.5, "E13.5", "###"},
  };
  for (const Case& c : cases) EXPECT_EQ(FormatFortran(c.value, c.descriptor), c.text) << c.value << " " << c.descriptor;
}

TEST(SplitText, SplitsAtEveryDelimiterWithTheLimitRule) {
  using V = std::vector<std::string>;
  const std::string dialog = std::string("C:/data") + '\0' + "a.res" + '\0' + "b.res";
  EXPECT_EQ(SplitText(dialog, std::string(1, '\0')), (V{"C:/data", "a.res", "b.res"}));
  EXPECT_EQ(SplitText("a,b,c", ",", 1), (V{"a", "b,c"}));
  EXPECT_EQ(SplitText("a,b,c", ",", 2), (V{"a", "b", "c"}));
  EXPECT_EQ(SplitText("a,b,c", ""), (V{"a,b,c"}));
  EXPECT_EQ(SplitText("abc", ","), (V{"abc"}));
  EXPECT_EQ(SplitText("a,,b,", ","), (V{"a", "", "b", ""}));
  EXPECT_EQ(SplitText("aXbxc", "x", -1, CompareMode::Text), (V{"a", "b", "c"}));
  EXPECT_EQ(SplitText("aXbxc", "x", -1, CompareMode::Binary), (V{"aXb", "c"}));
}

}  // namespace
}  // namespace tessiva

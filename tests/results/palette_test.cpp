#include "results/palette.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace tessiva {
namespace {

TEST(CouleurEchelle, EachPaletteRunsThroughItsColoursInRoundedSteps) {
  struct Case {
    int mode;
    int32_t steps;
    std::vector<Colour> colours;  // at t = k / steps, k = 0..steps
  };
  const std::vector<Case> cases = {
      {kClassicalPalette, 4, {0x0000FF, 0x00FFFF, 0x00FF32, 0xFFFF00, 0xFF0000}},
      {kGreyPalette, 4, {0x000000, 0x404040, 0x808080, 0xBFBFBF, 0xFFFFFF}},  // 127.5 rounds to even 128
      // Blue, cyan, green, yellow, red, magenta, black, white.
      {kEnhancedPalette, 7, {0x0000FF, 0x00FFFF, 0x00FF00, 0xFFFF00, 0xFF0000, 0xFF00FF, 0x000000, 0xFFFFFF}},
      {3, 1, {0xFFFFFF, 0xFFFFFF}},
  };
  for (const Case& c : cases)
    for (int32_t k = 0; k <= c.steps; ++k) {
      double t = static_cast<double>(k) / c.steps;
      EXPECT_EQ(ColourScale(c.steps).CouleurEchelle(t, c.mode), c.colours[static_cast<size_t>(k)]) << c.mode << ", " << k;
    }
}

TEST(CouleurEchelle, QuantisesDownAndWritesTheStepBack) {
  struct Case {
    int32_t steps;
    double t, quantised;
  };
  for (const Case& c : {Case{100, 0.379, 0.37}, Case{4, 0.99, 0.75}, Case{4, 1.0, 1.0}, Case{0, 0.5, 0.0}}) {
    double t = c.t;
    ColourScale(c.steps).CouleurEchelle(t, kGreyPalette);
    EXPECT_DOUBLE_EQ(t, c.quantised) << c.steps << " steps, " << c.t;
  }
}

TEST(CouleurEchelle, OutOfRangeTakesTheEndColoursOrOneFixedColour) {
  struct Case {
    int mode;
    bool deborde;
    double t;
    Colour colour;
  };
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const std::vector<Case> cases = {
      {kClassicalPalette, false, -0.1, 0x3264C8}, {kGreyPalette, false, 1.1, 0x3264C8},
      {kGreyPalette, false, nan, 0x3264C8},       {kClassicalPalette, true, -0.1, 0x0000FF},
      {kGreyPalette, true, -0.1, 0x000000},       {kEnhancedPalette, true, -0.1, 0x0000FF},
      {kClassicalPalette, true, 1.1, 0xFF0000},   {kEnhancedPalette, true, 1.1, 0xFFFFFF},
  };
  for (const Case& c : cases) {
    ColourScale scale(100);
    scale.DebordeOn = c.deborde;
    double t = c.t;
    EXPECT_EQ(scale.CouleurEchelle(t, c.mode), c.colour) << c.mode << ", " << c.deborde << ", " << c.t;
    EXPECT_TRUE(t == c.t || std::isnan(c.t)) << "an out-of-range value is left as it is";
  }
}

}  // namespace
}  // namespace tessiva

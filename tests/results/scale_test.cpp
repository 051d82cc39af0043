// The colour bar under the maps, painted on a recording canvas.
#include "results/scale.h"

#include <gtest/gtest.h>

#include "ui/recordingcanvas.h"

namespace tessiva {
namespace {

// A bar 100 units wide in 200 pixels: boxes start every 100 / steps and are
// 100 / (steps - 1) wide; box n takes the colour of n / (steps + 1).
TEST(PaintColourBar, RunsThroughThePaletteFromLeftToRight) {
  struct Case {
    int mode;
    int32_t steps;
    std::vector<double> lefts;
    double boxWidth;
    std::vector<Colour> colours;
  };
  const Case cases[] = {
      {kClassicalPalette, 4, {0, 25, 50, 75, 100}, 100.0 / 3, {0x0000FF, 0x00FFFF, 0x00FF32, 0xFFFF00, 0xFF0000}},
      {kGreyPalette, 4, {0, 25, 50, 75, 100}, 100.0 / 3, {0x000000, 0x404040, 0x808080, 0xBFBFBF, 0xFFFFFF}},
      // One step would make the boxes infinitely wide: the bar takes two.
      {kClassicalPalette, 1, {0, 50, 100}, 100.0, {0x0000FF, 0x00FF32, 0xFF0000}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(::testing::Message() << "palette " << c.mode << ", " << c.steps << " steps");
    RecordingCanvas bar(200, 20);
    bar.SetScale(0, 0, 100, 10);
    ColourScale palette;
    PaintColourBar(bar, palette, c.steps, c.mode);
    const auto fills = bar.OfKind("fill");
    ASSERT_EQ(fills.size(), c.colours.size());
    for (size_t k = 0; k < fills.size(); ++k) {
      EXPECT_DOUBLE_EQ(fills[k].x1, c.lefts[k]) << k;
      EXPECT_DOUBLE_EQ(fills[k].x2, c.lefts[k] + c.boxWidth) << k;
      EXPECT_EQ(fills[k].colour, c.colours[k]) << k;
    }
  }
}

}  // namespace
}  // namespace tessiva

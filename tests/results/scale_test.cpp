// The colour bar under the maps: its boxes and colours, and the isovalue
// pointer with its label.
#include "results/scale.h"

#include <gtest/gtest.h>

#include "results/analysisfixture.h"
#include "ui/pointer.h"
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
      EXPECT_EQ(fills[k].y1, 0.0);
      EXPECT_EQ(fills[k].y2, 10.0);
      EXPECT_EQ(fills[k].colour, c.colours[k]) << k;
    }
    const auto outline = bar.OfKind("box");
    ASSERT_EQ(outline.size(), 1u);
    EXPECT_EQ(outline[0].colour, 0xFFFFFFu);
    EXPECT_EQ(outline[0].x2, 100.0);
    EXPECT_EQ(bar.ops.back().kind, "refresh");
  }
}

class IsoPointer : public testing::AnalysisFixture {
 protected:
  IsoPointer() {
    bar.SetScale(0, 0, 300, 20);  // one unit a pixel
    window.IsoPic = &bar;
    window.Ranges.MaxU = 10.0;
    window.Ranges.MinU = -2.0;
    window.Ranges.MaxH1 = 5.0;
    window.Ranges.MinH1 = 1.0;
    s.UnitPX = 0.5;
  }
  RecordingCanvas bar{300, 20};
};

// The label (7 characters of 7 pixels) stands right of the line, or left of
// it by its width plus 1 where it would pass the bar's end; the release hides
// both and takes the height of the distribution anew.
TEST_F(IsoPointer, ShowsTheValueInTheDisplayUnitWithItsLabelInsideTheBar) {
  struct Case {
    int32_t view;
    double x;
    double value;
    const char* label;
    int labelLeft;
  };
  const Case cases[] = {
      {kViewU, 75, (12 * 0.25 - 2) * 0.5, "0.50E+0", 75},
      {kViewU, 280, (12 * 280.0 / 300 - 2) * 0.5, "0.46E+1", 280 - 50},
      {kViewH1, 150, 3.0, "0.30E+1", 150},
  };
  for (const Case& c : cases) {
    window.VueCourante = c.view;
    window.OnIsoPicMouseDown(kLeftButton, c.x);
    EXPECT_DOUBLE_EQ(window.IsoCourante, c.value) << c.x;
    const ControlState& label = window.Controls().Get("IsoLabel");
    EXPECT_EQ(label.text, c.label);
    EXPECT_EQ(label.left, c.labelLeft) << c.x;
    EXPECT_TRUE(label.visible);
    EXPECT_EQ(window.Controls().Get("IsoLine").left, static_cast<int>(c.x));
  }
  window.OnIsoPicMouseMove(kRightButton, 30);
  EXPECT_DOUBLE_EQ(window.IsoCourante, 3.0) << "only the left button moves the pointer";
  window.Histo[41] = 9;
  window.OnIsoPicMouseUp(kLeftButton);
  EXPECT_FALSE(window.Controls().Visible("IsoLine"));
  EXPECT_FALSE(window.Controls().Visible("IsoLabel"));
  EXPECT_EQ(window.HistoMax, 9);
}

}  // namespace
}  // namespace tessiva

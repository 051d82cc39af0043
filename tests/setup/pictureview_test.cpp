#include "setup/pictureview.h"

#include <gtest/gtest.h>

#include <tuple>

#include "ui/pointer.h"
#include "ui/recordingcanvas.h"

namespace tessiva {
namespace {

struct ViewFixture : ::testing::Test {
  GreyArray pixels;
  std::array<Colour, 256> palette{};
  ControlRegistry controls;
  RecordingCanvas canvas{400, 200};
  PictureView view{pixels, palette, controls, "Command1"};

  ViewFixture() { view.AttachCanvas(&canvas); }
  void Show(double picW, double picH, double zoom, double left, double top) {
    std::tie(view.PicW, view.PicH, view.Zoom) = std::tuple{picW, picH, zoom};
    canvas.SetScale(left, top, 1.0, 1.0);
    view.ApplyScale();
  }
  double CentreX() const { return canvas.ScaleLeft() + canvas.ScaleWidth() / 2; }
  double CentreY() const { return canvas.ScaleTop() + canvas.ScaleHeight() / 2; }
};

TEST_F(ViewFixture, ScaleFollowsTheLongerSideTheZoomAndTheViewAspect) {
  struct Case {
    double picW, picH;
    int pw, ph;
    double zoom, width, height;
  };
  const Case cases[] = {{100, 100, 400, 200, 1.0, 200, 100},   // equal sides
                        {300, 600, 200, 400, 0.5, 600, 1200},  // portrait
                        {800, 600, 300, 150, 2.0, 800, 400},   // landscape
                        {800, 600, 400, 400, 0.8, 1000, 1000}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.picW);
    canvas.Resize(c.pw, c.ph);
    Show(c.picW, c.picH, c.zoom, -7, 13);
    EXPECT_DOUBLE_EQ(canvas.ScaleWidth(), c.width);
    EXPECT_DOUBLE_EQ(canvas.ScaleHeight(), c.height);
    EXPECT_EQ(std::pair(canvas.ScaleLeft(), canvas.ScaleTop()), std::pair(-7.0, 13.0));  // the origin stays
  }
}

TEST_F(ViewFixture, PictureIsStretchedFromItsVisiblePartIntoScreenPixels) {
  pixels.Allocate(100, 80);
  struct Case {
    const char* name;
    double left, top, width, height;
    int pw, ph;
    std::array<int, 8> copy;  // source x, y, w, h, then target x, y, w, h
  };
  const Case cases[] = {
      {"left -10 at kx 2 starts 20 pixels in", -10, -10, 200, 100, 400, 200, {0, 0, 100, 80, 20, 20, 200, 160}},
      {"positive left cuts the first columns", 30, -5, 200, 100, 400, 200, {30, 0, 70, 80, 0, 10, 140, 160}},
      {"positive top cuts the first rows", -4, 20, 100, 100, 100, 300, {0, 20, 100, 60, 4, 0, 100, 180}},
      {"origin rounds half to even", -2.5, 0.5, 200, 100, 400, 200, {0, 0, 100, 80, 4, 0, 200, 160}},
      {"extent rounds half to even", -3, -3, 100.5, 100.5, 300, 300, {0, 0, 100, 80, 9, 9, 300, 240}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    canvas.ops.clear();
    canvas.Resize(c.pw, c.ph);
    canvas.SetScale(c.left, c.top, c.width, c.height);
    view.PaintPicture();
    const auto drawn = canvas.OfKind("picture");
    ASSERT_EQ(drawn.size(), 1u);
    const auto& op = drawn[0];
    EXPECT_EQ((std::array{int(op.x1), int(op.y1), int(op.x2), int(op.y2), op.dstX, op.dstY, op.dstW, op.dstH}), c.copy);
  }
  canvas.ops.clear();
  canvas.SetScale(150, 0, 200, 100);  // the picture lies wholly before the view
  view.PaintPicture();
  EXPECT_TRUE(canvas.ops.empty());
}

TEST_F(ViewFixture, ZoomSwitchClickedTwiceReturnsToFullViewWhateverTheZoomWas) {
  for (auto [button, before] : {std::pair{"Command1", 0.3}, {"Command1", 3.0}, {"Command2", 0.65}}) {
    SCOPED_TRACE(::testing::Message() << button << " from " << before);
    PictureView v(pixels, palette, controls, button);
    v.AttachCanvas(&canvas);
    v.Zoom = before;
    for (auto [caption, zoom] : {std::pair{"1:1", 0.76}, {"1:x", 1.0}}) {
      canvas.SetScale(55, 66, 300, 150);
      v.OnZoomButtonClick();
      EXPECT_EQ(controls.Text(button), caption);
      EXPECT_DOUBLE_EQ(v.Zoom, zoom);
      EXPECT_EQ(std::pair(canvas.ScaleLeft(), canvas.ScaleTop()), std::pair(-10.0, -10.0));
    }
  }
}

TEST_F(ViewFixture, CtrlLeftDragPansTheViewWithTheHand) {
  struct Case {
    const char* name;
    int button, shift;
    bool handled;
    double left, top;
  };
  const Case cases[] = {{"ctrl", kLeftButton, kCtrlKey, true, 120, 170},
                        {"no ctrl", kLeftButton, kShiftKey, false, 100, 200},
                        {"middle button", kMiddleButton, kCtrlKey, false, 100, 200}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    canvas.SetScale(100, 200, 300, 150);
    EXPECT_EQ(view.OnMouseDown(c.button, c.shift, 50, 40), c.handled);
    EXPECT_EQ(view.OnMouseMove(c.button, c.shift, 30, 70), c.handled);
    EXPECT_EQ(view.OnMouseUp(c.button, 0, 30, 70), c.handled);  // Ctrl may be let go first
    EXPECT_EQ(std::pair(canvas.ScaleLeft(), canvas.ScaleTop()), std::pair(c.left, c.top));
  }
}

TEST_F(ViewFixture, CtrlRightDragZoomsByVerticalTravelAboutTheViewCentre) {
  for (auto [travel, factor] : {std::pair{60.0, 1.2}, {0.0, 1.0}, {-150.0, 0.5}, {-270.0, 0.1}, {-600.0, 0.1}}) {
    SCOPED_TRACE(travel);
    Show(1000, 500, 1.0, 100, 50);
    const double centreX = CentreX(), centreY = CentreY();
    ASSERT_TRUE(view.OnMouseDown(kRightButton, kCtrlKey, 500, 300));
    view.OnMouseMove(kRightButton, kCtrlKey, 520, 300 + travel);
    ASSERT_TRUE(view.OnMouseUp(kRightButton, kCtrlKey, 520, 300 + travel));
    EXPECT_NEAR(view.Zoom, factor, 1e-12);
    view.ApplyScale();
    EXPECT_NEAR(canvas.ScaleWidth(), 2000 / factor, 1e-9);
    EXPECT_NEAR(CentreX(), centreX, 1e-9);
    EXPECT_NEAR(CentreY(), centreY, 1e-9);
  }
}

}  // namespace
}  // namespace tessiva

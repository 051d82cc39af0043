#include "setup/pictureview.h"

#include <algorithm>
#include <utility>

#include "state/numtext.h"
#include "ui/pointer.h"

namespace tessiva {
namespace {

constexpr double kLoadZoom = 0.65;
// The zoom switch's two settings; both put the scale origin ten picture pixels
// before the picture's top left corner, leaving a margin.
constexpr double kOneToOneZoom = 0.76;
constexpr double kFitZoom = 1.0;
constexpr double kSwitchOrigin = -10.0;
// A Ctrl right drag adds 1 to the zoom factor for every kZoomTravel scale units
// the pointer moves down (and takes it off moving up), never below kMinZoomFactor.
constexpr double kZoomTravel = 300.0;
constexpr double kMinZoomFactor = 0.1;

// One axis of the stretching copy, in picture pixels (source) and screen pixels (target).
struct Span {
  int source = 0;
  int sourceLength = 0;
  int target = 0;
  int targetLength = 0;
};

// A positive origin cuts the picture's first `origin` pixels off; otherwise the
// picture starts -origin scale units, k screen pixels each, into the view.
Span StretchSpan(int origin, int natural, double k) {
  Span span;
  if (origin > 0) {
    span.source = origin;
    span.sourceLength = natural - origin;
  } else {
    span.sourceLength = natural;
    span.target = -RoundToInt32(k * origin);
  }
  span.targetLength = RoundToInt32(k * span.sourceLength);
  return span;
}

}  // namespace

PictureView::PictureView(const GreyArray& pixels, const std::array<Colour, 256>& palette, ControlRegistry& controls,
                         std::string zoomButton)
    : pixels_(pixels), palette_(palette), controls_(controls), zoomButton_(std::move(zoomButton)) {}

void PictureView::ApplyScale() {
  const double longer = PicW <= PicH ? PicH : PicW;
  // A hidden view, or no picture yet, keeps the scale it has.
  if (!canvas_ || canvas_->PixelWidth() <= 0 || canvas_->PixelHeight() <= 0 || longer <= 0.0 || Zoom <= 0.0) return;
  const double aspect = static_cast<double>(canvas_->PixelWidth()) / canvas_->PixelHeight();
  const double height = longer / Zoom;
  canvas_->SetScale(canvas_->ScaleLeft(), canvas_->ScaleTop(), aspect * height, height);
}

void PictureView::PaintPicture() {
  if (!canvas_ || pixels_.Empty()) return;
  Canvas& c = *canvas_;
  const int sw = RoundToInt32(c.ScaleWidth());
  const int sh = RoundToInt32(c.ScaleHeight());
  if (sw <= 0 || sh <= 0) return;
  const double kx = static_cast<double>(c.PixelWidth()) / sw;
  const double ky = static_cast<double>(c.PixelHeight()) / sh;
  // The arrays hold one column and one row beyond the picture.
  const Span x = StretchSpan(RoundToInt32(c.ScaleLeft()), pixels_.UpperX(), kx);
  const Span y = StretchSpan(RoundToInt32(c.ScaleTop()), pixels_.UpperY(), ky);
  if (x.sourceLength <= 0 || y.sourceLength <= 0) return;  // the picture lies wholly before the view
  const IndexedPicture picture{pixels_.Data(), pixels_.UpperX(), pixels_.UpperY(), pixels_.Stride(), palette_.data()};
  c.DrawPicture(picture, x.source, y.source, x.sourceLength, y.sourceLength, x.target, y.target, x.targetLength,
                y.targetLength);
}

// The caption holds the switch's state.
void PictureView::OnZoomButtonClick() {
  const bool toOneToOne = controls_.Text(zoomButton_) != "1:1";
  controls_.SetText(zoomButton_, toOneToOne ? "1:1" : "1:x");
  Zoom = toOneToOne ? kOneToOneZoom : kFitZoom;
  SetOrigin(kSwitchOrigin, kSwitchOrigin);
}

void PictureView::CentreForLoad() {
  Zoom = kLoadZoom;
  if (!canvas_) return;
  ApplyScale();
  SetOrigin((PicW - canvas_->ScaleWidth()) / 2.0, (PicH - canvas_->ScaleHeight()) / 2.0);
}

void PictureView::SetOrigin(double left, double top) {
  if (canvas_) canvas_->SetScale(left, top, canvas_->ScaleWidth(), canvas_->ScaleHeight());
}

bool PictureView::OnMouseDown(int button, int shift, double x, double y) {
  if (dragButton_ != 0) return true;
  if (!canvas_ || !(shift & kCtrlKey) || (button != kLeftButton && button != kRightButton)) return false;
  dragButton_ = button;
  pressX_ = x;
  pressY_ = y;
  pressWidth_ = canvas_->ScaleWidth();
  pressHeight_ = canvas_->ScaleHeight();
  zoomFactor_ = 1.0;
  return true;
}

// While zooming, a frame of the extent the view will show follows the pointer.
bool PictureView::OnMouseMove(int, int, double x, double y) {
  if (dragButton_ != kRightButton) return dragButton_ != 0;
  zoomFactor_ = std::max(kMinZoomFactor, 1.0 + (y - pressY_) / kZoomTravel);
  const double halfW = pressWidth_ / zoomFactor_ / 2.0;
  const double halfH = pressHeight_ / zoomFactor_ / 2.0;
  const Frame frame{x - halfW, y - halfH, x + halfW, y + halfH};
  EraseRubberFrame();
  ToggleRubberFrame(frame);
  rubberFrame_ = frame;
  return true;
}

// The drag ends with the button that began it, whether Ctrl is still held or not.
bool PictureView::OnMouseUp(int button, int, double x, double y) {
  if (dragButton_ == 0 || button != dragButton_) return false;
  dragButton_ = 0;
  if (button == kLeftButton)
    FinishPan(x, y);
  else
    FinishZoom();
  return true;
}

// Drawing in XOR mode twice at one place restores what was under the frame.
void PictureView::ToggleRubberFrame(const Frame& frame) {
  canvas_->SetDrawMode(DrawMode::XorPen);
  canvas_->Box(frame.x1, frame.y1, frame.x2, frame.y2, QBColor(15));
  canvas_->SetDrawMode(DrawMode::CopyPen);
}

void PictureView::EraseRubberFrame() {
  if (rubberFrame_) ToggleRubberFrame(*rubberFrame_);
  rubberFrame_.reset();
}

// The picture follows the hand.
void PictureView::FinishPan(double x, double y) {
  SetOrigin(canvas_->ScaleLeft() + pressX_ - x, canvas_->ScaleTop() + pressY_ - y);
}

// The new extent is the old one over the factor; moving the origin by half the
// difference keeps the view's centre in place.
void PictureView::FinishZoom() {
  EraseRubberFrame();
  Zoom *= zoomFactor_;
  SetOrigin(canvas_->ScaleLeft() + (pressWidth_ - pressWidth_ / zoomFactor_) / 2.0,
            canvas_->ScaleTop() + (pressHeight_ - pressHeight_ / zoomFactor_) / 2.0);
}

}  // namespace tessiva

#include "ui/canvas.h"


namespace tessiva {

void Canvas::SetScale(double left, double top, double width, double height) {
  left_ = left;
  top_ = top;
  width_ = width;
  height_ = height;
}

double Canvas::ToUserX(double px) const { return left_ + px * width_ / PixelWidth(); }
double Canvas::ToUserY(double py) const { return top_ + py * height_ / PixelHeight(); }
double Canvas::ToPixelX(double x) const { return (x - left_) * PixelWidth() / width_; }
double Canvas::ToPixelY(double y) const { return (y - top_) * PixelHeight() / height_; }

void Canvas::Boxes(std::span<const CanvasBox> boxes) {
  for (const CanvasBox& b : boxes) Box(b.x1, b.y1, b.x2, b.y2, b.colour);
}

void Canvas::FilledBoxes(std::span<const CanvasBox> boxes) {
  for (const CanvasBox& b : boxes) FilledBox(b.x1, b.y1, b.x2, b.y2, b.colour);
}

}  // namespace tessiva

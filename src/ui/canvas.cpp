#include "ui/canvas.h"

#include <array>

namespace tessiva {

Colour QBColor(int code) {
  static constexpr std::array<Colour, 16> kTable = {
      0x000000, 0x000080, 0x008000, 0x008080, 0x800000, 0x800080, 0x808000, 0xC0C0C0,
      0x808080, 0x0000FF, 0x00FF00, 0x00FFFF, 0xFF0000, 0xFF00FF, 0xFFFF00, 0xFFFFFF};
  return kTable[static_cast<size_t>(code & 15)];
}

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

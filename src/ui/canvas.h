// A drawing surface in its own user scale: the logic draws in picture pixels
// (or any scale it sets) and the surface maps them to its screen pixels.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "state/colour.h"

namespace tessiva {

enum class DrawMode { CopyPen, XorPen, Invert };

// A grey-level picture as stored by the picture store: 32-bit elements, x
// fastest, `stride` elements a row, with its palette for display.
struct IndexedPicture {
  const int32_t* pixels = nullptr;
  int width = 0;
  int height = 0;
  int stride = 0;
  const Colour* palette = nullptr;  // 256 entries
};

// One box of a batch, corners in user units.
struct CanvasBox {
  double x1 = 0, y1 = 0, x2 = 0, y2 = 0;
  Colour colour = 0;
};

class Canvas {
 public:
  virtual ~Canvas() = default;

  // Size of the surface in screen pixels.
  virtual int PixelWidth() const = 0;
  virtual int PixelHeight() const = 0;

  void SetScale(double left, double top, double width, double height);
  double ScaleLeft() const { return left_; }
  double ScaleTop() const { return top_; }
  double ScaleWidth() const { return width_; }
  double ScaleHeight() const { return height_; }

  // Screen pixels to user units and back.
  double ToUserX(double px) const;
  double ToUserY(double py) const;
  double ToPixelX(double x) const;
  double ToPixelY(double y) const;

  virtual void Line(double x1, double y1, double x2, double y2, Colour colour) = 0;
  virtual void Box(double x1, double y1, double x2, double y2, Colour colour) = 0;
  virtual void FilledBox(double x1, double y1, double x2, double y2, Colour colour) = 0;
  // Many boxes in one call, drawn in order. A surface may override these to
  // draw a whole batch at once; by default each box is drawn on its own.
  virtual void Boxes(std::span<const CanvasBox> boxes);
  virtual void FilledBoxes(std::span<const CanvasBox> boxes);
  virtual void Circle(double cx, double cy, double radius, Colour colour) = 0;
  virtual void Point(double x, double y, Colour colour) = 0;
  virtual void Text(double x, double y, const std::string& text, Colour colour) = 0;
  // Size of a text in user units.
  virtual double TextWidth(const std::string& text) const = 0;
  virtual double TextHeight(const std::string& text) const = 0;
  virtual void SetDrawWidth(int pixels) = 0;
  virtual int DrawWidth() const = 0;
  virtual void SetDrawMode(DrawMode mode) = 0;
  virtual void Clear() = 0;
  virtual void Refresh() = 0;
  // Copies the source rectangle of the picture, stretched without blending,
  // into the target rectangle given in screen pixels.
  virtual void DrawPicture(const IndexedPicture& picture, int srcX, int srcY, int srcW, int srcH, int dstX, int dstY,
                           int dstW, int dstH) = 0;

 private:
  double left_ = 0.0, top_ = 0.0, width_ = 1.0, height_ = 1.0;
};

// Gives a canvas back the draw width it had, when a drawing that sets its own ends.
class KeptDrawWidth {
 public:
  explicit KeptDrawWidth(Canvas* canvas) : canvas_(canvas), width_(canvas ? canvas->DrawWidth() : 1) {}
  ~KeptDrawWidth() {
    if (canvas_) canvas_->SetDrawWidth(width_);
  }
  KeptDrawWidth(const KeptDrawWidth&) = delete;
  KeptDrawWidth& operator=(const KeptDrawWidth&) = delete;

 private:
  Canvas* canvas_;
  int width_;
};

}  // namespace tessiva

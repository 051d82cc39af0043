// A canvas that draws nothing and records every operation, for tests.
#pragma once

#include <string>
#include <vector>

#include "ui/canvas.h"

namespace tessiva {

class RecordingCanvas : public Canvas {
 public:
  struct Op {
    std::string kind;  // "line", "box", "fill", "circle", "point", "text", "clear", "refresh", "picture"
    double x1 = 0, y1 = 0, x2 = 0, y2 = 0;  // for "picture": source x, y, w, h
    Colour colour = 0;
    std::string text;
    int dstX = 0, dstY = 0, dstW = 0, dstH = 0;  // "picture" only
  };

  RecordingCanvas(int pixelWidth, int pixelHeight) : pixelWidth_(pixelWidth), pixelHeight_(pixelHeight) {}

  std::vector<Op> ops;
  int drawWidth = 1;
  DrawMode drawMode = DrawMode::CopyPen;

  // The operations of one kind, in order.
  std::vector<Op> OfKind(const std::string& kind) const;

  int PixelWidth() const override { return pixelWidth_; }
  int PixelHeight() const override { return pixelHeight_; }
  void Resize(int pixelWidth, int pixelHeight) {
    pixelWidth_ = pixelWidth;
    pixelHeight_ = pixelHeight;
  }

  void Line(double x1, double y1, double x2, double y2, Colour colour) override;
  void Box(double x1, double y1, double x2, double y2, Colour colour) override;
  void FilledBox(double x1, double y1, double x2, double y2, Colour colour) override;
  void Circle(double cx, double cy, double radius, Colour colour) override;
  void Point(double x, double y, Colour colour) override;
  void Text(double x, double y, const std::string& text, Colour colour) override;
  double TextWidth(const std::string& text) const override;
  double TextHeight(const std::string& text) const override;
  void SetDrawWidth(int pixels) override { drawWidth = pixels; }
  int DrawWidth() const override { return drawWidth; }
  void SetDrawMode(DrawMode mode) override { drawMode = mode; }
  void Clear() override { ops.push_back({"clear"}); }
  void Refresh() override { ops.push_back({"refresh"}); }
  void DrawPicture(const IndexedPicture& picture, int srcX, int srcY, int srcW, int srcH, int dstX, int dstY, int dstW,
                   int dstH) override;

 private:
  int pixelWidth_;
  int pixelHeight_;
};

}  // namespace tessiva

// A Canvas over a QImage, drawn with QPainter: the surface of the desktop
// program's picture views and of pictures written to PNG files.
#pragma once

#include <QFont>
#include <QImage>
#include <functional>

#include "ui/canvas.h"

namespace tessiva {

class QImageCanvas : public Canvas {
 public:
  QImageCanvas(int width, int height, Colour background = 0xFFFFFF);

  const QImage& Image() const { return image_; }
  // Called by Refresh, so that a window showing the image can repaint it.
  std::function<void()> onRefresh;

  int PixelWidth() const override { return image_.width(); }
  int PixelHeight() const override { return image_.height(); }

  void Line(double x1, double y1, double x2, double y2, Colour colour) override;
  // Boxes, outlined or filled, cover the pixels of both corners. A batch of
  // outlines is drawn with one painter; filled boxes in copy mode are written
  // straight into the pixel rows.
  void Box(double x1, double y1, double x2, double y2, Colour colour) override;
  void FilledBox(double x1, double y1, double x2, double y2, Colour colour) override;
  void Boxes(std::span<const CanvasBox> boxes) override;
  void FilledBoxes(std::span<const CanvasBox> boxes) override;
  // The radius is measured along the x axis of the user scale.
  void Circle(double cx, double cy, double radius, Colour colour) override;
  void Point(double x, double y, Colour colour) override;
  // The text's top left corner is at (x, y).
  void Text(double x, double y, const std::string& text, Colour colour) override;
  double TextWidth(const std::string& text) const override;
  double TextHeight(const std::string& text) const override;
  void SetDrawWidth(int pixels) override { drawWidth_ = pixels < 1 ? 1 : pixels; }
  int DrawWidth() const override { return drawWidth_; }
  void SetDrawMode(DrawMode mode) override { drawMode_ = mode; }
  void Clear() override;
  void Refresh() override;
  // A source rectangle not wholly inside the picture draws nothing.
  void DrawPicture(const IndexedPicture& picture, int srcX, int srcY, int srcW, int srcH, int dstX, int dstY,
                   int dstW, int dstH) override;

 private:
  // Runs `draw` with a painter set to the draw mode, the draw width and the colour.
  template <typename Draw>
  void Paint(Colour colour, Draw&& draw);
  QPoint PixelAt(double x, double y) const;
  QRect PixelCorners(double x1, double y1, double x2, double y2) const;

  QImage image_;
  QFont font_;
  Colour background_;
  int drawWidth_ = 1;
  DrawMode drawMode_ = DrawMode::CopyPen;
};

}  // namespace tessiva

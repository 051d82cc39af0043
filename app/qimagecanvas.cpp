#include "qimagecanvas.h"

#include <QFontMetricsF>
#include <QPainter>
#include <algorithm>
#include <cmath>

namespace tessiva {
namespace {

// Raster operations need an opaque 32-bit target; Invert ignores the colour.
QPainter::CompositionMode CompositionFor(DrawMode mode) {
  switch (mode) {
    case DrawMode::XorPen: return QPainter::RasterOp_SourceXorDestination;
    case DrawMode::Invert: return QPainter::RasterOp_NotDestination;
    case DrawMode::CopyPen: break;
  }
  return QPainter::CompositionMode_SourceOver;
}

// Formats whose pixels are one 32-bit 0xAARRGGBB word, where an opaque colour
// is written as is.
bool HoldsOpaqueRgb32(QImage::Format format) {
  return format == QImage::Format_RGB32 || format == QImage::Format_ARGB32 ||
         format == QImage::Format_ARGB32_Premultiplied;
}

// The source rectangle as an 8-bit indexed picture with the picture's palette.
QImage IndexedRegion(const IndexedPicture& picture, const QRect& source) {
  QImage region(source.size(), QImage::Format_Indexed8);
  QList<QRgb> table(256);
  for (int i = 0; i < 256; ++i) table[i] = 0xFF000000u | picture.palette[i];
  region.setColorTable(table);
  for (int y = 0; y < source.height(); ++y) {
    const int32_t* from = picture.pixels + static_cast<ptrdiff_t>(source.y() + y) * picture.stride + source.x();
    uchar* to = region.scanLine(y);
    for (int x = 0; x < source.width(); ++x) to[x] = static_cast<uchar>(std::clamp(from[x], 0, 255));
  }
  return region;
}

}  // namespace

QImageCanvas::QImageCanvas(int width, int height, Colour background)
    : image_(std::max(width, 1), std::max(height, 1), QImage::Format_RGB32), background_(background) {
  Clear();
}

template <typename Draw>
void QImageCanvas::Paint(Colour colour, Draw&& draw) {
  QPainter painter(&image_);
  painter.setCompositionMode(CompositionFor(drawMode_));
  painter.setPen(QPen(QColor::fromRgb(colour), drawWidth_));
  painter.setFont(font_);
  draw(painter);
}

// Far outside the surface (or not a number) a coordinate is held to a pixel
// well outside it, so that the conversion to int stays defined.
QPoint QImageCanvas::PixelAt(double x, double y) const {
  static constexpr double kFar = 1 << 24;
  const auto held = [](double p) { return std::isnan(p) ? -kFar : std::clamp(p, -kFar, kFar); };
  return {qRound(held(ToPixelX(x))), qRound(held(ToPixelY(y)))};
}

QRect QImageCanvas::PixelCorners(double x1, double y1, double x2, double y2) const {
  // Not QRect::normalized(): on swapping corners it drops the first and last pixels.
  const QPoint a = PixelAt(x1, y1), b = PixelAt(x2, y2);
  return QRect(QPoint(std::min(a.x(), b.x()), std::min(a.y(), b.y())),
               QPoint(std::max(a.x(), b.x()), std::max(a.y(), b.y())));
}

void QImageCanvas::Line(double x1, double y1, double x2, double y2, Colour colour) {
  Paint(colour, [&](QPainter& p) { p.drawLine(PixelAt(x1, y1), PixelAt(x2, y2)); });
}

void QImageCanvas::Box(double x1, double y1, double x2, double y2, Colour colour) {
  const CanvasBox box{x1, y1, x2, y2, colour};
  Boxes({&box, 1});
}

void QImageCanvas::FilledBox(double x1, double y1, double x2, double y2, Colour colour) {
  const CanvasBox box{x1, y1, x2, y2, colour};
  FilledBoxes({&box, 1});
}

void QImageCanvas::Boxes(std::span<const CanvasBox> boxes) {
  Paint(0, [&](QPainter& p) {
    for (const CanvasBox& b : boxes) {
      p.setPen(QPen(QColor::fromRgb(b.colour), drawWidth_));
      // An outline drawn round a QRect covers one more column and row than the rectangle.
      p.drawRect(PixelCorners(b.x1, b.y1, b.x2, b.y2).adjusted(0, 0, -1, -1));
    }
  });
}

void QImageCanvas::FilledBoxes(std::span<const CanvasBox> boxes) {
  // XOR and invert are raster operations: QPainter does them.
  if (drawMode_ != DrawMode::CopyPen || !HoldsOpaqueRgb32(image_.format())) {
    Paint(0, [&](QPainter& p) {
      for (const CanvasBox& b : boxes) p.fillRect(PixelCorners(b.x1, b.y1, b.x2, b.y2), QColor::fromRgb(b.colour));
    });
    return;
  }
  // A field map sends up to a million squares at a time, so copied boxes are
  // written straight into the pixel rows, giving the pixels QPainter's fillRect gives.
  uchar* const bits = image_.bits();  // detaches the image once, not once a row
  const qsizetype rowBytes = image_.bytesPerLine();
  const QRect bounds = image_.rect();
  for (const CanvasBox& b : boxes) {
    const QRect r = PixelCorners(b.x1, b.y1, b.x2, b.y2).intersected(bounds);
    if (r.isEmpty()) continue;
    const QRgb value = 0xFF000000u | b.colour;  // like QColor::fromRgb, the top byte is ignored
    for (int y = r.top(); y <= r.bottom(); ++y)
      std::fill_n(reinterpret_cast<QRgb*>(bits + y * rowBytes) + r.left(), r.width(), value);
  }
}

void QImageCanvas::Circle(double cx, double cy, double radius, Colour colour) {
  const double r = std::abs(radius * PixelWidth() / ScaleWidth());
  Paint(colour, [&](QPainter& p) { p.drawEllipse(QPointF(PixelAt(cx, cy)), r, r); });
}

void QImageCanvas::Point(double x, double y, Colour colour) {
  Paint(colour, [&](QPainter& p) { p.drawPoint(PixelAt(x, y)); });
}

void QImageCanvas::Text(double x, double y, const std::string& text, Colour colour) {
  const QFontMetricsF metrics(font_);
  Paint(colour, [&](QPainter& p) {
    p.drawText(QPointF(PixelAt(x, y)) + QPointF(0.0, metrics.ascent()), QString::fromStdString(text));
  });
}

double QImageCanvas::TextWidth(const std::string& text) const {
  return QFontMetricsF(font_).horizontalAdvance(QString::fromStdString(text)) * ScaleWidth() / PixelWidth();
}

double QImageCanvas::TextHeight(const std::string&) const {
  return QFontMetricsF(font_).height() * ScaleHeight() / PixelHeight();
}

void QImageCanvas::Clear() { image_.fill(QColor::fromRgb(background_)); }

void QImageCanvas::Refresh() {
  if (onRefresh) onRefresh();
}

void QImageCanvas::DrawPicture(const IndexedPicture& picture, int srcX, int srcY, int srcW, int srcH, int dstX,
                               int dstY, int dstW, int dstH) {
  const QRect source(srcX, srcY, srcW, srcH);
  if (!picture.pixels || !picture.palette || source.isEmpty() || dstW <= 0 || dstH <= 0 ||
      !QRect(0, 0, picture.width, picture.height).contains(source))
    return;
  QPainter painter(&image_);
  // A plain copy, stretched by repeating pixels: grey levels must not blend.
  painter.setCompositionMode(QPainter::CompositionMode_Source);
  painter.setRenderHint(QPainter::SmoothPixmapTransform, false);
  painter.drawImage(QRect(dstX, dstY, dstW, dstH), IndexedRegion(picture, source));
}

}  // namespace tessiva

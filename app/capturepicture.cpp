#include "capturepicture.h"

#include <QBuffer>
#include <QByteArray>
#include <QFont>
#include <QFontMetrics>
#include <QPainter>
#include <algorithm>

#include "qimagecanvas.h"
#include "state/files.h"

namespace tessiva {
namespace {

const QImage* ImageOf(const Canvas* surface) {
  const auto* canvas = dynamic_cast<const QImageCanvas*>(surface);
  return canvas && !canvas->Image().isNull() ? &canvas->Image() : nullptr;
}

QRect Q(const CaptureRect& r) { return {r.left, r.top, r.width, r.height}; }
QColor Q(Colour colour) { return QColor::fromRgb(static_cast<QRgb>(0xFF000000u | colour)); }
QString Q(const std::string& text) { return QString::fromStdString(text); }

// A plain copy of the surface's top left part, as much of it as the rectangle holds.
void CopyPart(QPainter& p, const QImage& source, const CaptureRect& target) {
  const QRect part(0, 0, std::min(source.width(), target.width), std::min(source.height(), target.height));
  p.drawImage(QPoint(target.left, target.top), source, part);
}

// The frame's caption, the bar stretched over its place, a tick under each
// label's place and the label centred on it, kept inside the bar.
void DrawLegend(QPainter& p, const CaptureLegend& legend, const QImage* bar, const CaptureLegendTexts& texts) {
  p.fillRect(Q(legend.frame), Q(texts.paper));
  QFont font;
  font.setPixelSize(std::max(8, legend.caption.height - 3));
  const QFontMetrics metrics(font);
  p.setFont(font);
  p.setPen(Q(texts.ink));
  p.drawText(Q(legend.caption), Qt::AlignLeft | Qt::AlignVCenter, Q(texts.caption));
  if (bar) p.drawImage(Q(legend.bar), *bar);
  const int tick = std::max(1, legend.labelTop - legend.bar.Bottom());
  for (size_t j = 0; j < texts.labels.size(); ++j) {
    const int at = legend.labelX[j];
    p.drawLine(at, legend.bar.Bottom(), at, legend.bar.Bottom() + tick - 1);
    const QString label = Q(texts.labels[j]);
    const int width = metrics.horizontalAdvance(label);
    const int left = std::clamp(at - width / 2, legend.bar.left, std::max(legend.bar.left, legend.bar.Right() - width));
    p.drawText(QRect(left, legend.labelTop, width, legend.labelHeight), Qt::AlignLeft | Qt::AlignVCenter, label);
  }
}

}  // namespace

std::optional<RgbImage> QtCapture::Compose(const CaptureLayout& layout, const CaptureSurfaces& surfaces,
                                           const CaptureLegendTexts& legend) {
  const QImage* map = ImageOf(surfaces.map);
  if (!map || layout.width < 1 || layout.height < 1) return std::nullopt;
  QImage picture(layout.width, layout.height, QImage::Format_RGB32);
  if (picture.isNull()) return std::nullopt;
  picture.fill(Q(legend.paper));
  {
    QPainter p(&picture);
    CopyPart(p, *map, layout.map);
    const QImage* axes = ImageOf(surfaces.axes);
    if (layout.axes && axes) CopyPart(p, *axes, *layout.axes);
    const QImage* graph = ImageOf(surfaces.graph);
    if (layout.graph && graph) CopyPart(p, *graph, *layout.graph);
    DrawLegend(p, layout.legend, ImageOf(surfaces.bar), legend);
  }
  return ToRgbImage(picture);
}

bool QtCapture::Save(const RgbImage& picture, const std::string& path) {
  const auto bytes = EncodedPicture(ToQImage(picture), NamesPng(path) ? "PNG" : "BMP");
  return bytes && WriteFileAtomically(path, *bytes);
}

QImage ToQImage(const RgbImage& picture) {
  if (picture.width <= 0 || picture.height <= 0 ||
      picture.pixels.size() < static_cast<size_t>(picture.width) * static_cast<size_t>(picture.height))
    return {};
  QImage image(picture.width, picture.height, QImage::Format_RGB32);
  if (image.isNull()) return image;
  const uint32_t* source = picture.pixels.data();
  for (int y = 0; y < picture.height; ++y) {
    auto* row = reinterpret_cast<QRgb*>(image.scanLine(y));
    for (int x = 0; x < picture.width; ++x) row[x] = 0xFF000000u | *source++;
  }
  return image;
}

RgbImage ToRgbImage(const QImage& image) {
  const QImage rgb = image.convertToFormat(QImage::Format_RGB32);
  RgbImage picture{rgb.width(), rgb.height(), {}};
  picture.pixels.reserve(static_cast<size_t>(rgb.width()) * static_cast<size_t>(rgb.height()));
  for (int y = 0; y < rgb.height(); ++y) {
    const auto* row = reinterpret_cast<const QRgb*>(rgb.constScanLine(y));
    for (int x = 0; x < rgb.width(); ++x) picture.pixels.push_back(row[x] & 0xFFFFFFu);
  }
  return picture;
}

std::optional<std::string> EncodedPicture(const QImage& picture, const char* format) {
  QByteArray bytes;
  QBuffer buffer(&bytes);
  if (picture.isNull() || !buffer.open(QIODevice::WriteOnly) || !picture.save(&buffer, format)) return std::nullopt;
  return std::string(bytes.constData(), static_cast<size_t>(bytes.size()));
}

}  // namespace tessiva

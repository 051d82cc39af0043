#include "ui/capturelayout.h"

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <string_view>

namespace tessiva {
namespace {

// The legend's rows: the caption, the bar, the labels.
constexpr int kCaptionHeight = 14;
constexpr int kBarHeight = 40;
constexpr int kLabelGap = 2;

CaptureLegend LayOutLegend(int top, int scale) {
  CaptureLegend legend;
  legend.frame = {0, top, kCaptureLegendWidth * scale, kCaptureLegendHeight * scale};
  legend.caption = {4 * scale, top, legend.frame.width - 8 * scale, kCaptionHeight * scale};
  legend.bar = {0, legend.caption.Bottom(), legend.frame.width, kBarHeight * scale};
  legend.labelTop = legend.bar.Bottom() + kLabelGap * scale;
  legend.labelHeight = legend.frame.Bottom() - legend.labelTop;
  for (int j = 0; j < 5; ++j) legend.labelX[j] = legend.bar.left + (legend.bar.width - 1) * j / 4;
  return legend;
}

}  // namespace

bool NamesPng(const std::string& path) {
  constexpr std::string_view kPng = ".png";
  if (path.size() < kPng.size()) return false;
  return std::equal(kPng.begin(), kPng.end(), path.end() - static_cast<std::ptrdiff_t>(kPng.size()),
                    [](char a, char b) { return a == std::tolower(static_cast<unsigned char>(b)); });
}

CaptureLayout LayOutCapture(int mapWidth, int mapHeight, bool withAxes, std::optional<CaptureRect> graphSize,
                            int scale, bool trimFrame) {
  scale = std::max(1, scale);
  const int trimX = trimFrame ? kCaptureMapTrimX : 0, trimY = trimFrame ? kCaptureMapTrimY : 0;
  CaptureLayout layout;
  layout.map = {0, 0, std::max(1, mapWidth - trimX), std::max(1, mapHeight - trimY)};
  if (withAxes) layout.axes = CaptureRect{0, 0, kCaptureAxesSide, kCaptureAxesSide};
  layout.legend = LayOutLegend(layout.map.Bottom(), scale);
  layout.width = std::max(layout.map.width, layout.legend.frame.width);
  layout.height = layout.legend.frame.Bottom();
  if (graphSize && graphSize->width > kCaptureMapTrimY && graphSize->height > kCaptureMapTrimY) {
    layout.graph = CaptureRect{layout.width, 0, graphSize->width - kCaptureMapTrimY,
                               graphSize->height - kCaptureMapTrimY};
    layout.width = layout.graph->Right();
    layout.height = std::max(layout.height, layout.graph->Bottom());
  }
  return layout;
}

}  // namespace tessiva

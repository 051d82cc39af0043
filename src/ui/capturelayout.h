// The layout of a capture of the analysis window, and the port that joins
// the window's surfaces into one picture and writes picture files: the
// logic decides where each part goes, the platform copies the pixels.
#pragma once

#include <array>
#include <optional>
#include <string>

#include "state/colour.h"
#include "ui/canvas.h"
#include "ui/uiport.h"

namespace tessiva {

struct CaptureRect {
  int left = 0;
  int top = 0;
  int width = 0;
  int height = 0;
  int Right() const { return left + width; }
  int Bottom() const { return top + height; }
};

// The frame CadreIso as the capture shows it: its caption over the bar, the
// five range labels under the bar, each centred on its tick.
struct CaptureLegend {
  CaptureRect frame;
  CaptureRect caption;
  CaptureRect bar;
  // Where label j stands: its tick's x and the top of its line.
  std::array<int, 5> labelX{};
  int labelTop = 0;
  int labelHeight = 0;
};

// The picture's parts, in its pixels. The map's own top left part lands at
// 0, 0; the axes over its corner; the legend below the map; the graph at
// its right.
struct CaptureLayout {
  int width = 0;
  int height = 0;
  CaptureRect map;
  std::optional<CaptureRect> axes;
  CaptureLegend legend;
  std::optional<CaptureRect> graph;
};

// True for a file name ending in ".png", in any case: captures saved under
// such a name are PNG pictures, BMP otherwise.
bool NamesPng(const std::string& path);

// The sizes the window's parts are copied at.
inline constexpr int kCaptureAxesSide = 46;
inline constexpr int kCaptureLegendWidth = 318;
inline constexpr int kCaptureLegendHeight = 71;
// The map's frame band and the graph panel's border, left out of a window's capture.
inline constexpr int kCaptureMapTrimX = 8;
inline constexpr int kCaptureMapTrimY = 4;

// The layout for a map of mapWidth x mapHeight pixels, the axes when shown,
// and a graph panel of that size when shown. A map narrower than the legend
// leaves room for the whole legend. `scale` enlarges the legend, for maps
// large enough to be looked at shrunk. `trimFrame` leaves the window map's
// frame band out, as the window's captures do.
CaptureLayout LayOutCapture(int mapWidth, int mapHeight, bool withAxes, std::optional<CaptureRect> graphSize,
                            int scale = 1, bool trimFrame = true);

// What the legend shows, and in which colours.
struct CaptureLegendTexts {
  std::string caption;
  std::array<std::string, 5> labels;
  Colour ink = 0x000000;
  Colour paper = 0xFFFFFF;
};

// The surfaces the picture is made of; the axes and the graph may be absent.
struct CaptureSurfaces {
  const Canvas* map = nullptr;
  const Canvas* axes = nullptr;
  const Canvas* bar = nullptr;
  const Canvas* graph = nullptr;
};

// The platform's side of a capture.
class CapturePort {
 public:
  virtual ~CapturePort() = default;
  // Joins the surfaces as the layout places them and draws the legend's
  // texts; nothing when a surface isn't one this port can read.
  virtual std::optional<RgbImage> Compose(const CaptureLayout& layout, const CaptureSurfaces& surfaces,
                                          const CaptureLegendTexts& legend) = 0;
  // Writes the picture, replacing any file of that name: PNG for a name
  // ending in ".png" (any case), BMP otherwise. False when it can't be written.
  virtual bool Save(const RgbImage& picture, const std::string& path) = 0;
};

}  // namespace tessiva

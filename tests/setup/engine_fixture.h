// A headless setup window with recording views, and synthetic speckle
// pictures with a known whole-pixel displacement, for the engine's tests.
#pragma once

#include <algorithm>
#include <cmath>
#include <random>
#include <string>
#include <tuple>
#include <vector>

#include "setup/areaform.h"
#include "setup/picture.h"
#include "support/tempdir.h"
#include "ui/recordingcanvas.h"
#include "ui/scriptedui.h"

namespace tessiva::testing {

// Grey levels, row by row from the top, of Gaussian spots on mid-grey sampled
// at whole pixels and moved by (du, dv). Spot centres lie on eighths of a
// pixel, so a moved picture is the unmoved one shifted, to the last bit. Spots
// cover a margin of 160 pixels round the picture.
inline std::vector<uint8_t> SpeckleLevels(int32_t width, int32_t height, int32_t du = 0, int32_t dv = 0,
                                          uint32_t seed = 7) {
  constexpr int32_t kMargin = 160;
  std::mt19937 rng(seed);
  std::uniform_int_distribution<int32_t> eighthX(-8 * kMargin, 8 * (width + kMargin));
  std::uniform_int_distribution<int32_t> eighthY(-8 * kMargin, 8 * (height + kMargin));
  std::uniform_real_distribution<double> sigma(1.2, 2.4), amplitude(-110.0, 110.0);
  std::vector<double> field(static_cast<size_t>(width) * height, 128.0);
  for (int64_t n = int64_t{width + 2 * kMargin} * (height + 2 * kMargin) / 10; n > 0; --n) {
    const double x0 = eighthX(rng) / 8.0 + du, y0 = eighthY(rng) / 8.0 + dv;
    const double s = sigma(rng), a = amplitude(rng), reach = 3 * s;
    const int32_t xTo = std::min(width - 1, static_cast<int32_t>(std::floor(x0 + reach)));
    const int32_t yTo = std::min(height - 1, static_cast<int32_t>(std::floor(y0 + reach)));
    for (int32_t y = std::max(0, static_cast<int32_t>(std::ceil(y0 - reach))); y <= yTo; ++y)
      for (int32_t x = std::max(0, static_cast<int32_t>(std::ceil(x0 - reach))); x <= xTo; ++x)
        field[static_cast<size_t>(y) * width + x] +=
            a * std::exp(-((x - x0) * (x - x0) + (y - y0) * (y - y0)) / (2 * s * s));
  }
  std::vector<uint8_t> levels(field.size());
  std::transform(field.begin(), field.end(), levels.begin(),
                 [](double v) { return static_cast<uint8_t>(std::clamp(std::nearbyint(v), 0.0, 255.0)); });
  return levels;
}

inline std::vector<uint8_t> Uniform(int32_t width, int32_t height, uint8_t level) {
  return std::vector<uint8_t>(static_cast<size_t>(width) * height, level);
}

// Both pictures straight into the grey arrays, for the operations that need no window.
inline void SetPair(AppState& s, int32_t width, int32_t height, const std::vector<uint8_t>& ref,
                    const std::vector<uint8_t>& def) {
  std::tie(s.Lima, s.Hima) = std::tuple{width, height};
  for (auto [pixels, levels] : {std::pair{&s.PixRef, &ref}, std::pair{&s.PixDef, &def}}) {
    pixels->Allocate(width, height);
    for (int32_t y = 0; y < height; ++y)
      for (int32_t x = 0; x < width; ++x) (*pixels)(x, y) = (*levels)[static_cast<size_t>(y) * width + x];
  }
}

// The setup window over a scratch directory, its views drawing into recording canvases.
struct EngineWindow {
  TempDir dir;
  AppState s;
  ControlRegistry frame;
  ScriptedUi ui{frame};
  Param param{s};
  AreaForm form{s, ui, param};
  RecordingCanvas refCanvas{640, 480};
  RecordingCanvas defCanvas{640, 480};

  EngineWindow() {
    form.RefView().AttachCanvas(&refCanvas);
    form.DefView().AttachCanvas(&defCanvas);
    SetParameters(10, 9, 9);
  }

  // Writes both pictures as BMP files and loads them, as a data file does.
  void Load(int32_t width, int32_t height, const std::vector<uint8_t>& ref, const std::vector<uint8_t>& def) {
    SaveGreyBmp(s.PicRefPath = dir.File(s.PicRefName = "ref.bmp"), width, height, ref);
    SaveGreyBmp(s.PicDefPath = dir.File(s.PicDefName = "def.bmp"), width, height, def);
    form.LoadPictures();
  }

  // The parameters as the parameters window shows them; the grid reads them back.
  void SetParameters(int32_t lgrid, int32_t lpatMin, int32_t lpatMax) {
    std::tie(s.Lgrid, s.LpatMin, s.LpatMax) = std::tuple{lgrid, lpatMin, lpatMax};
    param.ParamShow();
  }

  void AddRectangle(int32_t x1, int32_t y1, int32_t x2, int32_t y2) {
    StoreArea(s, {{x1, y1}, {x2, y1}, {x2, y2}, {x1, y2}, {x1, y1}}, 0);
  }

  // A start point with its displacement known, made the current one.
  void AddStartPoint(int32_t x, int32_t y, int32_t du = 0, int32_t dv = 0) {
    s.ResizeStartPoints(s.CurStart = ++s.NbStart);
    const auto k = static_cast<size_t>(s.NbStart);
    std::tie(s.XStart[k], s.YStart[k], s.DuStart[k], s.DvStart[k]) = std::tuple{x, y, du, dv};
    s.StartOk[k] = true;
  }

  int32_t PatternAt(int32_t x, int32_t y) { return form.Engine().grid.PatternAt(x, y); }
  SetupEngine& Engine() { return form.Engine(); }
  const std::string& Status() const { return frame.Text("Label1"); }
};

}  // namespace tessiva::testing

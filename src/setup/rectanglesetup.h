// The setup of one rectangular area over a picture pair without a window: the
// pictures read, the pattern grid laid, a start point at the area's middle
// found by the start search, the walk checked and the data file saved. The
// command line's "setup" command uses it, and so do the solver's ground-truth
// jobs.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>

namespace tessiva {

struct RectangleSetup {
  std::string dir;  // holds both pictures; the data file is written there
  std::string ref = "ref.bmp", def = "def.bmp";
  std::string dataName = "data.don";
  // The area's corners in pixels; without them, the picture less a margin
  // of a tenth of its size, and at least the largest pattern.
  struct Corners {
    int32_t x1, y1, x2, y2;
  };
  std::optional<Corners> area;
  int32_t lgrid = 10, lpatMin = 21, lpatMax = 25;
  int32_t interpolation = 1;  // 0 bilinear, 1 cubic spline
  int32_t largeStrain = 0;
  int32_t precision = 100;
  // Without a start point the data file has none. A given whole-pixel
  // displacement replaces the start search.
  bool withStart = true;
  std::optional<std::pair<int32_t, int32_t>> startDisplacement;
};

// Writes the data file; the empty text when it was saved, else what stopped it.
std::string SetUpRectangle(const RectangleSetup& job);

}  // namespace tessiva

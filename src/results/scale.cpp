#include "results/scale.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "results/ranges.h"

namespace tessiva {

double DisplayUnit(int32_t view, double unitPX, double unitPY) {
  switch (view) {
    case kViewU: return unitPX;
    case kViewV: return unitPY;
    case kViewNorm:
    case kViewDeformedMesh:
    case kViewVectors: return std::sqrt(unitPX * unitPY);
    default: return 1.0;
  }
}

// Boxes start every W / steps from 0 to W and are W / (steps - 1) wide, so
// each overlaps the next; box n (from 1) takes the colour of n / (steps + 1).
void PaintColourBar(Canvas& bar, ColourScale& palette, int32_t steps, int mode) {
  steps = std::max(steps, kMinColourSteps);
  palette.SetNbCouleurs(steps);
  const double width = bar.ScaleWidth(), height = bar.ScaleHeight();
  const double step = width / steps, boxWidth = width / (steps - 1);
  std::vector<CanvasBox> boxes;
  boxes.reserve(static_cast<size_t>(steps) + 1);
  for (int32_t k = 0; k <= steps; ++k) {
    double t = static_cast<double>(k + 1) / (steps + 1);
    const double x = k * step;
    boxes.push_back({x, 0.0, x + boxWidth, height, palette.CouleurEchelle(t, mode)});
  }
  bar.FilledBoxes(boxes);
  bar.Box(0.0, 0.0, width, height, QBColor(15));
  bar.Refresh();
}

double IsoValue(double fraction, double max, double min, double unit) {
  return (std::abs(max - min) * fraction + min) * unit;
}

}  // namespace tessiva

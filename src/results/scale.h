// The colour bar under a map (IsoPic): the palette from its low end to its
// high end, and the value the isovalue pointer stands on.
#pragma once

#include <cstdint>

#include "results/palette.h"
#include "ui/canvas.h"

namespace tessiva {

// Fewer colour steps would make the bar's boxes infinitely wide.
inline constexpr int32_t kMinColourSteps = 2;

// The factor from pixels to the user's unit in which a view's values are
// shown: UnitPX for U, UnitPY for V, sqrt(UnitPX UnitPY) for the norm views,
// 1 for the strain and angle views.
double DisplayUnit(int32_t view, double unitPX, double unitPY);

// Sets the palette to `steps` colour steps (at least kMinColourSteps) and
// fills the bar, over its whole scale, with one box a step from left to
// right, in the colours of palette `mode`; then a white outline.
void PaintColourBar(Canvas& bar, ColourScale& palette, int32_t steps, int mode);

// The value at fraction f of the bar, for the range [min, max], in the display unit.
double IsoValue(double fraction, double max, double min, double unit);

}  // namespace tessiva

// The state of the setup window's engine: the pattern grid, the walk, the
// start search with its template, the colour scale and the tools in progress.
#pragma once

#include "results/palette.h"
#include "setup/areas.h"
#include "setup/grid.h"
#include "setup/propagation.h"
#include "setup/startsearch.h"
#include "ui/canvas.h"

namespace tessiva {

struct SetupEngine {
  // The setup window's colour count.
  static constexpr int32_t kColourSteps = 100;

  PatternGrid grid;
  Propagation walk;
  StartSearch search;
  ColourScale palette{kColourSteps};
  AreaToolState tools;
  bool gridShown = false;  // `grille` is pressed
  bool silent = false;     // data files are being saved unattended: no message box from the walk
  Canvas* correlJauge = nullptr;  // the advisor gauge's surface, null while not shown
};

}  // namespace tessiva

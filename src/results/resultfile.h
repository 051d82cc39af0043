// The result arrays of AppState: the per-pattern arrays a result file fills
// and the bounds every loop over them keeps to.
#pragma once

#include <cstdint>

#include "state/appstate.h"

namespace tessiva {

// Patterns every per-pattern result array has room for.
int32_t PatternSlots(const AppState& s);
// NbPat, or fewer when the arrays hold fewer: the bound of every loop over the
// patterns of a result.
int32_t PatternsHeld(const AppState& s);

// Makes the result arrays and the mesh anew for the picture size and grid
// step in force (their contents are lost); false, changing nothing, for a
// grid beyond the patterns the program holds.
bool RedimResultats(AppState& s);

}  // namespace tessiva

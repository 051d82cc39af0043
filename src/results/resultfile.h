// Reading a result file (.res): the head of a data file, read by key, and the
// [RESULTS] block the solver appended, read line by line into the result
// arrays of AppState; then everything that depends on the file: the mesh, the
// ranges and strains, and on the first file of a sequence the crack and gauge
// analyses.
#pragma once

#include <cstdint>

#include "state/appstate.h"
#include "ui/uiport.h"

namespace tessiva {

class NewAnalyse;

// Patterns every per-pattern result array has room for.
int32_t PatternSlots(const AppState& s);
// NbPat, or fewer when the arrays hold fewer: the bound of every loop over the
// patterns of a result.
int32_t PatternsHeld(const AppState& s);

// Makes the result arrays and the mesh anew for the picture size and grid
// step in force (their contents are lost), then gives pending events a turn.
void RedimResultats(AppState& s, UiPort& ui);

// Reads member `index` (1-based) of DataFilePath into the analysis window.
// With `keep` the view scale stays as it is, as when stepping through a
// sequence. The grid step and the array sizes come from the first member
// alone. A file that can't be used (a picture key or the [RESULTS] line
// missing, or more patterns than the picture's grid holds) shows the "not
// right formatted" message and leaves the result in place; returns whether
// the file was read.
bool LecRes(NewAnalyse& window, int32_t index, bool keep);

}  // namespace tessiva

// The computational parameters as the state holds them: their ranges, the
// steps derived from them, and the pattern store they size.
#pragma once

#include <cstdint>
#include <string>

#include "state/appstate.h"

namespace tessiva {

// The most patterns a grid may hold: beyond it the per-pattern arrays alone
// would take gigabytes (a 32768 x 32768 picture at grid step 2 would ask for
// 268 million).
inline constexpr int64_t kMaxPatterns = 16'777'216;

// Forces the pattern sizes and the precision into their ranges: sizes swapped
// when reversed, the smaller at least 6, the larger at most 32, a precision
// outside 1..1001 back to 100. Lpat follows LpatMin.
void ClampPatternSizesAndPrecision(AppState& s);
// The grid step into 2..20.
void ClampGridStep(AppState& s);
// LgridBy4 and the even step Lpas from Lgrid.
void DeriveSteps(AppState& s);
// All of the above, and LpatEven: the parameters as a file was read with them.
void ClampParameters(AppState& s);

// Round((hima / lpas) x (lima / lpas)): the patterns, and cells, a picture
// holds at a grid step; 0 for a picture or step that isn't positive.
int64_t PatternCapacity(int32_t lima, int32_t hima, int32_t lpas);
// Makes the pattern, result, cell and node arrays anew for the current Lpas and
// picture size; their contents are lost. Refuses, changing nothing, a size
// beyond kMaxPatterns.
bool AllocPat(AppState& s);
// Sets NbPatMax and NbNoeudsMax for the grid in force, allocating nothing, or
// refuses, changing nothing, a size beyond kMaxPatterns. Enough for a caller
// that lays and solves patterns, since laying sizes XPat and YPat, but never
// builds the mesh nor keeps results in the pattern arrays.
bool SetPatternCapacity(AppState& s);
// What AllocPat says when it refuses the grid in force.
std::string TooManyPatternsMessage(const AppState& s);
// The two picture arrays for the picture size, and the same (a picture or a
// result file is read); the pictures are renewed even when the grid is refused.
bool AllocPatAndPictures(AppState& s);

}  // namespace tessiva

// The two views that show the displacement as geometry: the cells drawn
// undeformed and deformed, and an arrow at each sample.
#pragma once

#include <cstdint>
#include <string_view>

#include "results/fieldmap.h"
#include "state/appstate.h"
#include "ui/canvas.h"

namespace tessiva {

// The head length of a displacement arrow, in picture pixels.
inline constexpr double kArrowHead = 3.0;

// The amplification of the displacement views: the number typed when the
// option is on, and 1 when it is off or the number is 0 or less.
double Amplification(bool on, std::string_view typed);

// The outlines of the areas of interest, vertex to vertex.
void DrawAreaOutlines(Canvas& canvas, const AppState& s, Colour colour);

// Every shown cell twice: as measured (grey, red over a pattern that isn't
// good) and moved by its nodes' displacement times `magni` (white, black
// over a pattern that isn't good).
void DrawDeformedMesh(Canvas& canvas, const AppState& s, const FieldSettings& f, double magni);

// An arrow at each sample of each shown cell, from the sample to the sample
// moved by its displacement times `magni` (yellow, red on a pattern that
// isn't good), over the cell's outline in grey.
void DrawDisplacementVectors(Canvas& canvas, const AppState& s, const FieldSettings& f, double magni,
                             int32_t smooth);

}  // namespace tessiva

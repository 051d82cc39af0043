// The analysis mesh: a regular mesh of square cells over the whole picture, one
// cell per grid position. Each pattern's bilinear displacement is evaluated at
// the corners of its cell, the up to four values a node receives are
// reconciled, single holes are repaired, and patterns whose deformed cell has
// an implausible shape are rejected (FlagPat 0). Everything shown afterwards
// is computed from the nodes of this mesh.
#pragma once

#include <array>
#include <cstdint>

#include "results/geometry.h"
#include "state/appstate.h"

namespace tessiva {

// The largest mesh built: a picture of 4096 x 4096 pixels at the smallest grid
// step. Beyond it a picture size can only come from a damaged file.
inline constexpr int64_t kMaxMeshCells = int64_t{1} << 22;

// The three other cells that share corner k of a cell (0-based, in Noeud
// order), each as a neighbour (0-based index into Voisin) and the corner of
// that neighbour that lies on the same node.
struct SharedCorner {
  int voisin;
  int corner;
};
inline constexpr std::array<std::array<SharedCorner, 3>, 4> kSharedCorners{{
    {{{0, 1}, {1, 2}, {2, 3}}},
    {{{2, 2}, {3, 3}, {4, 0}}},
    {{{4, 3}, {5, 0}, {6, 1}}},
    {{{6, 0}, {7, 1}, {0, 2}}},
}};

// The cell of a position, 0 outside the mesh. Cuts towards zero, so the first
// column and row of the mesh are never the answer for a position inside it:
// a position less than Lpas/2 past the first grid line falls in the cell of
// the second column (or row).
int32_t NumMaille(const AppState& s, double x, double y);

// Builds the mesh anew for the current result: cells and nodes over the whole
// picture, corner displacements, reconciled nodes, scatter and shape checks.
// Patterns not good in the file take part when showBad is 1. Does nothing
// while Lgrid gives no grid step.
void CreeMaillage(AppState& s, int32_t showBad);

// Brings back rejected patterns whose cell has four valid nodes, completes a
// single missing node as the corner of a parallelogram (two passes at most),
// then applies the final shape and side-length checks to every good pattern.
void RepareMaillage(AppState& s);

// Deformed positions (node position plus displacement) of a cell's corners,
// in Noeud order.
std::array<Vec2, 4> DeformedCorners(const AppState& s, const MeshCell& cell);

}  // namespace tessiva

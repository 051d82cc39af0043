// The pattern grid: a regular grid anchored at (Lpas, Lpas) over the whole
// picture, whose points inside the areas become patterns, numbered column by
// column, and the drawing of patterns on the reference view.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "state/appstate.h"
#include "ui/canvas.h"

namespace tessiva {

class AreaForm;

// Where the grid lies. It follows the picture, not the areas, so a pixel has
// the same grid place whatever the areas are.
struct GridFrame {
  int32_t Lpas = 0;
  int32_t XGridMin = 0, XGridMax = 0, YGridMin = 0, YGridMax = 0;

  static GridFrame For(int32_t lima, int32_t hima, int32_t lpas);
  // Grid points along x and along y (0 when the picture is narrower than a step).
  int32_t Columns() const;
  int32_t Rows() const;
  // Cells between the grid points: the first column and row of points have none.
  int32_t Cells() const;
  // The cell of a point, 0 if it lies in none.
  int32_t DonIRec(double x, double y) const;
};

struct PatternGrid {
  GridFrame frame;
  std::vector<int32_t> BoxPat;   // per pattern: the area that holds it
  std::vector<int32_t> IRecPat;  // per cell: its pattern, 0 for none
  // Per grid point, column by column: its pattern, 0 for none. Unlike the
  // cells it covers the first column and row, so a neighbour is one look-up.
  std::vector<int32_t> PatAt;
  int32_t ColBand = 0;  // the longest column run plus 10: how far apart neighbours' numbers may be
  std::array<int32_t, AppState::kMaxAreas + 1> BestPat{};  // per area: its pattern of best advisor value

  // The pattern centred on (x, y), 0 when none is.
  int32_t PatternAt(int64_t x, int64_t y) const;
  // The pattern of the cell holding (x, y), 0 when none.
  int32_t PatternOfCell(double x, double y) const;
};

// Lays the grid over the areas: fills XPat, YPat, NbPat and the grid's
// bounds in the state, and the grid's tables. Returns the number of patterns.
int32_t LayPatterns(AppState& s, PatternGrid& grid);
// For each area, the first pattern of highest advisor value (BestPat).
void RankPatterns(const AppState& s, PatternGrid& grid);

// The square of side Lpas round pattern p, in colour.
CanvasBox PatternSquare(const AppState& s, int32_t lpas, int32_t p, Colour colour);
// Patterns the state holds that can be read: NbPat, unless the arrays were renewed since.
int32_t PatternsInStore(const AppState& s);
// Whether the centre of pattern p, or of the entry 0 that stands for none, can be read.
bool PatternStored(const AppState& s, int32_t p);
void AffichePatternArea(Canvas& canvas, const AppState& s, int32_t lpas, int32_t p, Colour colour);
// The outline of every pattern, coloured by its state in the walk.
void AfficheRectArea(Canvas& canvas, const AppState& s, int32_t lpas, const std::vector<int32_t>& patState);
void CroixRefArea(Canvas& canvas, double x, double y, Colour colour);

namespace setup {

// Rebuilds the whole pattern store from the area store; every start point is lost.
void CreateRectArea(AreaForm& form);
// Clears the pattern store and the start points.
void DeleteGrille(AreaForm& form);
// The `grille` tool: shows the pattern outlines, or takes them away.
void ShowGrid(AreaForm& form, bool pressed);
// What a refresh draws over each view's picture: on the reference view the
// walk and the pattern outlines while `grille` is down, and the start points;
// on the deformed view the start points whose displacement is known.
void DrawRefOverlays(AreaForm& form, Canvas& canvas);
void DrawDefOverlays(AreaForm& form, Canvas& canvas);
// Both views show their bare pictures again.
void RestoreCleanPictures(AreaForm& form);

}  // namespace setup
}  // namespace tessiva

// Field maps: the value of a measure anywhere on the picture, interpolated in
// the analysis mesh, and the painting of a measure as coloured squares, one
// or more per pattern, over the picture.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "results/distortion.h"
#include "results/palette.h"
#include "results/ranges.h"
#include "state/appstate.h"
#include "ui/canvas.h"

namespace tessiva {

// The value DonneIso gives where no usable pattern covers the point.
inline constexpr double kFenceValue = 99999.0;

// The settings of the analysis window a field value depends on.
struct FieldSettings {
  // 1 when patterns that aren't good are shown, and their values given.
  int32_t showBad = 0;
  // 1 when the means are taken off displacements.
  int32_t subMean = 0;
  // The reference configuration (sign +1) or the deformed one (-1).
  bool bInitial = true;
  const Distortion* distortion = nullptr;
  // The user's axis 1 (radians), and cos and sin of twice that angle.
  double teta1 = 0.0;
  double cos2Teta = 1.0;
  double sin2Teta = 0.0;

  double Sign() const { return bInitial ? 1.0 : -1.0; }
  bool Corrected() const { return distortion && distortion->On(); }
};

// A point of the picture placed in its cell: the cell, its pattern, and the
// weights of the cell's four nodes (N1..N4, in Noeud order).
struct FieldPoint {
  double x = 0.0, y = 0.0;
  const MeshCell* cell = nullptr;
  std::array<double, 4> weights{};
};

// The cell and weights of (x, y); none when no pattern lies there, or when the
// pattern isn't good and bad ones aren't shown.
std::optional<FieldPoint> LocateFieldPoint(const AppState& s, const FieldSettings& f, double x, double y);

// The value of view `view` at a located point. Strain views interpolate the
// node averages (percent, degrees), the Green Lagrange components turned to
// the user's axes when `turned`; displacement views (U, V, norm) interpolate
// the node displacements, corrected when the correction is on, then turned
// to the user's axes, less the means on request, times the configuration's
// sign; with `turned` false U and V come back as interpolated (and corrected).
// A view that has no value (the mesh and vector views) gives the fence value.
double FieldValue(const AppState& s, const FieldSettings& f, const FieldPoint& p, int32_t view, bool turned = true);

// The value of view `view` at (x, y), or kFenceValue (DonneIso).
double DonneIso(const AppState& s, const FieldSettings& f, double x, double y, int32_t view, bool turned = true);

// The pattern i is painted: good with a pattern in its cell, or any when bad ones are shown.
bool PatternShown(const AppState& s, const FieldSettings& f, int32_t i);

// How a colour map is sampled and placed.
struct MapOptions {
  // Samples along each side of a cell: 1 without Interpolation, else the smoothing.
  int32_t smooth = 1;
  // The squares stand at the deformed positions of their samples, as on the
  // deformed picture; otherwise at the reference positions.
  bool onFinal = false;
  int palette = kClassicalPalette;
};

// The range a map colours between.
struct ColourRange {
  double max = 1.0;
  double min = 0.0;
};

// Paints view `view` as filled squares, `smooth` x `smooth` per shown
// pattern at the samples of its cell, coloured by their fraction of `range`,
// in one batch. Returns the distribution of the in-range samples.
Histogram PaintFieldSquares(Canvas& canvas, const AppState& s, const FieldSettings& f, int32_t view,
                            const MapOptions& options, const ColourScale& palette, ColourRange range);

// The isostatic view: one line per shown pattern through its centre along
// the major principal direction, coloured by Tresca (H1 - H2) in `range`.
// Returns the distribution of Tresca over the lines.
Histogram PaintIsostatic(Canvas& canvas, const AppState& s, const FieldSettings& f, const ColourScale& palette,
                         int paletteMode, ColourRange range);

// The five labels under the colour bar: the range from min to max in four
// equal steps, times the display unit, in the format "0.0E+0".
std::array<std::string, 5> ScaleLabels(ColourRange range, double unit);

// The half side of a cell: Round(Lpas / 2).
double HalfCell(const AppState& s);
// The shape functions N1..N4 of the four-node cell at (xi, eta), in Noeud order.
std::array<double, 4> ShapeWeights(double xi, double eta);
// The sample offsets along one side of a cell, in -1..1: the centres of
// `smooth` equal parts (0 alone for one sample).
std::vector<double> SampleOffsets(int32_t smooth);

}  // namespace tessiva

// The start search: the whole-pixel displacement of a start point between the
// reference and the deformed picture, found by a two-way spatial search, and
// an alternative search by Fourier cross-correlation of picture tiles.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "setup/correlation.h"
#include "state/appstate.h"

namespace tessiva {

class AreaForm;

class StartSearch {
 public:
  // A way there and back that misses the start by this many pixels or more is refused.
  static constexpr double kRoundTripLimit = 5.0;

  // The centre of the next search. It lives as long as the window and follows
  // the accepted searches while the sequence shares one reference picture, so
  // a large motion is tracked step by step within the range of one search.
  int32_t DuCentre = 0;
  int32_t DvCentre = 0;
  PatternCorrelator correlator;

  // Searches forward (template in the reference picture), then back from the
  // place found. Accepted when the way back returns within kRoundTripLimit of
  // the start: du, dv take the forward displacement. Refused by a search that
  // finds nothing (du, dv untouched) or by the round trip (du = dv = 0).
  bool ChercheSoluArea(const AppState& s, int32_t x, int32_t y, int32_t& du, int32_t& dv);
};

// In-place radix-2 complex transform of line.size() / 2 values stored as
// (real, imaginary) pairs; direction 1 uses the positive exponent, -1 the
// negative one. No scaling. A length that isn't a power of two is left alone.
void Fourier1D(std::span<double> line, int direction);
// The transform of an n x n tile of pairs, rows then columns; any direction
// other than 1 is the inverse, divided by n squared.
void Fourier2D(std::vector<double>& tile, int direction, int n);
// Copies the n x n tile round (x, y) of PixRef (selector 0) or PixDef (other)
// into `tile` as complex pairs, moving (x, y) when the tile has to be pushed
// inside the picture. `mean` is a quarter of the tile's mean grey level, the
// scale the Fourier search divides its scores by.
void CutImage(const AppState& s, int selector, int32_t& x, int32_t& y, std::vector<double>& tile, double& mean,
              int n);
// The whole-pixel displacement of (x, y) by cross-correlation of n x n tiles
// over a block of 3 x 3 tiles round the point; with refFixed the fixed tile
// comes from the reference picture. n must be a power of two up to 128 and
// fit in the picture, otherwise du = dv = 0. (x, y) may be moved by CutImage.
void FindDuDvFFT(const AppState& s, int32_t& x, int32_t& y, int32_t& du, int32_t& dv, int n, bool refFixed);

namespace setup {

// "Show the best start point": marks each area's best pattern, proposing it.
void ShowBestMNU(AreaForm& form);
// "Enabled Auto Search": flips the check mark.
void AutoSearchMNU(AreaForm& form);
// Start point i of a stored set is moved to the centre of its pattern and
// searched; on success it is marked on the deformed view and the walk runs.
// A refusal makes it the current start point and says so.
bool SearchStartPoint(AreaForm& form, int32_t i);

}  // namespace setup
}  // namespace tessiva

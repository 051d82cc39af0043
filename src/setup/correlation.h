// Grey-level comparison in the setup window: the mismatch score of a square
// of one picture against a square of the other, the whole-pixel search built
// on it, the advisor value that rates a pattern before any search, its gauge,
// and the target mark of a start point.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "state/appstate.h"
#include "ui/canvas.h"

namespace tessiva {

class AreaForm;
class ColourScale;
struct PatternGrid;

class PatternCorrelator {
 public:
  // The template store holds squares of side up to 40 (41 pixels a side).
  static constexpr int32_t kMaxSide = 40;
  static constexpr double kNoMatch = 1e15;
  // A search compares squares of side 8 (9 pixels) over +-100 pixels, whatever the settings.
  static constexpr int32_t kSearchSide = 8;
  static constexpr int32_t kSearchRange = 100;

  // The mismatch of the square of side L round the candidate (xc, yc) with the
  // template round (xt, yt): 0 for a perfect match, larger is worse. With
  // refTemplate the template comes from PixRef and the candidate from PixDef,
  // otherwise the other way round. A candidate nearer than 2 x L to a border
  // scores kNoMatch. The template is kept between calls and read again only
  // when its position changes: the position alone is the key, not the picture.
  double CorrelationAREA(const AppState& s, int32_t xt, int32_t yt, int32_t xc, int32_t yc, int32_t side,
                         bool refTemplate);

  // The best whole-pixel displacement of (x, y) within +-100 pixels of
  // (du0, dv0); of equal scores the one of lowest y, then lowest x, wins.
  // False, with du and dv unchanged, when no candidate could be scored.
  bool FindDuDvCorel(const AppState& s, int32_t x, int32_t y, int32_t du0, int32_t dv0, int32_t& du, int32_t& dv,
                     bool refTemplate);

 private:
  struct Template {
    int32_t x = 0, y = 0;
    std::array<double, (kMaxSide + 1) * (kMaxSide + 1)> levels{};  // column by column
    double sumSquares = 0;
  };

  // Reads the template unless the one held has this position; false when it
  // would have to be read beyond the picture, which leaves the held one alone.
  bool TakeTemplate(const GreyArray& pixels, int32_t xt, int32_t yt, int32_t side);
  // Scores the candidates xFrom..xTo of row yc, all within the border gate.
  void ScoreRow(const GreyArray& searched, int32_t yc, int32_t xFrom, int32_t xTo, int32_t side);

  Template held_;
  std::vector<double> cross_, energy_, scores_;  // per candidate of a row
};

// The advisor: how promising a pattern is for correlation, 0 to 1, high being
// good. Its value falls with the distance of the mean grey level from
// mid-grey, weighted by the ratio of the mean to the root mean square.
// CorrelAreaI rates the pattern of the cell holding (x, y) in PixRef, over a
// square of side LpatMax; 0 when there is none, or its square passes a border.
double CorrelAreaI(const AppState& s, const PatternGrid& grid, int32_t x, int32_t y);
// The same measure of PixDef at (x, y) itself, with an unrounded mean.
double CorrelAreaF(const AppState& s, int32_t x, int32_t y, int32_t side);

// The advisor gauge: a bar from the bottom, blue at 0 to red at 100.
void DrawCorrelJauge(Canvas& gauge, double advisor, const ColourScale& palette);

// The mark of a start point: a broken black and white cross, two circles and
// a label, sized in screen pixels whatever the zoom.
void MireArea(Canvas& canvas, double x, double y, const std::string& label, int lineWidth = 1);

namespace setup {

// The gauge for the pointer at (x, y) of the reference view.
void CorrelJauge(AreaForm& form, double x, double y);

}  // namespace setup
}  // namespace tessiva

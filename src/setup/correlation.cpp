#include "setup/correlation.h"

#include <algorithm>
#include <cmath>

#include "results/palette.h"
#include "setup/areaform.h"
#include "setup/grid.h"
#include "state/numtext.h"
#include "state/index.h"

namespace tessiva {
namespace {

constexpr size_t kTemplateStride = PatternCorrelator::kMaxSide + 1;
// A search whose best score isn't below this found nothing.
constexpr double kFoundBelow = 1e10;
constexpr double kMidGrey = 128.0;

// Offset from the centre of element a of a square of side L: Round(a - L/2).
// For an odd side the rounding to even makes two elements share an offset.
int32_t SquareOffset(int32_t a, int32_t side) { return RoundToInt32(a - side / 2.0); }

// Candidates must stand at least 2 x L from every border of the picture (and
// of the array the picture lies in, should the two sizes disagree).
struct BorderGate {
  int64_t xMin, xMax, yMin, yMax;
  bool Admits(int64_t x, int64_t y) const { return x >= xMin && x <= xMax && y >= yMin && y <= yMax; }
};
BorderGate GateFor(const AppState& s, const GreyArray& searched, int32_t side) {
  const int64_t width = std::min(s.Lima, searched.UpperX()), height = std::min(s.Hima, searched.UpperY());
  return {2 * int64_t{side}, width - 2 * int64_t{side}, 2 * int64_t{side}, height - 2 * int64_t{side}};
}

// Sum and sum of squares of the grey levels of the square of half-side h round
// (cx, cy). False when the square passes the picture's border.
struct SquareSums {
  double sum = 0, sumSquares = 0, count = 0;
};
bool SumSquare(const GreyArray& pixels, int32_t cx, int32_t cy, int32_t h, SquareSums& out) {
  if (h < 0 || !pixels.Contains(cx - h, cy - h) || !pixels.Contains(cx + h, cy + h)) return false;
  int64_t sum = 0, squares = 0;
  for (int32_t y = cy - h; y <= cy + h; ++y) {
    const int32_t* row = pixels.Data() + At(int64_t{y} * pixels.Stride());
    for (int32_t x = cx - h; x <= cx + h; ++x) {
      sum += row[x];
      squares += int64_t{row[x]} * row[x];
    }
  }
  const double side = 2.0 * h + 1.0;
  out = {static_cast<double>(sum), static_cast<double>(squares), side * side};
  return true;
}

// A, B and D of the advisor: sums of m x g, g x g and m x m over the square,
// m being the mean, rounded or not. Formed from the two sums of the square,
// since m is the same for every pixel.
double AdvisorValue(const SquareSums& sums, bool roundMean) {
  const double mean = sums.sum / sums.count;
  const double m = roundMean ? Round(mean) : mean;
  const double a = m * sums.sum;
  const double b = sums.sumSquares;
  const double d = m * m * sums.count;
  const double p = d * b;
  if (p == 0) return 0.0;
  return 1.0 - (std::abs(mean - kMidGrey) / kMidGrey) * std::abs(a / std::sqrt(p));
}

}  // namespace

bool PatternCorrelator::TakeTemplate(const GreyArray& pixels, int32_t xt, int32_t yt, int32_t side) {
  if (xt == held_.x && yt == held_.y) return true;
  const double half = side / 2.0;
  const auto xAt = [&](int32_t a) { return RoundToInt32(xt + a - half); };
  const auto yAt = [&](int32_t b) { return RoundToInt32(yt + b - half); };
  if (!pixels.Contains(xAt(0), yAt(0)) || !pixels.Contains(xAt(side), yAt(side))) return false;
  held_.x = xt;
  held_.y = yt;
  double sumSquares = 0;
  for (int32_t a = 0; a <= side; ++a)
    for (int32_t b = 0; b <= side; ++b) {
      const double t = pixels(xAt(a), yAt(b));
      held_.levels[At(a) * kTemplateStride + At(b)] = t;
      sumSquares += t * t;
    }
  held_.sumSquares = sumSquares;
  return true;
}

// All candidates of a row share the template: the row is swept once per
// template element, which keeps the inner loop on contiguous pixels.
void PatternCorrelator::ScoreRow(const GreyArray& searched, int32_t yc, int32_t xFrom, int32_t xTo, int32_t side) {
  const size_t n = At(xTo - xFrom + 1);
  cross_.assign(n, 0.0);
  energy_.assign(n, 0.0);
  scores_.resize(n);
  double* const cross = cross_.data();
  double* const energy = energy_.data();
  for (int32_t b = 0; b <= side; ++b) {
    const int32_t y = RoundToInt32(b - side / 2.0 + yc);
    const int32_t* const row = searched.Data() + At(int64_t{y} * searched.Stride());
    for (int32_t a = 0; a <= side; ++a) {
      const double t = held_.levels[At(a) * kTemplateStride + At(b)];
      const int32_t* const g = row + xFrom + SquareOffset(a, side);
      for (size_t k = 0; k < n; ++k) {
        const double v = g[k];
        cross[k] += v * t;
        energy[k] += v * v;
      }
    }
  }
  for (size_t k = 0; k < n; ++k) {
    const double r = std::sqrt(energy[k] * held_.sumSquares);
    scores_[k] = r <= 0 ? kNoMatch : std::abs((1.0 - cross[k] / r) * 100000.0);
  }
}

double PatternCorrelator::CorrelationAREA(const AppState& s, int32_t xt, int32_t yt, int32_t xc, int32_t yc,
                                          int32_t side, bool refTemplate) {
  const GreyArray& templatePicture = refTemplate ? s.PixRef : s.PixDef;
  const GreyArray& searched = refTemplate ? s.PixDef : s.PixRef;
  if (side < 0 || side > kMaxSide || !GateFor(s, searched, side).Admits(xc, yc)) return kNoMatch;
  if (!TakeTemplate(templatePicture, xt, yt, side)) return kNoMatch;
  ScoreRow(searched, yc, xc, xc, side);
  return scores_[0];
}

bool PatternCorrelator::FindDuDvCorel(const AppState& s, int32_t x, int32_t y, int32_t du0, int32_t dv0,
                                      int32_t& du, int32_t& dv, bool refTemplate) {
  const GreyArray& templatePicture = refTemplate ? s.PixRef : s.PixDef;
  const GreyArray& searched = refTemplate ? s.PixDef : s.PixRef;
  // Only candidates within the border gate can score; the others are skipped, not scored.
  const BorderGate gate = GateFor(s, searched, kSearchSide);
  const int64_t xFrom = std::max(int64_t{x} + du0 - kSearchRange, gate.xMin);
  const int64_t xTo = std::min(int64_t{x} + du0 + kSearchRange, gate.xMax);
  const int64_t yFrom = std::max(int64_t{y} + dv0 - kSearchRange, gate.yMin);
  const int64_t yTo = std::min(int64_t{y} + dv0 + kSearchRange, gate.yMax);
  if (xFrom > xTo || yFrom > yTo || !TakeTemplate(templatePicture, x, y, kSearchSide)) return false;

  double best = kNoMatch;
  int64_t bestX = 0, bestY = 0;
  for (int64_t j = yFrom; j <= yTo; ++j) {
    ScoreRow(searched, static_cast<int32_t>(j), static_cast<int32_t>(xFrom), static_cast<int32_t>(xTo), kSearchSide);
    for (size_t k = 0; k < scores_.size(); ++k)
      if (scores_[k] < best) {
        best = scores_[k];
        bestX = xFrom + static_cast<int64_t>(k);
        bestY = j;
      }
  }
  if (!(best < kFoundBelow)) return false;
  du = static_cast<int32_t>(bestX - x);
  dv = static_cast<int32_t>(bestY - y);
  return true;
}

double CorrelAreaI(const AppState& s, const PatternGrid& grid, int32_t x, int32_t y) {
  const int32_t side = s.LpatMax;
  const int32_t p = grid.PatternOfCell(x, y);
  if (p == 0 || p > PatternsInStore(s)) return 0.0;
  const int32_t cx = s.XPat[At(p)], cy = s.YPat[At(p)];
  SquareSums sums;
  if (cx - side < 0 || cy - side < 0 || !SumSquare(s.PixRef, cx, cy, static_cast<int32_t>(Int(side / 2.0)), sums))
    return 0.0;
  return AdvisorValue(sums, true);
}

double CorrelAreaF(const AppState& s, int32_t x, int32_t y, int32_t side) {
  SquareSums sums;
  if (!SumSquare(s.PixDef, x, y, static_cast<int32_t>(Int(side / 2.0)), sums)) return 0.0;
  return AdvisorValue(sums, false);
}

void DrawCorrelJauge(Canvas& gauge, double advisor, const ColourScale& palette) {
  gauge.SetScale(0, 100, 10, -100);
  const int32_t level = RoundToInt32(advisor * 100.0);
  double t = level / 100.0;
  gauge.FilledBox(0, 0, 10, level, palette.CouleurEchelle(t, kClassicalPalette));
  gauge.FilledBox(0, level, 10, 100, QBColor(15));
}

void MireArea(Canvas& canvas, double x, double y, const std::string& label, int lineWidth) {
  if (canvas.PixelWidth() <= 0) return;
  const double unitsPerPixel = canvas.ScaleWidth() / canvas.PixelWidth();
  const double s1 = Round(unitsPerPixel), s2 = Round(2 * unitsPerPixel), s10 = Round(10 * unitsPerPixel);
  const Colour black = QBColor(0), white = QBColor(15);
  const KeptDrawWidth kept(&canvas);
  canvas.SetDrawWidth(lineWidth);
  // Each black arm has a white one beside it, so the mark shows on any grey.
  canvas.Line(x - s10, y, x - s2, y, black);
  canvas.Line(x + s2, y, x + s10, y, black);
  canvas.Line(x - s10, y + s1, x - s2, y + s1, white);
  canvas.Line(x + s2, y + s1, x + s10, y + s1, white);
  canvas.Line(x, y - s10, x, y - s2, black);
  canvas.Line(x, y + s2, x, y + s10, black);
  canvas.Line(x + s1, y - s10, x + s1, y - s2, white);
  canvas.Line(x + s1, y + s2, x + s1, y + s10, white);
  canvas.Circle(x, y, 6 * unitsPerPixel, black);
  canvas.Circle(x, y, 7 * unitsPerPixel, white);
  canvas.FilledBox(x + s10, y - s2, x + s10 + s2 + canvas.TextWidth(label), y - s2 + canvas.TextHeight(label), white);
  canvas.Text(x + s10, y - s2, label, black);
}

namespace setup {

void CorrelJauge(AreaForm& form, double x, double y) {
  SetupEngine& engine = form.Engine();
  if (!engine.correlJauge) return;
  const double v = CorrelAreaI(form.State(), engine.grid, RoundToInt32(x), RoundToInt32(y));
  DrawCorrelJauge(*engine.correlJauge, v, engine.palette);
}

}  // namespace setup
}  // namespace tessiva

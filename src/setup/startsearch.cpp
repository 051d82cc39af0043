#include "setup/startsearch.h"

#include <cmath>
#include <cstdint>
#include <numbers>
#include <utility>

#include "setup/areaform.h"
#include "state/numtext.h"
#include "state/index.h"

namespace tessiva {
namespace {

constexpr int kMaxTile = 128;
constexpr double kNoPeakYet = -99999.0;

bool PowerOfTwo(int n) { return n > 0 && (n & (n - 1)) == 0; }

// Pushes a tile of side n starting at `from` inside 0..limit, moving the centre
// with it. Past the far border the tile ends one pixel short of it; a tile the
// picture can't hold at all starts at 0.
void PlaceTile(int32_t& centre, int32_t& from, int n, int32_t limit) {
  from = RoundToInt32(centre - n / 2.0);
  if (from < 0) {
    from = 0;
    centre = RoundToInt32(n / 2.0);
  }
  if (from + n > limit) {
    from = limit - 1 - n;
    centre = RoundToInt32(n / 2.0 + from);
  }
  if (from < 0) {
    from = 0;
    centre = RoundToInt32(n / 2.0);
  }
}

// Lag of peak index i of an n-point circular correlation: up to n/2 it is i, above it wraps.
int32_t WrappedLag(int32_t i, int n) { return i < n / 2.0 + 1.0 ? i : i - n; }

}  // namespace

bool StartSearch::ChercheSoluArea(const AppState& s, int32_t x, int32_t y, int32_t& du, int32_t& dv) {
  int32_t du1 = 0, dv1 = 0, du2 = 0, dv2 = 0;
  if (!correlator.FindDuDvCorel(s, x, y, DuCentre, DvCentre, du1, dv1, true)) return false;
  if (!correlator.FindDuDvCorel(s, x + du1, y + dv1, -DuCentre, -DvCentre, du2, dv2, false)) return false;
  const double miss = std::sqrt(std::pow(du1 + du2, 2.0) + std::pow(dv1 + dv2, 2.0));
  if (!(miss < kRoundTripLimit)) {
    du = dv = 0;
    return false;
  }
  du = du1;
  dv = dv1;
  if (s.SeqRefChange == 0) {
    DuCentre = du1;
    DvCentre = dv1;
  }
  return true;
}

void Fourier1D(std::span<double> line, int direction) {
  const size_t n = line.size();  // reals and imaginaries
  if (n / 2 > static_cast<size_t>(INT32_MAX) || !PowerOfTwo(static_cast<int>(n / 2))) return;
  // Bit reversal, swapping whole complex values.
  for (size_t i = 0, j = 0; i < n; i += 2) {
    if (j > i) {
      std::swap(line[j], line[i]);
      std::swap(line[j + 1], line[i + 1]);
    }
    size_t m = n / 2;
    while (m >= 2 && j >= m) {
      j -= m;
      m >>= 1;
    }
    j += m;
  }
  // Danielson-Lanczos passes, the twiddle factor advanced by a trigonometric recurrence.
  for (size_t mmax = 2; n > mmax; mmax <<= 1) {
    const size_t step = mmax << 1;
    const double theta = direction * (2.0 * std::numbers::pi / static_cast<double>(mmax));
    const double half = std::sin(0.5 * theta);
    const double wpr = -2.0 * half * half;
    const double wpi = std::sin(theta);
    double wr = 1.0, wi = 0.0;
    for (size_t m = 0; m < mmax; m += 2) {
      for (size_t i = m; i < n; i += step) {
        const size_t j = i + mmax;
        const double tr = wr * line[j] - wi * line[j + 1];
        const double ti = wr * line[j + 1] + wi * line[j];
        line[j] = line[i] - tr;
        line[j + 1] = line[i + 1] - ti;
        line[i] += tr;
        line[i + 1] += ti;
      }
      const double previous = wr;
      wr = wr * wpr - wi * wpi + wr;
      wi = wi * wpr + previous * wpi + wi;
    }
  }
}

void Fourier2D(std::vector<double>& tile, int direction, int n) {
  if (n <= 0 || tile.size() < 2 * At(n) * At(n)) return;
  std::vector<double> line(2 * At(n));
  const auto transform = [&](size_t first, size_t stride, double scale) {
    for (size_t k = 0; k < At(n); ++k) {
      line[2 * k] = tile[first + k * stride];
      line[2 * k + 1] = tile[first + k * stride + 1];
    }
    Fourier1D(line, direction);
    for (size_t k = 0; k < At(n); ++k) {
      tile[first + k * stride] = line[2 * k] / scale;
      tile[first + k * stride + 1] = line[2 * k + 1] / scale;
    }
  };
  const double inverseScale = direction == 1 ? 1.0 : static_cast<double>(n) * n;
  for (size_t r = 0; r < At(n); ++r) transform(2 * r * At(n), 2, 1.0);
  for (size_t c = 0; c < At(n); ++c) transform(2 * c, 2 * At(n), inverseScale);
}

void CutImage(const AppState& s, int selector, int32_t& x, int32_t& y, std::vector<double>& tile, double& mean,
              int n) {
  const GreyArray& pixels = selector == 0 ? s.PixRef : s.PixDef;
  int32_t x0 = 0, y0 = 0;
  PlaceTile(x, x0, n, std::min(s.Lima, pixels.UpperX()));
  PlaceTile(y, y0, n, std::min(s.Hima, pixels.UpperY()));
  tile.assign(2 * At(n) * At(n), 0.0);
  double sum = 0;
  size_t k = 0;
  for (int32_t ix = x0; ix < x0 + n; ++ix)
    for (int32_t iy = y0; iy < y0 + n; ++iy, k += 2) {
      tile[k] = pixels(ix, iy);
      sum += tile[k];
    }
  // A quarter of the mean: the scale the Fourier search's scores are divided by.
  mean = sum / static_cast<double>(k) / 2.0;
}

void FindDuDvFFT(const AppState& s, int32_t& x, int32_t& y, int32_t& du, int32_t& dv, int n, bool refFixed) {
  du = dv = 0;
  if (!PowerOfTwo(n) || n > kMaxTile || n > std::min(s.Lima, s.PixRef.UpperX()) ||
      n > std::min(s.Hima, s.PixRef.UpperY()))
    return;
  const int fixedPicture = refFixed ? 0 : 1;
  const int movingPicture = refFixed ? 1 : 0;
  std::vector<double> moving, fixed, product(2 * At(n) * At(n));
  double best = kNoPeakYet;
  int32_t bestI = 0, bestJ = 0, bestX = 0, bestY = 0;
  for (int a = -1; a <= 1; ++a)
    for (int b = -1; b <= 1; ++b) {
      int32_t x2 = x + a * n, y2 = y + b * n;
      double fixedMean = 0, movingMean = 0;
      CutImage(s, fixedPicture, x, y, fixed, fixedMean, n);
      CutImage(s, movingPicture, x2, y2, moving, movingMean, n);
      Fourier2D(fixed, 1, n);
      Fourier2D(moving, 1, n);
      // The moving tile's spectrum times the conjugate of the fixed one's.
      for (size_t k = 0; k < product.size(); k += 2) {
        product[k] = moving[k] * fixed[k] + moving[k + 1] * fixed[k + 1];
        product[k + 1] = moving[k + 1] * fixed[k] - fixed[k + 1] * moving[k];
      }
      Fourier2D(product, -1, n);
      // Dividing by the moving tile's mean keeps a bright tile from winning by brightness alone.
      const double scale = movingMean == 0 ? 1.0 : movingMean;
      for (int32_t i = 0; i < n; ++i)
        for (int32_t j = 0; j < n; ++j) {
          const double score = product[2 * (At(i) * At(n) + At(j))] / scale;
          if (score > best) {
            best = score;
            bestI = i;
            bestJ = j;
            bestX = x2;
            bestY = y2;
          }
        }
    }
  du = WrappedLag(bestI, n) + (bestX - x);
  dv = WrappedLag(bestJ, n) + (bestY - y);
}

namespace setup {

void ShowBestMNU(AreaForm& form) {
  Canvas* canvas = form.RefView().GetCanvas();
  const AppState& s = form.State();
  if (!canvas) return;
  for (int32_t k = 1; k < s.NbBox && k <= AppState::kMaxAreas; ++k) {
    const int32_t p = form.Engine().grid.BestPat[At(k)];
    if (p != 0 && p != -1 && p <= PatternsInStore(s))
      MireArea(*canvas, s.XPat[At(p)], s.YPat[At(p)], "Best start point", 2);
  }
}

void AutoSearchMNU(AreaForm& form) {
  form.Controls().SetChecked("AutoSearchMNU", !form.Controls().Checked("AutoSearchMNU"));
}

bool SearchStartPoint(AreaForm& form, int32_t i) {
  AppState& s = form.State();
  UiPort& ui = form.Ui();
  const size_t k = At(i);
  if (i < 1 || k >= s.XStart.size()) return false;
  const int32_t p = form.Engine().grid.PatternOfCell(s.XStart[k], s.YStart[k]);
  if (p != 0) {
    s.XStart[k] = s.XPat[At(p)];
    s.YStart[k] = s.YPat[At(p)];
    ui.StatusLine("Searching for the best initial displacement please wait ...");
    if (Canvas* ref = form.RefView().GetCanvas()) MireArea(*ref, s.XStart[k], s.YStart[k], StrTrim(i));
    int32_t du = 0, dv = 0;
    if (form.Engine().search.ChercheSoluArea(s, s.XStart[k], s.YStart[k], du, dv)) {
      s.DuStart[k] = du;
      s.DvStart[k] = dv;
      s.StartOk[k] = true;
      if (Canvas* def = form.DefView().GetCanvas())
        MireArea(*def, static_cast<double>(s.XStart[k]) + du, static_cast<double>(s.YStart[k]) + dv, StrTrim(i));
      form.PropagArea();
      return true;
    }
  }
  // A point outside every pattern cell can't be searched; it fails like a refused search.
  const std::string refused = "No valide solution could be found, try it manually or give an other start point.";
  s.CurStart = i;
  ui.MessageBox(refused, "", MsgButtons::Ok, MsgIcon::None);
  ui.StatusLine(refused);
  return false;
}

}  // namespace setup
}  // namespace tessiva

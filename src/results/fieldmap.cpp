#include "results/fieldmap.h"

#include <cmath>
#include <numbers>
#include <vector>

#include "results/mesh.h"
#include "results/resultfile.h"
#include "results/strains.h"
#include "state/numtext.h"

namespace tessiva {
namespace {

constexpr double kRadians = std::numbers::pi / 180.0;
// The isostatic line spans this share of the cell.
constexpr double kIsostaticReach = 0.9;

const MeshNode& NodeOf(const AppState& s, const MeshCell& cell, size_t k) {
  return s.Noeuds[static_cast<size_t>(cell.Noeud[k])];
}

double Interpolated(const AppState& s, const FieldPoint& p, double MeshNode::*field) {
  double sum = 0.0;
  for (size_t k = 0; k < 4; ++k) sum += p.weights[k] * (NodeOf(s, *p.cell, k).*field);
  return sum;
}

// The interpolated displacement, corrected when the correction is on.
Vec2 Displacement(const AppState& s, const FieldSettings& f, const FieldPoint& p) {
  const Vec2 d{Interpolated(s, p, &MeshNode::U), Interpolated(s, p, &MeshNode::V)};
  return f.Corrected() ? f.distortion->CorrectedDisplacement({p.x, p.y}, d, f.Sign()) : d;
}

double DisplacementValue(const AppState& s, const FieldSettings& f, const FieldPoint& p, int32_t view, bool turned) {
  const Vec2 d = Displacement(s, f, p);
  if (!turned && view != kViewNorm) return view == kViewU ? d.x : d.y;
  const double a = d.x - f.subMean * s.MoyD1, b = d.y - f.subMean * s.MoyD2;
  if (view == kViewNorm) return std::sqrt(a * a + b * b);
  const double c = std::cos(f.teta1), n = std::sin(f.teta1);
  return (view == kViewU ? c * a + n * b : -n * a + c * b) * f.Sign();
}

double GreenLagrangeValue(const AppState& s, const FieldSettings& f, const FieldPoint& p, int32_t view, bool turned) {
  StrainTensor e{Interpolated(s, p, &MeshNode::E11), Interpolated(s, p, &MeshNode::E22),
                 Interpolated(s, p, &MeshNode::E12)};
  if (turned) e = TurnedStrain(e, f.cos2Teta, f.sin2Teta);
  return view == kViewE11 ? e.e11 : view == kViewE22 ? e.e22 : e.e12;
}

}  // namespace

double HalfCell(const AppState& s) { return Round(s.Lpas / 2.0); }

std::array<double, 4> ShapeWeights(double xi, double eta) {
  return {(1 - xi) * (1 - eta) / 4, (1 - xi) * (1 + eta) / 4, (1 + xi) * (1 + eta) / 4, (1 + xi) * (1 - eta) / 4};
}

std::vector<double> SampleOffsets(int32_t smooth) {
  std::vector<double> offsets;
  for (int32_t j = 0; j < smooth; ++j) offsets.push_back(-1.0 + (2.0 * j + 1.0) / smooth);
  return offsets;
}

std::optional<FieldPoint> LocateFieldPoint(const AppState& s, const FieldSettings& f, double x, double y) {
  if (s.Mailles.empty()) return std::nullopt;
  const MeshCell& cell = s.Mailles[static_cast<size_t>(NumMaille(s, x, y))];
  const int32_t i = cell.Pat;
  if (i <= 0 || i > PatternsHeld(s)) return std::nullopt;
  if (s.FlagPat[i] != -1 && f.showBad != 1) return std::nullopt;
  const double h = HalfCell(s);
  if (h <= 0) return std::nullopt;
  return FieldPoint{x, y, &cell, ShapeWeights((x - s.XPat[i]) / h, (y - s.YPat[i]) / h)};
}

double FieldValue(const AppState& s, const FieldSettings& f, const FieldPoint& p, int32_t view, bool turned) {
  switch (view) {
    case kViewH1: return Interpolated(s, p, &MeshNode::H1);
    case kViewH2: return Interpolated(s, p, &MeshNode::H2);
    case kViewH3:
    case kViewFlcDiagram:
    case kViewFlcDetermination: return Interpolated(s, p, &MeshNode::H3);
    case kViewGamma: return Interpolated(s, p, &MeshNode::Gamma);
    case kViewPsi: return Interpolated(s, p, &MeshNode::Psi);
    case kViewTeta: return Interpolated(s, p, &MeshNode::Teta);
    case kViewTresca: return Interpolated(s, p, &MeshNode::H1) - Interpolated(s, p, &MeshNode::H2);
    case kViewE11:
    case kViewE22:
    case kViewE12: return GreenLagrangeValue(s, f, p, view, turned);
    case kViewU:
    case kViewV:
    case kViewNorm: return DisplacementValue(s, f, p, view, turned);
    case kViewEcart: return Interpolated(s, p, &MeshNode::Ecart);
    default: return kFenceValue;
  }
}

double DonneIso(const AppState& s, const FieldSettings& f, double x, double y, int32_t view, bool turned) {
  const auto point = LocateFieldPoint(s, f, x, y);
  return point ? FieldValue(s, f, *point, view, turned) : kFenceValue;
}

bool PatternShown(const AppState& s, const FieldSettings& f, int32_t i) {
  if (f.showBad == 1) return true;
  if (s.FlagPat[i] != -1 || s.Mailles.empty()) return false;
  return s.Mailles[static_cast<size_t>(NumMaille(s, s.XPat[i], s.YPat[i]))].Pat != 0;
}

Histogram PaintFieldSquares(Canvas& canvas, const AppState& s, const FieldSettings& f, int32_t view,
                            const MapOptions& options, const ColourScale& palette, ColourRange range) {
  Histogram histogram{};
  const double h = HalfCell(s);
  const int32_t smooth = std::max(1, options.smooth);
  const double step = h / smooth;
  const std::vector<double> offsets = SampleOffsets(smooth);
  std::vector<CanvasBox> boxes;
  boxes.reserve(static_cast<size_t>(std::max(0, s.NbPat)) * offsets.size() * offsets.size());
  for (int32_t i = 1, count = PatternsHeld(s); i <= count; ++i) {
    if (!PatternShown(s, f, i)) continue;
    for (const double eta : offsets) {
      for (const double xi : offsets) {
        const double x = s.XPat[i] + xi * h, y = s.YPat[i] + eta * h;
        const auto point = LocateFieldPoint(s, f, x, y);
        // A sample with no pattern under it has no deformed position to stand at.
        if (options.onFinal && !point) continue;
        const double value = point ? FieldValue(s, f, *point, view) : kFenceValue;
        CountInHistogram(histogram, value, range.max, range.min);
        double fraction = (value - range.min) / (range.max - range.min);
        const Colour colour = palette.CouleurEchelle(fraction, options.palette);
        double cx = x, cy = y;
        if (options.onFinal) {
          // The window works in single precision: so are the moved squares placed.
          cx = static_cast<float>(x + FieldValue(s, f, *point, kViewU, false));
          cy = static_cast<float>(y + FieldValue(s, f, *point, kViewV, false));
        }
        boxes.push_back({cx - step, cy - step, cx + step, cy + step, colour});
      }
    }
  }
  canvas.FilledBoxes(boxes);
  return histogram;
}

Histogram PaintIsostatic(Canvas& canvas, const AppState& s, const FieldSettings& f, const ColourScale& palette,
                         int paletteMode, ColourRange range) {
  Histogram histogram{};
  const double reach = kIsostaticReach * HalfCell(s);
  for (int32_t i = 1, count = PatternsHeld(s); i <= count; ++i) {
    if (!PatternShown(s, f, i)) continue;
    const auto point = LocateFieldPoint(s, f, s.XPat[i], s.YPat[i]);
    if (!point) continue;
    const double tresca = FieldValue(s, f, *point, kViewTresca);
    const double t = FieldValue(s, f, *point, kViewTeta) * kRadians;
    CountInHistogram(histogram, tresca, range.max, range.min);
    double fraction = (tresca - range.min) / (range.max - range.min);
    const Colour colour = palette.CouleurEchelle(fraction, paletteMode);
    const double dx = reach * std::cos(t), dy = reach * std::sin(t);
    canvas.Line(s.XPat[i] - dx, s.YPat[i] - dy, s.XPat[i] + dx, s.YPat[i] + dy, colour);
  }
  return histogram;
}

std::array<std::string, 5> ScaleLabels(ColourRange range, double unit) {
  std::array<std::string, 5> labels;
  for (int j = 0; j <= 4; ++j)
    labels[static_cast<size_t>(j)] =
        Format(unit * range.min + ((range.max - range.min) * j * unit) / 4.0, "0.0E+0");
  return labels;
}

}  // namespace tessiva

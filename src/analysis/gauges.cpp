#include "analysis/gauges.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "results/strains.h"
#include "state/colour.h"
#include "state/numtext.h"

namespace tessiva {
namespace {

constexpr double kPi = std::numbers::pi;
// A box whose area is below this fraction of its diagonal squared is taken
// as a line: its gradient across the line is not known.
constexpr double kFlatBox = 1e-9;
// How far outside its box, in pixels, a right click still finds a gauge, so
// that a gauge along an axis, whose box is a line, can be hit.
constexpr double kHitMargin = 3.0;

double Length(Vec2 a) { return std::sqrt(SquaredLength(a)); }

// An angle of a direction, brought into -pi/2..pi/2: a line has no sense.
double LineAngle(double angle) {
  while (angle > kPi / 2) angle -= kPi;
  while (angle <= -kPi / 2) angle += kPi;
  return angle;
}

// The mean gradient (d/dx, d/dy) over the quadrilateral p of a field with
// the values f at its corners, interpolated linearly along each side (as a
// bilinear element is): by the divergence theorem, the integral of the
// gradient is the integral of f times the outward normal along the sides,
// which the trapezoid rule gives exactly on each straight side.
Vec2 MeanGradient(const std::array<Vec2, 4>& p, const std::array<double, 4>& f, double area) {
  double fx = 0.0, fy = 0.0;
  for (size_t k = 0; k < 4; ++k) {
    const size_t next = (k + 1) % 4;
    const double mean = (f[k] + f[next]) / 2;
    fx += mean * (p[next].y - p[k].y);
    fy -= mean * (p[next].x - p[k].x);
  }
  return {fx / area, fy / area};
}

const char* KindWord(int32_t kind) {
  switch (kind) {
    case kGaugeLinear: return "Linear";
    case kGaugeRosette: return "Rosette";
    case kGaugeSlider: return "Slider";
    default: return "Gauge";
  }
}

}  // namespace

std::array<Vec2, 4> GaugeCorners(double x1, double y1, double x2, double y2) {
  return {Vec2{x1, y1}, Vec2{x2, y1}, Vec2{x2, y2}, Vec2{x1, y2}};
}

double QuadArea(const std::array<Vec2, 4>& p) {
  return ((p[3].x - p[2].x) * (p[1].y - p[2].y) - (p[1].x - p[2].x) * (p[3].y - p[2].y) +
          (p[3].y - p[0].y) * (p[1].x - p[0].x) - (p[1].y - p[0].y) * (p[3].x - p[0].x)) /
         2;
}

GaugeReading ComputeGauge(const std::array<Vec2, 4>& corners, const std::array<Vec2, 4>& displacements, bool sens) {
  // The configuration the strains are taken on, and the motion from it.
  std::array<Vec2, 4> start = corners, motion = displacements;
  if (!sens) {
    for (size_t k = 0; k < 4; ++k) start[k] = corners[k] + displacements[k], motion[k] = Vec2{} - displacements[k];
  }
  GaugeReading r;
  const Vec2 diagonal = start[2] - start[0];
  r.Lini = Length(diagonal);
  if (!(r.Lini > 0.0)) return r;
  r.Lamda = Length(diagonal + motion[2] - motion[0]) / r.Lini;

  const double area = QuadArea(start);
  if (!(std::abs(area) > kFlatBox * r.Lini * r.Lini)) {
    // A line: the stretch along it is all that is known.
    const double n1 = diagonal.x / r.Lini, n2 = diagonal.y / r.Lini;
    const double green = (r.Lamda * r.Lamda - 1) / 2 * 100;
    r.E1 = r.Lamda > 0.0 ? std::log(r.Lamda) * 100 : 0.0;
    r.Teta = LineAngle(std::atan2(n2, n1));
    r.Epsi11 = green * n1 * n1, r.Epsi22 = green * n2 * n2, r.Epsi12 = green * n1 * n2;
    return r;
  }
  // The mean displacement gradient, F = I + [[a, b], [c, d]].
  const std::array<double, 4> u{motion[0].x, motion[1].x, motion[2].x, motion[3].x};
  const std::array<double, 4> v{motion[0].y, motion[1].y, motion[2].y, motion[3].y};
  const Vec2 gu = MeanGradient(start, u, area), gv = MeanGradient(start, v, area);
  const double a = gu.x, b = gu.y, c = gv.x, d = gv.y;
  // Green Lagrange, E = (F^T F - I) / 2, and the Hencky principal strains
  // ln(lambda) from the eigenvalues 1 + 2 E of F^T F, as the maps form them.
  const double e11 = a + (a * a + c * c) / 2, e22 = d + (d * d + b * b) / 2;
  const double e12 = (b + c) / 2 + (d * c + b * a) / 2;
  const double radius = std::sqrt((e11 - e22) * (e11 - e22) + 4 * e12 * e12);
  const double major = e11 + e22 + radius + 1, minor = e11 + e22 - radius + 1;
  r.E1 = major > 0.0 ? std::log(major) / 2 * 100 : 0.0;
  r.E2 = minor > 0.0 ? std::log(minor) / 2 * 100 : 0.0;
  // The major axis; without strain any axis is, and the maps show pi/2 then.
  r.Teta = (e12 == 0.0 && e11 == e22) ? kPi / 2 : LineAngle(std::atan2(2 * e12, e11 - e22) / 2);
  r.Epsi11 = e11 * 100, r.Epsi22 = e22 * 100, r.Epsi12 = e12 * 100;
  return r;
}

std::string GaugeActionText(GaugeAction action) {
  switch (action) {
    case GaugeAction::Delete: return "Delete this gauge";
    case GaugeAction::CopyValues: return "Copy its values";
    case GaugeAction::Rename: return "Rename...";
  }
  return {};
}

int32_t JaugeCtrl::JaugeKind(int32_t i) const { return Exists(i) ? store_.Get(i).type : 0; }
std::string JaugeCtrl::JaugeName(int32_t i) const { return Exists(i) ? store_.Get(i).name : std::string(); }
double JaugeCtrl::JaugeXDep(int32_t i) const { return Exists(i) ? store_.Get(i).xdep : 0.0; }
double JaugeCtrl::JaugeYDep(int32_t i) const { return Exists(i) ? store_.Get(i).ydep : 0.0; }
double JaugeCtrl::JaugeXArr(int32_t i) const { return Exists(i) ? store_.Get(i).xarr : 0.0; }
double JaugeCtrl::JaugeYArr(int32_t i) const { return Exists(i) ? store_.Get(i).yarr : 0.0; }

std::array<Vec2, 4> JaugeCtrl::Corners(int32_t i) const {
  return GaugeCorners(JaugeXDep(i), JaugeYDep(i), JaugeXArr(i), JaugeYArr(i));
}

int32_t JaugeCtrl::JaugeAdd(Canvas* dc, int32_t kind, double x1, double y1, double x2, double y2, std::string name) {
  Gage g;
  g.type = kind;
  g.xdep = RoundToInt32(x1), g.ydep = RoundToInt32(y1), g.xarr = RoundToInt32(x2), g.yarr = RoundToInt32(y2);
  // The store gives the next number to a new gauge.
  g.name = name.empty() ? KindWord(kind) + std::to_string(store_.Count() + 1) : std::move(name);
  const int32_t i = store_.Add(std::move(g));
  Extra& e = ExtraOf(i);
  e = Extra{};
  e.surface = dc;
  return i;
}

void JaugeCtrl::JaugeClear() {
  store_.Clear();
  extra_.clear();
}

void JaugeCtrl::JaugeDelete(int32_t i) {
  if (!Exists(i)) return;
  store_.Remove(i);
  if (static_cast<size_t>(i) < extra_.size()) extra_[static_cast<size_t>(i)] = Extra{};
}

JaugeCtrl::Extra& JaugeCtrl::ExtraOf(int32_t i) {
  const size_t slot = static_cast<size_t>(std::max(i, 0));
  if (extra_.size() <= slot) extra_.resize(slot + 1);
  return extra_[slot];
}

void JaugeCtrl::JaugeU(int32_t i, int corner, double u) {
  if (Exists(i) && corner >= 1 && corner <= 4) ExtraOf(i).displacements[static_cast<size_t>(corner - 1)].x = u;
}

void JaugeCtrl::JaugeV(int32_t i, int corner, double v) {
  if (Exists(i) && corner >= 1 && corner <= 4) ExtraOf(i).displacements[static_cast<size_t>(corner - 1)].y = v;
}

void JaugeCtrl::JaugeCalcul() {
  for (int32_t i = 1; i <= JaugeCount(); ++i) {
    if (!Exists(i)) continue;
    Extra& e = ExtraOf(i);
    e.reading = ComputeGauge(Corners(i), e.displacements, JaugeSens);
  }
}

const GaugeReading& JaugeCtrl::Reading(int32_t i) const {
  static const GaugeReading kNone{};
  if (!Exists(i) || static_cast<size_t>(i) >= extra_.size()) return kNone;
  return extra_[static_cast<size_t>(i)].reading;
}

void JaugeCtrl::JaugeDraw(int32_t i) {
  if (!Exists(i)) return;
  if (Canvas* surface = ExtraOf(i).surface) JaugeDraw(i, *surface);
}

void JaugeCtrl::JaugeDraw(int32_t i, Canvas& canvas) const {
  if (!Exists(i)) return;
  const std::array<Vec2, 4> p = Corners(i);
  const Vec2 along = p[2] - p[0];
  const double length = Length(along);
  // Ticks across the line, a tenth of its length and at least 2 pixels each side.
  const double half = std::max(2.0, length / 10);
  const Vec2 across = length > 0.0 ? Vec2{-along.y / length * half, along.x / length * half} : Vec2{0.0, half};
  const auto tick = [&](Vec2 at, Colour colour) {
    canvas.Line(at.x - across.x, at.y - across.y, at.x + across.x, at.y + across.y, colour);
  };
  KeptDrawWidth kept(&canvas);
  canvas.SetDrawMode(DrawMode::CopyPen);
  canvas.SetDrawWidth(2);
  switch (JaugeKind(i)) {
    case kGaugeLinear: {
      const Colour red = QBColor(12);
      canvas.Line(p[0].x, p[0].y, p[2].x, p[2].y, red);
      tick(p[0], red);
      tick(p[2], red);
      break;
    }
    case kGaugeSlider: {
      const Colour cyan = QBColor(11);
      canvas.Line(p[0].x, p[0].y, p[2].x, p[2].y, cyan);
      tick(p[0], cyan);
      canvas.Box(p[2].x - half, p[2].y - half, p[2].x + half, p[2].y + half, cyan);
      break;
    }
    default: {
      const Colour green = QBColor(10);
      canvas.SetDrawWidth(1);
      canvas.Box(p[0].x, p[0].y, p[2].x, p[2].y, QBColor(8));
      canvas.SetDrawWidth(2);
      for (size_t k = 1; k < 4; ++k) canvas.Line(p[0].x, p[0].y, p[k].x, p[k].y, green);
      break;
    }
  }
}

std::optional<GaugeMenu> JaugeCtrl::JaugeMouseUp(int button, int shift, double x, double y) const {
  if (button != 2 || shift != 0) return std::nullopt;
  for (int32_t i = JaugeCount(); i >= 1; --i) {
    if (!Exists(i)) continue;
    // minmax over values, not temporaries it would return references to.
    const auto [xa, xb] = std::minmax({JaugeXDep(i), JaugeXArr(i)});
    const auto [ya, yb] = std::minmax({JaugeYDep(i), JaugeYArr(i)});
    if (x >= xa - kHitMargin && x <= xb + kHitMargin && y >= ya - kHitMargin && y <= yb + kHitMargin)
      return GaugeMenu{i, {GaugeAction::Delete, GaugeAction::CopyValues, GaugeAction::Rename}};
  }
  return std::nullopt;
}

std::string JaugeCtrl::ValuesText(int32_t i, const std::string& numberFormat) const {
  if (!Exists(i)) return {};
  const GaugeReading& r = Reading(i);
  std::string text =
      "Gauge\tKind\tLini (pixels)\tLamda\tE1 (Hencky, %)\tE2 (Hencky, %)\tTeta (radians)\t"
      "Epsi11 (Green Lagrange, %)\tEpsi12 (Green Lagrange, %)\tEpsi22 (Green Lagrange, %)\r\n";
  text += JaugeName(i) + "\t" + KindWord(JaugeKind(i));
  for (const double value : {r.Lini, r.Lamda, r.E1, r.E2, r.Teta, r.Epsi11, r.Epsi12, r.Epsi22})
    text += "\t" + Format(value, numberFormat);
  return text + "\r\n";
}

void JaugeCtrl::JaugeAction(int32_t i, GaugeAction action, UiPort& ui, const std::string& numberFormat) {
  if (!Exists(i)) return;
  switch (action) {
    case GaugeAction::Delete:
      JaugeDelete(i);
      break;
    case GaugeAction::CopyValues:
      ui.SetClipboardText(ValuesText(i, numberFormat));
      break;
    case GaugeAction::Rename: {
      const auto typed = ui.InputBox("Name of the gauge", "Gauge", JaugeName(i));
      if (!typed || Trim(*typed).empty()) break;
      store_.Get(i).name = Trim(*typed);
      break;
    }
  }
}

int32_t JaugeFromDrag(JaugeCtrl& gauges, Canvas* dc, int32_t kind, double x1, double y1, double x2, double y2,
                      int32_t lpas) {
  if (kind == kGaugeRosette) {
    const double side = Round(std::max(std::abs(x2 - x1), std::abs(y2 - y1)));
    x2 = x1 + side, y2 = y1 + side;
  }
  if (std::hypot(x2 - x1, y2 - y1) < lpas) return 0;
  return gauges.JaugeAdd(dc, kind, x1, y1, x2, y2);
}

GaugeMeasure MeasureGauge(const AppState& s, const FieldSettings& f, JaugeCtrl& gauges, int32_t i) {
  GaugeMeasure m;
  if (!gauges.Exists(i)) return m;
  const std::array<Vec2, 4> corners = gauges.Corners(i);
  std::array<Vec2, 4> moved{};
  for (int k = 1; k <= 4; ++k) {
    const Vec2 p = corners[static_cast<size_t>(k - 1)];
    // Forward displacements in picture axes, whatever the configuration: the
    // component turns them round itself when it works on the deformed one.
    const double u = DonneIso(s, f, p.x, p.y, kViewU, false), v = DonneIso(s, f, p.x, p.y, kViewV, false);
    gauges.JaugeU(i, k, u);
    gauges.JaugeV(i, k, v);
    moved[static_cast<size_t>(k - 1)] = p + Vec2{u, v};
  }
  gauges.JaugeSens = f.bInitial;
  gauges.JaugeCalcul();
  m.reading = gauges.Reading(i);
  m.a0 = QuadArea(corners);
  m.a1 = QuadArea(moved);
  return m;
}

std::string GaugeRow(int32_t kind, const std::string& fileName, const std::string& extras, const GaugeMeasure& m,
                     const FieldSettings& axes, const std::string& formatLong) {
  const GaugeReading& r = m.reading;
  std::string row = fileName + "\t" + extras;
  const auto add = [&](double value) { row += "\t" + Format(value, formatLong); };
  switch (kind) {
    case kGaugeLinear:
      for (const double value : {r.E1, r.Epsi11, r.Lamda, r.Lini}) add(value);
      break;
    case kGaugeRosette: {
      const StrainTensor turned = TurnedStrain({r.Epsi11, r.Epsi22, r.Epsi12}, axes.cos2Teta, axes.sin2Teta);
      add(r.E1);
      add(r.E2);
      add((r.Teta - axes.teta1) * 180 / kPi);
      row += "\t" + GeneralNumber(turned.e11);
      add(turned.e12);
      add(turned.e22);
      // A0 / A1, the initial area over the deformed one. A box folded flat
      // has no ratio: the number format shows the infinite quotient as 0.
      add(m.a0 / m.a1);
      break;
    }
    case kGaugeSlider:
      for (const double value : {r.Lini, r.Lamda * r.Lini, r.Lamda}) add(value);
      break;
    default:
      break;
  }
  return row + "\r\n";
}

std::string GaugeColumnsTip(int32_t kind) {
  switch (kind) {
    case kGaugeLinear:
      return "E1: major principal strain, Hencky (logarithmic), %\n"
             "Epsi11: Green Lagrange strain along x of the picture, %\n"
             "Lamda: final over initial length of the gauge\n"
             "Lini: initial length, pixels";
    case kGaugeRosette:
      return "E1, E2: major and minor principal strains, Hencky (logarithmic), %\n"
             "Teta: angle of the major principal axis from axis 1, degrees\n"
             "Epsi11, Epsi12, Epsi22: Green Lagrange tensor in the axes 1 and 2, % (Epsi12 the tensor term)\n"
             "Surface ratio: initial area over deformed area";
    case kGaugeSlider:
      return "Lini: initial length, pixels\n"
             "Lfin: final length, pixels\n"
             "Lamda: final over initial length";
    default:
      return {};
  }
}

}  // namespace tessiva

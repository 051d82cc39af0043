#include "analysis/crackintegral.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "results/mesh.h"
#include "state/numtext.h"

namespace tessiva {
namespace {

constexpr double kInnerRing = 0.4, kOuterRing = 0.8;
// Corners and Gauss points of an element, as steps from the pattern's
// centre on the picture, and the Gauss points' natural coordinates.
constexpr std::array<double, 4> kStepX{-1, -1, 1, 1};
constexpr std::array<double, 4> kStepY{-1, 1, 1, -1};
constexpr std::array<double, 4> kKsi{-1, -1, 1, 1};
constexpr std::array<double, 4> kEta{1, -1, -1, 1};

// The crack frame: origin at the tip, X along the crack, Y to its left,
// lengths in the user's unit.
struct CrackFrame {
  double bx, by, c, s, p;

  // A picture position (pixels, y downwards) in the frame.
  Vec2 Position(double x, double y) const {
    const double dx = x * p - bx, dy = -y * p - by;
    return {dx * c + dy * s, dy * c - dx * s};
  }
  // A displacement in pixels (y downwards) in the frame.
  Vec2 Displacement(double u, double v) const {
    const double du = u * p, dv = -v * p;
    return {du * c + dv * s, dv * c - du * s};
  }
};

// Plane stress constants and the scale of the Williams fields of unit factor.
struct Elasticity {
  double E, nu, kappa, c0, d0;

  explicit Elasticity(const CrackMaterial& m)
      : E(m.young * 1000000.0),
        nu(m.poisson),
        kappa((3.0 - m.poisson) / (1.0 + m.poisson)),
        c0(std::sqrt(1.0 / (2.0 * std::numbers::pi))),
        d0(c0 / (2.0 * (E / (2.0 * (1.0 + nu))))) {}
};

// Cosine and sine of the polar angle about the tip, of its half and of one
// and a half times it. The angle runs from minus to plus a half turn and is
// 0 on the crack's line behind the tip, which lies inside the excluded band.
// The half angles come from the half-angle forms, so no trigonometric call
// is made at a Gauss point.
struct PolarTrig {
  double cs, sn, c2, s2, c3, s3;
};

PolarTrig Trig(double X, double Y, double r) {
  PolarTrig t{};
  const bool behindOnLine = X < 0 && Y == 0;
  t.cs = behindOnLine ? 1.0 : X / r;
  t.sn = behindOnLine ? 0.0 : Y / r;
  t.c2 = std::sqrt(std::max(0.0, (1 + t.cs) / 2));
  t.s2 = std::copysign(std::sqrt(std::max(0.0, (1 - t.cs) / 2)), t.sn);
  t.c3 = t.c2 * (4 * t.c2 * t.c2 - 3);
  t.s3 = t.s2 * (3 - 4 * t.s2 * t.s2);
  return t;
}

// Stresses (11, 22, 12) and x-derivatives of the displacements (1, 2) of a
// Williams field of unit factor.
struct AuxiliaryField {
  double s11, s22, s12, du1, du2;
};

struct AuxiliaryFields {
  AuxiliaryField modeI, modeII;
};

AuxiliaryFields WilliamsFields(const Elasticity& el, double r, const PolarTrig& t) {
  const double cs = t.cs, sn = t.sn, c2 = t.c2, s2 = t.s2, c3 = t.c3, s3 = t.s3;
  const double sr = std::sqrt(r), dth = -sn / r;
  const double k = el.kappa, c0 = el.c0, d0 = el.d0;
  AuxiliaryFields f;
  f.modeI.s11 = c0 / sr * c2 * (1 - s2 * s3);
  f.modeI.s22 = c0 / sr * c2 * (1 + s2 * s3);
  f.modeI.s12 = c0 / sr * s2 * c2 * c3;
  f.modeI.du1 = cs * (k - cs) * d0 / 2 / sr * c2 + dth * d0 * sr * (sn * c2 - s2 / 2 * (k - cs));
  f.modeI.du2 = cs * (k - cs) * d0 / 2 / sr * s2 + dth * d0 * sr * (sn * s2 + c2 / 2 * (k - cs));
  f.modeII.s11 = -c0 / sr * s2 * (c3 * c2 + 2);
  f.modeII.s22 = c0 / sr * s2 * c2 * c3;
  f.modeII.s12 = c0 / sr * c2 * (1 - s2 * s3);
  f.modeII.du1 = cs * (k + 2 + cs) * d0 / 2 / sr * s2 + dth * d0 * sr * (c2 / 2 * (k + 2 + cs) - sn * s2);
  f.modeII.du2 = -cs * (k - 2 + cs) * d0 / 2 / sr * c2 - dth * d0 * sr * (-s2 / 2 * (k - 2 + cs) - sn * c2);
  return f;
}

// The measured gradient and plane stress at a point of a bilinear element.
struct MeasuredField {
  double ux, vx, vy, e12, s11, s22, s12, area;
};

double AlongKsi(const std::array<double, 4>& a, double eta) {
  return ((1 - eta) * (a[2] - a[1]) + (1 + eta) * (a[3] - a[0])) / 4;
}
double AlongEta(const std::array<double, 4>& a, double ksi) {
  return ((1 - ksi) * (a[0] - a[1]) + (1 + ksi) * (a[3] - a[2])) / 4;
}

struct Element {
  std::array<double, 4> X, Y, U, V;

  MeasuredField At(const Elasticity& el, double ksi, double eta) const {
    const double xk = AlongKsi(X, eta), xe = AlongEta(X, ksi);
    const double yk = AlongKsi(Y, eta), ye = AlongEta(Y, ksi);
    const double uk = AlongKsi(U, eta), ue = AlongEta(U, ksi);
    const double vk = AlongKsi(V, eta), ve = AlongEta(V, ksi);
    const double det = ye * xk - xe * yk;
    MeasuredField m;
    m.ux = (ye * uk - yk * ue) / det;
    const double uy = (xk * ue - xe * uk) / det;
    m.vx = (ye * vk - yk * ve) / det;
    m.vy = (xk * ve - xe * vk) / det;
    m.e12 = (uy + m.vx) / 2;
    m.s11 = el.E * (m.ux + el.nu * m.vy) / (1 - el.nu * el.nu);
    m.s22 = el.E * (m.vy + el.nu * m.ux) / (1 - el.nu * el.nu);
    m.s12 = el.E * m.e12 / (1 + el.nu);
    m.area = std::abs(det);
    return m;
  }
};

// The interaction integrand of the measured field with an auxiliary one.
double Interaction(const MeasuredField& m, const AuxiliaryField& a, double qx, double qy) {
  return m.area * ((m.s12 * a.du2 + m.s11 * a.du1 + m.ux * a.s11 + a.s12 * m.vx) * qx -
                   qx * (2 * a.s12 * m.e12 + m.ux * a.s11 + a.s22 * m.vy) +
                   (m.s22 * a.du2 + m.s12 * a.du1 + a.s12 * m.ux + a.s22 * m.vx) * qy);
}

double JIntegrand(const MeasuredField& m, double qx, double qy) {
  return m.area * ((m.s11 * m.ux + m.s12 * m.vx) * qx - (2 * m.e12 * m.s12 + m.s11 * m.ux + m.s22 * m.vy) * qx / 2 +
                   (m.s12 * m.ux + m.s22 * m.vx) * qy);
}

bool TakesPart(const AppState& s, int32_t i, int32_t cell, int32_t showBad) {
  if (cell <= 0) return false;
  return (s.FlagPat[i] == -1 && s.Mailles[static_cast<size_t>(cell)].Pat != 0) || showBad == 1;
}

// One crossing of the ray from (x, y) towards +x with the edge a -> b.
bool RayCrosses(Vec2 a, Vec2 b, double x, double y, Vec2 beyond) {
  if (y == a.y || y == b.y) y += 0.5;
  Vec2 at{};
  if (a.x == b.x) {
    at = {a.x, y};
  } else {
    const double m = (a.y - b.y) / (a.x - b.x);
    const double q = (a.x * b.y - a.y * b.x) / (a.x - b.x);
    at = m != 0 ? Vec2{(y - q) / m, y} : beyond;
  }
  return at.x >= x && at.y >= std::min(a.y, b.y) && at.y <= std::max(a.y, b.y);
}

}  // namespace

double CrackLine::Length() const { return std::hypot(xArr - xDep, yArr - yDep); }

bool CrackFactors::Usable() const {
  return gaussPoints > 0 && std::isfinite(J) && std::isfinite(KI) && std::isfinite(KII) &&
         std::isfinite(KIfromJ) && std::isfinite(JfromKs) && std::isfinite(direction);
}

BandOutline CrackBand(const CrackLine& crack, double halfWidth) {
  Vec2 d{halfWidth, 0.0};
  if (crack.xDep != crack.xArr) {
    const double m = (crack.yArr - crack.yDep) / (crack.xDep - crack.xArr);
    const double n = std::sqrt(1 + m * m);
    d = {m / n * halfWidth, 1 / n * halfWidth};
  }
  const Vec2 dep{crack.xDep, crack.yDep}, arr{crack.xArr, crack.yArr};
  return {dep + d, arr + d, arr - d, dep - d, dep + d};
}

// A horizontal edge puts its crossing beyond the outline, where it can't count.
bool InsideBand(const BandOutline& band, double x, double y) {
  Vec2 beyond{band[0].x, band[0].y};
  for (const Vec2& v : band) beyond = {std::max(beyond.x, v.x), std::max(beyond.y, v.y)};
  beyond = {1.5 * beyond.x, 1.5 * beyond.y};
  int crossings = 0;
  for (size_t k = 0; k + 1 < band.size(); ++k) crossings += RayCrosses(band[k], band[k + 1], x, y, beyond) ? 1 : 0;
  return crossings % 2 == 1;
}

double GrowthDirection(double ki, double kii, double c, double s) {
  if (kii == 0) return std::atan(s / c) + std::numbers::pi;
  const double ratio = ki / kii, sign = kii > 0 ? 1.0 : -1.0;
  const double kink = 2 * std::atan((ratio - sign * std::sqrt(ratio * ratio + 8)) / 4);
  return std::atan(s / (-c)) + kink + std::numbers::pi;
}

CrackFactors CrackIntegrals(const AppState& s, const CrackLine& crack, const CrackMaterial& material, double klarg,
                            int32_t showBad) {
  CrackFactors out;
  out.innerRadius = kInnerRing * crack.radius;
  out.outerRadius = kOuterRing * crack.radius;
  const double p = material.unitPerPixel;
  const double ri = out.innerRadius * p, ro = out.outerRadius * p;
  if (crack.Length() == 0 || !(ro > ri) || !(p > 0) || s.Lpas <= 0) return out;
  const Elasticity el(material);
  const Vec2 tip{crack.xArr * p, -crack.yArr * p}, start{crack.xDep * p, -crack.yDep * p};
  const double length = std::hypot(tip.x - start.x, tip.y - start.y);
  const CrackFrame frame{tip.x, tip.y, (tip.x - start.x) / length, (tip.y - start.y) / length, p};
  const BandOutline band = CrackBand(crack, klarg * s.Lpas);
  const double h = Round(s.Lpas / 2.0), g = 1 / std::sqrt(3.0);
  // A pattern whose centre is farther than this from the ring has no Gauss point in it.
  const double reach = h * p;
  double J = 0, I1 = 0, I2 = 0;
  for (int32_t i = 1; i <= s.NbPat; ++i) {
    const double xi = s.XPat[i], yi = s.YPat[i];
    const double dx = xi - crack.xArr, dy = yi - crack.yArr;
    const double fromTip = std::sqrt(dx * dx + dy * dy) * p;
    if (fromTip > ro + reach || fromTip < ri - reach) continue;
    const int32_t cell = NumMaille(s, xi, yi);
    if (!TakesPart(s, i, cell, showBad) || InsideBand(band, xi, yi)) continue;
    const MeshCell& mesh = s.Mailles[static_cast<size_t>(cell)];
    Element e;
    for (size_t k = 0; k < 4; ++k) {
      const Vec2 corner = frame.Position(xi + kStepX[k] * h, yi + kStepY[k] * h);
      const MeshNode& node = s.Noeuds[static_cast<size_t>(mesh.Noeud[k])];
      const Vec2 d = frame.Displacement(node.U, node.V);
      e.X[k] = corner.x, e.Y[k] = corner.y, e.U[k] = d.x, e.V[k] = d.y;
    }
    for (size_t k = 0; k < 4; ++k) {
      const Vec2 gauss = frame.Position(xi + kStepX[k] * h * g, yi + kStepY[k] * h * g);
      const double r = std::sqrt(gauss.x * gauss.x + gauss.y * gauss.y);
      if (r < ri || r > ro) continue;
      const PolarTrig trig = Trig(gauss.x, gauss.y, r);
      const double qx = -trig.cs / (ro - ri), qy = -trig.sn / (ro - ri);
      const AuxiliaryFields aux = WilliamsFields(el, r, trig);
      const MeasuredField m = e.At(el, kKsi[k] * g, kEta[k] * g);
      J += JIntegrand(m, qx, qy);
      I1 += Interaction(m, aux.modeI, qx, qy);
      I2 += Interaction(m, aux.modeII, qx, qy);
      ++out.gaussPoints;
    }
  }
  out.J = J;
  out.KI = el.E * I1 / 2;
  out.KII = el.E * I2 / 2;
  out.KIfromJ = std::sqrt(std::abs(J) * el.E);
  out.JfromKs = (out.KI * out.KI + out.KII * out.KII) / el.E;
  out.direction = GrowthDirection(out.KI, out.KII, frame.c, frame.s);
  return out;
}

}  // namespace tessiva

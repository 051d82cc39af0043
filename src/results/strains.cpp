#include "results/strains.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "results/mesh.h"
#include "results/resultfile.h"
#include "state/numtext.h"

namespace tessiva {
namespace {

constexpr double kPi = std::numbers::pi;
constexpr double kPercent = 100.0;
constexpr double kDegrees = 180.0 / kPi;

// Natural coordinates of the corners, in Noeud order.
constexpr std::array<double, 4> kXi{-1.0, -1.0, 1.0, 1.0};
constexpr std::array<double, 4> kEta{-1.0, 1.0, 1.0, -1.0};

// A principal direction (v1, v2) for the larger eigenvalue l1 of a symmetric
// tensor; (0, 0) when the formula gives no direction.
Vec2 PrincipalDirection(double t11, double t12, double l1) {
  const double q = t12 * t12 + (l1 - t11) * (l1 - t11);
  if (q <= 0.0) return {};
  const double r = std::sqrt(q);
  return {t12 / r, (l1 - t11) / r};
}

// The measures from the displacement gradient [[a, b], [c, d]] (dU/dX, dU/dY,
// dV/dX, dV/dY), with F = I + gradient.
StrainMeasures FromGradient(double a, double b, double c, double d, bool bInitial, double turn) {
  const double c11 = (1 + a) * (1 + a) + c * c;
  const double c22 = b * b + (1 + d) * (1 + d);
  const double c12 = b * (1 + a) + (1 + d) * c;
  const double b11 = (1 + a) * (1 + a) + b * b;
  const double b12 = c * (1 + a) + b * (1 + d);
  const double root = std::sqrt(4 * c12 * c12 + (c11 - c22) * (c11 - c22));
  const double l1 = (c11 + c22) / 2 + root / 2;
  const double l2 = (c11 + c22) / 2 - root / 2;

  StrainMeasures m;
  m.E11 = a + (a * a + c * c) / 2;
  m.E22 = d + (d * d + b * b) / 2;
  m.E12 = (b + c) / 2 + (d * c + b * a) / 2;

  // Rotation: the turn from the principal direction of C to that of B.
  const Vec2 n = PrincipalDirection(c11, c12, l1);
  const Vec2 mm = PrincipalDirection(b11, b12, l1);
  m.Psi = AngleDemi(mm.x * n.x + mm.y * n.y, mm.y * n.x - mm.x * n.y);

  const double r = std::sqrt((m.E11 - m.E22) * (m.E11 - m.E22) + (2 * m.E12) * (2 * m.E12));
  const double major = m.E11 + m.E22 + r + 1;
  const double minor = m.E11 + m.E22 - r + 1;
  m.H1 = major > 0 ? std::log(major) / 2 : 0.0;
  m.H2 = minor > 0 ? std::log(minor) / 2 : 0.0;
  m.H3 = -(m.H1 + m.H2);

  // Equal normal strains give pi/2, not pi/4.
  const double t = m.E11 - m.E22 == 0.0 ? kPi / 2 : std::atan(2 * m.E12 / (m.E11 - m.E22)) / 2;
  m.Teta = bInitial ? t : turn + t - 2 * kPi;

  // Eigenvalues of C can't be negative; rounding may make the smaller one so.
  m.Gamma = 2 * Angle2Pi(std::sqrt(std::max(l1, 0.0)), std::sqrt(std::max(l2, 0.0)));
  return m;
}

void StoreCorner(MeshCell& cell, size_t k, const StrainMeasures& m) {
  cell.E11[k] = m.E11;
  cell.E22[k] = m.E22;
  cell.E12[k] = m.E12;
  cell.H1[k] = m.H1;
  cell.H2[k] = m.H2;
  cell.H3[k] = m.H3;
  cell.Teta[k] = m.Teta;
  cell.Psi[k] = m.Psi;
  cell.Gamma[k] = m.Gamma;
}

StrainMeasures CornerOf(const MeshCell& cell, size_t k) {
  return {cell.E11[k], cell.E22[k],  cell.E12[k], cell.H1[k],   cell.H2[k],
          cell.H3[k],  cell.Teta[k], cell.Psi[k], cell.Gamma[k]};
}

void Add(StrainMeasures& sum, const StrainMeasures& m) {
  sum.E11 += m.E11;
  sum.E22 += m.E22;
  sum.E12 += m.E12;
  sum.H1 += m.H1;
  sum.H2 += m.H2;
  sum.H3 += m.H3;
  sum.Teta += m.Teta;
  sum.Psi += m.Psi;
  sum.Gamma += m.Gamma;
}

void StoreAverage(MeshNode& node, const StrainMeasures& sum, int n) {
  node.E11 = sum.E11 / n * kPercent;
  node.E22 = sum.E22 / n * kPercent;
  node.E12 = sum.E12 / n * kPercent;
  node.H1 = sum.H1 / n * kPercent;
  node.H2 = sum.H2 / n * kPercent;
  node.H3 = sum.H3 / n * kPercent;
  node.Teta = sum.Teta / n * kDegrees;
  node.Psi = sum.Psi / n * kDegrees;
  node.Gamma = sum.Gamma / n * kDegrees;
}

bool Computed(const AppState& s, int32_t i, const MeshCell& cell, int32_t showBad) {
  return (s.FlagPat[i] == -1 && cell.Pat != 0) || showBad == 1;
}

// Corner measures of pattern i's cell. The corners stand round the pattern's
// own centre, not the cell's.
void StrainsOfPattern(AppState& s, int32_t i, const StrainOptions& o) {
  MeshCell& cell = s.Mailles[static_cast<size_t>(s.CurMaille)];
  if (!Computed(s, i, cell, o.showBad)) return;
  const double h = Round(s.Lpas / 2.0);
  const double x = s.XPat[i], y = s.YPat[i];
  std::array<Vec2, 4> corners{Vec2{x - h, y - h}, Vec2{x - h, y + h}, Vec2{x + h, y + h}, Vec2{x + h, y - h}};
  std::array<Vec2, 4> displacements;
  for (size_t k = 0; k < 4; ++k) {
    const MeshNode& node = s.Noeuds[static_cast<size_t>(cell.Noeud[k])];
    displacements[k] = {node.U, node.V};
  }
  const bool corrected = o.distortion && o.distortion->On();
  const double sign = o.bInitial ? 1.0 : -1.0;
  double turn = 0.0;
  if (!o.bInitial) {
    for (size_t k = 0; k < 4; ++k) corners[k] = corners[k] + displacements[k];
    if (!corrected) turn = AngleDeuxPoints(corners[0].x, corners[0].y, corners[1].x, corners[1].y);
  }
  if (corrected) {
    for (size_t k = 0; k < 4; ++k) {
      const MeshNode& node = s.Noeuds[static_cast<size_t>(cell.Noeud[k])];
      corners[k] = o.distortion->CorrectedPosition(corners[k]);
      const Vec2 position{static_cast<double>(node.X), static_cast<double>(node.Y)};
      displacements[k] = o.distortion->CorrectedDisplacement(position, displacements[k], sign);
    }
  }
  for (Vec2& d : displacements) d = {d.x * sign, d.y * sign};
  const std::array<StrainMeasures, 4> measures = CellStrains(corners, displacements, o.bInitial, turn);
  for (size_t k = 0; k < 4; ++k) StoreCorner(cell, k, measures[k]);
}

// Each corner's node takes the average of the cell's value and those of the
// neighbours holding a pattern; a node shared by several good cells is
// computed again by each, with the same result.
void AverageAtNodes(AppState& s, int32_t i, int32_t showBad) {
  const MeshCell& cell = s.Mailles[static_cast<size_t>(s.CurMaille)];
  if (!Computed(s, i, cell, showBad)) return;
  for (size_t k = 0; k < 4; ++k) {
    StrainMeasures sum = CornerOf(cell, k);
    int n = 1;
    for (const SharedCorner& shared : kSharedCorners[k]) {
      const int32_t other = cell.Voisin[static_cast<size_t>(shared.voisin)];
      if (other == 0 || s.Mailles[static_cast<size_t>(other)].Pat == 0) continue;
      Add(sum, CornerOf(s.Mailles[static_cast<size_t>(other)], static_cast<size_t>(shared.corner)));
      ++n;
    }
    StoreAverage(s.Noeuds[static_cast<size_t>(cell.Noeud[k])], sum, n);
  }
}

}  // namespace

double AtanGarde(double a, double b) {
  if (std::abs(b) <= 0.0) return a >= 0.0 ? kPi / 2 : -kPi / 2;
  return std::atan(a / b);
}

double Angle2Pi(double p1, double p2) {
  double t = AtanGarde(p2, p1);
  if (p1 < 0.0) t += kPi;
  if (p1 > 0.0 && p2 < 0.0) t += 2 * kPi;
  return t;
}

double AngleDemi(double p1, double p2) { return AtanGarde(p2, p1); }

double AngleDeuxPoints(double x1, double y1, double x2, double y2) {
  const double d = std::sqrt((x2 - x1) * (x2 - x1) + (y2 - y1) * (y2 - y1));
  if (d == 0.0) return 0.0;
  return Angle2Pi((y2 - y1) / d, (x2 - x1) / d);
}

std::array<StrainMeasures, 4> CellStrains(const std::array<Vec2, 4>& p, const std::array<Vec2, 4>& u, bool bInitial,
                                          double turn) {
  std::array<StrainMeasures, 4> measures;
  for (size_t k = 0; k < 4; ++k) {
    const double xi = kXi[k], eta = kEta[k];
    // Derivatives along the natural coordinates of a bilinear field f given at the corners.
    const auto alongXi = [&](double f1, double f2, double f3, double f4) {
      return ((eta + 1) * (f3 - f2) + (1 - eta) * (f4 - f1)) / 4;
    };
    const auto alongEta = [&](double f1, double f2, double f3, double f4) {
      return ((xi + 1) * (f3 - f4) + (1 - xi) * (f2 - f1)) / 4;
    };
    const double xXi = alongXi(p[0].x, p[1].x, p[2].x, p[3].x), xEta = alongEta(p[0].x, p[1].x, p[2].x, p[3].x);
    const double yXi = alongXi(p[0].y, p[1].y, p[2].y, p[3].y), yEta = alongEta(p[0].y, p[1].y, p[2].y, p[3].y);
    const double uXi = alongXi(u[0].x, u[1].x, u[2].x, u[3].x), uEta = alongEta(u[0].x, u[1].x, u[2].x, u[3].x);
    const double vXi = alongXi(u[0].y, u[1].y, u[2].y, u[3].y), vEta = alongEta(u[0].y, u[1].y, u[2].y, u[3].y);
    const double det = yXi * xEta - yEta * xXi;
    if (!(std::abs(det) > 0.0) || !std::isfinite(det)) continue;
    const double a = (yXi * uEta - yEta * uXi) / det;
    const double b = (xEta * uXi - xXi * uEta) / det;
    const double c = (yXi * vEta - yEta * vXi) / det;
    const double d = (xEta * vXi - xXi * vEta) / det;
    measures[k] = FromGradient(a, b, c, d, bInitial, turn);
  }
  return measures;
}

void CalculDeformations(AppState& s, const StrainOptions& options) {
  const int32_t count = PatternsHeld(s);
  for (int32_t i = 1; i <= count; ++i) {
    s.CurMaille = NumMaille(s, s.XPat[i], s.YPat[i]);
    StrainsOfPattern(s, i, options);
  }
  for (int32_t i = 1; i <= count; ++i) {
    s.CurMaille = NumMaille(s, s.XPat[i], s.YPat[i]);
    AverageAtNodes(s, i, options.showBad);
  }
}

StrainTensor TurnedStrain(const StrainTensor& e, double c, double n) {
  const double mean = (e.e11 + e.e22) / 2, half = (e.e11 - e.e22) / 2;
  return {e.e12 * n + mean + half * c, mean - half * c - e.e12 * n, e.e12 * c - half * n};
}

}  // namespace tessiva

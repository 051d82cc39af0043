// Strain measures against closed-form fields: each field is written as a
// result file, read through the whole chain (reader, mesh, repair, strains)
// and every node of the block is compared with the finite-strain formulas,
// computed here from the deformation gradient in matrix form.
#include "results/strains.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <tuple>

#include "results/analysisfixture.h"
#include "results/mesh.h"

namespace tessiva {
namespace {

using testing::AnalysisFixture;
using testing::Displacement;
using testing::ResultHead;

constexpr double kPi = std::numbers::pi;
constexpr double kDeg = 180.0 / kPi;
constexpr double kCentre = 100.0;

// A field with a uniform gradient: u = offset + G (x - 100, y - 100).
struct AffineField {
  double g11 = 0.0, g12 = 0.0, g21 = 0.0, g22 = 0.0;
  Displacement offset;
  Displacement operator()(double x, double y) const {
    return {offset.u + g11 * (x - kCentre) + g12 * (y - kCentre), offset.v + g21 * (x - kCentre) + g22 * (y - kCentre)};
  }
};

struct Matrix2 {
  double m11, m12, m21, m22;
};

Matrix2 Inverse(const Matrix2& f) {
  const double det = f.m11 * f.m22 - f.m12 * f.m21;
  return {f.m22 / det, -f.m12 / det, -f.m21 / det, f.m11 / det};
}

Matrix2 Product(const Matrix2& a, const Matrix2& b) {
  return {a.m11 * b.m11 + a.m12 * b.m21, a.m11 * b.m12 + a.m12 * b.m22, a.m21 * b.m11 + a.m22 * b.m21,
          a.m21 * b.m12 + a.m22 * b.m22};
}

Matrix2 Rotation(double degrees) {
  const double t = degrees / kDeg;
  return {std::cos(t), -std::sin(t), std::sin(t), std::cos(t)};
}

// A stretch by `factor` along the direction at `degrees` from x.
Matrix2 StretchAlong(double degrees, double factor) {
  const Matrix2 q = Rotation(degrees), qt = {q.m11, q.m21, q.m12, q.m22};
  return Product(Product(q, {factor, 0.0, 0.0, 1.0}), qt);
}

AffineField FieldOf(const Matrix2& f) { return {f.m11 - 1.0, f.m12, f.m21, f.m22 - 1.0, {0.5, -0.25}}; }

// Node values (percent and degrees) from the gradient of the map the strains
// are computed on, F = I + grad u on the reference configuration or the
// inverse map on the deformed one, where Teta is turned by the angle of the
// cell's deformed first side, less a full turn.
StrainMeasures Expected(const Matrix2& forward, bool initial) {
  const Matrix2 f = initial ? forward : Inverse(forward);
  const double c11 = f.m11 * f.m11 + f.m21 * f.m21;
  const double c22 = f.m12 * f.m12 + f.m22 * f.m22;
  const double c12 = f.m11 * f.m12 + f.m21 * f.m22;
  const double half = (c11 + c22) / 2, det = f.m11 * f.m22 - f.m12 * f.m21;
  const double disc = std::sqrt(half * half - det * det);
  const double major = half + disc, minor = half - disc;  // squared principal stretches
  StrainMeasures m;
  m.E11 = (c11 - 1) / 2 * 100;
  m.E22 = (c22 - 1) / 2 * 100;
  m.E12 = c12 / 2 * 100;
  m.H1 = std::log(major) / 2 * 100;
  m.H2 = std::log(minor) / 2 * 100;
  m.H3 = -(m.H1 + m.H2);
  const double t = m.E11 == m.E22 ? kPi / 2 : std::atan(2 * m.E12 / (m.E11 - m.E22)) / 2;
  double turn = std::atan2(forward.m12, forward.m22);  // F (0, 1), measured from +y towards +x
  if (turn < 0) turn += 2 * kPi;
  m.Teta = (initial ? t : turn + t - 2 * kPi) * kDeg;
  double psi = std::atan2(f.m21 - f.m12, f.m11 + f.m22);  // rotation of the polar decomposition
  if (psi > kPi / 2) psi -= kPi;
  if (psi <= -kPi / 2) psi += kPi;
  m.Psi = psi * kDeg;
  m.Gamma = 2 * std::atan(std::sqrt(minor / major)) * kDeg;
  return m;
}

void ExpectClose(double actual, double expected, const char* what) {
  EXPECT_NEAR(actual, expected, 1e-9 * std::max(std::abs(expected), 1e-3)) << what;
}

// Principal directions along an axis, or none at all, leave Psi (and, with no
// distortion, Teta) to rounding; with no strain at all Teta falls to the equal
// case and Psi to the guard of AtanGarde(0, 0), 90 degrees.
enum Angle { kSkip, kFormula, kGuarded };

struct FieldCase {
  const char* name;
  Matrix2 f;
  Angle psi, teta;
};

const FieldCase kFields[] = {
    {"rigid translation", {1.0, 0.0, 0.0, 1.0}, kGuarded, kFormula},
    {"uniform stretch of 10 % along x", {1.1, 0.0, 0.0, 1.0}, kSkip, kFormula},
    {"simple shear 0.05", {1.0, 0.05, 0.0, 1.0}, kFormula, kFormula},
    {"rigid rotation of 5 degrees", Rotation(5.0), kSkip, kSkip},
    {"rotation of 5 degrees after a stretch of 10 % at 30 degrees", Product(Rotation(5.0), StretchAlong(30.0, 1.1)),
     kFormula, kFormula},
};

using StrainFields = AnalysisFixture;

// A block of 6 x 6 patterns well inside a 256 x 256 picture, grid step 8: all
// good, and every node of their cells compared.
TEST_F(StrainFields, NodesCarryTheFieldAndItsFiniteStrains) {
  for (const FieldCase& c : kFields) {
    for (const bool initial : {true, false}) {
      SCOPED_TRACE(std::string(c.name) + (initial ? ", Intial -> Final" : ", Final -> Initial"));
      const AffineField field = FieldOf(c.f);
      window.bInitial = initial;
      ASSERT_TRUE(ReadResult(ResultHead{}, testing::GridPatterns(field, 64, 64, 6, 6, 8, 8)));
      ASSERT_EQ(s.NbPat, 36);
      const StrainMeasures e = Expected(c.f, initial);
      for (int32_t i = 1; i <= s.NbPat; ++i) {
        ASSERT_EQ(s.FlagPat[i], -1) << "pattern " << i;
        for (int32_t n : s.Mailles[static_cast<size_t>(NumMaille(s, s.XPat[i], s.YPat[i]))].Noeud) {
          const MeshNode& node = s.Noeuds[static_cast<size_t>(n)];
          ASSERT_TRUE(node.Valide);
          const Displacement d = field(node.X, node.Y);
          for (auto [actual, expected, what] :
               {std::tuple{node.U, d.u, "U"}, {node.V, d.v, "V"}, {node.E11, e.E11, "E11"}, {node.E22, e.E22, "E22"},
                {node.E12, e.E12, "E12"}, {node.H1, e.H1, "H1"}, {node.H2, e.H2, "H2"}, {node.H3, e.H3, "H3"},
                {node.Gamma, e.Gamma, "Gamma"}})
            ExpectClose(actual, expected, what);
          if (c.teta == kFormula) ExpectClose(node.Teta, e.Teta, "Teta");
          if (c.psi != kSkip) ExpectClose(node.Psi, c.psi == kGuarded ? 90.0 : e.Psi, "Psi");
        }
      }
    }
  }
}

// A degenerate cell must give zeros, not NaN.
TEST(CellStrainsOfAFlatCell, AreZero) {
  const std::array<Vec2, 4> flat{Vec2{0, 0}, Vec2{0, 0}, Vec2{8, 0}, Vec2{8, 0}};
  const std::array<Vec2, 4> moved{Vec2{1, 0}, Vec2{2, 0}, Vec2{3, 0}, Vec2{4, 0}};
  for (const StrainMeasures& m : CellStrains(flat, moved, true, 0.0)) {
    for (double v : {m.E11, m.E22, m.E12, m.H1, m.H2, m.H3, m.Teta, m.Psi, m.Gamma}) EXPECT_EQ(v, 0.0);
  }
}

}  // namespace
}  // namespace tessiva

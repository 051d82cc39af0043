// The generator's fields against their closed forms: strains where the field
// is known to be uniform, the hole's free edge, and the inverse map.
#include "synth/fields.h"

#include <gtest/gtest.h>

#include <cmath>

namespace tessiva::synth {
namespace {

struct Gradient {
  double uxx, uxy, uyx, uyy;
};

Gradient NumericGradient(const FieldSpec& f, double x, double y) {
  constexpr double h = 1e-4;
  const Vec2 px = Displacement(f, x + h, y), mx = Displacement(f, x - h, y);
  const Vec2 py = Displacement(f, x, y + h), my = Displacement(f, x, y - h);
  return {(px.u - mx.u) / (2 * h), (py.u - my.u) / (2 * h), (px.v - mx.v) / (2 * h), (py.v - my.v) / (2 * h)};
}

TEST(SyntheticFields, GradientsMatchTheirClosedForms) {
  struct Case {
    const char* name;
    FieldSpec field;
    double x, y;  // where, relative to the centre
    Gradient expected;
    double tolerance;
  };
  const double rad = 3.0 * std::acos(-1.0) / 180.0;
  const Case cases[] = {
      {"uniform strain", {FieldKind::UniformStrain, 0.02, -0.01}, 30, -20, {0.02, 0, 0, -0.01}, 1e-8},
      {"simple shear", {FieldKind::SimpleShear, 0.05}, 10, 40, {0, 0.05, 0, 0}, 1e-8},
      {"rotation by 3 degrees", {FieldKind::Rotation, 3.0}, 25, 5,
       {std::cos(rad) - 1, -std::sin(rad), std::sin(rad), std::cos(rad) - 1}, 1e-8},
      {"plate far from its hole", {FieldKind::PlateWithHole, 0.01, 5.0}, 4000, 3000, {0.01, 0, 0, -0.003}, 1e-5},
      {"neck far from its peak", {FieldKind::Neck, 0.01, 0.05, 8.0}, 20, 200, {-0.003, 0, 0, 0.01}, 1e-6},
      {"neck at its peak", {FieldKind::Neck, 0.01, 0.05, 8.0}, 0, 0, {-0.018, 0, 0, 0.06}, 1e-6},
  };
  for (const Case& c : cases) {
    const Gradient g = NumericGradient(c.field, c.x, c.y);
    EXPECT_NEAR(g.uxx, c.expected.uxx, c.tolerance) << c.name;
    EXPECT_NEAR(g.uxy, c.expected.uxy, c.tolerance) << c.name;
    EXPECT_NEAR(g.uyx, c.expected.uyx, c.tolerance) << c.name;
    EXPECT_NEAR(g.uyy, c.expected.uyy, c.tolerance) << c.name;
  }
}

// Kirsch: at the hole's edge the hoop strain reaches three times the remote
// strain where the edge is parallel to the load (plane stress, eps = sigma/E).
TEST(SyntheticFields, HoleEdgeConcentratesStrainThreefold) {
  const FieldSpec hole{FieldKind::PlateWithHole, 0.01, 10.0};
  constexpr double h = 1e-4;
  const double hoop = (Displacement(hole, h, 10.0).u - Displacement(hole, -h, 10.0).u) / (2 * h);
  EXPECT_NEAR(hoop, 0.03, 1e-6);
}

TEST(SyntheticFields, InverseMapUndoesEachField) {
  const FieldSpec fields[] = {
      {FieldKind::Translation, 2.5, -1.25},  {FieldKind::UniformStrain, 0.6, 0.0},
      {FieldKind::Rotation, 10.0},           {FieldKind::Sinusoid, 0.8, 40.0},
      {FieldKind::PlateWithHole, 0.01, 8.0}, {FieldKind::CrackTip, 0.05},
  };
  for (const FieldSpec& f : fields) {
    const double X = 37.0, Y = 21.0;
    const Vec2 d = Displacement(f, X, Y);
    const Vec2 back = InverseMap(f, X + d.u, Y + d.v);
    EXPECT_NEAR(back.u, X, 1e-8) << FieldKindName(f.kind);
    EXPECT_NEAR(back.v, Y, 1e-8) << FieldKindName(f.kind);
  }
}

}  // namespace
}  // namespace tessiva::synth

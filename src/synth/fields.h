// Closed-form displacement fields for synthetic pictures: a reference point X
// moves to x = X + u(X). Lengths in pixels, centred on the picture's middle.
#pragma once

#include <optional>
#include <string>

namespace tessiva::synth {

enum class FieldKind { Translation, UniformStrain, SimpleShear, Rotation, Sinusoid, PlateWithHole, Neck, CrackTip };

// What each kind reads (unused values are ignored):
//   Translation    u = a, v = b
//   UniformStrain  exx = a, eyy = b (engineering strains about the centre)
//   SimpleShear    u = a (Y - cy)
//   Rotation       rigid rotation by a degrees about the centre
//   Sinusoid       u = a sin(2 pi X / b), b the period
//   PlateWithHole  remote strain a along x, hole radius b (Kirsch, plane stress)
//   Neck           axial strain a along y plus a peak of b over the width c, with contraction
//   CrackTip       mode I, a = KI / (2 mu) in px^0.5, crack along -x to the centre; its
//                  faces open, so the gap between them is no material
struct FieldSpec {
  FieldKind kind = FieldKind::Translation;
  double a = 0.0, b = 0.0, c = 0.0;
  double poisson = 0.3;
  double cx = 0.0, cy = 0.0;  // the centre the field refers to
};

struct Vec2 {
  double u = 0.0;
  double v = 0.0;
};

Vec2 Displacement(const FieldSpec& field, double x, double y);
// Whether a reference point is material (not inside the hole of a plate).
bool Material(const FieldSpec& field, double x, double y);
// The reference point that lands on (x, y), found by fixed-point iteration.
Vec2 InverseMap(const FieldSpec& field, double x, double y);
// Whether reference point X lands on (x, y): false where the iteration found
// no such point, as in the gap a crack's faces open.
bool Lands(const FieldSpec& field, Vec2 X, double x, double y);

std::optional<FieldKind> FieldKindNamed(const std::string& name);
std::string FieldKindName(FieldKind kind);

}  // namespace tessiva::synth

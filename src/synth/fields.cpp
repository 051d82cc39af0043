#include "synth/fields.h"

#include <cmath>
#include <numbers>

namespace tessiva::synth {
namespace {

constexpr const char* kNames[] = {"translation", "strain", "shear", "rotation", "sinusoid", "hole", "neck", "crack"};

// Kirsch's plate under remote stress S along x with a hole of radius R, in
// polar components; S/E is the remote strain.
Vec2 Kirsch(const FieldSpec& f, double dx, double dy) {
  const double r = std::max(std::hypot(dx, dy), 1e-9), t = std::atan2(dy, dx);
  const double R = f.b, nu = f.poisson, kappa = (3.0 - nu) / (1.0 + nu);
  const double scale = f.a * (1.0 + nu) / 2.0;  // S / (4 mu), with S/E = a
  const double c2 = std::cos(2 * t), s2 = std::sin(2 * t), R2 = R * R / r, R4 = R2 * R2 / r;
  const double ur = scale * (r * ((kappa - 1.0) / 2.0 + c2) + R2 * (1.0 + (1.0 + kappa) * c2) - R4 * c2);
  const double ut = scale * ((1.0 - kappa) * R2 - r - R4) * s2;
  return {ur * std::cos(t) - ut * std::sin(t), ur * std::sin(t) + ut * std::cos(t)};
}

Vec2 Neck(const FieldSpec& f, double dx, double dy) {
  const double w = std::max(f.c, 1e-9);
  const double strain = f.a + f.b * std::exp(-dy * dy / (2 * w * w));
  const double v = f.a * dy + f.b * w * std::sqrt(std::numbers::pi / 2) * std::erf(dy / (w * std::sqrt(2.0)));
  return {-f.poisson * strain * dx, v};
}

// Williams' first term of the mode I field, plane stress.
Vec2 CrackTip(const FieldSpec& f, double dx, double dy) {
  const double r = std::hypot(dx, dy), t = std::atan2(dy, dx);
  const double kappa = (3.0 - f.poisson) / (1.0 + f.poisson);
  const double m = f.a * std::sqrt(r / (2 * std::numbers::pi)) * (kappa - std::cos(t));
  return {m * std::cos(t / 2), m * std::sin(t / 2)};
}

}  // namespace

Vec2 Displacement(const FieldSpec& f, double x, double y) {
  const double dx = x - f.cx, dy = y - f.cy;
  switch (f.kind) {
    case FieldKind::Translation: return {f.a, f.b};
    case FieldKind::UniformStrain: return {f.a * dx, f.b * dy};
    case FieldKind::SimpleShear: return {f.a * dy, 0.0};
    case FieldKind::Rotation: {
      const double t = f.a * std::numbers::pi / 180.0;
      return {std::cos(t) * dx - std::sin(t) * dy - dx, std::sin(t) * dx + std::cos(t) * dy - dy};
    }
    case FieldKind::Sinusoid: return {f.a * std::sin(2 * std::numbers::pi * x / std::max(f.b, 1e-9)), 0.0};
    case FieldKind::PlateWithHole: return Kirsch(f, dx, dy);
    case FieldKind::Neck: return Neck(f, dx, dy);
    case FieldKind::CrackTip: return CrackTip(f, dx, dy);
  }
  return {};
}

bool Material(const FieldSpec& f, double x, double y) {
  return f.kind != FieldKind::PlateWithHole || std::hypot(x - f.cx, y - f.cy) >= f.b;
}

Vec2 InverseMap(const FieldSpec& f, double x, double y) {
  Vec2 X{x, y};
  for (int i = 0; i < 50; ++i) {
    const Vec2 d = Displacement(f, X.u, X.v);
    const Vec2 next{x - d.u, y - d.v};
    const double moved = std::hypot(next.u - X.u, next.v - X.v);
    X = next;
    if (moved < 1e-10) break;
  }
  return X;
}

bool Lands(const FieldSpec& f, Vec2 X, double x, double y) {
  // Far below what a picture resolves, far above what the iteration leaves.
  constexpr double kMiss = 1e-4;
  const Vec2 d = Displacement(f, X.u, X.v);
  return std::hypot(X.u + d.u - x, X.v + d.v - y) < kMiss;
}

std::optional<FieldKind> FieldKindNamed(const std::string& name) {
  for (int k = 0; k < 8; ++k)
    if (name == kNames[k]) return static_cast<FieldKind>(k);
  return std::nullopt;
}

std::string FieldKindName(FieldKind kind) { return kNames[static_cast<int>(kind)]; }

}  // namespace tessiva::synth

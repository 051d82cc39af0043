// The plane-stress Williams field round a crack tip (first terms of modes I
// and II) as a displacement field of the picture, in pixels, for result
// files whose stress intensity factors are known.
#pragma once

#include <cmath>
#include <numbers>

#include "support/resultwriter.h"

namespace tessiva::testing {

struct CrackTipLoad {
  double xTip = 0.0, yTip = 0.0;  // picture pixels
  double angle = 0.0;             // of the crack, from its start to its tip, radians, y upwards
  double KI = 0.0, KII = 0.0;     // Pa x unit^0.5
  double young = 210000.0;        // MPa
  double poisson = 0.3;
  double unitPerPixel = 1.0;
};

// The faces behind the tip open: the polar angle jumps from a half turn to
// minus a half turn across the crack's line.
inline DisplacementField WilliamsField(const CrackTipLoad& load) {
  return [load](double x, double y) {
    const double p = load.unitPerPixel, c = std::cos(load.angle), s = std::sin(load.angle);
    const double X = (x - load.xTip) * p, Y = -(y - load.yTip) * p;
    const double along = X * c + Y * s, across = Y * c - X * s;
    const double r = std::hypot(along, across), t = std::atan2(across, along);
    const double mu = load.young * 1e6 / (2 * (1 + load.poisson));
    const double kappa = (3 - load.poisson) / (1 + load.poisson);
    const double scale = std::sqrt(r / (2 * std::numbers::pi)) / (2 * mu);
    const double c2 = std::cos(t / 2), s2 = std::sin(t / 2), ct = std::cos(t);
    const double u1 = scale * (load.KI * c2 * (kappa - ct) + load.KII * s2 * (kappa + 2 + ct));
    const double u2 = scale * (load.KI * s2 * (kappa - ct) - load.KII * c2 * (kappa - 2 + ct));
    // Back to the picture: x along, y downwards, in pixels.
    return Displacement{(u1 * c - u2 * s) / p, -(u1 * s + u2 * c) / p};
  };
}

}  // namespace tessiva::testing

// A neck across x written as a displacement field: along x the Hencky major
// strain is a smooth profile of known maximum plus a raised-cosine neck, and
// nothing moves along y, so the minor strain is nil.
#pragma once

#include <cmath>
#include <numbers>

#include "support/resultwriter.h"

namespace tessiva::testing {

// The neck stands at x = 130: 22 % of smooth strain there, and `neck` % more
// within 20 pixels of it.
inline constexpr double kNeckAt = 130.0, kNeckHalfWidth = 20.0, kUndisturbedStrain = 22.0;

inline double NeckHenckyPercent(double x, double neck) {
  const double d = x - kNeckAt;
  const double smooth = 20.0 + 2.0 * std::cos(2 * std::numbers::pi * d / 200.0);
  return smooth +
         (std::abs(d) < kNeckHalfWidth ? neck / 2 * (1 + std::cos(std::numbers::pi * d / kNeckHalfWidth)) : 0.0);
}

// u(x) whose slope 1 + du/dx is exp(Hencky): the integral from 0, by the trapezoid rule.
inline DisplacementField Neck(double neck) {
  return [neck](double x, double) {
    constexpr double h = 0.01;
    double u = 0.0;
    const auto slope = [neck](double at) { return std::exp(NeckHenckyPercent(at, neck) / 100.0) - 1.0; };
    const int steps = static_cast<int>(std::ceil(std::abs(x) / h));
    for (int i = 0; i < steps; ++i) u += (slope(i * h) + slope((i + 1) * h)) / 2 * h;
    return Displacement{u, 0.0};
  };
}

}  // namespace tessiva::testing

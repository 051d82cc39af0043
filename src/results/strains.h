// Finite strain measures from the accepted node displacements: the
// deformation gradient at the four corners of each good cell, treated as a
// four-node bilinear element, the Green Lagrange and Hencky strains, the
// rotation and shear angles, and their averages at the nodes.
#pragma once

#include <array>
#include <cstdint>

#include "results/distortion.h"
#include "results/geometry.h"
#include "state/appstate.h"

namespace tessiva {

// a / b through the arc tangent; for b = 0, +pi/2 when a >= 0, else -pi/2.
double AtanGarde(double a, double b);
// The angle of the vector (p1, p2) = (cos, sin), in 0..2 pi, except that
// p1 = 0 with p2 < 0 stays at -pi/2.
double Angle2Pi(double p1, double p2);
// AtanGarde(p2, p1) alone: -pi/2..pi/2.
double AngleDemi(double p1, double p2);
// Angle of the segment from (x1, y1) to (x2, y2), measured from +y towards +x,
// in 0..2 pi; 0 for two equal points.
double AngleDeuxPoints(double x1, double y1, double x2, double y2);

// A plane strain tensor, and its components on axes turned by theta, given
// cos and sin of 2 theta.
struct StrainTensor {
  double e11, e22, e12;
};
StrainTensor TurnedStrain(const StrainTensor& e, double cos2Theta, double sin2Theta);

// The nine measures at one point: plain ratios and radians.
struct StrainMeasures {
  double E11 = 0.0;
  double E22 = 0.0;
  double E12 = 0.0;
  double H1 = 0.0;
  double H2 = 0.0;
  double H3 = 0.0;
  double Teta = 0.0;
  double Psi = 0.0;
  double Gamma = 0.0;
};

// The measures at the four corners of one cell, in Noeud order, from the
// corners' positions and displacements. Displacements come multiplied by the
// configuration's sign: +1 on the reference configuration (bInitial), -1 on
// the deformed one, where Teta is also turned by `turn`, the angle of the
// cell's first side (AngleDeuxPoints of corners 1 and 2), less a full turn.
// A corner where the element is flat gets zeros.
std::array<StrainMeasures, 4> CellStrains(const std::array<Vec2, 4>& corners, const std::array<Vec2, 4>& displacements,
                                          bool bInitial, double turn);

struct StrainOptions {
  // Strains on the reference configuration ("Intial -> Final") or, when false,
  // on the deformed one with the displacement taken backwards.
  bool bInitial = true;
  // 1: patterns that aren't good are computed as well.
  int32_t showBad = 0;
  // The correction of positions and displacements, when on.
  const Distortion* distortion = nullptr;
};

// The calculation part of MinMaxDeformation: the corner measures of every
// good cell, then their averages at the nodes, strains in percent and angles
// in degrees. Nodes of no good cell keep what they held.
void CalculDeformations(AppState& s, const StrainOptions& options);

}  // namespace tessiva

// Fracture parameters from a measured displacement field alone: the domain
// form of the J integral and two interaction integrals with Williams'
// near-tip fields (modes I and II), taken over the elements of the analysis
// mesh that lie in a ring round the crack tip, in plane stress. Patterns in
// a band along the crack faces are left out, since their cells straddle the
// opening. Nothing here shows or draws anything.
#pragma once

#include <array>
#include <cstdint>

#include "results/geometry.h"
#include "state/appstate.h"

namespace tessiva {

// A crack is measured only from this many grid steps long.
inline constexpr double kShortestCrack = 3.0;

// A crack on the picture, picture pixels: its start, its tip and the radius
// of the ring round the tip (the ring runs from 0.4 to 0.8 of it).
struct CrackLine {
  double xDep = 0.0, yDep = 0.0;
  double xArr = 0.0, yArr = 0.0;
  double radius = 0.0;

  double Length() const;
};

// The excluded band: a closed outline of half width `halfWidth` pixels round
// the crack, start + d, tip + d, tip - d, start - d and the start again.
using BandOutline = std::array<Vec2, 5>;
BandOutline CrackBand(const CrackLine& crack, double halfWidth);
// Whether (x, y) lies inside the outline: a ray towards +x crosses it an odd
// number of times. A ray through a vertex is moved half a pixel down.
bool InsideBand(const BandOutline& band, double x, double y);

// The material and the scale the integrals are taken in: Young's modulus in
// MPa, Poisson's ratio, and the user's unit per pixel (along x; y is
// measured in the same scale).
struct CrackMaterial {
  double young = 210000.0;
  double poisson = 0.3;
  double unitPerPixel = 1.0;
};

// What the integrals give. J and the factors are in Pa and the user's unit
// (J in Pa x unit, K in Pa x unit^0.5). The direction of growth is an angle
// on the picture in radians; the radii of the ring are in pixels.
struct CrackFactors {
  double J = 0.0, KI = 0.0, KII = 0.0, KIfromJ = 0.0, JfromKs = 0.0;
  double direction = 0.0;
  double innerRadius = 0.0, outerRadius = 0.0;
  // Gauss points that lay in the ring: none when no usable pattern is there.
  int32_t gaussPoints = 0;

  // Some element contributed and every figure is a number.
  bool Usable() const;
};

// The integrals over the patterns of the current result and its mesh. A
// pattern takes part when it is good and its cell holds it (or `showBad` is
// 1) and its centre lies outside the band of half width klarg x Lpas. A
// crack of no length or a ring of no width gives nothing usable.
CrackFactors CrackIntegrals(const AppState& s, const CrackLine& crack, const CrackMaterial& material, double klarg,
                            int32_t showBad);

// The direction of growth by the maximum hoop stress criterion, for a crack
// running along (c, s) in the frame with y upwards. Without mode II the
// crack's own line; otherwise its line turned by the kink angle, the line
// being taken from (-c, s). Both branches add a half turn.
double GrowthDirection(double ki, double kii, double c, double s);

}  // namespace tessiva

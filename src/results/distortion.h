// Correction of the false displacement field that lens and camera add: a
// result file measured once on a rigid target is fitted, per displacement
// component, by a cubic polynomial in x and y, and the fitted field is then
// taken off every result.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "results/geometry.h"
#include "state/appstate.h"
#include "ui/uiport.h"

namespace tessiva {

// Coefficients c1..c10 (index 1..10) of
// P(x, y) = c1 x^3 + c2 y^3 + c3 x^2 y + c4 x y^2 + c5 x^2 + c6 y^2 + c7 x y + c8 x + c9 y + c10.
using Poly3 = std::array<double, 11>;

class Distortion {
 public:
  // -1 while the correction is on, 0 otherwise.
  int32_t DistorOn = 0;
  Poly3 CoefDu{};
  Poly3 CoefDv{};

  bool On() const { return DistorOn != 0; }
  // Released coefficients evaluate as zeros.
  void Release();

  // The correction at a point: the opposite of the fitted field.
  double DistorU(double x, double y) const;
  double DistorV(double x, double y) const;

  // A node at `position` with displacement `d`, on the configuration of sign s
  // (+1 reference, -1 deformed): d + Distor(position + s d) - Distor(position).
  Vec2 CorrectedDisplacement(Vec2 position, Vec2 d, double s) const;
  // A point moved by the correction at that point.
  Vec2 CorrectedPosition(Vec2 p) const;
};

// Least-squares fit of P to n points through the plain normal equations,
// solved in double by Gauss elimination with row pivoting. Fewer than 11
// points leave `coef` zero; a zero pivot stops the fit (debug note "ici") and
// returns false with `coef` zero.
bool AjustePoly3(Poly3& coef, int32_t n, const std::vector<int32_t>& xs, const std::vector<int32_t>& ys,
                 const std::vector<double>& values);

// Reads the good patterns of a result file and fits CoefDu to their d1 and
// CoefDv to their d2. Sets the shared counts NbBox (the file's areas) and
// NbPatBad (to 0). A file without Lgrid or without [OUTLINES] gets its message
// box and leaves the coefficients released.
void LecDistor(Distortion& distortion, AppState& s, UiPort& ui, const std::string& file);

}  // namespace tessiva

// The fits of a forming-limit determination, over plain arrays: the
// cosine-linear model of the strain outside the neck (FitCosLin) with its
// quality, the local curvature of a profile (Quad9), and the cross-section
// determination of ISO 12004-2:2008 (an inverse parabola fitted on fit
// windows either side of the neck). Section arrays are 1-based: slot 0 is
// unused and points 1..n are read.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tessiva {

// Point states of a section: used by the fit, without data, rejected by hand.
inline constexpr int32_t kPointUsed = 1, kPointNoData = 0, kPointRejected = -1;

// The product of the r x k matrix a by the k x c matrix b, both row by row.
std::vector<double> MatMul(const std::vector<double>& a, const std::vector<double>& b, int r, int k, int c);

// Solves the n x n system m x = rhs by Gauss elimination: the pivot of a
// column is the first entry of largest modulus from the diagonal down. The
// solution replaces rhs; false on an exact zero pivot.
bool SolveGauss(std::vector<double> m, std::vector<double>& rhs, int n);

// The least-squares coefficients of `rows` rows of `cols` basis values
// (row by row in `basis`) against `values`, through the normal equations;
// none on a zero pivot.
std::optional<std::vector<double>> LeastSquares(const std::vector<double>& basis, const std::vector<double>& values,
                                                int rows, int cols);

// log10 of a positive value, else 2.
double Log10Safe(double v);

// Coefficients of the cosine-linear fit: a1, a2, a3 in 1..3, then the
// abscissae smin and smax of the used points in 4 and 5 (slot 0 unused).
using CosLinCoefficients = std::array<double, 6>;

// The fitted value at abscissa s: a1 cos t + a2 t + a3, with t running from
// -pi at smin to pi at smax.
double CosLinValue(const CosLinCoefficients& coef, double s);

// Fits the cosine-linear model to the points of state kPointUsed among
// 1..n (at most 150). Returns -1 when fitted, 1 when fewer than five points
// are used (nothing else is set), 0 when the system is singular. `quality`
// is r^10, r the normalised correlation of the fit with the data (1e-4 when
// it can't be formed).
int FitCosLin(const std::vector<double>& s, const std::vector<double>& e, const std::vector<int32_t>& state,
              int32_t n, CosLinCoefficients& coef, double& quality);

// Half the second derivative of e at x0: the quadratic coefficient of a
// parabola fitted to the nine points round the last interval of s holding
// x0; 0 when none holds it or the system is singular.
double Quad9(const std::vector<double>& s, const std::vector<double>& e, int32_t n, double x0);

// The limit strains of the cosine-linear determination: the extreme of the
// fit of the major strain (its maximum) and of the minor one (its minimum)
// over smin..smax, sampled at 50 steps as the graph draws it.
double CosLinExtreme(const CosLinCoefficients& coef, bool maximum);

// The cross-section determination of ISO 12004-2:2008.
struct IsoNeckLimit {
  // Set when a limit was found; otherwise `problem` says why.
  bool found = false;
  std::string problem;
  // The neck: the abscissa of the largest major strain with data.
  double neck = 0.0;
  // The fit windows, abscissae: left outer..inner, right inner..outer.
  double leftOuter = 0.0, leftInner = 0.0, rightInner = 0.0, rightOuter = 0.0;
  // The window width, abscissa units, and the points fitted.
  double width = 0.0;
  int32_t points = 0;
  // The limit strains, percent, and where the major one peaks.
  double major = 0.0, minor = 0.0, position = 0.0;
};

// Determines the limit strains of a section across a neck (major e1 and
// minor e2 strains in percent along abscissa s, states as above).
// `lengthUnit` is the length of one abscissa unit in millimetres (the
// calibration's unit when the pixel size isn't known). Points rejected by
// hand still show where the strain localises but are never fitted.
IsoNeckLimit IsoNeckDetermination(const std::vector<double>& s, const std::vector<double>& e1,
                                  const std::vector<double>& e2, const std::vector<int32_t>& state, int32_t n,
                                  double lengthUnit);

// The used points between the two inner bounds of the fit windows (the
// neck, where the strain localises) get state kPointRejected; false, with
// nothing changed, when no neck is found.
bool RejectNeck(const std::vector<double>& s, const std::vector<double>& e1, const std::vector<double>& e2,
                std::vector<int32_t>& state, int32_t n, double lengthUnit);

}  // namespace tessiva

#include "analysis/flcfit.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace tessiva {
namespace {

constexpr int32_t kMaxFitPoints = 150;
constexpr int32_t kFewestFitPoints = 5;
constexpr double kNoQuality = 1e-4;
// The graph draws the fit in 50 steps; the limit is read from the same points.
constexpr int kCurveSteps = 50;
// The fit window is 10 (1 + e2/e1) mm wide, kept within 2 and 20 mm.
constexpr double kWindowPerRatio = 10.0, kNarrowestWindow = 2.0, kWidestWindow = 20.0;

int32_t UsableCount(const std::vector<double>& s, const std::vector<double>& e, const std::vector<int32_t>& state,
                    int32_t n) {
  const size_t sizes = std::min({s.size(), e.size(), state.size()});
  return std::clamp<int32_t>(n, 0, sizes == 0 ? 0 : static_cast<int32_t>(sizes - 1));
}

// Least squares over the rows of a polynomial of degree two in x.
std::optional<std::vector<double>> ParabolaFit(const std::vector<double>& x, const std::vector<double>& y) {
  std::vector<double> basis;
  basis.reserve(3 * x.size());
  for (const double v : x) basis.insert(basis.end(), {v * v, v, 1.0});
  return LeastSquares(basis, y, static_cast<int>(x.size()), 3);
}

}  // namespace

std::vector<double> MatMul(const std::vector<double>& a, const std::vector<double>& b, int r, int k, int c) {
  std::vector<double> product(static_cast<size_t>(r) * c, 0.0);
  for (int i = 0; i < r; ++i)
    for (int m = 0; m < k; ++m) {
      const double aim = a[static_cast<size_t>(i) * k + m];
      for (int j = 0; j < c; ++j) product[static_cast<size_t>(i) * c + j] += aim * b[static_cast<size_t>(m) * c + j];
    }
  return product;
}

bool SolveGauss(std::vector<double> m, std::vector<double>& rhs, int n) {
  const auto at = [&m, n](int i, int j) -> double& { return m[static_cast<size_t>(i) * n + j]; };
  for (int k = 0; k < n; ++k) {
    int pivot = k;
    for (int i = k + 1; i < n; ++i)
      if (std::abs(at(i, k)) > std::abs(at(pivot, k))) pivot = i;
    if (at(pivot, k) == 0.0) return false;
    if (pivot != k) {
      for (int j = 0; j < n; ++j) std::swap(at(k, j), at(pivot, j));
      std::swap(rhs[static_cast<size_t>(k)], rhs[static_cast<size_t>(pivot)]);
    }
    for (int i = k + 1; i < n; ++i) {
      const double factor = at(i, k) / at(k, k);
      for (int j = k; j < n; ++j) at(i, j) -= factor * at(k, j);
      rhs[static_cast<size_t>(i)] -= factor * rhs[static_cast<size_t>(k)];
    }
  }
  for (int i = n - 1; i >= 0; --i) {
    double sum = rhs[static_cast<size_t>(i)];
    for (int j = i + 1; j < n; ++j) sum -= at(i, j) * rhs[static_cast<size_t>(j)];
    rhs[static_cast<size_t>(i)] = sum / at(i, i);
  }
  return true;
}

std::optional<std::vector<double>> LeastSquares(const std::vector<double>& basis, const std::vector<double>& values,
                                                int rows, int cols) {
  std::vector<double> transposed(static_cast<size_t>(rows) * cols);
  for (int i = 0; i < rows; ++i)
    for (int j = 0; j < cols; ++j)
      transposed[static_cast<size_t>(j) * rows + i] = basis[static_cast<size_t>(i) * cols + j];
  std::vector<double> rhs = MatMul(transposed, values, cols, rows, 1);
  if (!SolveGauss(MatMul(transposed, basis, cols, rows, cols), rhs, cols)) return std::nullopt;
  return rhs;
}

double Log10Safe(double v) { return v > 0 ? std::log10(v) : 2.0; }

double CosLinValue(const CosLinCoefficients& coef, double s) {
  const double t = 2 * std::numbers::pi * (s - coef[4]) / (coef[5] - coef[4]) - std::numbers::pi;
  return coef[1] * std::cos(t) + coef[2] * t + coef[3];
}

int FitCosLin(const std::vector<double>& s, const std::vector<double>& e, const std::vector<int32_t>& state,
              int32_t n, CosLinCoefficients& coef, double& quality) {
  n = std::min(UsableCount(s, e, state, n), kMaxFitPoints);
  double smin = 99999.0, smax = -99999.0;
  std::vector<int32_t> used;
  for (int32_t i = 1; i <= n; ++i) {
    if (state[static_cast<size_t>(i)] != kPointUsed) continue;
    used.push_back(i);
    smin = std::min(smin, s[static_cast<size_t>(i)]);
    smax = std::max(smax, s[static_cast<size_t>(i)]);
  }
  if (static_cast<int32_t>(used.size()) < kFewestFitPoints) return 1;
  CosLinCoefficients fitted{0.0, 0.0, 0.0, 0.0, smin, smax};
  std::vector<double> basis, values;
  for (const int32_t i : used) {
    if (smax == smin) break;
    const double t = 2 * std::numbers::pi * (s[static_cast<size_t>(i)] - smin) / (smax - smin) - std::numbers::pi;
    basis.insert(basis.end(), {std::cos(t), t, 1.0});
    values.push_back(e[static_cast<size_t>(i)]);
  }
  // Points all at one abscissa can't spread t: that is a singular system too.
  const auto solution =
      smax > smin ? LeastSquares(basis, values, static_cast<int>(used.size()), 3) : std::nullopt;
  if (!solution || !std::all_of(solution->begin(), solution->end(), [](double v) { return std::isfinite(v); })) {
    quality = std::pow(kNoQuality, 10);
    return 0;
  }
  std::copy(solution->begin(), solution->end(), fitted.begin() + 1);
  double fe = 0.0, ff = 0.0, ee = 0.0;
  for (const int32_t i : used) {
    const double f = CosLinValue(fitted, s[static_cast<size_t>(i)]), v = e[static_cast<size_t>(i)];
    fe += f * v, ff += f * f, ee += v * v;
  }
  // Values too large to square leave no correlation to speak of.
  const double r = ff * ee == 0.0 || !std::isfinite(ff * ee) ? kNoQuality : fe / std::sqrt(ff * ee);
  quality = std::pow(r, 10);
  coef = fitted;
  return -1;
}

double Quad9(const std::vector<double>& s, const std::vector<double>& e, int32_t n, double x0) {
  n = std::clamp<int32_t>(n, 0, static_cast<int32_t>(std::min(s.size(), e.size())) - 1);
  int32_t found = 0;
  for (int32_t i = 1; i < n; ++i)
    if (s[static_cast<size_t>(i)] <= x0 && x0 <= s[static_cast<size_t>(i + 1)]) found = i;
  if (found == 0 || n < 9) return 0.0;
  int32_t lo = found - 4;
  if (lo < 2) lo = 1;
  if (n < found + 4) lo = n - 9;
  lo = std::max(lo, 1);
  std::vector<double> x, y;
  for (int32_t i = lo; i < lo + 9; ++i) {
    x.push_back(s[static_cast<size_t>(i)]);
    y.push_back(e[static_cast<size_t>(i)]);
  }
  const auto solution = ParabolaFit(x, y);
  return solution ? (*solution)[0] : 0.0;
}

double CosLinExtreme(const CosLinCoefficients& coef, bool maximum) {
  double extreme = CosLinValue(coef, coef[4]);
  for (int i = 1; i <= kCurveSteps; ++i) {
    const double f = CosLinValue(coef, coef[4] + i * (coef[5] - coef[4]) / kCurveSteps);
    extreme = maximum ? std::max(extreme, f) : std::min(extreme, f);
  }
  return extreme;
}

namespace {

struct ProfilePoint {
  double s, e1, e2;
  int32_t state;
};

// The points with data, in order of abscissa.
std::vector<ProfilePoint> PointsWithData(const std::vector<double>& s, const std::vector<double>& e1,
                                         const std::vector<double>& e2, const std::vector<int32_t>& state,
                                         int32_t n) {
  n = std::min(UsableCount(s, e1, state, n), UsableCount(s, e2, state, n));
  std::vector<ProfilePoint> points;
  for (int32_t i = 1; i <= n; ++i) {
    const auto k = static_cast<size_t>(i);
    if (state[k] != kPointNoData && std::isfinite(s[k]) && std::isfinite(e1[k]) && std::isfinite(e2[k]))
      points.push_back({s[k], e1[k], e2[k], state[k]});
  }
  std::stable_sort(points.begin(), points.end(), [](const auto& a, const auto& b) { return a.s < b.s; });
  return points;
}

// The abscissa where the major strain of points[from..to] (neighbours in
// order) bends up the most: the largest second difference, averaged with its
// neighbours so that the kinks of a piecewise-linear profile don't decide.
double LargestCurvatureAt(const std::vector<ProfilePoint>& p, size_t from, size_t to) {
  if (to < from + 2) return p[from == 0 ? to : from].s;
  std::vector<double> curvature(to - from + 1, 0.0);
  for (size_t i = from + 1; i < to; ++i) {
    const double left = (p[i].e1 - p[i - 1].e1) / (p[i].s - p[i - 1].s);
    const double right = (p[i + 1].e1 - p[i].e1) / (p[i + 1].s - p[i].s);
    curvature[i - from] = 2 * (right - left) / (p[i + 1].s - p[i - 1].s);
  }
  size_t best = from + 1;
  double bestValue = -1e300;
  for (size_t i = from + 1; i < to; ++i) {
    const size_t k = i - from;
    const double lo = curvature[k > 1 ? k - 1 : k], hi = curvature[i + 1 < to ? k + 1 : k];
    const double smoothed = (lo + curvature[k] + hi) / 3.0;
    if (smoothed > bestValue) bestValue = smoothed, best = i;
  }
  return p[best].s;
}

// The neck and the inner and outer bounds of both fit windows.
bool FindFitWindows(const std::vector<ProfilePoint>& p, double lengthUnit, IsoNeckLimit& limit) {
  if (p.size() < static_cast<size_t>(kFewestFitPoints)) {
    limit.problem = "Not enough points to do interpolation (>5)";
    return false;
  }
  const auto peak = std::max_element(p.begin(), p.end(), [](const auto& a, const auto& b) { return a.e1 < b.e1; });
  const size_t k = static_cast<size_t>(peak - p.begin());
  if (peak->e1 <= 0.0) {
    limit.problem = "The major strain is nowhere positive: no neck";
    return false;
  }
  if (k == 0 || k + 1 == p.size()) {
    limit.problem = "The largest strain lies at an end of the section: the neck isn't crossed";
    return false;
  }
  limit.neck = peak->s;
  const double ratio = peak->e2 / peak->e1;
  const double millimetres = std::clamp(kWindowPerRatio * (1 + ratio), kNarrowestWindow, kWidestWindow);
  limit.width = millimetres / (lengthUnit > 0 ? lengthUnit : 1.0);
  limit.leftInner = LargestCurvatureAt(p, 0, k);
  limit.rightInner = LargestCurvatureAt(p, k, p.size() - 1);
  limit.leftOuter = limit.leftInner - limit.width;
  limit.rightOuter = limit.rightInner + limit.width;
  return true;
}

}  // namespace

// The major strain is fitted as 1/(a x^2 + b x + c), x measured from the
// neck, by linear least squares on its reciprocal; the minor strain by a
// parabola over the same points, read where the major one peaks.
IsoNeckLimit IsoNeckDetermination(const std::vector<double>& s, const std::vector<double>& e1,
                                  const std::vector<double>& e2, const std::vector<int32_t>& state, int32_t n,
                                  double lengthUnit) {
  IsoNeckLimit limit;
  const std::vector<ProfilePoint> p = PointsWithData(s, e1, e2, state, n);
  if (!FindFitWindows(p, lengthUnit, limit)) return limit;
  std::vector<double> x, reciprocal, minor;
  for (const ProfilePoint& q : p) {
    const bool inLeft = q.s >= limit.leftOuter && q.s <= limit.leftInner;
    const bool inRight = q.s >= limit.rightInner && q.s <= limit.rightOuter;
    if (q.state != kPointUsed || !(inLeft || inRight) || q.e1 <= 0.0) continue;
    x.push_back(q.s - limit.neck);
    reciprocal.push_back(1.0 / q.e1);
    minor.push_back(q.e2);
  }
  limit.points = static_cast<int32_t>(x.size());
  if (limit.points < kFewestFitPoints) {
    limit.problem = "Not enough points to do interpolation (>5)";
    return limit;
  }
  const auto major = ParabolaFit(x, reciprocal);
  const auto minorFit = ParabolaFit(x, minor);
  if (!major || !minorFit) {
    limit.problem = "The fit windows' points give no fit";
    return limit;
  }
  const double a = (*major)[0], b = (*major)[1], c = (*major)[2];
  const double least = a > 0 ? c - b * b / (4 * a) : 0.0;
  if (!(least > 0)) {
    limit.problem = "The fitted curve has no maximum";
    return limit;
  }
  const double at = -b / (2 * a);
  limit.found = true;
  limit.position = limit.neck + at;
  limit.major = 1.0 / least;
  limit.minor = ((*minorFit)[0] * at + (*minorFit)[1]) * at + (*minorFit)[2];
  return limit;
}

bool RejectNeck(const std::vector<double>& s, const std::vector<double>& e1, const std::vector<double>& e2,
                std::vector<int32_t>& state, int32_t n, double lengthUnit) {
  IsoNeckLimit limit;
  if (!FindFitWindows(PointsWithData(s, e1, e2, state, n), lengthUnit, limit)) return false;
  for (int32_t i = 1; i <= UsableCount(s, e1, state, n); ++i) {
    const auto k = static_cast<size_t>(i);
    if (state[k] == kPointUsed && s[k] > limit.leftInner && s[k] < limit.rightInner) state[k] = kPointRejected;
  }
  return true;
}

}  // namespace tessiva

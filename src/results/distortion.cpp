#include "results/distortion.h"

#include <cmath>
#include <iostream>
#include <new>
#include <utility>

#include "results/resultblock.h"
#include "state/files.h"
#include "state/keyfile.h"

namespace tessiva {
namespace {

// The work lists hold this many points; a target with more good patterns ends the read.
constexpr int32_t kMaxDistortionPoints = 20000;
constexpr size_t kTerms = 10;

double Evaluate(const Poly3& c, double x, double y) {
  return c[1] * x * x * x + c[2] * y * y * y + c[3] * x * x * y + c[4] * x * y * y + c[5] * x * x + c[6] * y * y +
         c[7] * x * y + c[8] * x + c[9] * y + c[10];
}

std::array<double, kTerms> Monomials(double x, double y) {
  return {x * x * x, y * y * y, x * x * y, x * y * y, x * x, y * y, x * y, x, y, 1.0};
}

// Gauss elimination with row pivoting on the augmented system; false at a zero pivot.
bool Solve(std::array<std::array<double, kTerms + 1>, kTerms>& m, std::array<double, kTerms>& solution) {
  for (size_t col = 0; col < kTerms; ++col) {
    size_t pivot = col;
    for (size_t row = col + 1; row < kTerms; ++row)
      if (std::abs(m[row][col]) > std::abs(m[pivot][col])) pivot = row;
    if (m[pivot][col] == 0.0) return false;
    std::swap(m[col], m[pivot]);
    for (size_t row = col + 1; row < kTerms; ++row) {
      const double factor = m[row][col] / m[col][col];
      for (size_t k = col; k <= kTerms; ++k) m[row][k] -= factor * m[col][k];
    }
  }
  for (size_t col = kTerms; col-- > 0;) {
    double sum = m[col][kTerms];
    for (size_t k = col + 1; k < kTerms; ++k) sum -= m[col][k] * solution[k];
    solution[col] = sum / m[col][col];
  }
  return true;
}

struct TargetPoints {
  std::vector<int32_t> x, y;
  std::vector<double> d1, d2;
};

// The good patterns of the block, leaving out first lines that lack a field;
// false when the target holds more than the work lists.
bool ReadTargetPoints(LineCursor lines, TargetPoints& points) {
  do {
    const PatternLines block = NextPatternLines(lines);
    if (block.passedOver) continue;
    const FirstLineFields f = SplitFirstLine(block.first);
    if (f.flag != -1 || !f.x || !f.y || !f.d1 || !f.d2) continue;
    if (static_cast<int32_t>(points.x.size()) == kMaxDistortionPoints) return false;
    points.x.push_back(*f.x);
    points.y.push_back(*f.y);
    points.d1.push_back(*f.d1);
    points.d2.push_back(*f.d2);
  } while (!lines.AtEnd());
  return true;
}

}  // namespace

void Distortion::Release() {
  CoefDu.fill(0.0);
  CoefDv.fill(0.0);
}

double Distortion::DistorU(double x, double y) const { return -Evaluate(CoefDu, x, y); }
double Distortion::DistorV(double x, double y) const { return -Evaluate(CoefDv, x, y); }

Vec2 Distortion::CorrectedDisplacement(Vec2 position, Vec2 d, double s) const {
  const double x = position.x + s * d.x;
  const double y = position.y + s * d.y;
  return {d.x + DistorU(x, y) - DistorU(position.x, position.y), d.y + DistorV(x, y) - DistorV(position.x, position.y)};
}

Vec2 Distortion::CorrectedPosition(Vec2 p) const { return {p.x + DistorU(p.x, p.y), p.y + DistorV(p.x, p.y)}; }

bool AjustePoly3(Poly3& coef, int32_t n, const std::vector<int32_t>& xs, const std::vector<int32_t>& ys,
                 const std::vector<double>& values) {
  coef.fill(0.0);
  const auto points = static_cast<size_t>(std::max(n, 0));
  if (points < kTerms + 1 || xs.size() < points || ys.size() < points || values.size() < points) return true;
  // Normal equations AᵀA c = Aᵀb, accumulated row by row of the design matrix A.
  std::array<std::array<double, kTerms + 1>, kTerms> m{};
  for (size_t p = 0; p < points; ++p) {
    const auto row = Monomials(xs[p], ys[p]);
    for (size_t i = 0; i < kTerms; ++i) {
      for (size_t j = 0; j < kTerms; ++j) m[i][j] += row[i] * row[j];
      m[i][kTerms] += row[i] * values[p];
    }
  }
  std::array<double, kTerms> solution{};
  if (!Solve(m, solution)) {
    std::clog << "ici\n";
    return false;
  }
  for (size_t i = 0; i < kTerms; ++i) coef[i + 1] = solution[i];
  return true;
}

void LecDistor(Distortion& distortion, AppState& s, UiPort& ui, const std::string& file) {
  distortion.Release();
  BusyPointer busy(ui);
  // A read that fails leaves the coefficients released.
  try {
    if (GetPrivateProfileIntA("PARAMETERS", "Lgrid", -1, file) == -1) {
      ui.MessageBox("Invalid Interpolation coefficient", "", MsgButtons::Ok, MsgIcon::None);
      return;
    }
    s.NbBox = GetPrivateProfileIntA("OUTLINES", "Number", -1, file);
    if (s.NbBox < 0) {
      ui.MessageBox("Invalid Outlines number", "", MsgButtons::Ok, MsgIcon::None);
      return;
    }
    const std::optional<std::string> text = ReadWholeFile(file);
    if (!text) return;
    LineCursor lines(*text);
    if (!SkipToResults(lines)) return;
    s.NbPatBad = 0;
    TargetPoints points;
    if (!ReadTargetPoints(lines, points)) return;
    const auto n = static_cast<int32_t>(points.x.size());
    AjustePoly3(distortion.CoefDu, n, points.x, points.y, points.d1);
    AjustePoly3(distortion.CoefDv, n, points.x, points.y, points.d2);
  } catch (const std::bad_alloc&) {
    distortion.Release();
  }
}

}  // namespace tessiva

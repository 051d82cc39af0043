#include "results/ranges.h"

#include <algorithm>
#include <cmath>

#include "results/mesh.h"
#include "results/resultfile.h"
#include "results/strains.h"
#include "state/numtext.h"

namespace tessiva {
namespace {

// A range of zero width is opened by this much, so that fractions of it exist.
constexpr double kOpening = 0.001;
// Angle ranges get a margin, and a wider one after trimming.
constexpr double kAngleMargin = 0.01;
constexpr double kTrimmedAngleMargin = 1.0;

struct RangeMembers {
  double ValueRanges::*max;
  double ValueRanges::*min;
};

constexpr RangeMembers kU{&ValueRanges::MaxU, &ValueRanges::MinU};
constexpr RangeMembers kV{&ValueRanges::MaxV, &ValueRanges::MinV};
constexpr RangeMembers kN{&ValueRanges::MaxN, &ValueRanges::MinN};
constexpr RangeMembers kH1{&ValueRanges::MaxH1, &ValueRanges::MinH1};
constexpr RangeMembers kH2{&ValueRanges::MaxH2, &ValueRanges::MinH2};
constexpr RangeMembers kH3{&ValueRanges::MaxH3, &ValueRanges::MinH3};
constexpr RangeMembers kE11{&ValueRanges::MaxE11, &ValueRanges::MinE11};
constexpr RangeMembers kE22{&ValueRanges::MaxE22, &ValueRanges::MinE22};
constexpr RangeMembers kE12{&ValueRanges::MaxE12, &ValueRanges::MinE12};
constexpr RangeMembers kTeta{&ValueRanges::MaxTeta, &ValueRanges::MinTeta};
constexpr RangeMembers kPsi{&ValueRanges::MaxPsi, &ValueRanges::MinPsi};
constexpr RangeMembers kGamma{&ValueRanges::MaxGamma, &ValueRanges::MinGamma};
constexpr RangeMembers kTresca{&ValueRanges::MaxTresca, &ValueRanges::MinTresca};

constexpr std::array<RangeMembers, 3> kDisplacementRanges{kU, kV, kN};
// The strain measures in the order they are trimmed; StrainValues gives a
// node's values in the same order.
constexpr std::array<RangeMembers, 10> kStrainRanges{kH1, kH2, kH3, kE11, kE22, kE12, kTeta, kTresca, kPsi, kGamma};
constexpr std::array<RangeMembers, 3> kAngleRanges{kTeta, kPsi, kGamma};

std::array<double, kStrainRanges.size()> StrainValues(const MeshNode& n) {
  return {n.H1, n.H2, n.H3, n.E11, n.E22, n.E12, n.Teta, n.H1 - n.H2, n.Psi, n.Gamma};
}

void Widen(ValueRanges& r, const RangeMembers& m, double value) {
  r.*m.max = std::max(r.*m.max, value);
  r.*m.min = std::min(r.*m.min, value);
}

void Reset(ValueRanges& r, const RangeMembers& m, double start) {
  r.*m.max = -start;
  r.*m.min = start;
}

void OpenZeroWidth(ValueRanges& r, const RangeMembers& m) {
  if (r.*m.max == r.*m.min) r.*m.max = r.*m.min + kOpening;
}

void PutInOrder(ValueRanges& r, const RangeMembers& m, double a, double b) {
  r.*m.max = std::max(a, b);
  r.*m.min = std::min(a, b);
}

void Copy(const ValueRanges& from, ValueRanges& to, const RangeMembers& m) {
  to.*m.max = from.*m.max;
  to.*m.min = from.*m.min;
}

void AddMargin(ValueRanges& r, const RangeMembers& m, double margin) {
  r.*m.max += margin;
  r.*m.min -= margin;
}

void Trim(const Histogram& histogram, ValueRanges& r, const RangeMembers& m) {
  TrimToBulk(histogram, r.*m.max, r.*m.min);
}

const MeshNode& NodeAt(const AppState& s, int32_t n) { return s.Noeuds[static_cast<size_t>(n)]; }

// The displacement of a node as the range searches see it: less the means on
// request, corrected for distortion when on, taken backwards on the deformed
// configuration only without the correction.
Vec2 RangeDisplacement(const AppState& s, const RangeSettings& o, const MeshNode& node) {
  const double sub = o.subMean;
  if (o.distortion && o.distortion->On()) {
    const Vec2 corrected = o.distortion->CorrectedDisplacement(
        {static_cast<double>(node.X), static_cast<double>(node.Y)}, {node.U, node.V}, 1.0);
    return {corrected.x - sub * s.MoyD1, corrected.y - sub * s.MoyD2};
  }
  const double sign = o.bInitial ? 1.0 : -1.0;
  return {(node.U - sub * s.MoyD1) * sign, (node.V - sub * s.MoyD2) * sign};
}

// U, V and the squared norm over the valid nodes of the patterns in use whose
// cell holds a pattern. A node shared by several cells counts once per cell,
// which leaves the extremes as they are.
void WidenOverPatternNodes(const AppState& s, const RangeSettings& o, ValueRanges& r) {
  for (int32_t i = 1, count = PatternsHeld(s); i <= count; ++i) {
    if (s.FlagPat[i] == 0) continue;
    const MeshCell& cell = s.Mailles[static_cast<size_t>(NumMaille(s, s.XPat[i], s.YPat[i]))];
    if (cell.Pat == 0) continue;
    for (const int32_t n : cell.Noeud) {
      const MeshNode& node = NodeAt(s, n);
      if (!node.Valide) continue;
      const Vec2 d = RangeDisplacement(s, o, node);
      Widen(r, kU, d.x);
      Widen(r, kV, d.y);
      Widen(r, kN, d.x * d.x + d.y * d.y);
    }
  }
}

// The user's axes turn the extremes, not each node.
void TurnDisplacementRanges(ValueRanges& r, double teta1) {
  const double c = std::cos(teta1), n = std::sin(teta1);
  const double maxU = r.MaxU, minU = r.MinU, maxV = r.MaxV, minV = r.MinV;
  PutInOrder(r, kU, n * maxV + c * maxU, n * minV + c * minU);
  PutInOrder(r, kV, -n * maxU + c * maxV, -n * minU + c * minV);
}

// The fractions use the raw node displacement, without mean, sign or correction.
void TrimDisplacementRanges(const AppState& s, ValueRanges& r) {
  std::array<Histogram, kDisplacementRanges.size()> histograms{};
  for (int32_t n = 1; n <= s.NbNoeuds; ++n) {
    const MeshNode& node = NodeAt(s, n);
    if (!node.Valide) continue;
    CountInHistogram(histograms[0], node.U, r.MaxU, r.MinU);
    CountInHistogram(histograms[1], node.V, r.MaxV, r.MinV);
    CountInHistogram(histograms[2], std::sqrt(node.U * node.U + node.V * node.V), r.MaxN, r.MinN);
  }
  for (size_t m = 0; m < kDisplacementRanges.size(); ++m) Trim(histograms[m], r, kDisplacementRanges[m]);
}

// The tensor rotation is applied to the extreme values, not to each node.
void TurnStrainRanges(ValueRanges& r, double cos2Teta, double sin2Teta) {
  const StrainTensor high = TurnedStrain({r.MaxE11, r.MaxE22, r.MaxE12}, cos2Teta, sin2Teta);
  const StrainTensor low = TurnedStrain({r.MinE11, r.MinE22, r.MinE12}, cos2Teta, sin2Teta);
  PutInOrder(r, kE11, high.e11, low.e11);
  PutInOrder(r, kE22, high.e22, low.e22);
  PutInOrder(r, kE12, high.e12, low.e12);
}

void TrimStrainRanges(const AppState& s, ValueRanges& r) {
  std::array<Histogram, kStrainRanges.size()> histograms{};
  for (int32_t n = 1; n <= s.NbNoeuds; ++n) {
    const MeshNode& node = NodeAt(s, n);
    if (!node.Valide) continue;
    const auto values = StrainValues(node);
    for (size_t m = 0; m < kStrainRanges.size(); ++m)
      CountInHistogram(histograms[m], values[m], r.*kStrainRanges[m].max, r.*kStrainRanges[m].min);
  }
  for (size_t m = 0; m < kStrainRanges.size(); ++m) Trim(histograms[m], r, kStrainRanges[m]);
  for (const RangeMembers& m : kAngleRanges) AddMargin(r, m, kTrimmedAngleMargin);
}

}  // namespace

void SearchDisplacementRanges(const AppState& s, const RangeSettings& o, ValueRanges& r, ValueRanges& stored) {
  for (const RangeMembers& m : kDisplacementRanges) Reset(r, m, kDisplacementRangeStart);
  WidenOverPatternNodes(s, o, r);
  if (r.MaxU == -kDisplacementRangeStart || r.MaxV == -kDisplacementRangeStart) return;
  for (const RangeMembers& m : kDisplacementRanges) OpenZeroWidth(r, m);
  TurnDisplacementRanges(r, o.teta1);
  r.MaxN = std::sqrt(r.MaxN);
  r.MinN = std::sqrt(r.MinN);
  for (const RangeMembers& m : kDisplacementRanges) Copy(r, stored, m);
  if (o.autoMinMax) TrimDisplacementRanges(s, r);
}

void SearchStrainRanges(const AppState& s, const RangeSettings& o, ValueRanges& r, ValueRanges& stored) {
  for (const RangeMembers& m : kStrainRanges) Reset(r, m, kStrainRangeStart);
  for (int32_t n = 1; n <= s.NbNoeuds; ++n) {
    const MeshNode& node = NodeAt(s, n);
    if (!node.Valide) continue;
    const auto values = StrainValues(node);
    for (size_t m = 0; m < kStrainRanges.size(); ++m) Widen(r, kStrainRanges[m], values[m]);
  }
  TurnStrainRanges(r, o.cos2Teta, o.sin2Teta);
  for (const RangeMembers& m : kStrainRanges) OpenZeroWidth(r, m);
  for (const RangeMembers& m : kAngleRanges) AddMargin(r, m, kAngleMargin);
  for (const RangeMembers& m : kStrainRanges) Copy(r, stored, m);
  if (o.autoMinMax) TrimStrainRanges(s, r);
}

void CountInHistogram(Histogram& histogram, double value, double max, double min) {
  const double f = (value - min) / (max - min);
  if (f >= 0.0 && f <= 1.0) ++histogram[static_cast<size_t>(Int(f * 100.0))];
}

void TrimToBulk(const Histogram& h, double& max, double& min) {
  constexpr int32_t kLastBin = 100;
  const auto at = [&h](int32_t j) { return h[static_cast<size_t>(j)]; };
  // The first most frequent bin, bin 0 left out.
  int32_t mode = 1;
  for (int32_t j = 2; j <= kLastBin; ++j)
    if (at(j) > at(mode)) mode = j;
  const double threshold = at(mode) / 100.0;
  // The mode itself is never below the threshold, so the walks start beside it.
  int32_t upper = 0;
  for (int32_t j = mode + 1; j <= kLastBin; ++j)
    if (at(j) < threshold && at(j - 1) > threshold) upper = j;
  int32_t lower = 0;
  for (int32_t j = mode - 1; j >= 1; --j)
    if (at(j) < threshold && at(j + 1) > threshold) lower = j;
  const double width = max - min, oldMin = min;
  max = upper / 100.0 * width + oldMin;
  min = lower / 100.0 * width + oldMin;
}

ViewRange RangeOfView(int32_t view, ValueRanges& r, double& ecartMax, double& ecartMin) {
  const auto of = [&r](const RangeMembers& m) { return ViewRange{&(r.*m.max), &(r.*m.min)}; };
  switch (view) {
    case kViewH1: return of(kH1);
    case kViewH2: return of(kH2);
    case kViewH3:
    case kViewFlcDiagram:
    case kViewFlcDetermination: return of(kH3);
    case kViewU: return of(kU);
    case kViewV: return of(kV);
    case kViewNorm:
    case kViewDeformedMesh:
    case kViewVectors: return of(kN);
    case kViewE11: return of(kE11);
    case kViewE22: return of(kE22);
    case kViewE12: return of(kE12);
    case kViewTeta: return of(kTeta);
    case kViewPsi: return of(kPsi);
    case kViewGamma: return of(kGamma);
    case kViewTresca: return of(kTresca);
    case kViewEcart: return {&ecartMax, &ecartMin};
    default: return {};
  }
}

}  // namespace tessiva

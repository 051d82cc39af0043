// The value ranges the maps colour between: displacements over the nodes of
// the patterns in use, strain measures over all valid nodes. Each search
// writes a stored copy of its ranges before any trimming, so that "Find
// Min-Max every time" can go back to it, and may then trim the ranges to the
// bulk of the data ("Auto adjust Min-Max").
#pragma once

#include <array>
#include <cstdint>

#include "results/distortion.h"
#include "state/appstate.h"

namespace tessiva {

// The codes of the views (VueCourante) that colour a measure.
inline constexpr int32_t kViewH1 = 0, kViewH2 = 1, kViewU = 2, kViewV = 3, kViewNorm = 4, kViewDeformedMesh = 5,
                         kViewVectors = 6, kViewPsi = 7, kViewTresca = 8, kViewE11 = 9, kViewE22 = 10,
                         kViewE12 = 11, kViewTeta = 12, kViewEcart = 13, kViewH3 = 14, kViewFlcDiagram = 15,
                         kViewFlcDetermination = 16, kViewGamma = 17;

// A search starts with each maximum at minus this value and each minimum at
// plus it; a displacement maximum still there means no valid node.
inline constexpr double kDisplacementRangeStart = 999999.0;
inline constexpr double kStrainRangeStart = 99999.0;

// Ranges of the measures: displacements in pixels, turned to the user's axes;
// strains in percent and angles in degrees. Tresca is H1 - H2.
struct ValueRanges {
  double MaxH1 = 0.0, MinH1 = 0.0;
  double MaxH2 = 0.0, MinH2 = 0.0;
  double MaxH3 = 0.0, MinH3 = 0.0;
  double MaxU = 0.0, MinU = 0.0;
  double MaxV = 0.0, MinV = 0.0;
  double MaxN = 0.0, MinN = 0.0;
  double MaxE11 = 0.0, MinE11 = 0.0;
  double MaxE22 = 0.0, MinE22 = 0.0;
  double MaxE12 = 0.0, MinE12 = 0.0;
  double MaxTeta = 0.0, MinTeta = 0.0;
  double MaxPsi = 0.0, MinPsi = 0.0;
  double MaxGamma = 0.0, MinGamma = 0.0;
  double MaxTresca = 0.0, MinTresca = 0.0;
};

// The settings of the analysis window the searches read.
struct RangeSettings {
  // 1 when the means are taken off the displacements ("Substract mean").
  int32_t subMean = 0;
  // Displacements are taken backwards on the deformed configuration.
  bool bInitial = true;
  const Distortion* distortion = nullptr;
  // The user's axis 1 (radians), and cos and sin of twice that angle.
  double teta1 = 0.0;
  double cos2Teta = 1.0;
  double sin2Teta = 0.0;
  // "Auto adjust Min-Max".
  bool autoMinMax = false;
};

// The range part of MinMaxDeplacement: U, V and the norm over the valid nodes
// of every pattern in use whose cell holds a pattern. When no node is valid,
// MaxU and MaxV stay at -kDisplacementRangeStart and nothing is stored.
void SearchDisplacementRanges(const AppState& s, const RangeSettings& settings, ValueRanges& ranges,
                              ValueRanges& stored);

// The range part of MinMaxDeformation: the strain measures over all valid nodes.
void SearchStrainRanges(const AppState& s, const RangeSettings& settings, ValueRanges& ranges, ValueRanges& stored);

// Counts of fractions (value - min) / (max - min) within 0..1, in bins
// Int(fraction * 100): a value at the maximum falls in bin 100.
using Histogram = std::array<int32_t, 101>;
void CountInHistogram(Histogram& histogram, double value, double max, double min);

// Narrows [min, max] to the bulk of its histogram: to the last bins, either
// side of the most frequent one, where the count falls below a hundredth of
// the peak. A side with no such fall ends at the old minimum.
void TrimToBulk(const Histogram& histogram, double& max, double& min);

// The range a view colours, as its two values: in the window's ranges or, for
// the accuracy view, in the mesh's scatter range. Null for a view without one.
struct ViewRange {
  double* max = nullptr;
  double* min = nullptr;
};
ViewRange RangeOfView(int32_t view, ValueRanges& ranges, double& ecartMax, double& ecartMin);

}  // namespace tessiva

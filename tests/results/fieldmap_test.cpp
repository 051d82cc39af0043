// Field maps against closed-form fields: values read anywhere on the map,
// the squares a map paints and where, the arrows of the vector view, and
// the analysis window's field list.
#include "results/fieldmap.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <numeric>

#include "analysis/fieldlist.h"
#include "results/analysisfixture.h"
#include "results/meshdraw.h"
#include "results/strains.h"
#include "ui/recordingcanvas.h"

namespace tessiva {
namespace {

using testing::AnalysisFixture;
using testing::Displacement;
using testing::ResultHead;

constexpr double kPi = std::numbers::pi;
constexpr Colour kOutOfRangeColour = 0x3264C8;

// u = 0.5 + 0.02 (x - 100) + 0.01 (y - 100), v = -0.25 + 0.005 (x - 100) - 0.01 (y - 100).
Displacement Affine(double x, double y) {
  return {0.5 + 0.02 * (x - 100) + 0.01 * (y - 100), -0.25 + 0.005 * (x - 100) - 0.01 * (y - 100)};
}

class FieldMaps : public AnalysisFixture {
 protected:
  // A block of 6 x 6 patterns, centres 64..104 every 8 pixels, of the given field.
  void Read(const testing::DisplacementField& field) {
    ASSERT_TRUE(ReadResult(ResultHead{}, testing::GridPatterns(field, 64, 64, 6, 6, 8, 8)));
  }
  FieldSettings settings;
};

// The Green Lagrange tensor of the affine field, from F = I + grad u.
StrainTensor GreenLagrangeOfAffine() {
  const double f11 = 1.02, f12 = 0.01, f21 = 0.005, f22 = 0.99;
  return {(f11 * f11 + f21 * f21 - 1) / 2 * 100, (f12 * f12 + f22 * f22 - 1) / 2 * 100, (f11 * f12 + f21 * f22) / 2 * 100};
}

TEST_F(FieldMaps, DonneIsoGivesTheFieldAtAnyPointAndTheFenceWhereNoPatternIs) {
  Read(Affine);
  const StrainTensor e = GreenLagrangeOfAffine();
  const double teta = 30.0 * kPi / 180.0, c = std::cos(teta), n = std::sin(teta);
  // Strain components on axes turned by teta: a E a with a the turned axis.
  const double e11Turned = e.e11 * c * c + 2 * e.e12 * c * n + e.e22 * n * n;
  for (const auto& [x, y] : {std::pair{66.5, 70.25}, {83.0, 99.9}, {101.75, 62.5}}) {
    SCOPED_TRACE(std::to_string(x) + ", " + std::to_string(y));
    const Displacement d = Affine(x, y);
    settings = {};
    EXPECT_NEAR(DonneIso(s, settings, x, y, kViewU), d.u, 1e-9);
    EXPECT_NEAR(DonneIso(s, settings, x, y, kViewV), d.v, 1e-9);
    EXPECT_NEAR(DonneIso(s, settings, x, y, kViewNorm), std::hypot(d.u, d.v), 1e-9);
    EXPECT_NEAR(DonneIso(s, settings, x, y, kViewE12), e.e12, 1e-9);
    settings.teta1 = teta, settings.cos2Teta = std::cos(2 * teta), settings.sin2Teta = std::sin(2 * teta);
    EXPECT_NEAR(DonneIso(s, settings, x, y, kViewU), c * d.u + n * d.v, 1e-9);
    EXPECT_NEAR(DonneIso(s, settings, x, y, kViewV), -n * d.u + c * d.v, 1e-9);
    EXPECT_NEAR(DonneIso(s, settings, x, y, kViewE11), e11Turned, 1e-9);
    EXPECT_NEAR(DonneIso(s, settings, x, y, kViewU, false), d.u, 1e-9) << "raw, not turned";
    EXPECT_NEAR(DonneIso(s, settings, x, y, kViewE11, false), e.e11, 1e-9) << "raw, not turned";
    settings.subMean = 1, settings.bInitial = false;
    EXPECT_NEAR(DonneIso(s, settings, x, y, kViewU), -(c * (d.u - s.MoyD1) + n * (d.v - s.MoyD2)), 1e-9)
        << "less the means, times the sign of the deformed configuration";
  }
  settings = {};
  for (const auto& [x, y] : {std::pair{10.0, 10.0}, {150.0, 80.0}, {-5.0, 1e9}})
    EXPECT_EQ(DonneIso(s, settings, x, y, kViewH1), kFenceValue) << x << ", " << y;
}

TEST_F(FieldMaps, ABadPatternGivesTheFenceUnlessBadOnesAreShown) {
  Read(Affine);
  // Inside a block the mesh would bring a pattern bad in the file back: mark it after.
  s.FlagPat[15] = 1;
  const double x = s.XPat[15], y = s.YPat[15];
  EXPECT_EQ(DonneIso(s, settings, x, y, kViewU), kFenceValue);
  settings.showBad = 1;
  EXPECT_NE(DonneIso(s, settings, x, y, kViewU), kFenceValue);
}

struct PaintCase {
  const char* name;
  int32_t smooth;
  bool onFinal;
  double halfStep;                 // half side of a square
  std::vector<Displacement> offsets;  // sample centres from the pattern centre
};

TEST_F(FieldMaps, SquaresStandAtTheSamplesOfEachCell) {
  Read(Affine);
  const PaintCase cases[] = {
      {"one sample per cell", 1, false, 4.0, {{0, 0}}},
      {"smooth 2", 2, false, 2.0, {{-2, -2}, {2, -2}, {-2, 2}, {2, 2}}},
      {"on the final picture", 1, true, 4.0, {{0, 0}}},
  };
  ColourScale palette;
  for (const PaintCase& c : cases) {
    SCOPED_TRACE(c.name);
    RecordingCanvas canvas(256, 256);
    PaintFieldSquares(canvas, s, settings, kViewU, {c.smooth, c.onFinal}, palette, {3.0, -3.0});
    const auto fills = canvas.OfKind("fill");
    ASSERT_EQ(fills.size(), static_cast<size_t>(s.NbPat) * c.offsets.size());
    for (int32_t i = 1; i <= s.NbPat; ++i) {
      for (size_t k = 0; k < c.offsets.size(); ++k) {
        const auto& box = fills[static_cast<size_t>(i - 1) * c.offsets.size() + k];
        const double x = s.XPat[i] + c.offsets[k].u, y = s.YPat[i] + c.offsets[k].v;
        const Displacement moved = c.onFinal ? Affine(x, y) : Displacement{};
        EXPECT_NEAR((box.x1 + box.x2) / 2, x + moved.u, 1e-5);
        EXPECT_NEAR((box.y1 + box.y2) / 2, y + moved.v, 1e-5);
        EXPECT_DOUBLE_EQ(box.x2 - box.x1, 2 * c.halfStep);
      }
    }
  }
}

TEST_F(FieldMaps, TheDistributionCountsInRangeSamplesAndTheMaximumFallsInTheLastBin) {
  Read([](double, double) { return Displacement{1.5, 0.0}; });
  ColourScale palette;
  RecordingCanvas canvas(256, 256);
  Histogram h = PaintFieldSquares(canvas, s, settings, kViewU, {}, palette, {1.5, 0.5});
  EXPECT_EQ(h[100], s.NbPat) << "a value at the maximum";
  // Out of range with Deborde off: the fixed colour, and not counted.
  palette.DebordeOn = false;
  canvas.ops.clear();
  h = PaintFieldSquares(canvas, s, settings, kViewU, {}, palette, {1.0, 0.0});
  EXPECT_EQ(std::accumulate(h.begin(), h.end(), 0), 0);
  for (const auto& box : canvas.OfKind("fill")) EXPECT_EQ(box.colour, kOutOfRangeColour);
}

TEST(Amplification, ZeroNegativeOrOffDrawsAtOne) {
  const std::tuple<bool, const char*, double> cases[] = {
      {false, "5", 1.0}, {true, "0", 1.0}, {true, "-2", 1.0}, {true, "abc", 1.0}, {true, "2.5", 2.5}};
  for (const auto& [on, typed, expected] : cases) EXPECT_EQ(Amplification(on, typed), expected) << typed;
}

TEST_F(FieldMaps, ArrowsPointAlongTheDisplacementAndTurnRoundOnTheDeformedConfiguration) {
  for (const double u : {0.0, 2.0}) {
    Read([u](double, double) { return Displacement{u, 0.0}; });
    for (const bool initial : {true, false}) {
      SCOPED_TRACE("u = " + std::to_string(u) + (initial ? ", Intial -> Final" : ", Final -> Initial"));
      settings.bInitial = initial;
      RecordingCanvas canvas(256, 256);
      DrawDisplacementVectors(canvas, s, settings, 1.0, 1);
      const auto lines = canvas.OfKind("line");
      ASSERT_EQ(lines.size(), static_cast<size_t>(s.NbPat) * 8);  // outline, shaft, two barbs, closing side
      const auto& shaft = lines[4];
      EXPECT_NEAR(shaft.x2 - shaft.x1, initial ? u : -u, 1e-9);
      EXPECT_NEAR(shaft.y2 - shaft.y1, 0.0, 1e-9);
      // The barbs stand behind the tip at pi/5 either side of the shaft; a
      // zero arrow has its shaft's angle at 0, so its barbs open upwards.
      const double a = u == 0.0 ? kPi / 2 : (initial ? 0.0 : kPi);
      const auto& barb = lines[5];
      EXPECT_NEAR(barb.x2, shaft.x2 - kArrowHead * std::cos(a - kPi / 5), 1e-9);
      EXPECT_NEAR(barb.y2, shaft.y2 - kArrowHead * std::sin(a - kPi / 5), 1e-9);
    }
  }
}

TEST(FieldList, EntriesGiveTheirViewTitleAndCaption) {
  const UnitNames units{"mm", "mm", "mm"};
  const std::tuple<int32_t, std::optional<int32_t>, const char*, const char*> cases[] = {
      {0, kViewU, "Displacement in mm along axe 1", "1 displacement in mm"},
      {2, kViewNorm, "Norm of displacement vector in mm", "Norm in mm"},
      {3, kViewDeformedMesh, "Deformed mesh", "Deformed Mesh"},
      {6, kViewH1, "Major principal strain - Hencky tensor", "Epsilon I Major Hencky in %"},
      {13, kViewTresca, "Isostatic representation", "Isostatic (major direction, color=Tresca=(E1-E2)) in %"},
      {17, kViewPsi, "Local rotation", "Local rotation (R) in Degrees"},
      {20, kViewEcart, "Accuracy result", "Accuracy"},
      {14, std::nullopt, "", ""},
  };
  for (const auto& [index, view, title, caption] : cases) {
    const FieldEntry& entry = *FieldAt(index);
    EXPECT_EQ(entry.view, view) << index;
    EXPECT_EQ(FieldTitle(entry, units), title);
    EXPECT_EQ(ScaleCaption(entry, units), caption);
  }
  EXPECT_EQ(FieldIndexOfName("  epsilon i major HENCKY "), 6);
  EXPECT_EQ(FieldIndexOfName("---------------------------------------------"), std::nullopt);
}

TEST_F(FieldMaps, TheFieldListSwitchesViewsRefusesTheFlcDeterminationAndIgnoresRules) {
  Read(Affine);
  window.OnCombo2Click(6);
  EXPECT_EQ(window.VueCourante, kViewH1);
  EXPECT_EQ(window.Controls().Text("Titre"), "Major principal strain - Hencky tensor");
  window.OnCombo2Click(5);
  EXPECT_EQ(window.VueCourante, kViewH1) << "a rule does nothing";
  window.OnCombo2Click(16);
  EXPECT_EQ(window.VueCourante, kViewH1);
  EXPECT_EQ(window.Controls().Get("Combo2").listIndex, 6);
  ASSERT_FALSE(ui.Messages().empty());
  EXPECT_EQ(ui.Messages().back(), "Sorry this option is not available with this results file");
}

TEST_F(FieldMaps, ARepaintPaintsTheMapTheBarAndItsLabels) {
  Read(Affine);
  RecordingCanvas map(256, 256), bar(318, 40);
  window.PicAna = &map;
  window.IsoPic = &bar;
  window.OnCombo2Click(0);
  EXPECT_EQ(map.OfKind("fill").size(), static_cast<size_t>(s.NbPat));
  EXPECT_FALSE(bar.OfKind("fill").empty());
  EXPECT_EQ(window.HistoMax, *std::max_element(window.Histo.begin(), window.Histo.end()));
  EXPECT_GT(window.HistoMax, 0);
  EXPECT_FALSE(window.Controls().Text("LabEchelle(4)").empty());
  // A result without a valid pattern stops after the picture.
  window.Ranges.MaxU = NewAnalyse::kNoData;
  map.ops.clear();
  window.PicAnaRefresh();
  EXPECT_TRUE(map.OfKind("fill").empty());
}

}  // namespace
}  // namespace tessiva

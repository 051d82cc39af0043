// The forming-limit analysis in the analysis window: the band tool's section
// over a known stretch and on the next member, the section between a
// result's two areas and its mirrored side, field 16 refused without forming-limit data, the graph's
// pointer rejecting points and dragging a limit, and TextCLF.
#include "analysis/formlimits.h"

#include <gtest/gtest.h>

#include <cmath>

#include "analysis/fieldlist.h"
#include "results/analysisfixture.h"
#include "state/files.h"
#include "state/keyfile.h"
#include "ui/pointer.h"

namespace tessiva {
namespace {

using testing::Displacement;
using testing::DisplacementField;

constexpr double kStretch = 0.02;
DisplacementField Stretch(double e = kStretch) {
  return [e](double x, double) { return Displacement{e * (x - 100), 0.0}; };
}
// A strain growing along x, so that the two ends of a section differ.
DisplacementField GrowingStrain() {
  return [](double x, double) { return Displacement{0.0002 * (x - 60) * (x - 60), 0.0}; };
}

class FormingLimitsTest : public testing::AnalysisFixture {
 protected:
  FormingLimitsTest() {
    s.StartDir = dir.Path();
    s.IniPath = dir.Path() + "/correl.ini";
  }
  // 11 x 11 patterns centred 60..140 every 8 pixels: the mesh covers 56..144.
  void Read(const DisplacementField& field) {
    ASSERT_TRUE(ReadResult(head, testing::GridPatterns(field, 60, 60, 11, 11, 8, 8)));
  }
  void DrawBand(double x1, double y1, double x2, double y2) {
    window.ArmSectionTool(SectionKind::FormingLimit);
    window.OnPicAnaMouseDown(kLeftButton, 0, x1, y1);
    window.OnPicAnaMouseMove(kLeftButton, 0, x2, y2);
    window.OnPicAnaMouseUp(kLeftButton, 0, x2, y2);
  }
  // Areas 1 and 2 as boxes x1..x2 by 80..120, their corners clockwise from the top left.
  void PutAreas(double a1, double a2, double b1, double b2) {
    const auto put = [this](size_t area, double left, double right) {
      s.Nbox[area] = 5;
      const double xs[] = {0, left, right, right, left, left}, ys[] = {0, 80, 80, 120, 120, 80};
      for (size_t k = 1; k <= 5; ++k) s.XBox[area][k] = int32_t(xs[k]), s.YBox[area][k] = int32_t(ys[k]);
    };
    put(1, a1, a2);
    put(2, b1, b2);
    s.ClfMode = true;
  }

  testing::ResultHead head;
  FormingLimits& flc = window.Flc;
};

TEST_F(FormingLimitsTest, TheBandToolLaysTheSectionAlongItsLineOverTheStrainField) {
  Read(Stretch());
  DrawBand(70, 100, 130, 100);
  const SelectionArea& band = window.PickingTools().Selection;
  ASSERT_EQ(band.NboxAOS, kAosRectangle);
  const double half = s.LgridBy4;
  ASSERT_GT(half, 0);
  const std::vector<double> xs{0, 70, 130, 130, 70, 70}, ys{0, 100 + half, 100 + half, 100 - half, 100 - half, 100 + half};
  EXPECT_EQ(band.XAOS, xs);
  EXPECT_EQ(band.YAOS, ys);
  EXPECT_TRUE(s.ClfMode);
  EXPECT_EQ(window.VueCourante, kViewFlcDetermination);
  EXPECT_EQ(window.Controls().Get("Combo2").listIndex, kFlcDeterminationEntry);
  ASSERT_EQ(flc.NbSection, 79);
  EXPECT_DOUBLE_EQ(flc.XSection[79], 59.2) << "79/80 of 60 pixels, down to a tenth";
  for (int32_t i = 1; i <= 79; ++i) {
    EXPECT_EQ(flc.SectionOk[i], kPointUsed) << i;
    EXPECT_NEAR(flc.EpsiISection[i], 100 * std::log(1 + kStretch), 1e-6) << i;
    EXPECT_NEAR(flc.EpsiIISection[i], 0.0, 1e-6) << i;
  }
  // A uniform strain is its own limit.
  ASSERT_EQ(flc.Limits.cosineStatus, -1);
  EXPECT_NEAR(flc.Limits.cosineMajor, 100 * std::log(1 + kStretch), 1e-6);
}

TEST_F(FormingLimitsTest, TheNextMemberIsSampledWhereTheSectionWasWithItsRejectedPointsKept) {
  Read(Stretch());
  DrawBand(70, 100, 130, 100);
  flc.OnGrapheMouseUp(kLeftButton, flc.XSection[10], flc.EpsiISection[10]);
  ASSERT_EQ(flc.SectionOk[10], kPointRejected);
  ASSERT_TRUE(ReadResult(head, testing::GridPatterns(Stretch(0.05), 60, 60, 11, 11, 8, 8), 2));
  window.AfterFileChange();
  EXPECT_TRUE(window.keepScale);
  EXPECT_EQ(flc.SectionOk[10], kPointRejected);
  EXPECT_EQ(flc.SectionOk[11], kPointUsed);
  EXPECT_NEAR(flc.EpsiISection[11], 100 * std::log(1.05), 1e-6);
  EXPECT_NEAR(flc.Limits.cosineMajor, 100 * std::log(1.05), 1e-6);
}

TEST_F(FormingLimitsTest, ASideRepeatsPointEightyLessIBeyondTheMiddle) {
  Read(GrowingStrain());
  PutAreas(70, 90, 110, 130);
  window.OnCombo2Click(kFlcDeterminationEntry);
  ASSERT_EQ(flc.NbSection, 79);
  EXPECT_DOUBLE_EQ(flc.LTotale, 60.0);
  EXPECT_DOUBLE_EQ(flc.LCentre, 20.0);
  EXPECT_GT(std::abs(flc.EpsiISection[70] - flc.EpsiISection[10]), 0.1) << "the whole section isn't symmetric";
  for (const int side : {1, 2}) {
    flc.OnOption1Click(side);
    EXPECT_EQ(flc.SectionSide, side);
    EXPECT_DOUBLE_EQ(flc.LTotale, 60.0) << "two sides of 20 and the centre";
    for (int32_t i = 41; i <= 79; ++i) {
      EXPECT_EQ(flc.EpsiISection[i], flc.EpsiISection[80 - i]) << "side " << side << ", point " << i;
      EXPECT_EQ(flc.EpsiIISection[i], flc.EpsiIISection[80 - i]) << "side " << side << ", point " << i;
      EXPECT_EQ(flc.SectionOk[i], flc.SectionOk[80 - i]) << "side " << side << ", point " << i;
    }
  }
}

TEST_F(FormingLimitsTest, FieldSixteenNeedsFormingLimitData) {
  Read(Stretch());
  window.OnCombo2Click(kFlcDeterminationEntry);
  ASSERT_FALSE(ui.Messages().empty());
  EXPECT_EQ(ui.Messages().back(), "Sorry this option is not available with this results file");
  EXPECT_NE(window.VueCourante, kViewFlcDetermination);
  EXPECT_EQ(flc.NbSection, 0);
}

TEST_F(FormingLimitsTest, TheGraphsPointerRejectsPointsWithTheirMirrorAndDragsALimit) {
  Read(Stretch());
  DrawBand(70, 100, 130, 100);
  // A click beside point 4 rejects it; a second one takes it back.
  flc.OnGrapheMouseUp(kLeftButton, flc.XSection[4] + 0.1, flc.EpsiISection[4]);
  EXPECT_EQ(flc.SectionOk[4], kPointRejected);
  flc.OnGrapheMouseUp(kLeftButton, flc.XSection[4], flc.EpsiISection[4]);
  EXPECT_EQ(flc.SectionOk[4], kPointUsed);
  // With a side kept the mirror point goes with it.
  flc.OnOption1Click(1);
  flc.OnGrapheMouseUp(kLeftButton, flc.XSection[7], flc.EpsiISection[7]);
  EXPECT_EQ(flc.SectionOk[7], kPointRejected);
  EXPECT_EQ(flc.SectionOk[73], kPointRejected);
  // Dragging the left limit: the points left of it leave the fit.
  flc.OnOption1Click(0);
  flc.OnGrapheMouseDown(kLeftButton, flc.limiteInf, 0);
  flc.OnGrapheMouseMove(kLeftButton, 8.0, 0);
  flc.OnGrapheMouseUp(kLeftButton, 8.0, 0);
  EXPECT_DOUBLE_EQ(flc.limiteInf, 8.0);
  for (int32_t i = 1; i <= 79; ++i)
    EXPECT_EQ(flc.SectionOk[i], flc.XSection[i] < 8.0 ? kPointRejected : kPointUsed) << i;
}

TEST_F(FormingLimitsTest, TextClfTakesPairsOnlyAndStoresTheCurve) {
  Read(Stretch());
  s.ClfMode = true;
  window.OnCombo2Click(FieldIndexOfView(kViewFlcDiagram).value());
  flc.OnTextCLFEnter("1;2;3");
  EXPECT_EQ(ui.Messages().back(), "You must enter couple of point separate by ';'");
  EXPECT_EQ(s.ClfNumber, 0);
  EXPECT_FALSE(FileExists(s.IniPath)) << "a refused text writes nothing";

  flc.OnTextCLFEnter("-12.7 ; 30\r\n0 ; 20.9\r\n10 ; 30\r\n");
  ASSERT_EQ(s.ClfNumber, 3);
  EXPECT_EQ(s.ClfX, (std::vector<int32_t>{0, -12, 0, 10})) << "the fraction is dropped";
  EXPECT_EQ(s.ClfY, (std::vector<int32_t>{0, 30, 20, 30}));
  EXPECT_EQ(s.ClfXMin, -12);
  EXPECT_EQ(s.ClfYMax, 30);
  const KeyFile ini = KeyFile::Load(s.IniPath);
  EXPECT_EQ(ini.Int("CLFSEC", "NUMBER", 0), 3);
  EXPECT_EQ(ini.Int("CLFSEC", "X1", 0), -12);
  EXPECT_EQ(ini.Int("CLFSEC", "Y3", 0), 30);

  // Field 16: the pairs become the section; four are too few to fit, five are enough.
  window.OnCombo2Click(FieldIndexOfView(kViewH1).value());
  DrawBand(70, 100, 130, 100);
  const size_t shown = ui.Messages().size();
  flc.OnTextCLFEnter("1;5\n2;6\n3;6.5\n4;6");
  EXPECT_EQ(flc.NbSection, 4);
  ASSERT_EQ(ui.Messages().size(), shown + 1);
  EXPECT_EQ(ui.Messages().back(), "Not enough points to do interpolation (>5)");
  flc.OnTextCLFEnter("1;5\n2;6\n3;6.5\n4;6\n5;5");
  EXPECT_EQ(flc.NbSection, 5);
  EXPECT_EQ(ui.Messages().size(), shown + 1);
  EXPECT_EQ(flc.Limits.cosineStatus, -1);
}

}  // namespace
}  // namespace tessiva

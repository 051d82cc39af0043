// Stress intensity factors on result files written from the plane-stress
// Williams field: KI, KII, J and their cross checks for cracks along x and
// at an angle, the ring that alone contributes, the band round the crack,
// the growth direction, and the crack tool of the analysis window with its
// row, replay and overlay; cracks that can't be measured change nothing.
#include "analysis/stressintensity.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <string>
#include <vector>

#include "results/analysisfixture.h"
#include "state/numtext.h"
#include "support/crackfield.h"
#include "ui/pointer.h"
#include "ui/recordingcanvas.h"

namespace tessiva {
namespace {

using testing::CrackTipLoad;
using testing::Displacement;
using testing::DisplacementField;

constexpr double kPi = std::numbers::pi;
constexpr double kYoung = 70000.0, kPoisson = 0.33, kUnit = 0.01;
// The crack's tip lies on a column of patterns, between two rows.
constexpr double kTipX = 232, kTipY = 204;

double Degrees(double degrees) { return degrees * kPi / 180; }

class CrackTest : public testing::AnalysisFixture {
 protected:
  CrackTest() {
    s.StartDir = dir.Path();
    s.IniPath = dir.Path() + "/correl.ini";
    s.FileTitle = "crack.seq";
    head.lima = head.hima = 400;
    head.moreSections = "[UNIT]\nUnitNameX=mm\nUnitNameY=mm\nUnitPX=0.01\nUnitPY=0.01\n"
                        "[MATERIAL]\nYOUNG=70000\nPOISSON=.33\n";
  }

  CrackTipLoad Load(double angle, double ki, double kii) const {
    return {tip.x, tip.y, angle, ki, kii, kYoung, kPoisson, kUnit};
  }

  // Patterns every 8 pixels from 16 to `last` of each field, members of a
  // sequence, the first one read.
  void ReadSequence(const std::vector<DisplacementField>& fields, int32_t last = 384) {
    std::vector<std::string> paths;
    for (size_t i = 0; i < fields.size(); ++i) {
      const std::string name = "member" + std::to_string(i + 1) + ".res";
      const int32_t count = (last - 16) / 8 + 1;
      paths.push_back(testing::WriteResultFile(dir.Path() + "/" + name, head,
                                               testing::GridPatterns(fields[i], 16, 16, count, count, 8, 8)));
    }
    UseSequence(paths);
    for (size_t i = 0; i < fields.size(); ++i) s.DataFileName[i + 1] = "member" + std::to_string(i + 1) + ".res";
    window.CurFile = 1;
    ASSERT_TRUE(LecRes(window, 1, false));
  }

  // The crack from its start to the tip at `angle`, `length` pixels long.
  CrackLine CrackAt(double angle, double length) const {
    return {tip.x - length * std::cos(angle), tip.y + length * std::sin(angle), tip.x, tip.y, length};
  }

  CrackFactors Measure(const CrackLine& crack, double klarg) const {
    return CrackIntegrals(s, crack, {s.Young, s.Poisson, s.UnitPX}, klarg, 0);
  }

  void Drag(double x1, double y1, double x2, double y2) {
    window.OnPicAnaMouseDown(kLeftButton, 0, x1, y1);
    window.OnPicAnaMouseMove(kLeftButton, 0, x2, y2);
    window.OnPicAnaMouseUp(kLeftButton, 0, x2, y2);
  }

  std::vector<std::string> Rows() const {
    std::vector<std::string> lines = SplitText(window.Info.DataText(), "\r\n");
    if (!lines.empty() && lines.back().empty()) lines.pop_back();
    return lines;
  }

  testing::ResultHead head;
  Vec2 tip{kTipX, kTipY};
};

// The band takes away the cells that straddle the crack's faces, and also,
// as its width grows, an ever larger part of KII (see README): the radius is
// taken wide against it.
TEST_F(CrackTest, WilliamsFieldsGiveTheirFactorsAlongXAndAtAnAngle) {
  struct Case {
    const char* name;
    double angle, ki, kii;
  };
  const Case cases[] = {
      {"mode I along x", 0, 1e9, 0},
      {"mode II along x", 0, 0, 1e9},
      {"mixed along x", 0, 1e9, -6e8},
      {"mixed at 30 degrees", Degrees(30), 8e8, 5e8},
      {"mode I at 150 degrees", Degrees(150), 1e9, 0},
      {"mode II at -60 degrees", Degrees(-60), 0, 7e8},
  };
  // The tip on a pattern: only the row along the crack straddles it.
  head.lima = head.hima = 720;
  tip = {360, 360};
  const double radius = 380, klarg = 0.7;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    ReadSequence({testing::WilliamsField(Load(c.angle, c.ki, c.kii))}, 704);
    const CrackFactors k = Measure(CrackAt(c.angle, radius), klarg);
    ASSERT_TRUE(k.Usable());
    const double norm = std::hypot(c.ki, c.kii);
    EXPECT_NEAR(k.KI, c.ki, 0.02 * (c.ki != 0 ? std::abs(c.ki) : norm));
    EXPECT_NEAR(k.KII, c.kii, 0.02 * (c.kii != 0 ? std::abs(c.kii) : norm));
    // J of the measured field is that of its factors.
    EXPECT_NEAR(k.KIfromJ, std::hypot(k.KI, k.KII), 0.02 * norm);
    EXPECT_NEAR(k.JfromKs, k.J, 0.04 * k.J);
    EXPECT_NEAR(k.J, norm * norm / (kYoung * 1e6), 0.04 * k.J);
    EXPECT_DOUBLE_EQ(k.innerRadius, 0.4 * radius);
    EXPECT_DOUBLE_EQ(k.outerRadius, 0.8 * radius);
    // Pure mode I grows along its own line.
    if (c.kii == 0) {
      EXPECT_NEAR(std::sin(k.direction + c.angle), 0, 0.01);
    }
  }
}

// Mode I has no stress on the faces: a band of a twentieth of the radius keeps KI.
TEST_F(CrackTest, ModeIKeepsItsFactorUnderABandOfATwentiethOfTheRadius) {
  for (const double angle : {0.0, Degrees(30)}) {
    ReadSequence({testing::WilliamsField(Load(angle, 1e9, 0))});
    const CrackFactors k = Measure(CrackAt(angle, 160), 1);
    EXPECT_NEAR(k.KI, 1e9, 2e7) << angle;
    EXPECT_NEAR(k.KIfromJ, 1e9, 2e7) << angle;
  }
}

// Drawn from right to left, the arrow of a crack in mode I points ahead of its tip.
TEST_F(CrackTest, ModeIGrowsStraightAheadOfACrackDrawnFromTheRight) {
  for (const double angle : {Degrees(180), Degrees(150), Degrees(-120)}) {
    ReadSequence({testing::WilliamsField(Load(angle, 1e9, 0))});
    const CrackFactors k = Measure(CrackAt(angle, 160), 1);
    // On the picture y points down.
    EXPECT_NEAR(std::cos(k.direction), std::cos(angle), 0.01) << angle;
    EXPECT_NEAR(std::sin(k.direction), -std::sin(angle), 0.01) << angle;
  }
}

TEST(CrackDirection, MaximumHoopStressWithTheFirstBranchWithoutModeII) {
  struct Case {
    double ki, kii, c, s, expected;
  };
  const double c30 = std::cos(Degrees(30)), s30 = std::sin(Degrees(30));
  const double kinkOfModeII = 2 * std::atan(std::sqrt(8.0) / 4);  // 70.53 degrees
  const Case cases[] = {
      {1, 0, 1, 0, kPi},
      {1, 0, c30, s30, Degrees(30) + kPi},
      {1, 0, -c30, s30, Degrees(-30) + kPi},
      // With mode II the line is taken from (-c, s): the branches part for a slanted crack.
      {1, 1e-12, -c30, s30, Degrees(30) + kPi},
      {0, 1, 1, 0, kPi - kinkOfModeII},
      {0, -1, 1, 0, kPi + kinkOfModeII},
      {1, 1, 1, 0, kPi + 2 * std::atan((1 - 3) / 4.0)},
  };
  for (const Case& c : cases)
    EXPECT_NEAR(GrowthDirection(c.ki, c.kii, c.c, c.s), c.expected, 1e-9) << c.ki << " " << c.kii << " " << c.c;
}

TEST(CrackBandOutline, HalfWidthAcrossTheCrackAndItsInside) {
  struct Point {
    double x, y;
    bool inside;
  };
  struct Case {
    const char* name;
    CrackLine crack;
    Vec2 firstCorner;
    std::vector<Point> points;
  };
  const Case cases[] = {
      {"horizontal: across is y", {100, 100, 130, 100, 30}, {100, 112},
       {{115, 100, true}, {115, 111.9, true}, {115, 112, false}, {115, 113, false}, {99, 100, false},
        {131, 100, false}, {100.5, 88.5, true}}},
      {"vertical: across is x", {100, 140, 100, 100, 40}, {112, 140},
       {{100, 120, true}, {111, 101, true}, {113, 120, false}, {100, 141, false}, {87.9, 120, false}}},
      {"slanted", {100, 100, 130, 130, 42}, {100 - 12 / std::sqrt(2.0), 100 + 12 / std::sqrt(2.0)},
       {{115, 115, true}, {110, 120, true}, {125, 105, false}, {95, 95, false}, {131, 131, false}}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    const BandOutline band = CrackBand(c.crack, 12);
    EXPECT_NEAR(band[0].x, c.firstCorner.x, 1e-12);
    EXPECT_NEAR(band[0].y, c.firstCorner.y, 1e-12);
    EXPECT_EQ(band[4].x, band[0].x);
    for (const Point& p : c.points) EXPECT_EQ(InsideBand(band, p.x, p.y), p.inside) << p.x << ", " << p.y;
  }
}

// Whatever lies inside the inner or beyond the outer circle adds nothing.
TEST_F(CrackTest, OnlyTheRingContributes) {
  const DisplacementField williams = testing::WilliamsField(Load(Degrees(30), 1e9, 2e8));
  const DisplacementField disturbed = [&](double x, double y) {
    const Displacement d = williams(x, y);
    const double r = std::hypot(x - kTipX, y - kTipY);
    const bool ring = r > 64 - 16 && r < 128 + 16;
    return ring ? d : Displacement{d.u + 0.02 * (x - 200) + 0.3 * std::sin(y / 7), d.v - 0.01 * (y - 200)};
  };
  ReadSequence({williams});
  const CrackFactors exact = Measure(CrackAt(Degrees(30), 160), 1);
  ReadSequence({disturbed});
  const CrackFactors k = Measure(CrackAt(Degrees(30), 160), 1);
  EXPECT_DOUBLE_EQ(k.KI, exact.KI);
  EXPECT_DOUBLE_EQ(k.KII, exact.KII);
  EXPECT_DOUBLE_EQ(k.J, exact.J);
  EXPECT_EQ(k.gaussPoints, exact.gaussPoints);
}

TEST_F(CrackTest, TheToolMeasuresTheDrawnCrackAndKeepsItAsTheSelection) {
  ReadSequence({testing::WilliamsField(Load(0, 1e9, 0))});
  s.Klarg = 1;
  window.ArmSectionTool(SectionKind::Crack);
  EXPECT_EQ(window.Info.TitreInfo, "crack.seq\r\n");
  EXPECT_EQ(window.Info.ColonnesInfo,
            "_________\t\t    J     \t    KI    \t    KII   \t KIfromJ  \t JfromKs  \t    Xo    \t     Yo   \t Radius   \r\n");
  // Press at the tip, drag back along the crack to its start.
  window.OnPicAnaMouseDown(kLeftButton, 0, kTipX, kTipY);
  window.OnPicAnaMouseMove(kLeftButton, 0, kTipX - 160, kTipY);
  EXPECT_EQ(frame.Text("Label2"), " (0.7200, 2.0400) L: 1.6000 Klarg=1");
  const ControlState circle = window.Controls().Get("Shape3");
  EXPECT_TRUE(circle.visible);
  EXPECT_EQ(circle.left, kTipX - 160);
  EXPECT_EQ(circle.width, 320);
  window.OnPicAnaMouseUp(kLeftButton, 0, kTipX - 160, kTipY);
  EXPECT_FALSE(window.Controls().Visible("Shape3"));
  EXPECT_FALSE(window.Controls().Visible("Line1"));

  ASSERT_EQ(Rows().size(), 3u);
  const std::vector<std::string> row = SplitText(Rows()[2], "\t");
  ASSERT_EQ(row.size(), 10u);
  EXPECT_EQ(row[0], "member1.res");
  EXPECT_NEAR(std::stod(row[3]), 1e9, 2e7);
  EXPECT_EQ(row[7], Format(kTipX, s.FormatLong));
  EXPECT_EQ(row[9], Format(160, s.FormatLong));
  EXPECT_TRUE(s.FissureOn);
  const Picking& pick = window.PickingTools();
  EXPECT_EQ(pick.NboxAOS(), kAosCrack);
  EXPECT_EQ(pick.Selection.XAOS, (std::vector<double>{0, kTipX - 160, kTipX, 160}));
  EXPECT_EQ(pick.Selection.YAOS, (std::vector<double>{0, kTipY, kTipY, 0}));
}

TEST_F(CrackTest, KeysStepTheBandByWholeGridStepsAndNeverBelowTwo) {
  ReadSequence({testing::WilliamsField(Load(0, 1e9, 0))});
  window.ArmSectionTool(SectionKind::Crack);
  struct Step {
    char key;
    double klarg;
  };
  for (const Step step : {Step{'+', 4}, {'-', 3}, {'-', 2}, {'-', 2}, {'+', 3}, {'x', 3}}) {
    window.OnPicAnaKey(step.key);
    EXPECT_EQ(s.Klarg, step.klarg) << step.key;
  }
  EXPECT_EQ(frame.Text("Label2"), " Klarg=3");
}

// A file change measures the crack on the new member, and the stored crack replays there.
TEST_F(CrackTest, TheCrackIsMeasuredAgainOnEachMember) {
  ReadSequence({testing::WilliamsField(Load(0, 1e9, 0)), testing::WilliamsField(Load(0, 2e9, 0))});
  window.ArmSectionTool(SectionKind::Crack);
  Drag(kTipX, kTipY, kTipX - 160, kTipY);
  ASSERT_TRUE(LecRes(window, 2, true));
  window.CurFile = 2;
  window.AfterFileChange();
  const std::vector<std::string> rows = Rows();
  ASSERT_GT(rows.size(), 3u);
  for (size_t r = 3; r < rows.size(); ++r) {
    const std::vector<std::string> row = SplitText(rows[r], "\t");
    EXPECT_EQ(row[0], "member2.res");
    EXPECT_NEAR(std::stod(row[3]), 2e9, 4e7);
  }
  EXPECT_TRUE(window.Controls().Checked(ToolbarButton(kSectionToolButton)));
}

TEST_F(CrackTest, TheOverlayDrawsTheBandTheRingAndTheArrow) {
  ReadSequence({testing::WilliamsField(Load(Degrees(180), 1e9, 0))});
  RecordingCanvas map(400, 400);
  window.PicAna = &map;
  window.ArmSectionTool(SectionKind::Crack);
  Drag(kTipX, kTipY, kTipX + 160, kTipY);
  map.ops.clear();
  window.PicAnaRefresh();
  const std::vector<RecordingCanvas::Op> circles = map.OfKind("circle");
  ASSERT_EQ(circles.size(), 2u);
  EXPECT_EQ(circles[0].colour, 0xFF0000u);
  EXPECT_DOUBLE_EQ(circles[0].x2, 64);
  EXPECT_DOUBLE_EQ(circles[1].x2, 128);
  int band = 0, arrow = 0;
  for (const RecordingCanvas::Op& line : map.OfKind("line")) {
    band += line.colour == QBColor(15) ? 1 : 0;
    if (line.colour != QBColor(14)) continue;
    // The growth arrow starts at the tip and points away from the crack, to the left.
    if (arrow++ == 0) {
      EXPECT_DOUBLE_EQ(line.x1, kTipX);
      EXPECT_NEAR(line.x2, kTipX - 0.9 * 160, 1.0);
      EXPECT_NEAR(line.y2, kTipY, 1.0);
    }
  }
  EXPECT_GE(band, 4);
  EXPECT_EQ(arrow, 4);
}

TEST_F(CrackTest, CracksThatCantBeMeasuredWriteNoRow) {
  // Patterns cover 16..184 only.
  ReadSequence({testing::WilliamsField(Load(0, 1e9, 0))}, 184);
  window.ArmSectionTool(SectionKind::Crack);
  const size_t rowsBefore = Rows().size();
  struct Case {
    const char* name;
    double x1, y1, x2, y2;
    bool defined;
  };
  const Case cases[] = {
      {"shorter than three grid steps", 100, 100, 123, 100, false},
      {"its ring off the mesh", 380, 380, 300, 380, true},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    s.FissureOn = false;
    Drag(c.x1, c.y1, c.x2, c.y2);
    EXPECT_EQ(Rows().size(), rowsBefore);
    EXPECT_EQ(s.FissureOn, c.defined);
  }
  EXPECT_EQ(frame.Text("Label1"),
            " No usable pattern lies in the ring round the crack tip: no stress intensity factor is calculated");
}

// The crack of the file's FISSURE keys is measured when its first member is read.
TEST_F(CrackTest, TheFilesCrackIsMeasuredOnReadingAndOneOfNoLengthIsRefused) {
  const std::string material = head.moreSections;
  head.moreSections = material + "[FISSURE]\nXfissureDep=72\nYfissureDep=204\nXfissureArr=232\nYfissureArr=204\n"
                                 "RayonFissure=160\n";
  ReadSequence({testing::WilliamsField(Load(0, 1e9, 0))});
  ASSERT_EQ(Rows().size(), 3u);
  EXPECT_NEAR(std::stod(SplitText(Rows()[2], "\t")[3]), 1e9, 3e7);  // with the starting band of 3 grid steps

  window.Info.SetText("");
  head.moreSections = material + "[FISSURE]\nXfissureDep=232\nYfissureDep=204\nXfissureArr=232\nYfissureArr=204\n"
                                 "RayonFissure=0\n";
  ReadSequence({testing::WilliamsField(Load(0, 1e9, 0))});
  EXPECT_TRUE(s.FissureOn);
  EXPECT_EQ(Rows().size(), 2u);
  EXPECT_EQ(window.Info.DataText().find("nan"), std::string::npos);
  window.CalculKI();
  EXPECT_EQ(frame.Text("Label1"), " The crack or its radius has no length: no stress intensity factor is calculated");
}

}  // namespace
}  // namespace tessiva

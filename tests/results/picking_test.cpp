// The picking tools on result files of known fields: the head and rows each
// tool writes to the collector, the sampling of lines and rectangles, gauges
// made by a drag, the replay of a stored selection over a sequence, the
// collector's own buttons, and input that must change nothing.
#include "analysis/picking.h"

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <numbers>
#include <string>
#include <vector>

#include "results/analysisfixture.h"
#include "state/keyfile.h"
#include "state/numtext.h"
#include "ui/pointer.h"

namespace tessiva {
namespace {

using testing::Displacement;
using testing::DisplacementField;

constexpr double kPi = std::numbers::pi;
constexpr double kUnitX = 0.5, kUnitY = 0.25;  // user units per pixel along x and y
const std::string kPrecise = "0.000000000000";

DisplacementField Translation(double u, double v) {
  return [u, v](double, double) { return Displacement{u, v}; };
}
// F = [[f11, f12], [f21, f22]] about (100, 100).
DisplacementField Linear(double f11, double f12, double f21, double f22) {
  return [=](double x, double y) {
    const double dx = x - 100, dy = y - 100;
    return Displacement{(f11 - 1) * dx + f12 * dy, f21 * dx + (f22 - 1) * dy};
  };
}
DisplacementField Rotation(double angle) {
  const double c = std::cos(angle), s = std::sin(angle);
  return Linear(c, -s, s, c);
}

std::vector<std::string> Lines(const std::string& text) {
  auto lines = SplitText(text, "\r\n");
  if (!lines.empty() && lines.back().empty()) lines.pop_back();
  return lines;
}
std::vector<double> Numbers(const std::string& row, size_t from) {
  std::vector<double> numbers;
  const auto fields = SplitText(row, "\t");
  for (size_t i = from; i < fields.size(); ++i) numbers.push_back(ValNorm(fields[i]));
  return numbers;
}

class PickingTest : public testing::AnalysisFixture {
 protected:
  PickingTest() {
    s.StartDir = dir.Path();
    s.IniPath = dir.Path() + "/correl.ini";
    s.FileTitle = "test.seq";
    head.moreSections =
        "[UNIT]\nUnitNameX=mm\nUnitNameY=mm\nUnitPX=0.5\nUnitPY=0.25\n"
        "[EXTRA]\nnumber=2\nname0=Force\nvalue0=12.5\nname1=Time\nvalue1=3\n";
  }

  // Members of a sequence, 6 x 6 patterns centred 64..104 every 8 pixels (the
  // mesh covers 60..108), the first one read.
  void ReadSequence(const std::vector<DisplacementField>& fields) {
    std::vector<std::string> paths;
    for (size_t i = 0; i < fields.size(); ++i) {
      const std::string name = "member" + std::to_string(i + 1) + ".res";
      paths.push_back(testing::WriteResultFile(dir.Path() + "/" + name, head,
                                               testing::GridPatterns(fields[i], 64, 64, 6, 6, 8, 8)));
    }
    UseSequence(paths);
    for (size_t i = 0; i < fields.size(); ++i) s.DataFileName[i + 1] = "member" + std::to_string(i + 1) + ".res";
    ASSERT_TRUE(LecRes(window, 1, false));
    window.CurFile = 1;
  }
  void Read(const DisplacementField& field) { ReadSequence({field}); }

  void Member(int32_t index) {
    ASSERT_TRUE(LecRes(window, index, true));
    window.CurFile = index;
    window.AfterFileChange();
  }

  void Drag(double x1, double y1, double x2, double y2) {
    window.OnPicAnaMouseDown(kLeftButton, 0, x1, y1);
    window.OnPicAnaMouseMove(kLeftButton, 0, x2, y2);
    window.OnPicAnaMouseUp(kLeftButton, 0, x2, y2);
  }
  std::vector<std::string> Collected() const { return Lines(window.Info.DataText()); }

  testing::ResultHead head;
  Picking& pick = window.PickingTools();
};

std::string F(double value) { return Format(value, AppState().FormatLong); }

TEST_F(PickingTest, EachToolWritesItsTitleColumnsAndRowsToTheCollector) {
  struct Case {
    const char* key;
    int32_t view;
    double x1, y1, x2, y2;
    std::string title, columns, row;  // no row check when empty
  };
  const double norm = std::hypot(0.5, -0.25) * std::sqrt(kUnitX * kUnitY);
  const std::string values = F(0.5 * kUnitX) + "\t" + F(-0.25 * kUnitY) + "\t" + F(norm);
  const std::string rule = "________";
  const Case cases[] = {
      {"point", kViewU, 80, 90, 80, 90, "test.seq, Displacements in mm",
       rule + "\tForce\tTime\t    X     \t    Y     \t   Displ.1\t   Displ.2\t   Norm   ",
       "member1.res\t12.5\t3\t" + F(80 * kUnitX) + "\t" + F(90 * kUnitY) + "\t" + values},
      {"point", kViewH3, 80, 90, 80, 90, "test.seq, Hencky Strain in %",
       rule + "\tForce\tTime\t    X     \t    Y     \t   Epsi 1 \t   Epsi 2 \t   Epsi 3 ", ""},
      {"point", kViewE12, 80, 90, 80, 90, "test.seq, Green Lagrange Strain in %",
       rule + "\tForce\tTime\t    X     \t    Y     \t   Epsi 11\t   Epsi 22\t   Epsi 12", ""},
      {"point", kViewTeta, 80, 90, 80, 90, "test.seq, Teta(1,I) in Degrees",
       rule + "\tForce\tTime\t    X     \t    Y     \t   Value  ", ""},
      {"trait", kViewV, 70, 80, 95, 80, "test.seq, member1.res, Displacements in mm",
       "Force\tTime\t    Ds    \t    X     \t    Y     \t   Displ.1\t   Displ.2\t   Norm   ",
       "12.5\t3\t" + F(0) + "\t" + F(70 * kUnitX) + "\t" + F(80 * kUnitY) + "\t" + values},
      {"rectangle", kViewU, 70, 70, 90, 90, "test.seq, member1.res, 1 displacement in mm",
       "\tY\tY\tY\t\r\nX\tvalue\tvalue\tvalue\r\nX\tvalue\tvalue\tvalue\r\nX\tvalue\tvalue\tvalue",
       "Please wait, the Data will be sent to the clipboard\r\nTransfert complete"},
      {"slider", kViewU, 70, 80, 98, 80, "test.seq", rule + "\tForce\tTime\t   Lini   \t   Lfin   \t  Lamda   ",
       "member1.res\t12.5\t3\t" + F(28) + "\t" + F(28) + "\t" + F(1)},
      {"jauge", kViewU, 70, 80, 98, 90, "test.seq",
       rule + "\tForce\tTime\t    E1     \t  Epsi11  \t   Lamda  \t   Lini   ", ""},
      {"rosette", kViewU, 70, 80, 90, 100, "test.seq",
       rule +
           "\tForce\tTime\t    E1    \t    E2    \t   Teta   \t  Epsi11  \t  Epsi12  \t  Epsi22  \t  Surface ratio  ",
       ""},
  };
  Read(Translation(0.5, -0.25));
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.key) + " on view " + std::to_string(c.view));
    window.VueCourante = c.view;
    ASSERT_TRUE(window.OnToolbar1Click(c.key));
    EXPECT_EQ(window.Info.DataText(), c.title + "\r\n" + c.columns + "\r\n") << "the head alone once armed";
    Drag(c.x1, c.y1, c.x2, c.y2);
    const std::string expectedHead = c.title + "\r\n" + c.columns + "\r\n";
    const std::string& text = window.Info.DataText();
    ASSERT_EQ(text.substr(0, expectedHead.size()), expectedHead);
    if (!c.row.empty()) {
      EXPECT_EQ(text.substr(expectedHead.size(), c.row.size() + 2), c.row + "\r\n");
    }
  }
}

TEST_F(PickingTest, PointAndLineRowsGiveTheFieldInUserUnits) {
  s.FormatLong = kPrecise;
  const struct {
    const char* name;
    DisplacementField field;
  } fields[] = {{"linear", Linear(1.02, 0.01, 0.005, 0.99)}, {"rotated by 20 degrees", Rotation(kPi / 9)}};
  for (const auto& f : fields) {
    SCOPED_TRACE(f.name);
    Read(f.field);
    window.OnToolbar1Click("point");
    for (const auto& [x, y] : {std::pair{66.0, 70.0}, {83.0, 99.0}, {104.0, 62.0}})
      window.OnPicAnaMouseUp(kLeftButton, 0, x, y);
    auto rows = Collected();
    ASSERT_EQ(rows.size(), 5u);
    size_t k = 2;
    for (const auto& [x, y] : {std::pair{66.0, 70.0}, {83.0, 99.0}, {104.0, 62.0}}) {
      const Displacement d = f.field(x, y);
      const std::vector<double> expected{x * kUnitX, y * kUnitY, d.u * kUnitX, d.v * kUnitY,
                                         std::hypot(d.u, d.v) * std::sqrt(kUnitX * kUnitY)};
      const auto got = Numbers(rows[k++], 3);
      ASSERT_EQ(got.size(), expected.size());
      for (size_t j = 0; j < got.size(); ++j) EXPECT_NEAR(got[j], expected[j], 1e-9) << "column " << j;
    }
    // A slanting line of length 25: samples every 8/3 pixels, ten of them.
    window.OnToolbar1Click("trait");
    Drag(65, 70, 80, 90);
    rows = Collected();
    ASSERT_EQ(rows.size(), 12u);
    for (int i = 0; i < 10; ++i) {
      const double t = i * 8.0 / 3, x = 65 + t * 0.6, y = 70 + t * 0.8;
      const Displacement d = f.field(x, y);
      const auto got = Numbers(rows[static_cast<size_t>(2 + i)], 2);
      const std::vector<double> expected{t * std::sqrt(kUnitX * kUnitY), x * kUnitX, y * kUnitY, d.u * kUnitX,
                                         d.v * kUnitY};
      for (size_t j = 0; j < expected.size(); ++j) EXPECT_NEAR(got[j], expected[j], 1e-9) << i << ", " << j;
    }
  }
}

TEST_F(PickingTest, ALineGivesNoRowWherePatternsAreMissingAndAShortDragNothing) {
  // Two blocks, x 64..88 and 128..152 (meshes over 60..92 and 124..156), with a gap between.
  auto patterns = testing::GridPatterns(Translation(1, 0), 64, 64, 4, 4, 8, 8);
  const auto right = testing::GridPatterns(Translation(1, 0), 128, 64, 4, 4, 8, 8);
  patterns.insert(patterns.end(), right.begin(), right.end());
  ASSERT_TRUE(ReadResult(head, patterns));
  window.OnToolbar1Click("trait");
  Drag(70, 80, 71 + 3 * 8 - 2, 80);
  EXPECT_EQ(Collected().size(), 2u) << "a line below 3 x Lpas";
  EXPECT_EQ(pick.NboxAOS(), kAosNone);
  // From 70 to 150: samples at 70 + 8k/3, k = 0..30; on the meshes for x <= 92 (k <= 8) and x >= 124 (k >= 21).
  Drag(70, 80, 150, 80);
  EXPECT_EQ(Collected().size(), 2u + 9 + 10);
  EXPECT_EQ(pick.NboxAOS(), kAosLine);
}

TEST_F(PickingTest, ARectangleTableStepsByAThirtiethOfItsSidesAndLeavesABlankOffTheMesh) {
  const DisplacementField field = Linear(1.1, 0, 0, 1);
  Read(field);
  window.VueCourante = kViewU;
  struct Case {
    double x1, y1, x2, y2;
    size_t columns, rows;  // y positions, x positions
  };
  // 20 wide: step 1; 70 high: step 2 from 110 down to 40; 95 wide (from the right): step 3.
  for (const Case c : {Case{70, 70, 90, 90, 21, 21}, Case{50, 40, 70, 110, 36, 21}, Case{105, 60, 10, 80, 21, 32}}) {
    SCOPED_TRACE(std::to_string(c.x1) + ", " + std::to_string(c.y1));
    window.OnToolbar1Click("rectangle");
    ui.log.clear();
    Drag(c.x1, c.y1, c.x2, c.y2);
    EXPECT_EQ(ui.log.back().kind, "beep");
    const auto lines = Lines(ui.clipboardText);
    ASSERT_EQ(lines.size(), 2 + c.rows);
    const auto ys = SplitText(lines[1], "\t");
    ASSERT_EQ(ys.size(), 1 + c.columns);
    EXPECT_EQ(std::stod(ys[1]), std::max(c.y1, c.y2) * kUnitY) << "the first column is the bottom side";
    for (size_t r = 2; r < lines.size(); ++r) {
      const auto cells = SplitText(lines[r], "\t");
      ASSERT_EQ(cells.size(), 1 + c.columns);
      const double x = std::stod(cells[0]) / kUnitX;
      for (size_t j = 1; j < cells.size(); ++j) {
        const double y = std::stod(ys[j]) / kUnitY;
        const bool onMesh = x > 60 && x < 108 && y > 60 && y < 108;
        const bool offMesh = x < 60 || x > 108 || y < 60 || y > 108;
        if (onMesh) {
          EXPECT_EQ(cells[j], Format(field(x, y).u * kUnitX, s.FormatLong)) << x << ", " << y;
        } else if (offMesh) {
          EXPECT_EQ(cells[j], " ") << x << ", " << y;
        }
      }
    }
  }
}

TEST_F(PickingTest, GaugesReadTheStretchAndThePrincipalStrainsOfTheField) {
  s.FormatLong = kPrecise;
  Read(Linear(1.1, 0, 0, 1));
  window.OnToolbar1Click("slider");
  Drag(70, 80, 98, 80);
  auto got = Numbers(Collected().back(), 3);
  ASSERT_EQ(got.size(), 3u);
  EXPECT_NEAR(got[0], 28, 1e-9);
  EXPECT_NEAR(got[2], 1.1, 1e-12) << "Lamda = 1 + stretch";
  EXPECT_NEAR(got[1], got[2] * got[0], 1e-9) << "Lfin = Lamda x Lini";
  // A drag shorter than Lpas makes nothing and clears the gauge before it.
  Drag(70, 80, 75, 84);
  EXPECT_EQ(Collected().size(), 3u);
  EXPECT_EQ(pick.JaugeCtrl1.JaugeCount(), 0);

  // Stretches 1.1 along 30 degrees and 0.95 across.
  const double c = std::cos(kPi / 6), n = std::sin(kPi / 6);
  const double l1 = 1.1, l2 = 0.95, det = l1 * l2;
  Read(Linear(l1 * c * c + l2 * n * n, (l1 - l2) * c * n, (l1 - l2) * c * n, l1 * n * n + l2 * c * c));
  window.OnToolbar1Click("rosette");
  Drag(70, 72, 60, 94);  // the square of side 22 to the lower right
  got = Numbers(Collected().back(), 3);
  ASSERT_EQ(got.size(), 7u);
  const double g1 = (l1 * l1 - 1) / 2 * 100, g2 = (l2 * l2 - 1) / 2 * 100;
  const std::vector<double> expected{100 * std::log(l1), 100 * std::log(l2),      30,     g1 * c * c + g2 * n * n,
                                     (g1 - g2) * c * n,  g1 * n * n + g2 * c * c, 1 / det};
  for (size_t j = 0; j < expected.size(); ++j) EXPECT_NEAR(got[j], expected[j], 1e-9) << "column " << j;
  EXPECT_EQ(pick.JaugeCtrl1.JaugeXArr(1), 92);
  EXPECT_EQ(pick.JaugeCtrl1.JaugeYArr(1), 94);
}

TEST_F(PickingTest, AReplayOverASequenceAddsPointRowsKeepsTheLastProfileAndGivesAGaugeRowPerMember) {
  s.FormatLong = kPrecise;
  ReadSequence({Linear(1.1, 0, 0, 1), Linear(1.2, 0, 0, 1), Linear(1.3, 0, 0, 1)});
  const auto uAt = [](double stretch, double x) { return stretch * (x - 100) * kUnitX; };

  window.OnToolbar1Click("point");
  window.OnPicAnaMouseUp(kLeftButton, 0, 80, 80);
  for (int32_t m : {2, 3}) Member(m);
  auto rows = Collected();
  ASSERT_EQ(rows.size(), 5u);
  for (int m = 1; m <= 3; ++m) {
    EXPECT_EQ(SplitText(rows[1 + m], "\t")[0], "member" + std::to_string(m) + ".res");
    EXPECT_NEAR(Numbers(rows[1 + m], 5)[0], uAt(0.1 * m, 80), 1e-9);
  }

  Member(1);
  window.OnToolbar1Click("trait");
  Drag(65, 80, 95, 80);
  for (int32_t m : {2, 3}) Member(m);
  rows = Collected();
  ASSERT_EQ(rows.size(), 2u + 12);
  EXPECT_EQ(rows[0], "test.seq, member3.res, Displacements in mm");
  EXPECT_NEAR(Numbers(rows[2], 5)[0], uAt(0.3, 65), 1e-9);

  Member(1);
  window.OnToolbar1Click("slider");
  Drag(70, 80, 98, 80);
  for (int32_t m : {2, 3}) Member(m);
  rows = Collected();
  ASSERT_EQ(rows.size(), 5u);
  for (int m = 1; m <= 3; ++m) EXPECT_NEAR(Numbers(rows[1 + m], 3)[2], 1 + 0.1 * m, 1e-12);
  EXPECT_TRUE(window.Controls().Checked(ToolbarButton(7))) << "the slider's button stays pressed";
}

TEST_F(PickingTest, ASelectionStoredUnderANameReplaysWithItsHeadWhenChosen) {
  Read(Translation(1, 1));
  pick.InitAOS();
  window.OnToolbar1Click("point");
  window.OnPicAnaMouseUp(kLeftButton, 0, 80, 90);
  const std::string table = window.Info.DataText();
  pick.OnCombo1Change(" mine ");
  EXPECT_TRUE(window.Controls().Enabled(ToolbarButton(kSaveAOSButton)));
  pick.OnCombo1Enter();
  EXPECT_EQ(window.Controls().Get("Combo1").items, std::vector<std::string>{"mine"});
  EXPECT_EQ(KeyFile::Load(s.IniPath).Text("AOS", "NAME1"), "mine");

  window.OnToolbar1Click("trait");
  pick.OnCombo1Click(0);
  EXPECT_EQ(window.Info.DataText(), table);
  EXPECT_EQ(pick.PickTool, kPickPoint);
  EXPECT_TRUE(window.Controls().Checked(ToolbarButton(4)));
}

TEST_F(PickingTest, ADragShowsItsRubberAndItsSizeInUserUnits) {
  Read(Translation(0, 0));
  struct Case {
    const char* key;
    const char* rubber;
    ControlState bounds;
    std::string size;
  };
  auto bounds = [](int l, int t, int w, int h) {
    ControlState c;
    c.left = l, c.top = t, c.width = w, c.height = h;
    return c;
  };
  const std::string shortLength = Format(std::hypot(-30 * kUnitX, 40 * kUnitY), s.FormatShort);
  for (const Case& c :
       {Case{"rosette", "Shape1", bounds(100, 100, 40, 40), " WH: " + Format(40 * std::sqrt(0.125), s.FormatShort)},
        Case{"jauge", "Line1", bounds(100, 100, -30, 40), " L: " + shortLength},
        Case{"trait", "Line1", bounds(100, 100, -30, 40), " L: " + shortLength},
        Case{"rectangle", "Shape1", bounds(70, 100, 30, 40),
             " WxH: " + Format(30 * kUnitX, s.FormatShort) + "x" + Format(40 * kUnitY, s.FormatShort)}}) {
    SCOPED_TRACE(c.key);
    window.OnToolbar1Click(c.key);
    window.OnPicAnaMouseDown(kLeftButton, 0, 100.4, 99.6);
    window.OnPicAnaMouseMove(kLeftButton, 0, 70, 140);
    const ControlState& r = window.Controls().Get(c.rubber);
    EXPECT_TRUE(r.visible);
    EXPECT_EQ(std::tie(r.left, r.top, r.width, r.height),
              std::tie(c.bounds.left, c.bounds.top, c.bounds.width, c.bounds.height));
    EXPECT_EQ(frame.Text("Label2"),
              " (" + Format(70 * kUnitX, s.FormatShort) + ", " + Format(140 * kUnitY, s.FormatShort) + ")" + c.size);
    window.OnPicAnaMouseUp(kLeftButton, 0, 70, 140);
    EXPECT_FALSE(window.Controls().Visible(c.rubber));
  }
}

TEST_F(PickingTest, TheCollectorErasesPastesAndItsCloseEndsPicking) {
  Read(Translation(1, 1));
  std::string mirrored;
  window.Info.Watch(
      [&](const CollectorChange& change) { mirrored = change.reset ? change.text : mirrored + change.text; });
  window.Info.Erase();
  EXPECT_EQ(window.Info.DataText(), "") << "no tool armed: two empty strings";
  window.OnToolbar1Click("slider");
  EXPECT_EQ(frame.Text("Label1"), " Close Info windows to stop the picking");
  EXPECT_EQ(std::tie(frame.Get("Info").left, frame.Get("Info").width), std::tuple(10, 850));
  Drag(70, 80, 98, 80);
  const std::string table = window.Info.DataText();
  EXPECT_EQ(mirrored, table) << "a watcher rebuilds the text from the changes";
  window.Info.PasteToClipboard(ui);
  EXPECT_EQ(ui.clipboardText, table);
  EXPECT_EQ(window.Info.DataText(), window.Info.TitreInfo + window.Info.ColonnesInfo);

  window.OnInfoClose();
  EXPECT_EQ(pick.PickTool, kPickIdle);
  EXPECT_EQ(pick.JaugeCtrl1.JaugeCount(), 0);
  EXPECT_FALSE(frame.Visible("Info"));
  for (int b = 3; b <= 9; ++b) EXPECT_FALSE(window.Controls().Checked(ToolbarButton(b))) << b;
}

TEST_F(PickingTest, BadInputShowsItsMessageAndChangesNothingElse) {
  Read(Translation(1, 1));
  window.OnToolbar1Click("point");
  window.OnPicAnaMouseUp(kLeftButton, 0, 80, 80);
  const std::string before = window.Info.DataText();
  const std::string temp = dir.Path() + "/temp-AOS.ini";
  const auto savedAt = std::filesystem::last_write_time(temp);
  // Off the picture, and on the picture but off the mesh: no row, no message, the selection kept.
  for (const auto& [x, y] : {std::pair{300.0, 80.0}, {-3.0, 80.0}, {20.0, 20.0}})
    window.OnPicAnaMouseUp(kLeftButton, 0, x, y);
  EXPECT_EQ(window.Info.DataText(), before);
  EXPECT_EQ(pick.NboxAOS(), kAosPoint);
  EXPECT_EQ(std::filesystem::last_write_time(temp), savedAt);
  EXPECT_TRUE(ui.Messages().empty());

  // Stored selections that can't be used: a gauge of an unknown kind, more gauges than a file may hold.
  const std::string gauge = "[GAGES]\nNumber=1\nname1=g\ntype1=7\nxdep1=70\nydep1=70\nxarr1=90\nyarr1=90\n";
  for (const auto& [name, text] : {std::pair{"odd", gauge}, {"many", std::string("[GAGES]\nNumber=1000\n")}}) {
    SCOPED_TRACE(name);
    dir.Write(std::string(name) + "-AOS.ini", text);
    window.Controls().SetItems("Combo1", {name});
    pick.OnCombo1Click(0);
    EXPECT_EQ(frame.Text("Label1"), " " + dir.Path() + "/" + name + "-AOS.ini can't be loaded");
    EXPECT_EQ(window.Info.DataText(), before);
    EXPECT_EQ(pick.NboxAOS(), kAosPoint);
    EXPECT_EQ(pick.JaugeCtrl1.JaugeCount(), 0);
  }
}

}  // namespace
}  // namespace tessiva

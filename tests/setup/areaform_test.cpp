// The setup window's entry points driven as its view drives them: tools on
// the tool bars, the pointer over the two views, the walk through the data
// files of a sequence, the area sets, the extra values and the calibration.
#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <string>
#include <tuple>

#include "engine_fixture.h"
#include "formats/sections.h"
#include "formats/seqfile.h"
#include "setup/areafiles.h"
#include "setup/areas.h"
#include "setup/areatoolbar.h"
#include "state/keyfile.h"
#include "ui/pointer.h"

namespace tessiva {
namespace {

using testing::SpeckleLevels;

constexpr int32_t kWidth = 160, kHeight = 120;
constexpr const char* kOutside = "You have to choose an initial point inside the area of interest";
constexpr const char* kNotFound = "No valide solution could be found, try it manually or give an other start point.";

// A setup window over a sequence of data files, each a stub naming the
// reference picture and its own deformed picture moved by a known shift.
struct SequenceWindow : testing::EngineWindow {
  std::vector<std::pair<int32_t, int32_t>> shifts;

  // With `from`, the files `from` left behind (data files, area sets,
  // correl.ini) are copied in before the window opens.
  explicit SequenceWindow(std::vector<std::pair<int32_t, int32_t>> moves, const SequenceWindow* from = nullptr)
      : shifts(std::move(moves)) {
    s.Title = "Tessiva";
    s.StartDir = s.LastDir = dir.Path();
    s.IniPath = dir.File("correl.ini");
    SaveGreyBmp(dir.File("ref.bmp"), kWidth, kHeight, SpeckleLevels(kWidth, kHeight));
    std::string members;
    for (size_t i = 1; i <= shifts.size(); ++i) {
      const auto [du, dv] = shifts[i - 1];
      const std::string def = "def" + std::to_string(i) + ".bmp";
      SaveGreyBmp(dir.File(def), kWidth, kHeight, SpeckleLevels(kWidth, kHeight, du, dv));
      dir.Write(Member(i), StubText(s.Title, "ref.bmp", def, nullptr));
      members += Member(i) + "\n";
    }
    if (shifts.size() == 1) {
      s.FileName = dir.File(Member(1));
      s.FileTitle = Member(1);
    } else {
      s.FileName = dir.Write("test.seq", members);
    }
    if (from)
      std::filesystem::copy(from->dir.Path(), dir.Path(), std::filesystem::copy_options::recursive | std::filesystem::copy_options::overwrite_existing);
    frame.SetVisible("AreaForm", true);
    form.Load();
    form.OnTimer3();
  }

  static std::string Member(size_t i) { return "ref-def" + std::to_string(i) + ".don"; }

  // A two-state button of Toolbar2 pressed or raised, as its view does it.
  void Toolbar2(int index, bool pressed) {
    form.Controls().SetChecked(Toolbar2Control(index), pressed);
    form.OnToolbar2Click(index);
  }
  void DragOnRef(int tool, double x1, double y1, double x2, double y2) {
    Toolbar2(tool, true);
    form.OnPicRefMouseDown(kLeftButton, 0, x1, y1);
    form.OnPicRefMouseMove(kLeftButton, 0, x2, y2);
    form.OnPicRefMouseUp(kLeftButton, 0, x2, y2);
  }
  void ClickRef(double x, double y) {
    form.OnPicRefMouseDown(kLeftButton, 0, x, y);
    form.OnPicRefMouseUp(kLeftButton, 0, x, y);
  }
  // A rectangle over most of the picture, reaching the grid's first row and column.
  void DrawArea() { DragOnRef(8, 5, 5, 150, 110); }
  void StartPointsWithSearch(bool on) {
    if (form.AutoSearch() != on) form.OnMenuClick("AutoSearchMNU");
    Toolbar2(kInitialSolutionButton, true);
  }
  bool Enabled(const std::string& key) { return form.Controls().Enabled(Toolbar1Control(key)); }
  std::array<int32_t, 4> Start(int k) const {
    const auto i = static_cast<size_t>(k);
    return {s.XStart.at(i), s.YStart.at(i), s.DuStart.at(i), s.DvStart.at(i)};
  }
};

TEST(AreaFormPointer, RectangleToolFollowsThePointerAndStoresOnlyDragsAboveTheFloor) {
  SequenceWindow w({{0, 0}});
  EXPECT_EQ(w.form.Controls().Text("TitleRef"), " ref.bmp ( 160x 120)");
  EXPECT_EQ(w.form.Controls().Text("TitleDef"), " def1.bmp ( 160x 120)");
  w.Toolbar2(8, true);
  w.form.OnPicRefMouseDown(kLeftButton, 0, 20, 30);
  w.form.OnPicRefMouseMove(kLeftButton, 0, 60, 50);
  const ControlState& shape = w.form.Controls().Get("Shape1");
  EXPECT_EQ((std::array{shape.visible, shape.left == 20, shape.top == 30, shape.width == 40, shape.height == 20}),
            (std::array{true, true, true, true, true}));
  EXPECT_EQ(w.Status(), "  WxH: 40.000x20.000");
  w.form.OnPicRefMouseUp(kLeftButton, 0, 60, 50);
  EXPECT_FALSE(w.form.Controls().Visible("Shape1"));
  EXPECT_EQ(w.s.NbBox, 2);
  // 3 x Lpas is the floor: a drag of 29 pixels stores nothing.
  w.DragOnRef(8, 20, 30, 49, 30);
  EXPECT_EQ(w.s.NbBox, 2);
  // A thin strip between two grid rows holds no pattern: the area stays, the start-point tool doesn't come.
  SequenceWindow thin({{0, 0}});
  thin.DragOnRef(8, 12, 12, 60, 18);
  EXPECT_EQ(thin.s.NbBox, 2);
  EXPECT_EQ(thin.s.NbPat, 0);
  EXPECT_EQ(thin.Status(), " 0 patterns created");
  EXPECT_FALSE(thin.form.Controls().Enabled(Toolbar2Control(kInitialSolutionButton)));
  // Ctrl with the left button pans the view: the picture follows the hand; no area is drawn.
  const double left = w.refCanvas.ScaleLeft(), top = w.refCanvas.ScaleTop();
  w.form.OnPicRefMouseDown(kLeftButton, kCtrlKey, 50, 50);
  w.form.OnPicRefMouseMove(kLeftButton, kCtrlKey, 30, 40);
  w.form.OnPicRefMouseUp(kLeftButton, kCtrlKey, 30, 40);
  EXPECT_EQ(std::pair(w.refCanvas.ScaleLeft(), w.refCanvas.ScaleTop()), std::pair(left + 20, top + 10));
  EXPECT_EQ(w.s.NbBox, 2);
  // The readout: position, grey level of the reference picture and the position in units.
  w.s.UnitPX = w.s.UnitPY = 0.5;
  w.form.OnPicRefMouseMove(0, 0, 12.7, 40.2);
  EXPECT_EQ(w.frame.Text("Label2"),
            " (12, 40) G=" + Format(w.s.PixRef(12, 40), "000") + "  X=" + Format(6.35, "0.000") + " Y=" +
                Format(20.1, "0.000"));
}

// Each drawing button gives its tool: the areas a drag lays, and the gauge it records.
TEST(AreaFormPointer, EachToolButtonDrawsItsOwnShape) {
  struct Case {
    int button;
    int areas;      // areas added by the drag from (40, 40) to (100, 40)
    int gaugeType;  // -1: no gauge
  };
  const Case cases[] = {
      {2, 2, kSlider}, {3, 2, kJauge}, {4, 4, kRosette}, {6, 2, -1}, {7, 1, -1}, {8, 1, -1},
  };
  for (const Case& c : cases) {
    SequenceWindow w({{0, 0}});
    w.DragOnRef(c.button, 40, 40, 100, 40);
    EXPECT_EQ(w.s.NbBox - 1, c.areas) << c.button;
    EXPECT_EQ(w.form.Gages().Count(), c.gaugeType < 0 ? 0 : 1) << c.button;
    if (c.gaugeType >= 0) {
      EXPECT_EQ(w.form.Gages().Get(1).type, c.gaugeType) << c.button;
    }
    EXPECT_EQ(w.s.FissureOn, c.button == kCrackButton) << c.button;
  }
}

TEST(AreaFormPointer, FormingLimitBandThenNeckClickAndFreeHandClicks) {
  SequenceWindow w({{0, 0}});
  w.DragOnRef(kClfButton, 20, 60, 140, 60);
  ASSERT_EQ(w.s.NbBox, 2);
  // The marker across the band follows the pointer, and the click splits the band at the neck.
  w.form.OnPicRefMouseMove(0, 0, 70, 63);
  const ControlState& marker = w.form.Controls().Get("Line1");
  EXPECT_EQ((std::array{marker.visible, marker.left + marker.width / 2 == 70, marker.width == 0}),
            (std::array{true, true, true}));
  w.ClickRef(70, 63);
  EXPECT_EQ(w.s.NbBox, 3);
  EXPECT_TRUE(w.s.ClfMode);
  EXPECT_EQ(std::tie(w.s.xstrict, w.s.ystrict), std::tuple(70, 60));

  // A free shape: three clicks, then one near the first closes a triangle.
  SequenceWindow f({{0, 0}});
  f.Toolbar2(9, true);
  for (const auto& [x, y] : {std::pair{30, 30}, {120, 30}, {80, 100}, {33, 32}}) f.ClickRef(x, y);
  EXPECT_EQ(f.s.NbBox, 2);
  EXPECT_EQ(f.s.Nbox[1], 4);
}

TEST(AreaFormStartPoints, ClicksOnTheReferenceAndDeformedViews) {
  SequenceWindow w({{3, -2}});
  w.DrawArea();
  ASSERT_GT(w.s.NbPat, 0);
  w.StartPointsWithSearch(false);
  for (int i = 1; i <= 12; ++i) EXPECT_FALSE(w.form.Controls().Enabled(Toolbar2Control(i))) << i;

  // The first row of the grid holds patterns, yet has no cells to pick.
  w.ClickRef(60, 12);
  EXPECT_EQ(w.ui.Messages(), std::vector<std::string>{kOutside});
  EXPECT_EQ(w.s.NbStart, 0);

  // A second click before any on the deformed view replaces the first point,
  // moved to the centre of the pattern of its cell.
  w.ClickRef(43, 44);
  w.ClickRef(72, 63);
  EXPECT_EQ(w.Status(), " Give the corresponding point in the deformed picture");
  EXPECT_EQ(w.s.NbStart, 1);
  EXPECT_EQ(w.Start(1), (std::array{70, 60, 0, 0}));

  w.form.OnPicDefMouseMove(0, 0, 75, 56.5);
  EXPECT_EQ(w.Status(), " du=5.000, dv=-3.500");
  w.form.OnPicDefMouseUp(kLeftButton, 0, 73.4, 57.6);
  EXPECT_EQ(w.Start(1), (std::array{70, 60, 3, -2}));
  EXPECT_EQ(w.Engine().walk.PropagDone, -1);
  EXPECT_TRUE(w.Enabled("nextdata"));

  // Once done, a click on the deformed view changes nothing.
  w.form.OnPicDefMouseUp(kLeftButton, 0, 90, 90);
  EXPECT_EQ(w.Start(1), (std::array{70, 60, 3, -2}));

  // The right button asks for the popup menu.
  EXPECT_TRUE(w.form.OnPicRefMouseUp(kRightButton, 0, 70, 60));
}

TEST(AreaFormStartPoints, AutomaticSearchFindsTheShiftOrSaysWhyNot) {
  SequenceWindow w({{3, -2}});
  w.DrawArea();
  w.StartPointsWithSearch(true);
  w.ClickRef(72, 63);
  EXPECT_EQ(w.Start(1), (std::array{70, 60, 3, -2}));
  EXPECT_TRUE(w.s.StartOk[1]);
  EXPECT_EQ(w.Engine().walk.PropagDone, -1);
  EXPECT_TRUE(w.ui.Messages().empty());
  EXPECT_EQ(w.ui.busyDepth, 0);

  // Raising the start-point tool asks first; No keeps everything.
  w.Toolbar2(kInitialSolutionButton, false);
  EXPECT_EQ(w.ui.Messages().back(), "Do you accept to delete all initial solution ?");
  EXPECT_TRUE(w.form.GivingStartPoints());
  EXPECT_EQ(w.s.NbStart, 1);

  // A blank deformed picture: nothing to find.
  SequenceWindow blank({{0, 0}});
  SaveGreyBmp(blank.dir.File("def1.bmp"), kWidth, kHeight, testing::Uniform(kWidth, kHeight, 128));
  blank.form.OnTimer3();
  blank.DrawArea();
  blank.StartPointsWithSearch(true);
  blank.ClickRef(72, 63);
  EXPECT_EQ(blank.ui.Messages(), std::vector<std::string>{kNotFound});
  EXPECT_FALSE(blank.s.StartOk[1]);
  EXPECT_NE(blank.Engine().walk.PropagDone, -1);
}

TEST(AreaFormSequence, OneMemberSavesAndCloses) {
  SequenceWindow w({{3, -2}});
  w.DrawArea();
  w.StartPointsWithSearch(true);
  w.ClickRef(72, 63);
  w.form.Controls().SetItems("Combo2", {"speed"});
  w.form.Controls().SetItems("List2", {"5 mm/min"});
  w.s.UnitNameX = w.s.UnitNameY = "mm";
  w.s.UnitPX = w.s.UnitPY = 0.025;
  w.form.OnToolbar1Click("nextdata");
  EXPECT_FALSE(w.frame.Visible("AreaForm"));
  EXPECT_TRUE(w.frame.Visible("Pub"));
  EXPECT_FALSE(w.s.AreaOpen);

  // Another window reads the file back as it was: areas, grid, start point, units, extra values.
  SequenceWindow again({{3, -2}}, &w);
  EXPECT_EQ(again.s.NbBox, 2);
  EXPECT_EQ(again.s.NbPat, w.s.NbPat);
  EXPECT_EQ(again.s.NbStart, 1);
  EXPECT_EQ(again.Start(1), (std::array{70, 60, 3, -2}));
  EXPECT_EQ(std::tie(again.s.UnitNameX, again.s.UnitPX), std::tie(w.s.UnitNameX, w.s.UnitPX));
  EXPECT_EQ(again.form.Controls().Get("Combo2").items, std::vector<std::string>{"speed"});
  EXPECT_EQ(again.form.Controls().Get("List2").items, std::vector<std::string>{"5 mm/min"});
}

TEST(AreaFormSequence, StartPointsTravelToTheNextMembersAndBack) {
  SequenceWindow w({{3, -2}, {5, 1}, {7, 4}});
  EXPECT_FALSE(w.Enabled("previousdata"));
  w.DrawArea();
  w.StartPointsWithSearch(true);
  w.ClickRef(72, 63);
  w.form.OnToolbar1Click("nextdata");
  EXPECT_EQ(w.form.CurFile, 2);
  EXPECT_TRUE(w.Enabled("previousdata"));
  EXPECT_EQ(w.form.Controls().Text("Text1"), SequenceWindow::Member(2));
  // Searched anew on the second member's picture.
  EXPECT_EQ(w.Start(1), (std::array{70, 60, 5, 1}));
  EXPECT_EQ(w.Engine().walk.PropagDone, -1);

  w.form.OnToolbar1Click("previousdata");
  EXPECT_EQ(w.form.CurFile, 1);
  EXPECT_FALSE(w.Enabled("previousdata"));
  EXPECT_EQ(w.form.Controls().Text("Text1"), SequenceWindow::Member(1));
  EXPECT_EQ(w.s.NbBox, 2);

  // The rest goes unattended: every member saved with its own shift, then the window closes.
  w.form.OnToolbar1Click("enddata");
  EXPECT_FALSE(w.frame.Visible("AreaForm"));
  EXPECT_TRUE(w.ui.Messages().empty());
  for (size_t i = 1; i <= 3; ++i) {
    const KeyFile file = KeyFile::Load(w.dir.File(SequenceWindow::Member(i)));
    const auto [du, dv] = w.shifts[i - 1];
    EXPECT_EQ((std::array{file.Int("STARTPOINTS", "du1", -99), file.Int("STARTPOINTS", "dv1", -99)}),
              (std::array{du, dv})) << i;
  }
}

TEST(AreaFormSequence, WithoutSearchASetWhoseStartPointIsDoneIsWalkedOnce) {
  SequenceWindow w({{3, -2}});
  w.DrawArea();
  w.StartPointsWithSearch(false);
  w.ClickRef(72, 63);
  w.form.OnPicDefMouseUp(kLeftButton, 0, 73, 58);
  w.form.Controls().SetText("Combo1", "   ");
  w.form.OnToolbar1Click("SaveAOI");
  EXPECT_EQ(w.form.Controls().Get("Combo1").items.front(), "Default");
  EXPECT_EQ(ReadKeyText("AOI", "NAME1", w.s.IniPath), "Default");

  SequenceWindow other({{3, -2}}, &w);
  other.form.OnMenuClick("AutoSearchMNU");
  ASSERT_FALSE(other.form.AutoSearch());
  other.form.OnCombo1Click(1);
  EXPECT_EQ(other.Start(1), (std::array{70, 60, 3, -2}));
  EXPECT_EQ(other.Engine().walk.PropagDone, -1);
  EXPECT_TRUE(other.ui.Messages().empty());
}

TEST(AreaFormFields, CalibrationAndExtraValues) {
  SequenceWindow w({{0, 0}});
  const std::tuple<const char*, const char*, double> scales[] = {
      {"UnitPixX", "0", 1.0}, {"UnitPixX", "0,25", 0.25}, {"UnitPixY", "0.5", 0.5}, {"UnitPixY", "", 0.5},
      {"UnitPixY", "abc", 1.0},
  };
  for (const auto& [field, text, expected] : scales) {
    w.form.Controls().SetText(field, text);
    w.form.OnUnitChange(field);
    EXPECT_EQ(std::string(field) == "UnitPixX" ? w.s.UnitPX : w.s.UnitPY, expected) << field << " " << text;
  }
  w.form.Controls().SetText("UnitX", "mm");
  w.form.OnUnitChange("UnitX");
  EXPECT_EQ(w.s.UnitNameX, "mm");

  ControlRegistry& c = w.form.Controls();
  c.SetText("Combo2", " speed ");
  w.form.OnCombo2KeyPress(13);
  EXPECT_EQ(c.Get("List2").items, std::vector<std::string>{"*"});
  EXPECT_EQ(c.Get("Text2").foreColor, 10);
  c.SetText("Text2", "5 mm/min");
  w.form.OnText2KeyPress(13);
  c.SetText("Combo2", "temp");
  c.SetText("Text2", "20,5");
  w.form.OnText2KeyPress(13);
  EXPECT_EQ(c.Get("Combo2").items, (std::vector<std::string>{"speed", "temp"}));
  EXPECT_EQ(c.Get("List2").items, (std::vector<std::string>{"5 mm/min", "20,5"}));
  w.form.OnCombo2Click(1);
  EXPECT_EQ(c.Text("Text2"), "5 mm/min");
  w.form.OnCombo2Delete(1);
  EXPECT_EQ(c.Get("Combo2").items, std::vector<std::string>{"temp"});
  EXPECT_EQ(c.Get("List2").items, std::vector<std::string>{"20,5"});
}

TEST(AreaFormBadInput, MissingPictureAndMalformedDataFileLeaveFilesAndWindowAlone) {
  SequenceWindow w({{0, 0}});
  const std::string member = w.dir.File(SequenceWindow::Member(1));
  const std::string stub = w.dir.Read(SequenceWindow::Member(1));
  for (const std::string& content : {stub, std::string("[PICTURES\nPicRef ref.bmp\n")}) {
    w.dir.Write(SequenceWindow::Member(1), content);
    std::filesystem::remove(w.dir.File("def1.bmp"));
    w.form.Load();
    w.form.OnTimer3();
    EXPECT_EQ(w.Status(), " " + NotRightFormattedMessage(member));
    EXPECT_EQ(w.dir.Read(SequenceWindow::Member(1)), content);
    // Still usable: the tools do nothing harmful without pictures.
    w.DragOnRef(8, 5, 5, 150, 110);
    w.ClickRef(60, 60);
  }
}

}  // namespace
}  // namespace tessiva

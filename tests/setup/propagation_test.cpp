#include "setup/propagation.h"

#include <gtest/gtest.h>

#include <functional>
#include <utility>

#include "engine_fixture.h"
#include "formats/datafile.h"

namespace tessiva {
namespace {

struct Rectangle {
  int32_t x1, y1, x2, y2;
};

// A grid of step 10 over rectangles of a blank picture.
class WalkWindow : public ::testing::Test {
 protected:
  void Lay(const std::vector<Rectangle>& areas, int32_t height = 105) {
    w.form.DeleteAOI();
    w.Load(155, height, testing::Uniform(155, height, 128), testing::Uniform(155, height, 128));
    for (const Rectangle& r : areas) w.AddRectangle(r.x1, r.y1, r.x2, r.y2);
    w.form.CreateRectArea();
    w.ui.log.clear();
    w.refCanvas.ops.clear();
  }
  // A start point given and walked from, as the start-point tool does.
  void WalkFrom(int32_t x, int32_t y) {
    w.AddStartPoint(x, y);
    w.form.PropagArea();
  }
  bool Reached(int32_t x, int32_t y) { return walk().PatState[static_cast<size_t>(w.PatternAt(x, y))] == -1; }
  Propagation& walk() { return w.Engine().walk; }
  testing::EngineWindow w;
};

TEST_F(WalkWindow, ReachesWhatTouchesSideOnOrAtACornerMetAtTheRightVisit) {
  const Rectangle row{15, 15, 45, 25}, rowAfterGap{55, 15, 85, 25}, pair{35, 25, 45, 45}, corner{46, 46, 65, 65};
  struct Case {
    const char* what;
    std::vector<Rectangle> areas;
    int32_t x, y;
    bool covered;
    int32_t found;
  };
  const std::vector<Case> cases = {
      {"one pattern", {{15, 15, 25, 25}}, 20, 20, true, 1},
      {"a row", {row}, 30, 20, true, 3},
      {"a row after a gap of one cell", {row, rowAfterGap}, 20, 20, false, 3},
      {"corner contact met at the second visit, the one along the diagonals", {pair, corner}, 40, 30, true, 6},
      {"corner contact met at the first visit", {pair, corner}, 40, 40, false, 2},
      {"a start outside every cell walks from the empty entry", {{5, 5, 45, 45}}, 10, 10, false, 1},
  };
  for (const Case& c : cases) {
    Lay(c.areas);
    WalkFrom(c.x, c.y);
    EXPECT_EQ(walk().PropagDone, c.covered ? -1 : 0) << c.what;
    EXPECT_EQ(walk().FoundPat, c.found) << c.what;
    EXPECT_EQ(w.ui.Messages(), c.covered ? std::vector<std::string>{}
                                         : std::vector<std::string>{" Give a new initial solution to continue propagation"})
        << c.what;
  }
}

TEST_F(WalkWindow, NeighboursAreSoughtWithinTheNumberBand) {
  // Column 40 runs down from y = 250 and column 50 up to it: the numbers of the
  // touching patterns lie 2K + 1 apart side on, 2K along the diagonal met at
  // the second visit, and the band is K + 10 wide.
  for (const auto& [k, covered] : std::vector<std::pair<int32_t, bool>>{{9, true}, {10, true}, {11, false}}) {
    Lay({{35, 245, 45, 255 + 10 * k}, {46, 245 - 10 * k, 55, 255}}, 400);
    ASSERT_EQ(w.Engine().grid.ColBand, k + 10);
    WalkFrom(40, 250);
    EXPECT_EQ(Reached(50, 250), covered) << k;
    EXPECT_EQ(walk().PropagDone == -1, covered) << k;
  }
}

TEST_F(WalkWindow, SeparateAreasNeedAStartPointEach) {
  Lay({{15, 15, 45, 45}, {115, 15, 145, 45}});
  WalkFrom(30, 30);
  EXPECT_EQ(w.Status(), " 9 found patterns / 18 patterns, 0 are marked as bad");
  WalkFrom(130, 30);
  EXPECT_EQ(walk().PropagDone, -1);
  EXPECT_EQ(w.Status(), " Now, you can give a extra initial solution or save tha data file : "
                        "18 found patterns / 18 patterns, 0 are marked as bad");
  const ControlRegistry& c = w.form.Controls();
  EXPECT_EQ((std::array{c.Checked("Timer1"), c.Visible("FlashInfo"), c.Checked("Timer2"), c.Visible("FlashInfo2"),
                        c.Enabled("Toolbar1.nextdata"), c.Enabled("Toolbar1.enddata")}),
            (std::array{false, false, true, true, true, true}));

  // An incomplete walk over the first of two given start points moves on to the second.
  Lay({{15, 15, 45, 45}, {115, 15, 145, 45}});
  w.AddStartPoint(30, 30);
  w.AddStartPoint(130, 30);
  w.s.CurStart = 1;
  w.form.PropagArea();
  EXPECT_EQ(w.s.CurStart, 2);
  w.form.PropagArea();
  EXPECT_EQ(walk().PropagDone, -1);
}

TEST_F(WalkWindow, TheCountOfVisitsDecidesNotThePatternsReached) {
  // Areas of 9, 9 and 1 patterns: the pass over the second start point covers
  // its area, the pass over the first visits its start once more, 9 + 9 + 1.
  Lay({{15, 15, 45, 45}, {115, 15, 145, 45}, {15, 95, 25, 105}});
  WalkFrom(30, 30);
  WalkFrom(130, 30);
  EXPECT_EQ(walk().PropagDone, -1);
  EXPECT_EQ(walk().FoundPat, 19);
  EXPECT_FALSE(Reached(20, 100)) << "the lone pattern was never reached";
}

TEST_F(WalkWindow, SilentWalksTellOnlyTheStatusLineAndAFinishedWalkIsNotRepeated) {
  Lay({{15, 15, 45, 25}, {55, 15, 85, 25}});
  w.Engine().silent = true;
  WalkFrom(20, 20);
  EXPECT_TRUE(w.ui.Messages().empty());
  EXPECT_EQ(w.Status(), " 3 found patterns / 6 patterns, 0 are marked as bad");
  WalkFrom(60, 20);
  ASSERT_EQ(walk().PropagDone, -1);
  w.refCanvas.ops.clear();
  WalkFrom(70, 20);
  EXPECT_EQ(walk().FoundPat, 6);
  EXPECT_TRUE(w.refCanvas.ops.empty());
}

TEST_F(WalkWindow, PaintsInOrderOfVisitFromDarkToLightCatchingUpFiveTimes) {
  Lay({{15, 15, 115, 25}});  // ten patterns in a row
  WalkFrom(20, 20);
  const auto squares = w.refCanvas.OfKind("fill");
  ASSERT_EQ(squares.size(), 10u);
  EXPECT_EQ(squares[0].colour, QBColor(12)) << "the start";
  EXPECT_EQ((std::array{squares[0].x1, squares[0].y1, squares[0].x2, squares[0].y2}),
            (std::array{15.0, 15.0, 25.0, 25.0}));
  for (size_t k = 2; k < squares.size(); ++k) {
    EXPECT_EQ(squares[k].colour & 0xFF, squares[k].colour >> 16) << "grey";
    EXPECT_GT(squares[k].colour, squares[k - 1].colour) << k;
  }
  EXPECT_EQ(squares.back().colour, 0xFFFFFFu);
  EXPECT_EQ(w.refCanvas.OfKind("refresh").size(), 5u + 1) << "after visits 2, 4, 6, 8, 10, and at the end";
  w.refCanvas.ops.clear();
  setup::AffichePropag(w.form);
  EXPECT_EQ(w.refCanvas.OfKind("fill").size(), 10u);
}

// A window whose pending events, run while the walk catches up, clear the areas.
struct ImpatientUi : ScriptedUi {
  using ScriptedUi::ScriptedUi;
  std::function<void()> pendingEvents;
  void DoEvents() override {
    if (pendingEvents) std::exchange(pendingEvents, nullptr)();
  }
};

TEST(PropagArea, AWalkWhoseGridIsClearedMeanwhileStops) {
  AppState s;
  ControlRegistry frame;
  ImpatientUi ui(frame);
  Param param(s);
  AreaForm form(s, ui, param);
  testing::SetPair(s, 155, 155, testing::Uniform(155, 155, 128), testing::Uniform(155, 155, 128));
  s.Lgrid = 10;
  param.ParamShow();
  StoreArea(s, {{15, 15}, {115, 15}, {115, 25}, {15, 25}, {15, 15}}, 0);
  form.CreateRectArea();
  s.ResizeStartPoints(1);
  s.NbStart = s.CurStart = 1;
  s.XStart[1] = s.YStart[1] = 20;
  ui.pendingEvents = [&] { form.DeleteAOI(); };
  form.PropagArea();
  EXPECT_EQ(s.NbPat, 0);
  EXPECT_EQ(form.Engine().walk.PropagDone, 0);
  EXPECT_TRUE(ui.Messages().empty()) << "nothing is told of a walk given up";
}

TEST(DataFile, SavedAndReadBackGivesTheSameGridStartPointsAndWalk) {
  testing::EngineWindow w;
  w.s.LastDir = w.dir.Path();
  w.Load(155, 105, testing::SpeckleLevels(155, 105), testing::SpeckleLevels(155, 105, 4, 3));
  w.AddRectangle(15, 15, 45, 45);
  w.AddRectangle(115, 15, 145, 85);
  w.form.CreateRectArea();
  w.AddStartPoint(30, 30, 4, 3);
  w.form.PropagArea();
  w.AddStartPoint(130, 50, 4, 3);
  w.form.PropagArea();
  ASSERT_EQ(w.Engine().walk.PropagDone, -1);
  testing::EngineWindow r;
  for (testing::EngineWindow* window : {&w, &r}) {
    window->s.LastDir = w.dir.Path();
    window->s.ResizeSequence(1);
    window->s.DataFileName[1] = "pair.don";
    window->s.DataFilePath[1] = w.dir.File("pair.don");
    window->form.Controls().SetText("Text1", "pair.don");
  }
  ASSERT_TRUE(SauveDonArea(w.form, 1));
  ASSERT_TRUE(LecDonArea(r.form, 1, false));
  ASSERT_EQ(r.s.NbPat, w.s.NbPat);
  EXPECT_TRUE(std::equal(w.s.XPat.begin() + 1, w.s.XPat.begin() + w.s.NbPat + 1, r.s.XPat.begin() + 1));
  EXPECT_TRUE(std::equal(w.s.YPat.begin() + 1, w.s.YPat.begin() + w.s.NbPat + 1, r.s.YPat.begin() + 1));
  ASSERT_EQ(r.s.NbStart, 2);
  EXPECT_EQ(r.s.XStart, w.s.XStart);
  EXPECT_EQ(r.s.DvStart, w.s.DvStart);
  EXPECT_EQ(r.s.StartOk, w.s.StartOk);
  EXPECT_EQ(r.Engine().walk.PropagDone, -1);
  EXPECT_EQ(r.Engine().walk.FoundPat, w.Engine().walk.FoundPat);
}

}  // namespace
}  // namespace tessiva

#include "setup/areas.h"

#include <gtest/gtest.h>

#include "engine_fixture.h"

namespace tessiva {
namespace {

Outline Rect(int32_t x1, int32_t y1, int32_t x2, int32_t y2) { return {{x1, y1}, {x2, y1}, {x2, y2}, {x1, y2}, {x1, y1}}; }

Outline AreaOf(const AppState& s, int32_t k) {
  Outline o;
  for (int32_t j = 1; j <= s.Nbox[k]; ++j) o.push_back({s.XBox[k][j], s.YBox[k][j]});
  return o;
}

TEST(InSurfArea, RayRuleOnEdgesVerticesHolesAndOverlaps) {
  const Outline box = Rect(10, 10, 50, 40), triangle = {{10, 40}, {50, 40}, {30, 10}, {10, 40}};
  const Outline outer = Rect(10, 10, 100, 100), inner = Rect(40, 40, 60, 60);
  const Outline first = Rect(10, 10, 60, 60), second = Rect(40, 40, 90, 90);
  struct Case {
    const char* what;
    std::vector<Outline> areas;
    double x, y, area;
  };
  const std::vector<Case> cases = {
      {"inside", {box}, 30, 25, 1},
      {"right of it", {box}, 60, 25, 0},
      {"on the right edge", {box}, 50, 25, 1},
      {"on the left edge", {box}, 10, 25, 0},
      {"on a horizontal edge", {box}, 30, 10, 0},
      {"on a corner", {box}, 10, 10, 0},
      {"on an apex: the ray nudged to y + 0.5 passes inside", {triangle}, 30, 10, 1},
      {"level with the apex, beside it", {triangle}, 20, 10, 0},
      {"on a horizontal base", {triangle}, 30, 40, 0},
      {"in a hole", {outer, inner}, 50, 50, 0},
      {"round the hole", {outer, inner}, 50, 30, 1},
      {"in the second of two overlapping areas", {first, second}, 80, 80, 2},
      {"in both", {first, second}, 50, 50, 0},
      {"in two identical areas", {first, first}, 30, 30, 0},
      {"on an island in a hole", {outer, Rect(30, 30, 80, 80), Rect(45, 45, 65, 65)}, 55, 55, 3},
  };
  for (const Case& c : cases) {
    AppState s;
    for (const Outline& o : c.areas) ASSERT_TRUE(StoreArea(s, o, 0));
    EXPECT_EQ(InSurfArea(s, GridFrame::For(200, 200, 10), c.x, c.y), c.area) << c.what;
  }
}

TEST(AreaTools, OutlinesOfEveryTool) {
  const Outline band = TraitOutline(20, 100, 220, 100, 5);
  const Outline steepBand = TraitOutline(100, 20, 100, 220, 5);
  const auto firstPoints = [](const std::vector<Outline>& discs) {
    Outline points;  // angle 0 of each disc: its centre moved right by its radius
    for (const Outline& d : discs) points.push_back(d.front());
    return points;
  };
  struct Case {
    const char* what;
    Outline got, expected;
  };
  const std::vector<Case> cases = {
      {"allselect", AllSelectOutline(200, 150), Rect(15, 15, 185, 135)},
      {"rectangle, rounded half to even", RectangleOutline(10.4, 20.5, 60.6, 80.5), Rect(10, 20, 61, 80)},
      {"trait: 4 x Lgrid either side", band, Rect(20, 120, 220, 80)},
      {"steep trait", steepBand, {{120, 20}, {120, 220}, {80, 220}, {80, 20}, {120, 20}}},
      {"trait square to a 3-4-5 slope", TraitOutline(100, 100, 130, 140, 5),
       {{84, 112}, {114, 152}, {146, 128}, {116, 88}, {84, 112}}},
      {"disc of 12 points", DiscOutline(100, 100, 16, 12),
       {{116, 100}, {114, 108}, {108, 114}, {100, 116}, {92, 114}, {86, 108}, {84, 100}, {86, 92}, {92, 86},
        {100, 84}, {108, 86}, {114, 92}, {116, 100}}},
      {"short gauge: one disc of 4 x Lpas", firstPoints(GaugeOutlines(100, 100, 111, 100, 0, 4)), {{116, 100}}},
      {"long slider: 2 x Lpas at each end", firstPoints(GaugeOutlines(100, 100, 112, 100, 2, 4)), {{108, 100}, {120, 100}}},
      {"long rosette: a disc at each corner", firstPoints(GaugeOutlines(100, 100, 130, 140, 1, 4)),
       {{108, 100}, {138, 100}, {138, 140}, {108, 140}}},
      {"crack slit: Klarg x Lpas either side", CrackOutlines(100, 100, 130, 100, 4, 3)[1], Rect(100, 112, 130, 88)},
      {"neck along x", NeckStrips(band, NeckPoint(band, 121.3, 50), 4, 5)[0], Rect(20, 120, 117, 80)},
      {"after the neck", NeckStrips(band, NeckPoint(band, 121.3, 50), 4, 5)[1], Rect(125, 120, 220, 80)},
      {"neck held at the band's end", NeckStrips(band, NeckPoint(band, 500, 0), 4, 5)[1], Rect(224, 120, 220, 80)},
      {"neck of a steep band follows the pointer's y", NeckStrips(steepBand, NeckPoint(steepBand, 300, 121.6), 4, 5)[0],
       {{120, 20}, {120, 118}, {80, 118}, {80, 20}, {120, 20}}},
  };
  for (const Case& c : cases) EXPECT_EQ(c.got, c.expected) << c.what;
  EXPECT_EQ(CrackOutlines(100, 100, 130, 100, 4, 3)[0].size(), 25u);
}

class AreaWindow : public ::testing::Test {
 protected:
  void SetUp() override { w.Load(240, 240, testing::Uniform(240, 240, 128), testing::Uniform(240, 240, 128)); }
  AppState& s() { return w.s; }
  testing::EngineWindow w;
};

TEST_F(AreaWindow, DragsShorterThanTheirFloorStoreNothing) {
  // Lpas 10: floors of 30 for drags, 20 for the crack, 10 for gauges.
  struct Case {
    const char* what;
    std::function<bool()> tool;
    bool stored;
  };
  const std::vector<Case> cases = {
      {"rectangle of 3 x Lpas", [&] { return setup::AddRectangle(w.form, 10, 10, 28, 34); }, true},
      {"rectangle just short", [&] { return setup::AddRectangle(w.form, 10, 10, 28, 33.9); }, false},
      {"trait just short", [&] { return setup::AddTrait(w.form, 100, 100, 129.9, 100); }, false},
      {"forming-limit band just short", [&] { return setup::FormingLimitDrag(w.form, 100, 100, 129.9, 100); }, false},
      {"crack of 2 x Lpas", [&] { return setup::AddCrack(w.form, 100, 100, 120, 100); }, true},
      {"crack just short", [&] { return setup::AddCrack(w.form, 100, 100, 119.9, 100); }, false},
      {"gauge of Lpas", [&] { return setup::AddGauge(w.form, 100, 100, 110, 100, 0); }, true},
      {"gauge just short", [&] { return setup::AddGauge(w.form, 100, 100, 109.9, 100, 0); }, false},
  };
  for (const Case& c : cases) {
    const int32_t before = s().NbBox;
    EXPECT_EQ(c.tool(), c.stored) << c.what;
    EXPECT_EQ(s().NbBox > before, c.stored) << c.what;
  }
}

TEST_F(AreaWindow, CrackAndFormingLimitToolsLeaveTheirGapsFreeOfPatterns) {
  w.SetParameters(5, 9, 9);  // Lpas 4
  ASSERT_TRUE(setup::AddCrack(w.form, 100, 100, 130, 100));
  EXPECT_TRUE(s().FissureOn);
  EXPECT_EQ(s().XFissureArr, 100);
  EXPECT_EQ(s().XFissureDep, 130);
  EXPECT_TRUE(w.ui.Frame().Visible("Param"));
  EXPECT_EQ(w.PatternAt(116, 100), 0) << "in the slit";
  EXPECT_NE(w.PatternAt(116, 120), 0) << "in the disc beside it";

  setup::DeleteAOI(w.form);
  ASSERT_TRUE(setup::FormingLimitDrag(w.form, 20, 100, 220, 100));
  setup::FormingLimitMove(w.form, 121.3, 50);
  setup::FormingLimitClick(w.form);
  EXPECT_EQ(s().NbBox, 3);
  EXPECT_TRUE(s().ClfMode);
  EXPECT_NE(w.PatternAt(116, 100), 0);
  EXPECT_EQ(w.PatternAt(120, 100), 0);
  EXPECT_EQ(w.PatternAt(124, 100), 0);
  EXPECT_NE(w.PatternAt(128, 100), 0);
}

TEST_F(AreaWindow, FreeHandClosesNearItsFirstPointOrAtFiftyPoints) {
  w.SetParameters(5, 9, 9);  // Lpas 4
  for (const auto& [x, y] : std::vector<std::pair<double, double>>{{10.2, 10.6}, {100, 10}, {100, 80}})
    EXPECT_FALSE(setup::FreeHandClick(w.form, x, y));
  EXPECT_TRUE(setup::FreeHandClick(w.form, 11, 12)) << "within Lpas of the first point";
  EXPECT_EQ(AreaOf(s(), 1), (Outline{{10, 11}, {100, 10}, {100, 80}, {10, 11}}));
  EXPECT_GT(s().NbPat, 0);

  for (int i = 0; i < 50; ++i) EXPECT_FALSE(setup::FreeHandClick(w.form, 20 + 4 * i, 200 + 20 * (i % 2)));
  EXPECT_TRUE(setup::FreeHandClick(w.form, 230, 230));
  EXPECT_EQ(w.ui.Messages(), std::vector<std::string>{"Only 50 points could be used for the shape"});
  ASSERT_EQ(s().Nbox[2], 51);
  EXPECT_EQ(s().XBox[2][51], 20);
}

TEST_F(AreaWindow, EraseToolsAskFirstAndTakeAGaugeWithAllItsDiscs) {
  ASSERT_TRUE(setup::AddRectangle(w.form, 20, 20, 120, 120));
  ASSERT_TRUE(setup::AddGauge(w.form, 100, 100, 130, 110, 1));  // a rosette, forced square: four discs
  EXPECT_EQ(w.form.Gages().Get(1).yarr, 130);
  ASSERT_EQ(s().NbBox, 6);
  w.AddStartPoint(40, 40);
  const std::string question = "If you delete the last Area of Interest you delete all initial solution too.\n"
                               "Do you really want to do that ?";
  w.ui.messageAnswers = {MsgAnswer::No, MsgAnswer::Yes};
  setup::TrashLast(w.form);
  EXPECT_EQ(s().NbBox, 6) << "refused";
  setup::TrashLast(w.form);
  EXPECT_EQ(w.ui.Messages(), (std::vector<std::string>{question, question}));
  EXPECT_EQ(s().NbBox, 2);
  EXPECT_EQ(w.form.Gages().Count(), 0);
  EXPECT_EQ(AreaOf(s(), 1), Rect(20, 20, 120, 120));
  EXPECT_EQ(s().NbStart, 0);
  setup::TrashLast(w.form);
  EXPECT_EQ(s().NbBox, 1);
  EXPECT_EQ(s().NbPat, 0);
  EXPECT_EQ(w.ui.Messages().size(), 2u) << "no start points, no question";
}

}  // namespace
}  // namespace tessiva

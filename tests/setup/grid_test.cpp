#include "setup/grid.h"

#include <gtest/gtest.h>

#include "engine_fixture.h"
#include "setup/correlation.h"

namespace tessiva {
namespace {

TEST(GridFrame, DonIRecLeavesTheFirstColumnAndRowWithoutCells) {
  const GridFrame f = GridFrame::For(105, 105, 10);  // points 10..100, 9 cells a column
  EXPECT_EQ(f.XGridMax, 100);
  EXPECT_EQ(GridFrame::For(99, 99, 10).XGridMax, 90);
  struct Case {
    double x, y;
    int32_t cell;
  };
  const std::vector<Case> cases = {{10, 50, 0},  {14.9, 50, 0}, {50, 14.9, 0},  {15, 15, 1},     {20, 20, 1},
                                   {15, 100, 9}, {25, 15, 10},  {100, 100, 81}, {100.5, 50, 0}, {50, 101, 0}};
  for (const Case& c : cases) EXPECT_EQ(f.DonIRec(c.x, c.y), c.cell) << c.x << ", " << c.y;
}

class GridWindow : public ::testing::Test {
 protected:
  void SetUp() override {
    w.Load(105, 105, testing::Uniform(105, 105, 128), testing::Uniform(105, 105, 128));
    w.frame.Subscribe([this](const std::string& name, const ControlState& c) {
      if (name == "Label1") statuses.push_back(c.text);
    });
  }
  AppState& s() { return w.s; }
  testing::EngineWindow w;
  std::vector<std::string> statuses;
};

TEST_F(GridWindow, PatternsAreNumberedColumnByColumn) {
  w.AddRectangle(15, 15, 90, 90);
  w.SetParameters(11, 9, 9);
  w.form.CreateRectArea();
  EXPECT_EQ(s().Lpas, 10) << "the even step";
  // Column 90 lies on the right edge and is in; row 90 lies on the bottom edge and is out.
  ASSERT_EQ(s().NbPat, 56);
  for (const auto& [p, x, y] : std::vector<std::array<int32_t, 3>>{{1, 20, 20}, {2, 20, 30}, {8, 30, 20}, {56, 90, 80}}) {
    EXPECT_EQ(s().XPat[p], x) << p;
    EXPECT_EQ(s().YPat[p], y) << p;
  }
  EXPECT_EQ(w.Engine().grid.ColBand, 6 + 10);
  EXPECT_EQ(statuses, (std::vector<std::string>{" 56 patterns created",
                                                " After now, you can give intial solution for the correlation, "
                                                "follow the blink hand !"}));
  EXPECT_TRUE(w.form.Controls().Enabled("Toolbar2.InitialSolution"));
  EXPECT_TRUE(w.form.Controls().Checked("Timer1"));
}

TEST_F(GridWindow, ColumnRunsCountAcrossAGapBetweenAreas) {
  w.AddRectangle(15, 15, 45, 45);
  w.AddRectangle(15, 65, 45, 95);
  w.form.CreateRectArea();
  EXPECT_EQ(w.Engine().grid.ColBand, 5 + 10);
  EXPECT_EQ(w.Engine().grid.BoxPat[w.PatternAt(20, 70)], 2);
}

TEST_F(GridWindow, FirstColumnAndRowHavePatternsThatCantBePickedNorRated) {
  w.AddRectangle(5, 5, 60, 60);
  w.form.CreateRectArea();
  const PatternGrid& grid = w.Engine().grid;
  ASSERT_EQ(w.PatternAt(10, 10), 1);
  EXPECT_EQ(grid.PatternOfCell(10, 10), 0);
  EXPECT_EQ(grid.PatternOfCell(22, 18), w.PatternAt(20, 20));
  EXPECT_EQ(CorrelAreaI(s(), grid, 10, 30), 0.0);
  // Uniform mid-grey rates 1 wherever it can be rated: the first such pattern is the best.
  EXPECT_EQ(grid.BestPat[1], w.PatternAt(20, 20));
}

TEST_F(GridWindow, EachAreaProposesItsPatternOfHighestAdvisor) {
  std::vector<uint8_t> ref = testing::Uniform(105, 105, 200);
  for (int32_t y = 26; y <= 34; ++y)
    for (int32_t x = 56; x <= 64; ++x) ref[static_cast<size_t>(y) * 105 + x] = 128;
  w.Load(105, 105, ref, ref);
  w.AddRectangle(15, 15, 90, 90);
  w.AddRectangle(101, 101, 104, 104);  // holds no grid point
  w.form.CreateRectArea();
  EXPECT_EQ(w.Engine().grid.BestPat[1], w.PatternAt(60, 30));
  EXPECT_EQ(w.Engine().grid.BestPat[2], 0);
  w.refCanvas.ops.clear();
  setup::ShowBestMNU(w.form);
  ASSERT_EQ(w.refCanvas.OfKind("text").size(), 1u);
  EXPECT_EQ(w.refCanvas.OfKind("text")[0].text, "Best start point");
}

TEST_F(GridWindow, NoPatternLeavesTheStartPointToolOff) {
  w.AddRectangle(15, 15, 90, 90);
  w.AddRectangle(15, 15, 90, 90);
  w.form.CreateRectArea();
  EXPECT_EQ(s().NbPat, 0);
  EXPECT_EQ(statuses.back(), " 0 patterns created");
  EXPECT_FALSE(w.form.Controls().Enabled("Toolbar2.InitialSolution"));
}

TEST_F(GridWindow, OutlinesAreColouredByTheWalkWhileTheGridToolIsDown) {
  w.AddRectangle(15, 15, 45, 25);  // patterns (20,20), (30,20), (40,20)
  w.form.CreateRectArea();
  w.Engine().walk.PatState = {0, -1, 3, 0};
  w.refCanvas.ops.clear();
  setup::ShowGrid(w.form, true);
  const auto boxes = w.refCanvas.OfKind("box");
  ASSERT_EQ(boxes.size(), 3u);
  EXPECT_EQ((std::array{boxes[0].colour, boxes[1].colour, boxes[2].colour}),
            (std::array{QBColor(11), QBColor(13), QBColor(12)}));
  EXPECT_EQ((std::array{boxes[1].x1, boxes[1].y1, boxes[1].x2, boxes[1].y2}), (std::array{25.0, 15.0, 35.0, 25.0}));
  w.refCanvas.ops.clear();
  w.form.AreAPicRefRefresh();
  EXPECT_EQ(w.refCanvas.OfKind("box").size(), 3u) << "every refresh shows them";
  w.refCanvas.ops.clear();
  setup::ShowGrid(w.form, false);
  EXPECT_TRUE(w.refCanvas.OfKind("box").empty());
}

}  // namespace
}  // namespace tessiva

#include "setup/grid.h"

#include <gtest/gtest.h>

#include <tuple>

#include "engine_fixture.h"

namespace tessiva {
namespace {

TEST(GridFrame, DonIRecLeavesTheFirstColumnAndRowWithoutCells) {
  const GridFrame f = GridFrame::For(105, 105, 10);  // points 10..100, 9 cells a column
  EXPECT_EQ(GridFrame::For(99, 99, 10).XGridMax, 90);
  const std::tuple<double, double, int32_t> cases[] = {{10, 50, 0},  {14.9, 50, 0}, {50, 14.9, 0},  {15, 15, 1},
                                                       {20, 20, 1},  {15, 100, 9}, {25, 15, 10},   {100, 100, 81},
                                                       {100.5, 50, 0}, {50, 101, 0}};
  for (const auto& [x, y, cell] : cases) EXPECT_EQ(f.DonIRec(x, y), cell) << x << ", " << y;
}

TEST(CreateRectArea, NumbersPatternsColumnByColumn) {
  testing::EngineWindow w;
  w.Load(105, 105, testing::Uniform(105, 105, 128), testing::Uniform(105, 105, 128));
  w.AddRectangle(15, 15, 90, 90);
  w.SetParameters(11, 9, 9);
  w.form.CreateRectArea();
  EXPECT_EQ(w.s.Lpas, 10) << "the even step";
  // Column 90 lies on the right edge and is in; row 90 lies on the bottom edge and is out.
  ASSERT_EQ(w.s.NbPat, 56);
  for (const auto& [p, x, y] : std::vector<std::array<int32_t, 3>>{{1, 20, 20}, {2, 20, 30}, {8, 30, 20}, {56, 90, 80}})
    EXPECT_EQ((std::array{w.s.XPat[p], w.s.YPat[p]}), (std::array{x, y})) << p;
  EXPECT_EQ(w.Engine().grid.ColBand, 6 + 10);
}

}  // namespace
}  // namespace tessiva

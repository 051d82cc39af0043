#include "setup/propagation.h"

#include <gtest/gtest.h>

#include <utility>

#include "engine_fixture.h"

namespace tessiva {
namespace {

const std::string kAskForMore = " Give a new initial solution to continue propagation";

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

TEST_F(WalkWindow, ReachesWhatTouchesSideOnOrAtACornerAndCountsItsVisits) {
  const Rectangle row{15, 15, 45, 25}, rowAfterGap{55, 15, 85, 25}, pair{35, 25, 45, 45}, corner{46, 46, 65, 65};
  const Rectangle left{15, 15, 45, 45}, right{115, 15, 145, 45}, lone{15, 95, 25, 105};
  struct Case {
    const char* what;
    std::vector<Rectangle> areas;
    std::vector<std::pair<int32_t, int32_t>> starts;
    bool covered;
    int32_t found;
  };
  const std::vector<Case> cases = {
      {"a row", {row}, {{30, 20}}, true, 3},
      {"a row after a gap of one cell", {row, rowAfterGap}, {{20, 20}}, false, 3},
      {"corner contact met at the second visit, the one along the diagonals", {pair, corner}, {{40, 30}}, true, 6},
      {"corner contact met at the first visit", {pair, corner}, {{40, 40}}, false, 2},
      {"a start outside every cell walks from the empty entry", {{5, 5, 45, 45}}, {{10, 10}}, false, 1},
      {"two separate areas, one start point", {left, right}, {{30, 30}}, false, 9},
      {"two separate areas, a start point each", {left, right}, {{30, 30}, {130, 30}}, true, 18},
      // The second pass covers its area, the first visits its start once more:
      // 9 + 9 + 1 visits make the count although the lone pattern is never reached.
      {"the count of visits decides", {left, right, lone}, {{30, 30}, {130, 30}}, true, 19},
  };
  for (const Case& c : cases) {
    Lay(c.areas);
    w.refCanvas.SetDrawWidth(3);
    for (const auto& [x, y] : c.starts) WalkFrom(x, y);
    EXPECT_EQ(w.refCanvas.DrawWidth(), 3) << "the walk and its marks give the view its pen back";
    EXPECT_EQ(walk().PropagDone, c.covered ? -1 : 0) << c.what;
    EXPECT_EQ(walk().FoundPat, c.found) << c.what;
    // Every walk that falls short asks for another start point.
    EXPECT_EQ(w.ui.Messages(), std::vector<std::string>(c.starts.size() - c.covered, kAskForMore)) << c.what;
  }
  EXPECT_FALSE(Reached(20, 100)) << "the lone pattern of the last case";
}

TEST_F(WalkWindow, NeighboursAreSoughtWithinTheNumberBand) {
  // Column 40 runs down from y = 250 and column 50 up to it: the numbers of the
  // touching patterns lie 2K + 1 apart side on, 2K along the diagonal met at
  // the second visit, and the band is K + 10 wide.
  for (const auto& [k, covered] : std::vector<std::pair<int32_t, bool>>{{10, true}, {11, false}}) {
    Lay({{35, 245, 45, 255 + 10 * k}, {46, 245 - 10 * k, 55, 255}}, 400);
    WalkFrom(40, 250);
    EXPECT_EQ(Reached(50, 250), covered) << k;
  }
}

}  // namespace
}  // namespace tessiva

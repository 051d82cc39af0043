#include "setup/areas.h"

#include <gtest/gtest.h>

#include "setup/grid.h"

namespace tessiva {
namespace {

Outline Rect(int32_t x1, int32_t y1, int32_t x2, int32_t y2) { return {{x1, y1}, {x2, y1}, {x2, y2}, {x1, y2}, {x1, y1}}; }

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
      {"on the right edge", {box}, 50, 25, 1},
      {"on the left edge", {box}, 10, 25, 0},
      {"on a horizontal edge", {box}, 30, 10, 0},
      {"on an apex: the ray nudged to y + 0.5 passes inside", {triangle}, 30, 10, 1},
      {"level with the apex, beside it", {triangle}, 20, 10, 0},
      {"on a horizontal base", {triangle}, 30, 40, 0},
      {"in a hole", {outer, inner}, 50, 50, 0},
      {"round the hole", {outer, inner}, 50, 30, 1},
      {"in the second of two overlapping areas", {first, second}, 80, 80, 2},
      {"in both", {first, second}, 50, 50, 0},
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

}  // namespace
}  // namespace tessiva

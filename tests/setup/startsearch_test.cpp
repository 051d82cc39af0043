#include "setup/startsearch.h"

#include <gtest/gtest.h>

#include <cmath>
#include <tuple>

#include "engine_fixture.h"

namespace tessiva {
namespace {

using testing::SetPair;
using testing::SpeckleLevels;
using testing::Uniform;

TEST(ChercheSoluArea, AcceptsShiftsWithinRangeOfACentreThatFollowsThemWhileTheReferenceIsShared) {
  for (const int32_t seqRefChange : {0, 1}) {
    AppState s;
    s.SeqRefChange = seqRefChange;
    StartSearch search;
    int32_t du = 0, dv = 0;
    SetPair(s, 480, 320, SpeckleLevels(480, 320), SpeckleLevels(480, 320, 80, -30));
    ASSERT_TRUE(search.ChercheSoluArea(s, 160, 160, du, dv));
    EXPECT_EQ((std::array{du, dv, search.DuCentre}), (std::array{80, -30, seqRefChange == 0 ? 80 : 0}));
    // The next member has moved beyond reach of a centre of 0.
    SetPair(s, 480, 320, SpeckleLevels(480, 320), SpeckleLevels(480, 320, 170, 0));
    EXPECT_EQ(search.ChercheSoluArea(s, 160, 160, du, dv), seqRefChange == 0) << seqRefChange;
  }
}

TEST(ChercheSoluArea, RefusesBlankRegionsAndFalseMatchesBeyondRange) {
  const std::tuple<const char*, std::vector<uint8_t>, std::vector<uint8_t>> cases[] = {
      {"black", Uniform(320, 320, 0), Uniform(320, 320, 0)},
      {"uniform grey", Uniform(320, 320, 100), Uniform(320, 320, 100)},
      {"moved by 130: the way back misses", SpeckleLevels(320, 320), SpeckleLevels(320, 320, 130, 0)},
  };
  for (const auto& [what, ref, def] : cases) {
    AppState s;
    SetPair(s, 320, 320, ref, def);
    int32_t du = 5, dv = 5;
    EXPECT_FALSE(StartSearch().ChercheSoluArea(s, 160, 160, du, dv)) << what;
  }
}

// A speckle in which the square of side 8 round (100, 100) repeats exactly one
// step `v` on, and nowhere else: there the levels depend only on the position
// across v.
std::vector<uint8_t> RepeatedSquare(int32_t vx, int32_t vy) {
  std::vector<uint8_t> levels = SpeckleLevels(200, 200);
  for (int32_t y = 90; y <= 110; ++y)
    for (int32_t x = 90; x <= 110; ++x) {
      const bool inFirst = std::abs(x - 100) <= 4 && std::abs(y - 100) <= 4;
      const bool inSecond = std::abs(x - 100 - vx) <= 4 && std::abs(y - 100 - vy) <= 4;
      const auto across = static_cast<uint32_t>(-vy * x + vx * y + 1000);
      if (inFirst || inSecond) levels[static_cast<size_t>(y) * 200 + x] = uint8_t(40 + (across * 2654435761u >> 24) % 180);
    }
  return levels;
}

TEST(ChercheSoluArea, TheRoundTripErrorMustStayBelowFive) {
  // The repeat lies on an earlier row, so the way there stops on it and the
  // way back stays: the round trip misses by |v|, and du1 stands if accepted.
  for (const auto& [vx, vy, accepted] : {std::tuple{2, -4, true}, {3, -4, false}, {0, -5, false}}) {
    AppState s;
    const std::vector<uint8_t> levels = RepeatedSquare(vx, vy);
    SetPair(s, 200, 200, levels, levels);
    int32_t du = 99, dv = 99;
    EXPECT_EQ(StartSearch().ChercheSoluArea(s, 100, 100, du, dv), accepted) << vx << ", " << vy;
    EXPECT_EQ((std::array{du, dv}), accepted ? (std::array{vx, vy}) : (std::array{0, 0}));
  }
}

TEST(FindDuDvFFT, FindsTheSameWholePixelShiftsAwayFromTheBorders) {
  struct Case {
    int32_t du, dv, x;
    bool refFixed;
    int32_t foundDu, foundDv, movedX;
  };
  const Case cases[] = {
      {5, -3, 200, true, 5, -3, 200},   {18, 17, 200, true, 18, 17, 200}, {-40, -66, 200, true, -40, -66, 200},
      {5, -3, 200, false, -5, 3, 200},  {6, -2, 20, true, 6, -2, 32} /* the tile pushed inside moves the point */,
  };
  for (const Case& c : cases) {
    AppState s;
    SetPair(s, 400, 400, SpeckleLevels(400, 400), SpeckleLevels(400, 400, c.du, c.dv));
    int32_t x = c.x, y = 200, du = 0, dv = 0;
    FindDuDvFFT(s, x, y, du, dv, 64, c.refFixed);
    EXPECT_EQ((std::array{du, dv, x}), (std::array{c.foundDu, c.foundDv, c.movedX})) << c.du << ", " << c.dv;
  }
  AppState s;
  SetPair(s, 100, 60, SpeckleLevels(100, 60), SpeckleLevels(100, 60, 3, 3));
  for (const int n : {64, 48}) {
    int32_t x = 50, y = 30, du = 9, dv = 9;
    FindDuDvFFT(s, x, y, du, dv, n, true);
    EXPECT_EQ((std::array{du, dv}), (std::array{0, 0})) << "a tile of " << n << " doesn't fit or isn't a power of two";
  }
}

TEST(SearchStartPoint, SolvesAShiftedSpeckleAndRefusesABlankRegionWithItsMessage) {
  const std::string refused = "No valide solution could be found, try it manually or give an other start point.";
  for (const bool blank : {false, true}) {
    testing::EngineWindow w;
    w.Load(200, 200, SpeckleLevels(200, 200), blank ? Uniform(200, 200, 0) : SpeckleLevels(200, 200, 6, -4));
    w.AddRectangle(15, 15, 185, 185);
    w.form.CreateRectArea();
    w.AddStartPoint(53, 47);
    w.s.StartOk[1] = false;
    EXPECT_EQ(setup::SearchStartPoint(w.form, 1), !blank);
    EXPECT_EQ((std::array{w.s.XStart[1], w.s.YStart[1]}), (std::array{50, 50})) << "moved to its pattern's centre";
    EXPECT_EQ(w.s.StartOk[1], !blank);
    if (blank) {
      EXPECT_EQ(w.ui.Messages(), std::vector<std::string>{refused});
      EXPECT_EQ(w.Status(), " " + refused);
    } else {
      EXPECT_EQ((std::array{w.s.DuStart[1], w.s.DvStart[1]}), (std::array{6, -4}));
    }
  }
}

}  // namespace
}  // namespace tessiva

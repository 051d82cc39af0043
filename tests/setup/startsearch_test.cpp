#include "setup/startsearch.h"

#include <gtest/gtest.h>

#include <cmath>

#include "engine_fixture.h"
#include "formats/sidefiles.h"

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
    if (seqRefChange == 0) {
      EXPECT_EQ(du, 170);
    }
  }
}

TEST(ChercheSoluArea, RefusesBlankRegionsAndFalseMatchesBeyondRange) {
  struct Case {
    const char* what;
    std::vector<uint8_t> ref, def;
  };
  const std::vector<Case> cases = {
      {"black", Uniform(320, 320, 0), Uniform(320, 320, 0)},
      {"uniform grey", Uniform(320, 320, 100), Uniform(320, 320, 100)},
      {"moved by 130: the way back misses", SpeckleLevels(320, 320), SpeckleLevels(320, 320, 130, 0)},
      {"moved by 150", SpeckleLevels(320, 320), SpeckleLevels(320, 320, 150, 0)},
  };
  for (const Case& c : cases) {
    AppState s;
    SetPair(s, 320, 320, c.ref, c.def);
    StartSearch search;
    int32_t du = 5, dv = 5;
    EXPECT_FALSE(search.ChercheSoluArea(s, 160, 160, du, dv)) << c.what;
    EXPECT_EQ(search.DuCentre, 0) << c.what;
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
  struct Case {
    int32_t vx, vy;
    bool accepted;
  };
  for (const Case& c : {Case{1, -1, true}, Case{2, -4, true}, Case{3, -4, false}, Case{0, -5, false}}) {
    AppState s;
    const std::vector<uint8_t> levels = RepeatedSquare(c.vx, c.vy);
    SetPair(s, 200, 200, levels, levels);
    int32_t du = 99, dv = 99;
    EXPECT_EQ(StartSearch().ChercheSoluArea(s, 100, 100, du, dv), c.accepted) << c.vx << ", " << c.vy;
    EXPECT_EQ((std::array{du, dv}), c.accepted ? (std::array{c.vx, c.vy}) : (std::array{0, 0}));
  }
}

TEST(FindDuDvFFT, FindsTheSameWholePixelShiftsAwayFromTheBorders) {
  struct Case {
    int32_t du, dv, x;
    bool refFixed;
    int32_t foundDu, foundDv, movedX;
  };
  const std::vector<Case> cases = {
      {0, 0, 200, true, 0, 0, 200},       {5, -3, 200, true, 5, -3, 200},     {-12, 20, 200, true, -12, 20, 200},
      {18, 17, 200, true, 18, 17, 200},   {70, -5, 200, true, 70, -5, 200},   {-40, -66, 200, true, -40, -66, 200},
      {5, -3, 200, false, -5, 3, 200},    {6, -2, 20, true, 6, -2, 32} /* the tile pushed inside moves the point */,
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
  for (const int n : {64, 48, 256}) {
    int32_t x = 50, y = 30, du = 9, dv = 9;
    FindDuDvFFT(s, x, y, du, dv, n, true);
    EXPECT_EQ((std::array{du, dv}), (std::array{0, 0})) << "a tile of " << n << " doesn't fit or isn't a power of two";
  }
}

TEST(LecAOI, SearchesEveryStartPointOfAStoredSetWhenAutoSearchIsOn) {
  const std::string refused = "No valide solution could be found, try it manually or give an other start point.";
  struct Case {
    const char* what;
    std::vector<uint8_t> def;
    bool solved;
  };
  for (const Case& c : std::vector<Case>{{"a speckle moved by (6, -4)", SpeckleLevels(200, 200, 6, -4), true},
                                         {"a black deformed picture", Uniform(200, 200, 0), false}}) {
    testing::EngineWindow w;
    w.Load(200, 200, SpeckleLevels(200, 200), c.def);
    w.s.StartDir = w.dir.Path();
    w.dir.Write("pair-aoi.ini",
                "[OUTLINES]\n  Number=01  \n  Nbox1= 05 \n  x1-1=0015\n  y1-1=0015\n  x1-2=0185\n  y1-2=0015\n"
                "  x1-3=0185\n  y1-3=0185\n  x1-4=0015\n  y1-4=0185\n  x1-5=0015\n  y1-5=0015\n"
                "[STARTPOINTS]\n  Number=01  \n  x1=0053  \n  y1=0047  \n");
    setup::AutoSearchMNU(w.form);
    ASSERT_TRUE(LecAOI(w.form, "pair")) << c.what;
    EXPECT_EQ((std::array{w.s.XStart[1], w.s.YStart[1]}), (std::array{50, 50})) << "moved to its pattern's centre";
    EXPECT_EQ(w.s.StartOk[1], c.solved) << c.what;
    EXPECT_EQ(w.Engine().walk.PropagDone, c.solved ? -1 : 0) << c.what;
    if (c.solved) {
      EXPECT_EQ((std::array{w.s.DuStart[1], w.s.DvStart[1]}), (std::array{6, -4}));
      EXPECT_TRUE(w.ui.Messages().empty());
    } else {
      EXPECT_EQ(w.ui.Messages(), std::vector<std::string>{refused});
      EXPECT_EQ(w.Status(), " " + refused);
    }
  }
}

}  // namespace
}  // namespace tessiva

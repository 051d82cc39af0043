#include "setup/correlation.h"

#include <gtest/gtest.h>

#include "engine_fixture.h"

namespace tessiva {
namespace {

using testing::SetPair;
using testing::SpeckleLevels;
using testing::Uniform;

constexpr double kNoMatch = PatternCorrelator::kNoMatch;

TEST(FindDuDvCorel, FindsAShiftedSpeckleExactlyWithinRangeOfTheCentre) {
  struct Case {
    int32_t du, dv, du0;
  };
  const std::vector<Case> cases = {{0, 0, 0},       {3, -2, 0},       {-17, 25, 0},
                                   {100, -100, 0},  {-100, 100, 0},   {150, -20, 100}};
  for (const Case& c : cases) {
    AppState s;
    SetPair(s, 400, 320, SpeckleLevels(400, 320), SpeckleLevels(400, 320, c.du, c.dv));
    PatternCorrelator correlator;
    int32_t du = 999, dv = 999;
    ASSERT_TRUE(correlator.FindDuDvCorel(s, 160, 160, c.du0, 0, du, dv, true)) << c.du << ", " << c.dv;
    EXPECT_EQ(du, c.du);
    EXPECT_EQ(dv, c.dv);
    EXPECT_EQ(correlator.CorrelationAREA(s, 160, 160, 160 + du, 160 + dv, 8, true), 0.0);
  }
}

TEST(FindDuDvCorel, NothingToScoreLeavesTheOutputAloneAndTiesGoToTheFirstRow) {
  struct Case {
    const char* what;
    int32_t size, x, du0;
    std::vector<uint8_t> levels;
  };
  const std::vector<Case> cases = {
      {"picture under 32 pixels wide", 30, 15, 0, SpeckleLevels(30, 30)},
      {"range wholly beyond the right border", 320, 160, 400, SpeckleLevels(320, 320)},
      {"black: no candidate has energy", 320, 160, 0, Uniform(320, 320, 0)},
  };
  for (const Case& c : cases) {
    AppState s;
    SetPair(s, c.size, c.size, c.levels, c.levels);
    int32_t du = 7, dv = 7;
    EXPECT_FALSE(PatternCorrelator().FindDuDvCorel(s, c.x, c.x, c.du0, 0, du, dv, true)) << c.what;
    EXPECT_EQ((std::array{du, dv}), (std::array{7, 7})) << c.what;
  }
  AppState s;
  SetPair(s, 320, 320, Uniform(320, 320, 100), Uniform(320, 320, 100));
  int32_t du = 0, dv = 0;
  ASSERT_TRUE(PatternCorrelator().FindDuDvCorel(s, 160, 160, 0, 0, du, dv, true));
  EXPECT_EQ((std::array{du, dv}), (std::array{-100, -100})) << "every score ties: the lowest row, then column";
}

TEST(CorrelationAREA, ScoresCandidatesTwoSidesFromEveryBorder) {
  AppState s;
  SetPair(s, 100, 80, SpeckleLevels(100, 80), SpeckleLevels(100, 80));
  struct Case {
    int32_t xc, yc;
    bool scored;
  };
  for (const Case& c : std::vector<Case>{{16, 40, true}, {15, 40, false}, {84, 40, true}, {85, 40, false},
                                         {50, 16, true}, {50, 15, false}, {50, 64, true}, {50, 65, false}})
    EXPECT_EQ(PatternCorrelator().CorrelationAREA(s, 50, 40, c.xc, c.yc, 8, true) < kNoMatch, c.scored)
        << c.xc << ", " << c.yc;
}

TEST(CorrelationAREA, GainIsFreeAndOffsetIsNot) {
  std::vector<uint8_t> half = SpeckleLevels(120, 120), doubled, offset;
  for (const uint8_t g : half) {
    doubled.push_back(static_cast<uint8_t>(g / 2 * 2));
    offset.push_back(static_cast<uint8_t>(g / 2 + 20));
  }
  for (uint8_t& g : half) g = static_cast<uint8_t>(g / 2);
  for (const auto& [def, matches] : {std::pair{&half, true}, std::pair{&doubled, true}, std::pair{&offset, false}}) {
    AppState s;
    SetPair(s, 120, 120, half, *def);
    EXPECT_EQ(PatternCorrelator().CorrelationAREA(s, 60, 60, 60, 60, 8, true) == 0.0, matches);
  }
}

TEST(CorrelationAREA, TheTemplateIsKeyedOnItsPositionAlone) {
  AppState s;
  SetPair(s, 120, 120, SpeckleLevels(120, 120, 0, 0, 1), SpeckleLevels(120, 120, 0, 0, 2));
  EXPECT_GT(PatternCorrelator().CorrelationAREA(s, 60, 60, 60, 60, 8, false), 1.0);
  PatternCorrelator correlator;
  EXPECT_GT(correlator.CorrelationAREA(s, 60, 60, 60, 60, 8, true), 1.0);
  // Same position, other picture: the reference template stays and meets itself.
  EXPECT_EQ(correlator.CorrelationAREA(s, 60, 60, 60, 60, 8, false), 0.0);
  // A new position reads the template from the picture the flag names.
  EXPECT_GT(correlator.CorrelationAREA(s, 61, 60, 61, 60, 8, false), 1.0);
}

TEST(Advisor, RatesTheMeanAgainstMidGreyAndZeroNearBorders) {
  struct Case {
    uint8_t level;
    int32_t lpatMax, x, y;
    double value;
  };
  const std::vector<Case> cases = {
      {128, 9, 52, 47, 1.0},   {64, 9, 52, 47, 0.5},  {200, 9, 52, 47, 0.4375}, {255, 9, 52, 47, 1.0 / 128},
      {0, 9, 52, 47, 0.0},     {128, 25, 22, 47, 0.0} /* nearer the left than LpatMax */,
      {128, 25, 100, 47, 0.0} /* its square passes the right border */, {128, 9, 104, 104, 0.0} /* no cell */,
  };
  for (const Case& c : cases) {
    testing::EngineWindow w;
    w.Load(105, 105, Uniform(105, 105, c.level), Uniform(105, 105, c.level));
    w.AddRectangle(5, 5, 102, 102);
    w.SetParameters(10, 9, c.lpatMax);
    w.form.CreateRectArea();
    EXPECT_DOUBLE_EQ(CorrelAreaI(w.s, w.Engine().grid, c.x, c.y), c.value) << int{c.level} << " at " << c.x;
    if (c.lpatMax == 9 && c.x < 100) {
      EXPECT_DOUBLE_EQ(CorrelAreaF(w.s, c.x, c.y, 9), c.value) << int{c.level};
    }
  }
}

}  // namespace
}  // namespace tessiva

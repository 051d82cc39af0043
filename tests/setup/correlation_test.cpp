#include "setup/correlation.h"

#include <gtest/gtest.h>

#include <tuple>

#include "engine_fixture.h"

namespace tessiva {
namespace {

using testing::SetPair;
using testing::SpeckleLevels;
using testing::Uniform;

TEST(FindDuDvCorel, FindsAShiftedSpeckleExactlyWithinRangeOfTheCentre) {
  struct Case {
    int32_t du, dv, du0;
  };
  for (const Case& c : {Case{0, 0, 0}, {-17, 25, 0}, {100, -100, 0}, {-100, 100, 0}, {150, -20, 100}}) {
    AppState s;
    SetPair(s, 400, 320, SpeckleLevels(400, 320), SpeckleLevels(400, 320, c.du, c.dv));
    PatternCorrelator correlator;
    int32_t du = 999, dv = 999;
    ASSERT_TRUE(correlator.FindDuDvCorel(s, 160, 160, c.du0, 0, du, dv, true)) << c.du << ", " << c.dv;
    EXPECT_EQ((std::array{du, dv}), (std::array{c.du, c.dv}));
    EXPECT_EQ(correlator.CorrelationAREA(s, 160, 160, 160 + du, 160 + dv, 8, true), 0.0);
  }
}

TEST(FindDuDvCorel, NothingToScoreLeavesTheOutputAlone) {
  const std::tuple<const char*, int32_t, int32_t, std::vector<uint8_t>> cases[] = {
      {"picture under 32 pixels wide", 30, 0, SpeckleLevels(30, 30)},
      {"range wholly beyond the right border", 320, 400, SpeckleLevels(320, 320)},
      {"black: no candidate has energy", 320, 0, Uniform(320, 320, 0)},
  };
  for (const auto& [what, size, du0, levels] : cases) {
    AppState s;
    SetPair(s, size, size, levels, levels);
    int32_t du = 7, dv = 7;
    EXPECT_FALSE(PatternCorrelator().FindDuDvCorel(s, size / 2, size / 2, du0, 0, du, dv, true)) << what;
    EXPECT_EQ((std::array{du, dv}), (std::array{7, 7})) << what;
  }
}

TEST(CorrelationAREA, ScoresCandidatesTwoSidesFromEveryBorder) {
  AppState s;
  SetPair(s, 100, 80, SpeckleLevels(100, 80), SpeckleLevels(100, 80));
  for (const auto& [xc, yc, scored] : {std::tuple{16, 40, true}, {15, 40, false}, {84, 40, true}, {85, 40, false},
                                       {50, 16, true}, {50, 15, false}, {50, 64, true}, {50, 65, false}})
    EXPECT_EQ(PatternCorrelator().CorrelationAREA(s, 50, 40, xc, yc, 8, true) < PatternCorrelator::kNoMatch, scored)
        << xc << ", " << yc;
}

}  // namespace
}  // namespace tessiva

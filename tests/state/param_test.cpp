#include "setup/param.h"
#include "state/parameters.h"

#include <gtest/gtest.h>

#include <tuple>

namespace tessiva {
namespace {

struct ParamFixture : ::testing::Test {
  AppState s;
  Param param{s};
  ControlRegistry& fields = param.Controls();

  void Type(const char* field, const std::string& text) {
    fields.SetText(field, text);
    param.OnTextChange(field);
  }
  void FillDefaults() {
    for (auto [field, text] : {std::pair{"Text1", "9"}, {"Text2", "9"}, {"Text3", "9"}, {"Text4", "100"},
                               {"TextYoung", "210000"}, {"TextPoisson", "0,3"}})
      fields.SetText(field, text);
  }
};

TEST_F(ParamFixture, PatternSizesAreSwappedThenClampedAndShownBack) {
  struct Case {
    const char *min, *max;
    int32_t lpatMin, lpatMax;
    const char *shownMin, *shownMax;
  };
  const Case cases[] = {
      {"40", "10", 10, 32, " 10", " 32"},
      {"3", "5", 6, 5, " 6", " 5"},  // nothing checks min against max after the clamp
      {"12,5", "20", 12, 20, " 12", " 20"},
      {"abc", "", 6, 0, " 6", " 0"},
  };
  for (const Case& c : cases) {
    FillDefaults();
    fields.SetText("Text1", c.min);
    fields.SetText("Text2", c.max);
    param.ParamRead();
    EXPECT_EQ(std::tie(s.LpatMin, s.LpatMax, s.Lpat), std::tie(c.lpatMin, c.lpatMax, c.lpatMin)) << c.min << c.max;
    EXPECT_EQ(std::tie(fields.Text("Text1"), fields.Text("Text2")), std::tie(c.shownMin, c.shownMax)) << c.min;
  }
}

TEST_F(ParamFixture, PrecisionOutsideItsRangeFallsBackTo100) {
  const std::pair<const char*, int32_t> cases[] = {{"1001", 1001}, {"1002", 100}, {"0", 100}, {"1", 1}, {"-5", 100}};
  for (auto [text, expected] : cases) {
    FillDefaults();
    fields.SetText("Text4", text);
    param.ParamRead();
    EXPECT_EQ(s.Precision, expected) << text;
  }
}

TEST_F(ParamFixture, GridStepIsRoundedClampedAndGivesAnEvenStep) {
  struct Case {
    const char* text;
    int32_t lgrid, lpas;
  };
  const Case cases[] = {{"7,5", 8, 8}, {"9", 9, 8}, {"25", 20, 20}, {"1", 2, 2}, {"abc", 2, 2}, {"6.5", 6, 6}};
  for (const Case& c : cases) {
    FillDefaults();
    fields.SetText("Text3", c.text);
    param.ParamRead();
    EXPECT_EQ(std::tie(s.Lgrid, s.Lpas, s.LgridBy4), std::make_tuple(c.lgrid, c.lpas, 4 * c.lgrid)) << c.text;
  }
}

TEST_F(ParamFixture, OptionsAndMaterialAreRead) {
  FillDefaults();
  fields.SetChecked("Option1(0)", true);
  fields.SetChecked("Option2(0)", false);
  fields.SetChecked("Check1", true);
  fields.SetText("TextYoung", "");
  param.ParamRead();
  EXPECT_EQ(std::tie(s.Interpolation, s.Correlation, s.LargeStrain, s.Young, s.Poisson),
            std::make_tuple(0, 1, 1, 0.0, 0.3));
}

TEST_F(ParamFixture, ShowClampsTheMembersAndTakesPrecisionFromItsField) {
  std::tie(s.LpatMin, s.LpatMax, s.Lgrid, s.Precision) = std::tuple(40, 10, 30, 7);
  std::tie(s.Interpolation, s.Correlation, s.LargeStrain, s.Young, s.Poisson) = std::tuple(1, 0, 0, 70000.0, 0.33);
  fields.SetText("Text4", "250");
  param.ParamShow();
  EXPECT_EQ(std::tie(s.Precision, s.LpatMin, s.LpatMax, s.LpatEven, s.Lgrid), std::make_tuple(250, 10, 32, 10, 20));
  EXPECT_EQ(std::tuple(fields.Checked("Option1(1)"), fields.Checked("Option1(0)"), fields.Checked("Option2(0)")),
            std::tuple(true, false, true));
  EXPECT_EQ(std::tuple(fields.Text("Text3"), fields.Text("TextYoung"), fields.Text("TextPoisson")),
            std::tuple(" 20", " 70000", " .33"));
}

TEST_F(ParamFixture, EditedFieldsTurnYellowUntilEnterPutsThemInForce) {
  FillDefaults();
  param.ParamRead();
  int gridRebuilds = 0;
  param.onGridStepChanged = [&] { ++gridRebuilds; };

  fields.SetText("Text2", "20");
  Type("Text1", "12");
  Type("TextYoung", "70000");
  EXPECT_EQ(fields.Get("Text1").foreColor, 14);
  param.OnTextKeyPress("Text1", 'a');
  EXPECT_EQ(s.LpatMin, 9) << "only Enter puts a value in force";

  param.OnTextKeyPress("Text1", 13);
  EXPECT_EQ(s.LpatMin, 12);
  EXPECT_EQ(fields.Get("Text1").foreColor, 0);
  EXPECT_EQ(fields.Get("TextYoung").foreColor, 14) << "the material fields are put in force on their own";
  EXPECT_EQ(gridRebuilds, 0);

  s.Lima = 512;
  s.Hima = 256;
  Type("Text3", "16");
  param.OnTextKeyPress("Text3", 13);
  EXPECT_EQ(gridRebuilds, 1);
  EXPECT_EQ(s.NbPatMax, 32 * 16) << "a new grid step renews the pattern store";
}

TEST(AllocPat, SizesThePatternStoreFromPictureAndStep) {
  struct Case {
    int32_t lima, hima, lpas, nbPatMax, nbNoeudsMax;
  };
  const Case cases[] = {
      {512, 256, 8, 2048, 2233},   // (sqrt(2048) + 2)^2 = 2233.02
      {100, 100, 6, 278, 349},     // 16.67^2 = 277.8 rounds up
      {0, 0, 8, 0, 4},
  };
  for (const Case& c : cases)
    for (const bool mesh : {true, false}) {
      AppState s;
      std::tie(s.Lima, s.Hima, s.Lpas) = std::tie(c.lima, c.hima, c.lpas);
      mesh ? AllocPat(s) : SetPatternCapacity(s);
      const size_t patterns = mesh ? static_cast<size_t>(c.nbPatMax) + 1 : 0;
      EXPECT_EQ(std::tuple(s.NbPatMax, s.NbNoeudsMax, s.XPat.size(), s.DvPat.size()),
                std::tuple(c.nbPatMax, c.nbNoeudsMax, patterns, patterns))
          << c.lima << "x" << c.hima;
      // Only the full store makes the mesh; the solver's capacity alone makes nothing.
      EXPECT_EQ(std::pair(s.Mailles.size(), s.Noeuds.size()),
                mesh ? std::pair(patterns, static_cast<size_t>(c.nbNoeudsMax) + 1) : std::pair(size_t{0}, size_t{0}))
          << c.lima << "x" << c.hima << (mesh ? " with" : " without") << " the mesh";
    }
}

}  // namespace
}  // namespace tessiva

#include "state/param.h"

#include <gtest/gtest.h>

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
    EXPECT_EQ(s.LpatMin, c.lpatMin) << c.min << "/" << c.max;
    EXPECT_EQ(s.LpatMax, c.lpatMax) << c.min << "/" << c.max;
    EXPECT_EQ(fields.Text("Text1"), c.shownMin);
    EXPECT_EQ(fields.Text("Text2"), c.shownMax);
    EXPECT_EQ(s.Lpat, s.LpatMin);
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
    EXPECT_EQ(s.Lgrid, c.lgrid) << c.text;
    EXPECT_EQ(s.Lpas, c.lpas) << c.text;
    EXPECT_EQ(s.LgridBy4, 4 * c.lgrid) << c.text;
  }
}

TEST_F(ParamFixture, OptionsAndMaterialAreRead) {
  FillDefaults();
  fields.SetChecked("Option1(0)", true);
  fields.SetChecked("Option2(0)", false);
  fields.SetChecked("Check1", true);
  fields.SetText("TextYoung", "");
  param.ParamRead();
  EXPECT_EQ(s.Interpolation, 0);
  EXPECT_EQ(s.Correlation, 1);
  EXPECT_EQ(s.LargeStrain, 1);
  EXPECT_EQ(s.Young, 0.0);
  EXPECT_DOUBLE_EQ(s.Poisson, 0.3);
}

TEST_F(ParamFixture, ShowClampsTheMembersAndTakesPrecisionFromItsField) {
  s.LpatMin = 40;
  s.LpatMax = 10;
  s.Lgrid = 30;
  s.Precision = 7;
  s.Interpolation = 1;
  s.Correlation = 0;
  s.LargeStrain = 0;
  s.Young = 70000;
  s.Poisson = 0.33;
  fields.SetText("Text4", "250");
  param.ParamShow();
  EXPECT_EQ(s.Precision, 250);
  EXPECT_EQ(s.LpatMin, 10);
  EXPECT_EQ(s.LpatMax, 32);
  EXPECT_EQ(s.LpatEven, 10);
  EXPECT_EQ(s.Lgrid, 20);
  EXPECT_EQ(fields.Text("Text3"), " 20");
  EXPECT_TRUE(fields.Checked("Option1(1)"));
  EXPECT_FALSE(fields.Checked("Option1(0)"));
  EXPECT_TRUE(fields.Checked("Option2(0)"));
  EXPECT_EQ(fields.Text("TextYoung"), " 70000");
  EXPECT_EQ(fields.Text("TextPoisson"), " .33");
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
  for (const Case& c : cases) {
    AppState s;
    s.Lima = c.lima;
    s.Hima = c.hima;
    s.Lpas = c.lpas;
    AllocPat(s);
    EXPECT_EQ(s.NbPatMax, c.nbPatMax) << c.lima << "x" << c.hima;
    EXPECT_EQ(s.NbNoeudsMax, c.nbNoeudsMax) << c.lima << "x" << c.hima;
    EXPECT_EQ(s.XPat.size(), static_cast<size_t>(c.nbPatMax) + 1);
  }
}

}  // namespace
}  // namespace tessiva

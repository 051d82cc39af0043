#include "formats/datafile.h"

#include <gtest/gtest.h>

#include <functional>

#include "formats/setupwindow.h"
#include "state/numtext.h"

namespace tessiva {
namespace {

using testing::kPicturesSection;
using testing::SetupWindow;

void SetArea(AppState& s, int area, std::vector<std::pair<int32_t, int32_t>> points, int32_t tag = 0) {
  const auto a = static_cast<size_t>(area);
  s.Nbox[a] = static_cast<int32_t>(points.size());
  s.TagBox[a] = tag;
  for (size_t j = 0; j < points.size(); ++j) {
    s.XBox[a][j + 1] = points[j].first;
    s.YBox[a][j + 1] = points[j].second;
  }
}

void SetStartPoint(AppState& s, int i, int32_t x, int32_t y, int32_t du, int32_t dv) {
  const auto k = static_cast<size_t>(i);
  s.XStart[k] = x;
  s.YStart[k] = y;
  s.DuStart[k] = du;
  s.DvStart[k] = dv;
  s.StartOk[k] = true;
}

// The parameters window's fields, which a save reads into the state.
void SetParameterFields(Param& param) {
  ControlRegistry& c = param.Controls();
  c.SetText("Text1", "10");
  c.SetText("Text2", "24");
  c.SetText("Text3", "7");
  c.SetText("Text4", "50");
  c.SetChecked("Option1(0)", true);
  c.SetChecked("Check1", true);
  c.SetText("TextYoung", "70000");
  c.SetText("TextPoisson", "0,33");
}

// A setup window holding one of every kind of content a data file carries.
void FillWindow(SetupWindow& w) {
  AppState& s = w.s;
  s.PicRefName = "Ref.BMP";
  s.PicDefName = "def.bmp";
  s.Lima = 512;
  s.Hima = 384;
  SetParameterFields(w.param);
  w.form.Gages().Add({"g1", 0, 10, 20, 30, 40});
  w.form.Gages().Add({"g2", 1, 50, 60, 70, 80});
  w.form.Gages().Add({"g3", 2, -5, 6, 7, 1234});
  w.form.Gages().Remove(2);
  s.NbBox = 3;
  SetArea(s, 1, {{10, 10}, {50, 10}, {50, 40}, {10, 40}, {10, 10}});
  SetArea(s, 2, {{60, 60}, {70, 65}, {60, 60}}, 2);
  s.NbStart = 2;
  s.ResizeStartPoints(2);
  SetStartPoint(s, 1, 100, 120, 3, -1);
  SetStartPoint(s, 2, 200, 220, -12, 5);
  w.form.Controls().SetItems("Combo2", {"speed", "temp"});
  w.form.Controls().SetItems("List2", {"5 mm/min", "20,5"});
  s.UnitNameX = "mm";
  s.UnitNameY = "mm";
  s.UnitPX = 0.025;
  s.UnitPY = 0.025;
  s.ClfMode = true;
  s.xstrict = 3;
  s.ystrict = -2;
  s.FissureOn = true;
  s.XFissureDep = 10.4;
  s.YFissureDep = 20.5;
  s.XFissureArr = 30;
  s.YFissureArr = 40;
  s.RayonFissure = 5;
  s.NbPatBad = 3;
  s.BadPat = {0, 7, 0, 9};
  w.Member(1, "ref-def.don");
  w.form.Controls().SetText("Text1", "ref-def.don");
}

const std::string kResultsDescription =
    ";[RESULTS] This section gives the displacement field between PicRef and PicDef\n"
    ";          The displacement field has the following description :\n"
    ";          d1=au.x+bu.y+cu.xy+du\n"
    ";          d2=av.x+bv.y+cv.xy+dv\n"
    ";under [RESULTS] section, each pattern has four lines as shown in this example :\n"
    "; -1 48 49 3.035839 0.707151\n"
    ";  1.481084 9.320356 -7.751096 -0.427107\n"
    ";  0.828280 2.993636 -1.123822 -0.922852\n"
    ";  1 8 0\n"
    ";The first line gives a flag equal to -1 if the calculation is good and equal to 0 if not\n"
    ";then, the X, Y coordinates of the center of the pattern are given followed by the displacement d1 and d2 "
    "for this point\n"
    ";then, the au bu cu du coefficients\n"
    ";then, the av bv cv dv coefficients\n"
    ";the fourth line is reserved for Tessiva\n";

TEST(DataFileWrite, WritesTheWholeLayoutByteForByte) {
  SetupWindow w;
  FillWindow(w);
  ASSERT_TRUE(SauveDonArea(w.form, 1));
  const std::string expected = testing::ExpectedBanner() +
      "[PICTURES]\n"
      "; PicRef= filename of the reference picture\n"
      "  PicRef=ref.bmp\n"
      "; PicDef= filename of the deformed picture\n"
      "  PicDef=def.bmp\n"
      "; Lima= width of the picture\n"
      "  Lima =00512\n"
      "; Hima= height of the picture\n"
      "  Hima =00384\n"
      "[PARAMETERS]\n"
      "; LpatMin= width and height in pixel of one pattern\n"
      "  LpatMin=10  \n"
      "; LpatMax= width and height in pixel of one pattern which\n"
      ";          used if there is no valid solution with LpatMin value\n"
      "  LpatMax=24  \n"
      "; Lgrid= step in pixel which is used to displace one pattern in the work area\n"
      "  Lgrid=07  \n"
      "; Interpolation=0 for bilinear interpolation \n"
      "; Interpolation=1 for spline interpolation \n"
      "  Interpolation=00  \n"
      "; Correlation=0 for square correlation coefficient\n"
      "; Correlation=1 for crossed correlation coefficient\n"
      "  Correlation=01  \n"
      "; LargeStrain=0 if strain are lower than 50 %\n"
      "; LargeStrain=1 if strain are greater than 50 %\n"
      "  LargeStrain=01  \n"
      "; Precision=the inverse displacement calulation accuracy in pixel (between 1 and 100)\n"
      "  Precision=0050  \n"
      "[GAGES]\n"
      "; This section describes the strain gage\n"
      "  Number=03  \n"
      "  name1=g1\n  type1=0000\n  xdep1=0010\n  ydep1=0020\n  xarr1=0030\n  yarr1=0040\n"
      "  name3=g3\n  type3=0002\n  xdep3=-0005\n  ydep3=0006\n  xarr3=0007\n  yarr3=1234\n"
      "[OUTLINES]\n"
      "; This section describes the bounding box of the work area\n"
      "  Number=03  \n"
      "  Nbox1= 05 \n"
      "  x1-1=0010\n  y1-1=0010\n  x1-2=0050\n  y1-2=0010\n  x1-3=0050\n  y1-3=0040\n"
      "  x1-4=0010\n  y1-4=0040\n  x1-5=0010\n  y1-5=0010\n"
      "  TagBox2= 02 \n"
      "  Nbox2= 03 \n"
      "  x2-1=0060\n  y2-1=0060\n  x2-2=0070\n  y2-2=0065\n  x2-3=0060\n  y2-3=0060\n"
      "  Nbox3= 00 \n"
      "[STARTPOINTS]\n"
      "; This section describes the startpoint for initial solution\n"
      "  Number=02  \n"
      "  x1=0100  \n  y1=0120  \n  du1=0003  \n  dv1=-001  \n"
      "  x2=0200  \n  y2=0220  \n  du2=-012  \n  dv2=0005  \n"
      "[EXTRA]\n"
      "  Number= 2\n"
      "  name0=speed\n  value0=5 mm/min\n  name1=temp\n  value1=20,5\n"
      "[UNIT]\n"
      "  UnitNameX=mm\n  UnitPX= .025\n  UnitNameY=mm\n  UnitPY= .025\n"
      "[MATERIAL]\n"
      "  YOUNG= 70000\n  POISSON= .33\n"
      "[CLF]\n"
      "; This section is reserved for CLF application\n"
      "  xstrict=0003  \n  ystrict=-0002  \n"
      "[FISSURE]\n"
      "; This section is reserved for KI determination\n"
      "  XFissureDep=0010  \n  YFissureDep=0021  \n  XFissureArr=0030  \n  YFissureArr=0040  \n"
      "  RayonFissure=0005  \n"
      "[BADPATTERN]\n"
      "; This section gives a list of pattern which are considered as wrong\n"
      "; due to their grey level uniformity\n"
      "  Bad1=0007  \n  Bad2=0009  \n  NbPatBad=000002  \n" +
      kResultsDescription;
  EXPECT_EQ(w.dir.Read("ref-def.don"), expected);
  EXPECT_EQ(w.Status(), " " + w.dir.File("ref-def.don") + " successfully written");
}

TEST(DataFileWrite, OptionalSectionsAreLeftOutWhenEmpty) {
  SetupWindow w;
  w.Member(1, "a.don");
  w.form.Controls().SetText("Text1", "a.don");
  ASSERT_TRUE(SauveDonArea(w.form, 1));
  const std::string text = w.dir.Read("a.don");
  for (const char* absent : {"[GAGES]", "[CLF]", "[FISSURE]", "[BADPATTERN]", "  Number= "})
    EXPECT_EQ(text.find(absent), std::string::npos) << absent;
  EXPECT_NE(text.find("[EXTRA]\n[UNIT]\n"), std::string::npos);
  EXPECT_NE(text.find("  Number=00  \n[STARTPOINTS]"), std::string::npos);
}

TEST(DataFileWrite, AreaCountDropsWithEachSaveUnlessFormingLimitDataIsOn) {
  struct Case {
    bool clf;
    int32_t firstCount, secondCount, nbBoxAfter;
  };
  // Two areas in slots 1 and 2, slot 3 free.
  for (const Case c : {Case{false, 2, 1, 1}, Case{true, 3, 3, 3}}) {
    SetupWindow w;
    w.s.ClfMode = c.clf;
    w.s.NbBox = 3;
    SetArea(w.s, 1, {{1, 1}, {9, 1}, {1, 1}});
    SetArea(w.s, 2, {{2, 2}, {8, 2}, {2, 2}});
    w.Member(1, "a.don");
    w.form.Controls().SetText("Text1", "a.don");
    ASSERT_TRUE(SauveDonArea(w.form, 1));
    EXPECT_NE(w.dir.Read("a.don").find("  Number=0" + std::to_string(c.firstCount) + "  \n  Nbox1"),
              std::string::npos);
    ASSERT_TRUE(SauveDonArea(w.form, 1));
    const std::string second = w.dir.Read("a.don");
    EXPECT_NE(second.find("[OUTLINES]\n; This section describes the bounding box of the work area\n  Number=0" +
                          std::to_string(c.secondCount)),
              std::string::npos)
        << c.clf;
    EXPECT_EQ(second.find("Nbox2") != std::string::npos, c.secondCount >= 2) << c.clf;
    EXPECT_EQ(w.s.NbBox, c.nbBoxAfter) << c.clf;
  }
}

TEST(DataFileWrite, TwentyAreasWithFormingLimitDataStayWithinTheStore) {
  SetupWindow w;
  w.s.ClfMode = true;
  w.s.NbBox = AppState::kMaxAreas + 1;
  for (int a = 1; a <= AppState::kMaxAreas; ++a) SetArea(w.s, a, {{a, a}, {a + 5, a}, {a, a}});
  w.Member(1, "a.don");
  w.form.Controls().SetText("Text1", "a.don");
  ASSERT_TRUE(SauveDonArea(w.form, 1));
  const std::string text = w.dir.Read("a.don");
  EXPECT_NE(text.find("  Number=20  \n"), std::string::npos);
  EXPECT_EQ(text.find("Nbox21"), std::string::npos);
}

TEST(DataFileWrite, ANewNameInTheWindowRenamesTheFileOnlyWhenTheUserAgrees) {
  struct Case {
    const char* typed;
    std::optional<MsgAnswer> answer;  // nothing: no question is asked
    const char* savedAs;
  };
  const Case cases[] = {
      {"old.don", std::nullopt, "old.don"},
      {"  old.don  ", std::nullopt, "old.don"},
      {"new", MsgAnswer::Yes, "new.don"},
      {" New.DON ", MsgAnswer::Yes, "New.DON"},
      {"new.do", MsgAnswer::Yes, "new.do.don"},
      {"new.don", MsgAnswer::No, "old.don"},
  };
  for (const Case& c : cases) {
    SetupWindow w;
    w.Member(1, "old.don");
    w.form.Controls().SetText("Text1", c.typed);
    if (c.answer) w.ui.messageAnswers.push_back(*c.answer);
    ASSERT_TRUE(SauveDonArea(w.form, 1));
    const std::vector<std::string> asked = w.ui.Messages();
    if (c.answer) {
      ASSERT_EQ(asked.size(), 1u) << c.typed;
      EXPECT_EQ(asked[0], "Do you really want to change the name of the data file ?");
    } else {
      EXPECT_TRUE(asked.empty()) << c.typed;
    }
    EXPECT_EQ(w.s.DataFileName[1], c.savedAs) << c.typed;
    EXPECT_EQ(w.s.DataFilePath[1], w.dir.File(c.savedAs)) << c.typed;
    EXPECT_EQ(w.s.DataFile, w.dir.File(c.savedAs)) << c.typed;
    EXPECT_FALSE(w.dir.Read(c.savedAs).empty()) << c.typed;
  }
}

TEST(DataFileWrite, AFailedWriteIsReportedAndLeavesNoFile) {
  SetupWindow w;
  w.s.DataFilePath = {"", w.dir.File("missing-dir/a.don")};
  w.s.DataFileName = {"", "a.don"};
  w.form.Controls().SetText("Text1", "a.don");
  EXPECT_FALSE(SauveDonArea(w.form, 1));
  EXPECT_EQ(w.Status(), " " + w.dir.File("missing-dir/a.don") + " could not be written");
  EXPECT_FALSE(SauveDonArea(w.form, 2));
}

// Save and read back in a fresh window: the state returns, except for what the
// format itself changes.
TEST(DataFileRoundTrip, SavedStateReadsBackInAFreshWindow) {
  SetupWindow a;
  FillWindow(a);
  a.s.ClfMode = false;
  a.s.TagBox[2] = 0;
  ASSERT_TRUE(SauveDonArea(a.form, 1));

  SetupWindow b;
  std::filesystem::copy_file(a.dir.File("ref-def.don"), b.dir.File("ref-def.don"));
  b.Member(1, "ref-def.don");
  ASSERT_TRUE(LecDonArea(b.form, 1, false)) << b.Status();
  const AppState& s = b.s;
  EXPECT_EQ(s.PicRefName, "ref.bmp");
  EXPECT_EQ(s.PicDefName, "def.bmp");
  EXPECT_EQ(s.PicRefPath, b.dir.File("ref.bmp"));
  EXPECT_EQ(s.FileDate, TodayNumber());
  EXPECT_EQ(std::vector<int32_t>({s.LpatMin, s.LpatMax, s.Lgrid, s.Interpolation, s.Correlation, s.LargeStrain}),
            std::vector<int32_t>({10, 24, 7, 0, 1, 1}));
  EXPECT_EQ(s.Lpas, 6);
  // The parameters window's own precision field wins over the file's.
  EXPECT_EQ(s.Precision, 100);
  for (int a1 = 1; a1 <= 2; ++a1) {
    const auto k = static_cast<size_t>(a1);
    EXPECT_EQ(s.Nbox[k], a.s.Nbox[k]);
    EXPECT_EQ(s.XBox[k], a.s.XBox[k]);
    EXPECT_EQ(s.YBox[k], a.s.YBox[k]);
    EXPECT_EQ(s.TagBox[k], -1) << "a missing TagBox key reads as -1, an ordinary area";
  }
  EXPECT_EQ(s.NbStart, 2);
  EXPECT_EQ(s.XStart, a.s.XStart);
  EXPECT_EQ(s.YStart, a.s.YStart);
  EXPECT_EQ(s.DuStart, a.s.DuStart);
  EXPECT_EQ(s.DvStart, a.s.DvStart);
  EXPECT_EQ(s.StartOk, std::vector<bool>({false, true, true}));
  EXPECT_EQ(s.CurStart, 2);
  EXPECT_EQ(b.Items("Combo2"), a.Items("Combo2"));
  EXPECT_EQ(b.Items("List2"), a.Items("List2"));
  EXPECT_EQ(s.UnitNameX, "mm");
  EXPECT_DOUBLE_EQ(s.UnitPX, 0.025);
  EXPECT_DOUBLE_EQ(s.UnitPY, 0.025);
  EXPECT_EQ(b.form.Controls().Text("UnitPixX"), " .025");
  EXPECT_DOUBLE_EQ(s.Young, 70000);
  EXPECT_DOUBLE_EQ(s.Poisson, 0.33);
  EXPECT_FALSE(s.ClfMode);
  EXPECT_TRUE(s.FissureOn);
  // Crack values are whole numbers in the file.
  EXPECT_EQ(std::vector<double>({s.XFissureDep, s.YFissureDep, s.XFissureArr, s.YFissureArr, s.RayonFissure}),
            std::vector<double>({10, 21, 30, 40, 5}));
  // The gauge store closes its holes: gauge 3 comes back as number 2.
  ASSERT_EQ(b.form.Gages().Count(), 2);
  EXPECT_EQ(b.form.Gages().Get(2).name, "g3");
  EXPECT_EQ(b.form.Gages().Get(2).xdep, -5);
  EXPECT_EQ(b.form.Controls().Text("Text1"), "ref-def.don");
  EXPECT_EQ(b.ui.busyDepth, 0);
}

// Read a file and save it again: the same text, except that the ordinary areas,
// read with the TagBox default -1, now carry a TagBox line.
TEST(DataFileRoundTrip, ReadFileSavesBackToTheSameText) {
  SetupWindow a;
  FillWindow(a);
  // Gauges would add the areas they lay to the second file.
  a.form.Gages().Clear();
  a.s.TagBox[2] = 0;
  a.s.ClfMode = false;
  a.s.NbPatBad = 0;
  a.s.XFissureDep = 10;
  ASSERT_TRUE(SauveDonArea(a.form, 1));
  const std::string original = a.dir.Read("ref-def.don");

  a.s = AppState{};
  a.s.Title = testing::kTitle;
  a.s.LastDir = a.dir.Path();
  a.Member(1, "ref-def.don");
  ASSERT_TRUE(LecDonArea(a.form, 1, false)) << a.Status();
  // The picture sizes of the file come from the pictures, which are smaller here.
  a.s.Lima = 512;
  a.s.Hima = 384;
  ASSERT_TRUE(SauveDonArea(a.form, 1));
  std::string expected = original;
  for (const char* nbox : {"  Nbox1=", "  Nbox2="}) {
    const std::string tagLine = std::string("  TagBox") + nbox[6] + "=- 01 \n";
    expected.insert(expected.find(nbox), tagLine);
  }
  EXPECT_EQ(a.dir.Read("ref-def.don"), expected);
}

struct ReadCase {
  const char* name;
  std::string body;  // the file less its [PICTURES] section
  std::function<void(SetupWindow&)> check;
};

TEST(DataFileRead, SectionsAndTheirDefaults) {
  const ReadCase cases[] = {
      {"no release date counts as today", "",
       [](SetupWindow& w) { EXPECT_EQ(w.s.FileDate, TodayNumber()); }},
      {"no units, no material", "",
       [](SetupWindow& w) {
         EXPECT_EQ(w.s.UnitNameX, "Pixel");
         EXPECT_EQ(w.s.UnitNameY, "Pixel");
         EXPECT_EQ(w.s.UnitPX, 1.0);
         EXPECT_EQ(w.s.UnitPY, 1.0);
         EXPECT_EQ(w.s.Young, 210000.0);
         EXPECT_EQ(w.s.Poisson, 0.3);
         EXPECT_EQ(w.form.Controls().Text("UnitX"), "Pixel");
         EXPECT_EQ(w.form.Controls().Text("UnitPixY"), " 1");
       }},
      {"tagged area keeps its slot empty",
       "[OUTLINES]\n  Number=2\n  TagBox1=3\n  Nbox1=3\n  x1-1=5\n  Nbox2=2\n  x2-1=7\n  y2-1=8\n  x2-2=9\n  y2-2=10\n",
       [](SetupWindow& w) {
         EXPECT_EQ(w.s.NbBox, 2);
         EXPECT_EQ(w.s.Nbox[1], 0);
         EXPECT_EQ(w.s.XBox[1][1], 0);
         EXPECT_EQ(w.s.Nbox[2], 2);
         EXPECT_EQ(w.s.XBox[2][2], 9);
         EXPECT_EQ(w.s.YBox[2][2], 10);
       }},
      {"no areas", "[OUTLINES]\n  Number=0\n", [](SetupWindow& w) { EXPECT_EQ(w.s.NbBox, 1); }},
      {"a missing x skips its y", "[OUTLINES]\n  Number=1\n  Nbox1=2\n  y1-1=5\n  x1-2=6\n  y1-2=7\n",
       [](SetupWindow& w) {
         EXPECT_EQ(w.s.XBox[1][1], -10000);
         EXPECT_EQ(w.s.YBox[1][1], 0);
         EXPECT_EQ(w.s.YBox[1][2], 7);
       }},
      {"unknown du leaves the start point unsolved", "[STARTPOINTS]\n  Number=1\n  x1=10\n  y1=20\n  du1=-10000\n  dv1=3\n",
       [](SetupWindow& w) {
         EXPECT_EQ(w.s.NbStart, 1);
         EXPECT_FALSE(w.s.StartOk[1]);
         EXPECT_EQ(w.s.CurStart, 1);
         EXPECT_EQ(w.s.DvStart[1], 3);
       }},
      {"du of -1 is a solved displacement", "[STARTPOINTS]\n  Number=1\n  x1=10\n  y1=20\n  du1=-001  \n  dv1=-1\n",
       [](SetupWindow& w) {
         EXPECT_TRUE(w.s.StartOk[1]);
         EXPECT_EQ(w.s.DuStart[1], -1);
         EXPECT_EQ(w.form.Controls().Enabled("Toolbar2.InitialSolution"), true);
       }},
      {"a start point without y is skipped",
       "[STARTPOINTS]\n  Number=2\n  x1=10\n  du1=1\n  dv1=1\n  x2=30\n  y2=40\n  du2=1\n  dv2=2\n",
       [](SetupWindow& w) {
         EXPECT_EQ(w.s.NbStart, 2);
         EXPECT_FALSE(w.s.StartOk[1]);
         EXPECT_EQ(w.s.DuStart[1], 0);
         EXPECT_TRUE(w.s.StartOk[2]);
         EXPECT_EQ(w.s.CurStart, 2);
       }},
      {"a gauge without yarr isn't created, the next one is",
       "[GAGES]\n  Number=3\n  name1=a\n  type1=0\n  xdep1=1\n  ydep1=2\n  xarr1=3\n"
       "  name2=b\n  type2=1\n  xdep2=4\n  ydep2=5\n  xarr2=6\n  yarr2=7\n"
       "  type3=0\n  xdep3=1\n  ydep3=2\n  xarr3=3\n  yarr3=4\n",
       [](SetupWindow& w) {
         ASSERT_EQ(w.form.Gages().Count(), 1);
         EXPECT_EQ(w.form.Gages().Get(1).name, "b");
         EXPECT_EQ(w.form.Gages().Get(1).yarr, 7);
       }},
      {"extra values: a missing name skips its value, a missing value is empty",
       "[EXTRA]\n  number=3\n  name0=a\n  value0=1\n  value1=lost\n  name2=c\n",
       [](SetupWindow& w) {
         EXPECT_EQ(w.Items("Combo2"), std::vector<std::string>({"a", "c"}));
         EXPECT_EQ(w.Items("List2"), std::vector<std::string>({"1", ""}));
       }},
      {"no extra values keep the lists", "",
       [](SetupWindow& w) { EXPECT_EQ(w.Items("Combo2"), std::vector<std::string>({"kept"})); }},
      {"forming-limit data", "[CLF]\n  xstrict=5\n  ystrict=-0002  \n",
       [](SetupWindow& w) {
         EXPECT_TRUE(w.s.ClfMode);
         EXPECT_EQ(w.s.ystrict, -2);
       }},
      {"crack keys are found without regard to case",
       "[FISSURE]\n  XFissureDep=1\n  YFissureDep=2\n  XFissureArr=3\n  YFissureArr=4\n  RayonFissure=5\n",
       [](SetupWindow& w) {
         EXPECT_TRUE(w.s.FissureOn);
         EXPECT_EQ(w.s.YFissureArr, 4.0);
       }},
      {"a crack needs every key", "[FISSURE]\n  XFissureDep=1\n  YFissureDep=2\n  XFissureArr=3\n  YFissureArr=4\n",
       [](SetupWindow& w) { EXPECT_FALSE(w.s.FissureOn); }},
      {"parameters of the first member, and their defaults", "[PARAMETERS]\n  Lgrid=12\n",
       [](SetupWindow& w) {
         EXPECT_EQ(w.s.LpatMin, 9);
         EXPECT_EQ(w.s.LpatMax, 9);
         EXPECT_EQ(w.s.Lgrid, 12);
         EXPECT_EQ(w.s.Interpolation, 1);
         EXPECT_EQ(w.s.Correlation, 1);
         EXPECT_EQ(w.s.LargeStrain, 0);
         EXPECT_EQ(w.s.Lpas, 12);
         EXPECT_EQ(w.param.Controls().Text("Text3"), " 12");
       }},
  };
  for (const ReadCase& c : cases) {
    SetupWindow w;
    w.form.Controls().SetItems("Combo2", {"kept"});
    w.dir.Write("a.don", kPicturesSection + c.body);
    w.Member(1, "a.don");
    ASSERT_TRUE(LecDonArea(w.form, 1, false)) << c.name << ": " << w.Status();
    c.check(w);
    EXPECT_EQ(w.ui.busyDepth, 0) << c.name;
  }
}

TEST(DataFileRead, ParametersSetBeforehandWinAndLaterMembersNeverChangeThem) {
  const std::string file = kPicturesSection +
      "[PARAMETERS]\n  LpatMin=12\n  LpatMax=20\n  Lgrid=8\n  Interpolation=0\n  Correlation=0\n  LargeStrain=1\n";
  struct Case {
    int index;
    std::vector<int32_t> expected;  // LpatMin, LpatMax, Lgrid, Interpolation, Correlation, LargeStrain
  };
  for (const Case& c : {Case{1, {16, 30, 10, 0, 0, 1}}, Case{2, {16, 30, 10, 1, 1, 0}}}) {
    SetupWindow w;
    w.s.LpatMin = 16;
    w.s.LpatMax = 30;
    w.s.Lgrid = 10;
    w.s.Interpolation = 1;
    w.s.Correlation = 1;
    w.dir.Write("a.don", file);
    w.Member(c.index, "a.don");
    ASSERT_TRUE(LecDonArea(w.form, c.index, false));
    EXPECT_EQ(std::vector<int32_t>({w.s.LpatMin, w.s.LpatMax, w.s.Lgrid, w.s.Interpolation, w.s.Correlation,
                                    w.s.LargeStrain}),
              c.expected)
        << c.index;
  }
}

TEST(DataFileRead, HeaderOnlyStopsBeforeMaterialAreasAndStartPoints) {
  SetupWindow w;
  w.dir.Write("a.don", kPicturesSection +
                           "[UNIT]\n  UnitNameX=mm\n[EXTRA]\n  Number=1\n  name0=n\n  value0=v\n"
                           "[MATERIAL]\n  YOUNG=5\n[OUTLINES]\n  Number=1\n  Nbox1=1\n  x1-1=3\n  y1-1=4\n"
                           "[STARTPOINTS]\n  Number=1\n  x1=1\n  y1=2\n  du1=0\n  dv1=0\n"
                           "[GAGES]\n  Number=1\n  name1=a\n  type1=0\n  xdep1=1\n  ydep1=2\n  xarr1=3\n  yarr1=4\n");
  w.Member(1, "a.don");
  w.s.NbBox = 4;
  w.s.Young = 7;
  w.form.Gages().Add({"old", 0, 1, 1, 2, 2});
  ASSERT_TRUE(LecDonArea(w.form, 1, true));
  EXPECT_EQ(w.s.PicDefName, "def.bmp");
  EXPECT_EQ(w.s.PixRef.UpperX(), 16);
  EXPECT_EQ(w.form.Controls().Text("Text1"), "a.don");
  EXPECT_EQ(w.s.UnitNameX, "mm");
  EXPECT_EQ(w.Items("List2"), std::vector<std::string>({"v"}));
  EXPECT_EQ(w.s.Young, 7);
  EXPECT_EQ(w.s.NbBox, 1);
  EXPECT_EQ(w.s.Nbox[1], 0);
  EXPECT_EQ(w.s.NbStart, 0);
  EXPECT_EQ(w.form.Gages().Count(), 0);
  EXPECT_EQ(w.ui.busyDepth, 0);
}

TEST(DataFileRead, AnUnusableFileStopsWithTheNotRightFormattedMessage) {
  struct Case {
    const char* name;
    std::optional<std::string> content;  // nothing: no file at all
  };
  const Case cases[] = {
      {"missing file", std::nullopt},
      {"no PicRef", "[PICTURES]\n  PicDef=def.bmp\n"},
      {"no PicDef", "[PICTURES]\n  PicRef=ref.bmp\n"},
      {"missing picture", "[PICTURES]\n  PicRef=nothere.bmp\n  PicDef=def.bmp\n"},
      {"21 areas", kPicturesSection + "[OUTLINES]\n  Number=21\n"},
      {"negative area count", kPicturesSection + "[OUTLINES]\n  Number=-1\n"},
      {"52 vertices", kPicturesSection + "[OUTLINES]\n  Number=1\n  Nbox1=52\n"},
      {"negative vertex count", kPicturesSection + "[OUTLINES]\n  Number=1\n  Nbox1=-3\n"},
      {"1000 start points", kPicturesSection + "[STARTPOINTS]\n  Number=1000\n"},
      {"a giant start-point count", kPicturesSection + "[STARTPOINTS]\n  Number=2147483647\n"},
      {"negative start-point count", kPicturesSection + "[STARTPOINTS]\n  Number=-5\n"},
      {"1000 extra values", kPicturesSection + "[EXTRA]\n  Number=1000\n"},
      {"1000 gauges", kPicturesSection + "[GAGES]\n  Number=1000\n"},
  };
  for (const Case& c : cases) {
    SetupWindow w;
    if (c.content) w.dir.Write("a.don", *c.content);
    w.Member(1, "a.don");
    EXPECT_FALSE(LecDonArea(w.form, 1, false)) << c.name;
    EXPECT_EQ(w.Status(), " This file :" + w.dir.File("a.don") +
                              " is not right formatted, no data could be retrieved from this file")
        << c.name;
    EXPECT_EQ(w.ui.busyDepth, 0) << c.name;
    EXPECT_LE(w.s.NbBox, AppState::kMaxAreas + 1) << c.name;
    EXPECT_GT(w.s.XStart.size(), static_cast<size_t>(w.s.NbStart)) << c.name;
  }
}

TEST(DataFileRead, WhatWasReadBeforeAFailureStays) {
  SetupWindow w;
  w.dir.Write("a.don", kPicturesSection +
                           "[UNIT]\n  UnitNameX=mm\n[CLF]\n  xstrict=1\n  ystrict=2\n"
                           "[OUTLINES]\n  Number=1\n  Nbox1=1\n  x1-1=3\n  y1-1=4\n[STARTPOINTS]\n  Number=5000\n");
  w.Member(1, "a.don");
  EXPECT_FALSE(LecDonArea(w.form, 1, false));
  EXPECT_EQ(w.s.UnitNameX, "mm");
  EXPECT_TRUE(w.s.ClfMode);
  EXPECT_EQ(w.s.NbBox, 2);
  EXPECT_EQ(w.s.NbStart, 0);
}

TEST(DataFileRead, AnIndexOutsideTheSequenceReadsNothing) {
  SetupWindow w;
  w.Member(1, "a.don");
  for (int index : {0, 2, -1}) {
    EXPECT_FALSE(LecDonArea(w.form, index, false)) << index;
    EXPECT_EQ(w.Status(), "") << index;
  }
}

}  // namespace
}  // namespace tessiva

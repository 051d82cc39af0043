#include "formats/datafile.h"

#include <gtest/gtest.h>

#include <functional>

#include "formats/setupwindow.h"
#include "setup/areafiles.h"

namespace tessiva {
namespace {

using namespace testing;

TEST(DataFileWrite, WritesTheWholeLayoutByteForByte) {
  SetupWindow w;
  FillWindow(w);
  ASSERT_TRUE(SauveDonArea(w.form, 1));
  EXPECT_EQ(w.dir.Read("ref-def.don"),
            ExpectedBanner() +
                "[PICTURES]\n; PicRef= filename of the reference picture\n  PicRef=ref.bmp\n"
                "; PicDef= filename of the deformed picture\n  PicDef=def.bmp\n; Lima= width of the picture\n"
                "  Lima =00512\n; Hima= height of the picture\n  Hima =00384\n"
                "[PARAMETERS]\n; LpatMin= width and height in pixel of one pattern\n  LpatMin=10  \n"
                "; LpatMax= width and height in pixel of one pattern which\n"
                ";          used if there is no valid solution with LpatMin value\n  LpatMax=24  \n"
                "; Lgrid= step in pixel which is used to displace one pattern in the work area\n  Lgrid=07  \n"
                "; Interpolation=0 for bilinear interpolation \n; Interpolation=1 for spline interpolation \n"
                "  Interpolation=00  \n; Correlation=0 for square correlation coefficient\n"
                "; Correlation=1 for crossed correlation coefficient\n  Correlation=01  \n"
                "; LargeStrain=0 if strain are lower than 50 %\n; LargeStrain=1 if strain are greater than 50 %\n"
                "  LargeStrain=01  \n"
                "; Precision=the inverse displacement calulation accuracy in pixel (between 1 and 100)\n"
                "  Precision=0050  \n"
                "[GAGES]\n; This section describes the strain gage\n  Number=03  \n  name1=g1\n  type1=0000\n"
                "  xdep1=0010\n  ydep1=0020\n  xarr1=0030\n  yarr1=0040\n  name3=g3\n  type3=0002\n  xdep3=-0005\n"
                "  ydep3=0006\n  xarr3=0007\n  yarr3=1234\n"
                "[OUTLINES]\n; This section describes the bounding box of the work area\n  Number=03  \n  Nbox1= 05 \n"
                "  x1-1=0010\n  y1-1=0010\n  x1-2=0050\n  y1-2=0010\n  x1-3=0050\n  y1-3=0040\n  x1-4=0010\n"
                "  y1-4=0040\n  x1-5=0010\n  y1-5=0010\n  TagBox2= 02 \n  Nbox2= 03 \n  x2-1=0060\n  y2-1=0060\n"
                "  x2-2=0070\n  y2-2=0065\n  x2-3=0060\n  y2-3=0060\n  Nbox3= 00 \n"
                "[STARTPOINTS]\n; This section describes the startpoint for initial solution\n  Number=02  \n"
                "  x1=0100  \n  y1=0120  \n  du1=0003  \n  dv1=-001  \n  x2=0200  \n  y2=0220  \n  du2=-012  \n"
                "  dv2=0005  \n"
                "[EXTRA]\n  Number= 2\n  name0=speed\n  value0=5 mm/min\n  name1=temp\n  value1=20,5\n"
                "[UNIT]\n  UnitNameX=mm\n  UnitPX= .025\n  UnitNameY=mm\n  UnitPY= .025\n"
                "[MATERIAL]\n  YOUNG= 70000\n  POISSON= .33\n"
                "[CLF]\n; This section is reserved for CLF application\n  xstrict=0003  \n  ystrict=-0002  \n"
                "[FISSURE]\n; This section is reserved for KI determination\n  XFissureDep=0010  \n"
                "  YFissureDep=0021  \n  XFissureArr=0030  \n  YFissureArr=0040  \n  RayonFissure=0005  \n"
                "[BADPATTERN]\n; This section gives a list of pattern which are considered as wrong\n"
                "; due to their grey level uniformity\n  Bad1=0007  \n  Bad2=0009  \n  NbPatBad=000002  \n"
                ";[RESULTS] This section gives the displacement field between PicRef and PicDef\n"
                ";          The displacement field has the following description :\n;          d1=au.x+bu.y+cu.xy+du\n"
                ";          d2=av.x+bv.y+cv.xy+dv\n"
                ";under [RESULTS] section, each pattern has four lines as shown in this example :\n"
                "; -1 48 49 3.035839 0.707151\n;  1.481084 9.320356 -7.751096 -0.427107\n"
                ";  0.828280 2.993636 -1.123822 -0.922852\n;  1 8 0\n"
                ";The first line gives a flag equal to -1 if the calculation is good and equal to 0 if not\n"
                ";then, the X, Y coordinates of the center of the pattern are given followed by the displacement d1 "
                "and d2 for this point\n;then, the au bu cu du coefficients\n;then, the av bv cv dv coefficients\n"
                ";the fourth line is reserved for Tessiva\n");
  EXPECT_EQ(w.Status(), " " + w.dir.File("ref-def.don") + " successfully written");
}

// Read a file and save it again: the same text, except that the ordinary areas,
// read with the TagBox default -1, now carry a TagBox line.
TEST(DataFileRoundTrip, ReadFileSavesBackToTheSameText) {
  SetupWindow a;
  FillWindow(a);
  // Gauges would add the areas they lay to the second file. The state is cleared
  // below but the parameters window keeps its fields, as on reopening a file.
  a.form.Gages().Clear();
  std::tie(a.s.TagBox[2], a.s.ClfMode, a.s.NbPatBad, a.s.XFissureDep) = std::tuple(0, false, 0, 10.0);
  ASSERT_TRUE(SauveDonArea(a.form, 1));
  const std::string original = a.dir.Read("ref-def.don");

  a.s = AppState{};
  a.s.Title = kTitle;
  a.s.LastDir = a.dir.Path();
  a.Member("ref-def.don");
  ASSERT_TRUE(LecDonArea(a.form, 1, false)) << a.Status();
  // The picture sizes of the file come from the pictures, which are smaller here.
  std::tie(a.s.Lima, a.s.Hima) = std::tuple(512, 384);
  ASSERT_TRUE(SauveDonArea(a.form, 1));
  std::string expected = original;
  for (const char* nbox : {"  Nbox1=", "  Nbox2="})
    expected.insert(expected.find(nbox), std::string("  TagBox") + nbox[6] + "=- 01 \n");
  EXPECT_EQ(a.dir.Read("ref-def.don"), expected);
}

TEST(DataFileWrite, EachSaveDropsTheFreeSlotUnlessFormingLimitDataIsOn) {
  for (const bool clf : {false, true}) {
    SetupWindow w;
    std::tie(w.s.ClfMode, w.s.NbBox) = std::tuple(clf, 3);
    SetArea(w.s, 1, {{1, 1}, {5, 1}, {1, 1}});
    SetArea(w.s, 2, {{2, 2}, {6, 2}, {2, 2}});
    w.Member("a.don");
    for (const int32_t areas : clf ? std::vector{3, 3} : std::vector{2, 1}) {
      ASSERT_TRUE(SauveDonArea(w.form, 1));
      EXPECT_NE(w.dir.Read("a.don").find("work area\n  Number=0" + std::to_string(areas)), std::string::npos) << clf;
    }
    EXPECT_EQ(w.s.NbBox, clf ? 3 : 1);
  }
}

TEST(DataFileRead, KeysThatChangeWhatIsRead) {
  struct Case {
    const char* name;
    std::string body;  // the file less its [PICTURES] section
    std::function<void(SetupWindow&)> check;
    bool headerOnly = false;
  };
  const Case cases[] = {
      {"a tagged area leaves its slot empty and isn't counted",
       "[OUTLINES]\n  Number=2\n  TagBox1=3\n  Nbox1=3\n  x1-1=5\n  Nbox2=2\n  x2-1=7\n  y2-1=8\n  x2-2=9\n  y2-2=10\n",
       [](SetupWindow& w) {
         EXPECT_EQ(std::tie(w.s.NbBox, w.s.Nbox[1], w.s.XBox[1][1]), std::make_tuple(2, 0, 0));
         EXPECT_EQ(std::tie(w.s.Nbox[2], w.s.XBox[2][2], w.s.YBox[2][2]), std::make_tuple(2, 9, 10));
       }},
      {"no areas, forming-limit data", "[OUTLINES]\n  Number=0\n[CLF]\n  xstrict=5\n  ystrict=-0002  \n",
       [](SetupWindow& w) { EXPECT_EQ(std::tie(w.s.NbBox, w.s.ClfMode, w.s.ystrict), std::make_tuple(1, true, -2)); }},
      // Only -10000 marks an unknown displacement, not the -1 that marks a missing coordinate.
      {"du of -1 is solved, du of -10000 leaves the start point unsolved and current",
       "[STARTPOINTS]\n  Number=2\n  x1=1\n  y1=2\n  du1=-001  \n  dv1=-1\n  x2=10\n  y2=20\n  du2=-10000\n  dv2=3\n",
       [](SetupWindow& w) {
         EXPECT_EQ(w.s.StartOk, std::vector<bool>({false, true, false}));
         EXPECT_EQ(std::tie(w.s.DuStart[1], w.s.DvStart[2], w.s.CurStart), std::make_tuple(-1, 3, 2));
       }},
      {"a gauge without yarr is skipped, the next one is read and lays its areas",
       "[GAGES]\n  Number=2\n  name1=a\n  type1=0\n  xdep1=1\n  ydep1=2\n  xarr1=3\n"
       "  name2=b\n  type2=1\n  xdep2=4\n  ydep2=5\n  xarr2=6\n  yarr2=7\n",
       [](SetupWindow& w) {
         ASSERT_EQ(w.form.Gages().Count(), 1);
         EXPECT_EQ(w.form.Gages().Get(1).name, "b");
         EXPECT_GT(w.s.NbBox, 1);
         for (int32_t k = 1; k < w.s.NbBox; ++k) EXPECT_EQ(w.s.TagBox[static_cast<size_t>(k)], 1) << k;
       }},
      {"the header alone: pictures, units and extra values, but no material, areas, start points or gauges",
       "[UNIT]\n  UnitNameX=mm\n[EXTRA]\n  Number=1\n  name0=n\n  value0=v\n[MATERIAL]\n  YOUNG=5\n"
       "[OUTLINES]\n  Number=1\n  Nbox1=1\n  x1-1=3\n  y1-1=4\n"
       "[STARTPOINTS]\n  Number=1\n  x1=1\n  y1=2\n  du1=0\n  dv1=0\n"
       "[GAGES]\n  Number=1\n  name1=a\n  type1=0\n  xdep1=1\n  ydep1=2\n  xarr1=3\n  yarr1=4\n",
       [](SetupWindow& w) {
         EXPECT_EQ(std::tie(w.s.PicDefName, w.s.UnitNameX, w.s.Young), std::make_tuple("def.bmp", "mm", 7.0));
         EXPECT_EQ(w.form.Controls().Get("List2").items, std::vector<std::string>({"v"}));
         EXPECT_EQ(std::make_tuple(w.s.NbBox, w.s.Nbox[1], w.s.NbStart, w.form.Gages().Count()),
                   std::make_tuple(1, 0, 0, 0));
       },
       true},
  };
  for (const Case& c : cases) {
    SetupWindow w;
    std::tie(w.s.NbBox, w.s.Young) = std::tuple(4, 7.0);
    w.form.Gages().Add({"old", 0, 1, 1, 2, 2});
    w.dir.Write("a.don", kPicturesSection + c.body);
    w.Member("a.don");
    ASSERT_TRUE(LecDonArea(w.form, 1, c.headerOnly)) << c.name << ": " << w.Status();
    SCOPED_TRACE(c.name);
    c.check(w);
  }
}

// A sequence's later members never change the parameters, and sizes set beforehand win over the file.
TEST(DataFileRead, OnlyTheFirstMemberSetsTheParameters) {
  for (const size_t index : {1u, 2u}) {
    SetupWindow w;
    std::tie(w.s.LpatMin, w.s.LpatMax, w.s.Lgrid, w.s.Interpolation) = std::tuple(16, 30, 10, 1);
    w.dir.Write("a.don", kPicturesSection + "[PARAMETERS]\n  LpatMin=12\n  LpatMax=20\n  Lgrid=8\n  Interpolation=0\n");
    w.s.ResizeSequence(2);
    std::tie(w.s.DataFileName[index], w.s.DataFilePath[index]) = std::tuple("a.don", w.dir.File("a.don"));
    ASSERT_TRUE(LecDonArea(w.form, static_cast<int>(index), false));
    EXPECT_EQ(std::tie(w.s.LpatMin, w.s.LpatMax, w.s.Lgrid, w.s.Interpolation),
              std::make_tuple(16, 30, 10, index == 1 ? 0 : 1));
  }
}

}  // namespace
}  // namespace tessiva

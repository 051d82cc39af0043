#include "formats/sidefiles.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>

#include "analysis/analysisfiles.h"
#include "formats/setupwindow.h"
#include "setup/areafiles.h"
#include "state/files.h"
#include "state/keyfile.h"

namespace tessiva {
namespace {

using testing::SetupWindow;

// The two families of named sets share one implementation: every name list
// test runs for both, through each window's own operations.
struct Family {
  const AreaSetKind* kind;
  std::function<void(SetupWindow&, AreaSetList&)> init;
  std::function<std::string(SetupWindow&, AreaSetList&)> save;
  std::function<void(SetupWindow&, AreaSetList&, int32_t)> remove;
};
const Family kFamilies[] = {
    {&kAoiSets, [](SetupWindow& w, AreaSetList& l) { InitAOI(w.form, l); },
     [](SetupWindow& w, AreaSetList& l) { return SaveAOIByName(w.form, l); },
     [](SetupWindow& w, AreaSetList& l, int32_t position) { RemoveAOIName(w.form, l, position); }},
    {&kAosSets, [](SetupWindow& w, AreaSetList& l) { InitAOS(w.s, w.form.Controls(), l); },
     [](SetupWindow& w, AreaSetList& l) { return SaveAOSByName(w.s, w.form.Controls(), l, {}, {}); },
     [](SetupWindow& w, AreaSetList& l, int32_t position) { RemoveAOSName(w.s, w.form.Controls(), l, position); }},
};

std::string SaveTyped(SetupWindow& w, const Family& f, AreaSetList& list, const std::string& typed) {
  w.form.Controls().SetText("Combo1", typed);
  return f.save(w, list);
}

std::vector<std::string> Names(const AreaSetList& list) {
  return {list.AreaNames.begin() + 1, list.AreaNames.begin() + 1 + list.AreaCount};
}

TEST(AreaSetNames, ANewNameGoesFirstTheThirtyFirstDropsTheOldestAndTheListReadsBackAfterARemoval) {
  for (const Family& f : kFamilies) {
    SCOPED_TRACE(f.kind->section);
    SetupWindow w;
    w.dir.Write("correl.ini", "[PATH]\n  ExePath=solver\n");  // without the list's section
    AreaSetList list, again;
    f.init(w, list);
    EXPECT_EQ(std::tie(list.AreaCount, w.s.NbLignesEntete), std::make_tuple(0, 2));  // all of it is head
    for (int i = 1; i <= 31; ++i) SaveTyped(w, f, list, "n" + std::to_string(i));
    ASSERT_EQ(list.AreaCount, 30);
    EXPECT_EQ(std::tie(list.AreaNames[1], list.AreaNames[30]), std::make_tuple("n31", "n2"));
    EXPECT_EQ(w.form.Controls().Get("Combo1").items, Names(list));
    EXPECT_EQ(ReadKeyText(f.kind->section, f.kind->countKey, w.s.IniPath), "30");
    EXPECT_EQ(w.dir.Read("correl.ini").rfind("[PATH]\n  ExePath=solver\n[", 0), 0u);
    // The dropped name's side file stays.
    EXPECT_TRUE(FileExists(SideFilePath(w.s, *f.kind, "n1")));
    // Positions outside the list change nothing.
    for (int32_t position : {2, 0, 30, -1}) f.remove(w, list, position);
    EXPECT_EQ(std::tie(list.AreaCount, list.AreaNames[2]), std::make_tuple(29, "n29"));
    w.form.Controls().SetItems("Combo1", {});
    f.init(w, again);
    EXPECT_EQ(Names(again), Names(list));
    EXPECT_EQ(w.form.Controls().Get("Combo1").items, Names(list));
    EXPECT_EQ(w.s.TexteLignes.at(static_cast<size_t>(w.s.NbLignesEntete)), "[" + std::string(f.kind->section) + "]");
  }
}

TEST(AreaSetNames, BlankSavesAsDefaultAndAnExistingNameIsRewrittenInItsPlace) {
  for (const Family& f : kFamilies) {
    SetupWindow w;
    AreaSetList list;
    EXPECT_EQ(SaveTyped(w, f, list, "   "), "Default");
    EXPECT_EQ(SaveTyped(w, f, list, "  plate 1 "), "plate 1");
    const std::string ini = w.dir.Read("correl.ini");
    std::filesystem::remove(SideFilePath(w.s, *f.kind, "Default"));
    EXPECT_EQ(SaveTyped(w, f, list, ""), "Default");
    EXPECT_EQ(Names(list), std::vector<std::string>({"plate 1", "Default"}));
    EXPECT_EQ(w.dir.Read("correl.ini"), ini);
    EXPECT_TRUE(FileExists(SideFilePath(w.s, *f.kind, "Default"))) << f.kind->section;
  }
}

TEST(AoiFile, HoldsTheAreasLessTheFreeSlotWithoutBannerPicturesOrParameters) {
  SetupWindow w;
  w.s.NbBox = 2;
  testing::SetArea(w.s, 1, {{10, 20}, {40, 20}, {10, 20}});
  ASSERT_TRUE(SauveAOI(w.form, "set"));
  EXPECT_EQ(w.s.NbBox, 2);
  EXPECT_EQ(w.dir.Read("set-aoi.ini"),
            "[OUTLINES]\n; This section describes the bounding box of the work area\n  Number=01  \n"
            "  Nbox1= 03 \n  x1-1=0010\n  y1-1=0020\n  x1-2=0040\n  y1-2=0020\n  x1-3=0010\n  y1-3=0020\n"
            "[STARTPOINTS]\n; This section describes the startpoint for initial solution\n  Number=00  \n"
            "[EXTRA]\n[UNIT]\n  UnitNameX=Pixel\n  UnitPX= 1\n  UnitNameY=Pixel\n  UnitPY= 1\n"
            "[MATERIAL]\n  YOUNG= 210000\n  POISSON= .3\n");
}

TEST(AoiFile, AVertexAtMinusOneEndsAnOutlineAndAStartPointNeedsBothDisplacements) {
  SetupWindow w;
  std::tie(w.s.NbBox, w.s.Nbox[1]) = std::tuple(4, 7);  // what the reading replaces
  w.dir.Write("s-aoi.ini",
              "[OUTLINES]\n  Number=2\n  Nbox1=3\n  x1-1=5\n  y1-1=6\n  x1-2=-1\n  y1-2=8\n  x1-3=9\n  y1-3=9\n"
              "  TagBox2=1\n  Nbox2=1\n  x2-1=1\n  y2-1=1\n"
              "[GAGES]\n  Number=1\n  name1=g\n  type1=1\n  xdep1=1\n  ydep1=2\n  xarr1=3\n  yarr1=4\n"
              "[STARTPOINTS]\n  Number=3\n  x1=1\n  y1=1\n  du1=0\n  dv1=0\n  x2=2\n  y2=2\n  du2=5\n"
              "  x3=3\n  y3=3\n  du3=-4\n  dv3=-4\n");
  ASSERT_TRUE(LecAOI(w.form, "s")) << w.Status();
  EXPECT_EQ(std::tie(w.s.Nbox[1], w.s.YBox[1][1], w.s.XBox[1][2], w.s.YBox[1][2], w.s.XBox[1][3]),
            std::make_tuple(3, 6, -1, 0, 0));
  // The tagged area is left to its gauge, which lays its own areas from slot 2 on.
  ASSERT_EQ(w.form.Gages().Count(), 1);
  EXPECT_GT(w.s.NbBox, 2);
  for (int32_t k = 2; k < w.s.NbBox; ++k) EXPECT_EQ(w.s.TagBox[static_cast<size_t>(k)], 1) << k;
  EXPECT_EQ(w.s.StartOk, std::vector<bool>({false, true, false, true}));
  EXPECT_EQ(w.s.CurStart, 3);
  // A missing side file reads as an empty set.
  ASSERT_TRUE(LecAOI(w.form, "absent"));
  EXPECT_EQ(std::tie(w.s.NbBox, w.s.NbStart), std::make_tuple(1, 0));
}

TEST(AosFile, HoldsTheGaugesAndTheSelectionInWholePixelsAndReadsBackReplacingTheGauges) {
  SetupWindow w;
  GageStore gages;
  gages.Add({"r", 1, 5, 6, 7, 8});
  ASSERT_TRUE(SauveAOS(w.s, {3, {0, 10.4, 20.5, 20}, {0, 30, 30, 40.6}}, gages, "sel"));
  EXPECT_EQ(w.dir.Read("sel-AOS.ini"),
            "[GAGES]\n; This section describes the strain gage\n  Number=01  \n"
            "  name1=r\n  type1=0001\n  xdep1=0005\n  ydep1=0006\n  xarr1=0007\n  yarr1=0008\n"
            "[OUTLINES]\n; This section describes the bounding box of the work area\n  NboxAOS= 03 \n"
            "  x-1=0010\n  y-1=0030\n  x-2=0021\n  y-2=0030\n  x-3=0020\n  y-3=0041\n");
  ASSERT_TRUE(SauveAOS(w.s, {}, {}, "none"));
  EXPECT_EQ(w.dir.Read("none-AOS.ini"), "");

  SelectionArea read;
  gages.Add({"extra", 0, 1, 1, 1, 1});
  ASSERT_TRUE(LecAOS(w.s, w.ui, read, gages, "sel"));
  EXPECT_EQ(read.XAOS, std::vector<double>({0, 10, 21, 20}));
  EXPECT_EQ(read.YAOS, std::vector<double>({0, 30, 30, 41}));
  ASSERT_EQ(gages.Count(), 1);
  EXPECT_EQ(gages.Get(1).name, "r");
  // A missing side file reads as an empty set.
  ASSERT_TRUE(LecAOS(w.s, w.ui, read, gages, "absent"));
  EXPECT_EQ(std::make_tuple(read.NboxAOS, read.XAOS.size(), gages.Count()), std::make_tuple(-1, 1u, 0));
}

}  // namespace
}  // namespace tessiva

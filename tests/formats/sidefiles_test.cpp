#include "formats/sidefiles.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "formats/setupwindow.h"
#include "state/files.h"
#include "state/keyfile.h"

namespace tessiva {
namespace {

using testing::SetupWindow;

// The two families of named sets run through one implementation: every name
// list test runs for both, each with its own side-file writer.
struct Family {
  const AreaSetKind* kind;
  std::function<bool(SetupWindow&, const std::string&)> write;
};

std::vector<Family> Families() {
  return {
      {&kAoiSets, [](SetupWindow& w, const std::string& name) { return SauveAOI(w.form, name); }},
      {&kAosSets,
       [](SetupWindow& w, const std::string& name) { return SauveAOS(w.s, SelectionArea{}, GageStore{}, name); }},
  };
}

std::string SaveTyped(SetupWindow& w, const Family& f, AreaSetList& list, const std::string& typed) {
  w.form.Controls().SetText("Combo1", typed);
  return SaveAreaSetByName(w.s, *f.kind, list, w.form.Controls(),
                           [&](const std::string& name) { return f.write(w, name); });
}

std::vector<std::string> Names(const AreaSetList& list) {
  return {list.AreaNames.begin() + 1, list.AreaNames.begin() + 1 + list.AreaCount};
}

std::string IniValue(const SetupWindow& w, const AreaSetKind& kind, const std::string& key) {
  return ReadKeyText(kind.section, key, w.s.IniPath);
}

TEST(AreaSetNames, ANewNameGoesFirstAndTheListKeepsThirty) {
  for (const Family& f : Families()) {
    SetupWindow w;
    w.dir.Write("correl.ini", "[PATH]\n  ExePath=solver\n");
    AreaSetList list;
    for (int i = 1; i <= 31; ++i) SaveTyped(w, f, list, "n" + std::to_string(i));
    EXPECT_EQ(list.AreaCount, 30) << f.kind->section;
    EXPECT_EQ(list.AreaNames.size(), 31u);
    EXPECT_EQ(list.AreaNames[1], "n31");
    EXPECT_EQ(list.AreaNames[30], "n2");
    EXPECT_EQ(w.form.Controls().Get("Combo1").items, Names(list));
    EXPECT_EQ(IniValue(w, *f.kind, f.kind->countKey), "30");
    EXPECT_EQ(IniValue(w, *f.kind, "NAME1"), "n31");
    EXPECT_EQ(IniValue(w, *f.kind, "NAME30"), "n2");
    EXPECT_EQ(ReadKeyText("PATH", "ExePath", w.s.IniPath), "solver");
    // The dropped name's side file stays.
    EXPECT_TRUE(FileExists(SideFilePath(w.s, *f.kind, "n1"))) << f.kind->section;
  }
}

TEST(AreaSetNames, TheTrimmedTextNamesTheSetAndBlankMeansDefault) {
  struct Case {
    const char* typed;
    const char* name;
  };
  for (const Family& f : Families()) {
    for (const Case& c : {Case{"", "Default"}, Case{"   ", "Default"}, Case{"  plate 1 ", "plate 1"}}) {
      SetupWindow w;
      AreaSetList list;
      EXPECT_EQ(SaveTyped(w, f, list, c.typed), c.name);
      EXPECT_EQ(Names(list), std::vector<std::string>({c.name}));
      EXPECT_TRUE(FileExists(w.dir.File(c.name + std::string(f.kind->fileEnding)))) << c.typed;
    }
  }
}

TEST(AreaSetNames, AnExistingNameRewritesItsFileAndKeepsTheList) {
  for (const Family& f : Families()) {
    SetupWindow w;
    AreaSetList list;
    SaveTyped(w, f, list, "a");
    SaveTyped(w, f, list, "b");
    const std::string ini = w.dir.Read("correl.ini");
    std::filesystem::remove(SideFilePath(w.s, *f.kind, "a"));
    SaveTyped(w, f, list, "a");
    EXPECT_EQ(Names(list), std::vector<std::string>({"b", "a"}));
    EXPECT_EQ(w.dir.Read("correl.ini"), ini);
    EXPECT_TRUE(FileExists(SideFilePath(w.s, *f.kind, "a")));
  }
}

TEST(AreaSetNames, TheListIsReadBackAndAFirstSaveAddsItsSection) {
  for (const Family& f : Families()) {
    SetupWindow w;
    w.dir.Write("correl.ini", "[PATH]\n  ExePath=solver\n");
    AreaSetList list;
    InitAreaSetList(w.s, *f.kind, list, w.form.Controls());
    EXPECT_EQ(list.AreaCount, 0);
    EXPECT_EQ(w.s.NbLignesEntete, 2);
    SaveTyped(w, f, list, "x");
    SaveTyped(w, f, list, "y");
    const std::string ini = w.dir.Read("correl.ini");
    EXPECT_EQ(ini.rfind("[PATH]\n  ExePath=solver\n[", 0), 0u) << ini;
    EXPECT_NE(ini.find(std::string("[") + f.kind->section + "]"), std::string::npos);

    AreaSetList again;
    ControlRegistry controls;
    InitAreaSetList(w.s, *f.kind, again, controls);
    EXPECT_EQ(Names(again), std::vector<std::string>({"y", "x"}));
    EXPECT_EQ(controls.Get("Combo1").items, Names(again));
    EXPECT_EQ(w.s.NbLignesEntete, 2);
    EXPECT_EQ(w.s.TexteLignes[2], std::string("[") + f.kind->section + "]");
  }
}

TEST(AreaSetNames, RemovingANameClosesTheListAndLeavesTheHighestKeyBehind) {
  for (const Family& f : Families()) {
    SetupWindow w;
    AreaSetList list;
    for (const char* name : {"a", "b", "c"}) SaveTyped(w, f, list, name);
    RemoveAreaSetName(w.s, *f.kind, list, w.form.Controls(), 2);
    EXPECT_EQ(Names(list), std::vector<std::string>({"c", "a"}));
    EXPECT_EQ(w.form.Controls().Get("Combo1").items, Names(list));
    EXPECT_EQ(IniValue(w, *f.kind, f.kind->countKey), "2");
    EXPECT_EQ(IniValue(w, *f.kind, "NAME2"), "a");
    EXPECT_EQ(IniValue(w, *f.kind, "NAME3"), "a");
    EXPECT_TRUE(FileExists(SideFilePath(w.s, *f.kind, "b")));
    for (int32_t outside : {0, 3, -1}) RemoveAreaSetName(w.s, *f.kind, list, w.form.Controls(), outside);
    EXPECT_EQ(list.AreaCount, 2);

    AreaSetList again;
    InitAreaSetList(w.s, *f.kind, again, w.form.Controls());
    EXPECT_EQ(Names(again), Names(list));
  }
}

TEST(AreaSetNames, InitSkipsMissingNamesAndReadsAtMostThirty) {
  struct Case {
    std::string section;
    std::vector<std::string> names;
  };
  Case many{"[AOI]\n  NUMBEROFAOI=40\n", {}};
  for (int i = 1; i <= 40; ++i) {
    many.section += "  NAME" + std::to_string(i) + "=s" + std::to_string(i) + "\n";
    if (i <= AreaSetList::kMaxNames) many.names.push_back("s" + std::to_string(i));
  }
  const Case cases[] = {
      {"[aoi]\n  NUMBEROFAOI=3\n  NAME1=a\n  NAME3=c\n", {"a", "c"}},
      {"[AOI]\n  NAME1=a\n", {}},
      {"[AOI]\n  NUMBEROFAOI=-4\n  NAME1=a\n", {}},
      {"[AOS]\n  NUMBEROFAOI=1\n  NAME1=a\n", {}},
      many,
  };
  for (const Case& c : cases) {
    SetupWindow w;
    w.dir.Write("correl.ini", "; head\n" + c.section);
    AreaSetList list;
    InitAOI(w.form, list);
    EXPECT_EQ(Names(list), c.names) << c.section;
    EXPECT_EQ(w.form.Controls().Get("Combo1").items, c.names) << c.section;
    EXPECT_EQ(w.form.Controls().Text("Combo1"), "Give a name to  the AOI");
  }
}

void FillAreas(SetupWindow& w) {
  AppState& s = w.s;
  s.NbBox = 3;
  s.Nbox[1] = 3;
  s.XBox[1] = {0, 10, 40, 10};
  s.YBox[1] = {0, 20, 20, 20};
  s.TagBox[2] = 4;
  s.Nbox[2] = 2;
  s.XBox[2] = {0, 7, 8};
  s.YBox[2] = {0, 9, 10};
  s.NbStart = 2;
  s.ResizeStartPoints(2);
  s.XStart = {0, 15, 30};
  s.YStart = {0, 25, 35};
  s.DuStart = {0, 2, -3};
  s.DvStart = {0, -1, 4};
  s.StartOk = {false, true, true};
  s.UnitNameX = "mm";
  s.UnitPX = 0.5;
  s.Young = 70000;
  w.form.Gages().Add({"g", 1, 1, 2, 3, 4});
  w.form.Controls().SetItems("Combo2", {"k"});
  w.form.Controls().SetItems("List2", {"v"});
}

TEST(AoiFile, HoldsTheAreaSectionsWithoutBannerPicturesOrParameters) {
  SetupWindow w;
  FillAreas(w);
  ASSERT_TRUE(SauveAOI(w.form, "set"));
  EXPECT_EQ(w.s.NbBox, 3);
  EXPECT_EQ(w.dir.Read("set-aoi.ini"),
            "[GAGES]\n; This section describes the strain gage\n  Number=01  \n"
            "  name1=g\n  type1=0001\n  xdep1=0001\n  ydep1=0002\n  xarr1=0003\n  yarr1=0004\n"
            "[OUTLINES]\n; This section describes the bounding box of the work area\n  Number=02  \n"
            "  Nbox1= 03 \n  x1-1=0010\n  y1-1=0020\n  x1-2=0040\n  y1-2=0020\n  x1-3=0010\n  y1-3=0020\n"
            "  TagBox2= 04 \n  Nbox2= 02 \n  x2-1=0007\n  y2-1=0009\n  x2-2=0008\n  y2-2=0010\n"
            "[STARTPOINTS]\n; This section describes the startpoint for initial solution\n  Number=02  \n"
            "  x1=0015  \n  y1=0025  \n  du1=0002  \n  dv1=-001  \n"
            "  x2=0030  \n  y2=0035  \n  du2=-003  \n  dv2=0004  \n"
            "[EXTRA]\n  Number= 1\n  name0=k\n  value0=v\n"
            "[UNIT]\n  UnitNameX=mm\n  UnitPX= .5\n  UnitNameY=Pixel\n  UnitPY= 1\n"
            "[MATERIAL]\n  YOUNG= 70000\n  POISSON= .3\n");
  EXPECT_EQ(w.ui.busyDepth, 0);
}

TEST(AoiFile, AnEmptyAreaStoreWritesNoOutlines) {
  SetupWindow w;
  ASSERT_TRUE(SauveAOI(w.form, "empty"));
  EXPECT_EQ(w.dir.Read("empty-aoi.ini").rfind("[STARTPOINTS]", 0), 0u);
}

TEST(AoiFile, ReadsBackIntoAnotherWindow) {
  SetupWindow a;
  FillAreas(a);
  ASSERT_TRUE(SauveAOI(a.form, "set"));
  SetupWindow b;
  b.s.StartDir = a.dir.Path();
  b.s.NbStart = 5;
  b.s.ResizeStartPoints(5);
  ASSERT_TRUE(LecAOI(b.form, "set")) << b.Status();
  EXPECT_EQ(b.s.Nbox[1], 3);
  EXPECT_EQ(b.s.XBox[1], a.s.XBox[1]);
  EXPECT_EQ(b.s.YBox[1], a.s.YBox[1]);
  // The tagged area is left to its gauge, which lays its own areas from slot 2 on.
  ASSERT_EQ(b.form.Gages().Count(), 1);
  EXPECT_EQ(b.form.Gages().Get(1).yarr, 4);
  EXPECT_EQ(b.s.NbStart, 2);
  for (size_t i = 1; i <= 2; ++i) {
    EXPECT_EQ(b.s.XStart[i], a.s.XStart[i]);
    EXPECT_EQ(b.s.YStart[i], a.s.YStart[i]);
    EXPECT_EQ(b.s.DuStart[i], a.s.DuStart[i]);
    EXPECT_EQ(b.s.DvStart[i], a.s.DvStart[i]);
    EXPECT_TRUE(b.s.StartOk[i]);
  }
  EXPECT_EQ(b.s.CurStart, 2);
  EXPECT_EQ(b.s.UnitPX, 0.5);
  EXPECT_EQ(b.form.Controls().Text("UnitX"), "mm");
  EXPECT_EQ(b.Items("List2"), std::vector<std::string>({"v"}));
  EXPECT_EQ(b.ui.busyDepth, 0);
}

TEST(AoiFile, ReadingRulesOfTheSideFile) {
  struct Case {
    const char* name;
    std::optional<std::string> content;  // nothing: no side file
    std::function<void(SetupWindow&)> check;
  };
  const Case cases[] = {
      {"a missing side file clears the areas", std::nullopt,
       [](SetupWindow& w) {
         EXPECT_EQ(w.s.NbBox, 1);
         EXPECT_EQ(w.s.NbStart, 0);
         EXPECT_EQ(w.s.Nbox[1], 0);
       }},
      {"an empty outline section", "[OUTLINES]\n  Number=0\n", [](SetupWindow& w) { EXPECT_EQ(w.s.NbBox, 1); }},
      {"a vertex at -1 ends the outline",
       "[OUTLINES]\n  Number=1\n  Nbox1=3\n  x1-1=5\n  y1-1=6\n  x1-2=-1\n  y1-2=8\n  x1-3=9\n  y1-3=9\n",
       [](SetupWindow& w) {
         EXPECT_EQ(w.s.NbBox, 2);
         EXPECT_EQ(w.s.Nbox[1], 3);
         EXPECT_EQ(w.s.YBox[1][1], 6);
         EXPECT_EQ(w.s.XBox[1][2], -1);
         EXPECT_EQ(w.s.YBox[1][2], 0);
         EXPECT_EQ(w.s.XBox[1][3], 0);
       }},
      {"a missing displacement leaves the point unsolved and current",
       "[STARTPOINTS]\n  Number=3\n  x1=1\n  y1=1\n  du1=0\n  dv1=0\n  x2=2\n  y2=2\n  du2=5\n"
       "  x3=3\n  y3=3\n  du3=-4\n  dv3=-4\n",
       [](SetupWindow& w) {
         EXPECT_EQ(w.s.StartOk, std::vector<bool>({false, true, false, true}));
         EXPECT_EQ(w.s.DuStart[2], 5);
         EXPECT_EQ(w.s.CurStart, 3);
       }},
      {"a first point without du is current", "[STARTPOINTS]\n  Number=1\n  x1=1\n  y1=1\n  dv1=2\n",
       [](SetupWindow& w) {
         EXPECT_FALSE(w.s.StartOk[1]);
         EXPECT_EQ(w.s.CurStart, 1);
       }},
      {"a point without y keeps its defaults", "[STARTPOINTS]\n  Number=1\n  x1=1\n  du1=1\n  dv1=1\n",
       [](SetupWindow& w) {
         EXPECT_EQ(w.s.NbStart, 1);
         EXPECT_FALSE(w.s.StartOk[1]);
         EXPECT_EQ(w.s.DuStart[1], 0);
         EXPECT_EQ(w.s.CurStart, 0);
       }},
  };
  for (const Case& c : cases) {
    SetupWindow w;
    w.s.NbBox = 4;
    w.s.Nbox[1] = 7;
    w.s.NbStart = 2;
    w.s.ResizeStartPoints(2);
    if (c.content) w.dir.Write("s-aoi.ini", *c.content);
    ASSERT_TRUE(LecAOI(w.form, "s")) << c.name << w.Status();
    c.check(w);
    EXPECT_EQ(w.ui.busyDepth, 0) << c.name;
  }
}

TEST(AoiFile, AnUnusableSideFileCantBeLoaded) {
  for (const char* content : {"[OUTLINES]\n  Number=21\n", "[OUTLINES]\n  Number=-2\n",
                              "[OUTLINES]\n  Number=1\n  Nbox1=52\n", "[STARTPOINTS]\n  Number=1000\n",
                              "[STARTPOINTS]\n  Number=-3\n", "[GAGES]\n  Number=5000\n", "[EXTRA]\n  Number=5000\n"}) {
    SetupWindow w;
    w.dir.Write("s-aoi.ini", content);
    EXPECT_FALSE(LecAOI(w.form, "s")) << content;
    EXPECT_EQ(w.Status(), " " + w.dir.File("s-aoi.ini") + " can't be loaded") << content;
    EXPECT_EQ(w.ui.busyDepth, 0);
  }
}

SelectionArea Rectangle() {
  return {5, {0, 10.4, 20.5, 20, 10, 10.4}, {0, 30, 30, 40.6, 40, 30}};
}

TEST(AosFile, HoldsTheGaugesAndTheSelectionInWholePixels) {
  SetupWindow w;
  GageStore gages;
  gages.Add({"r", 1, 5, 6, 7, 8});
  ASSERT_TRUE(SauveAOS(w.s, Rectangle(), gages, "sel"));
  EXPECT_EQ(w.dir.Read("sel-AOS.ini"),
            "[GAGES]\n; This section describes the strain gage\n  Number=01  \n"
            "  name1=r\n  type1=0001\n  xdep1=0005\n  ydep1=0006\n  xarr1=0007\n  yarr1=0008\n"
            "[OUTLINES]\n; This section describes the bounding box of the work area\n  NboxAOS= 05 \n"
            "  x-1=0010\n  y-1=0030\n  x-2=0021\n  y-2=0030\n  x-3=0020\n  y-3=0041\n"
            "  x-4=0010\n  y-4=0040\n  x-5=0010\n  y-5=0030\n");
  ASSERT_TRUE(SauveAOS(w.s, SelectionArea{}, GageStore{}, "none"));
  EXPECT_EQ(w.dir.Read("none-AOS.ini"), "");
}

TEST(AosFile, ReadsBackReplacingTheGauges) {
  SetupWindow w;
  GageStore gages;
  gages.Add({"r", 1, 5, 6, 7, 8});
  ASSERT_TRUE(SauveAOS(w.s, Rectangle(), gages, "sel"));
  SelectionArea read;
  gages.Add({"extra", 0, 1, 1, 1, 1});
  ASSERT_TRUE(LecAOS(w.s, w.ui, read, gages, "sel"));
  EXPECT_EQ(read.NboxAOS, 5);
  EXPECT_EQ(read.XAOS, std::vector<double>({0, 10, 21, 20, 10, 10}));
  EXPECT_EQ(read.YAOS, std::vector<double>({0, 30, 30, 41, 40, 30}));
  ASSERT_EQ(gages.Count(), 1);
  EXPECT_EQ(gages.Get(1).name, "r");

  ASSERT_TRUE(LecAOS(w.s, w.ui, read, gages, "absent"));
  EXPECT_EQ(read.NboxAOS, -1);
  EXPECT_EQ(read.XAOS.size(), 1u);
  EXPECT_EQ(gages.Count(), 0);

  w.dir.Write("bad-AOS.ini", "[OUTLINES]\n  NboxAOS=99999\n");
  EXPECT_FALSE(LecAOS(w.s, w.ui, read, gages, "bad"));
  EXPECT_EQ(w.Status(), " " + w.dir.File("bad-AOS.ini") + " can't be loaded");
}

TEST(AosFile, DeleteRemovesOnlyThatSideFile) {
  SetupWindow w;
  ASSERT_TRUE(SauveAOS(w.s, Rectangle(), GageStore{}, "temp"));
  ASSERT_TRUE(SauveAOS(w.s, Rectangle(), GageStore{}, "keep"));
  EXPECT_TRUE(DeleteAOS(w.s, "temp"));
  EXPECT_FALSE(FileExists(w.dir.File("temp-AOS.ini")));
  EXPECT_TRUE(FileExists(w.dir.File("keep-AOS.ini")));
  EXPECT_FALSE(DeleteAOS(w.s, "temp"));
}

}  // namespace
}  // namespace tessiva

// A headless setup window over a scratch directory holding two small pictures,
// shared by the tests of the file formats.
#pragma once

#include <string>
#include <tuple>
#include <vector>

#include "setup/areaform.h"
#include "setup/picture.h"
#include "state/numtext.h"
#include "setup/param.h"
#include "support/tempdir.h"
#include "ui/scriptedui.h"

namespace tessiva::testing {

inline constexpr const char* kTitle = "Tessiva - Version 4.65.0 - Tessiva Workbench - tessiva.org";
// The [PICTURES] section naming the fixture's two pictures.
inline const std::string kPicturesSection = "[PICTURES]\n  PicRef=ref.bmp\n  PicDef=def.bmp\n";

struct SetupWindow {
  TempDir dir;
  AppState s;
  ControlRegistry frame;
  ScriptedUi ui{frame};
  Param param{s};
  AreaForm form{s, ui, param};

  SetupWindow() {
    s.Title = kTitle;
    s.LastDir = s.StartDir = dir.Path();
    s.IniPath = dir.File("correl.ini");
    std::vector<uint8_t> levels(16 * 12);
    for (size_t i = 0; i < levels.size(); ++i) levels[i] = static_cast<uint8_t>(i * 37 % 251);
    for (const char* name : {"ref.bmp", "def.bmp"}) SaveGreyBmp(dir.File(name), 16, 12, levels);
  }

  // Makes `name` in the scratch directory the one member of the sequence, shown
  // in Text1 as well so that a save doesn't ask to rename it.
  void Member(const std::string& name) {
    s.ResizeSequence(1);
    std::tie(s.DataFileName[1], s.DataFilePath[1]) = std::tuple(name, dir.File(name));
    form.Controls().SetText("Text1", name);
  }
  const std::string& Status() const { return frame.Text("Label1"); }
};

inline void SetArea(AppState& s, int area, std::vector<std::pair<int32_t, int32_t>> points, int32_t tag = 0) {
  const auto a = static_cast<size_t>(area);
  s.Nbox[a] = static_cast<int32_t>(points.size());
  s.TagBox[a] = tag;
  for (size_t j = 0; j < points.size(); ++j) std::tie(s.XBox[a][j + 1], s.YBox[a][j + 1]) = points[j];
}

// A setup window holding one of every kind of content a data file carries, as "ref-def.don".
inline void FillWindow(SetupWindow& w) {
  AppState& s = w.s;
  std::tie(s.PicRefName, s.PicDefName, s.Lima, s.Hima) = std::tuple("Ref.BMP", "def.bmp", 512, 384);
  // The parameters window's fields, which a save reads into the state.
  for (const auto& [field, text] : {std::pair{"Text1", "10"}, {"Text2", "24"}, {"Text3", "7"}, {"Text4", "50"},
                                    {"TextYoung", "70000"}, {"TextPoisson", "0,33"}})
    w.param.Controls().SetText(field, text);
  w.param.Controls().SetChecked("Option1(0)", true);
  w.param.Controls().SetChecked("Option1(1)", false);
  w.param.Controls().SetChecked("Option2(0)", false);
  w.param.Controls().SetChecked("Option2(1)", true);
  w.param.Controls().SetChecked("Check1", true);
  for (const Gage& g : {Gage{"g1", 0, 10, 20, 30, 40}, Gage{"g2", 1, 50, 60, 70, 80}, Gage{"g3", 2, -5, 6, 7, 1234}})
    w.form.Gages().Add(g);
  w.form.Gages().Remove(2);
  s.NbBox = 3;
  SetArea(s, 1, {{10, 10}, {50, 10}, {50, 40}, {10, 40}, {10, 10}});
  SetArea(s, 2, {{60, 60}, {70, 65}, {60, 60}}, 2);
  using Values = std::vector<int32_t>;
  std::tie(s.NbStart, s.XStart, s.YStart, s.DuStart, s.DvStart, s.StartOk) = std::tuple(
      2, Values{0, 100, 200}, Values{0, 120, 220}, Values{0, 3, -12}, Values{0, -1, 5}, std::vector{false, true, true});
  w.form.Controls().SetItems("Combo2", {"speed", "temp"});
  w.form.Controls().SetItems("List2", {"5 mm/min", "20,5"});
  s.UnitNameX = s.UnitNameY = "mm";
  s.UnitPX = s.UnitPY = 0.025;
  std::tie(s.ClfMode, s.xstrict, s.ystrict, s.FissureOn) = std::tuple(true, 3, -2, true);
  std::tie(s.XFissureDep, s.YFissureDep, s.XFissureArr, s.YFissureArr, s.RayonFissure) =
      std::tuple(10.4, 20.5, 30.0, 40.0, 5.0);
  s.NbPatBad = 3;
  s.BadPat = {0, 7, 0, 9};
  w.Member("ref-def.don");
}

// The banner and [RELEASE] section that start every data file written today.
inline std::string ExpectedBanner() {
  return "; Tessiva RESULTS\n; Tessiva Workbench\n; 1 Correlation Street\n; 00000 Imageville\n"
         "; Tel: +00 0 00 00 00 00\n; mail: support@tessiva.org  web: tessiva.org\n; \n"
         "; Please report bugs to support@tessiva.org\n"
         "[RELEASE]\n;Don't modify this section\n  name=Tessiva\n  version=" + std::string(kTitle) + "\n"
         "  date=" + TodayText() + "\n";
}

}  // namespace tessiva::testing

// A headless setup window over a scratch directory holding two small pictures,
// for the tests of the file formats.
#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "setup/areaform.h"
#include "setup/picture.h"
#include "state/appstate.h"
#include "state/numtext.h"
#include "state/param.h"
#include "support/tempdir.h"
#include "ui/controls.h"
#include "ui/scriptedui.h"

namespace tessiva::testing {

inline constexpr const char* kTitle = "Tessiva - Version 4.65.0 - Tessiva Workbench - tessiva.org";

struct SetupWindow {
  TempDir dir;
  AppState s;
  ControlRegistry frame;
  ScriptedUi ui{frame};
  Param param{s};
  AreaForm form{s, ui, param};

  SetupWindow() {
    s.Title = kTitle;
    s.LastDir = dir.Path();
    s.StartDir = dir.Path();
    s.IniPath = dir.File("correl.ini");
    WritePicture("ref.bmp", 16, 12);
    WritePicture("def.bmp", 16, 12);
  }

  void WritePicture(const std::string& name, int32_t width, int32_t height) {
    std::vector<uint8_t> levels(static_cast<size_t>(width * height));
    for (size_t i = 0; i < levels.size(); ++i) levels[i] = static_cast<uint8_t>(i * 37 % 251);
    SaveGreyBmp(dir.File(name), width, height, levels);
  }

  // Makes `name` in the scratch directory member `index` of the sequence.
  void Member(int index, const std::string& name) {
    if (static_cast<int>(s.DataFilePath.size()) <= index) s.ResizeSequence(index);
    s.DataFileName[static_cast<size_t>(index)] = name;
    s.DataFilePath[static_cast<size_t>(index)] = dir.File(name);
  }

  const std::string& Status() const { return frame.Text("Label1"); }
  const std::vector<std::string>& Items(const std::string& control) { return form.Controls().Get(control).items; }
};

// Every file of a directory with its content: what a reader must leave alone.
inline std::map<std::string, std::string> Snapshot(const TempDir& dir) {
  std::map<std::string, std::string> files;
  for (const auto& entry : std::filesystem::directory_iterator(dir.Path()))
    files[entry.path().filename().string()] = dir.Read(entry.path().filename().string());
  return files;
}

// The [PICTURES] section naming the fixture's two pictures.
inline const std::string kPicturesSection = "[PICTURES]\n  PicRef=ref.bmp\n  PicDef=def.bmp\n";

// The banner and [RELEASE] section that start every data file written today.
inline std::string ExpectedBanner() {
  return "; Tessiva RESULTS\n"
         "; Tessiva Workbench\n"
         "; 1 Correlation Street\n"
         "; 00000 Imageville\n"
         "; Tel: +00 0 00 00 00 00\n"
         "; mail: support@tessiva.org  web: tessiva.org\n"
         "; \n"
         "; Please report bugs to support@tessiva.org\n"
         "[RELEASE]\n"
         ";Don't modify this section\n"
         "  name=Tessiva\n"
         "  version=" + std::string(kTitle) + "\n"
         "  date=" + TodayText() + "\n";
}

}  // namespace tessiva::testing

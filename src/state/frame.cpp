#include "state/frame.h"

#include <algorithm>
#include <cmath>
#include <filesystem>

#include "state/files.h"
#include "state/keyfile.h"
#include "state/numtext.h"

namespace tessiva {

void ReadFormingLimitCurve(AppState& s) {
  s.ClfXMin = -10;
  s.ClfXMax = 10;
  s.ClfYMin = -15;
  s.ClfYMax = 25;
  s.ClfNumber = std::clamp(GetPrivateProfileIntA("CLFSEC", "NUMBER", 0, s.IniPath), 0, 10000);
  s.ClfX.assign(static_cast<size_t>(s.ClfNumber) + 1, 0);
  s.ClfY.assign(static_cast<size_t>(s.ClfNumber) + 1, 0);
  for (int32_t i = 1; i <= s.ClfNumber; ++i) {
    const int32_t x = GetPrivateProfileIntA("CLFSEC", "X" + StrTrim(i), 0, s.IniPath);
    const int32_t y = GetPrivateProfileIntA("CLFSEC", "Y" + StrTrim(i), 0, s.IniPath);
    s.ClfX[static_cast<size_t>(i)] = x;
    s.ClfY[static_cast<size_t>(i)] = y;
    s.ClfXMin = std::min(s.ClfXMin, x);
    s.ClfXMax = std::max(s.ClfXMax, x);
    s.ClfYMin = std::min(s.ClfYMin, y);
    s.ClfYMax = std::max(s.ClfYMax, y);
  }
}

bool MDIForm1::Load(const std::string& startDir, int screenWidth, int screenHeight) {
  ControlRegistry& frame = ui_.Frame();
  s_.Klarg = 3.0;
  s_.FormatLong = "00.000E+00;-00.00E+00;0.00000000";
  s_.FormatShort = "##0.0000";
  s_.Title = kProgramTitle;
  frame.SetText("MDIForm1", s_.Title);
  s_.StartDir = startDir;
  s_.AreaOpen = false;
  s_.AnalyseOpen = false;
  s_.DeformScale = 10.0;
  s_.Pi = 4.0 * std::atan(1.0);
  s_.IniPath = JoinPath(s_.StartDir, "correl.ini");

  const std::string lastDir = ReadKeyText("PATH", "LastDir", s_.IniPath);
  s_.LastDir = lastDir != kNotFound ? lastDir : s_.StartDir;
  const std::string exePath = ReadKeyText("PATH", "ExePath", s_.IniPath);
  if (exePath == kNotFound) {
    ui_.MessageBox("Please, verify ExePath variable in 'correl.ini' file", "", MsgButtons::Ok, MsgIcon::None);
    ui_.EndProgram(1);
    return false;
  }
  s_.ExePath = exePath;
  s_.ClfMode = GetPrivateProfileIntA("CLFSEC", "CLF", -2, s_.IniPath) != 0;
  ui_.StatusLine(kStartMessage);
  frame.SetBounds("MDIForm1", (screenWidth - kStartWidth) / 2, (screenHeight - kStartHeight) / 2, kStartWidth,
                  kStartHeight);
  UnloadTools();
  frame.SetVisible("Pub", true);
  return true;
}

bool MDIForm1::ConfirmDiscardDataInput() {
  if (!s_.AreaOpen) return true;
  if (ui_.MessageBox("Do you really want to erase the previous data input ?", "WARNING", MsgButtons::YesNo,
                     MsgIcon::Question) != MsgAnswer::Yes)
    return false;
  s_.AreaOpen = false;
  s_.AnalyseOpen = false;
  return true;
}

void MDIForm1::UnloadTools() {
  for (const char* form : {"ManageJobs", "Param", "NewAnalyse", "AreaForm", "MiseEnDonne"})
    ui_.Frame().SetVisible(form, false);
}

void MDIForm1::OnCommand1(int index) {
  if (!ConfirmDiscardDataInput()) return;
  switch (index) {
    case kInputData:
    case kManageJobs:
      s_.AnalyseOpen = false;
      s_.AreaOpen = false;
      UnloadTools();
      ui_.Frame().SetVisible(index == kInputData ? "MiseEnDonne" : "ManageJobs", true);
      break;
    case kAnalyse:
      s_.AreaOpen = false;
      UnloadTools();
      OpenAnalyse();
      break;
    default:
      break;
  }
}

void MDIForm1::OpenAnalyse() {
  const FileDialogResult chosen = ui_.OpenFileDialog({.initialDir = s_.LastDir,
                                                      .defaultExt = "res",
                                                      .filter = "Data|*.res|Sequence|*.seq",
                                                      .title = "Reading result file or sequence file",
                                                      .multiSelect = true});
  if (chosen.FileName.empty()) {
    s_.AnalyseOpen = false;
    return;
  }
  s_.FileName = chosen.FileName;
  s_.FileTitle = chosen.FileTitle;
  RememberLastDir(s_, ChosenDirectory(chosen));
  s_.AnalyseOpen = true;
  ui_.Frame().SetVisible("NewAnalyse", true);
}

std::string ChosenDirectory(const FileDialogResult& chosen) {
  const size_t cut = std::min(chosen.FileName.size(), chosen.FileTitle.size() + 1);
  return chosen.FileName.substr(0, chosen.FileName.size() - cut);
}

void RememberLastDir(AppState& s, const std::string& dir) {
  s.LastDir = dir;
  WritePrivateProfileStringA("PATH", "LastDir", s.LastDir, s.IniPath);
}

void MDIForm1::OnMouseMove() { ui_.StatusLine(kStartMessage); }

void MDIForm1::OnResize(int frameWidth, int frameHeight, int clientWidth, int clientHeight) {
  ControlRegistry& frame = ui_.Frame();
  const ControlState& bounds = frame.Get("MDIForm1");
  frame.SetBounds("MDIForm1", bounds.left, bounds.top, std::max(frameWidth, kMinWidth),
                  std::max(frameHeight, kMinHeight));

  const ControlState logo = frame.Get("Picture3");
  frame.SetBounds("Picture3", frameWidth - 15 - logo.width, logo.top, logo.width, logo.height);
  const ControlState label2 = frame.Get("Label2");
  frame.SetBounds("Label2", clientWidth - 50 - label2.width, label2.top, label2.width, label2.height);
  if (frame.Visible("Pub")) {
    const ControlState pub = frame.Get("Pub");
    frame.SetBounds("Pub", (clientWidth - pub.width) / 2, (clientHeight - pub.height) / 2, pub.width, pub.height);
  }
  if (s_.AnalyseOpen) frame.SetBounds("NewAnalyse", 0, 0, clientWidth, clientHeight);
  if (s_.AreaOpen) frame.SetBounds("AreaForm", 0, 0, clientWidth, clientHeight);
}

void MDIForm1::Unload() {
  std::error_code ignored;
  std::filesystem::current_path(s_.StartDir, ignored);
  ui_.EndProgram(0);
}

}  // namespace tessiva

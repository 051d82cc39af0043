#include "frame/mdiform.h"

#include <algorithm>
#include <cmath>
#include <filesystem>

#include "state/files.h"
#include "state/keyfile.h"
#include "state/numtext.h"
#include "state/settings.h"

namespace tessiva {

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

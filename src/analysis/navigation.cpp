// The analysis window as a session over a sequence: the tool bar keys that
// move from member to member, the member list Combo4, the run over all
// members, the parameters shown as a view, the map size switch Command1 and
// the position typed in from the keyboard.
#include <cmath>
#include <string>

#include "analysis/newanalyse.h"
#include "analysis/toolbar1.h"
#include "state/numtext.h"
#include "ui/pointer.h"

namespace tessiva {
namespace {

// Command1's two captions and the zoom of each.
constexpr const char* kOneToOne = "1:1";
constexpr const char* kFitted = "1:x";
constexpr double kOneToOneZoom = 0.9;
constexpr double kFittedZoom = 1.0;

constexpr const char* kParameterFields[] = {"Text1", "Text2", "Text3", "Text4", "TextYoung", "TextPoisson"};

}  // namespace

bool NewAnalyse::OnSessionKey(const std::string& key) {
  if (key == "Parametre") {
    Parametre();
  } else if (key == "SaveAOS") {
    picking_.OnSaveAOSClick();
  } else if (key == "Initial") {
    StepTo(1);
  } else if (key == "PreviousFile") {
    StepTo(CurFile - 1);
  } else if (key == "NextFile") {
    StepTo(CurFile + 1);
  } else if (key == "Final") {
    StepTo(s_.NbSeq);
  } else if (key == "Run") {
    Run();
  } else {
    return false;
  }
  return true;
}

// A key that would stay where it is, or step past an end, does nothing.
void NewAnalyse::StepTo(int32_t index) {
  if (index != CurFile) GoToFile(index);
}

void NewAnalyse::OnCombo4Click(int32_t index) { GoToFile(index + 1); }

// Pending events run after each member, so the window shows the run going;
// a member that can't be read is told and passed over.
void NewAnalyse::Run() {
  for (int32_t i = 1; i <= s_.NbSeq; ++i) {
    GoToFile(i);
    ui_.DoEvents();
  }
  PicAnaRefresh();
}

// The analysis reads the parameters of its results; it never changes them.
void NewAnalyse::Parametre() {
  for (const char* field : kParameterFields) param_.Controls().SetEnabled(field, false);
  param_.SelectTab(1);
  ui_.Frame().SetVisible("Param", true);
}

void NewAnalyse::OnCommand1Click() {
  const bool toOneToOne = controls_.Text("Command1") == kOneToOne;
  View.Zoom = toOneToOne ? kOneToOneZoom : kFittedZoom;
  controls_.SetText("Command1", toOneToOne ? kFitted : kOneToOne);
  LayOutPicAna();
  PicAnaRefresh();
}

// The typed position, in the user's units, is released on the map with the
// left button, so a point can be placed by number.
void NewAnalyse::KeyMNU() {
  const auto typed = ui_.InputBox("Give the X, Y value of the mouse pointer", "Keyboard input", "");
  if (!typed) return;
  const std::vector<std::string> parts = SplitText(*typed, ",");
  const double x = parts.size() == 2 ? ValNorm(parts[0]) / s_.UnitPX : NAN;
  const double y = parts.size() == 2 ? ValNorm(parts[1]) / s_.UnitPY : NAN;
  if (!std::isfinite(x) || !std::isfinite(y)) {
    ui_.MessageBox("Give the X and Y values separated by a comma, such as 12.5, 40", "Keyboard input",
                   MsgButtons::Ok, MsgIcon::Exclamation);
    return;
  }
  OnPicAnaMouseUp(kLeftButton, 0, x, y);
}

}  // namespace tessiva

// The setup window's tool bars, popup menu, area set names (Combo1), extra
// values (Combo2, Text2, List2) and calibration fields.
#include <algorithm>
#include <array>
#include <cmath>

#include "setup/areafiles.h"
#include "setup/areaform.h"
#include "setup/areas.h"
#include "setup/areatoolbar.h"
#include "setup/grid.h"
#include "setup/propagation.h"
#include "setup/startsearch.h"
#include "state/index.h"
#include "state/numtext.h"

namespace tessiva {
namespace {

using B = ToolbarButton;

constexpr std::array kToolbar1{
    B{1, "", "", B::kSeparator},
    B{2, "Parametre", "Show Parameters Windows", B::kPlain},
    B{3, "", "", B::kSeparator},
    B{4, "combo1", "", B::kPlaceholder},
    B{5, "SaveAOI", "Save Area of Interest", B::kPlain},
    B{6, "", "", B::kSeparator},
    B{7, "previousdata", "Previous data file", B::kPlain},
    B{8, "text1", "", B::kPlaceholder},
    B{9, "nextdata", "Save current data file and load next data file", B::kPlain},
    B{10, "", "", B::kSeparator},
    B{11, "enddata", "Save current data file and save ALL next data files", B::kPlain},
    B{12, "FlashInfo2", "", B::kPlaceholder},
};

// Buttons 1 to 12 change areas; they are disabled while start points are given.
constexpr std::array kToolbar2{
    B{1, "allselect", "Select all of the picture", B::kPlain},
    B{2, "slider", "Take a measure between two points", B::kTool, kSliderTool},
    B{3, "jauge", "Put a linear strain gage on the picture", B::kTool, kJaugeTool},
    B{4, "rosette", "Put a rosette strain gage on the picture", B::kTool, kRosetteTool},
    B{kClfButton, "clf", "Put an area of interest for FLC", B::kTool, kClfTool},
    B{kCrackButton, "clf", "Special tool for the determination of KI", B::kTool, kClfTool},
    B{7, "trait", "Put a linear area of interest", B::kTool, kTraitTool},
    B{8, "rectangle", "Put a rectangular area of interest", B::kTool, kRectangleTool},
    B{9, "libre", "Put a free hand area of interest", B::kTool, kLibreTool},
    B{kGrilleButton, "grille", "Show pattern grid", B::kToggle},
    B{11, "trashlast", "Erase ONLY the last area of interest", B::kPlain},
    B{12, "trash", "Erase all area of interest", B::kPlain},
    B{13, "", "", B::kSeparator},
    B{14, "", "", B::kSeparator},
    B{15, "", "", B::kSeparator},
    B{16, "", "", B::kSeparator},
    B{17, "", "", B::kSeparator},
    B{18, "FlashInfo", "", B::kPlaceholder},
    B{kInitialSolutionButton, "InitialSolution", "Press to give initial solution", B::kToggle},
    B{20, "CorrelJauge", "", B::kPlaceholder},
};

// A gauge tool's code to the kind of gauge it lays.
int32_t GaugeKindOf(int32_t toolCode) {
  switch (toolCode) {
    case kJaugeTool: return kJauge;
    case kRosetteTool: return kRosette;
    default: return kSlider;
  }
}

constexpr int kKeyEnter = 13;
constexpr int kGreenField = 10, kFieldAtRest = 0;

}  // namespace

std::span<const ToolbarButton> Toolbar1Buttons() { return kToolbar1; }
std::span<const ToolbarButton> Toolbar2Buttons() { return kToolbar2; }

const ToolbarButton* Toolbar2Button(int index) {
  const auto found = std::find_if(kToolbar2.begin(), kToolbar2.end(), [index](const B& b) { return b.index == index; });
  return found == kToolbar2.end() ? nullptr : &*found;
}

std::string Toolbar1Control(std::string_view key) { return "Toolbar1." + std::string(key); }
std::string Toolbar2Control(int index) {
  return index == kInitialSolutionButton ? "Toolbar2.InitialSolution" : "Toolbar2.Button" + std::to_string(index);
}

void AreaForm::InitToolbar() {
  for (const B& b : kToolbar2)
    if (b.kind == B::kTool || b.kind == B::kToggle) controls_.SetChecked(Toolbar2Control(b.index), false);
  controls_.SetEnabled(Toolbar2Control(kInitialSolutionButton), false);
  for (const char* key : {"previousdata", "nextdata", "enddata"}) controls_.SetEnabled(Toolbar1Control(key), false);
  for (const char* timer : {"Timer1", "Timer2"}) controls_.SetChecked(timer, false);
  for (const char* hand : {"FlashInfo", "FlashInfo2"}) controls_.SetVisible(hand, false);
  controls_.SetChecked("AutoSearchMNU", true);
  ToolCode = kNoTool;
}

void AreaForm::OnToolbar1Click(const std::string& key) {
  if (key == "Parametre") {
    setup::Parametre(*this);
  } else if (key == "SaveAOI") {
    SaveAOIByName(*this, AoiNames);
  } else if (key == "previousdata") {
    PreviousData();
  } else if (key == "nextdata") {
    NextData();
  } else if (key == "enddata") {
    EndData();
  }
}

void AreaForm::OnToolbar2Click(int index) {
  const ToolbarButton* button = Toolbar2Button(index);
  if (!button) return;
  const bool pressed = controls_.Checked(Toolbar2Control(index));
  if (button->kind == B::kTool) {
    PressTool(index);
  } else if (index == kGrilleButton) {
    setup::ShowGrid(*this, pressed);
  } else if (index == kInitialSolutionButton) {
    OnInitialSolution(pressed);
  } else if (button->key == "allselect") {
    setup::AllSelect(*this);
  } else if (button->key == "trashlast") {
    setup::TrashLast(*this);
  } else if (button->key == "trash") {
    setup::Trash(*this);
  }
}

// A tool of the group: the one pressed raises the others; raising it leaves no tool.
// A shape left half drawn by the tool before is dropped.
void AreaForm::PressTool(int index) {
  const ToolbarButton& button = *Toolbar2Button(index);
  const bool pressed = controls_.Checked(Toolbar2Control(index));
  for (const B& b : kToolbar2)
    if (b.kind == B::kTool && b.index != index) controls_.SetChecked(Toolbar2Control(b.index), false);
  engine_.tools = {};
  ToolCode = pressed ? button.toolCode : kNoTool;
  CrackTool = pressed && index == kCrackButton;
  GaugeKind = GaugeKindOf(ToolCode);
  HideRubbers();
}

void AreaForm::OnInitialSolution(bool pressed) {
  if (pressed) {
    for (const B& b : kToolbar2)
      if (b.kind == B::kTool) controls_.SetChecked(Toolbar2Control(b.index), false);
    ToolCode = kNoTool;
    engine_.tools = {};
    controls_.SetChecked("Timer1", false);
    controls_.SetVisible("FlashInfo", false);
    controls_.SetChecked("Timer2", false);
    controls_.SetVisible("FlashInfo2", false);
    controls_.SetEnabled(Toolbar1Control("nextdata"), false);
    controls_.SetEnabled(Toolbar1Control("enddata"), false);
    setup::EnableAreaTools(*this, false);
    AreAPicRefRefresh();
    AreAPicDefRefresh();
    return;
  }
  if (s_.NbStart == 0) {
    setup::EnableAreaTools(*this, true);
    return;
  }
  if (ui_.MessageBox("Do you accept to delete all initial solution ?", "", MsgButtons::YesNo, MsgIcon::Question) !=
      MsgAnswer::Yes) {
    controls_.SetChecked(Toolbar2Control(kInitialSolutionButton), true);
    return;
  }
  setup::DeleteSoluIni(*this);
  AreAPicRefRefresh();
  AreAPicDefRefresh();
}

void AreaForm::OnMenuClick(const std::string& item) {
  if (item == "AutoSearchMNU") setup::AutoSearchMNU(*this);
  if (item == "ShowBestMNU") setup::ShowBestMNU(*this);
}

// ---- Combo1: the stored area sets ---------------------------------------------

void AreaForm::OnCombo1Click(int32_t position) {
  if (position < 1 || position > AoiNames.AreaCount) return;
  controls_.SetEnabled("Toolbar1", false);
  LecAOI(*this, AoiNames.AreaNames[At(position)]);
  controls_.SetEnabled("Toolbar1", true);
}

void AreaForm::OnCombo1KeyPress(int keyAscii) {
  if (keyAscii == kKeyEnter) SaveAOIByName(*this, AoiNames);
}

void AreaForm::OnCombo1Delete(int32_t position) {
  if (position < 1 || position > AoiNames.AreaCount) return;
  RemoveAOIName(*this, AoiNames, position);
  DeleteAOI();
  AreAPicRefRefresh();
  AreAPicDefRefresh();
}

// ---- Combo2, Text2 and List2: the extra values --------------------------------

void AreaForm::OnCombo2Click(int32_t position) {
  const std::vector<std::string>& values = controls_.Get("List2").items;
  if (position >= 1 && At(position) <= values.size()) controls_.SetText("Text2", values[At(position) - 1]);
}

// A new name typed in Combo2 joins the list with the value "*", and Text2
// waits for its value, in green.
void AreaForm::OnCombo2KeyPress(int keyAscii) {
  if (keyAscii != kKeyEnter) return;
  const std::string name = Trim(controls_.Text("Combo2"));
  const std::vector<std::string>& names = controls_.Get("Combo2").items;
  if (name.empty() || std::find(names.begin(), names.end(), name) != names.end()) return;
  controls_.AddItem("Combo2", name);
  controls_.AddItem("List2", "*");
  controls_.SetText("Text2", "");
  controls_.SetForeColor("Text2", kGreenField);
}

void AreaForm::OnText2KeyPress(int keyAscii) {
  if (keyAscii != kKeyEnter) return;
  controls_.SetForeColor("Text2", kFieldAtRest);
  const std::string name = Trim(controls_.Text("Combo2"));
  if (name.empty()) return;
  std::vector<std::string> names = controls_.Get("Combo2").items;
  std::vector<std::string> values = controls_.Get("List2").items;
  values.resize(names.size(), "*");
  const auto found = std::find(names.begin(), names.end(), name);
  const auto position = static_cast<size_t>(found - names.begin());
  if (found == names.end()) {
    names.push_back(name);
    values.push_back("");
  }
  values[position] = controls_.Text("Text2");
  controls_.SetItems("Combo2", std::move(names));
  controls_.SetItems("List2", std::move(values));
}

void AreaForm::OnCombo2Delete(int32_t position) {
  std::vector<std::string> names = controls_.Get("Combo2").items;
  std::vector<std::string> values = controls_.Get("List2").items;
  if (position < 1 || At(position) > names.size()) return;
  names.erase(names.begin() + position - 1);
  if (At(position) <= values.size()) values.erase(values.begin() + position - 1);
  controls_.SetItems("Combo2", std::move(names));
  controls_.SetItems("List2", std::move(values));
  controls_.SetText("Combo2", "");
  controls_.SetText("Text2", "");
}

// ---- Calibration -------------------------------------------------------------

// A scale of 0 (or one that isn't a number) would collapse every length the
// window shows, so it is stored as 1.
void AreaForm::OnUnitChange(const std::string& field) {
  const std::string& text = controls_.Text(field);
  if (field == "UnitX") s_.UnitNameX = text;
  if (field == "UnitY") s_.UnitNameY = text;
  if ((field != "UnitPixX" && field != "UnitPixY") || Trim(text).empty()) return;
  double scale = ValNorm(text);
  if (scale == 0.0 || !std::isfinite(scale)) scale = 1.0;
  (field == "UnitPixX" ? s_.UnitPX : s_.UnitPY) = scale;
}

}  // namespace tessiva

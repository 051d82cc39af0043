#include "setup/param.h"

#include "state/numtext.h"
#include "state/parameters.h"

namespace tessiva {
namespace {

constexpr int kYellow = 14;
constexpr int kBlack = 0;
constexpr int kEnter = 13;

constexpr const char* kTextFields[] = {"Text1", "Text2", "Text3", "Text4", "TextYoung", "TextPoisson"};
constexpr const char* kChoices[] = {"Option1(0)", "Option1(1)", "Option2(0)", "Option2(1)", "Check1"};

int32_t WholeValue(const ControlRegistry& c, const char* field) { return RoundToInt32(ValNorm(c.Text(field))); }

}  // namespace

Param::Param(AppState& state) : s_(state) { ShowState(); }

bool Param::Changed(const char* field) const {
  const auto shown = shown_.find(field);
  if (shown == shown_.end()) return true;
  const ControlState& now = controls_.Get(field);
  return now.text != shown->second.text || now.checked != shown->second.checked;
}

void Param::ShowState() {
  controls_.SetText("Text1", Str(s_.LpatMin));
  controls_.SetText("Text2", Str(s_.LpatMax));
  controls_.SetText("Text3", Str(s_.Lgrid));
  controls_.SetText("Text4", Str(s_.Precision));
  controls_.SetText("TextYoung", Str(s_.Young));
  controls_.SetText("TextPoisson", Str(s_.Poisson));
  controls_.SetChecked("Option1(1)", s_.Interpolation != 0);
  controls_.SetChecked("Option1(0)", s_.Interpolation == 0);
  controls_.SetChecked("Option2(1)", s_.Correlation != 0);
  controls_.SetChecked("Option2(0)", s_.Correlation == 0);
  controls_.SetChecked("Check1", s_.LargeStrain != 0);
  for (const char* field : kTextFields) shown_[field] = controls_.Get(field);
  for (const char* choice : kChoices) shown_[choice] = controls_.Get(choice);
}

void Param::ParamRead() {
  if (Changed("Text1")) s_.LpatMin = WholeValue(controls_, "Text1");
  if (Changed("Text2")) s_.LpatMax = WholeValue(controls_, "Text2");
  if (Changed("Text4")) s_.Precision = WholeValue(controls_, "Text4");
  ClampPatternSizesAndPrecision(s_);
  if (Changed("Text3")) s_.Lgrid = WholeValue(controls_, "Text3");
  ClampGridStep(s_);
  if (Changed("Option1(0)") || Changed("Option1(1)")) s_.Interpolation = controls_.Checked("Option1(0)") ? 0 : 1;
  if (Changed("Option2(0)") || Changed("Option2(1)")) s_.Correlation = controls_.Checked("Option2(0)") ? 0 : 1;
  if (Changed("Check1")) s_.LargeStrain = controls_.Checked("Check1") ? 1 : 0;
  if (Changed("TextYoung")) s_.Young = ValNorm(controls_.Text("TextYoung"));
  if (Changed("TextPoisson")) s_.Poisson = ValNorm(controls_.Text("TextPoisson"));
  DeriveSteps(s_);
  ShowState();
}

void Param::ParamShow() {
  if (Changed("Text4")) s_.Precision = WholeValue(controls_, "Text4");
  ClampParameters(s_);
  ShowState();
}

void Param::OnTextChange(const std::string& field) { controls_.SetForeColor(field, kYellow); }

void Param::ResetFieldColours(std::initializer_list<const char*> fields) {
  for (const char* f : fields) controls_.SetForeColor(f, kBlack);
}

void Param::OnTextKeyPress(const std::string& field, int keyAscii) {
  if (keyAscii != kEnter) return;
  if (field == "TextYoung" || field == "TextPoisson") {
    ResetFieldColours({"TextYoung", "TextPoisson"});
    ParamRead();
    return;
  }
  ResetFieldColours({"Text1", "Text2", "Text3", "Text4"});
  ParamRead();
  if (field == "Text3") {
    AllocPat(s_);
    if (onGridStepChanged) onGridStepChanged();
  }
}

void Param::SelectTab(int tab) {
  controls_.Update("SSTab1", [tab](ControlState& c) { c.listIndex = tab; });
}

}  // namespace tessiva

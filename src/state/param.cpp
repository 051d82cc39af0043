#include "state/param.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "state/numtext.h"

namespace tessiva {
namespace {

constexpr int kYellow = 14;
constexpr int kBlack = 0;
constexpr int kEnter = 13;

int32_t WholeValue(const ControlRegistry& c, const char* field) { return RoundToInt32(ValNorm(c.Text(field))); }

}  // namespace

int64_t PatternCapacity(int32_t lima, int32_t hima, int32_t lpas) {
  if (lima <= 0 || hima <= 0 || lpas <= 0) return 0;
  return static_cast<int64_t>(Round(static_cast<double>(hima) / lpas * (static_cast<double>(lima) / lpas)));
}

void AllocPat(AppState& s) {
  s.NbPatMax = ClampToInt32(static_cast<double>(PatternCapacity(s.Lima, s.Hima, s.Lpas)));
  const int32_t half = RoundToInt32(s.NbPatMax / 2.0);
  const double side = std::sqrt(static_cast<double>(s.NbPatMax)) + 2.0;
  s.NbNoeudsMax = RoundToInt32(side * side);
  const size_t n = static_cast<size_t>(s.NbPatMax) + 1;
  s.XPat.assign(n, 0);
  s.YPat.assign(n, 0);
  s.BadPat.assign(static_cast<size_t>(half) + 1, 0);
  for (std::vector<int32_t>* a : {&s.FlagPat, &s.Res1Pat, &s.Res2Pat}) a->assign(n, 0);
  for (std::vector<double>* a : {&s.D1Pat, &s.D2Pat, &s.AuPat, &s.BuPat, &s.CuPat, &s.DuPat, &s.AvPat, &s.BvPat,
                                 &s.CvPat, &s.DvPat, &s.Res3Pat, &s.NormPat})
    a->assign(n, 0.0);
  s.Mailles.assign(n, MeshCell{});
  s.Noeuds.assign(static_cast<size_t>(s.NbNoeudsMax) + 1, MeshNode{});
}

void AllocPatAndPictures(AppState& s) {
  AllocPat(s);
  s.PixRef.Allocate(s.Lima, s.Hima);
  s.PixDef.Allocate(s.Lima, s.Hima);
}

void Param::ClampPatternSizesAndPrecision() {
  if (s_.LpatMin > s_.LpatMax) std::swap(s_.LpatMin, s_.LpatMax);
  if (s_.LpatMin < 6) s_.LpatMin = 6;
  if (s_.LpatMax > 32) s_.LpatMax = 32;
  controls_.SetText("Text1", Str(s_.LpatMin));
  controls_.SetText("Text2", Str(s_.LpatMax));
  if (s_.Precision < 1 || s_.Precision > 1001) s_.Precision = 100;
  controls_.SetText("Text4", Str(s_.Precision));
  s_.Lpat = s_.LpatMin;
}

void Param::ClampGridStep() {
  s_.Lgrid = std::clamp(s_.Lgrid, 2, 20);
  controls_.SetText("Text3", Str(s_.Lgrid));
}

void Param::DeriveSteps() {
  s_.LgridBy4 = s_.Lgrid * 4;
  s_.Lpas = 2 * (s_.Lgrid / 2);
}

void Param::ParamRead() {
  s_.LpatMin = WholeValue(controls_, "Text1");
  s_.LpatMax = WholeValue(controls_, "Text2");
  s_.Precision = WholeValue(controls_, "Text4");
  ClampPatternSizesAndPrecision();
  s_.Lgrid = WholeValue(controls_, "Text3");
  ClampGridStep();
  s_.Interpolation = controls_.Checked("Option1(0)") ? 0 : 1;
  s_.Correlation = controls_.Checked("Option2(0)") ? 0 : 1;
  s_.LargeStrain = controls_.Checked("Check1") ? 1 : 0;
  s_.Young = ValNorm(controls_.Text("TextYoung"));
  s_.Poisson = ValNorm(controls_.Text("TextPoisson"));
  DeriveSteps();
}

void Param::ParamShow() {
  s_.Precision = WholeValue(controls_, "Text4");
  ClampPatternSizesAndPrecision();
  s_.LpatEven = 2 * (s_.LpatMin / 2);
  ClampGridStep();
  controls_.SetChecked("Option1(1)", s_.Interpolation != 0);
  controls_.SetChecked("Option1(0)", s_.Interpolation == 0);
  controls_.SetChecked("Option2(1)", s_.Correlation != 0);
  controls_.SetChecked("Option2(0)", s_.Correlation == 0);
  controls_.SetChecked("Check1", s_.LargeStrain != 0);
  controls_.SetText("TextYoung", Str(s_.Young));
  controls_.SetText("TextPoisson", Str(s_.Poisson));
  DeriveSteps();
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

#include "analysis/newanalyse.h"

#include <algorithm>
#include <string>

#include "results/scale.h"
#include "results/strains.h"
#include "state/files.h"
#include "state/numtext.h"
#include "ui/pointer.h"

namespace tessiva {

void NewAnalyse::MinMaxDeformation() {
  BusyPointer busy(ui_);
  ui_.DoEvents();
  if (Ranges.MaxU == kNoData || Ranges.MaxV == kNoData) return;
  CalculDeformations(s_, StrainOptions{bInitial, ShowBad(), &Distor});
  RangesOfDeformation();
}

void NewAnalyse::OnOkDistorClick(bool checked) {
  Distor.DistorOn = checked ? -1 : 0;
  controls_.SetChecked("OkDistor", checked);
  if (checked) {
    FileDialogRequest request;
    request.initialDir = s_.LastDir;
    request.defaultExt = "res";
    request.title = "Result for distorsion correction";
    const FileDialogResult chosen = ui_.OpenFileDialog(request);
    // The dialog hands back its "*.res" pattern when cancelled.
    if (chosen.FileName.empty() || chosen.FileName == "*.res") {
      controls_.SetChecked("OkDistor", false);
      Distor.DistorOn = 0;
    } else {
      controls_.SetText("OkDistor", FileNameOf(chosen.FileName));
      LecDistor(Distor, s_, ui_, chosen.FileName);
    }
  }
  MinMaxDeplacement();
  MinMaxDeformation();
  PicAnaRefresh();
}

void NewAnalyse::ShowInfo() { ui_.Frame().SetVisible("Info", true); }

void NewAnalyse::MinMaxDeplacement() {
  BusyPointer busy(ui_);
  if (KeepMinMax) return;
  SearchDisplacementRanges(s_, RangeSettingsNow(), Ranges, StoredRanges);
}

void NewAnalyse::RangesOfDeformation() {
  if (KeepMinMax) return;
  SearchStrainRanges(s_, RangeSettingsNow(), Ranges, StoredRanges);
}

RangeSettings NewAnalyse::RangeSettingsNow() const {
  return {SubMean(), bInitial, &Distor, Teta1, Cos2Teta, Sin2Teta, AutoMinMax};
}

ViewRange NewAnalyse::CurrentRange(int32_t view) { return RangeOfView(view, Ranges, s_.EcartMax, s_.EcartMin); }

void NewAnalyse::RestoreStoredRange(int32_t view) {
  const ViewRange stored = RangeOfView(view, StoredRanges, s_.EcartMaxStored, s_.EcartMinStored);
  const ViewRange current = CurrentRange(view);
  if (!stored.max) return;
  *current.max = *stored.max;
  *current.min = *stored.min;
}

void NewAnalyse::AfficheEchelleNew() {
  if (IsoPic) PaintColourBar(*IsoPic, Palette, VScroll1, StyleColorIdx);
}

// The range stands until the next search. A cancelled box changes nothing.
void NewAnalyse::LabEchelle(int index) {
  if (index != 0 && index != 4) return;
  const ViewRange range = CurrentRange(VueCourante);
  if (!range.max) return;
  const bool minimum = index == 0;
  double& limit = minimum ? *range.min : *range.max;
  const double unit = DisplayUnit(VueCourante, s_.UnitPX, s_.UnitPY);
  const auto answer =
      ui_.InputBox(minimum ? "Give a new minimum value" : "Give a new maximum value", "", StrTrim(limit * unit));
  if (!answer) return;
  const double typed = ValNorm(*answer) / unit;
  if (minimum ? typed < *range.max : typed > *range.min) limit = typed;
  PicAnaRefresh();
}

void NewAnalyse::OptionMinMax(int index) {
  if (index < 0 || index > 2) return;
  const auto select = [this](int chosen) {
    for (int i = 0; i <= 2; ++i) controls_.SetChecked("OptionMinMax(" + std::to_string(i) + ")", i == chosen);
  };
  if (KeepMinMax && ui_.MessageBox("Do you really want to reinitialize min/max values  ?", "WARNING",
                                   MsgButtons::YesNo, MsgIcon::Question) != MsgAnswer::Yes) {
    select(1);
    return;
  }
  select(index);
  KeepMinMax = index == 1;
  AutoMinMax = index == 2;
  if (index == 0) {
    RestoreStoredRange(VueCourante);
    // The Isostatic view draws the Teta directions coloured by Tresca: both come back.
    if (VueCourante == kViewTresca) RestoreStoredRange(kViewTeta);
  }
  if (index != 1) {
    MinMaxDeplacement();
    MinMaxDeformation();
  }
  PicAnaRefresh();
}

void NewAnalyse::StyleColor(int index) {
  StyleColorIdx = index;
  AfficheEchelleNew();
  PicAnaRefresh();
}

void NewAnalyse::OnIsoPicMouseDown(int button, double x) {
  if (button == kLeftButton) ShowIsoPointer(x);
}

void NewAnalyse::OnIsoPicMouseMove(int button, double x) {
  if (button == kLeftButton) ShowIsoPointer(x);
}

// The distribution line over the bar takes its height from HistoMax, except
// in the mesh and vector views, which draw none.
void NewAnalyse::OnIsoPicMouseUp(int button) {
  if (button != kLeftButton) return;
  controls_.SetVisible("IsoLine", false);
  controls_.SetVisible("IsoLabel", false);
  if (VueCourante != kViewDeformedMesh && VueCourante != kViewVectors)
    HistoMax = *std::max_element(Histo.begin(), Histo.end());
}

// The line stands at x and its label beside it, kept inside the bar: past
// the right end it moves to the left of the line.
void NewAnalyse::ShowIsoPointer(double x) {
  const ViewRange range = CurrentRange(VueCourante);
  if (!IsoPic || !range.max) return;
  const double width = IsoPic->ScaleWidth();
  IsoCourante = IsoValue(x / width, *range.max, *range.min, DisplayUnit(VueCourante, s_.UnitPX, s_.UnitPY));
  const std::string text = Format(IsoCourante, "0.00E+0");
  const double labelWidth = IsoPic->TextWidth(text);
  const double labelLeft = x + labelWidth > width ? x - (labelWidth + 1) : x;
  const auto pixelX = [this](double at) { return RoundToInt32(IsoPic->ToPixelX(at)); };
  controls_.SetText("IsoLabel", text);
  controls_.SetBounds("IsoLine", pixelX(x), 0, 1, IsoPic->PixelHeight());
  controls_.SetBounds("IsoLabel", pixelX(labelLeft), 0, pixelX(labelLeft + labelWidth) - pixelX(labelLeft),
                      RoundToInt32(IsoPic->TextHeight(text) * IsoPic->PixelHeight() / IsoPic->ScaleHeight()));
  controls_.SetVisible("IsoLine", true);
  controls_.SetVisible("IsoLabel", true);
}
// Filled in with the stress intensity analysis.
void NewAnalyse::CalculKI() {}
// Filled in with the stress intensity analysis.
void NewAnalyse::AfficheKI(bool) {}
// Filled in with the areas of selection and the gauges.
void NewAnalyse::AfficheEtTraiteAOS(bool) {}
// Filled in with the field maps.
void NewAnalyse::PicAnaRefresh() {}
// Filled in with the analysis window's layout.
void NewAnalyse::LayOutPicAna() {}

}  // namespace tessiva

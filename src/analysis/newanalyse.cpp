#include "analysis/newanalyse.h"

#include <algorithm>
#include <string>

#include "analysis/analysisfiles.h"
#include "analysis/capture.h"
#include "analysis/fieldlist.h"
#include "results/meshdraw.h"
#include "results/resultfile.h"
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

void NewAnalyse::ShowInfo() { Info.Show(ui_); }

void NewAnalyse::OnInfoClose() { picking_.CloseInfo(); }

bool NewAnalyse::OnToolbar1Click(const std::string& key) {
  if (picking_.OnToolbarKey(key) || OnSessionKey(key)) return true;
  if (key == "Film" || key == "Film2") {
    if (Captures) key == "Film" ? Film(*this, *Captures) : static_cast<void>(Film2(*this, *Captures));
    return true;
  }
  if (key != "CLF") return false;
  ArmSectionTool(s_.FissureOn ? SectionKind::Crack : picking_.SectionTool);
  return true;
}

void NewAnalyse::ArmSectionTool(SectionKind kind) { picking_.ArmSection(kind); }

void NewAnalyse::OnPicAnaKey(char key) {
  if (picking_.PickTool == kPickSection && picking_.SectionTool == SectionKind::Crack) Crack.OnToolKey(key);
}

// The lens takes a press with the control key; a new axis 1, while one is
// asked for, takes the left button before any picking tool.
void NewAnalyse::OnPicAnaMouseDown(int button, int shift, double x, double y) {
  if (Loupe.MouseDown(button, shift, x, y)) return;
  if (Axes.AxisPick && button == kLeftButton && !(shift & kShiftKey)) {
    Axes.MouseDown(Round(x), Round(y));
    return;
  }
  picking_.MouseDown(button, shift, x, y);
}

void NewAnalyse::OnPicAnaMouseMove(int button, int shift, double x, double y) {
  if (Loupe.MouseMove(x, y)) return;
  if (Axes.AxisPick) Axes.MouseMove(button, Round(x), Round(y));
  if (picking_.PickTool == kPickIdle) {
    OnPicAnaMouseMove(x, y);
  } else {
    picking_.MouseMove(button, shift, x, y);
  }
}

std::optional<PicAnaMenu> NewAnalyse::OnPicAnaMouseUp(int button, int shift, double x, double y) {
  if (Loupe.MouseUp(x, y)) return std::nullopt;
  if (Axes.AxisPick && button == kLeftButton) {
    Axes.MouseUp(Round(x), Round(y));
    return std::nullopt;
  }
  if (VueCourante == kViewFlcDiagram && button == kLeftButton && !(shift & kShiftKey)) Flc.OnDiagramClick(x, y);
  return picking_.MouseUp(button, shift, x, y);
}

void NewAnalyse::AfterFileChange() {
  if (s_.FissureOn) {
    CalculKI();
    AfficheKI(false);
  }
  if (VueCourante == kViewFlcDetermination) {
    Flc.OnFileChanged();
    PicAnaRefresh();
    return;
  }
  if (!picking_.OnFileChanged()) PicAnaRefresh();
}

bool NewAnalyse::GoToFile(int32_t index) {
  if (index < 1 || index > s_.NbSeq) return false;
  BusyPointer busy(ui_);
  CurFile = index;
  const bool read = LecRes(*this, index, true);
  if (read) AfterFileChange();
  controls_.Update("Combo4", [index](ControlState& c) { c.listIndex = index - 1; });
  return read;
}

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
void NewAnalyse::CalculKI() { Crack.CalculKI(); }
void NewAnalyse::AfficheKI(bool showHead) { Crack.AfficheKI(showHead); }
void NewAnalyse::AfficheEtTraiteAOS(bool showHead) { picking_.AfficheEtTraiteAOS(showHead); }
void NewAnalyse::AfficheCLF(int32_t view) { Flc.AfficheCLF(view); }
// PicAna takes the size of the picture at the view's zoom; its scroll view shows what fits.
void NewAnalyse::LayOutPicAna() {
  const AnalysisPicture& picture = OnFinal() ? PicAnaTemp2 : PicAnaTemp;
  controls_.SetBounds("PicAna", 0, 0, std::max(1, RoundToInt32(picture.Width() * View.Zoom)),
                      std::max(1, RoundToInt32(picture.Height() * View.Zoom)));
}

namespace {

constexpr const char* kSmoothings[] = {"2", "3", "4", "5", "6", "8", "10"};
constexpr Colour kMedianColour = 0xFA0A96;  // RGB(250, 10, 150)
constexpr int kIsoValueColour = 12;
constexpr int kBarGrey = 8;
constexpr int kWindowColour = 15;
constexpr const char* kNoValidData = "No valid pattern in this result";

// The view of each kind of AfficheDuDv.
constexpr int32_t kDuDvViews[] = {kViewU, kViewV, kViewNorm, kViewEcart};
// A range of zero width is opened downwards by this much before a map.
constexpr double kMapOpening = 0.00001;

}  // namespace

void NewAnalyse::InitToolbar() {
  std::vector<std::string> fields;
  for (const FieldEntry& entry : FieldEntries()) fields.emplace_back(entry.listText);
  controls_.SetItems("Combo2", std::move(fields));
  controls_.SetItems("SmoothCombo", {std::begin(kSmoothings), std::end(kSmoothings)});
  controls_.SetText("SmoothCombo", kSmoothings[0]);
  controls_.SetChecked("PictureShow", true);
  controls_.SetChecked("Option3(1)", true);
  controls_.SetChecked("Option2(0)", true);
  controls_.SetChecked("OptionMinMax(0)", true);
  controls_.SetText("TextMagni", "1");
  controls_.SetText("Command1", "1:1");
}

void NewAnalyse::Load() {
  Axes.Load();
  bInitial = true;
  View.Zoom = 1.0;
  picking_.PickTool = kPickIdle;
  InitToolbar();
  picking_.InitAOS();
  LecSeqResults(s_, ui_, controls_);
  CurFile = 1;
  controls_.Update("Combo4", [](ControlState& c) { c.listIndex = 0; });
  VueCourante = kViewU;
  controls_.Update("Combo2", [](ControlState& c) { c.listIndex = 0; });
  ShowViewTexts();
  controls_.SetChecked("Timer1", true);
}

void NewAnalyse::OnTimer1() {
  if (!controls_.Checked("Timer1")) return;
  controls_.SetChecked("Timer1", false);
  LecRes(*this, CurFile, false);
  PicAnaRefresh();
}

void NewAnalyse::OnCombo2Click(int32_t index) {
  const FieldEntry* entry = FieldAt(index);
  if (!entry) return;
  if (index == kFlcDeterminationEntry && !s_.ClfMode) {
    ui_.MessageBox("Sorry this option is not available with this results file", "", MsgButtons::Ok,
                   MsgIcon::Information);
    controls_.Update("Combo2", [this](ControlState& c) { c.listIndex = FieldIndexOfView(VueCourante).value_or(0); });
    return;
  }
  DeleteAOS(s_, "temp");
  controls_.Update("Combo2", [index](ControlState& c) { c.listIndex = index; });
  // A rule shows nothing: the field stays, the tools are disarmed all the same.
  constexpr int32_t kNoView = -1;
  if (entry->view) VueCourante = *entry->view;
  picking_.OnFieldChanged(entry->view.value_or(kNoView));
  Flc.OnFieldChosen(VueCourante);
  PicAnaRefresh();
}

void NewAnalyse::OnPicAnaMouseMove(double x, double y) {
  std::string text = "X=" + Format(x * s_.UnitPX, "0.000") + " Y=" + Format(y * s_.UnitPY, "0.000");
  const double value = DonneIso(x, y, VueCourante);
  const FieldEntry* entry = FieldAt(FieldIndexOfView(VueCourante).value_or(-1));
  if (value != kFenceValue && entry && VueCourante != kViewDeformedMesh && VueCourante != kViewVectors)
    text += "  " + std::string(entry->listText) + "=" + Format(value * DisplayUnit(VueCourante, s_.UnitPX, s_.UnitPY), "0.000E+0");
  ui_.StatusPos(text);
}

double NewAnalyse::DonneIso(double x, double y, int32_t view, bool turned) const {
  return tessiva::DonneIso(s_, FieldSettingsNow(), x, y, view, turned);
}

FieldSettings NewAnalyse::FieldSettingsNow() const {
  return {ShowBad(), SubMean(), bInitial, &Distor, Teta1, Cos2Teta, Sin2Teta};
}

MapOptions NewAnalyse::MapOptionsNow() const {
  const int32_t smooth = controls_.Checked("Interpolation") ? RoundToInt32(ValNorm(controls_.Text("SmoothCombo"))) : 1;
  return {std::max(1, smooth), OnFinal(), StyleColorIdx};
}

void NewAnalyse::ShowViewTexts() {
  const FieldEntry* entry = FieldAt(FieldIndexOfView(VueCourante).value_or(-1));
  if (!entry) return;
  const UnitNames units{s_.UnitNameX, s_.UnitNameY, UniteLabels[4].empty() ? s_.UnitNameX : UniteLabels[4]};
  const std::string title = FieldTitle(*entry, units);
  controls_.SetText("Titre", title);
  controls_.SetText("CadreIso", ScaleCaption(*entry, units));
  ui_.StatusLine(title);
  PlaceReferenceBox();
}

// The reference box frames this file's patterns with their half cells. The
// running extent XPatMin..XPatMax can't serve: it starts at 0 and only grows.
void NewAnalyse::PlaceReferenceBox() {
  const int32_t count = PatternsHeld(s_);
  if (count < 1) return;
  const auto [left, right] = std::minmax_element(s_.XPat.begin() + 1, s_.XPat.begin() + 1 + count);
  const auto [top, bottom] = std::minmax_element(s_.YPat.begin() + 1, s_.YPat.begin() + 1 + count);
  const double h = HalfCell(s_);
  controls_.SetBounds("ReferenceBox", RoundToInt32(*left - h), RoundToInt32(*top - h),
                      RoundToInt32(*right - *left + 2 * h), RoundToInt32(*bottom - *top + 2 * h));
  controls_.SetVisible("ReferenceBox", controls_.Checked("ShowReference"));
}

void NewAnalyse::AffichePicAna() {
  if (!PicAna) return;
  const AnalysisPicture& picture = OnFinal() ? PicAnaTemp2 : PicAnaTemp;
  PicAna->SetScale(0, 0, picture.Width(), picture.Height());
  if (picture.Pixels.Empty()) {
    PicAna->Clear();
    return;
  }
  const IndexedPicture source{picture.Pixels.Data(), picture.Width(), picture.Height(), picture.Pixels.Stride(),
                              picture.Palette.data()};
  PicAna->DrawPicture(source, 0, 0, picture.Width(), picture.Height(), 0, 0, PicAna->PixelWidth(),
                      PicAna->PixelHeight());
}

void NewAnalyse::PicAnaRefresh() {
  ShowViewTexts();
  Palette.DebordeOn = controls_.Checked("Deborde");
  if (!PicAna) return;
  if (controls_.Checked("PictureShow")) {
    AffichePicAna();
  } else {
    const AnalysisPicture& picture = OnFinal() ? PicAnaTemp2 : PicAnaTemp;
    PicAna->SetScale(0, 0, picture.Width(), picture.Height());
    PicAna->Clear();
  }
  if (Ranges.MaxU == kNoData || Ranges.MaxV == kNoData || s_.NbPat <= 0) {
    ui_.StatusLine(kNoValidData);
    PicAna->Refresh();
    return;
  }
  if (VueCourante == kViewDeformedMesh || VueCourante == kViewVectors) {
    Magni = Amplification(controls_.Checked("Amplification"), controls_.Text("TextMagni"));
    VueCourante == kViewDeformedMesh ? AfficheDeforme() : AfficheVector();
  } else if (VueCourante == kViewFlcDiagram || VueCourante == kViewFlcDetermination) {
    AfficheCLF(VueCourante);
  } else if (VueCourante == kViewU || VueCourante == kViewV || VueCourante == kViewNorm) {
    AfficheDuDv(VueCourante - kViewU);
  } else if (VueCourante == kViewEcart) {
    AfficheDuDv(3);
  } else {
    AfficheE1E2(VueCourante);
  }
  if (VueCourante != kViewDeformedMesh && VueCourante != kViewVectors) DrawDistribution();
  picking_.DrawOverlay(*PicAna);
  if (s_.FissureOn) Crack.DrawOverlay(*PicAna);
  PicAna->Refresh();
}

void NewAnalyse::AfficheDuDv(int kind) {
  if (kind < 0 || kind > 3) return;
  const int32_t view = kDuDvViews[kind];
  if (Ranges.MinU == Ranges.MaxU) Ranges.MinU = Ranges.MaxU - kMapOpening;
  if (Ranges.MinV == Ranges.MaxV) Ranges.MinV = Ranges.MaxV - kMapOpening;
  if (Ranges.MinN == Ranges.MaxN) Ranges.MinN = Ranges.MaxN - kMapOpening;
  if (s_.EcartMin == s_.EcartMax) s_.EcartMin = s_.EcartMax + kMapOpening;
  const ViewRange range = CurrentRange(view);
  PaintColourMap(view, {*range.max, *range.min}, DisplayUnit(view, s_.UnitPX, s_.UnitPY));
}

// The strain maps show the areas of interest over the colours.
void NewAnalyse::AfficheE1E2(int32_t view) {
  const ViewRange range = CurrentRange(view);
  if (!range.max) return;
  PaintColourMap(view, {*range.max, *range.min}, 1.0);
  if (PicAna) DrawAreaOutlines(*PicAna, s_, QBColor(0));
}

void NewAnalyse::PaintColourMap(int32_t view, ColourRange range, double unit) {
  BusyPointer busy(ui_);
  AfficheEchelleNew();
  ShowScaleLabels(range, unit);
  if (!PicAna) return;
  Histo = view == kViewTresca
              ? PaintIsostatic(*PicAna, s_, FieldSettingsNow(), Palette, StyleColorIdx, range)
              : PaintFieldSquares(*PicAna, s_, FieldSettingsNow(), view, MapOptionsNow(), Palette, range);
  HistoMax = *std::max_element(Histo.begin(), Histo.end());
}

void NewAnalyse::ShowScaleLabels(ColourRange range, double unit) {
  const auto labels = ScaleLabels(range, unit);
  for (size_t j = 0; j < labels.size(); ++j) controls_.SetText("LabEchelle(" + std::to_string(j) + ")", labels[j]);
}

void NewAnalyse::AfficheDeforme() {
  BusyPointer busy(ui_);
  ShowGreyBar();
  DrawDeformedMesh(*PicAna, s_, FieldSettingsNow(), Magni);
}

void NewAnalyse::AfficheVector() {
  BusyPointer busy(ui_);
  ShowGreyBar();
  DrawDisplacementVectors(*PicAna, s_, FieldSettingsNow(), Magni, MapOptionsNow().smooth);
}

// The mesh and vector views show the norm's range on a plain grey bar, without its pointer.
void NewAnalyse::ShowGreyBar() {
  ShowScaleLabels({Ranges.MaxN, Ranges.MinN}, DisplayUnit(kViewNorm, s_.UnitPX, s_.UnitPY));
  controls_.SetVisible("IsoLine", false);
  controls_.SetVisible("IsoLabel", false);
  if (!IsoPic) return;
  IsoPic->SetScale(0, 0, 1, 1);
  IsoPic->FilledBox(0, 0, 1, 1, QBColor(kBarGrey));
  IsoPic->Refresh();
}

// The curve spans the bar: bin j of 101 at j/100 of its width, the largest
// count at its top. The median is the first bin where the running count
// passes half the total.
void NewAnalyse::DrawDistribution() {
  if (!IsoPic || HistoMax == 0) return;
  const double w = IsoPic->ScaleWidth(), h = IsoPic->ScaleHeight(), top = IsoPic->ScaleTop();
  const double left = IsoPic->ScaleLeft();
  const auto heightOf = [&](size_t j) { return top + h - h * Histo[j] / HistoMax; };
  const auto xOf = [&](double bin) { return left + w * bin / 100.0; };
  for (size_t j = 0; j + 1 < Histo.size(); ++j)
    IsoPic->Line(xOf(double(j)), heightOf(j), xOf(double(j + 1)), heightOf(j + 1), QBColor(0));
  int64_t total = 0;
  for (const int32_t count : Histo) total += count;
  int64_t running = 0;
  for (size_t j = 0; j < Histo.size(); ++j) {
    running += Histo[j];
    if (2 * running > total) {
      IsoPic->Line(xOf(double(j)), top, xOf(double(j)), top + h, kMedianColour);
      break;
    }
  }
  const ViewRange range = CurrentRange(VueCourante);
  if (controls_.Checked("ShowIsoCheck") && range.max && *range.max != *range.min) {
    const double unit = DisplayUnit(VueCourante, s_.UnitPX, s_.UnitPY);
    const double at = (IsoCourante / unit - *range.min) / (*range.max - *range.min) * 100.0;
    IsoPic->Line(xOf(at), top, xOf(at), top + h, QBColor(kIsoValueColour));
  }
  IsoPic->Refresh();
}

}  // namespace tessiva

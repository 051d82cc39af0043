// The picking's selection on the result on show: the rows each kind of
// selection writes, its replay, and the stored selections of Combo1.
#include <algorithm>
#include <cmath>
#include <tuple>

#include "analysis/analysisfiles.h"
#include "analysis/newanalyse.h"
#include "analysis/picking.h"
#include "results/fieldmap.h"
#include "state/colour.h"
#include "state/numtext.h"

namespace tessiva {
namespace {

int32_t ToolOfGaugeKind(int32_t kind) {
  return kind == kGaugeSlider ? kPickSlider : kind == kGaugeRosette ? kPickRosette : kPickGage;
}

std::string JoinedItems(const std::vector<std::string>& items) {
  std::string text;
  for (size_t i = 0; i < items.size(); ++i) text += (i ? "\t" : "") + items[i];
  return text;
}

}  // namespace

// ---- Rows ---------------------------------------------------------------------

std::string Picking::CurrentFileName() const {
  const AppState& s = w_.State();
  if (w_.CurFile >= 1 && static_cast<size_t>(w_.CurFile) < s.DataFileName.size())
    return s.DataFileName[static_cast<size_t>(w_.CurFile)];
  return s.ResName;
}

std::string Picking::FormatLong() const { return w_.State().FormatLong; }

std::string Picking::PickingExtra(bool head) const {
  return JoinedItems(w_.Controls().Get(head ? "Combo3" : "List3").items);
}

void Picking::GaugeRowOf(int32_t gauge) {
  const FieldSettings settings = w_.FieldSettingsNow();
  const GaugeMeasure m = MeasureGauge(w_.State(), settings, JaugeCtrl1, gauge);
  w_.Info.Append(
      GaugeRow(JaugeCtrl1.JaugeKind(gauge), CurrentFileName(), PickingExtra(false), m, settings, FormatLong()));
}

// The point is marked on the map with its value beside it.
bool Picking::PointAt(double x, double y) {
  const double value = w_.DonneIso(x, y, w_.VueCourante);
  if (value == kFenceValue) return false;
  const AppState& s = w_.State();
  if (Canvas* map = w_.PicAna) {
    map->SetDrawWidth(2);
    map->Point(x, y, QBColor(kSelectionColour));
    map->SetDrawWidth(1);
    map->Text(x, y, " (" + Format(value, FormatLong()) + ") ", QBColor(kSelectionColour));
    map->Refresh();
  }
  std::vector<double> values;
  for (const RowField& field : RowFields(w_.VueCourante, s.UnitPX, s.UnitPY))
    values.push_back(w_.DonneIso(x, y, field.view) * field.factor);
  w_.Info.Append(PointRow(CurrentFileName(), PickingExtra(false), x * s.UnitPX, y * s.UnitPY, values, FormatLong()));
  SetSelection(kAosPoint, {{x, y}});
  return true;
}

// The whole profile goes to the collector at once.
void Picking::SampleLine() {
  if (Selection.XAOS.size() <= kAosLine || Selection.YAOS.size() <= kAosLine) return;
  if (Canvas* map = w_.PicAna) {
    DrawLine(*map);
    map->Refresh();
  }
  const AppState& s = w_.State();
  const double x1 = Selection.XAOS[1], y1 = Selection.YAOS[1];
  const double dx = Selection.XAOS[2] - x1, dy = Selection.YAOS[2] - y1;
  const double length = std::hypot(dx, dy);
  const double unit = std::sqrt(s.UnitPY * s.UnitPX);
  const std::vector<RowField> fields = RowFields(w_.VueCourante, s.UnitPX, s.UnitPY);
  const std::string extras = PickingExtra(false);
  std::string rows;
  std::vector<double> values;
  for (const double t : LineSamples(length, s.Lpas)) {
    const double x = x1 + t * dx / length, y = y1 + t * dy / length;
    if (w_.DonneIso(x, y, w_.VueCourante) == kFenceValue) continue;
    values.clear();
    for (const RowField& field : fields) values.push_back(w_.DonneIso(x, y, field.view) * field.factor);
    rows += LineRow(extras, t * unit, x * s.UnitPX, y * s.UnitPY, values, FormatLong());
  }
  w_.Info.Append(rows);
}

// The box runs from the press point (vertex 5) to the release point (vertex 3).
void Picking::RectangleToClipboard() {
  if (Selection.XAOS.size() <= kAosRectangle || Selection.YAOS.size() <= kAosRectangle) return;
  if (Canvas* map = w_.PicAna) {
    DrawRectangle(*map);
    map->Refresh();
  }
  const AppState& s = w_.State();
  UiPort& ui = w_.Ui();
  Collector& info = w_.Info;
  info.SetText(info.TitreInfo + info.ColonnesInfo);
  info.Append("Please wait, the Data will be sent to the clipboard\r\n");
  const RectangleGrid grid =
      RectangleSamples(Selection.XAOS[5], Selection.YAOS[5], Selection.XAOS[3], Selection.YAOS[3]);
  const int32_t view = w_.VueCourante;
  const std::string table = RectangleTable(
      info.TitreInfo, grid, view, s.UnitPX, s.UnitPY, [&](double x, double y) { return w_.DonneIso(x, y, view); },
      FormatLong());
  ui.SetClipboardText(table);
  info.Append("Transfert complete\r\n");
  ui.Beep();
}

// ---- Replay -------------------------------------------------------------------

void Picking::AfficheEtTraiteAOS(bool showHead) {
  const int32_t last = JaugeCtrl1.JaugeCount();
  if (last > 0 && JaugeCtrl1.Exists(last)) {
    JaugeType = JaugeCtrl1.JaugeKind(last);
    PickTool = ToolOfGaugeKind(JaugeType);
    PressToolButton(PickTool);
    Selection.NboxAOS = kAosNone;
    if (showHead) StartCollector();
    GaugeRowOf(last);
    w_.PicAnaRefresh();
  }
  if (Selection.NboxAOS == kAosNone) return;
  w_.PicAnaRefresh();
  switch (Selection.NboxAOS) {
    case kAosPoint:
      PickTool = kPickPoint;
      PressToolButton(PickTool);
      if (showHead) StartCollector();
      if (Selection.XAOS.size() > 1 && Selection.YAOS.size() > 1) PointAt(Selection.XAOS[1], Selection.YAOS[1]);
      break;
    case kAosLine:
      // The profile of the member on show replaces the last one, whatever showHead says.
      PickTool = kPickLine;
      PressToolButton(PickTool);
      StartCollector();
      SampleLine();
      break;
    case kAosRectangle:
      // On field 16 the picking tools are off: the box is the section tool's band.
      if (w_.VueCourante == kViewFlcDetermination) {
        PickTool = kPickSection;
        SectionTool = SectionKind::FormingLimit;
        w_.Flc.ReplayBand();
        break;
      }
      PickTool = kPickRectangle;
      PressToolButton(PickTool);
      StartCollector();
      RectangleToClipboard();
      break;
    case kAosCrack:
      PickTool = kPickSection;
      SectionTool = SectionKind::Crack;
      PressToolButton(PickTool);
      w_.Crack.Replay(Selection, showHead);
      break;
    default:
      break;
  }
}

bool Picking::OnFileChanged() {
  if (Selection.NboxAOS == kAosNone && JaugeCtrl1.JaugeCount() == 0) return false;
  if (!LoadSelection(kWorkingCopy)) return false;
  if (Selection.NboxAOS == kAosNone && JaugeCtrl1.JaugeCount() == 0) return false;
  AfficheEtTraiteAOS(false);
  return true;
}

// ---- Stored selections --------------------------------------------------------

void Picking::SetSelection(int32_t kind, const std::vector<std::pair<double, double>>& vertices) {
  Selection.NboxAOS = kind;
  Selection.XAOS.assign(vertices.size() + 1, 0.0);
  Selection.YAOS.assign(vertices.size() + 1, 0.0);
  for (size_t j = 0; j < vertices.size(); ++j) std::tie(Selection.XAOS[j + 1], Selection.YAOS[j + 1]) = vertices[j];
}

void Picking::SaveWorkingCopy() { SauveAOS(w_.State(), Selection, w_.Gages(), kWorkingCopy); }

// A gauge of a kind the component doesn't know makes the whole set unusable.
bool Picking::LoadSelection(const std::string& name) {
  SelectionArea selection;
  GageStore gages;
  const AppState& s = w_.State();
  if (!LecAOS(s, w_.Ui(), selection, gages, name)) return false;
  for (int32_t i = 1; i <= gages.Count(); ++i) {
    if (!gages.Exists(i)) continue;
    const int32_t kind = gages.Get(i).type;
    if (kind != kGaugeLinear && kind != kGaugeRosette && kind != kGaugeSlider) {
      w_.Ui().StatusLine(SideFilePath(s, kAosSets, name) + " can't be loaded");
      return false;
    }
  }
  // A set without an outline section holds no selection.
  selection.NboxAOS = std::max(selection.NboxAOS, kAosNone);
  Selection = std::move(selection);
  JaugeCtrl1.JaugeClear();
  w_.Gages() = std::move(gages);
  return true;
}

// SaveAOS waits for a name to be typed.
void Picking::InitAOS() {
  tessiva::InitAOS(w_.State(), w_.Controls(), AreaNames);
  w_.Controls().SetEnabled(ToolbarButton(kSaveAOSButton), false);
}

void Picking::OnCombo1Change(const std::string& text) {
  w_.Controls().SetText("Combo1", text);
  w_.Controls().SetEnabled(ToolbarButton(kSaveAOSButton), true);
}

// While the list is hidden for a delete its clicks are the delete's own.
void Picking::OnCombo1Click(int32_t index) {
  ControlRegistry& controls = w_.Controls();
  if (!controls.Visible("Combo1")) return;
  const std::vector<std::string>& items = controls.Get("Combo1").items;
  if (index < 0 || static_cast<size_t>(index) >= items.size()) return;
  const std::string name = items[static_cast<size_t>(index)];
  controls.Update("Combo1", [&](ControlState& c) {
    c.listIndex = index;
    c.text = name;
  });
  w_.ShowInfo();
  ReleaseToolButtons();
  if (!LoadSelection(name)) return;
  AfficheEtTraiteAOS(true);
  SaveWorkingCopy();
}

void Picking::OnCombo1Enter() {
  SaveAOSByName(w_.State(), w_.Controls(), AreaNames, Selection, w_.Gages());
  w_.Controls().SetEnabled(ToolbarButton(kSaveAOSButton), false);
}

void Picking::OnCombo1Delete(int32_t position) {
  ControlRegistry& controls = w_.Controls();
  controls.SetVisible("Combo1", false);
  if (position < 1 || position > AreaNames.AreaCount) {
    controls.SetText("Combo1", AreaNames.AreaCount > 0 ? AreaNames.AreaNames[static_cast<size_t>(AreaNames.AreaCount)]
                                                       : std::string());
  } else {
    RemoveAOSName(w_.State(), controls, AreaNames, position);
  }
  controls.SetVisible("Combo1", true);
}

}  // namespace tessiva

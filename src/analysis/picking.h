// Measuring on the analysis window's map: the picking tools (a point, a
// line, a rectangle, a slider, a linear strain gage, a rosette), the
// selection they leave, its replay on every member of a sequence, and the
// named selections of Combo1.
//
// A tool is armed from Toolbar1; the view forwards the pointer on PicAna in
// picture pixels; the values found go as rows to the data collector
// (NewAnalyse::Info). The selection is kept as an area (NboxAOS: 1 a point,
// 2 a line, 5 a closed rectangle) or as gauges, stored in the working copy
// "temp" after each pick, so that the next member of a sequence replays it.
//
// Controls of the analysis window's registry the view mirrors:
//   Toolbar1.Button3..Button9  the section tool and the six tools: Enabled,
//                              and Checked for the armed (pressed) one
//   Toolbar1.Button12          SaveAOS, enabled once Combo1's text changes
//   Line1                      the rubber line: Visible, and its ends in the
//                              bounds, (left, top) to (left + width, top +
//                              height); width and height may be negative
//   Shape1                     the rubber box: Visible and its bounds
//   Combo1                     the names of the stored selections: items and text
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "analysis/gauges.h"
#include "analysis/pickrows.h"
#include "formats/content.h"
#include "formats/sidefiles.h"
#include "ui/canvas.h"

namespace tessiva {

class NewAnalyse;

// What the section tool (PickTool kPickSection, key "CLF") lays on the map:
// the band of a forming-limit section, or a crack.
enum class SectionKind { FormingLimit, Crack };

// The registry name of button `index` of Toolbar1.
std::string ToolbarButton(int index);
inline constexpr int kSectionToolButton = 3;
inline constexpr int kSaveAOSButton = 12;

// What a right-button release on the map asks the view to pop up: the menu
// of the gauge under the pointer, or else the window's menu `name`
// ("MenuMNU" while the point tool is armed, "FileMNU" otherwise).
struct PicAnaMenu {
  std::string name;
  std::optional<GaugeMenu> gauge;
};

class Picking {
 public:
  // The working copy of the selection, rewritten after each pick.
  static constexpr const char* kWorkingCopy = "temp";

  explicit Picking(NewAnalyse& window);
  Picking(const Picking&) = delete;
  Picking& operator=(const Picking&) = delete;

  // The armed tool, kPickIdle when none.
  int32_t PickTool = kPickIdle;
  // The stored selection: NboxAOS and its vertices XAOS, YAOS, picture pixels.
  SelectionArea Selection;
  // The press point, X1Pick -1 while no press is valid, and the release point.
  double X1Pick = -1.0, Y1Pick = -1.0;
  double X2Pick = 0.0, Y2Pick = 0.0;
  // The mode of the section tool.
  SectionKind SectionTool = SectionKind::FormingLimit;
  // The kind of the next gauge: kGaugeLinear, kGaugeRosette or kGaugeSlider.
  int32_t JaugeType = kGaugeLinear;
  // The gauge component over the window's gauge store.
  JaugeCtrl JaugeCtrl1;
  // The names of Combo1, most recent first.
  AreaSetList AreaNames;

  int32_t NboxAOS() const { return Selection.NboxAOS; }

  // A click on a key of Toolbar1: the six picking keys arm their tool and
  // true is returned; any other key (the section tool's "CLF" among them)
  // is left to the window and gives false.
  bool OnToolbarKey(std::string_view key);
  // Arms `tool`: gauges are cleared and the map repainted, the selection
  // forgotten, the collector shown and started with the tool's head.
  void Arm(int32_t tool);
  // Arms the section tool in mode `kind`: gauges cleared, the selection
  // forgotten, the collector shown; the analysis of that mode takes it on.
  void ArmSection(SectionKind kind);
  // Enabled on the buttons of the six tools, nothing else.
  void PickEnabled();
  void PickDisabled();

  // The pointer on PicAna, picture pixels; `button` and `shift` as in
  // ui/pointer.h. A press with the left button starts a drag; moves show the
  // position and, while dragging, the rubber and its size; a release makes
  // the selection and writes its rows. A right-button release gives the
  // menu to pop up.
  void MouseDown(int button, int shift, double x, double y);
  void MouseMove(int button, int shift, double x, double y);
  std::optional<PicAnaMenu> MouseUp(int button, int shift, double x, double y);
  // The user's choice in a gauge's menu: delete it (the working copy follows),
  // copy its values to the clipboard, or rename it.
  void OnGaugeMenu(int32_t gauge, GaugeAction action);

  // Replays the selection on the result on show (AfficheEtTraiteAOS): the last
  // gauge gives one row; a point adds a row; a line starts the collector
  // again with its profile; a rectangle sends its table to the clipboard.
  // `showHead` starts the collector with the tool's head first.
  void AfficheEtTraiteAOS(bool showHead);
  // After a new member is read: the working copy replays on it when there is
  // a selection or a gauge. False when there is nothing to replay, and the
  // caller repaints.
  bool OnFileChanged();
  // A new field on show: tools but the section tool are disarmed, the
  // rubbers hidden, and the tools enabled except on the forming-limit views.
  void OnFieldChanged(int32_t view);
  // Draws the gauges and the stored line or rectangle over the map.
  void DrawOverlay(Canvas& canvas);

  // Combo1: the names from correl.ini; a change of its text enables
  // SaveAOS; a click on entry `index` (0-based) loads and replays that
  // selection; Enter (and SaveAOS) stores the selection under the typed
  // name; the Delete key takes entry `position` (1-based, 0 for none) off the list.
  void InitAOS();
  void OnCombo1Change(const std::string& text);
  void OnCombo1Click(int32_t index);
  void OnCombo1Enter();
  void OnSaveAOSClick() { OnCombo1Enter(); }
  void OnCombo1Delete(int32_t position);

  // Closing the collector ends picking: buttons released, no selection, no
  // gauge, no crack, no tool armed.
  void CloseInfo();

  // The extra values of the member on show, tab separated: their names with
  // `head`, else their values.
  std::string PickingExtra(bool head) const;
  // The name of the member on show.
  std::string CurrentFileName() const;
  // The selection becomes `kind` with these vertices; SaveWorkingCopy keeps
  // it and the gauges as the working copy "temp".
  void SetSelection(int32_t kind, const std::vector<std::pair<double, double>>& vertices);
  void SaveWorkingCopy();

 private:
  // The colour of the stored selection and of a picked point's mark: red.
  static constexpr int kSelectionColour = 12;

  void BuildHead();
  void StartCollector();
  void PressToolButton(int32_t tool);
  void ReleaseToolButtons();
  bool InPicture(double x, double y) const;
  void ShowLine(double x1, double y1, double x2, double y2);
  void ShowShape(double left, double top, double width, double height);
  void HideRubbers();
  std::string FormatLong() const;
  // The rows of each kind of selection, on the result on show.
  void GaugeRowOf(int32_t gauge);
  bool PointAt(double x, double y);
  void SampleLine();
  void RectangleToClipboard();
  void DrawLine(Canvas& canvas) const;
  void DrawRectangle(Canvas& canvas) const;
  // Reads a stored selection and its gauges; on failure nothing changes.
  bool LoadSelection(const std::string& name);

  NewAnalyse& w_;
};

}  // namespace tessiva

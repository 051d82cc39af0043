// The analysis window's logic (NewAnalyse): the window state that reading a
// result, building the mesh and computing strains depend on, the window's
// control registry, and the operations of the tools that work on a loaded
// result. The Qt window is a thin view over it.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>

#include "analysis/axistool.h"
#include "analysis/collector.h"
#include "analysis/formlimits.h"
#include "analysis/lens.h"
#include "analysis/picking.h"
#include "analysis/stressintensity.h"
#include "results/distortion.h"
#include "results/fieldmap.h"
#include "results/palette.h"
#include "results/ranges.h"
#include "state/appstate.h"
#include "state/gages.h"
#include "setup/param.h"
#include "ui/canvas.h"
#include "ui/controls.h"
#include "ui/uiport.h"

namespace tessiva {

class CapturePort;

// A picture the window shows: the reference (PicAnaTemp) or the deformed one
// (PicAnaTemp2). A box without a picture measures 100 x 100 pixels.
struct AnalysisPicture {
  static constexpr int32_t kEmptyBoxSide = 100;
  GreyArray Pixels;
  std::array<Colour, 256> Palette{};
  int32_t Width() const { return Pixels.Empty() ? kEmptyBoxSide : Pixels.UpperX(); }
  int32_t Height() const { return Pixels.Empty() ? kEmptyBoxSide : Pixels.UpperY(); }
};

// The user scale of the map PicAna, set up when a result is read without Keep.
struct ViewScale {
  double Zoom = 1.0;
  double Left = 0.0;
  double Top = 0.0;
  double Width = 1.0;
  double Height = 1.0;
};

class NewAnalyse {
 public:
  // A displacement range that no valid node has widened.
  static constexpr double kNoData = -kDisplacementRangeStart;

  NewAnalyse(AppState& state, UiPort& ui, Param& param) : s_(state), ui_(ui), param_(param) {}
  virtual ~NewAnalyse() = default;
  NewAnalyse(const NewAnalyse&) = delete;
  NewAnalyse& operator=(const NewAnalyse&) = delete;

  AppState& State() { return s_; }
  UiPort& Ui() { return ui_; }
  Param& Parameters() { return param_; }
  ControlRegistry& Controls() { return controls_; }
  // The gauges of the measuring control JaugeCtrl1.
  GageStore& Gages() { return gages_; }
  // The picking tools, the gauges and the stored selection.
  Picking& PickingTools() { return picking_; }

  // The data collector, the window all measuring tools write their tables into.
  Collector Info;
  // The forming-limit and stress intensity analyses.
  FormingLimits Flc{*this};
  StressIntensity Crack{*this};
  // The user's axes, and the lens of the map.
  AxisTool Axes{*this};
  Lens Loupe{*this};

  // Member of the sequence on show.
  int32_t CurFile = 1;
  // Option2: strains on the reference configuration ("Intial -> Final") when
  // true, on the deformed one ("Final -> Initial") when false.
  bool bInitial = true;
  // Code of the field on show.
  int32_t VueCourante = 2;
  // Angle of the user's axis 1, radians, and cos and sin of twice that angle.
  double Teta1 = 0.0;
  double Cos2Teta = 1.0;
  double Sin2Teta = 0.0;
  // 1 when the result names the first picture of an incremental sequence.
  int32_t Incremental = 0;
  // Unit texts of the fields: 2 along x, 3 along y, 4 of a norm.
  std::array<std::string, 5> UniteLabels;
  AnalysisPicture PicAnaTemp;
  AnalysisPicture PicAnaTemp2;
  ViewScale View;
  // The distortion correction ("Distorsions" frame).
  Distortion Distor;
  // Value ranges of the current result (MaxU is kNoData when no node was
  // valid) and the copies each search stores before trimming.
  ValueRanges Ranges;
  ValueRanges StoredRanges;
  // "Auto adjust Min-Max" and "Keep Min-Max between sequence".
  bool AutoMinMax = false;
  bool KeepMinMax = false;
  // The palette of the maps and the bar, with its colour steps and its rule
  // for values out of range.
  int32_t StyleColorIdx = kClassicalPalette;
  ColourScale Palette;
  // The slider VScroll1: the number of colour steps.
  int32_t VScroll1 = 100;
  // The value under the pointer of the bar.
  double IsoCourante = 0.0;
  // Distribution of the current map over the bar, and its largest entry.
  Histogram Histo{};
  int32_t HistoMax = 0;
  // The colour bar's surface; the bar isn't drawn while none is attached.
  Canvas* IsoPic = nullptr;
  // The map's surface, in picture pixels; nothing is painted while none is attached.
  Canvas* PicAna = nullptr;
  // The forming-limit graph's surface; nothing is drawn while none is attached.
  Canvas* Graphe = nullptr;
  // The axes picture Repere; nothing is drawn while none is attached.
  Canvas* Repere = nullptr;
  // Joins the surfaces into captures and writes them (the Film keys); the
  // keys do nothing while none is attached.
  CapturePort* Captures = nullptr;
  // A section of field 16 keeps its abscissae, states and ranges: set by a
  // change of member, cleared when a new section is chosen.
  bool keepScale = false;
  // The amplification of the mesh and vector views.
  double Magni = 1.0;

  // "Show Bad Pattern" (check box Bad): 1 when patterns that aren't good are shown.
  int32_t ShowBad() const { return controls_.Checked("Bad") ? 1 : 0; }
  // Option3: the map on the final picture.
  bool OnFinal() const { return controls_.Checked("Option3(0)"); }
  // "Substract mean" (check box SubMeanCheck): 1 when the means are taken off displacements.
  int32_t SubMean() const { return controls_.Checked("SubMeanCheck") ? 1 : 0; }

  // The window's load: the field list and options, the member list of the
  // sequence, and Timer1 started to read the first member.
  void Load();
  // Timer1 fires once: the first member is read and shown.
  void OnTimer1();
  // A click on entry `index` of the field list Combo2.
  void OnCombo2Click(int32_t index);
  // The pointer over the map at (x, y), picture pixels: the position in the
  // user's unit and the value of the field there go to StatusPos.
  void OnPicAnaMouseMove(double x, double y);

  // A click on the key of a Toolbar1 button. The picking keys arm their
  // tool, "CLF" the section tool: in its crack mode while a crack is
  // defined, else in the mode last chosen; "Film" and "Film2" capture the
  // map through Captures; false for a key handled elsewhere.
  bool OnToolbar1Click(const std::string& key);
  // Arms the section tool in mode `kind` (the view's choice of "FLC Analysis"
  // or "KI Analysis").
  void ArmSectionTool(SectionKind kind);
  // A key typed on PicAna.
  void OnPicAnaKey(char key);
  // The pointer on the map, picture pixels, for the picking tools; `button`
  // and `shift` as in ui/pointer.h. A move with no tool armed shows the
  // value under the pointer. A right-button release gives the menu the view
  // is to pop up; a gauge's choice goes to PickingTools().OnGaugeMenu.
  void OnPicAnaMouseDown(int button, int shift, double x, double y);
  void OnPicAnaMouseMove(int button, int shift, double x, double y);
  std::optional<PicAnaMenu> OnPicAnaMouseUp(int button, int shift, double x, double y);
  // After another member of the sequence was read: a defined crack is
  // measured on it and gives a row, then the selection and the gauges
  // replay on it, or the map is repainted when there are none.
  void AfterFileChange();
  // The file change: member `index` (1 to NbSeq) is read and shown, then
  // Combo4 shows it. An index past either end does nothing and gives false,
  // as does a member that can't be read (its reader has said why).
  bool GoToFile(int32_t index);
  // A click on entry `index` (0-based) of the member list Combo4.
  void OnCombo4Click(int32_t index);
  // Run: every member in turn, as the navigation keys read them.
  void Run();
  // Shows the parameters of the result, none of them editable.
  void Parametre();
  // Command1 switches the map between "1:1" and "1:x".
  void OnCommand1Click();
  // The menu entry "Keyboard Input": a position typed in, in the user's
  // units, placed on the map as a release of the left button.
  void KeyMNU();
  // The collector window closes: picking ends.
  void OnInfoClose();

  // The value of a view at a point of the picture, 99999 where no usable pattern lies.
  double DonneIso(double x, double y, int32_t view, bool turned = true) const;
  // Copies the picture the map stands on into PicAna.
  void AffichePicAna();
  // The displacement and accuracy maps: kind 0 U, 1 V, 2 the norm, 3 the scatter.
  void AfficheDuDv(int kind);
  // The strain and angle maps, and the isostatic lines of view 8.
  void AfficheE1E2(int32_t view);
  void AfficheDeforme();
  void AfficheVector();

  // The strain calculation at the corners and nodes, then the strain ranges.
  // Skipped entirely when the displacement range found no valid node.
  void MinMaxDeformation();
  // The check box OkDistor: asks for the result of a rigid target and fits
  // the correction, or turns it off; then the ranges and the map follow.
  void OnOkDistorClick(bool checked);
  // Shows the collector window Info.
  void ShowInfo();

  // Paints the colour bar IsoPic with VScroll1 steps of the current palette.
  void AfficheEchelleNew();
  // A click on scale label 0 (the minimum) or 4 (the maximum): asks for a new
  // limit of the current view's range, in the display unit; a limit that
  // would close or reverse the range is refused.
  void LabEchelle(int index);
  // A click on option OptionMinMax(index): 0 "Find Min-Max every time", 1
  // "Keep Min-Max between sequence", 2 "Auto adjust Min-Max".
  void OptionMinMax(int index);
  // A click on palette option StyleColor(index).
  void StyleColor(int index);
  // The pointer on the bar, at x in the bar's scale: with the left button
  // down it shows the value there, IsoCourante; its release hides it.
  void OnIsoPicMouseDown(int button, double x);
  void OnIsoPicMouseMove(int button, double x);
  void OnIsoPicMouseUp(int button);

  // Operations of the tools built on a loaded result.
  // Ranges of U, V and the norm over the valid nodes; kept as they are with KeepMinMax.
  virtual void MinMaxDeplacement();
  // Ranges of the strain measures over the valid nodes; kept as they are with KeepMinMax.
  virtual void RangesOfDeformation();
  // Stress intensity factors from domain integrals round the crack tip.
  virtual void CalculKI();
  // Writes the stress intensity row to the collector.
  virtual void AfficheKI(bool showHead);
  // Replays the stored selection and its gauges on the current file.
  virtual void AfficheEtTraiteAOS(bool showHead);
  // Repaints the map.
  virtual void PicAnaRefresh();
  // Draws the forming-limit views 15 and 16.
  virtual void AfficheCLF(int32_t view);
  // Sizes and centres PicAna and Repere in their frame.
  virtual void LayOutPicAna();

  // The settings the field values are read with, and the map's sampling.
  FieldSettings FieldSettingsNow() const;
  MapOptions MapOptionsNow() const;

 private:
  RangeSettings RangeSettingsNow() const;
  void InitToolbar();
  // The keys of the parameters, SaveAOS, the navigation and Run; false for another key.
  bool OnSessionKey(const std::string& key);
  // The navigation keys: member `index`, unless it is the one on show.
  void StepTo(int32_t index);
  // Titles, captions and the reference box of the view on show.
  void ShowViewTexts();
  void PlaceReferenceBox();
  // Paints a colour map of `view` over the bar and labels of its range.
  void PaintColourMap(int32_t view, ColourRange range, double unit);
  void ShowScaleLabels(ColourRange range, double unit);
  void ShowGreyBar();
  // The distribution of the last map over the bar, with its median and the isovalue.
  void DrawDistribution();
  ViewRange CurrentRange(int32_t view);
  void RestoreStoredRange(int32_t view);
  void ShowIsoPointer(double x);

  AppState& s_;
  UiPort& ui_;
  Param& param_;
  ControlRegistry controls_;
  GageStore gages_;
  Picking picking_{*this};
};

}  // namespace tessiva

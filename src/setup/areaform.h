// The setup window's logic (AreaForm): the two picture views, the area store
// and grid operations the data and side files call, the gauges, the window's
// fields, and the entry points the view calls, whose bodies lie in
// areanavigation.cpp, areatools.cpp and areaevents.cpp. The Qt window is a
// thin view over it.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "formats/sidefiles.h"
#include "setup/engine.h"
#include "setup/pictureview.h"
#include "state/appstate.h"
#include "state/gages.h"
#include "setup/param.h"
#include "ui/controls.h"
#include "ui/uiport.h"

namespace tessiva {

class AreaForm {
 public:
  AreaForm(AppState& state, UiPort& ui, Param& param);

  AppState& State() { return s_; }
  UiPort& Ui() { return ui_; }
  Param& Parameters() { return param_; }
  ControlRegistry& Controls() { return controls_; }
  // The gauges of the measuring control JaugeCtrl1.
  GageStore& Gages() { return gages_; }
  PictureView& RefView() { return refView_; }
  PictureView& DefView() { return defView_; }
  // Grid, walk, start search, colour scale and tools in progress.
  SetupEngine& Engine() { return engine_; }

  // Reads both pictures, shows their titles and makes the views ready.
  // Returns false when a picture could not be read, with the reason in
  // `*problem` where the picture store gives one.
  bool LoadPictures(std::string* problem = nullptr);
  // Repaints a view with everything that lies on it.
  void AreAPicRefRefresh();
  void AreAPicDefRefresh();

  // Clears the pattern store and the start points.
  void DeleteGrille();
  // Clears areas, patterns and gauges.
  void DeleteAOI();
  // Lays the pattern grid over the areas.
  void CreateRectArea();
  // Adds the areas a gauge needs.
  void CreateBoxJauge(int32_t x1, int32_t y1, int32_t x2, int32_t y2, int32_t kind, int32_t tag);
  // Checks that every pattern can be reached from the start points.
  void PropagArea();
  // Sets the tools to the state in which start points are defined.
  void ShowStartPointsDefined();
  // The menu entry "automatic search of start points" (AutoSearchMNU).
  bool AutoSearch() const { return controls_.Checked("AutoSearchMNU"); }

  // Per member of the sequence (1-based): its data file was saved.
  std::vector<bool> DoneFlags;
  // Member of the sequence on show, from 1.
  int32_t CurFile = 1;
  // The drawing tool down (AreaTool), and the kind of gauge it lays.
  int32_t ToolCode = 0;
  int32_t GaugeKind = 0;
  // The forming-limit button is the crack tool.
  bool CrackTool = false;
  // The names of the stored area sets, shown in Combo1.
  AreaSetList AoiNames;
  // Whether the start-point tool (InitialSolution) is down.
  bool GivingStartPoints() const { return controls_.Checked("Toolbar2.InitialSolution"); }

  // ---- Load, timers, the sequence of data files and close (areanavigation.cpp)

  // The window's load: the tool bars, the area sets and the member list;
  // Timer3 is started to read the first data file once the window shows.
  void Load();
  // Timer3 fires once.
  void OnTimer3();
  // Timer1 and Timer2 blink FlashInfo and FlashInfo2.
  void OnTimer1();
  void OnTimer2();
  // Saves the member on show and reads the next one; after the last it
  // closes the window. False when the save failed.
  bool NextData();
  // Saves the member on show and every one after it, unattended.
  void EndData();
  // Goes back one member without saving.
  void PreviousData();
  // The window closes: the frame shows its picture again.
  void Unload();

  // ---- The tool bars, menus, lists and fields (areatools.cpp)

  // The starting state of both bars' buttons, timers and hands; the keys and
  // tooltips are the bars' tables (setup/areatoolbar.h).
  void InitToolbar();
  void OnToolbar1Click(const std::string& key);
  // A click on the button at `index` of Toolbar2; a two-state button's new
  // state has been written to the registry by the view before.
  void OnToolbar2Click(int index);
  // A choice of the popup menu: "AutoSearchMNU" or "ShowBestMNU".
  void OnMenuClick(const std::string& item);
  // Combo1: a name chosen, Enter typed (keyAscii 13), Delete (key code 46)
  // pressed on the entry at `position` (1-based).
  void OnCombo1Click(int32_t position);
  void OnCombo1KeyPress(int keyAscii);
  void OnCombo1Delete(int32_t position);
  // The extra values: names in Combo2, values in the hidden List2, the value
  // of the chosen name in Text2.
  void OnCombo2Click(int32_t position);
  void OnCombo2KeyPress(int keyAscii);
  void OnCombo2Delete(int32_t position);
  void OnText2KeyPress(int keyAscii);
  // A calibration field (UnitPixX, UnitPixY, UnitX, UnitY) was edited while
  // it held the focus.
  void OnUnitChange(const std::string& field);

  // ---- The pointer over the views (areaevents.cpp)

  // x and y in picture pixels; button and shift as in ui/pointer.h.
  void OnPicRefMouseDown(int button, int shift, double x, double y);
  void OnPicRefMouseMove(int button, int shift, double x, double y);
  // True when the view is to pop up the menu Menu.
  bool OnPicRefMouseUp(int button, int shift, double x, double y);
  void OnPicDefMouseDown(int button, int shift, double x, double y);
  void OnPicDefMouseMove(int button, int shift, double x, double y);
  void OnPicDefMouseUp(int button, int shift, double x, double y);

 private:
  // Where the left button went down on PicRef, while a drag of a tool lasts.
  struct Press {
    bool down = false;
    double x = 0.0, y = 0.0;
  };

  void ReadMember(int32_t index);
  bool SaveAndMoveOn();
  void ReadNextMember();
  void PressTool(int index);
  void OnInitialSolution(bool pressed);
  void FinishDrag(double x1, double y1, double x, double y);
  void FollowTool(double x, double y);
  void GiveStartPoint(double x, double y);
  void ShowRubberLine(double x1, double y1, double x2, double y2);
  void ShowRubberBox(double x1, double y1, double x2, double y2);
  void HideRubbers();

  void DrawAreaOutlines(Canvas& canvas);
  void RefreshView(PictureView& view);

  AppState& s_;
  UiPort& ui_;
  Param& param_;
  ControlRegistry controls_;
  GageStore gages_;
  PictureView refView_;
  PictureView defView_;
  SetupEngine engine_;
  Press press_;
};

}  // namespace tessiva

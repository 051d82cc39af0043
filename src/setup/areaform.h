// The setup window's logic (AreaForm): the two picture views, the area store
// and grid operations the data and side files call, the gauges, the window's
// fields. The Qt window is a thin view over it.
#pragma once

#include <cstdint>
#include <vector>

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
  // Returns false when a picture could not be read.
  bool LoadPictures();
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

 private:
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
};

}  // namespace tessiva

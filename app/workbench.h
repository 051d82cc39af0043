// The running desktop program: the shared state, the frame's controls and
// platform port, the controllers, and the frame window that owns every other
// window. main() and the window tests start it the same way.
#pragma once

#include <QString>
#include <memory>

#include "analysis/newanalyse.h"

#include "batch/managejobs.h"
#include "batch/miseendonne.h"
#include "framewindow.h"
#include "qtui.h"
#include "state/appstate.h"
#include "frame/mdiform.h"
#include "setup/areaform.h"
#include "setup/param.h"

namespace tessiva {

class Workbench {
 public:
  Workbench();
  ~Workbench();

  // Loads the frame in `startDir` (where correl.ini is) and shows it. False when
  // the program has to end at once.
  bool Start(const QString& startDir);

  AppState& State() { return state_; }
  ControlRegistry& FrameControls() { return frameControls_; }
  FrameWindow& Window() { return *window_; }
  NewAnalyse& Analyse() { return analyse_; }
  AreaForm& Area() { return area_; }

 private:
  AppState state_;
  ControlRegistry frameControls_;
  QtUi ui_{frameControls_};
  MDIForm1 frame_{state_, ui_};
  Param param_{state_};
  ManageJobs jobs_{state_, ui_};
  MiseEnDonne input_{state_, ui_};
  AreaForm area_{state_, ui_, param_};
  NewAnalyse analyse_{state_, ui_, param_};
  std::unique_ptr<FrameWindow> window_;
};

}  // namespace tessiva

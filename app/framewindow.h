// The frame window (MDIForm1): the three commands and the developer's
// "Output", the client area in which one tool window shows at a time, the
// status texts and the logo, which shows the About window. It forwards its
// events to the MDIForm1 controller and mirrors the frame's registry.
#pragma once

#include <QMainWindow>
#include <QPoint>
#include <memory>

#include "analysis/newanalyse.h"
#include "capturepicture.h"
#include "batch/managejobs.h"
#include "batch/miseendonne.h"
#include "registrybinding.h"
#include "frame/mdiform.h"
#include "setup/areaform.h"
#include "setup/param.h"

namespace tessiva {

class FrameWindow : public QMainWindow {
  Q_OBJECT

 public:
  FrameWindow(MDIForm1& controller, ControlRegistry& controls, Param& param, ManageJobs& jobs,
              MiseEnDonne& input, AreaForm& area, NewAnalyse& analyse);
  ~FrameWindow() override;

  // Size and place from the controller's bounds of "MDIForm1", on a screen whose
  // usable area starts at `screenOrigin`.
  void PlaceAtStartBounds(QPoint screenOrigin);

 protected:
  void mouseMoveEvent(QMouseEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void closeEvent(QCloseEvent* event) override;

 private:
  QWidget* BuildCommandBar();
  QWidget* BuildClientArea(ManageJobs& jobs, MiseEnDonne& input, AreaForm& area, NewAnalyse& analyse);
  void BuildStatusArea();
  void OnClicked(const std::string& name);

  MDIForm1& controller_;
  ControlRegistry& controls_;
  NewAnalyse& analyse_;
  // Joins the analysis window's surfaces for its Film keys.
  QtCapture capture_;
  QWidget* client_ = nullptr;
  std::unique_ptr<RegistryBinding> binding_;
};

}  // namespace tessiva

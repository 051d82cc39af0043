// The job queue window (ManageJobs): the tree of queued files, the Start button
// with its blinking marker and a line of help.
#pragma once

#include <QFrame>
#include <QTimer>
#include <memory>

#include "batch/managejobs.h"
#include "jobtreeview.h"
#include "registrybinding.h"

namespace tessiva {

class ManageJobsWindow : public QFrame {
  Q_OBJECT

 public:
  // The panel named "ManageJobs" in the frame's client area, its controls
  // bound to the controller's registry.
  ManageJobsWindow(ManageJobs& controller, QWidget* parent);
  ~ManageJobsWindow() override;

 protected:
  void showEvent(QShowEvent* event) override;
  void hideEvent(QHideEvent* event) override;

 private:
  void BuildControls();

  ManageJobs& controller_;
  JobTreeView* tree_ = nullptr;
  QTimer blink_;
  std::unique_ptr<RegistryBinding> binding_;
  int subscription_ = 0;
};

}  // namespace tessiva

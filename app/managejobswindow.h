// The job queue window (ManageJobs): the tree of queued files, the Start button
// with its blinking marker and a line of help.
#pragma once

#include "batch/managejobs.h"
#include "batchpanel.h"

namespace tessiva {

class ManageJobsWindow : public BatchPanel {
  Q_OBJECT

 public:
  // The panel named "ManageJobs" in the frame's client area.
  ManageJobsWindow(ManageJobs& controller, QWidget* parent);
};

}  // namespace tessiva

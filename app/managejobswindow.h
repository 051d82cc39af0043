// The job queue window (ManageJobs): the tree of queued files, the Start button
// with its blinking marker and a line of help. Mouse events on the tree go to
// the ManageJobs controller with the key of the node under the pointer; the
// tree is rebuilt from the controller's nodes whenever they change.
#pragma once

#include <QFrame>
#include <QTimer>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "batch/managejobs.h"
#include "registrybinding.h"

class QTreeWidget;
class QTreeWidgetItem;

namespace tessiva {

class ManageJobsWindow : public QFrame {
  Q_OBJECT

 public:
  // The panel named "ManageJobs" in the frame's client area, its controls
  // bound to the controller's registry.
  ManageJobsWindow(ManageJobs& controller, QWidget* parent);
  ~ManageJobsWindow() override;

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;
  void showEvent(QShowEvent* event) override;
  void hideEvent(QHideEvent* event) override;

 private:
  void BuildControls();
  std::string KeyAt(const QPoint& pos) const;
  void Refresh();
  void Rebuild();

  ManageJobs& controller_;
  QTreeWidget* tree_ = nullptr;
  QTimer blink_;
  std::unique_ptr<RegistryBinding> binding_;
  int subscription_ = 0;
  std::vector<JobNode> shown_;  // the nodes the tree was last built from
  std::map<std::string, QTreeWidgetItem*> items_;
  std::string pressedKey_;
  QPoint pressedAt_;
  bool moved_ = false;  // the pointer left the press point by the drag distance
};

}  // namespace tessiva

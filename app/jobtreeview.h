// The tree view the batch windows share ("Tree1"): mouse events on it go to the
// controller with the key of the node under the pointer, and it is rebuilt
// from the controller's nodes whenever they change.
#pragma once

#include <QIcon>
#include <QTreeWidget>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "batch/jobtree.h"

namespace tessiva {

// "Tree1" of a batch window: mirrors the controller's nodes and forwards
// presses, moves and releases as clicks and drags.
class JobTreeView : public QTreeWidget {
  Q_OBJECT

 public:
  using IconOf = std::function<QIcon(int image)>;
  JobTreeView(JobTreeEvents& controller, IconOf iconOf, QWidget* parent);

  // Rebuilds when the nodes changed and shows the drop highlight.
  void Refresh();
  void Rebuild();

 signals:
  // After each mouse event passed on to the controller.
  void handled();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  std::string KeyAt(const QPoint& pos) const;

  JobTreeEvents& controller_;
  IconOf iconOf_;
  std::vector<JobNode> shown_;  // the nodes the tree was last built from
  std::map<std::string, QTreeWidgetItem*> items_;
  std::string pressedKey_;
  QPoint pressedAt_;
  bool moved_ = false;  // the pointer left the press point by the drag distance
};

}  // namespace tessiva

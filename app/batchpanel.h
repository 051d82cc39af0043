// The parts the batch windows (the job queue and the sequence builder) share
// in the desktop program: the panel laid in the frame's client area, and the
// tree view that forwards the pointer to the controller.
#pragma once

#include <QFrame>
#include <QIcon>
#include <QTimer>
#include <QTreeWidget>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "batch/batchwindow.h"
#include "registrybinding.h"

class QHBoxLayout;
class QLabel;

namespace tessiva {

// "Tree1" of a batch window: mirrors the controller's nodes and forwards
// presses, moves and releases as clicks and drags.
class JobTreeView : public QTreeWidget {
  Q_OBJECT

 public:
  using IconOf = std::function<QIcon(int image)>;
  JobTreeView(BatchWindow& controller, IconOf iconOf, QWidget* parent);

  // Rebuilds when the nodes changed and shows the drop highlight.
  void Refresh();
  void Rebuild();

 Q_SIGNALS:
  // After each mouse event passed on to the controller.
  void handled();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  std::string KeyAt(const QPoint& pos) const;

  BatchWindow& controller_;
  IconOf iconOf_;
  std::vector<JobNode> shown_;  // the nodes the tree was last built from
  std::map<std::string, QTreeWidgetItem*> items_;
  std::string pressedKey_;
  QPoint pressedAt_;
  bool moved_ = false;  // the pointer left the press point by the drag distance
};

// A batch window's panel: fixed in size and centred by the frame, its controls
// bound to the controller's own registry, its marker blinking while the
// registry's Timer1 runs, and loaded afresh each time it is shown.
class BatchPanel : public QFrame {
  Q_OBJECT

 public:
  // `name` is the window's name in the frame's registry.
  BatchPanel(BatchWindow& controller, const char* name, QSize size, QWidget* parent);
  ~BatchPanel() override;

 protected:
  // The help line Label1 and the tree, for the subclass to lay out.
  QLabel* MakeHelpLine();
  JobTreeView* MakeTree(JobTreeView::IconOf iconOf);
  // Start, and the marker that points at it.
  QHBoxLayout* MakeStartRow();
  // Binds the controls once they are all made; a click on another control
  // than Start goes to `clicked`.
  void Bind(std::function<void(const std::string&)> clicked = {});
  // After each load, for what the subclass shows besides the tree.
  virtual void Loaded() {}

  void showEvent(QShowEvent* event) override;
  void hideEvent(QHideEvent* event) override;

  JobTreeView* tree_ = nullptr;

 private:
  BatchWindow& controller_;
  QTimer blink_;
  std::unique_ptr<RegistryBinding> binding_;
  int subscription_ = 0;
};

}  // namespace tessiva

#include "jobtreeview.h"

#include <QApplication>
#include <QMouseEvent>

#include "registrybinding.h"

namespace tessiva {
namespace {

// Button codes as the controllers count them: left 1, right 2, middle 4.
int ButtonCode(Qt::MouseButtons buttons) {
  int code = 0;
  if (buttons & Qt::LeftButton) code |= JobTreeEvents::kLeftButton;
  if (buttons & Qt::RightButton) code |= JobTreeEvents::kRightButton;
  if (buttons & Qt::MiddleButton) code |= 4;
  return code;
}

}  // namespace

JobTreeView::JobTreeView(JobTreeEvents& controller, IconOf iconOf, QWidget* parent)
    : QTreeWidget(parent), controller_(controller), iconOf_(std::move(iconOf)) {
  setObjectName(QStringLiteral("Tree1"));
  setHeaderHidden(true);
  setSelectionMode(QAbstractItemView::SingleSelection);
  viewport()->installEventFilter(this);
  Rebuild();
}

std::string JobTreeView::KeyAt(const QPoint& pos) const {
  const QTreeWidgetItem* item = itemAt(pos);
  return item ? FromQt(item->data(0, Qt::UserRole).toString()) : std::string();
}

bool JobTreeView::eventFilter(QObject* watched, QEvent* event) {
  if (watched != viewport()) return QTreeWidget::eventFilter(watched, event);
  const QEvent::Type type = event->type();
  if (type != QEvent::MouseButtonPress && type != QEvent::MouseMove && type != QEvent::MouseButtonRelease)
    return false;
  const auto* mouse = static_cast<QMouseEvent*>(event);
  const QPoint pos = mouse->position().toPoint();
  const std::string key = KeyAt(pos);
  if (type == QEvent::MouseButtonPress) {
    pressedKey_ = key;
    pressedAt_ = pos;
    moved_ = false;
    controller_.OnTreeMouseDown(ButtonCode(mouse->button()), key);
  } else if (type == QEvent::MouseMove) {
    if (mouse->buttons() == Qt::NoButton) return false;
    // A hand that trembles on a click doesn't start a drag.
    if (!moved_ && (pos - pressedAt_).manhattanLength() < QApplication::startDragDistance()) return false;
    moved_ = true;
    controller_.OnTreeMouseMove(ButtonCode(mouse->buttons()));
    if (controller_.DragRunning()) controller_.OnDragOver(key);
  } else if (controller_.DragRunning() && mouse->button() == Qt::LeftButton) {
    controller_.OnDragDrop();
  } else {
    const int button = ButtonCode(mouse->button());
    controller_.OnTreeMouseUp(button, key);
    if (button == JobTreeEvents::kLeftButton && !moved_ && !key.empty() && key == pressedKey_)
      controller_.OnNodeClick(key);
  }
  Refresh();
  emit handled();
  return false;
}

void JobTreeView::Refresh() {
  if (controller_.Nodes() != shown_) Rebuild();
  const auto highlight = items_.find(controller_.DropHighlight());
  if (highlight != items_.end()) setCurrentItem(highlight->second);
}

void JobTreeView::Rebuild() {
  shown_ = controller_.Nodes();
  clear();
  items_.clear();
  for (const JobNode& node : shown_) {
    const auto parent = items_.find(node.parent);
    auto* item = parent == items_.end() ? new QTreeWidgetItem(this) : new QTreeWidgetItem(parent->second);
    item->setText(0, ToQt(node.text));
    item->setToolTip(0, ToQt(node.tag));
    item->setIcon(0, iconOf_(node.image));
    item->setData(0, Qt::UserRole, ToQt(node.key));
    items_[node.key] = item;
  }
  expandAll();
}

}  // namespace tessiva

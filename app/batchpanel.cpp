#include "batchpanel.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QHideEvent>
#include <QLabel>
#include <QMouseEvent>
#include <QPushButton>
#include <QShowEvent>

#include "ui/pointer.h"

namespace tessiva {

JobTreeView::JobTreeView(BatchWindow& controller, IconOf iconOf, QWidget* parent)
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
    if (button == kLeftButton && !moved_ && !key.empty() && key == pressedKey_)
      controller_.OnNodeClick(key);
  }
  Refresh();
  Q_EMIT handled();
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

BatchPanel::BatchPanel(BatchWindow& controller, const char* name, QSize size, QWidget* parent)
    : QFrame(parent), controller_(controller) {
  setObjectName(QLatin1String(name));
  setFrameStyle(QFrame::Panel | QFrame::Sunken);
  setBackgroundRole(QPalette::Window);
  setAutoFillBackground(true);
  setFixedSize(size);
  blink_.setInterval(500);
  connect(&blink_, &QTimer::timeout, this, [this] { controller_.OnTimer1(); });
  // Label1 and Command1 are also names of the frame's own controls.
  MarkOwnBinding(this);
}

BatchPanel::~BatchPanel() {
  if (subscription_) controller_.Controls().Unsubscribe(subscription_);
}

QLabel* BatchPanel::MakeHelpLine() {
  auto* help = new QLabel(this);
  help->setObjectName(QStringLiteral("Label1"));
  help->setWordWrap(true);
  return help;
}

JobTreeView* BatchPanel::MakeTree(JobTreeView::IconOf iconOf) {
  return tree_ = new JobTreeView(controller_, std::move(iconOf), this);
}

QHBoxLayout* BatchPanel::MakeStartRow() {
  auto* row = new QHBoxLayout;
  auto* start = new QPushButton(QStringLiteral("Start"), this);
  start->setObjectName(QStringLiteral("Command1"));
  start->setMinimumWidth(120);
  row->addWidget(start);
  auto* marker = new QLabel(QStringLiteral("<< Start"), this);
  marker->setObjectName(QStringLiteral("FlashInfo"));
  marker->setStyleSheet(QStringLiteral("color: red; font-weight: bold;"));
  row->addWidget(marker);
  row->addStretch(1);
  return row;
}

void BatchPanel::Bind(std::function<void(const std::string&)> clicked) {
  binding_ = std::make_unique<RegistryBinding>(controller_.Controls(), this);
  connect(binding_.get(), &RegistryBinding::clicked, this, [this, clicked](const std::string& name) {
    if (name == "Command1")
      controller_.OnCommand1();
    else if (clicked)
      clicked(name);
    tree_->Refresh();
  });
  subscription_ = controller_.Controls().Subscribe([this](const std::string& name, const ControlState& state) {
    if (name != "Timer1") return;
    if (state.checked && !blink_.isActive()) blink_.start();
    if (!state.checked) blink_.stop();
  });
}

void BatchPanel::showEvent(QShowEvent* event) {
  QFrame::showEvent(event);
  // Each showing is a new load: what a previous visit gathered is gone.
  if (event->spontaneous()) return;
  controller_.Load();
  tree_->Rebuild();
  Loaded();
}

void BatchPanel::hideEvent(QHideEvent* event) {
  QFrame::hideEvent(event);
  if (!event->spontaneous()) blink_.stop();
}

}  // namespace tessiva

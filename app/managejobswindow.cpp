#include "managejobswindow.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QMouseEvent>
#include <QPushButton>
#include <QStyle>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace tessiva {
namespace {

// Button codes as the controller counts them: left 1, right 2, middle 4.
int ButtonCode(Qt::MouseButtons buttons) {
  int code = 0;
  if (buttons & Qt::LeftButton) code |= ManageJobs::kLeftButton;
  if (buttons & Qt::RightButton) code |= ManageJobs::kRightButton;
  if (buttons & Qt::MiddleButton) code |= 4;
  return code;
}

QIcon NodeIcon(int image, const QStyle* style) {
  switch (image) {
    case ManageJobs::kComputer: return style->standardIcon(QStyle::SP_ComputerIcon);
    case ManageJobs::kQueue: return style->standardIcon(QStyle::SP_FileDialogListView);
    case ManageJobs::kJobs: return style->standardIcon(QStyle::SP_DirOpenIcon);
    case ManageJobs::kTrash: return style->standardIcon(QStyle::SP_TrashIcon);
    case ManageJobs::kSequence: return style->standardIcon(QStyle::SP_FileDialogContentsView);
    case ManageJobs::kHasResult: return style->standardIcon(QStyle::SP_MessageBoxWarning);
    default: return style->standardIcon(QStyle::SP_FileIcon);
  }
}

}  // namespace

ManageJobsWindow::ManageJobsWindow(ManageJobs& controller, QWidget* parent)
    : QFrame(parent), controller_(controller) {
  setObjectName(QStringLiteral("ManageJobs"));
  setFrameStyle(QFrame::Panel | QFrame::Sunken);
  setBackgroundRole(QPalette::Window);
  setAutoFillBackground(true);
  // 10965 by 7000 twips at 15 twips a pixel; the frame centres it.
  setFixedSize(731, 467);
  blink_.setInterval(500);
  connect(&blink_, &QTimer::timeout, this, [this] { controller_.OnTimer1(); });
  // Label1 and Command1 are also names of the frame's own controls.
  MarkOwnBinding(this);
  BuildControls();
}

ManageJobsWindow::~ManageJobsWindow() {
  if (subscription_) controller_.Controls().Unsubscribe(subscription_);
}

void ManageJobsWindow::BuildControls() {
  auto* layout = new QVBoxLayout(this);
  auto* help = new QLabel(this);
  help->setObjectName(QStringLiteral("Label1"));
  help->setWordWrap(true);
  layout->addWidget(help);

  tree_ = new QTreeWidget(this);
  tree_->setObjectName(QStringLiteral("Tree1"));
  tree_->setHeaderHidden(true);
  tree_->setSelectionMode(QAbstractItemView::SingleSelection);
  tree_->viewport()->installEventFilter(this);
  layout->addWidget(tree_, 1);

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
  layout->addLayout(row);

  binding_ = std::make_unique<RegistryBinding>(controller_.Controls(), this);
  connect(binding_.get(), &RegistryBinding::clicked, this, [this](const std::string& name) {
    if (name == "Command1") controller_.OnCommand1();
  });
  // The blink timer runs while the registry says Timer1 is on.
  subscription_ = controller_.Controls().Subscribe([this](const std::string& name, const ControlState& state) {
    if (name != "Timer1") return;
    if (state.checked && !blink_.isActive()) blink_.start();
    if (!state.checked) blink_.stop();
  });
  Rebuild();
}

std::string ManageJobsWindow::KeyAt(const QPoint& pos) const {
  const QTreeWidgetItem* item = tree_->itemAt(pos);
  return item ? FromQt(item->data(0, Qt::UserRole).toString()) : std::string();
}

bool ManageJobsWindow::eventFilter(QObject* watched, QEvent* event) {
  if (watched != tree_->viewport()) return QFrame::eventFilter(watched, event);
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
    if (button == ManageJobs::kLeftButton && !moved_ && !key.empty() && key == pressedKey_)
      controller_.OnNodeClick(key);
  }
  Refresh();
  return false;
}

void ManageJobsWindow::Refresh() {
  if (controller_.Nodes() != shown_) Rebuild();
  const auto highlight = items_.find(controller_.DropHighlight());
  if (highlight != items_.end()) tree_->setCurrentItem(highlight->second);
}

void ManageJobsWindow::Rebuild() {
  shown_ = controller_.Nodes();
  tree_->clear();
  items_.clear();
  for (const JobNode& node : shown_) {
    const auto parent = items_.find(node.parent);
    auto* item = parent == items_.end() ? new QTreeWidgetItem(tree_) : new QTreeWidgetItem(parent->second);
    item->setText(0, ToQt(node.text));
    item->setToolTip(0, ToQt(node.tag));
    item->setIcon(0, NodeIcon(node.image, style()));
    item->setData(0, Qt::UserRole, ToQt(node.key));
    items_[node.key] = item;
  }
  tree_->expandAll();
}

void ManageJobsWindow::showEvent(QShowEvent* event) {
  QFrame::showEvent(event);
  // Each showing is a new load: the queue of a previous visit is gone.
  if (event->spontaneous()) return;
  controller_.Load();
  Rebuild();
}

void ManageJobsWindow::hideEvent(QHideEvent* event) {
  QFrame::hideEvent(event);
  if (!event->spontaneous()) blink_.stop();
}

}  // namespace tessiva

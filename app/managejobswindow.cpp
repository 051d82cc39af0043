#include "managejobswindow.h"

#include <QHBoxLayout>
#include <QHideEvent>
#include <QLabel>
#include <QPushButton>
#include <QShowEvent>
#include <QStyle>
#include <QVBoxLayout>

namespace tessiva {
namespace {

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

  tree_ = new JobTreeView(controller_, [this](int image) { return NodeIcon(image, style()); }, this);
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
}

void ManageJobsWindow::showEvent(QShowEvent* event) {
  QFrame::showEvent(event);
  // Each showing is a new load: the queue of a previous visit is gone.
  if (event->spontaneous()) return;
  controller_.Load();
  tree_->Rebuild();
}

void ManageJobsWindow::hideEvent(QHideEvent* event) {
  QFrame::hideEvent(event);
  if (!event->spontaneous()) blink_.stop();
}

}  // namespace tessiva

#include "framewindow.h"

#include <QCloseEvent>
#include <QFrame>
#include <QGridLayout>
#include <QLabel>
#include <QPushButton>
#include <QStatusBar>
#include <QVBoxLayout>

#include "aboutwindow.h"
#include "analysewindow.h"
#include "analysis/capture.h"
#include "areawindow.h"
#include "collectorwindow.h"
#include "managejobswindow.h"
#include "miseendonnewindow.h"
#include "paramwindow.h"
#include "pubwindow.h"

namespace tessiva {
namespace {

struct NamedCaption {
  const char* name;
  const char* caption;
};

constexpr NamedCaption kCommands[] = {
    {"Command1(0)", "Input Data"}, {"Command1(1)", "Manage Jobs"}, {"Command1(2)", "Analyse"}};

}  // namespace

FrameWindow::FrameWindow(MDIForm1& controller, ControlRegistry& controls, Param& param, ManageJobs& jobs,
                         MiseEnDonne& input, AreaForm& area, NewAnalyse& analyse)
    : controller_(controller), controls_(controls), analyse_(analyse) {
  analyse_.Captures = &capture_;
  setObjectName(QStringLiteral("MDIForm1"));
  setMinimumSize(MDIForm1::kMinWidth, MDIForm1::kMinHeight);
  auto* central = new QWidget(this);
  auto* layout = new QVBoxLayout(central);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(0);
  layout->addWidget(BuildCommandBar());
  layout->addWidget(BuildClientArea(jobs, input, area, analyse), 1);
  setCentralWidget(central);
  BuildStatusArea();
  // The parameters float over the frame, beside the tool that opens them.
  new ParamWindow(param, this);
  new CollectorWindow(analyse, this);
  // The pointer over the bare client area, not over a window in it, reaches mouseMoveEvent.
  for (QWidget* w : {static_cast<QWidget*>(this), central, client_}) w->setMouseTracking(true);

  binding_ = std::make_unique<RegistryBinding>(controls_, this);
  connect(binding_.get(), &RegistryBinding::clicked, this, &FrameWindow::OnClicked);
}

FrameWindow::~FrameWindow() { analyse_.Captures = nullptr; }

QWidget* FrameWindow::BuildCommandBar() {
  auto* bar = new QWidget(this);
  auto* layout = new QHBoxLayout(bar);
  layout->setContentsMargins(8, 6, 15, 6);
  for (const NamedCaption& command : kCommands) {
    auto* button = new QPushButton(QLatin1String(command.caption), bar);
    button->setObjectName(QLatin1String(command.name));
    button->setMinimumWidth(120);
    layout->addWidget(button);
  }
  // A developer's aid: marks patterns 100 and 110 of the result on show.
  auto* output = new QPushButton(QStringLiteral("Output"), bar);
  output->setObjectName(QStringLiteral("Command2"));
  layout->addWidget(output);
  layout->addStretch(1);
  auto* logo = new LogoPicture(bar);
  logo->setObjectName(QStringLiteral("Picture3"));
  connect(logo, &LogoPicture::clicked, this, [this] { AboutWindow(this).exec(); });
  layout->addWidget(logo);
  return bar;
}

QWidget* FrameWindow::BuildClientArea(ManageJobs& jobs, MiseEnDonne& input, AreaForm& area, NewAnalyse& analyse) {
  client_ = new QWidget(this);
  client_->setBackgroundRole(QPalette::Dark);
  client_->setAutoFillBackground(true);
  // Every window of the client area shares one cell: a tool fills it; Pub, made
  // first and so lying beneath, stays centred.
  auto* layout = new QGridLayout(client_);
  layout->setContentsMargins(0, 0, 0, 0);
  auto* pub = new PubWindow(client_);
  pub->setObjectName(QStringLiteral("Pub"));
  layout->addWidget(pub, 0, 0, Qt::AlignCenter);
  layout->addWidget(new ManageJobsWindow(jobs, client_), 0, 0, Qt::AlignCenter);
  layout->addWidget(new MiseEnDonneWindow(input, client_), 0, 0, Qt::AlignCenter);
  layout->addWidget(new AnalyseWindow(analyse, client_), 0, 0);
  layout->addWidget(new AreaWindow(area, client_), 0, 0);
  return client_;
}

void FrameWindow::BuildStatusArea() {
  auto* status = new QLabel(this);
  status->setObjectName(QStringLiteral("Label1"));
  statusBar()->addWidget(status, 1);
  auto* pointer = new QLabel(this);
  pointer->setObjectName(QStringLiteral("Label2"));
  statusBar()->addPermanentWidget(pointer);
}

void FrameWindow::PlaceAtStartBounds(QPoint screenOrigin) {
  const ControlState& bounds = controls_.Get("MDIForm1");
  resize(bounds.width, bounds.height);
  move(screenOrigin + QPoint(bounds.left, bounds.top));
}

void FrameWindow::OnClicked(const std::string& name) {
  if (const auto index = ControlIndex(name, "Command1")) controller_.OnCommand1(*index);
  if (name == "Command2") MarkOutputPatterns(analyse_);
}

void FrameWindow::mouseMoveEvent(QMouseEvent* event) {
  QMainWindow::mouseMoveEvent(event);
  controller_.OnMouseMove();
}

void FrameWindow::resizeEvent(QResizeEvent* event) {
  QMainWindow::resizeEvent(event);
  controller_.OnResize(width(), height(), client_->width(), client_->height());
}

void FrameWindow::closeEvent(QCloseEvent* event) {
  controller_.Unload();
  event->accept();
}

}  // namespace tessiva

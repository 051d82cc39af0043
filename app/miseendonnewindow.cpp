#include "miseendonnewindow.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPixmap>
#include <QPushButton>
#include <QRadioButton>
#include <QShowEvent>
#include <QStyle>
#include <QVBoxLayout>

namespace tessiva {
namespace {

QIcon NodeIcon(int image, const QStyle* style) {
  switch (image) {
    case MiseEnDonne::kFileNode: return style->standardIcon(QStyle::SP_FileDialogContentsView);
    case MiseEnDonne::kReferenceFolder:
    case MiseEnDonne::kDeformedFolder: return style->standardIcon(QStyle::SP_DirOpenIcon);
    default: return style->standardIcon(QStyle::SP_FileIcon);
  }
}

constexpr int kPreviewSize = 120;

}  // namespace

MiseEnDonneWindow::MiseEnDonneWindow(MiseEnDonne& controller, QWidget* parent)
    : QFrame(parent), controller_(controller) {
  setObjectName(QStringLiteral("MiseEnDonne"));
  setFrameStyle(QFrame::Panel | QFrame::Sunken);
  setBackgroundRole(QPalette::Window);
  setAutoFillBackground(true);
  // 10965 by 4485 twips at 15 twips a pixel; the frame centres it.
  setFixedSize(731, 299);
  blink_.setInterval(500);
  connect(&blink_, &QTimer::timeout, this, [this] { controller_.OnTimer1(); });
  // Label1, Label2 and Command1 are also names of the frame's own controls.
  MarkOwnBinding(this);
  BuildControls();
}

MiseEnDonneWindow::~MiseEnDonneWindow() {
  if (subscription_) controller_.Controls().Unsubscribe(subscription_);
}

void MiseEnDonneWindow::BuildControls() {
  auto* layout = new QVBoxLayout(this);
  auto* help = new QLabel(this);
  help->setObjectName(QStringLiteral("Label1"));
  help->setWordWrap(true);
  layout->addWidget(help);

  auto* body = new QHBoxLayout;
  tree_ = new JobTreeView(controller_, [this](int image) { return NodeIcon(image, style()); }, this);
  body->addWidget(tree_, 3);
  auto* info = new QLabel(this);
  info->setObjectName(QStringLiteral("Label2"));
  info->setAlignment(Qt::AlignLeft | Qt::AlignTop);
  info->setWordWrap(true);
  info->setTextInteractionFlags(Qt::TextSelectableByMouse);
  body->addWidget(info, 3);
  auto* side = new QVBoxLayout;
  preview_ = new QLabel(this);
  preview_->setObjectName(QStringLiteral("Image1"));
  preview_->setFixedSize(kPreviewSize, kPreviewSize);
  preview_->setAlignment(Qt::AlignCenter);
  preview_->setFrameStyle(QFrame::Box | QFrame::Plain);
  side->addWidget(preview_);
  for (int i = 0; i < 2; ++i) {
    auto* option = new QRadioButton(i == 0 ? QStringLiteral("Sequential") : QStringLiteral("Incremental"), this);
    option->setObjectName(QStringLiteral("Option1(%1)").arg(i));
    side->addWidget(option);
  }
  side->addStretch(1);
  body->addLayout(side);
  layout->addLayout(body, 1);

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
  auto* edit = new QPushButton(QStringLiteral("Edit"), this);
  edit->setObjectName(QStringLiteral("EditButton"));
  row->addWidget(edit);
  layout->addLayout(row);

  binding_ = std::make_unique<RegistryBinding>(controller_.Controls(), this);
  connect(binding_.get(), &RegistryBinding::clicked, this, [this](const std::string& name) {
    if (name == "Command1") controller_.OnCommand1();
    else if (name == "EditButton") controller_.OnEditButton();
    else if (const auto index = ControlIndex(name, "Option1")) controller_.OnOption1Click(*index);
    tree_->Refresh();
  });
  connect(tree_, &JobTreeView::handled, this, &MiseEnDonneWindow::ShowPreview);
  // The blink timer runs while the registry says Timer1 is on.
  subscription_ = controller_.Controls().Subscribe([this](const std::string& name, const ControlState& state) {
    if (name != "Timer1") return;
    if (state.checked && !blink_.isActive()) blink_.start();
    if (!state.checked) blink_.stop();
  });
}

void MiseEnDonneWindow::ShowPreview() {
  const std::string& path = controller_.PreviewPath();
  if (path == previewShown_) return;
  previewShown_ = path;
  const QPixmap picture(ToQt(path));
  if (picture.isNull()) {
    preview_->clear();
    return;
  }
  preview_->setPixmap(picture.scaled(preview_->size(), Qt::KeepAspectRatio, Qt::SmoothTransformation));
}

void MiseEnDonneWindow::showEvent(QShowEvent* event) {
  QFrame::showEvent(event);
  // Each showing is a new load: the pictures of a previous visit are gone.
  if (event->spontaneous()) return;
  controller_.Load();
  tree_->Rebuild();
  ShowPreview();
}

void MiseEnDonneWindow::hideEvent(QHideEvent* event) {
  QFrame::hideEvent(event);
  if (!event->spontaneous()) blink_.stop();
}

}  // namespace tessiva

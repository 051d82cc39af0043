#include "miseendonnewindow.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPixmap>
#include <QPushButton>
#include <QRadioButton>
#include <QStyle>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>

#include "qimagecanvas.h"
#include "setup/picture.h"

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

// 10965 by 4485 twips at 15 twips a pixel.
MiseEnDonneWindow::MiseEnDonneWindow(MiseEnDonne& controller, QWidget* parent)
    : BatchPanel(controller, "MiseEnDonne", {731, 299}, parent), controller_(controller) {
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(MakeHelpLine());

  auto* body = new QHBoxLayout;
  body->addWidget(MakeTree([this](int image) { return NodeIcon(image, style()); }), 3);
  auto* info = new QLabel(this);
  info->setObjectName(QStringLiteral("Label2"));
  info->setAlignment(Qt::AlignLeft | Qt::AlignTop);
  info->setWordWrap(true);
  info->setTextInteractionFlags(Qt::TextSelectableByMouse);
  body->addWidget(info, 3);
  body->addLayout(MakeSide());
  layout->addLayout(body, 1);

  QHBoxLayout* row = MakeStartRow();
  auto* edit = new QPushButton(QStringLiteral("Edit"), this);
  edit->setObjectName(QStringLiteral("EditButton"));
  row->addWidget(edit);
  layout->addLayout(row);

  Bind([this](const std::string& name) {
    if (name == "EditButton")
      controller_.OnEditButton();
    else if (const auto index = ControlIndex(name, "Option1"))
      controller_.OnOption1Click(*index);
  });
  connect(tree_, &JobTreeView::handled, this, &MiseEnDonneWindow::ShowPreview);
}

// The preview of the last picture chosen, and the kind of sequence below it.
QLayout* MiseEnDonneWindow::MakeSide() {
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
  return side;
}

void MiseEnDonneWindow::ShowPreview() {
  const std::string& path = controller_.PreviewPath();
  if (path == previewShown_) return;
  previewShown_ = path;
  // Read as Tessiva reads it, so that TIFF and PNG show as well as BMP.
  GreyArray pixels;
  std::array<Colour, 256> palette{};
  if (path.empty() || !ReadWholePicture(path, pixels, &palette).empty()) {
    preview_->clear();
    return;
  }
  const int width = pixels.UpperX(), height = pixels.UpperY();
  const double scale = std::min(static_cast<double>(kPreviewSize) / width, static_cast<double>(kPreviewSize) / height);
  QImageCanvas canvas(std::max(1, static_cast<int>(std::lround(width * scale))),
                      std::max(1, static_cast<int>(std::lround(height * scale))));
  canvas.DrawPicture({pixels.Data(), width, height, pixels.Stride(), palette.data()}, 0, 0, width, height, 0, 0,
                     canvas.PixelWidth(), canvas.PixelHeight());
  preview_->setPixmap(QPixmap::fromImage(canvas.Image()));
}

}  // namespace tessiva

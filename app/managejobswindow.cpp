#include "managejobswindow.h"

#include <QHBoxLayout>
#include <QLabel>
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

// 10965 by 7000 twips at 15 twips a pixel.
ManageJobsWindow::ManageJobsWindow(ManageJobs& controller, QWidget* parent)
    : BatchPanel(controller, "ManageJobs", {731, 467}, parent) {
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(MakeHelpLine());
  layout->addWidget(MakeTree([this](int image) { return NodeIcon(image, style()); }), 1);
  layout->addLayout(MakeStartRow());
  Bind();
}

}  // namespace tessiva

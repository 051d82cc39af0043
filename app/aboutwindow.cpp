#include "aboutwindow.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QVBoxLayout>

#include "pubwindow.h"

namespace tessiva {
namespace {

constexpr const char* kLicence =
    "Licensed to its users by The Tessiva developers; the terms come with the package that installed it.";
constexpr const char* kDocumentation =
    "The guide is README.md beside the sources; tessiva-cli --help describes each command of the command line.";

QLabel* Paragraph(const QString& text, QWidget* parent) {
  auto* label = new QLabel(text, parent);
  label->setWordWrap(true);
  label->setTextInteractionFlags(Qt::TextSelectableByMouse);
  return label;
}

}  // namespace

AboutWindow::AboutWindow(QWidget* parent) : QDialog(parent) {
  setObjectName(QStringLiteral("APropos"));
  setWindowTitle(QStringLiteral("About Tessiva"));
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(new LogoPicture(this), 0, Qt::AlignHCenter);
  layout->addWidget(CentredCaption(QStringLiteral("Tessiva"), 16, true, this));
  auto* version = CentredCaption(QStringLiteral("Version " TESSIVA_VERSION), 10, false, this);
  version->setObjectName(QStringLiteral("Version"));
  layout->addWidget(version);
  layout->addWidget(Paragraph(QStringLiteral("Digital image correlation: displacement and strain fields measured on "
                                             "pictures of a deforming specimen."),
                              this));
  auto* licence = Paragraph(QString::fromLatin1(kLicence), this);
  licence->setObjectName(QStringLiteral("Licence"));
  layout->addWidget(licence);
  auto* documentation = Paragraph(QString::fromLatin1(kDocumentation), this);
  documentation->setObjectName(QStringLiteral("Documentation"));
  layout->addWidget(documentation);
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok, this);
  connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
  layout->addWidget(buttons);
  setFixedWidth(380);
}

}  // namespace tessiva

#include "paramwindow.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QRadioButton>
#include <QTabWidget>
#include <QVBoxLayout>
#include <initializer_list>

namespace tessiva {
namespace {

// A caption, a field and its help line; any of them may be absent.
struct FieldRow {
  const char* caption;
  const char* field;
  const char* help;
};

QLabel* Caption(const char* text, QWidget* parent) {
  auto* label = new QLabel(QString::fromLatin1(text), parent);
  label->setTextFormat(Qt::PlainText);  // keeps the blanks that align the help lines
  return label;
}

// A titled group of field rows, then lines of explanation across the group.
QGroupBox* FieldGroup(const char* title, std::initializer_list<FieldRow> rows,
                      std::initializer_list<const char*> notes, QWidget* parent) {
  auto* group = new QGroupBox(QString::fromLatin1(title), parent);
  auto* grid = new QGridLayout(group);
  int row = 0;
  for (const FieldRow& r : rows) {
    if (r.caption) grid->addWidget(Caption(r.caption, group), row, 0);
    if (r.field) {
      auto* edit = new QLineEdit(group);
      edit->setObjectName(QString::fromLatin1(r.field));
      edit->setFixedWidth(80);
      grid->addWidget(edit, row, 1);
    }
    if (r.help) grid->addWidget(Caption(r.help, group), row, 2);
    ++row;
  }
  for (const char* note : notes) grid->addWidget(Caption(note, group), row++, 0, 1, 3);
  grid->setColumnStretch(2, 1);
  return group;
}

// Two option buttons "Name(0)" and "Name(1)"; the group makes them exclusive.
QGroupBox* OptionPair(const char* title, const char* name, const char* caption0, const char* caption1,
                      QWidget* parent) {
  auto* group = new QGroupBox(QString::fromLatin1(title), parent);
  auto* layout = new QVBoxLayout(group);
  int index = 0;
  for (const char* caption : {caption0, caption1}) {
    auto* option = new QRadioButton(QString::fromLatin1(caption), group);
    option->setObjectName(QStringLiteral("%1(%2)").arg(QLatin1String(name)).arg(index++));
    layout->addWidget(option);
  }
  return group;
}

}  // namespace

ParamWindow::ParamWindow(Param& controller, QWidget* frame) : QWidget(frame, Qt::Tool), controller_(controller) {
  setObjectName(QStringLiteral("Param"));
  setWindowTitle(QStringLiteral("Computational parameters"));
  auto* tabs = new QTabWidget(this);
  tabs->setObjectName(QStringLiteral("SSTab1"));
  // The "Parametre" tool of the setup and analysis windows opens tab 1.
  tabs->addTab(BuildMaterialTab(), QStringLiteral("Material"));
  tabs->addTab(BuildCorrelationTab(), QStringLiteral("Correlation"));
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(tabs);

  binding_ = std::make_unique<RegistryBinding>(controller_.Controls(), this);
  connect(binding_.get(), &RegistryBinding::edited, this,
          [this](const std::string& field) { controller_.OnTextChange(field); });
  connect(binding_.get(), &RegistryBinding::keyPressed, this,
          [this](const std::string& field, int key) { controller_.OnTextKeyPress(field, key); });
}

ParamWindow::~ParamWindow() = default;

QWidget* ParamWindow::BuildMaterialTab() {
  auto* tab = new QWidget;
  auto* layout = new QVBoxLayout(tab);
  layout->addWidget(FieldGroup("Elastic constants",
                               {{"Young Modulus  :", "TextYoung", "in MPa"},
                                {"Poisson Ratio  :", "TextPoisson", nullptr}},
                               {}, tab));
  layout->addStretch(1);
  return tab;
}

QWidget* ParamWindow::BuildCorrelationTab() {
  auto* tab = new QWidget;
  auto* layout = new QVBoxLayout(tab);
  layout->addWidget(FieldGroup("Pattern size",
                               {{"Min  :", "Text1", "Minimum  :   6 >> Reduce Time"},
                                {"Max :", "Text2", "Maximum : 32 >> Increase Time"}},
                               {"Minimum values are for large strain, maximum for little displacements."}, tab));
  layout->addWidget(FieldGroup("Grid step",
                               {{"Val :", "Text3", "pixel for calculations."},
                                {nullptr, nullptr, "Minimum  :    2 >> Increase Time"},
                                {nullptr, nullptr, "Maximum :  20 >> Reduce Time"}},
                               {"Grid step is the distance between two patterns."}, tab));
  layout->addWidget(FieldGroup("Precision",
                               {{nullptr, "Text4", "Min  :     1 >> Reduce Time"},
                                {nullptr, nullptr, "Max : 100 >> Increase Time"}},
                               {}, tab));
  auto* options = new QHBoxLayout;
  options->addWidget(OptionPair("Interpolation", "Option1", "Bilinear", "Spline", tab));
  options->addWidget(OptionPair("Correlation coefficient", "Option2", "Square", "Crossed", tab));
  layout->addLayout(options);
  auto* largeStrain = new QCheckBox(QStringLiteral("Large strain calculation > 50 %"), tab);
  largeStrain->setObjectName(QStringLiteral("Check1"));
  layout->addWidget(largeStrain);
  layout->addWidget(Caption("Check it if the strain is larger than 50%.", tab));
  layout->addWidget(Caption("Increase Time", tab));
  layout->addStretch(1);
  return tab;
}

void ParamWindow::showEvent(QShowEvent* event) {
  QWidget::showEvent(event);
  // Centred in the frame whenever it is shown: each showing follows a load.
  if (QWidget* frame = parentWidget()) move(frame->geometry().center() - rect().center());
}

}  // namespace tessiva

#include "flcpanel.h"

#include <QCheckBox>
#include <QFrame>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QMouseEvent>
#include <QPlainTextEdit>
#include <QRadioButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QToolButton>
#include <QVBoxLayout>
#include <initializer_list>

#include "canvasview.h"
#include "registrybinding.h"

namespace tessiva {
namespace {

constexpr QSize kGraphSize{480, 330};
constexpr QSize kGaugeSize{16, 60};

// Option buttons "Name(0)", "Name(1)"... in a row, each reporting its index.
template <typename OnChoice>
QGroupBox* Choice(const char* title, const char* name, std::initializer_list<const char*> captions, QWidget* parent,
                  OnChoice onChoice) {
  auto* group = new QGroupBox(QLatin1String(title), parent);
  auto* layout = new QHBoxLayout(group);
  int index = 0;
  for (const char* caption : captions) {
    auto* button = new QRadioButton(QLatin1String(caption), group);
    button->setObjectName(QStringLiteral("%1(%2)").arg(QLatin1String(name)).arg(index));
    QObject::connect(button, &QRadioButton::clicked, group, [onChoice, index] { onChoice(index); });
    layout->addWidget(button);
    ++index;
  }
  return group;
}

}  // namespace

FlcPanel::FlcPanel(NewAnalyse& controller, QWidget* parent) : QWidget(parent), controller_(controller) {
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  auto* image1 = new QToolButton(this);
  image1->setObjectName(QStringLiteral("Image1"));
  image1->setText(QStringLiteral("Graph"));
  image1->setToolTip(QStringLiteral("Click to show graph"));
  connect(image1, &QToolButton::clicked, this, [this] { controller_.Flc.OnImage1Click(); });
  layout->addWidget(image1, 0, Qt::AlignLeft);

  // The panel scrolls when the window is smaller than the graph and its frame.
  auto* scroll = new QScrollArea(this);
  scroll->setObjectName(QStringLiteral("GrapheAna"));
  scroll->setWidgetResizable(true);
  scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  scroll->setMinimumWidth(kGraphSize.width() + 40);
  scroll->setVisible(false);
  auto* panel = new QWidget(scroll);
  auto* inner = new QVBoxLayout(panel);
  graph_ = new CanvasView(panel);
  graph_->setObjectName(QStringLiteral("Graphe"));
  graph_->setMouseTracking(true);
  graph_->onMouse = [this](QMouseEvent* event) { OnGrapheMouse(event); };
  controller_.Graphe = &graph_->Resize(kGraphSize);
  // The diagram's marker: a square over the graph where the clicked point stands.
  auto* marker = new QFrame(graph_);
  marker->setFrameStyle(QFrame::Box);
  marker_ = marker;
  marker_->setObjectName(QStringLiteral("Shape2"));
  marker_->setAttribute(Qt::WA_TransparentForMouseEvents);
  marker_->setVisible(false);
  inner->addWidget(graph_);
  text_ = new QPlainTextEdit(panel);
  text_->setObjectName(QStringLiteral("TextCLF"));
  text_->setToolTip(QStringLiteral("Press Enter to validate the new values"));
  text_->setVisible(false);
  text_->installEventFilter(this);
  inner->addWidget(text_);
  for (const char* name : {"LabMax", "LabIso"}) {
    auto* label = new QLabel(panel);
    label->setObjectName(QLatin1String(name));
    inner->addWidget(label);
  }
  inner->addWidget(BuildFrame(panel));
  inner->addStretch(1);
  scroll->setWidget(panel);
  layout->addWidget(scroll, 1);

  subscription_ = controller_.Controls().Subscribe(
      [this](const std::string& name, const ControlState& state) { OnRegistryChange(name, state); });
}

FlcPanel::~FlcPanel() {
  controller_.Controls().Unsubscribe(subscription_);
  controller_.Graphe = nullptr;
  controller_.Flc.Picture14 = nullptr;
}

QWidget* FlcPanel::BuildFrame(QWidget* parent) {
  FormingLimits& flc = controller_.Flc;
  auto* frame = new QGroupBox(QStringLiteral("FLC"), parent);
  frame->setObjectName(QStringLiteral("FrameCLF"));
  frame->setVisible(false);
  auto* layout = new QVBoxLayout(frame);
  auto* line = new QHBoxLayout;
  line->addWidget(new QLabel(QStringLiteral("Line position"), frame));
  position_ = new QScrollBar(Qt::Horizontal, frame);
  position_->setObjectName(QStringLiteral("PosScroll"));
  position_->setRange(0, 100);
  position_->setValue(flc.PosScroll);
  connect(position_, &QScrollBar::valueChanged, this, [&flc](int value) {
    if (value != flc.PosScroll) flc.OnPosScrollChange(value);
  });
  line->addWidget(position_, 1);
  layout->addLayout(line);
  auto* options = new QHBoxLayout;
  options->addWidget(Choice("Strain", "OptionE", {"Epsilon I", "Epsilon II"}, frame,
                            [&flc](int i) { flc.OnOptionEClick(i); }));
  options->addWidget(Choice("Symetric, keep", "Option1", {"None", "Left", "Right"}, frame,
                            [&flc](int i) { flc.OnOption1Click(i); }));
  layout->addLayout(options);
  auto* method = new QHBoxLayout;
  method->addWidget(Choice("Determination", "FlcMethod", {"Cosine-linear", "ISO 12004-2"}, frame,
                           [&flc](int i) { flc.OnFlcMethodClick(i); }));
  auto* second = new QCheckBox(QStringLiteral("Second derivativ"), frame);
  second->setObjectName(QStringLiteral("SecondCheck"));
  connect(second, &QCheckBox::clicked, this, [&flc](bool checked) { flc.OnSecondCheckClick(checked); });
  method->addWidget(second);
  gauge_ = new CanvasView(frame);
  gauge_->setObjectName(QStringLiteral("Picture14"));
  flc.Picture14 = &gauge_->Resize(kGaugeSize);
  method->addWidget(gauge_);
  auto* quality = new QLabel(frame);
  quality->setObjectName(QStringLiteral("Label24"));
  method->addWidget(quality);
  layout->addLayout(method);
  return frame;
}

// Positions on the graph go to the controller in the graph's own scale.
void FlcPanel::OnGrapheMouse(QMouseEvent* event) {
  const QImageCanvas* g = graph_->Surface();
  if (!g) return;
  const double x = g->ToUserX(event->position().x()), y = g->ToUserY(event->position().y());
  FormingLimits& flc = controller_.Flc;
  switch (event->type()) {
    case QEvent::MouseButtonDblClick:
      flc.OnGrapheDblClick();
      break;
    case QEvent::MouseButtonPress:
      text_->isVisible() ? flc.OnTextCLFClick() : flc.OnGrapheMouseDown(ButtonCode(event->buttons()), x, y);
      break;
    case QEvent::MouseMove:
      flc.OnGrapheMouseMove(ButtonCode(event->buttons()), x, y);
      break;
    case QEvent::MouseButtonRelease:
      flc.OnGrapheMouseUp(ButtonCode(event->button()), x, y);
      break;
    default:
      break;
  }
}

// Enter in TextCLF validates its pairs; Shift+Enter starts a new line.
bool FlcPanel::eventFilter(QObject* watched, QEvent* event) {
  if (watched == text_ && event->type() == QEvent::KeyPress) {
    const auto* key = static_cast<QKeyEvent*>(event);
    if ((key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter) && !(key->modifiers() & Qt::ShiftModifier)) {
      controller_.Flc.OnTextCLFEnter(FromQt(text_->toPlainText()));
      return true;
    }
  }
  return QWidget::eventFilter(watched, event);
}

void FlcPanel::OnRegistryChange(const std::string& name, const ControlState& state) {
  if (name == "TextCLF" && FromQt(text_->toPlainText()) != state.text) {
    text_->setPlainText(ToQt(state.text));
  } else if (name == "Shape2") {
    marker_->setGeometry(state.left, state.top, state.width, state.height);
  } else if (name == "PosScroll" && position_->value() != state.listIndex) {
    const QSignalBlocker quiet(position_);
    position_->setValue(state.listIndex);
  }
}

}  // namespace tessiva

#include "analysewindow.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHideEvent>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMouseEvent>
#include <QPainter>
#include <QPushButton>
#include <QRadioButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QShowEvent>
#include <QVBoxLayout>
#include <algorithm>
#include <functional>
#include <initializer_list>

#include "analysemenus.h"
#include "analysetoolbar.h"
#include "canvasview.h"
#include "flcpanel.h"
#include "lensview.h"
#include "qimagecanvas.h"
#include "rubberoverlay.h"

namespace tessiva {

namespace {

// A rectangle's outline, black with a white line inside, seen on any picture or map.
class Outline : public QWidget {
 public:
  using QWidget::QWidget;

 protected:
  void paintEvent(QPaintEvent*) override {
    QPainter painter(this);
    painter.setPen(Qt::black);
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
    painter.setPen(Qt::white);
    painter.drawRect(rect().adjusted(1, 1, -2, -2));
  }
};

// The axes picture Repere, in pixels.
constexpr QSize kRepereSize(AxisTool::kSide, AxisTool::kSide);
// The colour bar's surface, in pixels.
constexpr QSize kBarSize(318, 40);
// The width of the fields of the smoothing and the amplification.
constexpr int kValueWidth = 70;

// A widget drawn over a canvas that lets the pointer through to it.
void Overlay(QWidget* widget, const char* name) {
  widget->setObjectName(QLatin1String(name));
  widget->setAttribute(Qt::WA_TransparentForMouseEvents);
  widget->hide();
}

struct NamedCaption {
  const char* name;
  const char* caption;
};

struct Option {
  const char* caption;
  const char* tip = nullptr;
};

// Option buttons "Name(0)", "Name(1)"...; the group makes them exclusive.
QGroupBox* OptionGroup(const char* title, const char* name, std::initializer_list<Option> options, QWidget* parent) {
  auto* group = new QGroupBox(QLatin1String(title), parent);
  auto* layout = new QVBoxLayout(group);
  layout->setSpacing(2);
  int index = 0;
  for (const Option& option : options) {
    auto* button = new QRadioButton(QLatin1String(option.caption), group);
    button->setObjectName(QStringLiteral("%1(%2)").arg(QLatin1String(name)).arg(index++));
    if (option.tip) button->setToolTip(QLatin1String(option.tip));
    layout->addWidget(button);
  }
  layout->addStretch(1);
  return group;
}

QCheckBox* Check(const NamedCaption& check, QWidget* parent) {
  auto* box = new QCheckBox(QLatin1String(check.caption), parent);
  box->setObjectName(QLatin1String(check.name));
  return box;
}

// Options whose change is shown by painting the map again.
bool RepaintsTheMap(const std::string& name) {
  for (const char* option : {"Interpolation", "PictureShow", "ShowIsoCheck", "Bad", "ShowReference", "Deborde",
                             "Amplification", "Option3(0)", "Option3(1)"})
    if (name == option) return true;
  return false;
}

}  // namespace

AnalyseWindow::AnalyseWindow(NewAnalyse& controller, QWidget* parent) : QFrame(parent), controller_(controller) {
  setObjectName(QStringLiteral("NewAnalyse"));
  setFrameStyle(QFrame::Panel | QFrame::Sunken);
  setBackgroundRole(QPalette::Window);
  setAutoFillBackground(true);
  // The window's controls belong to the controller's registry, not the frame's.
  MarkOwnBinding(this);
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(new AnalyseToolbar(controller_, this));
  auto* panes = new QHBoxLayout;
  panes->addWidget(BuildMap(), 1);
  panes->addWidget(new FlcPanel(controller_, this));
  panes->addWidget(BuildSide());
  layout->addLayout(panes, 1);

  timer1_.setSingleShot(true);
  timer1_.setInterval(0);
  connect(&timer1_, &QTimer::timeout, this, [this] { controller_.OnTimer1(); });

  ControlRegistry& controls = controller_.Controls();
  binding_ = std::make_unique<RegistryBinding>(controls, this);
  connect(binding_.get(), &RegistryBinding::clicked, this, &AnalyseWindow::OnClicked);
  connect(binding_.get(), &RegistryBinding::keyPressed, this, [this](const std::string& name, int key) {
    if (name == "TextMagni" && key == 13) controller_.PicAnaRefresh();
  });
  subscription_ =
      controls.Subscribe([this](const std::string& name, const ControlState& state) { OnRegistryChange(name, state); });
  // The palette the controller starts with.
  controls.SetChecked("StyleColor(" + std::to_string(controller_.StyleColorIdx) + ")", true);
}

AnalyseWindow::~AnalyseWindow() {
  controller_.Controls().Unsubscribe(subscription_);
  controller_.Repere = nullptr;
  controller_.PicAna = nullptr;
  controller_.IsoPic = nullptr;
}

// The field list, the title, and the map, which scrolls when larger than its view.
QWidget* AnalyseWindow::BuildMap() {
  auto* area = new QWidget(this);
  auto* layout = new QVBoxLayout(area);
  layout->setContentsMargins(0, 0, 0, 0);
  auto* choice = new QHBoxLayout;
  choice->addWidget(new QLabel(QStringLiteral("Field"), area));
  fields_ = new QComboBox(area);
  fields_->setObjectName(QStringLiteral("Combo2"));
  fields_->setMaxVisibleItems(25);
  connect(fields_, &QComboBox::activated, this, [this](int index) {
    controller_.OnCombo2Click(index);
    MirrorList(fields_, controller_.Controls().Get("Combo2"));  // a refused entry is put back
  });
  choice->addWidget(fields_);
  choice->addStretch(1);
  auto* caption = new QLabel(area);
  caption->setObjectName(QStringLiteral("Label1"));
  caption->setAutoFillBackground(true);
  choice->addWidget(caption);
  auto* size = new QPushButton(QStringLiteral("1:1"), area);
  size->setObjectName(QStringLiteral("Command1"));
  size->setToolTip(QStringLiteral("Switch the map's size"));
  choice->addWidget(size);
  choice->addWidget(BuildRepere(area));
  layout->addLayout(choice);
  auto* title = new QLabel(area);
  title->setObjectName(QStringLiteral("Titre"));
  title->setAlignment(Qt::AlignCenter);
  QFont font = title->font();
  font.setPointSize(font.pointSize() + 3);
  font.setBold(true);
  title->setFont(font);
  layout->addWidget(title);

  map_ = new CanvasView(area);
  map_->setObjectName(QStringLiteral("PicAna"));
  map_->setMouseTracking(true);
  // Keys typed on the map go to the armed tool ("+" and "-" step the crack tool's band).
  map_->setFocusPolicy(Qt::ClickFocus);
  map_->installEventFilter(this);
  map_->onMouse = [this](QMouseEvent* event) { OnMapMouse(event); };
  referenceBox_ = new Outline(map_);
  Overlay(referenceBox_, "ReferenceBox");
  new RubberOverlay(controller_.Controls(), map_, [this](double x, double y) {
    return QPointF(x * controller_.View.Zoom, y * controller_.View.Zoom);
  });
  new LensView(controller_.Controls(), map_, [this] { return controller_.View.Zoom; },
               [this](QPoint at) { CentreMapOn(at); });

  scroll_ = new QScrollArea(area);
  scroll_->setAlignment(Qt::AlignCenter);
  scroll_->setBackgroundRole(QPalette::Dark);
  scroll_->setWidget(map_);
  layout->addWidget(scroll_, 1);
  return area;
}

// The user's axes: a left click switches the back colour, a right click
// offers to draw a new axis 1.
QWidget* AnalyseWindow::BuildRepere(QWidget* parent) {
  repere_ = new CanvasView(parent);
  repere_->setObjectName(QStringLiteral("Repere"));
  repere_->setToolTip(QStringLiteral("Left Click to change backcolor, Richt Click to change 1 axis"));
  controller_.Repere = &repere_->Resize(kRepereSize);
  repere_->onMouse = [this](QMouseEvent* event) {
    if (event->type() == QEvent::MouseButtonRelease) controller_.Axes.OnRepereMouseUp(ButtonCode(event->button()));
  };
  controller_.Axes.AfficheRepere();
  return repere_;
}

// The middle of the view shows `at`, a point of the map in its pixels.
void AnalyseWindow::CentreMapOn(QPoint at) {
  const QSize view = scroll_->viewport()->size();
  const QPoint corner = map_->pos() + at - QPoint(view.width() / 2, view.height() / 2);
  scroll_->horizontalScrollBar()->setValue(scroll_->horizontalScrollBar()->value() + corner.x());
  scroll_->verticalScrollBar()->setValue(scroll_->verticalScrollBar()->value() + corner.y());
}

// The colour bar with its labels and the options, scrolling when the window
// is too low for them.
QWidget* AnalyseWindow::BuildSide() {
  auto* panel = new QWidget;
  auto* layout = new QVBoxLayout(panel);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(BuildScale());
  layout->addLayout(BuildOptions());
  layout->addStretch(1);

  auto* side = new QScrollArea(this);
  side->setFrameShape(QFrame::NoFrame);
  side->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  side->setWidgetResizable(true);
  side->setWidget(panel);
  side->setFixedWidth(panel->sizeHint().width() + side->verticalScrollBar()->sizeHint().width());
  return side;
}

// The bar, with its pointer over it, and the five labels of its range under it.
QWidget* AnalyseWindow::BuildScale() {
  scaleFrame_ = new QGroupBox(this);
  scaleFrame_->setObjectName(QStringLiteral("CadreIso"));
  auto* layout = new QVBoxLayout(scaleFrame_);
  bar_ = new CanvasView(scaleFrame_);
  bar_->setObjectName(QStringLiteral("IsoPic"));
  controller_.IsoPic = &bar_->Resize(kBarSize);
  bar_->onMouse = [this](QMouseEvent* event) {
    const QImageCanvas& bar = *bar_->Surface();
    // Dragged past an end, the pointer stays on the bar.
    const double x = bar.ToUserX(std::clamp(event->position().x(), 0.0, bar.PixelWidth() - 1.0));
    if (event->type() == QEvent::MouseButtonPress)
      controller_.OnIsoPicMouseDown(ButtonCode(event->button()), x);
    else if (event->type() == QEvent::MouseMove)
      controller_.OnIsoPicMouseMove(ButtonCode(event->buttons()), x);
    else
      controller_.OnIsoPicMouseUp(ButtonCode(event->button()));
  };
  isoLine_ = new QWidget(bar_);
  isoLine_->setAutoFillBackground(true);
  isoLine_->setPalette(QPalette(Qt::black));
  Overlay(isoLine_, "IsoLine");
  auto* isoLabel = new QLabel(bar_);
  isoLabel->setAutoFillBackground(true);
  isoLabel->setAlignment(Qt::AlignCenter);
  isoLabel_ = isoLabel;
  Overlay(isoLabel_, "IsoLabel");
  layout->addWidget(bar_);

  // The labels spread evenly from one end of the bar to the other.
  auto* labels = new QHBoxLayout;
  for (int i = 0; i < 5; ++i) {
    auto* label = new QLabel(scaleFrame_);
    label->setObjectName(QStringLiteral("LabEchelle(%1)").arg(i));
    if (i > 0) labels->addStretch(1);
    labels->addWidget(label);
    if (i != 0 && i != 4) continue;
    label->setCursor(Qt::PointingHandCursor);
    label->setToolTip(i == 0 ? QStringLiteral("Click to give a new minimum")
                             : QStringLiteral("Click to give a new maximum"));
    label->installEventFilter(this);
    scaleLabels_[i / 4] = label;
  }
  layout->addLayout(labels);
  return scaleFrame_;
}

QLayout* AnalyseWindow::BuildOptions() {
  auto* layout = new QVBoxLayout;
  // The checks two a row, then the two that come with a value.
  auto* display = new QGroupBox(QStringLiteral("Display"), this);
  auto* grid = new QGridLayout(display);
  grid->setVerticalSpacing(2);
  const NamedCaption checks[] = {{"PictureShow", "Show Picture"},
                                 {"ShowIsoCheck", "Show IsoValue"},
                                 {"Bad", "Show Bad Pattern"},
                                 {"ShowReference", "Show Reference"}};
  for (int i = 0; i < 4; ++i) {
    const bool left = i % 2 == 0;
    grid->addWidget(Check(checks[i], display), i / 2, left ? 0 : 1, 1, left ? 1 : 2);
  }
  int row = 2;
  grid->addWidget(Check({"Deborde", "Colour out-of-range values"}, display), row++, 0, 1, 3);
  grid->addWidget(Check({"Interpolation", "Interpolation"}, display), row, 0);
  grid->addWidget(new QLabel(QStringLiteral("Smoothing"), display), row, 1, Qt::AlignRight);
  smoothing_ = new QComboBox(display);
  smoothing_->setObjectName(QStringLiteral("SmoothCombo"));
  smoothing_->setEditable(true);
  smoothing_->setInsertPolicy(QComboBox::NoInsert);
  smoothing_->setToolTip(QStringLiteral("Smoothing"));
  // Typed text is kept as it comes; Enter or a choice paints with it.
  connect(smoothing_->lineEdit(), &QLineEdit::textEdited, this,
          [this](const QString& text) { controller_.Controls().SetText("SmoothCombo", FromQt(text)); });
  connect(smoothing_->lineEdit(), &QLineEdit::returnPressed, this,
          [this] { ApplySmoothing(smoothing_->currentText()); });
  connect(smoothing_, &QComboBox::textActivated, this, [this](const QString& text) {
    if (FromQt(text) != controller_.Controls().Text("SmoothCombo")) ApplySmoothing(text);
  });
  smoothing_->setFixedWidth(kValueWidth);
  grid->addWidget(smoothing_, row++, 2);
  grid->addWidget(Check({"Amplification", "Amplification"}, display), row, 0);
  auto* magnification = new QLineEdit(display);
  magnification->setObjectName(QStringLiteral("TextMagni"));
  magnification->setFixedWidth(kValueWidth);
  grid->addWidget(magnification, row++, 2);
  layout->addWidget(display);

  auto* pair = new QHBoxLayout;
  pair->addWidget(OptionGroup("Map drawn", "Option3", {{"on final picture"}, {"on initial picture"}}, this));
  pair->addWidget(OptionGroup("Colours", "StyleColor",
                              {{"Classical", "Classical colors Blue to Red"},
                               {"Grey Level", "Only grey colors"},
                               {"Enhanced", "Classical colors plus black and white"}},
                              this));
  layout->addLayout(pair);
  layout->addWidget(
      OptionGroup("Min-Max", "OptionMinMax",
                  {{"Find Min-Max every time", "For each configuration, Min and Max values would be searched"},
                   {"Keep Min-Max between sequence", "The Min and Max values are not changed between sequences"},
                   {"Auto adjust Min-Max", "For each configuration,Optimal Min and Max values would be searched"}},
                  this));
  return layout;
}

// The pointer on the map goes on in picture pixels; the controller rounds them.
void AnalyseWindow::OnMapMouse(QMouseEvent* event) {
  const QImageCanvas& canvas = *map_->Surface();
  const double x = canvas.ToUserX(event->position().x());
  const double y = canvas.ToUserY(event->position().y());
  const int shift = ShiftCode(event->modifiers());
  switch (event->type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
      controller_.OnPicAnaMouseDown(ButtonCode(event->button()), shift, x, y);
      break;
    case QEvent::MouseMove:
      controller_.OnPicAnaMouseMove(ButtonCode(event->buttons()), shift, x, y);
      break;
    case QEvent::MouseButtonRelease:
      if (const auto menu = controller_.OnPicAnaMouseUp(ButtonCode(event->button()), shift, x, y))
        PopUpMenu(*menu, event->globalPosition().toPoint());
      break;
    default:
      break;
  }
}

// A gauge's menu offers its actions; the window's menus the exports and the keyboard input.
void AnalyseWindow::PopUpMenu(const PicAnaMenu& menu, QPoint at) {
  QMenu popup(this);
  if (!menu.gauge) {
    AddExportEntries(popup, controller_);
    popup.addSeparator();
    connect(popup.addAction(QStringLiteral("Keyboard Input")), &QAction::triggered, this,
            [this] { controller_.KeyMNU(); });
    popup.exec(at);
    return;
  }
  for (const GaugeAction action : menu.gauge->actions)
    popup.addAction(ToQt(GaugeActionText(action)))->setData(static_cast<int>(action));
  if (const QAction* chosen = popup.exec(at))
    controller_.PickingTools().OnGaugeMenu(menu.gauge->index, static_cast<GaugeAction>(chosen->data().toInt()));
}

void AnalyseWindow::OnClicked(const std::string& name) {
  if (name == "Command1")
    controller_.OnCommand1Click();
  else if (RepaintsTheMap(name))
    controller_.PicAnaRefresh();
  else if (const auto style = ControlIndex(name, "StyleColor"))
    controller_.StyleColor(*style);
  else if (const auto option = ControlIndex(name, "OptionMinMax"))
    controller_.OptionMinMax(*option);
}

void AnalyseWindow::ApplySmoothing(const QString& text) {
  controller_.Controls().SetText("SmoothCombo", FromQt(text));
  controller_.PicAnaRefresh();
}

void AnalyseWindow::OnRegistryChange(const std::string& name, const ControlState& state) {
  if (name == "PicAna") {
    SizeMap(state);
  } else if (name == "ReferenceBox") {
    PlaceReferenceBox();
  } else if (name == "IsoLine") {
    isoLine_->setGeometry(state.left, state.top, state.width, state.height);
  } else if (name == "IsoLabel") {
    isoLabel_->setGeometry(state.left, state.top, state.width, state.height);
  } else if (name == "Combo2") {
    MirrorList(fields_, state);
  } else if (name == "SmoothCombo") {
    MirrorList(smoothing_, state);
  } else if (name == "Repere") {
    ShowBackColour();
  } else if (name == "CadreIso") {
    scaleFrame_->setTitle(ToQt(state.text));
  } else if (name == "Timer1") {
    if (state.checked)
      timer1_.start();
    else
      timer1_.stop();
  }
}

// The caption and the graph panel take the back colour of the user's axes.
void AnalyseWindow::ShowBackColour() {
  const QColor colour(QRgb(controller_.Axes.BackColour()));
  for (const char* name : {"Label1", "GrapheAna"}) {
    if (auto* widget = findChild<QWidget*>(QLatin1String(name))) {
      QPalette palette = widget->palette();
      palette.setColor(QPalette::Window, colour);
      widget->setPalette(palette);
      widget->setAutoFillBackground(true);
    }
  }
}

// The map's surface follows the bounds the controller lays out for it.
void AnalyseWindow::SizeMap(const ControlState& bounds) {
  controller_.PicAna = &map_->Resize({std::max(1, bounds.width), std::max(1, bounds.height)});
  PlaceReferenceBox();
}

// The reference box is given in picture pixels; the map shows them at the view's zoom.
void AnalyseWindow::PlaceReferenceBox() {
  const ControlState& box = controller_.Controls().Get("ReferenceBox");
  const double zoom = controller_.View.Zoom;
  referenceBox_->setGeometry(qRound(box.left * zoom), qRound(box.top * zoom), qRound(box.width * zoom),
                             qRound(box.height * zoom));
}

bool AnalyseWindow::eventFilter(QObject* watched, QEvent* event) {
  if (watched == map_ && event->type() == QEvent::KeyPress) {
    const QString typed = static_cast<QKeyEvent*>(event)->text();
    if (typed.size() == 1) controller_.OnPicAnaKey(typed.at(0).toLatin1());
  }
  if (event->type() == QEvent::MouseButtonRelease && static_cast<QMouseEvent*>(event)->button() == Qt::LeftButton) {
    if (watched == scaleLabels_[0]) controller_.LabEchelle(0);
    if (watched == scaleLabels_[1]) controller_.LabEchelle(4);
  }
  return QFrame::eventFilter(watched, event);
}

void AnalyseWindow::showEvent(QShowEvent* event) {
  QFrame::showEvent(event);
  // Each showing follows a file chosen with Analyse: the window loads afresh,
  // and Timer1 reads the file once the window is on screen.
  if (!event->spontaneous()) controller_.Load();
}

void AnalyseWindow::hideEvent(QHideEvent* event) {
  QFrame::hideEvent(event);
  if (!event->spontaneous()) timer1_.stop();
}

}  // namespace tessiva

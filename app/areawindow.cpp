#include "areawindow.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QHideEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMouseEvent>
#include <QPushButton>
#include <QShowEvent>
#include <QVBoxLayout>
#include <functional>

#include "areatoolbars.h"
#include "canvasview.h"
#include "rubberoverlay.h"

namespace tessiva {
namespace {

// The blinking hands' pace.
constexpr int kBlinkMs = 500;

// Holds a picture view at its own size: the view's surface follows it.
class ViewHost : public QWidget {
 public:
  explicit ViewHost(QWidget* parent) : QWidget(parent) {
    setMinimumSize(120, 90);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
  }
  std::function<void()> onResize;

 protected:
  void resizeEvent(QResizeEvent*) override {
    if (onResize) onResize();
  }
};

QLineEdit* Field(const char* name, const char* tip, QWidget* parent) {
  auto* field = new QLineEdit(parent);
  field->setObjectName(QLatin1String(name));
  field->setToolTip(QLatin1String(tip));
  field->setMaximumWidth(110);
  return field;
}

}  // namespace

AreaWindow::AreaWindow(AreaForm& controller, QWidget* parent) : QFrame(parent), controller_(controller) {
  setObjectName(QStringLiteral("AreaForm"));
  setFrameStyle(QFrame::Panel | QFrame::Sunken);
  setBackgroundRole(QPalette::Window);
  setAutoFillBackground(true);
  // The window's controls belong to the controller's registry, not the frame's.
  MarkOwnBinding(this);
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(4, 4, 4, 4);
  auto* toolbar2 = new AreaToolbar(controller_, 2, this);
  layout->addWidget(new AreaToolbar(controller_, 1, this));
  layout->addWidget(toolbar2);
  auto* panes = new QHBoxLayout;
  panes->addWidget(BuildPane("TitleRef", "Command1", "PicRef", ref_), 1);
  panes->addWidget(BuildPane("TitleDef", "Command2", "PicDef", def_), 1);
  layout->addLayout(panes, 1);
  layout->addWidget(BuildFields());
  controller_.Engine().correlJauge = toolbar2->Gauge()->Surface();
  new RubberOverlay(controller_.Controls(), ref_, [this](double x, double y) {
    const QImageCanvas* canvas = ref_->Surface();
    return canvas ? QPointF(canvas->ToPixelX(x), canvas->ToPixelY(y)) : QPointF();
  });
  AttachViews();

  for (QTimer* blink : {&timer1_, &timer2_}) blink->setInterval(kBlinkMs);
  timer3_.setSingleShot(true);
  timer3_.setInterval(0);
  connect(&timer1_, &QTimer::timeout, this, [this] { controller_.OnTimer1(); });
  connect(&timer2_, &QTimer::timeout, this, [this] { controller_.OnTimer2(); });
  connect(&timer3_, &QTimer::timeout, this, [this] { controller_.OnTimer3(); });

  ControlRegistry& controls = controller_.Controls();
  binding_ = std::make_unique<RegistryBinding>(controls, this);
  connect(binding_.get(), &RegistryBinding::clicked, this, &AreaWindow::OnClicked);
  connect(binding_.get(), &RegistryBinding::edited, this, [this](const std::string& name) {
    if (name.starts_with("Unit")) controller_.OnUnitChange(name);
  });
  connect(binding_.get(), &RegistryBinding::keyPressed, this, [this](const std::string& name, int key) {
    if (name == "Text2") controller_.OnText2KeyPress(key);
  });
  subscription_ =
      controls.Subscribe([this](const std::string& name, const ControlState& state) { OnRegistryChange(name, state); });
}

AreaWindow::~AreaWindow() {
  controller_.Controls().Unsubscribe(subscription_);
  controller_.RefView().AttachCanvas(nullptr);
  controller_.DefView().AttachCanvas(nullptr);
  controller_.Engine().correlJauge = nullptr;
}

// A picture's title and zoom switch over its view.
QWidget* AreaWindow::BuildPane(const char* title, const char* zoomButton, const char* viewName, CanvasView*& view) {
  auto* pane = new QWidget(this);
  auto* layout = new QVBoxLayout(pane);
  layout->setContentsMargins(0, 0, 0, 0);
  auto* head = new QHBoxLayout;
  auto* caption = new QLabel(pane);
  caption->setObjectName(QLatin1String(title));
  head->addWidget(caption, 1);
  auto* zoom = new QPushButton(QStringLiteral("1:x"), pane);
  zoom->setObjectName(QLatin1String(zoomButton));
  zoom->setToolTip(QStringLiteral("Picture at its natural size, or fitted to the view"));
  head->addWidget(zoom);
  layout->addLayout(head);
  auto* host = new ViewHost(pane);
  view = new CanvasView(host);
  view->setObjectName(QLatin1String(viewName));
  view->setMouseTracking(true);
  const bool reference = &view == &ref_;
  view->onMouse = [this, reference](QMouseEvent* event) { OnViewMouse(reference, event); };
  host->onResize = [this, host, view] {
    view->Resize(host->size());
    AttachViews();
  };
  layout->addWidget(host, 1);
  return pane;
}

// Calibration and extra values, under the pictures.
QWidget* AreaWindow::BuildFields() {
  auto* row = new QWidget(this);
  auto* layout = new QHBoxLayout(row);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(new QLabel(QStringLiteral("Unit X"), row));
  layout->addWidget(Field("UnitX", "Name of the unit along x", row));
  layout->addWidget(Field("UnitPixX", "Units per pixel along x", row));
  layout->addWidget(new QLabel(QStringLiteral("Unit Y"), row));
  layout->addWidget(Field("UnitY", "Name of the unit along y", row));
  layout->addWidget(Field("UnitPixY", "Units per pixel along y", row));
  layout->addSpacing(20);
  layout->addWidget(new QLabel(QStringLiteral("Extra values"), row));
  AreaForm& c = controller_;
  auto* names = new EditableList(c.Controls(), "Combo2",
                                 {[&c](int position) { c.OnCombo2Click(position); },
                                  [&c] { c.OnCombo2KeyPress(13); },
                                  [&c](int position) { c.OnCombo2Delete(position); }},
                                 row);
  names->setToolTip(QStringLiteral("Name of an extra value kept in the data file"));
  layout->addWidget(names);
  layout->addWidget(Field("Text2", "Its value; Enter keeps it", row));
  layout->addStretch(1);
  return row;
}

// The views draw on the surfaces their widgets show; a new surface is redrawn whole.
void AreaWindow::AttachViews() {
  if (!ref_ || !def_) return;
  for (auto [view, widget] : {std::pair{&controller_.RefView(), ref_}, std::pair{&controller_.DefView(), def_}}) {
    QImageCanvas* surface = widget->Surface();
    if (!surface) surface = &widget->Resize(QSize(400, 300));
    if (view->GetCanvas() == surface) continue;
    view->AttachCanvas(surface);
    if (view == &controller_.RefView())
      controller_.AreAPicRefRefresh();
    else
      controller_.AreAPicDefRefresh();
  }
}

// The pointer on a view goes on in picture pixels.
void AreaWindow::OnViewMouse(bool reference, QMouseEvent* event) {
  const QImageCanvas& canvas = *(reference ? ref_ : def_)->Surface();
  const double x = canvas.ToUserX(event->position().x());
  const double y = canvas.ToUserY(event->position().y());
  const int shift = ShiftCode(event->modifiers());
  AreaForm& c = controller_;
  switch (event->type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
      reference ? c.OnPicRefMouseDown(ButtonCode(event->button()), shift, x, y)
                : c.OnPicDefMouseDown(ButtonCode(event->button()), shift, x, y);
      break;
    case QEvent::MouseMove:
      reference ? c.OnPicRefMouseMove(ButtonCode(event->buttons()), shift, x, y)
                : c.OnPicDefMouseMove(ButtonCode(event->buttons()), shift, x, y);
      break;
    case QEvent::MouseButtonRelease:
      if (!reference)
        c.OnPicDefMouseUp(ButtonCode(event->button()), shift, x, y);
      else if (c.OnPicRefMouseUp(ButtonCode(event->button()), shift, x, y))
        PopUpMenu(event->globalPosition().toPoint());
      break;
    default:
      break;
  }
}

// The menu of the start-point tool.
void AreaWindow::PopUpMenu(QPoint at) {
  QMenu menu(this);
  QAction* search = menu.addAction(QStringLiteral("Enabled Auto Search"));
  search->setCheckable(true);
  search->setChecked(controller_.AutoSearch());
  QAction* best = menu.addAction(QStringLiteral("Show the best start point"));
  if (const QAction* chosen = menu.exec(at))
    controller_.OnMenuClick(chosen == search ? "AutoSearchMNU" : chosen == best ? "ShowBestMNU" : "");
}

void AreaWindow::OnClicked(const std::string& name) {
  if (RouteToolbarClick(controller_, name)) return;
  if (name == "Command1" || name == "Command2") {
    const bool reference = name == "Command1";
    (reference ? controller_.RefView() : controller_.DefView()).OnZoomButtonClick();
    reference ? controller_.AreAPicRefRefresh() : controller_.AreAPicDefRefresh();
  }
}

void AreaWindow::OnRegistryChange(const std::string& name, const ControlState& state) {
  QTimer* timer = name == "Timer1" ? &timer1_ : name == "Timer2" ? &timer2_ : name == "Timer3" ? &timer3_ : nullptr;
  if (!timer) return;
  if (state.checked)
    timer->start();
  else
    timer->stop();
}

void AreaWindow::showEvent(QShowEvent* event) {
  QFrame::showEvent(event);
  // Each showing starts a data input: the window loads afresh and Timer3
  // reads the first data file once the window is on screen.
  if (!event->spontaneous()) controller_.Load();
}

void AreaWindow::hideEvent(QHideEvent* event) {
  QFrame::hideEvent(event);
  if (event->spontaneous()) return;
  for (QTimer* timer : {&timer1_, &timer2_, &timer3_}) timer->stop();
}

}  // namespace tessiva

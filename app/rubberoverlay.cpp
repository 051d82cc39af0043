#include "rubberoverlay.h"

#include <QEvent>
#include <QPainter>
#include <functional>
#include <utility>

#include "ui/controls.h"

namespace tessiva {
namespace {

// The halo under the rubber's dashes: a white pen this wide.
constexpr int kHalo = 3;

// The ends of the line, or two opposite corners of the box, on the view.
std::pair<QPointF, QPointF> Ends(const ControlState& rubber, const RubberOverlay::ToView& toView) {
  return {toView(rubber.left, rubber.top), toView(rubber.left + rubber.width, rubber.top + rubber.height)};
}

// Dashes over a white halo, seen on any colour of the map.
void DrawRubber(QPainter& painter, const std::function<void()>& draw) {
  painter.setBrush(Qt::NoBrush);
  painter.setPen(QPen(Qt::white, kHalo));
  draw();
  painter.setPen(QPen(Qt::black, 1, Qt::DashLine));
  draw();
}

// A rubber the controller never placed isn't shown.
bool Shown(const ControlRegistry& controls, const char* rubber) {
  return controls.Has(rubber) && controls.Visible(rubber);
}

}  // namespace

RubberOverlay::RubberOverlay(ControlRegistry& controls, QWidget* view, ToView toView)
    : QWidget(view), controls_(controls), toView_(std::move(toView)) {
  setAttribute(Qt::WA_TransparentForMouseEvents);
  setGeometry(view->rect());
  view->installEventFilter(this);
  subscription_ = controls_.Subscribe([this](const std::string& name, const ControlState& state) {
    if (name == "Line1") OnChange(line_, state);
    if (name == "Line5") OnChange(axis_, state);
    if (name == "Shape1") OnChange(shape_, state);
    if (name == "Shape3") OnChange(circle_, state);
  });
}

RubberOverlay::~RubberOverlay() { controls_.Unsubscribe(subscription_); }

QRect RubberOverlay::Extent(const ControlState& rubber) const {
  if (!rubber.visible) return {};
  const auto [a, b] = Ends(rubber, toView_);
  return QRectF(a, b).normalized().toAlignedRect().adjusted(-kHalo, -kHalo, kHalo, kHalo);
}

// Only what the rubber covered and now covers is painted again.
void RubberOverlay::OnChange(QRect& painted, const ControlState& rubber) {
  update(painted);
  painted = Extent(rubber);
  update(painted);
}

void RubberOverlay::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  const ControlRegistry& controls = controls_;
  // Lines through pixel centres stay one pixel wide.
  const QPointF centre(0.5, 0.5);
  for (const char* name : {"Line1", "Line5"}) {
    if (!Shown(controls, name)) continue;
    const auto [a, b] = Ends(controls.Get(name), toView_);
    DrawRubber(painter, [&] { painter.drawLine(a + centre, b + centre); });
  }
  if (const ControlState& shape = controls.Get("Shape1"); Shown(controls, "Shape1")) {
    const auto [a, b] = Ends(shape, toView_);
    DrawRubber(painter, [&] { painter.drawRect(QRectF(a + centre, b + centre).normalized()); });
  }
  if (const ControlState& circle = controls.Get("Shape3"); Shown(controls, "Shape3")) {
    const auto [a, b] = Ends(circle, toView_);
    DrawRubber(painter, [&] { painter.drawEllipse(QRectF(a + centre, b + centre).normalized()); });
  }
}

// The overlay covers the view whatever its size.
bool RubberOverlay::eventFilter(QObject* watched, QEvent* event) {
  if (watched == parent() && event->type() == QEvent::Resize) setGeometry(parentWidget()->rect());
  return QWidget::eventFilter(watched, event);
}

}  // namespace tessiva

#include "rubberoverlay.h"

#include <QEvent>
#include <QPainter>
#include <functional>
#include <utility>

#include "analysis/newanalyse.h"

namespace tessiva {
namespace {

// The halo under the rubber's dashes: a white pen this wide.
constexpr int kHalo = 3;

// The ends of the line, or two opposite corners of the box, on the map:
// picture pixel p lies at p times the zoom.
std::pair<QPointF, QPointF> Ends(const ControlState& rubber, double zoom) {
  const QPointF first(rubber.left * zoom, rubber.top * zoom);
  const QPointF second((rubber.left + rubber.width) * zoom, (rubber.top + rubber.height) * zoom);
  return {first, second};
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

RubberOverlay::RubberOverlay(NewAnalyse& controller, QWidget* map) : QWidget(map), controller_(controller) {
  setAttribute(Qt::WA_TransparentForMouseEvents);
  setGeometry(map->rect());
  map->installEventFilter(this);
  subscription_ = controller_.Controls().Subscribe([this](const std::string& name, const ControlState& state) {
    if (name == "Line1") OnChange(line_, state);
    if (name == "Shape1") OnChange(shape_, state);
  });
}

RubberOverlay::~RubberOverlay() { controller_.Controls().Unsubscribe(subscription_); }

QRect RubberOverlay::Extent(const ControlState& rubber) const {
  if (!rubber.visible) return {};
  const auto [a, b] = Ends(rubber, controller_.View.Zoom);
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
  const ControlRegistry& controls = controller_.Controls();
  const double zoom = controller_.View.Zoom;
  // Lines through pixel centres stay one pixel wide.
  const QPointF centre(0.5, 0.5);
  if (const ControlState& line = controls.Get("Line1"); Shown(controls, "Line1")) {
    const auto [a, b] = Ends(line, zoom);
    DrawRubber(painter, [&] { painter.drawLine(a + centre, b + centre); });
  }
  if (const ControlState& shape = controls.Get("Shape1"); Shown(controls, "Shape1")) {
    const auto [a, b] = Ends(shape, zoom);
    DrawRubber(painter, [&] { painter.drawRect(QRectF(a + centre, b + centre).normalized()); });
  }
}

// The overlay covers the map whatever its size.
bool RubberOverlay::eventFilter(QObject* watched, QEvent* event) {
  if (watched == parent() && event->type() == QEvent::Resize) setGeometry(parentWidget()->rect());
  return QWidget::eventFilter(watched, event);
}

}  // namespace tessiva

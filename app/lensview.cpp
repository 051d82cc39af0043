#include "lensview.h"

#include <QEvent>
#include <QPainter>
#include <utility>

#include "canvasview.h"
#include "ui/controls.h"

namespace tessiva {
namespace {

// The lens shows the map this many times larger.
constexpr int kMagnification = 2;

}  // namespace

LensView::LensView(ControlRegistry& controls, CanvasView* map, std::function<double()> zoom,
                   std::function<void(QPoint)> centre)
    : QWidget(map), controls_(controls), map_(map), zoom_(std::move(zoom)) {
  setAttribute(Qt::WA_TransparentForMouseEvents);
  setGeometry(map->rect());
  map->installEventFilter(this);
  subscription_ = controls_.Subscribe(
      [this, centre = std::move(centre)](const std::string& name, const ControlState& state) {
        if (name == "RecZoomRef" || name == "MireZoomRef") update();
        if (name == "PicAnaCentre") centre(QPoint(qRound(state.left * zoom_()), qRound(state.top * zoom_())));
      });
}

LensView::~LensView() { controls_.Unsubscribe(subscription_); }

QRect LensView::OnMap(const char* name) const {
  const ControlState& c = controls_.Get(name);
  const double zoom = zoom_();
  return QRect(qRound(c.left * zoom), qRound(c.top * zoom), qRound(c.width * zoom), qRound(c.height * zoom));
}

void LensView::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setBrush(Qt::NoBrush);
  if (controls_.Has("RecZoomRef") && controls_.Visible("RecZoomRef") && map_->Surface()) {
    const QRect lens = OnMap("RecZoomRef");
    const QRect source(lens.center() - QPoint(lens.width(), lens.height()) / (2 * kMagnification),
                       lens.size() / kMagnification);
    painter.fillRect(lens, Qt::darkGray);
    painter.drawImage(lens, map_->Surface()->Image(), source);
    painter.setPen(QPen(Qt::black, 2));
    painter.drawRect(lens);
  }
  if (controls_.Has("MireZoomRef") && controls_.Visible("MireZoomRef")) {
    painter.setPen(QPen(Qt::white, 3));
    painter.drawRect(OnMap("MireZoomRef"));
    painter.setPen(QPen(Qt::black, 1, Qt::DashLine));
    painter.drawRect(OnMap("MireZoomRef"));
  }
}

// The lens covers the map whatever its size.
bool LensView::eventFilter(QObject* watched, QEvent* event) {
  if (watched == map_ && event->type() == QEvent::Resize) setGeometry(map_->rect());
  return QWidget::eventFilter(watched, event);
}

}  // namespace tessiva

#include "canvasview.h"

#include <QPainter>

namespace tessiva {

QImageCanvas& CanvasView::Resize(QSize size) {
  if (!canvas_ || canvas_->Image().size() != size) {
    canvas_ = std::make_unique<QImageCanvas>(size.width(), size.height());
    canvas_->onRefresh = [this] { update(); };
    setFixedSize(size);
    update();
  }
  return *canvas_;
}

void CanvasView::paintEvent(QPaintEvent*) {
  if (canvas_) QPainter(this).drawImage(0, 0, canvas_->Image());
}

}  // namespace tessiva

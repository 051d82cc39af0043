// A canvas's picture shown at its own pixel size: the surface of the picture
// views of the analysis and setup windows. Pointer events are handed on as
// they come; their positions are the canvas's pixels.
#pragma once

#include <QWidget>
#include <functional>
#include <memory>

#include "qimagecanvas.h"

class QMouseEvent;

namespace tessiva {

class CanvasView : public QWidget {
 public:
  explicit CanvasView(QWidget* parent) : QWidget(parent) { setFixedSize(1, 1); }
  QSize sizeHint() const override { return size(); }

  QImageCanvas* Surface() { return canvas_.get(); }
  // A new, blank surface when the size changes; the same one otherwise.
  QImageCanvas& Resize(QSize size);

  std::function<void(QMouseEvent*)> onMouse;

 protected:
  void paintEvent(QPaintEvent*) override;
  void mousePressEvent(QMouseEvent* event) override { Forward(event); }
  void mouseMoveEvent(QMouseEvent* event) override { Forward(event); }
  void mouseReleaseEvent(QMouseEvent* event) override { Forward(event); }

 private:
  void Forward(QMouseEvent* event) {
    if (canvas_ && onMouse) onMouse(event);
  }

  std::unique_ptr<QImageCanvas> canvas_;
};

}  // namespace tessiva

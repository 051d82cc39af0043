// The rubbers of the drawing and picking tools over a picture view: the line
// Line1 (a line, slider or gauge being dragged), the line Line5 (a new axis
// of the analysis window) and the box Shape1 (a rectangle or a rosette).
// The controller places them in its registry in picture pixels; the overlay
// covers the view, draws them where the view shows those pixels and lets the
// pointer through to the view.
// The crack tool's circle Shape3 is drawn in the square of its bounds.
#pragma once

#include <QPointF>
#include <QRect>
#include <QWidget>
#include <functional>

namespace tessiva {

class ControlRegistry;
struct ControlState;

class RubberOverlay : public QWidget {
 public:
  // Where the view shows a point given in picture pixels, in the view's pixels.
  using ToView = std::function<QPointF(double x, double y)>;

  RubberOverlay(ControlRegistry& controls, QWidget* view, ToView toView);
  ~RubberOverlay() override;

 protected:
  void paintEvent(QPaintEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  // Where a rubber lies on the map, in the map's pixels, wide enough for its pen.
  QRect Extent(const ControlState& rubber) const;
  void OnChange(QRect& painted, const ControlState& rubber);

  ControlRegistry& controls_;
  ToView toView_;
  QRect line_;
  QRect axis_;
  QRect shape_;
  QRect circle_;
  int subscription_ = 0;
};

}  // namespace tessiva

// The rubbers of the picking tools over the map: the line Line1 (a line,
// slider or gauge being dragged) and the box Shape1 (a rectangle or a
// rosette). The controller places them in the registry in picture pixels;
// the overlay covers the map, draws them at the view's zoom and lets the
// pointer through to the map.
#pragma once

#include <QRect>
#include <QWidget>

namespace tessiva {

class NewAnalyse;
struct ControlState;

class RubberOverlay : public QWidget {
 public:
  RubberOverlay(NewAnalyse& controller, QWidget* map);
  ~RubberOverlay() override;

 protected:
  void paintEvent(QPaintEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  // Where a rubber lies on the map, in the map's pixels, wide enough for its pen.
  QRect Extent(const ControlState& rubber) const;
  void OnChange(QRect& painted, const ControlState& rubber);

  NewAnalyse& controller_;
  QRect line_;
  QRect shape_;
  int subscription_ = 0;
};

}  // namespace tessiva

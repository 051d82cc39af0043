// The lens over the analysis window's map: the square RecZoomRef, which
// shows the map twice as large round the pointer, and the frame MireZoomRef
// of the lens factor. Both are placed by the controller in picture pixels.
// A change of PicAnaCentre asks the window to centre the map on that point.
#pragma once

#include <QWidget>
#include <functional>

namespace tessiva {

class ControlRegistry;
class CanvasView;

class LensView : public QWidget {
 public:
  // `zoom` gives the map's screen pixels per picture pixel; `centre` scrolls
  // the map so that a point of it, in the map's pixels, stands in the middle.
  LensView(ControlRegistry& controls, CanvasView* map, std::function<double()> zoom,
           std::function<void(QPoint)> centre);
  ~LensView() override;

 protected:
  void paintEvent(QPaintEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  QRect OnMap(const char* name) const;

  ControlRegistry& controls_;
  CanvasView* map_;
  std::function<double()> zoom_;
  int subscription_ = 0;
};

}  // namespace tessiva

#include "analysis/lens.h"

#include <algorithm>

#include "analysis/newanalyse.h"
#include "results/ranges.h"
#include "state/numtext.h"
#include "ui/pointer.h"

namespace tessiva {

bool Lens::MouseDown(int button, int shift, double x, double y) {
  if (!(shift & kCtrlKey) || (button != kLeftButton && button != kRightButton)) return false;
  HideSection();
  Factor = 1.0;
  x0_ = x, y0_ = y;
  mode_ = button == kLeftButton ? Mode::Follow : Mode::Zoom;
  ShowSquare(mode_ == Mode::Follow ? "RecZoomRef" : "MireZoomRef", x, y, kSide);
  return true;
}

bool Lens::MouseMove(double x, double y) {
  if (mode_ == Mode::None) return false;
  if (mode_ == Mode::Follow) {
    ShowSquare("RecZoomRef", x, y, kSide);
    return true;
  }
  const double drag = (y - y0_) * w_.View.Zoom;
  Factor = std::max(kSmallestFactor, 1.0 + drag / kDragPerUnit);
  ShowSquare("MireZoomRef", x0_, y0_, kSide * Factor);
  return true;
}

bool Lens::MouseUp(double x, double y) {
  if (mode_ == Mode::None) return false;
  const Mode mode = mode_;
  mode_ = Mode::None;
  if (mode == Mode::Follow) {
    w_.Controls().SetVisible("RecZoomRef", false);
    CentreOn(x, y);
  } else {
    w_.Controls().SetVisible("MireZoomRef", false);
    const AppState& s = w_.State();
    const double largest = std::max({1.0, static_cast<double>(w_.PicAnaTemp.Width()), static_cast<double>(w_.PicAnaTemp.Height())});
    w_.View.Zoom = std::min(w_.View.Zoom * Factor, kLargestMapSide / largest);
    w_.LayOutPicAna();
    w_.PicAnaRefresh();
    CentreOn(s.Lima / 2.0, s.Hima / 2.0);
  }
  RestoreSection();
  return true;
}

// The square is `side` screen pixels, so its side in picture pixels shrinks as the map is zoomed in.
void Lens::ShowSquare(const char* name, double x, double y, double side) {
  const double picture = side / std::max(w_.View.Zoom, 1e-9);
  w_.Controls().Update(name, [&](ControlState& c) {
    c.left = RoundToInt32(x - picture / 2), c.top = RoundToInt32(y - picture / 2);
    c.width = c.height = std::max(1, RoundToInt32(picture));
    c.visible = true;
  });
}

void Lens::CentreOn(double x, double y) {
  w_.Controls().Update("PicAnaCentre", [&](ControlState& c) {
    c.left = RoundToInt32(x), c.top = RoundToInt32(y);
  });
}

void Lens::HideSection() {
  sectionShown_ = w_.VueCourante == kViewFlcDetermination && w_.Controls().Visible("Line1");
  if (sectionShown_) w_.Controls().SetVisible("Line1", false);
}

void Lens::RestoreSection() {
  if (sectionShown_) w_.Controls().SetVisible("Line1", true);
  sectionShown_ = false;
}

}  // namespace tessiva

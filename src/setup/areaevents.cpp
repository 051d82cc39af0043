// The pointer over the setup window's two views: the readout, the rubber of
// the drawing tool down and its status text, the areas a drag or click adds,
// the start points given on the reference view and matched on the deformed
// one, and the Ctrl pan and zoom.
#include <algorithm>
#include <cmath>
#include <utility>

#include "setup/areaform.h"
#include "setup/areas.h"
#include "setup/areatoolbar.h"
#include "setup/correlation.h"
#include "setup/grid.h"
#include "setup/startsearch.h"
#include "state/index.h"
#include "state/numtext.h"
#include "ui/pointer.h"

namespace tessiva {
namespace {

bool InPicture(const GreyArray& pixels, double x, double y) {
  return x >= 0 && y >= 0 && x <= pixels.UpperX() && y <= pixels.UpperY();
}

std::string Position(double x, double y) { return "(" + StrTrim(Int(x)) + ", " + StrTrim(Int(y)) + ")"; }

std::string Units(const AppState& s, double x, double y) {
  return "X=" + Format(x * s.UnitPX, "0.000") + " Y=" + Format(y * s.UnitPY, "0.000");
}

// "(x, y) G=ggg" from the picture, and the position in the user's units.
std::string Readout(const AppState& s, const GreyArray& pixels, double x, double y) {
  const int32_t px = std::clamp(ClampToInt32(Int(x)), 0, std::max(0, pixels.UpperX()));
  const int32_t py = std::clamp(ClampToInt32(Int(y)), 0, std::max(0, pixels.UpperY()));
  const int32_t level = pixels.Contains(px, py) ? pixels(px, py) : 0;
  return Position(x, y) + " G=" + Format(level, "000") + "  " + Units(s, x, y);
}

double LengthInUnits(const AppState& s, double dx, double dy) { return std::hypot(dx * s.UnitPX, dy * s.UnitPY); }

bool CtrlDown(int shift) { return (shift & kCtrlKey) != 0; }

}  // namespace

// ---- Rubbers -----------------------------------------------------------------

// The rubbers live in the registry in picture pixels, as the analysis window's
// do: Line1 from (left, top) by (width, height), Shape1 a box.
void AreaForm::ShowRubberLine(double x1, double y1, double x2, double y2) {
  controls_.Update("Line1", [&](ControlState& c) {
    c.left = RoundToInt32(x1), c.top = RoundToInt32(y1);
    c.width = RoundToInt32(x2 - x1), c.height = RoundToInt32(y2 - y1);
    c.visible = true;
  });
}

void AreaForm::ShowRubberBox(double x1, double y1, double x2, double y2) {
  controls_.Update("Shape1", [&](ControlState& c) {
    c.left = RoundToInt32(std::min(x1, x2)), c.top = RoundToInt32(std::min(y1, y2));
    c.width = RoundToInt32(std::abs(x2 - x1)), c.height = RoundToInt32(std::abs(y2 - y1));
    c.visible = true;
  });
}

void AreaForm::HideRubbers() {
  controls_.SetVisible("Line1", false);
  controls_.SetVisible("Shape1", false);
}

// ---- PicRef ------------------------------------------------------------------

void AreaForm::OnPicRefMouseDown(int button, int shift, double x, double y) {
  if (CtrlDown(shift)) {
    refView_.OnMouseDown(button, shift, x, y);
    return;
  }
  if (button != kLeftButton || shift != 0 || !InPicture(s_.PixRef, x, y)) return;
  press_ = {true, x, y};
}

void AreaForm::OnPicRefMouseMove(int button, int shift, double x, double y) {
  if (InPicture(s_.PixRef, x, y) || shift != 0) ui_.StatusPos(Readout(s_, s_.PixRef, x, y));
  if (GivingStartPoints() && shift == 0) setup::CorrelJauge(*this, x, y);
  if (CtrlDown(shift)) {
    refView_.OnMouseMove(button, shift, x, y);
    return;
  }
  if (shift != 0) return;
  if (engine_.tools.formingLimitStage) {
    setup::FormingLimitMove(*this, x, y);
    const Outline band = AreaOutline(s_, s_.NbBox - 1);
    if (band.size() == 5) {
      // Half the band's width each way from the neck, across the band.
      const double mx = (band[0].x - band[3].x) / 2.0, my = (band[0].y - band[3].y) / 2.0;
      ShowRubberLine(s_.xstrict - mx, s_.ystrict - my, s_.xstrict + mx, s_.ystrict + my);
    }
    ui_.StatusLine(Position(x, y));
    return;
  }
  if (button == kLeftButton && press_.down) FollowTool(x, y);
}

void AreaForm::FollowTool(double x, double y) {
  const double dx = x - press_.x, dy = y - press_.y;
  switch (ToolCode) {
    case kSliderTool:
    case kJaugeTool:
    case kTraitTool:
    case kClfTool:
      ShowRubberLine(press_.x, press_.y, x, y);
      ui_.StatusLine(" L: " + Format(LengthInUnits(s_, dx, dy), "0.000"));
      break;
    case kRosetteTool: {
      const double side = std::max(std::abs(dx), std::abs(dy));
      ShowRubberBox(press_.x, press_.y, press_.x + std::copysign(side, dx), press_.y + std::copysign(side, dy));
      ui_.StatusLine(" WH: " + Format(side * s_.UnitPX, "0.000"));
      break;
    }
    case kRectangleTool:
      ShowRubberBox(press_.x, press_.y, x, y);
      ui_.StatusLine(" WxH: " + Format(std::abs(dx) * s_.UnitPX, "0.000") + "x" +
                     Format(std::abs(dy) * s_.UnitPY, "0.000"));
      break;
    default:
      ui_.StatusLine(Position(x, y));
      break;
  }
}

bool AreaForm::OnPicRefMouseUp(int button, int shift, double x, double y) {
  const Press press = std::exchange(press_, {});
  if (CtrlDown(shift)) {
    if (refView_.OnMouseUp(button, shift, x, y)) AreAPicRefRefresh();
    return false;
  }
  if (shift != 0) return false;
  if (GivingStartPoints()) {
    if (button == kRightButton) return true;
    if (button == kLeftButton && InPicture(s_.PixRef, x, y)) GiveStartPoint(x, y);
    return false;
  }
  if (button != kLeftButton) return false;
  HideRubbers();
  if (engine_.tools.formingLimitStage) {
    setup::FormingLimitClick(*this);
  } else if (ToolCode == kLibreTool) {
    if (InPicture(s_.PixRef, x, y)) setup::FreeHandClick(*this, x, y);
  } else if (press.down) {
    FinishDrag(press.x, press.y, x, y);
  }
  return false;
}

// A drag shorter than a tool's floor stores nothing.
void AreaForm::FinishDrag(double x1, double y1, double x, double y) {
  switch (ToolCode) {
    case kRectangleTool: setup::AddRectangle(*this, x1, y1, x, y); break;
    case kTraitTool: setup::AddTrait(*this, x1, y1, x, y); break;
    case kClfTool:
      if (CrackTool)
        setup::AddCrack(*this, x1, y1, x, y);
      else
        setup::FormingLimitDrag(*this, x1, y1, x, y);
      break;
    case kSliderTool:
    case kJaugeTool:
    case kRosetteTool: setup::AddGauge(*this, x1, y1, x, y, GaugeKind); break;
    default: break;
  }
}

// A new start point sits at the centre of the pattern of the cell clicked;
// one whose displacement is still unknown is replaced.
void AreaForm::GiveStartPoint(double x, double y) {
  const int32_t p = engine_.grid.PatternOfCell(x, y);
  if (p == 0) {
    const char* outside = "You have to choose an initial point inside the area of interest";
    ui_.MessageBox(outside, "", MsgButtons::Ok, MsgIcon::None);
    ui_.StatusLine(outside);
    return;
  }
  if (s_.NbStart > 0 && !s_.StartOk[At(s_.NbStart)]) {
    const size_t last = At(s_.NbStart);
    s_.XStart[last] = s_.YStart[last] = s_.DuStart[last] = s_.DvStart[last] = 0;
    --s_.NbStart;
    AreAPicRefRefresh();
  }
  if (s_.NbStart >= AppState::kMaxStartPoints) return;
  s_.CurStart = ++s_.NbStart;
  const size_t k = At(s_.NbStart);
  if (k >= s_.XStart.size()) s_.ResizeStartPoints(s_.NbStart);
  s_.StartOk[k] = false;
  s_.XStart[k] = s_.XPat[At(p)];
  s_.YStart[k] = s_.YPat[At(p)];
  s_.DuStart[k] = s_.DvStart[k] = 0;
  if (AutoSearch()) {
    BusyPointer busy(ui_);
    setup::SearchStartPoint(*this, s_.NbStart);
    return;
  }
  ui_.StatusLine("Give the corresponding point in the deformed picture");
  if (Canvas* canvas = refView_.GetCanvas()) MireArea(*canvas, s_.XStart[k], s_.YStart[k], StrTrim(s_.NbStart));
}

// ---- PicDef ------------------------------------------------------------------

namespace {

// The current start point, when its displacement is still to be given.
bool OpenStartPoint(const AppState& s) {
  return s.CurStart >= 1 && s.CurStart <= s.NbStart && At(s.CurStart) < s.StartOk.size() &&
         !s.StartOk[At(s.CurStart)];
}

}  // namespace

void AreaForm::OnPicDefMouseDown(int button, int shift, double x, double y) {
  if (CtrlDown(shift)) defView_.OnMouseDown(button, shift, x, y);
}

void AreaForm::OnPicDefMouseMove(int button, int shift, double x, double y) {
  if (CtrlDown(shift)) {
    defView_.OnMouseMove(button, shift, x, y);
    return;
  }
  if (GivingStartPoints() && OpenStartPoint(s_)) {
    const size_t k = At(s_.CurStart);
    ui_.StatusLine("du=" + Format((x - s_.XStart[k]) * s_.UnitPX, "0.000") +
                   ", dv=" + Format((y - s_.YStart[k]) * s_.UnitPY, "0.000"));
  } else if (InPicture(s_.PixDef, x, y)) {
    ui_.StatusLine(Readout(s_, s_.PixDef, x, y));
  }
}

void AreaForm::OnPicDefMouseUp(int button, int shift, double x, double y) {
  if (CtrlDown(shift)) {
    if (defView_.OnMouseUp(button, shift, x, y)) AreAPicDefRefresh();
    return;
  }
  if (button != kLeftButton || shift != 0 || !GivingStartPoints() || !OpenStartPoint(s_)) return;
  const size_t k = At(s_.CurStart);
  s_.DuStart[k] = RoundToInt32(x - s_.XStart[k]);
  s_.DvStart[k] = RoundToInt32(y - s_.YStart[k]);
  s_.StartOk[k] = true;
  ui_.StatusLine("Choose initials points");
  AreAPicDefRefresh();
  PropagArea();
}

}  // namespace tessiva

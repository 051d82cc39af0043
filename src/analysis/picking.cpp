#include "analysis/picking.h"

#include <algorithm>
#include <cmath>

#include "analysis/newanalyse.h"
#include "results/ranges.h"
#include "state/colour.h"
#include "state/numtext.h"
#include "ui/pointer.h"

namespace tessiva {
namespace {

constexpr int kFirstToolButton = 3, kLastToolButton = 9;
// A line or a rectangle counts only from a diagonal of this many grid steps.
constexpr double kShortestDrag = 3.0;

int32_t GaugeKindOfTool(int32_t tool) {
  return tool == kPickSlider ? kGaugeSlider : tool == kPickRosette ? kGaugeRosette : kGaugeLinear;
}

bool IsGaugeTool(int32_t tool) { return tool == kPickSlider || tool == kPickGage || tool == kPickRosette; }

}  // namespace

std::string ToolbarButton(int index) { return "Toolbar1.Button" + std::to_string(index); }

Picking::Picking(NewAnalyse& window) : JaugeCtrl1(window.Gages()), w_(window) {}

// ---- Arming -----------------------------------------------------------------

bool Picking::OnToolbarKey(std::string_view key) {
  const PickToolKey* tool = PickToolOfKey(key);
  if (!tool) return false;
  Arm(tool->tool);
  return true;
}

// Clearing the gauges repaints the map too, so that none stays drawn.
void Picking::Arm(int32_t tool) {
  if (JaugeCtrl1.JaugeCount() > 0) JaugeCtrl1.JaugeClear();
  w_.PicAnaRefresh();
  Selection.NboxAOS = kAosNone;
  PickTool = tool;
  X1Pick = Y1Pick = -1.0;
  if (IsGaugeTool(tool)) JaugeType = GaugeKindOfTool(tool);
  PressToolButton(tool);
  w_.ShowInfo();
  StartCollector();
}

void Picking::ArmSection(SectionKind kind) {
  if (JaugeCtrl1.JaugeCount() > 0) JaugeCtrl1.JaugeClear();
  w_.PicAnaRefresh();
  Selection.NboxAOS = kAosNone;
  PickTool = kPickSection;
  SectionTool = kind;
  X1Pick = Y1Pick = -1.0;
  PressToolButton(kPickSection);
  w_.ShowInfo();
  if (kind == SectionKind::Crack) {
    w_.Crack.OnToolArmed();
  } else {
    w_.Flc.OnToolArmed();
  }
}

void Picking::PickEnabled() {
  for (const PickToolKey& tool : PickToolKeys()) w_.Controls().SetEnabled(ToolbarButton(tool.button), true);
}

void Picking::PickDisabled() {
  for (const PickToolKey& tool : PickToolKeys()) w_.Controls().SetEnabled(ToolbarButton(tool.button), false);
}

void Picking::PressToolButton(int32_t tool) {
  const PickToolKey* key = PickToolOfCode(tool);
  const int pressed = tool == kPickSection ? kSectionToolButton : key ? key->button : 0;
  for (int i = kFirstToolButton; i <= kLastToolButton; ++i) w_.Controls().SetChecked(ToolbarButton(i), i == pressed);
}

void Picking::ReleaseToolButtons() { PressToolButton(kPickIdle); }

void Picking::BuildHead() {
  const AppState& s = w_.State();
  const HeadContext head{s.FileTitle, CurrentFileName(), w_.VueCourante,
                         UnitNames{s.UnitNameX, s.UnitNameY, s.UnitNameX}, PickingExtra(true)};
  w_.Info.TitreInfo = PickTitle(PickTool, head);
  w_.Info.ColonnesInfo = PickColumns(PickTool, head);
}

void Picking::StartCollector() {
  BuildHead();
  w_.Info.SetText(w_.Info.TitreInfo + w_.Info.ColonnesInfo);
}

// ---- The pointer on the map ---------------------------------------------------

bool Picking::InPicture(double x, double y) const {
  const AppState& s = w_.State();
  return x >= 0 && x <= s.Lima && y >= 0 && y <= s.Hima;
}

void Picking::ShowLine(double x1, double y1, double x2, double y2) {
  w_.Controls().Update("Line1", [&](ControlState& c) {
    c.left = RoundToInt32(x1), c.top = RoundToInt32(y1);
    c.width = RoundToInt32(x2 - x1), c.height = RoundToInt32(y2 - y1);
    c.visible = true;
  });
}

void Picking::ShowShape(double left, double top, double width, double height) {
  w_.Controls().Update("Shape1", [&](ControlState& c) {
    c.left = RoundToInt32(left), c.top = RoundToInt32(top);
    c.width = RoundToInt32(width), c.height = RoundToInt32(height);
    c.visible = true;
  });
}

void Picking::HideRubbers() {
  w_.Controls().SetVisible("Line1", false);
  w_.Controls().SetVisible("Shape1", false);
}

void Picking::MouseDown(int button, int shift, double x, double y) {
  x = Round(x), y = Round(y);
  if (button != kLeftButton || (shift & kShiftKey) || !InPicture(x, y)) return;
  switch (PickTool) {
    case kPickSlider:
    case kPickGage:
    case kPickRosette:
    case kPickLine:
      Selection.NboxAOS = kAosNone;
      X1Pick = x, Y1Pick = y;
      if (PickTool == kPickRosette) {
        ShowShape(x, y, 1, 1);
      } else {
        ShowLine(x, y, x + 1, y);
      }
      break;
    case kPickRectangle:
      Selection.NboxAOS = kAosNone;
      X1Pick = x, Y1Pick = y;
      ShowShape(x, y, 0, 0);
      break;
    case kPickPoint:
      Selection.NboxAOS = kAosNone;
      X1Pick = x, Y1Pick = y;
      break;
    case kPickSection:
      X1Pick = x, Y1Pick = y;
      if (SectionTool == SectionKind::Crack) {
        w_.Crack.OnToolPress(x, y);
      } else {
        w_.Flc.OnToolPress(x, y);
      }
      break;
    default:
      break;
  }
}

void Picking::MouseMove(int button, int, double x, double y) {
  x = Round(x), y = Round(y);
  if (!InPicture(x, y)) return;
  const AppState& s = w_.State();
  const auto shortText = [&s](double value) { return Format(value, s.FormatShort); };
  std::string text = "(" + shortText(x * s.UnitPX) + ", " + shortText(y * s.UnitPY) + ")";
  if ((button & kLeftButton) && X1Pick >= 0) {
    const double dx = x - X1Pick, dy = y - Y1Pick;
    switch (PickTool) {
      case kPickRosette: {
        const double side = Round(std::max(std::abs(dx), std::abs(dy)));
        ShowShape(X1Pick, Y1Pick, side, side);
        text += " WH: " + shortText(side * std::sqrt(s.UnitPY * s.UnitPX));
        break;
      }
      case kPickSlider:
      case kPickGage:
      case kPickLine:
        ShowLine(X1Pick, Y1Pick, x, y);
        text += " L: " + shortText(std::hypot(dx * s.UnitPX, dy * s.UnitPY));
        break;
      case kPickRectangle:
        ShowShape(std::min(x, X1Pick), std::min(y, Y1Pick), std::abs(dx), std::abs(dy));
        text += " WxH: " + shortText(std::abs(dx) * s.UnitPX) + "x" + shortText(std::abs(dy) * s.UnitPY);
        break;
      case kPickSection:
        text += SectionTool == SectionKind::Crack ? w_.Crack.OnToolDrag(x, y) : w_.Flc.OnToolDrag(x, y);
        break;
      default:
        break;
    }
  }
  w_.Ui().StatusPos(text);
}

// A point needs no press, so that a position typed in (the keyboard input of
// the window's menu) places it through this release alone.
std::optional<PicAnaMenu> Picking::MouseUp(int button, int shift, double x, double y) {
  x = Round(x), y = Round(y);
  const bool shifted = (shift & kShiftKey) != 0;
  if (!shifted && !InPicture(x, y)) return std::nullopt;
  if (button == kRightButton && !shifted) {
    if (JaugeCtrl1.JaugeCount() > 0) {
      auto menu = JaugeCtrl1.JaugeMouseUp(button, shift, x, y);
      if (!menu) return std::nullopt;
      return PicAnaMenu{{}, std::move(menu)};
    }
    return PicAnaMenu{PickTool == kPickPoint ? "MenuMNU" : "FileMNU", std::nullopt};
  }
  if (button != kLeftButton) return std::nullopt;
  // The forming-limit diagram takes its releases itself.
  if (!shifted && w_.VueCourante == kViewFlcDiagram) return std::nullopt;
  const double x1 = X1Pick, y1 = Y1Pick;
  X1Pick = Y1Pick = -1.0;
  const AppState& s = w_.State();
  switch (PickTool) {
    case kPickSlider:
    case kPickGage:
    case kPickRosette: {
      HideRubbers();
      if (x1 < 0) break;
      if (JaugeCtrl1.JaugeCount() > 0) {
        JaugeCtrl1.JaugeClear();
        w_.PicAnaRefresh();
      }
      const int32_t gauge = JaugeFromDrag(JaugeCtrl1, w_.PicAna, JaugeType, x1, y1, x, y, s.Lpas);
      if (gauge == 0) break;
      GaugeRowOf(gauge);
      JaugeCtrl1.JaugeDraw(gauge);
      if (w_.PicAna) w_.PicAna->Refresh();
      SaveWorkingCopy();
      break;
    }
    case kPickPoint:
      if (PointAt(x, y)) SaveWorkingCopy();
      break;
    case kPickLine:
    case kPickRectangle:
      HideRubbers();
      if (x1 < 0) break;
      X2Pick = x, Y2Pick = y;
      if (std::hypot(x - x1, y - y1) < kShortestDrag * s.Lpas) break;
      if (PickTool == kPickLine) {
        SetSelection(kAosLine, {{x1, y1}, {x, y}});
        SampleLine();
      } else {
        SetSelection(kAosRectangle, {{x1, y1}, {x, y1}, {x, y}, {x1, y}, {x1, y1}});
        RectangleToClipboard();
      }
      SaveWorkingCopy();
      break;
    case kPickSection:
      if (x1 < 0) break;
      X2Pick = x, Y2Pick = y;
      if (SectionTool == SectionKind::Crack) {
        w_.Crack.OnToolRelease(x1, y1, x, y);
      } else {
        w_.Flc.OnToolRelease(x1, y1, x, y);
      }
      break;
    default:
      break;
  }
  return std::nullopt;
}

void Picking::OnGaugeMenu(int32_t gauge, GaugeAction action) {
  if (!JaugeCtrl1.Exists(gauge)) return;
  JaugeCtrl1.JaugeAction(gauge, action, w_.Ui(), FormatLong());
  if (action == GaugeAction::CopyValues) return;
  SaveWorkingCopy();
  if (action == GaugeAction::Delete) w_.PicAnaRefresh();
}

void Picking::OnFieldChanged(int32_t view) {
  if (PickTool != kPickSection) PickTool = kPickIdle;
  X1Pick = Y1Pick = -1.0;
  HideRubbers();
  if (view == kViewFlcDiagram || view == kViewFlcDetermination) {
    PickDisabled();
  } else {
    PickEnabled();
  }
}

// ---- Drawing ------------------------------------------------------------------

void Picking::DrawOverlay(Canvas& canvas) {
  for (int32_t i = 1; i <= JaugeCtrl1.JaugeCount(); ++i)
    if (JaugeCtrl1.Exists(i)) JaugeCtrl1.JaugeDraw(i, canvas);
  if (Selection.NboxAOS == kAosLine) DrawLine(canvas);
  if (Selection.NboxAOS == kAosRectangle) DrawRectangle(canvas);
}

void Picking::DrawLine(Canvas& canvas) const {
  if (Selection.XAOS.size() <= kAosLine || Selection.YAOS.size() <= kAosLine) return;
  canvas.SetDrawWidth(2);
  canvas.Line(Selection.XAOS[1], Selection.YAOS[1], Selection.XAOS[2], Selection.YAOS[2], QBColor(kSelectionColour));
  canvas.SetDrawWidth(1);
}

void Picking::DrawRectangle(Canvas& canvas) const {
  if (Selection.XAOS.size() <= kAosRectangle || Selection.YAOS.size() <= kAosRectangle) return;
  canvas.SetDrawWidth(2);
  for (size_t j = 1; j < kAosRectangle; ++j)
    canvas.Line(Selection.XAOS[j], Selection.YAOS[j], Selection.XAOS[j + 1], Selection.YAOS[j + 1],
                QBColor(kSelectionColour));
  canvas.SetDrawWidth(1);
}

// Closing the collector repaints, so that no gauge stays drawn.
void Picking::CloseInfo() {
  ReleaseToolButtons();
  Selection.NboxAOS = kAosNone;
  const bool hadGauges = JaugeCtrl1.JaugeCount() > 0;
  if (hadGauges) JaugeCtrl1.JaugeClear();
  w_.State().FissureOn = false;
  PickTool = kPickIdle;
  X1Pick = Y1Pick = -1.0;
  HideRubbers();
  w_.Info.Hide(w_.Ui());
  if (hadGauges) w_.PicAnaRefresh();
}

}  // namespace tessiva

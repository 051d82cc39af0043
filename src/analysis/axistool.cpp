#include "analysis/axistool.h"

#include <cmath>

#include "analysis/analysisfiles.h"
#include "analysis/newanalyse.h"
#include "results/strains.h"
#include "state/numtext.h"
#include "ui/pointer.h"

namespace tessiva {
namespace {

constexpr int kAxis1Colour = 12, kAxis2Colour = 9;
constexpr double kPi = 3.14159265358979323846;
// The sides of an arrow head stand this far either side of its axis.
constexpr double kHeadSpread = kPi / 5.0;
// How far a label stands from its axis, in Repere's pixels.
constexpr double kLabelOffset = 7.0;

}  // namespace

Colour AxisTool::BackColour() const { return w_.Controls().Checked("Repere") ? kWhite : kLightYellow; }

void AxisTool::Load() {
  w_.Controls().SetChecked("Repere", false);
  w_.Teta1 = 0.0;
  w_.Cos2Teta = 1.0;
  w_.Sin2Teta = 0.0;
  AfficheRepere();
}

void AxisTool::AfficheRepere() {
  Canvas* const repere = w_.Repere;
  if (!repere) return;
  repere->SetScale(0, 0, kSide, kSide);
  repere->FilledBox(0, 0, kSide, kSide, BackColour());
  repere->SetDrawWidth(1);
  DrawAxis(*repere, w_.Teta1, QBColor(kAxis1Colour), "1");
  DrawAxis(*repere, w_.Teta1 + kPi / 2.0, QBColor(kAxis2Colour), "2");
  repere->Refresh();
}

// Angles count from the picture's x axis towards its y axis, which points
// down, as the turned fields count them.
void AxisTool::DrawAxis(Canvas& repere, double angle, Colour colour, const char* label) {
  const double c = kSide / 2.0;
  const double tipX = c + kAxisLength * std::cos(angle), tipY = c + kAxisLength * std::sin(angle);
  repere.Line(c, c, tipX, tipY, colour);
  const auto side = [&](double turn) {
    return std::pair{tipX - kHeadLength * std::cos(angle + turn), tipY - kHeadLength * std::sin(angle + turn)};
  };
  const auto [ax, ay] = side(kHeadSpread);
  const auto [bx, by] = side(-kHeadSpread);
  repere.Line(tipX, tipY, ax, ay, colour);
  repere.Line(tipX, tipY, bx, by, colour);
  repere.Line(ax, ay, bx, by, colour);
  // The label beside the axis near its head, on the side a quarter turn on,
  // so that it stays inside the picture whatever the angle.
  const double along = 0.7 * kAxisLength, aside = kLabelOffset;
  repere.Text(c + along * std::cos(angle) - aside * std::sin(angle) - repere.TextWidth(label) / 2,
              c + along * std::sin(angle) + aside * std::cos(angle) - repere.TextHeight(label) / 2, label, colour);
}

void AxisTool::OnRepereMouseUp(int button) {
  if (button == kLeftButton) {
    w_.Controls().SetChecked("Repere", !w_.Controls().Checked("Repere"));
    AfficheRepere();
    w_.PicAnaRefresh();
    return;
  }
  if (button != kRightButton) return;
  const MsgAnswer answer = w_.Ui().MessageBox("Do you want to draw a new 1 axis on the picture ?", "",
                                              MsgButtons::YesNoCancel, MsgIcon::Question);
  if (answer == MsgAnswer::Yes) {
    AxisPick = true;
  } else if (answer == MsgAnswer::No) {
    TurnTo(0.0);
    w_.Controls().SetVisible("Line5", false);
  }
}

void AxisTool::ShowLine5(double x1, double y1, double x2, double y2) {
  w_.Controls().Update("Line5", [&](ControlState& c) {
    c.left = RoundToInt32(x1), c.top = RoundToInt32(y1);
    c.width = RoundToInt32(x2 - x1), c.height = RoundToInt32(y2 - y1);
    c.visible = true;
  });
}

// Only a press on the picture starts the line.
void AxisTool::MouseDown(double x, double y) {
  const AppState& s = w_.State();
  if (x < 0 || x > s.Lima || y < 0 || y > s.Hima) return;
  x1_ = x, y1_ = y;
  dragging_ = true;
  ShowLine5(x, y, x, y);
}

void AxisTool::MouseMove(int button, double x, double y) {
  if (dragging_ && (button & kLeftButton)) ShowLine5(x1_, y1_, x, y);
}

// The angle of the line over the whole circle, kept to hundredths of a radian.
// A release without its press draws nothing.
void AxisTool::MouseUp(double x, double y) {
  if (!dragging_) return;
  dragging_ = false;
  ShowLine5(x1_, y1_, x, y);
  TurnTo(Fix(100.0 * AngleDeuxPoints(y1_, x1_, y, x)) / 100.0);
  AxisPick = false;
}

// The ranges of the turned fields come from the reader's searches, so the
// member on show is read again.
void AxisTool::TurnTo(double teta1) {
  w_.Teta1 = teta1;
  w_.Cos2Teta = std::cos(2.0 * teta1);
  w_.Sin2Teta = std::sin(2.0 * teta1);
  LecRes(w_, w_.CurFile, true);
  AfficheRepere();
  w_.PicAnaRefresh();
}

}  // namespace tessiva

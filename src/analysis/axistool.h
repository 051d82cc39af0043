// The user's axes: the small picture Repere that shows axis 1 at Teta1 and
// axis 2 a quarter turn on, the back colour switch of the window's pictures,
// and the drawing of a new axis 1 on the map. Turned displacements and
// Green Lagrange strains are read in these axes (Teta1, Cos2Teta, Sin2Teta
// of the window).
//
// Controls of the analysis window's registry the view mirrors:
//   Repere  Checked while the pictures' back colour is white rather than light yellow
//   Line5   the rubber of a new axis: Visible, and its ends in the bounds as Line1
#pragma once

#include <cstdint>

#include "state/colour.h"
#include "ui/canvas.h"

namespace tessiva {

class NewAnalyse;

class AxisTool {
 public:
  static constexpr Colour kLightYellow = 0xFFFFC0;  // RGB(255, 255, 192)
  static constexpr Colour kWhite = 0xFFFFFF;
  // Repere's side, and the length of an axis and of its head's sides, in its pixels.
  static constexpr int kSide = 46;
  static constexpr double kAxisLength = 20.0;
  static constexpr double kHeadLength = 4.0;

  explicit AxisTool(NewAnalyse& window) : w_(window) {}
  AxisTool(const AxisTool&) = delete;
  AxisTool& operator=(const AxisTool&) = delete;

  // The next press and release on the map draw axis 1.
  bool AxisPick = false;

  // The back colour of the map, the graph, the labels and Repere.
  Colour BackColour() const;
  // The window's load: light yellow, axis 1 along x.
  void Load();
  // Draws both axes and their labels on the window's Repere, when attached.
  void AfficheRepere();
  // A release on Repere: the left button switches the back colour; the right
  // asks whether to draw a new axis 1: Yes arms the drawing, No brings the
  // axes back to x and y.
  void OnRepereMouseUp(int button);
  // The pointer on the map while AxisPick, picture pixels: the press starts
  // Line5, a move with the left button drags its end, the release takes its
  // ends as axis 1.
  void MouseDown(double x, double y);
  void MouseMove(int button, double x, double y);
  void MouseUp(double x, double y);

 private:
  // Axis 1 at `teta1` radians: the turned ranges are searched again, the axes
  // and the map drawn again.
  void TurnTo(double teta1);
  static void DrawAxis(Canvas& repere, double angle, Colour colour, const char* label);
  void ShowLine5(double x1, double y1, double x2, double y2);

  NewAnalyse& w_;
  double x1_ = 0.0, y1_ = 0.0;
  bool dragging_ = false;
};

}  // namespace tessiva

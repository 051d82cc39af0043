// The stress intensity analysis of the analysis window: J, KI and KII from
// domain integrals round a crack tip drawn on the map (the section tool in
// its crack mode), its row in the collector and its overlay on the map.
//
// Controls of the analysis window's registry the view mirrors while a crack
// is drawn: Line1, the rubber line from the press point (its ends in the
// bounds, as for the picking tools), and Shape3, the circle of radius
// RayonPick round the press point (its bounds are the circle's square).
#pragma once

#include <string>

#include "analysis/crackintegral.h"
#include "formats/sidefiles.h"
#include "ui/canvas.h"

namespace tessiva {

class NewAnalyse;

class StressIntensity {
 public:
  explicit StressIntensity(NewAnalyse& window) : w_(window) {}
  StressIntensity(const StressIntensity&) = delete;
  StressIntensity& operator=(const StressIntensity&) = delete;

  // J, KI, KII, KIfromJ, JfromKs, the direction and the ring of the last
  // calculation (KiResult).
  CrackFactors KiResult;
  // The radius of the crack being drawn, pixels, at least 1.
  double RayonPick = 1.0;

  // The crack tool armed from the tool bar: the collector starts with its head.
  void OnToolArmed();
  // The crack tool on PicAna, picture pixels: a press, a drag with the button
  // held (the text appended to the position in the status), a release.
  void OnToolPress(double x, double y);
  std::string OnToolDrag(double x, double y);
  void OnToolRelease(double x1, double y1, double x2, double y2);
  // "+" and "-" widen and narrow the excluded band by a grid step; it is
  // never narrower than two.
  void OnToolKey(char key);

  // The crack from a stored selection (start, tip, radius as its three
  // vertices) is measured again on the result on show.
  void Replay(const SelectionArea& selection, bool showHead);

  // The integrals for the crack of the state (CalculKI). A crack that gives
  // nothing usable (no length, no usable pattern in its ring) says so on
  // the status line and leaves KiResult without Gauss points.
  void CalculKI();
  // The row of the last calculation, after the head when `showHead`. Nothing
  // is written for a calculation that gave nothing usable.
  void AfficheKI(bool showHead);
  // The band, the ring and the growth arrow over the map.
  void DrawOverlay(Canvas& canvas) const;

  // The crack of the state, and the material and scale of the result on show.
  CrackLine Crack() const;
  CrackMaterial Material() const;

 private:
  void BuildHead();
  // The collector starts again with the crack's head.
  void StartCollector();
  void HideRubbers();
  // Why the last calculation gave nothing, on the status line.
  void ShowWhyUnusable();

  NewAnalyse& w_;
};

// The collector's head of the crack tool: the sequence's title, then the
// columns under a rule as long as it.
std::string CrackTitle(const std::string& fileTitle);
std::string CrackColumns(const std::string& fileTitle, const std::string& extrasHead);
// A row: the member, its extra values, J, KI, KII, KIfromJ, JfromKs, the tip
// and the radius, numbers in `format`.
std::string CrackRow(const std::string& fileName, const std::string& extras, const CrackFactors& k,
                     const CrackLine& crack, const std::string& format);

}  // namespace tessiva

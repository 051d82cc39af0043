// The stress intensity analysis of the analysis window: J, KI and KII from
// domain integrals round a crack tip drawn on the map (the section tool in
// its crack mode), its row in the collector and its overlay on the map.
#pragma once

#include <string>

namespace tessiva {

class NewAnalyse;

class StressIntensity {
 public:
  explicit StressIntensity(NewAnalyse& window) : w_(window) {}
  StressIntensity(const StressIntensity&) = delete;
  StressIntensity& operator=(const StressIntensity&) = delete;

  // The crack tool armed from the tool bar.
  void OnToolArmed();
  // The crack tool on PicAna, picture pixels: a press, a drag with the button
  // held (the text appended to the position in the status), a release.
  void OnToolPress(double x, double y);
  std::string OnToolDrag(double x, double y);
  void OnToolRelease(double x1, double y1, double x2, double y2);
  // A key typed on PicAna while the crack tool is armed.
  void OnToolKey(char key);

 private:
  NewAnalyse& w_;
};

}  // namespace tessiva

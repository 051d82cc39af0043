// The forming-limit analysis of the analysis window: the FLC diagram (field
// 15), the section across a neck and its determination (field 16), and the
// band tool that lays the section on the map (the section tool in its
// forming-limit mode).
#pragma once

#include <string>

namespace tessiva {

class NewAnalyse;

class FormingLimits {
 public:
  explicit FormingLimits(NewAnalyse& window) : w_(window) {}
  FormingLimits(const FormingLimits&) = delete;
  FormingLimits& operator=(const FormingLimits&) = delete;

  // The band tool armed from the tool bar.
  void OnToolArmed();
  // The band tool on PicAna, picture pixels: a press, a drag with the button
  // held (the text appended to the position in the status), a release.
  void OnToolPress(double x, double y);
  std::string OnToolDrag(double x, double y);
  void OnToolRelease(double x1, double y1, double x2, double y2);

 private:
  NewAnalyse& w_;
};

}  // namespace tessiva

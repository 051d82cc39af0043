#include "analysis/stressintensity.h"

#include "analysis/newanalyse.h"

namespace tessiva {

void StressIntensity::OnToolArmed() {}

void StressIntensity::OnToolPress(double, double) {}

std::string StressIntensity::OnToolDrag(double, double) { return {}; }

void StressIntensity::OnToolRelease(double, double, double, double) {}

void StressIntensity::OnToolKey(char) {}

}  // namespace tessiva

#include "analysis/formlimits.h"

#include "analysis/newanalyse.h"

namespace tessiva {

void FormingLimits::OnToolArmed() {}

void FormingLimits::OnToolPress(double, double) {}

std::string FormingLimits::OnToolDrag(double, double) { return {}; }

void FormingLimits::OnToolRelease(double, double, double, double) {}

}  // namespace tessiva

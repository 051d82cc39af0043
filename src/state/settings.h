// What the program keeps in correl.ini beside its start-up keys: the data
// directory of the last session and the forming-limit curve.
#pragma once

#include <string>

#include "state/appstate.h"

namespace tessiva {

inline constexpr const char* kProgramTitle = "Tessiva - Version 4.65.0 - Tessiva Workbench - tessiva.org";

// Reads the forming-limit curve of [CLFSEC] and widens the diagram's bounds,
// which start at x -10 to 10 and y -15 to 25, to hold every point.
void ReadFormingLimitCurve(AppState& s);

// Makes `dir` the data directory, kept in correl.ini for the next start.
void RememberLastDir(AppState& s, const std::string& dir);

}  // namespace tessiva

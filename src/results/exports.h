// The exchange files of the current mesh and its results: a clean text file
// (.cfr), a Universal file for finite-element post-processors (.unv) and an
// Abaqus input file that replays the measured displacement as boundary
// conditions (.inp). Each is written whole with LF line ends and replaces any
// file of that name; false when it can't be written.
#pragma once

#include <cstdint>
#include <string>

#include "state/appstate.h"

namespace tessiva {

// Valid nodes with position, displacement and strains (percent, degrees);
// elements for the good patterns, and the bad ones too when showBad is 1.
bool SauveCfr(const AppState& s, int32_t showBad, const std::string& file);

// Datasets 2411 (valid nodes), 2412 (elements as in SauveCfr) and 2414
// (the displacement of the valid nodes).
bool SauveUnv(const AppState& s, int32_t showBad, const std::string& file);

// Every node, an element for every pattern whatever its flag, a fixed shell
// material, and the displacement of the valid nodes as boundary conditions.
// The file's y axis points up: y values change sign.
bool SauveInp(const AppState& s, const std::string& file);

}  // namespace tessiva

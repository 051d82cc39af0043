// The exchange files of the current mesh and its results: a clean text file
// (.cfr), a Universal file for finite-element post-processors (.unv), an
// Abaqus input file that replays the measured displacement as boundary
// conditions (.inp), and for general viewers a VTK unstructured grid (.vtu)
// and a spreadsheet table (.csv). Each is written whole with LF line ends and replaces any
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

// A VTK XML unstructured grid for ParaView and meshio: every node a point,
// the elements of SauveCfr as quadrilaterals with the pattern's flag as cell
// data, and as point data U, V and every strain and angle (NaN at nodes
// without a displacement). Positions and displacements are in the
// calibration's units; the grid's y axis points up, as on the picture seen
// upright, so y values change sign, as does the y component of the vector
// "Displacement" that warps the grid; the scalars U and V keep the picture's
// directions.
bool SauveVtu(const AppState& s, int32_t showBad, const std::string& file);

// One row a valid node: its number, position and displacement in the
// calibration's units, strains in percent and angles in degrees, under a
// header that names each column with its unit.
bool SauveCsv(const AppState& s, const std::string& file);

}  // namespace tessiva

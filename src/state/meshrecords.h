// The records of the analysis mesh: one cell per grid position of the picture,
// one node per cell corner. Small fixed lists are 0-based: corner k (1..4) of a
// cell is element k - 1 of its four-element arrays, neighbour k (1..8) is
// element k - 1 of Voisin.
#pragma once

#include <array>
#include <cstdint>

namespace tessiva {

// Corners, as offsets from the cell centre: 1 (-,-), 2 (-,+), 3 (+,+), 4 (+,-).
// Neighbours, as (column, row) steps: 1 (0,-1), 2 (-1,-1), 3 (-1,0), 4 (-1,+1),
// 5 (0,+1), 6 (+1,+1), 7 (+1,0), 8 (+1,-1); 0 outside the mesh.
struct MeshCell {
  int32_t Pat = 0;  // the pattern lying in the cell, 0 for none
  int32_t X = 0;    // centre, pixels
  int32_t Y = 0;
  std::array<int32_t, 8> Voisin{};
  std::array<int32_t, 4> Noeud{};
  // The pattern's displacement at each corner, pixels.
  std::array<double, 4> U{};
  std::array<double, 4> V{};
  // Strain measures at each corner: plain ratios and radians.
  std::array<double, 4> E11{};
  std::array<double, 4> E12{};
  std::array<double, 4> E22{};
  std::array<double, 4> H1{};
  std::array<double, 4> H2{};
  std::array<double, 4> H3{};
  std::array<double, 4> Teta{};
  std::array<double, 4> Psi{};
  std::array<double, 4> Gamma{};
};

struct MeshNode {
  int32_t X = 0;  // position on the reference picture, pixels
  int32_t Y = 0;
  int32_t Nval = 0;     // contributions still held, up to 4
  bool Valide = false;  // the node has an accepted displacement
  double U = 0.0;       // accepted displacement, pixels
  double V = 0.0;
  std::array<double, 4> Uval{};
  std::array<double, 4> Vval{};
  double Ecart = 0.0;  // scatter of the contributions ("Accuracy result")
  // Averages over the good cells around: strains in percent, angles in degrees.
  double E11 = 0.0;
  double E12 = 0.0;
  double E22 = 0.0;
  double H1 = 0.0;
  double H2 = 0.0;
  double H3 = 0.0;
  double Teta = 0.0;
  double Psi = 0.0;
  double Gamma = 0.0;
};

}  // namespace tessiva

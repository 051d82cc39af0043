#include "results/mesh.h"

#include <algorithm>
#include <cmath>
#include <new>

#include "results/resultfile.h"
#include "state/numtext.h"

namespace tessiva {
namespace {

// Neighbour k as (column, row) steps.
constexpr std::array<int32_t, 8> kStepX{0, -1, -1, -1, 0, 1, 1, 1};
constexpr std::array<int32_t, 8> kStepY{-1, -1, 0, 1, 1, 1, 0, -1};
// Where the bilinear form of a pattern is evaluated for corner k, in grid
// steps from the pattern's own first corner.
constexpr std::array<int32_t, 4> kCornerI{0, 0, 1, 1};
constexpr std::array<int32_t, 4> kCornerJ{0, 1, 1, 0};

// The scatter range starts empty: its minimum above, its maximum below any value.
constexpr double kNoScatter = 999999.0;

int32_t GridStep(const AppState& s) { return 2 * (s.Lgrid / 2); }

bool TakesPart(const AppState& s, int32_t i, int32_t showBad) { return s.FlagPat[i] == -1 || showBad == 1; }

int32_t CellOfPattern(const AppState& s, int32_t i) { return NumMaille(s, s.XPat[i], s.YPat[i]); }

struct GridBounds {
  int32_t xMin = 0, xMax = 0, yMin = 0, yMax = 0;
};

struct Extent {
  int64_t columns = 0;
  int64_t rows = 0;
};

// The grid lines run from Lpas to the last multiple of Lpas within the
// picture, whatever the areas of interest were.
GridBounds BoundsFor(const AppState& s, int32_t lpas) {
  const auto last = [lpas](int32_t side) {
    const double steps = Fix((static_cast<double>(side) - lpas) / lpas);
    return ClampToInt32(lpas + lpas * steps);
  };
  return {lpas, last(s.Lima), lpas, last(s.Hima)};
}

Extent ExtentOf(const GridBounds& b, int32_t lpas) {
  const auto lines = [lpas](int32_t min, int32_t max) -> int64_t {
    return max < min ? 0 : (int64_t{max} - min) / lpas + 1;
  };
  return {lines(b.xMin, b.xMax), lines(b.yMin, b.yMax)};
}

int64_t NodesOf(const Extent& e) { return e.columns == 0 ? 1 : (e.columns + 1) * (e.rows + 1); }

void AddNode(AppState& s, int64_t x, int64_t y) {
  MeshNode& node = s.Noeuds[static_cast<size_t>(++s.CurNoeud)];
  node.X = ClampToInt32(static_cast<double>(x));
  node.Y = ClampToInt32(static_cast<double>(y));
  node.Nval = 0;
  node.Valide = false;
}

// Cells column by column, each column's nodes down its left edge, the right
// edge of the last column, and last the bottom right corner. Strain fields
// aren't cleared: they keep the last file's values until computed again.
void BuildGrid(AppState& s, const Extent& e) {
  const int32_t lpas = s.Lpas;
  const int32_t half = lpas / 2;
  s.Mailles[0] = MeshCell{};
  s.Noeuds[0] = MeshNode{};
  s.CurMaille = 0;
  s.CurNoeud = 0;
  for (int64_t c = 0; c < e.columns; ++c) {
    const int64_t x = s.XGridMin + c * lpas;
    AddNode(s, x - half, int64_t{s.YGridMin} - half);
    for (int64_t r = 1; r <= e.rows; ++r) {
      const int64_t y = s.YGridMin + (r - 1) * lpas;
      MeshCell& cell = s.Mailles[static_cast<size_t>(++s.CurMaille)];
      cell.Pat = 0;
      cell.X = static_cast<int32_t>(x);
      cell.Y = static_cast<int32_t>(y);
      cell.U = {};
      cell.V = {};
      const auto first = static_cast<int32_t>(c * (e.rows + 1) + r);
      const auto right = static_cast<int32_t>(first + e.rows + 1);
      cell.Noeud = {first, first + 1, right + 1, right};
      AddNode(s, x - half, y + half);
      for (size_t k = 0; k < 8; ++k)
        cell.Voisin[k] =
            NumMaille(s, static_cast<double>(x + kStepX[k] * lpas), static_cast<double>(y + kStepY[k] * lpas));
    }
    if (c == e.columns - 1)
      for (int64_t r = 1; r <= e.rows; ++r) AddNode(s, x + half, s.YGridMin + (r - 1) * lpas - half);
  }
  const auto lastLine = [lpas](int32_t min, int32_t max) {
    return min + static_cast<int64_t>(Fix((static_cast<double>(max) - min) / lpas)) * lpas;
  };
  AddNode(s, lastLine(s.XGridMin, s.XGridMax) + half, lastLine(s.YGridMin, s.YGridMax) + half);
  s.NbMailles = s.CurMaille;
  s.NbNoeuds = s.CurNoeud;
}

// The bilinear form u = au x/L + bu y/L + cu x y/L^2 + du is evaluated from
// the pattern's own first corner over a square of side Lpas, whatever the
// ratio of Lpas to the pattern size L.
void PlacePatterns(AppState& s, int32_t showBad) {
  const double l = s.LpatEven;
  const double lpas = s.Lpas;
  for (int32_t i = 1, n = PatternsHeld(s); i <= n; ++i) {
    if (!TakesPart(s, i, showBad)) continue;
    s.CurMaille = CellOfPattern(s, i);
    MeshCell& cell = s.Mailles[static_cast<size_t>(s.CurMaille)];
    cell.Pat = i;
    for (size_t k = 0; k < 4; ++k) {
      const double x = kCornerI[k] * lpas;
      const double y = kCornerJ[k] * lpas;
      cell.U[k] = s.AuPat[i] * x / l + s.BuPat[i] * y / l + s.CuPat[i] * x * y / (l * l) + s.DuPat[i];
      cell.V[k] = s.AvPat[i] * x / l + s.BvPat[i] * y / l + s.CvPat[i] * x * y / (l * l) + s.DvPat[i];
    }
  }
}

// Each corner's node takes the cell's own value and those of the neighbours
// holding a pattern. The list is built anew at each visit, so a node keeps the
// list of the last cell that visited it.
void GatherContributions(AppState& s, int32_t showBad) {
  for (int32_t i = 1, n = PatternsHeld(s); i <= n; ++i) {
    if (!TakesPart(s, i, showBad)) continue;
    s.CurMaille = CellOfPattern(s, i);
    const MeshCell& cell = s.Mailles[static_cast<size_t>(s.CurMaille)];
    for (size_t k = 0; k < 4; ++k) {
      MeshNode& node = s.Noeuds[static_cast<size_t>(cell.Noeud[k])];
      node.Nval = 1;
      node.Uval[0] = cell.U[k];
      node.Vval[0] = cell.V[k];
      node.Valide = true;
      for (const SharedCorner& shared : kSharedCorners[k]) {
        const int32_t other = cell.Voisin[static_cast<size_t>(shared.voisin)];
        if (other == 0) continue;
        const MeshCell& neighbour = s.Mailles[static_cast<size_t>(other)];
        if (neighbour.Pat == 0) continue;
        node.Uval[static_cast<size_t>(node.Nval)] = neighbour.U[static_cast<size_t>(shared.corner)];
        node.Vval[static_cast<size_t>(node.Nval)] = neighbour.V[static_cast<size_t>(shared.corner)];
        ++node.Nval;
      }
    }
  }
}

struct Scatter {
  double meanU = 0.0;
  double meanV = 0.0;
  double su = 0.0;  // sum of |Uval - mean| / Nval
  double sv = 0.0;
  int32_t worst = 0;  // first contribution farthest from the means
};

Scatter ScatterOf(const MeshNode& node) {
  Scatter sc;
  const auto count = static_cast<size_t>(node.Nval);
  for (size_t k = 0; k < count; ++k) {
    sc.meanU += node.Uval[k];
    sc.meanV += node.Vval[k];
  }
  sc.meanU /= node.Nval;
  sc.meanV /= node.Nval;
  double farthest = 0.0;
  for (size_t k = 0; k < count; ++k) {
    const double a = std::abs(node.Uval[k] - sc.meanU) / node.Nval;
    const double b = std::abs(node.Vval[k] - sc.meanV) / node.Nval;
    sc.su += a;
    sc.sv += b;
    if (a + b > farthest) {
      farthest = a + b;
      sc.worst = static_cast<int32_t>(k);
    }
  }
  return sc;
}

void DropContribution(MeshNode& node, int32_t k) {
  for (int32_t j = k; j + 1 < node.Nval; ++j) {
    node.Uval[static_cast<size_t>(j)] = node.Uval[static_cast<size_t>(j + 1)];
    node.Vval[static_cast<size_t>(j)] = node.Vval[static_cast<size_t>(j + 1)];
  }
  --node.Nval;
}

// A node is accepted when its contributions agree within T = 0.8 LpatMax /
// Lgrid pixel; otherwise the farthest is dropped and the rest tried again. A
// corner seen by a single cell is never accepted.
void ReconcileNodes(AppState& s) {
  const double threshold = 0.8 * s.LpatMax / s.Lgrid;
  for (int32_t n = 1; n <= s.NbNoeuds; ++n) {
    MeshNode& node = s.Noeuds[static_cast<size_t>(n)];
    if (!node.Valide) continue;
    if (node.Nval < 2) {
      node.Valide = false;
      continue;
    }
    for (;;) {
      const Scatter sc = ScatterOf(node);
      node.U = sc.meanU;
      node.V = sc.meanV;
      if (!(sc.su > threshold) && !(sc.sv > threshold)) break;
      DropContribution(node, sc.worst);
      if (node.Nval < 2) {
        node.Valide = false;
        break;
      }
    }
  }
}

void ComputeScatter(AppState& s) {
  s.EcartMin = kNoScatter;
  s.EcartMax = -kNoScatter;
  for (int32_t n = 1; n <= s.NbNoeuds; ++n) {
    MeshNode& node = s.Noeuds[static_cast<size_t>(n)];
    if (!node.Valide || node.Nval < 2) continue;
    const Scatter sc = ScatterOf(node);
    node.Ecart = std::sqrt(sc.su * sc.su + sc.sv * sc.sv);
    s.EcartMin = std::min(s.EcartMin, node.Ecart);
    s.EcartMax = std::max(s.EcartMax, node.Ecart);
  }
  s.EcartMinStored = s.EcartMin;
  s.EcartMaxStored = s.EcartMax;
}

bool AllNodesValid(const AppState& s, const MeshCell& cell) {
  return std::all_of(cell.Noeud.begin(), cell.Noeud.end(),
                     [&s](int32_t n) { return s.Noeuds[static_cast<size_t>(n)].Valide; });
}

// The shape rules of a deformed cell, its corners in Noeud order. The cell is
// plausible only when every rule passes, so values that aren't numbers fail.
bool PlausibleShape(const std::array<Vec2, 4>& corners, int32_t lpas, bool checkSides) {
  // Going round the cell.
  const Vec2 p1 = corners[0], p2 = corners[3], p3 = corners[2], p4 = corners[1];
  const double a1 = Cross(p2 - p1, p4 - p1);
  const double a2 = Cross(p3 - p2, p1 - p2);
  const double a3 = Cross(p4 - p3, p2 - p3);
  const double a4 = Cross(p1 - p4, p3 - p4);
  const double step2 = static_cast<double>(lpas) * lpas;
  // Not folded; with all four areas positive none of the sums below is zero.
  if (!(a1 > 0.0 && a2 > 0.0 && a3 > 0.0 && a4 > 0.0)) return false;
  if (!(std::abs(a1 / (a1 + a3) - a2 / (a2 + a4)) <= 0.3)) return false;
  if (!(a1 + a3 <= 15.0 * step2)) return false;
  const double ratio = (a1 + a2) / (a3 + a4);
  if (!(ratio <= 2.0 && ratio >= 0.5)) return false;
  if (!checkSides) return true;
  for (const double side :
       {SquaredLength(p2 - p1), SquaredLength(p3 - p2), SquaredLength(p4 - p3), SquaredLength(p1 - p4)})
    if (!(side <= 5.0 * step2 && side >= 0.04 * step2)) return false;
  return true;
}

// A good pattern whose deformed cell is implausible is rejected. Then every
// pattern, whatever its flag, is rejected when a node of CurMaille isn't
// valid; CurMaille moves only with good patterns, so a pattern not good in the
// file answers for the cell of the last good pattern before it.
void CheckShapes(AppState& s) {
  for (int32_t i = 1, n = PatternsHeld(s); i <= n; ++i) {
    if (s.FlagPat[i] == -1) {
      s.CurMaille = CellOfPattern(s, i);
      if (!PlausibleShape(DeformedCorners(s, s.Mailles[static_cast<size_t>(s.CurMaille)]), s.Lpas, false))
        s.FlagPat[i] = 0;
    }
    if (!AllNodesValid(s, s.Mailles[static_cast<size_t>(s.CurMaille)])) s.FlagPat[i] = 0;
  }
}

bool BringBackComplete(AppState& s) {
  bool changed = false;
  for (int32_t i = 1, n = PatternsHeld(s); i <= n; ++i) {
    if (s.FlagPat[i] == -1) continue;
    s.CurMaille = CellOfPattern(s, i);
    if (!AllNodesValid(s, s.Mailles[static_cast<size_t>(s.CurMaille)])) continue;
    s.FlagPat[i] = -1;
    changed = true;
  }
  return changed;
}

// With three valid nodes, the fourth becomes the corner of the parallelogram
// the other three make in deformed positions.
bool CompleteParallelograms(AppState& s) {
  bool changed = false;
  for (int32_t i = 1, n = PatternsHeld(s); i <= n; ++i) {
    if (s.FlagPat[i] == -1) continue;
    s.CurMaille = CellOfPattern(s, i);
    const MeshCell& cell = s.Mailles[static_cast<size_t>(s.CurMaille)];
    const auto valid = std::count_if(cell.Noeud.begin(), cell.Noeud.end(),
                                     [&s](int32_t node) { return s.Noeuds[static_cast<size_t>(node)].Valide; });
    if (valid != 3) continue;
    size_t missing = 0;
    while (s.Noeuds[static_cast<size_t>(cell.Noeud[missing])].Valide) ++missing;
    const std::array<Vec2, 4> p = DeformedCorners(s, cell);
    const Vec2 completed = p[(missing + 3) % 4] - p[(missing + 2) % 4] + p[(missing + 1) % 4];
    MeshNode& node = s.Noeuds[static_cast<size_t>(cell.Noeud[missing])];
    node.U = completed.x - node.X;
    node.V = completed.y - node.Y;
    node.Valide = true;
    s.FlagPat[i] = -1;
    changed = true;
  }
  return changed;
}

void FinalChecks(AppState& s) {
  for (int32_t i = 1, n = PatternsHeld(s); i <= n; ++i) {
    if (s.FlagPat[i] != -1) continue;
    s.CurMaille = CellOfPattern(s, i);
    MeshCell& cell = s.Mailles[static_cast<size_t>(s.CurMaille)];
    cell.Pat = i;
    if (!PlausibleShape(DeformedCorners(s, cell), s.Lpas, true)) s.FlagPat[i] = 0;
  }
}

}  // namespace

int32_t NumMaille(const AppState& s, double x, double y) {
  if (!(x >= s.XGridMin && x <= s.XGridMax && y >= s.YGridMin && y <= s.YGridMax) || s.Lpas <= 0) return 0;
  const double lpas = s.Lpas;
  const double ny = Fix((s.YGridMax - s.YGridMin) / lpas) + 1.0;
  const double iy = 1.0 + Fix((y - s.YGridMin - lpas / 2.0) / lpas);
  const double ix = 1.0 + Fix((x - s.XGridMin - lpas / 2.0) / lpas);
  const double n = ny * ix + iy;
  // A mesh built for another grid step or picture may not fit the cells held.
  if (n < 0.0 || n + 1.0 >= static_cast<double>(s.Mailles.size())) return 0;
  return static_cast<int32_t>(n) + 1;
}

std::array<Vec2, 4> DeformedCorners(const AppState& s, const MeshCell& cell) {
  std::array<Vec2, 4> p;
  for (size_t k = 0; k < 4; ++k) {
    const MeshNode& node = s.Noeuds[static_cast<size_t>(cell.Noeud[k])];
    p[k] = {node.X + node.U, node.Y + node.V};
  }
  return p;
}

void CreeMaillage(AppState& s, int32_t showBad) {
  const int32_t lpas = GridStep(s);
  if (lpas <= 0) return;
  const GridBounds bounds = BoundsFor(s, lpas);
  const Extent extent = ExtentOf(bounds, lpas);
  if (extent.columns * extent.rows > kMaxMeshCells) return;
  // A picture of unusual proportions may need more nodes than the arrays were
  // sized for; without the memory the previous mesh stays.
  try {
    s.Mailles.resize(std::max(s.Mailles.size(), static_cast<size_t>(extent.columns * extent.rows) + 1));
    s.Noeuds.resize(std::max(s.Noeuds.size(), static_cast<size_t>(NodesOf(extent)) + 1));
  } catch (const std::bad_alloc&) {
    return;
  }
  s.Lpas = lpas;
  s.XGridMin = bounds.xMin;
  s.XGridMax = bounds.xMax;
  s.YGridMin = bounds.yMin;
  s.YGridMax = bounds.yMax;
  BuildGrid(s, extent);
  PlacePatterns(s, showBad);
  GatherContributions(s, showBad);
  ReconcileNodes(s);
  ComputeScatter(s);
  CheckShapes(s);
}

void RepareMaillage(AppState& s) {
  if (GridStep(s) <= 0) return;
  s.Lpas = GridStep(s);
  for (int pass = 1; pass <= 2; ++pass) {
    const bool broughtBack = BringBackComplete(s);
    const bool completed = CompleteParallelograms(s);
    if (!broughtBack && !completed) break;
  }
  FinalChecks(s);
}

}  // namespace tessiva

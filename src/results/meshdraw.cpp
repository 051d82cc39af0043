#include "results/meshdraw.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <vector>

#include "results/geometry.h"
#include "results/mesh.h"
#include "results/resultfile.h"
#include "results/strains.h"
#include "state/colour.h"
#include "state/numtext.h"

namespace tessiva {
namespace {

constexpr int kGrey = 8, kLightRed = 12, kYellow = 14, kWhite = 15, kBlack = 0;
constexpr double kBarbAngle = std::numbers::pi / 5;

using Corners = std::array<Vec2, 4>;

const MeshNode& NodeOf(const AppState& s, const MeshCell& cell, size_t k) {
  return s.Noeuds[static_cast<size_t>(cell.Noeud[k])];
}

const MeshCell* CellOf(const AppState& s, int32_t i) {
  if (s.Mailles.empty()) return nullptr;
  const int32_t c = NumMaille(s, s.XPat[i], s.YPat[i]);
  return c == 0 ? nullptr : &s.Mailles[static_cast<size_t>(c)];
}

// The corners of pattern i's cell in Noeud order; on the deformed
// configuration moved by their nodes' displacement; corrected when on.
Corners BaseCorners(const AppState& s, const FieldSettings& f, int32_t i, const MeshCell& cell) {
  const double h = HalfCell(s), x = s.XPat[i], y = s.YPat[i];
  Corners c{{{x - h, y - h}, {x - h, y + h}, {x + h, y + h}, {x + h, y - h}}};
  for (size_t k = 0; k < 4; ++k) {
    if (!f.bInitial) c[k] = c[k] + Vec2{NodeOf(s, cell, k).U, NodeOf(s, cell, k).V};
    if (f.Corrected()) c[k] = f.distortion->CorrectedPosition(c[k]);
  }
  return c;
}

void DrawOutline(Canvas& canvas, const Corners& c, Colour colour) {
  for (size_t k = 0; k < 4; ++k) canvas.Line(c[k].x, c[k].y, c[(k + 1) % 4].x, c[(k + 1) % 4].y, colour);
}

// A displacement as drawn: less the means on request, times the sign and the amplification.
Vec2 Drawn(const AppState& s, const FieldSettings& f, Vec2 d, double magni) {
  const double scale = f.Sign() * magni;
  return {(d.x - f.subMean * s.MoyD1) * scale, (d.y - f.subMean * s.MoyD2) * scale};
}

Vec2 NodeDisplacement(const FieldSettings& f, const MeshNode& node) {
  const Vec2 d{node.U, node.V};
  return f.Corrected() ? f.distortion->CorrectedDisplacement({double(node.X), double(node.Y)}, d, f.Sign()) : d;
}

void DrawArrow(Canvas& canvas, Vec2 p, Vec2 q, Colour colour) {
  canvas.Line(p.x, p.y, q.x, q.y, colour);
  const double a = std::numbers::pi / 2 - AngleDeuxPoints(p.x, p.y, q.x, q.y);
  const Vec2 left{q.x - kArrowHead * std::cos(a - kBarbAngle), q.y - kArrowHead * std::sin(a - kBarbAngle)};
  const Vec2 right{q.x - kArrowHead * std::cos(a + kBarbAngle), q.y - kArrowHead * std::sin(a + kBarbAngle)};
  canvas.Line(q.x, q.y, left.x, left.y, colour);
  canvas.Line(q.x, q.y, right.x, right.y, colour);
  canvas.Line(left.x, left.y, right.x, right.y, colour);
}

}  // namespace

double Amplification(bool on, std::string_view typed) {
  if (!on) return 1.0;
  const double value = ValNorm(typed);
  return value > 0.0 ? value : 1.0;
}

void DrawAreaOutlines(Canvas& canvas, const AppState& s, Colour colour) {
  // Slot NbBox is the free one the next area takes.
  const size_t areas = static_cast<size_t>(std::clamp(s.NbBox - 1, 0, AppState::kMaxAreas));
  for (size_t k = 1; k <= areas; ++k) {
    const auto& xs = s.XBox[k];
    const auto& ys = s.YBox[k];
    for (size_t i = 1; i < static_cast<size_t>(std::max(s.Nbox[k], 0)) && i < AppState::kMaxVertices; ++i)
      canvas.Line(xs[i], ys[i], xs[i + 1], ys[i + 1], colour);
  }
}

void DrawDeformedMesh(Canvas& canvas, const AppState& s, const FieldSettings& f, double magni) {
  const int32_t count = PatternsHeld(s);
  for (int32_t i = 1; i <= count; ++i) {
    const MeshCell* cell = CellOf(s, i);
    if (!cell || (s.FlagPat[i] != -1 && f.showBad != 1)) continue;
    const Corners base = BaseCorners(s, f, i, *cell);
    DrawOutline(canvas, base, QBColor(kGrey));
    if (s.FlagPat[i] != -1) DrawOutline(canvas, base, QBColor(kLightRed));
  }
  for (int32_t i = 1; i <= count; ++i) {
    const MeshCell* cell = CellOf(s, i);
    if (!cell || (s.FlagPat[i] != -1 && f.showBad != 1)) continue;
    Corners moved = BaseCorners(s, f, i, *cell);
    for (size_t k = 0; k < 4; ++k) moved[k] = moved[k] + Drawn(s, f, NodeDisplacement(f, NodeOf(s, *cell, k)), magni);
    DrawOutline(canvas, moved, QBColor(kWhite));
    if (s.FlagPat[i] != -1) DrawOutline(canvas, moved, QBColor(kBlack));
  }
}

void DrawDisplacementVectors(Canvas& canvas, const AppState& s, const FieldSettings& f, double magni,
                             int32_t smooth) {
  const std::vector<double> offsets = SampleOffsets(std::max(1, smooth));
  // The arrows start from the cell as measured; the correction acts on their length only.
  const FieldSettings uncorrected{f.showBad, f.subMean, f.bInitial, nullptr};
  const FieldSettings undeformed{f.showBad, f.subMean, true, nullptr};
  for (int32_t i = 1, count = PatternsHeld(s); i <= count; ++i) {
    const MeshCell* cell = CellOf(s, i);
    if (!cell || !PatternShown(s, f, i)) continue;
    DrawOutline(canvas, BaseCorners(s, undeformed, i, *cell), QBColor(kGrey));
    const Corners corners = BaseCorners(s, uncorrected, i, *cell);
    const Colour colour = QBColor(s.FlagPat[i] == -1 ? kYellow : kLightRed);
    for (const double eta : offsets) {
      for (const double xi : offsets) {
        const std::array<double, 4> n = ShapeWeights(xi, eta);
        Vec2 p{}, d{};
        for (size_t k = 0; k < 4; ++k) {
          p = p + Vec2{n[k] * corners[k].x, n[k] * corners[k].y};
          d = d + Vec2{n[k] * NodeOf(s, *cell, k).U, n[k] * NodeOf(s, *cell, k).V};
        }
        if (f.Corrected()) d = f.distortion->CorrectedDisplacement(p, d, f.Sign());
        DrawArrow(canvas, p, p + Drawn(s, f, d, magni), colour);
      }
    }
  }
}

}  // namespace tessiva

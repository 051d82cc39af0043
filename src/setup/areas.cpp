#include "setup/areas.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "setup/areaform.h"
#include "setup/grid.h"
#include "state/numtext.h"
#include "state/index.h"

namespace tessiva {
namespace {

constexpr int32_t kAllSelectMargin = 15;
constexpr int kCrackDiscPoints = 24;
constexpr int kGaugeDiscPoints = 12;
constexpr size_t kMaxFreeHandPoints = 50;
constexpr int kAreaToolButtons = 12;

Vertex Rounded(double x, double y) { return {RoundToInt32(x), RoundToInt32(y)}; }

double Distance(double x1, double y1, double x2, double y2) { return std::hypot(x2 - x1, y2 - y1); }

double Sign(double v) { return v > 0 ? 1.0 : v < 0 ? -1.0 : 0.0; }

// The ends of a band's mid-line, halfway between its corners.
struct MidLine {
  double xa, ya, xb, yb;
};
MidLine MidLineOf(const Outline& band) {
  return {(band[0].x + band[3].x) / 2.0, (band[0].y + band[3].y) / 2.0, (band[1].x + band[2].x) / 2.0,
          (band[1].y + band[2].y) / 2.0};
}

void DrawOutline(Canvas* canvas, const Outline& outline, Colour colour) {
  if (!canvas) return;
  for (size_t i = 0; i + 1 < outline.size(); ++i)
    canvas->Line(outline[i].x, outline[i].y, outline[i + 1].x, outline[i + 1].y, colour);
}

// Every tool that adds one area ends alike: its edges in light red, the area
// stored, the grid laid again.
bool AddAreaAndRebuild(AreaForm& form, const Outline& outline) {
  if (!StoreArea(form.State(), outline, 0)) return false;
  DrawOutline(form.RefView().GetCanvas(), outline, QBColor(12));
  form.CreateRectArea();
  return true;
}

// Drags shorter than three grid steps store nothing.
bool LongerThanFloor(const AppState& s, double x1, double y1, double x2, double y2) {
  return Distance(x1, y1, x2, y2) >= 3.0 * s.Lpas;
}

// The erase tools lose the start points, so they ask first when some exist.
bool ConfirmLosingStartPoints(AreaForm& form, const std::string& what) {
  if (form.State().NbStart == 0) return true;
  return form.Ui().MessageBox(what + "\nDo you really want to do that ?", "", MsgButtons::YesNo, MsgIcon::Question) ==
         MsgAnswer::Yes;
}

}  // namespace

Outline AreaOutline(const AppState& s, int32_t k) {
  Outline outline;
  if (k < 0 || k > AppState::kMaxAreas) return outline;
  const int32_t points = std::min(s.Nbox[At(k)], AppState::kMaxVertices);
  for (int32_t j = 1; j <= points; ++j) outline.push_back({s.XBox[At(k)][At(j)], s.YBox[At(k)][At(j)]});
  return outline;
}

BandOffset BandOffsetFor(double x1, double y1, double x2, double y2, double halfWidth) {
  if (x1 == x2) return {halfWidth, 0.0};
  const double s = (y2 - y1) / (x1 - x2);
  const double t = std::sqrt(1.0 + s * s);
  return {halfWidth * s / t, halfWidth / t};
}

Outline BandAlong(double x1, double y1, double x2, double y2, BandOffset m) {
  const Vertex first = Rounded(x1 + m.mx, y1 + m.my);
  return {first, Rounded(x2 + m.mx, y2 + m.my), Rounded(x2 - m.mx, y2 - m.my), Rounded(x1 - m.mx, y1 - m.my), first};
}

Outline AllSelectOutline(int32_t lima, int32_t hima) {
  const int32_t m = kAllSelectMargin;
  return {{m, m}, {lima - m, m}, {lima - m, hima - m}, {m, hima - m}, {m, m}};
}

Outline RectangleOutline(double x1, double y1, double x2, double y2) {
  return {Rounded(x1, y1), Rounded(x2, y1), Rounded(x2, y2), Rounded(x1, y2), Rounded(x1, y1)};
}

Outline TraitOutline(double x1, double y1, double x2, double y2, int32_t lgrid) {
  return BandAlong(x1, y1, x2, y2, BandOffsetFor(x1, y1, x2, y2, 4.0 * lgrid));
}

Outline DiscOutline(double cx, double cy, double radius, int points) {
  Outline disc;
  const double step = 2.0 * std::numbers::pi / points;
  // The angle is stepped as a running sum and stops half a step short of a full turn.
  for (double theta = 0; theta <= 2.0 * std::numbers::pi - step / 2.0; theta += step)
    disc.push_back(Rounded(radius * std::cos(theta) + cx, radius * std::sin(theta) + cy));
  if (!disc.empty()) disc.push_back(disc.front());
  return disc;
}

std::vector<Outline> GaugeOutlines(int32_t x1, int32_t y1, int32_t x2, int32_t y2, int32_t kind, int32_t lpas) {
  if (Distance(x1, y1, x2, y2) < 3.0 * lpas) return {DiscOutline(x1, y1, 4.0 * lpas, kGaugeDiscPoints)};
  const double r = 2.0 * lpas;
  if (kind != kRosette) return {DiscOutline(x1, y1, r, kGaugeDiscPoints), DiscOutline(x2, y2, r, kGaugeDiscPoints)};
  return {DiscOutline(x1, y1, r, kGaugeDiscPoints), DiscOutline(x2, y1, r, kGaugeDiscPoints),
          DiscOutline(x2, y2, r, kGaugeDiscPoints), DiscOutline(x1, y2, r, kGaugeDiscPoints)};
}

std::array<Outline, 2> CrackOutlines(double x1, double y1, double x2, double y2, int32_t lpas, double klarg) {
  return {DiscOutline(x1, y1, Distance(x1, y1, x2, y2), kCrackDiscPoints),
          BandAlong(x1, y1, x2, y2, BandOffsetFor(x1, y1, x2, y2, klarg * lpas))};
}

Vertex NeckPoint(const Outline& band, double px, double py) {
  const MidLine m = MidLineOf(band);
  const double dx = m.xb - m.xa;
  const double dy = m.yb - m.ya;
  if (dx == 0 && dy == 0) return Rounded(m.xa, m.ya);
  if (std::abs(dx) >= std::abs(dy)) {
    const double x = std::clamp(px, std::min(m.xa, m.xb), std::max(m.xa, m.xb));
    return Rounded(x, m.ya + (x - m.xa) * dy / dx);
  }
  const double y = std::clamp(py, std::min(m.ya, m.yb), std::max(m.ya, m.yb));
  return Rounded(m.xa + (y - m.ya) * dx / dy, y);
}

std::array<Outline, 2> NeckStrips(const Outline& band, Vertex neck, int32_t lpas, int32_t lgrid) {
  const MidLine m = MidLineOf(band);
  double plusX = m.xa, plusY = 0, minusX = m.xa, minusY = 0;
  if (m.xa != m.xb) {
    const double s = (m.yb - m.ya) / (m.xa - m.xb);
    const double t = std::sqrt(1.0 + s * s);
    const double sigma = Sign(m.xa - m.xb);
    plusX = neck.x + sigma * lpas / t;
    plusY = neck.y + sigma * lpas * s / t;
    minusX = neck.x - sigma * lpas / t;
    minusY = neck.y - sigma * lpas * s / t;
  } else {
    plusY = neck.y + Sign(m.ya - m.yb) * lpas;
    minusY = neck.y - Sign(m.ya - m.yb) * lpas;
  }
  const BandOffset offset = BandOffsetFor(m.xa, m.ya, m.xb, m.yb, 4.0 * lgrid);
  return {BandAlong(m.xa, m.ya, plusX, plusY, offset), BandAlong(minusX, minusY, m.xb, m.yb, offset)};
}

void StoreGaugeAreas(AppState& s, const Gage& g, int32_t tag) {
  for (const Outline& disc : GaugeOutlines(g.xdep, g.ydep, g.xarr, g.yarr, g.type, s.Lpas)) StoreArea(s, disc, tag);
}

bool StoreArea(AppState& s, const Outline& outline, int32_t tag) {
  if (s.NbBox < 1 || s.NbBox > AppState::kMaxAreas || outline.empty() ||
      outline.size() > static_cast<size_t>(AppState::kMaxVertices))
    return false;
  const size_t k = At(s.NbBox);
  s.Nbox[k] = static_cast<int32_t>(outline.size());
  for (size_t j = 0; j < outline.size(); ++j) {
    s.XBox[k][j + 1] = outline[j].x;
    s.YBox[k][j + 1] = outline[j].y;
  }
  s.TagBox[k] = tag;
  ++s.NbBox;
  return true;
}

void RemoveAreasTagged(AppState& s, int32_t tag) {
  int32_t kept = 0;
  for (int32_t k = 1; k < s.NbBox && k <= AppState::kMaxAreas; ++k) {
    if (s.TagBox[At(k)] == tag) continue;
    ++kept;
    s.Nbox[At(kept)] = s.Nbox[At(k)];
    s.TagBox[At(kept)] = s.TagBox[At(k)];
    s.XBox[At(kept)] = s.XBox[At(k)];
    s.YBox[At(kept)] = s.YBox[At(k)];
  }
  s.NbBox = kept + 1;
}

AreaEdges::AreaEdges(const AppState& s, const GridFrame& frame)
    : farX_(1.5 * frame.XGridMax), farY_(1.5 * frame.YGridMax) {
  // The line of the edge before carries over to a vertical edge, from one area to the next too.
  double a = 0, b = 0;
  for (int32_t k = 1; k < s.NbBox && k <= AppState::kMaxAreas; ++k) {
    const auto& xs = s.XBox[At(k)];
    const auto& ys = s.YBox[At(k)];
    for (int32_t i = 1; i < s.Nbox[At(k)] && i < AppState::kMaxVertices; ++i) {
      const double x1 = xs[At(i)], y1 = ys[At(i)], x2 = xs[At(i + 1)], y2 = ys[At(i + 1)];
      const bool vertical = x1 == x2;
      if (!vertical) {
        a = (y1 - y2) / (x1 - x2);
        b = (y2 * x1 - y1 * x2) / (x1 - x2);
      }
      edges_.push_back({k, x1, y1, x2, y2, a, b, vertical});
    }
  }
}

double AreaEdges::InSurfArea(double x, double y) const {
  int32_t total = 0, own = 0, current = 0, found = 0;
  for (const Edge& e : edges_) {
    if (e.area != current) {
      if (own % 2 == 1) found = current;
      own = 0;
      current = e.area;
    }
    double xi = farX_, yi = farY_;
    if (e.vertical) {
      xi = e.x1;
      yi = y;
    } else if (e.a != 0) {
      xi = (y - e.b) / e.a;
      yi = y;
    }
    // A ray through a vertex is nudged half a pixel down; a horizontal line is never crossed.
    if (y == e.y1 || y == e.y2) {
      if (e.a == 0) {
        xi = farX_;
        yi = farY_;
      } else {
        xi = (y + 0.5 - e.b) / e.a;
        yi = y + 0.5;
      }
    }
    if (xi >= x && std::min(e.y1, e.y2) <= yi && yi <= std::max(e.y1, e.y2)) {
      ++own;
      ++total;
    }
  }
  if (own % 2 == 1) found = current;
  return total % 2 == 1 ? found : 0.0;
}

double InSurfArea(const AppState& s, const GridFrame& frame, double x, double y) {
  return AreaEdges(s, frame).InSurfArea(x, y);
}

namespace setup {

void DeleteAOI(AreaForm& form) {
  AppState& s = form.State();
  form.DeleteGrille();
  s.NbBox = 1;
  for (auto& row : s.XBox) row.fill(0);
  for (auto& row : s.YBox) row.fill(0);
  s.Nbox.fill(0);
  s.TagBox.fill(0);
  form.Gages().Clear();
}

void AllSelect(AreaForm& form) { AddAreaAndRebuild(form, AllSelectOutline(form.State().Lima, form.State().Hima)); }

bool AddRectangle(AreaForm& form, double x1, double y1, double x2, double y2) {
  return LongerThanFloor(form.State(), x1, y1, x2, y2) && AddAreaAndRebuild(form, RectangleOutline(x1, y1, x2, y2));
}

bool AddTrait(AreaForm& form, double x1, double y1, double x2, double y2) {
  return LongerThanFloor(form.State(), x1, y1, x2, y2) &&
         AddAreaAndRebuild(form, TraitOutline(x1, y1, x2, y2, form.State().Lgrid));
}

bool FreeHandClick(AreaForm& form, double x, double y) {
  AppState& s = form.State();
  std::vector<Vertex>& points = form.Engine().tools.freeHand;
  Canvas* canvas = form.RefView().GetCanvas();
  const Vertex click = Rounded(x, y);
  if (points.empty()) {
    if (s.NbBox > AppState::kMaxAreas) return false;
    points.push_back(click);
    if (canvas) canvas->Point(click.x, click.y, QBColor(12));
    return false;
  }
  const double dx = x - points.front().x;
  const double dy = y - points.front().y;
  const bool full = points.size() >= kMaxFreeHandPoints;
  if (dx * dx + dy * dy < static_cast<double>(s.Lpas) * s.Lpas || full) {
    if (full)
      form.Ui().MessageBox("Only 50 points could be used for the shape", "", MsgButtons::Ok, MsgIcon::Information);
    Outline shape = points;
    shape.push_back(points.front());
    points.clear();
    AddAreaAndRebuild(form, shape);
    return true;
  }
  if (canvas) canvas->Line(points.back().x, points.back().y, click.x, click.y, QBColor(14));
  points.push_back(click);
  return false;
}

bool FormingLimitDrag(AreaForm& form, double x1, double y1, double x2, double y2) {
  if (!AddTrait(form, x1, y1, x2, y2)) return false;
  form.Engine().tools.formingLimitStage = true;
  return true;
}

void FormingLimitMove(AreaForm& form, double x, double y) {
  AppState& s = form.State();
  if (!form.Engine().tools.formingLimitStage || s.NbBox < 2) return;
  const Vertex neck = NeckPoint(AreaOutline(s, s.NbBox - 1), x, y);
  s.xstrict = neck.x;
  s.ystrict = neck.y;
}

void FormingLimitClick(AreaForm& form) {
  AppState& s = form.State();
  bool& stage = form.Engine().tools.formingLimitStage;
  if (!stage || s.NbBox < 2) return;
  stage = false;
  const Outline band = AreaOutline(s, s.NbBox - 1);
  if (band.size() != 5) return;
  --s.NbBox;
  for (const Outline& strip : NeckStrips(band, {s.xstrict, s.ystrict}, s.Lpas, s.Lgrid)) StoreArea(s, strip, 0);
  s.ClfMode = true;
  form.CreateRectArea();
}

bool AddCrack(AreaForm& form, double x1, double y1, double x2, double y2) {
  AppState& s = form.State();
  const double radius = Distance(x1, y1, x2, y2);
  if (radius < 2.0 * s.Lpas) return false;
  s.RayonFissure = radius;
  for (const Outline& outline : CrackOutlines(x1, y1, x2, y2, s.Lpas, s.Klarg)) StoreArea(s, outline, 0);
  form.CreateRectArea();
  s.FissureOn = true;
  s.XFissureArr = x1;
  s.YFissureArr = y1;
  s.XFissureDep = x2;
  s.YFissureDep = y2;
  Parametre(form);
  return true;
}

bool AddGauge(AreaForm& form, double x1, double y1, double x2, double y2, int32_t kind) {
  if (kind == kRosette) {
    // A rosette is square: the larger travel sets both sides.
    const double side = std::max(std::abs(x2 - x1), std::abs(y2 - y1));
    x2 = x1 + (x2 < x1 ? -side : side);
    y2 = y1 + (y2 < y1 ? -side : side);
  }
  if (Distance(x1, y1, x2, y2) < form.State().Lpas) return false;
  const Vertex a = Rounded(x1, y1), b = Rounded(x2, y2);
  const int32_t number = form.Gages().Add({"", kind, a.x, a.y, b.x, b.y});
  form.CreateBoxJauge(a.x, a.y, b.x, b.y, kind, number);
  form.CreateRectArea();
  return true;
}

void CreateBoxJauge(AreaForm& form, int32_t x1, int32_t y1, int32_t x2, int32_t y2, int32_t kind, int32_t tag) {
  StoreGaugeAreas(form.State(), {"", kind, x1, y1, x2, y2}, tag);
}

void Parametre(AreaForm& form) {
  for (const char* field : {"Text1", "Text2", "Text3", "Text4", "TextYoung", "TextPoisson"})
    form.Parameters().Controls().SetEnabled(field, true);
  form.Parameters().SelectTab(1);
  form.Ui().Frame().SetVisible("Param", true);
}

void EnableAreaTools(AreaForm& form, bool enabled) {
  for (int i = 1; i <= kAreaToolButtons; ++i)
    form.Controls().SetEnabled("Toolbar2.Button" + std::to_string(i), enabled);
}

void TrashLast(AreaForm& form) {
  AppState& s = form.State();
  if (!ConfirmLosingStartPoints(form, "If you delete the last Area of Interest you delete all initial solution too."))
    return;
  if (s.NbBox > 1) {
    const int32_t tag = s.TagBox[At(s.NbBox - 1)];
    --s.NbBox;
    // A gauge's areas go together with the gauge.
    if (tag != 0 && tag != -1) {
      form.Gages().Remove(tag);
      RemoveAreasTagged(s, tag);
    }
  }
  if (s.NbBox > 1) {
    form.CreateRectArea();
    return;
  }
  form.DeleteAOI();
  form.AreAPicRefRefresh();
  form.AreAPicDefRefresh();
}

void Trash(AreaForm& form) {
  if (!ConfirmLosingStartPoints(form, "If you delete all Area of Interest you delete all initial solution too.")) return;
  form.DeleteAOI();
  form.AreAPicRefRefresh();
  form.AreAPicDefRefresh();
}

}  // namespace setup
}  // namespace tessiva

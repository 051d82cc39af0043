// Areas of interest: the closed polygons of the area store, the inside test
// the grid is laid with, and the tools that add and remove areas.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "state/appstate.h"
#include "state/gages.h"
#include "ui/canvas.h"

namespace tessiva {

class AreaForm;
struct GridFrame;

struct Vertex {
  int32_t x = 0;
  int32_t y = 0;
  bool operator==(const Vertex&) const = default;
};

// The kinds of gauge a gauge tool lays.
enum GaugeKindCode : int32_t { kJauge = 0, kRosette = 1, kSlider = 2 };

// A closed outline: its last vertex repeats the first.
using Outline = std::vector<Vertex>;

// ---- Geometry of the tools ------------------------------------------------

// Offset from the mid-line to one side of a band of half-width w round A-B.
struct BandOffset {
  double mx = 0;
  double my = 0;
};
BandOffset BandOffsetFor(double x1, double y1, double x2, double y2, double halfWidth);
// The 5-point band A + M, B + M, B - M, A - M, A + M, rounded.
Outline BandAlong(double x1, double y1, double x2, double y2, BandOffset m);

// `allselect`: the picture less a margin of 15 pixels.
Outline AllSelectOutline(int32_t lima, int32_t hima);
Outline RectangleOutline(double x1, double y1, double x2, double y2);
// `trait`: a band of half-width 4 x Lgrid round the dragged segment.
Outline TraitOutline(double x1, double y1, double x2, double y2, int32_t lgrid);
// `points` vertices round the circle, from angle 0 on, and the first again.
Outline DiscOutline(double cx, double cy, double radius, int points);
// The discs of a gauge: kind 0 linear gauge, 1 rosette, 2 slider.
std::vector<Outline> GaugeOutlines(int32_t x1, int32_t y1, int32_t x2, int32_t y2, int32_t kind, int32_t lpas);
// The crack tool from end A to end B: the disc of radius |AB| round A, and the
// slit along A-B of half-width klarg x Lpas, which the parity rule makes a hole.
std::array<Outline, 2> CrackOutlines(double x1, double y1, double x2, double y2, int32_t lpas, double klarg);
// The forming-limit band's neck: the point of its mid-line nearest the pointer
// in x (in y for a steep line), held between the mid-line's ends.
Vertex NeckPoint(const Outline& band, double px, double py);
// The two strips that replace the band, leaving 2 x Lpas free round the neck.
std::array<Outline, 2> NeckStrips(const Outline& band, Vertex neck, int32_t lpas, int32_t lgrid);

// ---- The area store and the inside test ------------------------------------

// The points of area k, as stored.
Outline AreaOutline(const AppState& s, int32_t k);
// Adds an outline as area NbBox with its tag; false when the store is full.
bool StoreArea(AppState& s, const Outline& outline, int32_t tag);
// The areas gauge g needs, tagged with its number.
void StoreGaugeAreas(AppState& s, const Gage& g, int32_t tag);
// Takes out every area with this tag, the later ones closing up.
void RemoveAreasTagged(AppState& s, int32_t tag);

// The edges of every area, prepared once for many inside tests. Each edge
// keeps the line it is tested against: a vertical edge takes over the line of
// the edge before it, as the ray rule requires.
class AreaEdges {
 public:
  AreaEdges(const AppState& s, const GridFrame& frame);
  // The area that holds the point, 0 if none: a horizontal ray to the right
  // is cast through every edge, and the parity of all crossings together
  // decides, so an area inside another cuts a hole.
  double InSurfArea(double x, double y) const;

 private:
  struct Edge {
    int32_t area;
    double x1, y1, x2, y2;
    double a, b;  // slope and intercept of the line tested
    bool vertical;
  };
  std::vector<Edge> edges_;
  double farX_, farY_;  // a point beyond everything, for horizontal lines
};

double InSurfArea(const AppState& s, const GridFrame& frame, double x, double y);

// ---- The tools on the setup window ------------------------------------------

// State of the tools that take more than one gesture.
struct AreaToolState {
  std::vector<Vertex> freeHand;  // the points of a `libre` shape so far
  bool formingLimitStage = false;  // the first drag of the forming-limit tool is done
};

namespace setup {

// Clears areas, patterns and gauges.
void DeleteAOI(AreaForm& form);
void AllSelect(AreaForm& form);
// A drag shorter than 3 x Lpas stores nothing; each returns whether an area was added.
bool AddRectangle(AreaForm& form, double x1, double y1, double x2, double y2);
bool AddTrait(AreaForm& form, double x1, double y1, double x2, double y2);
// A click of the `libre` tool; true when it closed the shape.
bool FreeHandClick(AreaForm& form, double x, double y);
// The forming-limit tool: the band of the first drag, the neck that follows
// the pointer, and the click that splits the band into two strips.
bool FormingLimitDrag(AreaForm& form, double x1, double y1, double x2, double y2);
void FormingLimitMove(AreaForm& form, double x, double y);
void FormingLimitClick(AreaForm& form);
// The crack tool, from the crack end A to the other end B.
bool AddCrack(AreaForm& form, double x1, double y1, double x2, double y2);
// A gauge (kind 0), rosette (1) or slider (2) dragged from A to B.
bool AddGauge(AreaForm& form, double x1, double y1, double x2, double y2, int32_t kind);
// The areas a gauge needs, tagged with the gauge's number.
void CreateBoxJauge(AreaForm& form, int32_t x1, int32_t y1, int32_t x2, int32_t y2, int32_t kind, int32_t tag);
// Enables or disables the tool buttons 1 to 12 of Toolbar2, which change areas.
void EnableAreaTools(AreaForm& form, bool enabled);
// `Parametre`, and the crack tool: the parameters window with every input field editable.
void Parametre(AreaForm& form);
// `trashlast` and `trash`; both ask first when start points exist.
void TrashLast(AreaForm& form);
void Trash(AreaForm& form);

}  // namespace setup
}  // namespace tessiva

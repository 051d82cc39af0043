// Virtual gauges of the analysis window: sliders, linear strain gages and
// rosettes laid on the map. Each gauge is a box of the reference picture; the
// motion of its four corners gives, through one bilinear four-node element
// over the box, a mean deformation gradient, and from it the strain tensor,
// its principal values and direction, and the stretch of the box's diagonal.
//
// The measures are those of the maps, so that a gauge on a homogeneous field
// reads what the map reads there:
//   Lini       length of the diagonal from corner 1 to corner 3, pixels
//   Lamda      final length of that diagonal over its initial length (ratio)
//   E1, E2     major and minor principal Hencky (logarithmic) strains, percent
//   Teta       direction of the major principal axis, radians, from the
//              picture's x axis towards its y axis (downwards), in -pi/2..pi/2
//   Epsi11/12/22  Green Lagrange tensor in the picture's axes, percent
//              (Epsi12 the tensor term, not the engineering shear)
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "results/fieldmap.h"
#include "results/geometry.h"
#include "state/appstate.h"
#include "state/gages.h"
#include "ui/canvas.h"
#include "ui/uiport.h"

namespace tessiva {

inline constexpr int32_t kGaugeLinear = 0, kGaugeRosette = 1, kGaugeSlider = 2;

// What one gauge reads.
struct GaugeReading {
  double Lini = 0.0;
  double Lamda = 1.0;
  double E1 = 0.0;
  double E2 = 0.0;
  double Teta = 0.0;
  double Epsi11 = 0.0;
  double Epsi12 = 0.0;
  double Epsi22 = 0.0;
};

// The corners of the box spanned by (x1, y1) and (x2, y2): 1 (x1, y1),
// 2 (x2, y1), 3 (x2, y2), 4 (x1, y2), whatever the gauge's kind.
std::array<Vec2, 4> GaugeCorners(double x1, double y1, double x2, double y2);

// The area of the quadrilateral P1 P2 P3 P4, signed by its turning sense.
double QuadArea(const std::array<Vec2, 4>& p);

// The reading of a gauge from its corners and their displacements (forward:
// from the reference picture to the deformed one). With `sens` true the
// strains are taken on the reference configuration; with it false on the
// deformed one, the displacements taken backwards, as the maps do then.
// A box without area (a gauge along an axis) gives only what its line
// measures: Lamda, E1 the logarithmic strain along it, Teta its direction,
// and the Green Lagrange strain along it as the one tensor term; E2 is 0.
GaugeReading ComputeGauge(const std::array<Vec2, 4>& corners, const std::array<Vec2, 4>& displacements, bool sens);

// The actions a gauge offers on a right-button release over it.
enum class GaugeAction { Delete, CopyValues, Rename };

struct GaugeMenu {
  int32_t index = 0;  // the gauge under the pointer
  std::vector<GaugeAction> actions;
};

// The caption of an action as a menu shows it.
std::string GaugeActionText(GaugeAction action);

// The gauge component (JaugeCtrl): the gauges of a window's store, the
// displacements the window feeds each one, and what each one reads. Gauges
// are numbered from 1, as in the store; reads of a number without a gauge
// give 0 (Lamda 1).
class JaugeCtrl {
 public:
  explicit JaugeCtrl(GageStore& store) : store_(store) {}

  // True: strains on the reference configuration (the window's bInitial).
  bool JaugeSens = true;

  int32_t JaugeCount() const { return store_.Count(); }
  bool Exists(int32_t i) const { return store_.Exists(i); }
  int32_t JaugeKind(int32_t i) const;
  std::string JaugeName(int32_t i) const;
  double JaugeXDep(int32_t i) const;
  double JaugeYDep(int32_t i) const;
  double JaugeXArr(int32_t i) const;
  double JaugeYArr(int32_t i) const;
  std::array<Vec2, 4> Corners(int32_t i) const;

  // Adds a gauge of `kind` on the box of (x1, y1), (x2, y2), drawn on `dc`,
  // and returns its number. The points are rounded to whole pixels, as the
  // side files keep them, so that a replay measures the same box. A gauge
  // without a name is named after its kind and number.
  int32_t JaugeAdd(Canvas* dc, int32_t kind, double x1, double y1, double x2, double y2, std::string name = {});
  void JaugeClear();
  void JaugeDelete(int32_t i);

  // The displacement of corner 1..4 along x and y, pixels.
  void JaugeU(int32_t i, int corner, double u);
  void JaugeV(int32_t i, int corner, double v);

  // Computes what every gauge reads from its corners and displacements.
  void JaugeCalcul();
  const GaugeReading& Reading(int32_t i) const;
  double JaugeLini(int32_t i) const { return Reading(i).Lini; }
  double JaugeLamda(int32_t i) const { return Reading(i).Lamda; }
  double JaugeE1(int32_t i) const { return Reading(i).E1; }
  double JaugeE2(int32_t i) const { return Reading(i).E2; }
  double JaugeTeta(int32_t i) const { return Reading(i).Teta; }
  double JaugeEpsi11(int32_t i) const { return Reading(i).Epsi11; }
  double JaugeEpsi12(int32_t i) const { return Reading(i).Epsi12; }
  double JaugeEpsi22(int32_t i) const { return Reading(i).Epsi22; }

  // Draws gauge i on the surface it was added on, or on `canvas`: a linear
  // gage as its line with a tick across each end, a slider as a rail with a
  // stop at its start and a cursor at its end, a rosette as its square with
  // three arms from corner 1 (along x, the diagonal, along y).
  void JaugeDraw(int32_t i);
  void JaugeDraw(int32_t i, Canvas& canvas) const;

  // A right-button release (button 2) without shift at (x, y), pixels: the
  // actions offered on the gauge under the pointer (the newest when several
  // are), or none when no gauge is there.
  std::optional<GaugeMenu> JaugeMouseUp(int button, int shift, double x, double y) const;
  // Carries out an action on gauge i: delete it, copy its values to the
  // clipboard as a table of a head line and one row (tab separated, CR LF,
  // numbers in `numberFormat`), or ask for a new name.
  void JaugeAction(int32_t i, GaugeAction action, UiPort& ui, const std::string& numberFormat);
  // The text JaugeAction copies.
  std::string ValuesText(int32_t i, const std::string& numberFormat) const;

 private:
  struct Extra {
    std::array<Vec2, 4> displacements{};
    GaugeReading reading;
    Canvas* surface = nullptr;
  };
  Extra& ExtraOf(int32_t i);

  GageStore& store_;
  // Indexed by gauge number; slot 0 unused. Sized on demand, since the store
  // may be filled by a side file read.
  std::vector<Extra> extra_;
};

// A gauge from a drag on the map, from the press point (x1, y1) to the
// release point (x2, y2): a rosette's box is the square of the larger side
// to the lower right of the press point. A box whose diagonal is below
// `lpas` makes nothing. Returns the new gauge's number, or 0.
int32_t JaugeFromDrag(JaugeCtrl& gauges, Canvas* dc, int32_t kind, double x1, double y1, double x2, double y2,
                      int32_t lpas);

// What the window derives beside the reading: the box's area before (A0)
// and after (A1) the motion.
struct GaugeMeasure {
  GaugeReading reading;
  double a0 = 0.0;
  double a1 = 0.0;
};

// Feeds gauge i the displacements at its corners, as the map interpolates
// them in picture axes, computes it on the configuration of `f` and gives
// its reading with the areas. A corner off the mesh feeds the fence value
// on, which shows in the numbers.
GaugeMeasure MeasureGauge(const AppState& s, const FieldSettings& f, JaugeCtrl& gauges, int32_t i);

// The collector row of a gauge of `kind`: file name, tab, extras, then tab
// separated values, CR LF. Linear: E1, Epsi11, Lamda, Lini. Rosette: E1,
// E2, Teta in degrees from the user's axis 1, the tensor in the user's
// axes, and the surface ratio A0 / A1. Slider: Lini, Lfin = Lamda x Lini,
// Lamda. Numbers in `formatLong`, except the rosette's Epsi11, which is
// written in the general number form.
std::string GaugeRow(int32_t kind, const std::string& fileName, const std::string& extras, const GaugeMeasure& m,
                     const FieldSettings& axes, const std::string& formatLong);

// The tooltip of a gauge table's columns: which measure and unit each is.
std::string GaugeColumnsTip(int32_t kind);

}  // namespace tessiva

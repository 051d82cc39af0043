#include "analysis/stressintensity.h"

#include <cmath>
#include <initializer_list>
#include <numbers>
#include <string_view>

#include "analysis/newanalyse.h"
#include "state/colour.h"
#include "state/numtext.h"

namespace tessiva {
namespace {

constexpr const char* kEnd = "\r\n";
constexpr const char* kInProgress = "Stress Intensity Factors calculation in progress, please wait ...";
// The band is never narrower than this many grid steps from the keys.
constexpr double kNarrowestBand = 2.0;
constexpr int kBandColour = 15, kArrowColour = 14;
constexpr Colour kRingColour = 0xFF0000;
// The arrow reaches this share of the radius; its head's sides are this long
// (pixels) and open by this angle either side.
constexpr double kArrowReach = 0.9, kArrowHead = 10.0, kArrowHeadAngle = std::numbers::pi / 5;

std::string TabJoined(std::initializer_list<std::string_view> fields) {
  std::string line;
  for (const std::string_view field : fields) line += (line.empty() ? "" : "\t") + std::string(field);
  return line;
}

}  // namespace

std::string CrackTitle(const std::string& fileTitle) { return fileTitle + kEnd; }

std::string CrackColumns(const std::string& fileTitle, const std::string& extrasHead) {
  const std::string rule(fileTitle.size(), '_');
  return TabJoined({rule, extrasHead, "    J     ", "    KI    ", "    KII   ", " KIfromJ  ", " JfromKs  ",
                    "    Xo    ", "     Yo   ", " Radius   "}) +
         kEnd;
}

std::string CrackRow(const std::string& fileName, const std::string& extras, const CrackFactors& k,
                     const CrackLine& crack, const std::string& format) {
  std::string row = fileName + "\t" + extras;
  for (const double value : {k.J, k.KI, k.KII, k.KIfromJ, k.JfromKs, crack.xArr, crack.yArr, crack.radius})
    row += "\t" + Format(value, format);
  return row + kEnd;
}

CrackLine StressIntensity::Crack() const {
  const AppState& s = w_.State();
  return {s.XFissureDep, s.YFissureDep, s.XFissureArr, s.YFissureArr, s.RayonFissure};
}

CrackMaterial StressIntensity::Material() const {
  const AppState& s = w_.State();
  return {s.Young, s.Poisson, s.UnitPX};
}

// ---- The tool -----------------------------------------------------------------

void StressIntensity::BuildHead() {
  const AppState& s = w_.State();
  w_.Info.TitreInfo = CrackTitle(s.FileTitle);
  w_.Info.ColonnesInfo = CrackColumns(s.FileTitle, w_.PickingTools().PickingExtra(true));
}

void StressIntensity::StartCollector() {
  BuildHead();
  w_.Info.SetText(w_.Info.TitreInfo + w_.Info.ColonnesInfo);
}

void StressIntensity::OnToolArmed() { StartCollector(); }

void StressIntensity::OnToolPress(double x, double y) {
  w_.PickingTools().Selection.NboxAOS = kAosNone;
  RayonPick = 1.0;
  ControlRegistry& controls = w_.Controls();
  controls.Update("Line1", [&](ControlState& c) {
    c.left = RoundToInt32(x), c.top = RoundToInt32(y), c.width = 0, c.height = 0;
    c.visible = true;
  });
  controls.Update("Shape3", [&](ControlState& c) {
    c.left = RoundToInt32(x - RayonPick), c.top = RoundToInt32(y - RayonPick);
    c.width = c.height = RoundToInt32(2 * RayonPick);
    c.visible = true;
  });
}

std::string StressIntensity::OnToolDrag(double x, double y) {
  const Picking& pick = w_.PickingTools();
  const AppState& s = w_.State();
  const double dx = x - pick.X1Pick, dy = y - pick.Y1Pick;
  RayonPick = std::max(1.0, std::hypot(dx, dy));
  ControlRegistry& controls = w_.Controls();
  controls.Update("Line1", [&](ControlState& c) {
    c.width = RoundToInt32(x) - c.left, c.height = RoundToInt32(y) - c.top;
  });
  controls.Update("Shape3", [&](ControlState& c) {
    c.left = RoundToInt32(pick.X1Pick - RayonPick), c.top = RoundToInt32(pick.Y1Pick - RayonPick);
    c.width = c.height = RoundToInt32(2 * RayonPick);
  });
  return " L: " + Format(std::hypot(dx * s.UnitPX, dy * s.UnitPY), s.FormatShort) + " Klarg=" + StrTrim(s.Klarg);
}

void StressIntensity::HideRubbers() {
  w_.Controls().SetVisible("Line1", false);
  w_.Controls().SetVisible("Shape3", false);
}

// The press is the tip, the release the start; the drag's length is the radius.
void StressIntensity::OnToolRelease(double x1, double y1, double x2, double y2) {
  HideRubbers();
  AppState& s = w_.State();
  const double length = std::hypot(x2 - x1, y2 - y1);
  if (length < kShortestCrack * s.Lpas) return;
  s.XFissureArr = x1, s.YFissureArr = y1;
  s.XFissureDep = x2, s.YFissureDep = y2;
  s.RayonFissure = length;
  s.FissureOn = true;
  s.NbBox = 0;
  CalculKI();
  AfficheKI(false);
  Picking& pick = w_.PickingTools();
  pick.SetSelection(kAosCrack, {{x2, y2}, {x1, y1}, {length, 0.0}});
  w_.PicAnaRefresh();
  pick.SaveWorkingCopy();
  // The repaint wrote its titles over the reason.
  if (!KiResult.Usable()) ShowWhyUnusable();
}

void StressIntensity::OnToolKey(char key) {
  if (key != '+' && key != '-') return;
  AppState& s = w_.State();
  s.Klarg += key == '+' ? 1.0 : -1.0;
  if (s.Klarg == 1.0) s.Klarg = kNarrowestBand;
  w_.Ui().StatusPos("Klarg=" + StrTrim(s.Klarg));
}

void StressIntensity::Replay(const SelectionArea& selection, bool showHead) {
  if (selection.XAOS.size() <= kAosCrack || selection.YAOS.size() <= kAosCrack) return;
  AppState& s = w_.State();
  s.FissureOn = true;
  s.XFissureDep = selection.XAOS[1], s.YFissureDep = selection.YAOS[1];
  s.XFissureArr = selection.XAOS[2], s.YFissureArr = selection.YAOS[2];
  s.RayonFissure = selection.XAOS[3];
  CalculKI();
  AfficheKI(showHead);
  w_.PicAnaRefresh();
}

// ---- The calculation and its row ---------------------------------------------------

void StressIntensity::CalculKI() {
  UiPort& ui = w_.Ui();
  BusyPointer busy(ui);
  ui.StatusLine(kInProgress);
  ui.DoEvents();
  const CrackLine crack = Crack();
  KiResult = CrackIntegrals(w_.State(), crack, Material(), w_.State().Klarg, w_.ShowBad());
  if (!KiResult.Usable()) ShowWhyUnusable();
}

void StressIntensity::ShowWhyUnusable() {
  const CrackLine crack = Crack();
  w_.Ui().StatusLine(crack.Length() == 0 || crack.radius <= 0
                         ? "The crack or its radius has no length: no stress intensity factor is calculated"
                         : "No usable pattern lies in the ring round the crack tip: no stress intensity factor is "
                           "calculated");
}

void StressIntensity::AfficheKI(bool showHead) {
  if (showHead) StartCollector();
  if (!KiResult.Usable()) return;
  const Picking& pick = w_.PickingTools();
  w_.Info.Append(CrackRow(pick.CurrentFileName(), pick.PickingExtra(false), KiResult, Crack(), w_.State().FormatLong));
}

// ---- The overlay ------------------------------------------------------------------

void StressIntensity::DrawOverlay(Canvas& canvas) const {
  const AppState& s = w_.State();
  const CrackLine crack = Crack();
  const BandOutline band = CrackBand(crack, s.Klarg * s.Lpas);
  for (size_t k = 0; k + 1 < band.size(); ++k)
    canvas.Line(band[k].x, band[k].y, band[k + 1].x, band[k + 1].y, QBColor(kBandColour));
  canvas.Circle(crack.xArr, crack.yArr, 0.4 * crack.radius, kRingColour);
  canvas.Circle(crack.xArr, crack.yArr, 0.8 * crack.radius, kRingColour);
  const double a = KiResult.direction;
  const Vec2 end{crack.xArr + kArrowReach * crack.radius * std::cos(a),
                 crack.yArr + kArrowReach * crack.radius * std::sin(a)};
  const Vec2 left{end.x - kArrowHead * std::cos(a - kArrowHeadAngle), end.y - kArrowHead * std::sin(a - kArrowHeadAngle)};
  const Vec2 right{end.x - kArrowHead * std::cos(a + kArrowHeadAngle), end.y - kArrowHead * std::sin(a + kArrowHeadAngle)};
  const Colour arrow = QBColor(kArrowColour);
  canvas.SetDrawWidth(2);
  canvas.Line(crack.xArr, crack.yArr, end.x, end.y, arrow);
  canvas.Line(end.x, end.y, left.x, left.y, arrow);
  canvas.Line(end.x, end.y, right.x, right.y, arrow);
  canvas.Line(left.x, left.y, right.x, right.y, arrow);
  canvas.SetDrawWidth(1);
}

}  // namespace tessiva

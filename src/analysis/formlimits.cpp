// The section across a neck: where it lies (the two areas of a forming-limit
// result, or the band of the section tool), its sampling, the options of the
// FLC frame, and the pointer on the graph and in TextCLF.
#include "analysis/formlimits.h"

#include <algorithm>
#include <cmath>

#include "analysis/analysisfiles.h"
#include "analysis/fieldlist.h"
#include "analysis/newanalyse.h"
#include "results/fieldmap.h"
#include "state/keyfile.h"
#include "state/numtext.h"
#include "ui/pointer.h"

namespace tessiva {
namespace {

constexpr double kRangeMargin = 10.0;
// The limits of the fit keep this far apart, in the graph's abscissa.
constexpr double kLimitGap = 50.0;
constexpr int kUsedColour = 10, kRejectedColour = 12;
constexpr const char* kTooFewPoints = "Not enough points to do interpolation (>5)";
constexpr const char* kOddCount = "You must enter couple of point separate by ';'";

// The numbers of a text of pairs: items separated by ';' or line ends, blanks ignored.
std::vector<double> TextNumbers(const std::string& text) {
  std::string joined = text;
  std::replace(joined.begin(), joined.end(), '\r', ';');
  std::replace(joined.begin(), joined.end(), '\n', ';');
  std::vector<double> numbers;
  for (const std::string& item : SplitText(joined, ";"))
    if (!Trim(item).empty()) numbers.push_back(ValNorm(Trim(item)));
  return numbers;
}

}  // namespace

FormingLimits::FormingLimits(NewAnalyse& window)
    : XSection(kSteps + 1, 0.0),
      EpsiISection(kSteps + 1, 0.0),
      EpsiIISection(kSteps + 1, 0.0),
      SectionOk(kSteps + 1, kPointNoData),
      w_(window) {}

// ---- The band tool ------------------------------------------------------------

void FormingLimits::OnToolArmed() { w_.Ui().StatusLine("Draw the FLC section across the neck"); }

void FormingLimits::OnToolPress(double x, double y) { ShowSectionLine(x, y, x + 1, y); }

std::string FormingLimits::OnToolDrag(double x, double y) {
  const Picking& pick = w_.PickingTools();
  const AppState& s = w_.State();
  ShowSectionLine(pick.X1Pick, pick.Y1Pick, x, y);
  return " L: " + Format(std::hypot((x - pick.X1Pick) * s.UnitPX, (y - pick.Y1Pick) * s.UnitPY), s.FormatShort);
}

// The band is a quarter grid step either side of the drawn line.
void FormingLimits::OnToolRelease(double x1, double y1, double x2, double y2) {
  AppState& s = w_.State();
  double dx = s.LgridBy4, dy = 0.0;
  if (x2 != x1) {
    const double m = (y2 - y1) / (x1 - x2), norm = std::sqrt(m * m + 1);
    dx = m / norm * s.LgridBy4;
    dy = 1 / norm * s.LgridBy4;
  }
  SelectionArea& band = w_.PickingTools().Selection;
  band.NboxAOS = kAosRectangle;
  band.XAOS = {0.0, x1 + dx, x2 + dx, x2 - dx, x1 - dx, x1 + dx};
  band.YAOS = {0.0, y1 + dy, y2 + dy, y2 - dy, y1 - dy, y1 + dy};
  w_.Controls().SetVisible("Line1", false);
  s.ClfMode = true;
  SetPosScroll(50);
  w_.OnCombo2Click(kFlcDeterminationEntry);
  SauveAOS(s, band, w_.Gages(), Picking::kWorkingCopy);
  w_.Controls().SetChecked(ToolbarButton(kSectionToolButton), false);
}

void FormingLimits::ShowSectionLine(double x1, double y1, double x2, double y2) {
  w_.Controls().Update("Line1", [&](ControlState& c) {
    c.left = RoundToInt32(x1), c.top = RoundToInt32(y1);
    c.width = RoundToInt32(x2 - x1), c.height = RoundToInt32(y2 - y1);
    c.visible = true;
  });
}

// ---- The section ----------------------------------------------------------------

bool FormingLimits::FromBand(bool fromTool) const {
  const SelectionArea& band = w_.PickingTools().Selection;
  return fromTool && band.NboxAOS == kAosRectangle && band.XAOS.size() > 4 && band.YAOS.size() > 4;
}

// Corner k of area a of the result, or of the band for both areas.
bool FormingLimits::SectionEnds(double position, bool fromTool, std::array<Point, 4>& ends) const {
  const AppState& s = w_.State();
  const SelectionArea& band = w_.PickingTools().Selection;
  const bool useBand = FromBand(fromTool);
  if (!useBand && (s.Nbox[1] < 4 || s.Nbox[2] < 4)) return false;
  const auto corner = [&](int area, int k) {
    if (useBand) return Point{band.XAOS[static_cast<size_t>(k)], band.YAOS[static_cast<size_t>(k)]};
    return Point{double(s.XBox[static_cast<size_t>(area)][static_cast<size_t>(k)]),
                 double(s.YBox[static_cast<size_t>(area)][static_cast<size_t>(k)])};
  };
  const auto along = [position](Point a, Point b) {
    return Point{a.x + position * (b.x - a.x), a.y + position * (b.y - a.y)};
  };
  for (int area = 1; area <= 2; ++area) {
    ends[static_cast<size_t>(2 * (area - 1))] = along(corner(area, 1), corner(area, 4));
    ends[static_cast<size_t>(2 * (area - 1) + 1)] = along(corner(area, 2), corner(area, 3));
  }
  return true;
}

void FormingLimits::CalculCLFEpsiNEW(double position, bool keepScale, bool fromTool) {
  BusyPointer busy(w_.Ui());
  w_.Ui().StatusLine("CLF strain calculation in progress, please wait ...");
  std::array<Point, 4> e;  // E(1,left), E(1,right), E(2,left), E(2,right)
  if (!SectionEnds(position, fromTool, e)) return;
  const auto length = [](Point a, Point b) { return std::hypot(b.x - a.x, b.y - a.y); };
  if (!keepScale) LCentre = length(e[1], e[2]);
  const double l1 = length(e[0], e[1]), l2 = length(e[2], e[3]);
  if (!keepScale) LTotale = length(e[0], e[3]);
  if (!(LTotale > 0)) return;
  Point start = e[0];
  const Point unit{(e[3].x - start.x) / LTotale, (e[3].y - start.y) / LTotale};
  Point direction{e[3].x - start.x, e[3].y - start.y};
  if (SectionSide == 1 || SectionSide == 2) {
    start = SectionSide == 1 ? e[0] : e[3];
    if (!keepScale) LTotale = 2 * (SectionSide == 1 ? l1 : l2) + LCentre;
    const double sign = SectionSide == 1 ? 1.0 : -1.0;
    direction = {sign * LTotale * unit.x, sign * LTotale * unit.y};
  }
  if (!keepScale) {
    EpsiIMax = EpsiIIMax = -99999.0;
    EpsiIMin = EpsiIIMin = 99999.0;
    SMid = LCentre / 2 + (SectionSide == 2 ? l2 : l1);
  }
  SampleSection(start, direction, keepScale);
  sectionStart_ = start;
  sectionEnd_ = e[3];
  ShowSectionLine(start.x, start.y, e[3].x, e[3].y);
  if (!keepScale) PlaceLimits();
}

// Beyond the middle a side repeats its mirror point, 80 - i.
void FormingLimits::SampleSection(Point start, Point direction, bool keepScale) {
  const int32_t n = kSteps - 1;
  ResizeSection(n);
  for (int32_t i = 1; i <= n; ++i) {
    const auto k = static_cast<size_t>(i);
    if (!keepScale) {
      SectionOk[k] = kPointNoData;
      XSection[k] = Int(i * LTotale / kSteps * 10) / 10;
    }
    const double x = start.x + i * direction.x / kSteps, y = start.y + i * direction.y / kSteps;
    if (SectionSide == 0 || XSection[k] <= SMid) {
      const double major = w_.DonneIso(x, y, kViewH1), minor = w_.DonneIso(x, y, kViewH2);
      if (major != kFenceValue) EpsiISection[k] = major;
      if (minor != kFenceValue) EpsiIISection[k] = minor;
      if (!keepScale && (major != kFenceValue || minor != kFenceValue)) SectionOk[k] = kPointUsed;
    } else {
      const auto j = static_cast<size_t>(kSteps - i);
      EpsiISection[k] = EpsiISection[j];
      EpsiIISection[k] = EpsiIISection[j];
      SectionOk[k] = SectionOk[j];
    }
    if (!keepScale) {
      EpsiIMax = std::max(EpsiIMax, EpsiISection[k]), EpsiIMin = std::min(EpsiIMin, EpsiISection[k]);
      EpsiIIMax = std::max(EpsiIIMax, EpsiIISection[k]), EpsiIIMin = std::min(EpsiIIMin, EpsiIISection[k]);
    }
  }
  NbSection = n;
  if (!keepScale) {
    EpsiIMax += kRangeMargin, EpsiIIMax += kRangeMargin;
    EpsiIMin -= kRangeMargin, EpsiIIMin -= kRangeMargin;
  }
}

void FormingLimits::ResizeSection(int32_t n) {
  const auto size = static_cast<size_t>(std::max(n, kSteps) + 1);
  if (XSection.size() >= size) return;
  XSection.resize(size, 0.0);
  EpsiISection.resize(size, 0.0);
  EpsiIISection.resize(size, 0.0);
  SectionOk.resize(size, kPointNoData);
}

void FormingLimits::PlaceLimits() {
  limiteInf = XSection[1];
  limitesup = XSection[static_cast<size_t>(NbSection)];
  ShowLimit("limiteInf", limiteInf);
  ShowLimit("limitesup", limitesup);
}

void FormingLimits::ShowLimit(const std::string& name, double at) {
  w_.Controls().Update(name, [at](ControlState& c) {
    c.text = StrTrim(at);
    c.visible = true;
  });
}

double FormingLimits::LengthUnit() const {
  const AppState& s = w_.State();
  return std::sqrt(std::abs(s.UnitPX * s.UnitPY));
}

// ---- The FLC frame and the window's events ----------------------------------

bool FormingLimits::PlotsMajor() const { return !w_.Controls().Checked("OptionE(1)"); }

std::vector<double>& FormingLimits::PlottedStrain() { return PlotsMajor() ? EpsiISection : EpsiIISection; }

void FormingLimits::SetPosScroll(int32_t value) {
  PosScroll = std::clamp(value, 0, 100);
  w_.Controls().Update("PosScroll", [this](ControlState& c) { c.listIndex = PosScroll; });
}

void FormingLimits::CheckOnly(const std::string& group, int count, int chosen) {
  for (int i = 0; i < count; ++i) w_.Controls().SetChecked(group + "(" + std::to_string(i) + ")", i == chosen);
}

void FormingLimits::Recalculate() {
  CalculCLFEpsiNEW(PosScroll / 100.0, w_.keepScale, w_.PickingTools().PickTool == kPickSection);
  AfficheCLFEpsiNEW();
}

void FormingLimits::ShowPanel() {
  const int32_t view = w_.VueCourante;
  w_.Controls().SetVisible("GrapheAna", GraphShown && (view == kViewFlcDiagram || view == kViewFlcDetermination));
  w_.Controls().SetVisible("FrameCLF", GraphShown && view == kViewFlcDetermination);
  // The limit texts belong to the determination.
  if (view != kViewFlcDetermination) w_.Controls().SetVisible("LabMax", false);
  w_.Controls().SetVisible("LabIso", view == kViewFlcDetermination);
}

// A new display of field 16: its first section sets the scale the next members keep.
void FormingLimits::OnFieldChosen(int32_t view) {
  ShowPanel();
  if (view != kViewFlcDetermination) return;
  w_.keepScale = false;
  SectionSide = 0;
  CheckOnly("Option1", 3, 0);
  if (!w_.Controls().Checked("OptionE(1)")) CheckOnly("OptionE", 2, 0);
  CheckOnly("FlcMethod", 2, Method == FlcMethod::Iso12004 ? 1 : 0);
  CalculCLFEpsiNEW(0.5, w_.keepScale, w_.PickingTools().PickTool == kPickSection);
  AfficheCLFEpsiNEW();
}

void FormingLimits::OnFileChanged() {
  w_.keepScale = true;
  Recalculate();
}

void FormingLimits::ReplayBand() {
  CalculCLFEpsiNEW(PosScroll / 100.0, w_.keepScale, true);
  AfficheCLFEpsiNEW();
}

// The graph follows the scroll bar, so that the section on show is always the one drawn.
void FormingLimits::OnPosScrollChange(int32_t value) {
  SetPosScroll(value);
  Recalculate();
}

void FormingLimits::OnOptionEClick(int index) {
  CheckOnly("OptionE", 2, index == 1 ? 1 : 0);
  Recalculate();
}

void FormingLimits::OnSecondCheckClick(bool checked) {
  w_.Controls().SetChecked("SecondCheck", checked);
  Recalculate();
}

void FormingLimits::OnOption1Click(int index) {
  SectionSide = std::clamp(index, 0, 2);
  CheckOnly("Option1", 3, SectionSide);
  Recalculate();
}

void FormingLimits::OnFlcMethodClick(int index) {
  Method = index == 1 ? FlcMethod::Iso12004 : FlcMethod::CosineLinear;
  CheckOnly("FlcMethod", 2, index == 1 ? 1 : 0);
  AfficheCLFEpsiNEW();
}

void FormingLimits::OnImage1Click() {
  GraphShown = !GraphShown;
  ShowPanel();
  if (!GraphShown) return;
  if (w_.VueCourante == kViewFlcDiagram) {
    w_.PicAnaRefresh();
  } else if (w_.VueCourante == kViewFlcDetermination) {
    AfficheCLFEpsiNEW();
  }
}

// The click is kept as a one-point selection.
void FormingLimits::OnDiagramClick(double x, double y) {
  const double major = w_.DonneIso(x, y, kViewH1), minor = w_.DonneIso(x, y, kViewH2);
  SelectionArea& selection = w_.PickingTools().Selection;
  selection.NboxAOS = kAosPoint;
  selection.XAOS = {0.0, x};
  selection.YAOS = {0.0, y};
  SauveAOS(w_.State(), selection, w_.Gages(), Picking::kWorkingCopy);
  if (major == kFenceValue || minor == kFenceValue || !w_.Graphe) {
    w_.Controls().SetVisible("Shape2", false);
    return;
  }
  const Canvas& g = *w_.Graphe;
  w_.Controls().Update("Shape2", [&](ControlState& c) {
    c.left = RoundToInt32(g.ToPixelX(minor)) - kMarkerSide / 2;
    c.top = RoundToInt32(g.ToPixelY(major)) - kMarkerSide / 2;
    c.width = c.height = kMarkerSide;
    c.visible = true;
  });
}

// ---- The pointer on the graph ----------------------------------------------------

void FormingLimits::OnGrapheMouseDown(int button, double x, double) {
  if (button != kLeftButton || w_.VueCourante != kViewFlcDetermination || NbSection < 2) return;
  const double span = std::abs(XSection[static_cast<size_t>(NbSection)] - XSection[1]);
  const double near = span / (2.0 * NbSection);
  draggingInf_ = std::abs(x - limiteInf) < near;
  if (std::abs(x - limitesup) < near) draggingInf_ = false, draggingSup_ = true;
}

void FormingLimits::OnGrapheMouseMove(int button, double x, double y) {
  const std::string& form = w_.State().FormatShort;
  w_.Ui().StatusPos("(" + Format(x, form) + ", " + Format(y, form) + ")");
  if (!(button & kLeftButton)) return;
  if (draggingInf_ && x <= limitesup - kLimitGap) MoveLimits(x, true);
  if (draggingSup_ && x >= limiteInf + kLimitGap) MoveLimits(x, false);
}

// With a side kept, the other limit takes the mirror of the dragged one.
void FormingLimits::MoveLimits(double x, bool inf) {
  (inf ? limiteInf : limitesup) = x;
  if (SectionSide != 0) (inf ? limitesup : limiteInf) = plotLeft_ + plotRight_ - x;
  ShowLimit("limiteInf", limiteInf);
  ShowLimit("limitesup", limitesup);
  DrawGraph();
}

// Releasing a limit takes the points between the limits into the fit and
// rejects the others; a click elsewhere rejects or restores the nearest
// marked point.
void FormingLimits::OnGrapheMouseUp(int button, double x, double y) {
  if (button != kLeftButton || w_.VueCourante != kViewFlcDetermination || NbSection < 1) return;
  if (draggingInf_ || draggingSup_) {
    draggingInf_ = draggingSup_ = false;
    for (int32_t i = 1; i <= NbSection; ++i) {
      const auto k = static_cast<size_t>(i);
      if (SectionOk[k] == kPointNoData) continue;
      SectionOk[k] = XSection[k] >= limiteInf && XSection[k] <= limitesup ? kPointUsed : kPointRejected;
    }
    AfficheCLFEpsiNEW();
    return;
  }
  const std::vector<double>& e = PlottedStrain();
  int32_t nearest = 0;
  double best = 99999999.0;
  for (int32_t i = 1; i <= NbSection; i += 3) {
    const auto k = static_cast<size_t>(i);
    const double d = (x - XSection[k]) * (x - XSection[k]) + (y - e[k]) * (y - e[k]);
    if (d < best) best = d, nearest = i;
  }
  if (nearest == 0) return;
  ToggleMarkAt(nearest);
  const int32_t mirror = NbSection - nearest + 1;
  if (SectionSide != 0 && mirror != nearest) ToggleMarkAt(mirror);
  AfficheCLFEpsiNEW();
}

void FormingLimits::ToggleMarkAt(int32_t i) {
  const auto k = static_cast<size_t>(i);
  if (w_.Graphe)
    CarreEpsi(*w_.Graphe, XSection[k], PlottedStrain()[k],
              QBColor(SectionOk[k] == kPointUsed ? kRejectedColour : kUsedColour));
  SectionOk[k] = -SectionOk[k];
}

void FormingLimits::OnGrapheDblClick() {
  std::string text;
  if (w_.VueCourante == kViewFlcDiagram) {
    const AppState& s = w_.State();
    for (int32_t i = 1; i <= s.ClfNumber; ++i)
      text += StrTrim(s.ClfX[static_cast<size_t>(i)]) + " ; " + StrTrim(s.ClfY[static_cast<size_t>(i)]) + "\r\n";
  } else if (w_.VueCourante == kViewFlcDetermination) {
    const std::vector<double>& e = PlottedStrain();
    for (int32_t i = 1; i <= NbSection; ++i)
      text += StrTrim(XSection[static_cast<size_t>(i)]) + " ; " +
              Format(e[static_cast<size_t>(i)], w_.State().FormatShort) + "\r\n";
  } else {
    return;
  }
  w_.Controls().Update("TextCLF", [&text](ControlState& c) {
    c.text = text;
    c.visible = true;
  });
}

void FormingLimits::OnTextCLFClick() { w_.Controls().SetVisible("TextCLF", false); }

void FormingLimits::OnTextCLFEnter(const std::string& text) {
  if (w_.VueCourante != kViewFlcDiagram && w_.VueCourante != kViewFlcDetermination) return;
  const std::vector<double> numbers = TextNumbers(text);
  if (numbers.size() % 2 != 0) {
    w_.Ui().MessageBox(kOddCount, "", MsgButtons::Ok, MsgIcon::Exclamation);
    return;
  }
  const auto pairs = static_cast<int32_t>(numbers.size() / 2);
  if (w_.VueCourante == kViewFlcDiagram) {
    StoreCurve(numbers);
    w_.PicAnaRefresh();
    return;
  }
  ResizeSection(pairs);
  for (int32_t i = 1; i <= pairs; ++i) {
    XSection[static_cast<size_t>(i)] = numbers[static_cast<size_t>(2 * i - 2)];
    EpsiISection[static_cast<size_t>(i)] = numbers[static_cast<size_t>(2 * i - 1)];
  }
  NbSection = pairs;
  AfficheCLFEpsiNEW();
}

// The curve's points lose any fraction; the diagram's axes take them all in.
void FormingLimits::StoreCurve(const std::vector<double>& numbers) {
  AppState& s = w_.State();
  s.ClfNumber = static_cast<int32_t>(numbers.size() / 2);
  s.ClfX.assign(static_cast<size_t>(s.ClfNumber) + 1, 0);
  s.ClfY.assign(static_cast<size_t>(s.ClfNumber) + 1, 0);
  s.ClfXMin = -10, s.ClfXMax = 10, s.ClfYMin = -15, s.ClfYMax = 25;
  WritePrivateProfileStringA("CLFSEC", "NUMBER", StrTrim(s.ClfNumber), s.IniPath);
  for (int32_t i = 1; i <= s.ClfNumber; ++i) {
    const auto k = static_cast<size_t>(i);
    const auto clampToInt = [](double v) { return static_cast<int32_t>(std::clamp(Fix(v), -2e9, 2e9)); };
    s.ClfX[k] = clampToInt(numbers[2 * k - 2]);
    s.ClfY[k] = clampToInt(numbers[2 * k - 1]);
    s.ClfXMin = std::min(s.ClfXMin, s.ClfX[k]), s.ClfXMax = std::max(s.ClfXMax, s.ClfX[k]);
    s.ClfYMin = std::min(s.ClfYMin, s.ClfY[k]), s.ClfYMax = std::max(s.ClfYMax, s.ClfY[k]);
    WritePrivateProfileStringA("CLFSEC", "X" + StrTrim(i), StrTrim(s.ClfX[k]), s.IniPath);
    WritePrivateProfileStringA("CLFSEC", "Y" + StrTrim(i), StrTrim(s.ClfY[k]), s.IniPath);
  }
}

}  // namespace tessiva

// The forming-limit graph on Graphe: its frame, the section's points and
// fits with the limit read from them and the quality gauge, and the FLC
// diagram of the map pass.
#include <algorithm>
#include <cmath>

#include "analysis/formlimits.h"
#include "analysis/newanalyse.h"
#include "results/fieldmap.h"
#include "results/ranges.h"
#include "results/resultfile.h"
#include "state/numtext.h"

namespace tessiva {
namespace {

// Room round the plot on Graphe, screen pixels: labels and the side text on
// the left, the title above, the ticks' values and the bottom text below.
constexpr double kLeftMargin = 95, kRightMargin = 20, kTopMargin = 40, kBottomMargin = 50;
constexpr int kTicks = 10;
constexpr int kGridColour = 7, kFrameColour = 0, kMiddleColour = 11, kCurveColour = 5, kCurvatureColour = 8;
constexpr int kFirstCurvatureColour = 2, kFitStartColour = 12, kLimitsColour = 9, kIsoColour = 13;
constexpr int kUsedColour = 10, kRejectedColour = 12, kStoredCurveColour = 12;
constexpr Colour kCentreBandColour = 0xDCDCDC;  // RGB(220, 220, 220)
constexpr int kCurveSteps = 50, kCurvatureSteps = 80;
constexpr const char* kTooFewPoints = "Not enough points to do interpolation (>5)";

// User units of one screen pixel across and up.
double PixelX(const Canvas& g) { return g.ScaleWidth() / g.PixelWidth(); }
double PixelUp(const Canvas& g) { return -g.ScaleHeight() / g.PixelHeight(); }

std::string LimitText(double value) { return Format(value, "##0.0") + " %"; }

}  // namespace

// The plot keeps the user scale x0..x1 by y0..y1 (y up) inside margins for its texts.
void FormingLimits::GrapheInit(double x0, double x1, double y1, double y0, const std::string& title,
                               const std::string& bottom, const std::string& side, bool grid) {
  Canvas* canvas = w_.Graphe;
  if (!canvas) return;
  Canvas& g = *canvas;
  const double width = std::max(1.0, g.PixelWidth() - kLeftMargin - kRightMargin);
  const double height = std::max(1.0, g.PixelHeight() - kTopMargin - kBottomMargin);
  if (x1 != x0 && y1 != y0) {
    const double ux = (x1 - x0) / width, uy = (y1 - y0) / height;
    g.SetScale(x0 - kLeftMargin * ux, y1 + kTopMargin * uy, g.PixelWidth() * ux, -g.PixelHeight() * uy);
    plotLeft_ = x0, plotRight_ = x1;
  }
  g.Clear();
  const double ux = PixelX(g), uy = PixelUp(g);
  g.SetDrawWidth(1);
  for (int k = 0; k < kTicks; ++k) {
    const double x = x0 + k * (x1 - x0) / kTicks, y = y0 + k * (y1 - y0) / kTicks;
    const double tick = k % 2 == 0 ? 10 : 5;
    if (grid) {
      g.Line(x, y0, x, y1, QBColor(kGridColour));
      g.Line(x0, y, x1, y, QBColor(kGridColour));
    }
    g.Line(x, y0, x, y0 + tick * uy, QBColor(kFrameColour));
    g.Line(x0, y, x0 + tick * ux, y, QBColor(kFrameColour));
    if (k % 2 != 0) continue;
    const std::string xLabel = Format(x, "0.00E+00"), yLabel = Format(y, "0.00E+00");
    g.Text(x - g.TextWidth(xLabel) / 2, y0 - 4 * uy, xLabel, QBColor(kFrameColour));
    g.Text(x0 - std::abs(g.TextWidth(yLabel)) - 6 * ux, y + std::abs(g.TextHeight(yLabel)) / 2, yLabel,
           QBColor(kFrameColour));
  }
  if (grid) {
    g.SetDrawWidth(2);
    if (x0 * x1 < 0) g.Line(0, y0, 0, y1, QBColor(kFrameColour));
    if (y0 * y1 < 0) g.Line(x0, 0, x1, 0, QBColor(kFrameColour));
    g.SetDrawWidth(1);
  }
  g.Box(x0, y0, x1, y1, QBColor(kFrameColour));
  const double middle = (x0 + x1) / 2;
  g.Text(middle - g.TextWidth(title) / 2, y1 + 30 * uy, title, QBColor(kFrameColour));
  g.Text(middle - g.TextWidth(bottom) / 2, y0 - 26 * uy, bottom, QBColor(kFrameColour));
  const double letter = std::abs(g.TextHeight("E")) * 0.8;
  double y = (y0 + y1) / 2 + letter * static_cast<double>(side.size()) / 2;
  for (const char c : side) {
    g.Text(x0 - 80 * ux, y, std::string(1, c), QBColor(kFrameColour));
    y -= letter;
  }
}

void FormingLimits::CarreEpsi(Canvas& pic, double x, double y, Colour colour) {
  const double dx = 3 * PixelX(pic), dy = 3 * PixelUp(pic);
  pic.FilledBox(x - dx, y - dy, x + dx, y + dy, colour);
}

void FormingLimits::AfficheCLFEpsiNEW() {
  if (NbSection == 0) return;
  BusyPointer busy(w_.Ui());
  if (DrawGraph() == 1) w_.Ui().MessageBox(kTooFewPoints, "", MsgButtons::Ok, MsgIcon::Exclamation);
}

int FormingLimits::DrawGraph() {
  if (NbSection == 0) return 1;
  DetermineLimits();
  const bool fitted = Limits.cosineStatus == -1;
  const double limit = Method == FlcMethod::Iso12004 ? (PlotsMajor() ? Limits.iso.major : Limits.iso.minor)
                                                      : (PlotsMajor() ? Limits.cosineMajor : Limits.cosineMinor);
  const bool limitFound = Method == FlcMethod::Iso12004 ? Limits.iso.found : fitted;
  if (limitFound) ShowLimitLine(limit);
  w_.Controls().SetVisible("LabMax", limitFound);
  DrawQualityGauge();
  Canvas* canvas = w_.Graphe;
  if (!canvas) return Limits.cosineStatus;
  Canvas& g = *canvas;
  const double top = PlottedMax(), bottom = PlottedMin();
  GrapheInit(0, LTotale, top, bottom, PlotsMajor() ? "Espilon I" : "Espilon II", "Curvilinear abscissa",
             "strain %", true);
  g.FilledBox(SMid - LCentre / 2, bottom, SMid + LCentre / 2, top, kCentreBandColour);
  g.Line(SMid, bottom, SMid, top, QBColor(kMiddleColour));
  DrawSectionPoints(g);
  if (fitted) {
    DrawFit(g);
    if (w_.Controls().Checked("SecondCheck")) DrawCurvature(g, CoefSection[4], CoefSection[5]);
  }
  DrawIsoWindows(g);
  if (limitFound) g.Line(plotLeft_, limit, plotRight_, limit, QBColor(kIsoColour));
  for (const double at : {limiteInf, limitesup}) g.Line(at, bottom, at, top, QBColor(kLimitsColour));
  g.Refresh();
  return Limits.cosineStatus;
}

// Both strains by both determinations; the cosine-linear fit of the strain
// plotted is the one drawn.
void FormingLimits::DetermineLimits() {
  Limits = FlcLimits{};
  CosLinCoefficients major{}, minor{};
  double majorQuality = 0.0, minorQuality = 0.0;
  Limits.cosineStatus = FitCosLin(XSection, EpsiISection, SectionOk, NbSection, major, majorQuality);
  if (Limits.cosineStatus == -1 &&
      FitCosLin(XSection, EpsiIISection, SectionOk, NbSection, minor, minorQuality) == -1) {
    Limits.cosineMajor = CosLinExtreme(major, true);
    Limits.cosineMinor = CosLinExtreme(minor, false);
    CoefSection = PlotsMajor() ? major : minor;
    Limits.quality = PlotsMajor() ? majorQuality : minorQuality;
  } else if (Limits.cosineStatus == -1) {
    Limits.cosineStatus = 0;
  }
  Limits.iso = IsoNeckDetermination(XSection, EpsiISection, EpsiIISection, SectionOk, NbSection, LengthUnit());
  const IsoNeckLimit& iso = Limits.iso;
  w_.Controls().SetText("LabIso", iso.found ? "ISO 12004-2: E1 " + LimitText(iso.major) + ", E2 " +
                                                  LimitText(iso.minor)
                                            : "ISO 12004-2: " + iso.problem);
}

void FormingLimits::DrawSectionPoints(Canvas& g) {
  const std::vector<double>& e = PlottedStrain();
  for (int32_t i = 1; i <= NbSection; i += 3) {
    const auto k = static_cast<size_t>(i);
    CarreEpsi(g, XSection[k], e[k], QBColor(SectionOk[k] == kPointUsed ? kUsedColour : kRejectedColour));
  }
}

void FormingLimits::DrawFit(Canvas& g) {
  const double smin = CoefSection[4], smax = CoefSection[5];
  double previous = CosLinValue(CoefSection, smin);
  g.SetDrawWidth(2);
  g.Point(smin, previous, QBColor(kFitStartColour));
  for (int i = 1; i <= kCurveSteps; ++i) {
    const double s0 = smin + (i - 1) * (smax - smin) / kCurveSteps, s1 = smin + i * (smax - smin) / kCurveSteps;
    const double f = CosLinValue(CoefSection, s1);
    g.Line(s0, previous, s1, f, QBColor(kCurveColour));
    previous = f;
  }
  g.SetDrawWidth(1);
}

// The curvature of the major strain, scaled onto the plotted range. Its
// first point stands unscaled, so the curve starts with a stray segment.
void FormingLimits::DrawCurvature(Canvas& g, double smin, double smax) {
  std::vector<double> s(kCurvatureSteps + 1), q(kCurvatureSteps + 1);
  double qmin = 1e15, qmax = -1e15;
  for (int i = 1; i <= kCurvatureSteps; ++i) {
    s[i] = smin + i * (smax - smin) / kCurvatureSteps;
    q[i] = Quad9(XSection, EpsiISection, NbSection, s[i]);
    qmin = std::min(qmin, q[i]), qmax = std::max(qmax, q[i]);
  }
  if (qmax == qmin) qmax = qmin + 0.1;
  const double top = PlottedMax(), bottom = PlottedMin();
  const auto scaled = [&](double v) { return (v - qmin) * (top - bottom) / (qmax - qmin) + bottom; };
  g.Point(s[1], q[1], QBColor(kFirstCurvatureColour));
  double previous = q[1];
  for (int i = 2; i <= kCurvatureSteps; ++i) {
    g.Line(s[i - 1], previous, s[i], scaled(q[i]), QBColor(kCurvatureColour));
    previous = scaled(q[i]);
  }
}

// The fit windows of the ISO 12004-2 determination, and the limit it reads.
void FormingLimits::DrawIsoWindows(Canvas& g) {
  const IsoNeckLimit& iso = Limits.iso;
  if (!(iso.width > 0)) return;
  const double top = PlottedMax(), bottom = PlottedMin();
  for (const double at : {iso.leftOuter, iso.leftInner, iso.rightInner, iso.rightOuter})
    g.Line(at, bottom, at, bottom + (top - bottom) / 4, QBColor(kIsoColour));
  if (!iso.found) return;
  const double value = PlotsMajor() ? iso.major : iso.minor;
  const double dx = 5 * PixelX(g), dy = 5 * PixelUp(g);
  g.Line(iso.position - dx, value - dy, iso.position + dx, value + dy, QBColor(kIsoColour));
  g.Line(iso.position - dx, value + dy, iso.position + dx, value - dy, QBColor(kIsoColour));
}

void FormingLimits::ShowLimitLine(double value) { w_.Controls().SetText("LabMax", LimitText(value)); }

// The gauge's bar grows with the quality of the fit, over two decades.
void FormingLimits::DrawQualityGauge() {
  const bool fitted = Limits.cosineStatus == -1;
  w_.Controls().SetText("Label24", fitted ? Format(100 * Limits.quality, "000") : "");
  if (!Picture14) return;
  Picture14->SetScale(0, 0, 10, 2);
  Picture14->Clear();
  if (fitted) {
    double quality = Limits.quality;
    const Colour colour = w_.Palette.CouleurEchelle(quality, 2);
    Picture14->FilledBox(0, 2, 10, 2 - Log10Safe(100 * Limits.quality), colour);
  }
  Picture14->Refresh();
}

void FormingLimits::AfficheCLF(int32_t view) {
  w_.AfficheE1E2(view);
  if (!GraphShown || !w_.Graphe) return;
  if (view == kViewFlcDiagram) DrawDiagram(*w_.Graphe);
  if (view == kViewFlcDetermination && NbSection > 0) DrawGraph();
}

// The stored curve, then one dot a map sample at (E2, E1), coloured as the
// sample is on the map (by EIII); both two pixels wide, to be seen.
void FormingLimits::DrawDiagram(Canvas& g) {
  const AppState& s = w_.State();
  const auto member = static_cast<size_t>(std::max(w_.CurFile, 0));
  const std::string title = member >= 1 && member < s.DataFileName.size() ? s.DataFileName[member] : s.ResName;
  GrapheInit(s.ClfXMin, s.ClfXMax, s.ClfYMax, s.ClfYMin, title, "E2 Hencky (%)", "E1 Hencky (%)", true);
  g.SetDrawWidth(2);
  for (int32_t i = 1; i < s.ClfNumber; ++i) {
    const auto k = static_cast<size_t>(i);
    g.Line(s.ClfX[k], s.ClfY[k], s.ClfX[k + 1], s.ClfY[k + 1], QBColor(kStoredCurveColour));
  }
  const ViewRange range = RangeOfView(kViewH3, w_.Ranges, w_.State().EcartMax, w_.State().EcartMin);
  if (!range.max || *range.max == *range.min) {
    g.SetDrawWidth(1);
    return;
  }
  const FieldSettings f = w_.FieldSettingsNow();
  const MapOptions options = w_.MapOptionsNow();
  const double h = HalfCell(s);
  const std::vector<double> offsets = SampleOffsets(options.smooth);
  for (int32_t i = 1, count = PatternsHeld(s); i <= count; ++i) {
    if (!PatternShown(s, f, i)) continue;
    for (const double eta : offsets)
      for (const double xi : offsets) {
        const auto point = LocateFieldPoint(s, f, s.XPat[i] + xi * h, s.YPat[i] + eta * h);
        if (!point) continue;
        double fraction = (FieldValue(s, f, *point, kViewH3) - *range.min) / (*range.max - *range.min);
        const Colour colour = w_.Palette.CouleurEchelle(fraction, w_.StyleColorIdx);
        g.Point(FieldValue(s, f, *point, kViewH2), FieldValue(s, f, *point, kViewH1), colour);
      }
  }
  g.SetDrawWidth(1);
  g.Refresh();
}

}  // namespace tessiva

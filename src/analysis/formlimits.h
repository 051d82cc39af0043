// The forming-limit analysis of the analysis window: the FLC diagram (field
// 15), the section across a neck and its determination (field 16), and the
// band tool that lays the section on the map (the section tool in its
// forming-limit mode).
//
// The graph is drawn on NewAnalyse::Graphe. Controls of the window's registry
// the view mirrors:
//   GrapheAna          the graph panel: Visible (toggled by Image1)
//   FrameCLF           the determination's options, shown with field 16
//   PosScroll          "Line position": listIndex holds the position, 0..100
//   OptionE(0), (1)    "Epsilon I", "Epsilon II": the strain plotted
//   SecondCheck        "Second derivativ": the curvature curve drawn too
//   Option1(0..2)      "None", "Left", "Right": the side kept by symmetry
//   FlcMethod(0), (1)  "Cosine-linear", "ISO 12004-2": the determination
//                      whose limit LineMax shows
//   limiteInf, limitesup  the two limits of the fit: Visible and the abscissa
//                      as text (Graphe shows them as vertical lines)
//   LabMax             the limit strain's text (LineMax is drawn on Graphe)
//   Label24            the quality gauge's figure (Picture14 draws the bar)
//   LabIso             the ISO 12004-2 limit strains beside the fit
//   TextCLF            the curve points as text: Visible and text
//   Shape2             the diagram's marker: Visible and its bounds
//   Line1              the section on the map (as the picking's rubber line)
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "analysis/flcfit.h"
#include "ui/canvas.h"

namespace tessiva {

class NewAnalyse;

// The determination whose limit the graph's limit line shows.
enum class FlcMethod { CosineLinear, Iso12004 };

// The limit strains of the section on show, by both determinations.
struct FlcLimits {
  // The cosine-linear fit of the major and minor strains (-1 fitted, 1 too
  // few points, 0 singular, as FitCosLin returns) and their extremes.
  int cosineStatus = 1;
  double cosineMajor = 0.0, cosineMinor = 0.0, quality = 0.0;
  IsoNeckLimit iso;
};

class FormingLimits {
 public:
  // Points of a section: 79 are sampled between the ends, 1..79 of 80 steps.
  static constexpr int32_t kSteps = 80;

  explicit FormingLimits(NewAnalyse& window);
  FormingLimits(const FormingLimits&) = delete;
  FormingLimits& operator=(const FormingLimits&) = delete;

  // The section, 1-based: abscissa (pixels, down to 0.1), major and minor
  // strains (percent) and the state of each point (kPointUsed...).
  std::vector<double> XSection, EpsiISection, EpsiIISection;
  std::vector<int32_t> SectionOk;
  int32_t NbSection = 0;
  // 0 the whole section, 1 the left side mirrored, 2 the right one.
  int32_t SectionSide = 0;
  // Width of the centre band, length of the section, abscissa of its middle.
  double LCentre = 0.0, LTotale = 0.0, SMid = 0.0;
  // The cosine-linear fit of the strain plotted.
  CosLinCoefficients CoefSection{};
  // The strain ranges of the section, widened by 10 either way.
  double EpsiIMax = -99999.0, EpsiIMin = 99999.0, EpsiIIMax = -99999.0, EpsiIIMin = 99999.0;
  // The two limits of the fit on the graph, abscissae.
  double limiteInf = 0.0, limitesup = 0.0;
  // "Line position", 0..100.
  int32_t PosScroll = 50;
  FlcMethod Method = FlcMethod::CosineLinear;
  // The limit strains found by the last determination.
  FlcLimits Limits;
  // The quality gauge's surface; nothing is drawn there while none is attached.
  Canvas* Picture14 = nullptr;
  // The graph panel GrapheAna is shown (Image1).
  bool GraphShown = false;

  // The band tool armed from the tool bar.
  void OnToolArmed();
  // The band tool on PicAna, picture pixels: a press, a drag with the button
  // held (the text appended to the position in the status), a release.
  void OnToolPress(double x, double y);
  std::string OnToolDrag(double x, double y);
  void OnToolRelease(double x1, double y1, double x2, double y2);

  // Samples the section at `position` (0..1 along the areas' sides or the
  // band), from the band when `fromTool`; `keepScale` keeps the abscissae,
  // the states, the ranges and the limits of the last section.
  void CalculCLFEpsiNEW(double position, bool keepScale, bool fromTool);
  // Draws the section on Graphe, fits it, and reads the limit strains; too
  // few points for the fit are said in a message box.
  void AfficheCLFEpsiNEW();
  // Frames Graphe: the plot x0..x1 by y0..y1 with its ticks, labels and texts.
  void GrapheInit(double x0, double x1, double y1, double y0, const std::string& title, const std::string& bottom,
                  const std::string& side, bool grid);
  // A filled square of 3 screen pixels each side of (x, y), user scale.
  static void CarreEpsi(Canvas& pic, double x, double y, Colour colour);
  // The map pass of fields 15 and 16: the map of EIII, and with the graph
  // panel shown the diagram (15) or the section's graph (16).
  void AfficheCLF(int32_t view);

  // A field chosen in Combo2: the graph panel shows with the forming-limit
  // fields only; field 16 starts a new display with the section at the middle.
  void OnFieldChosen(int32_t view);
  // After another member is read with field 16 on show: the section is
  // sampled again where it was, the states kept.
  void OnFileChanged();
  // The band stored as the selection (NboxAOS 5) replays as the section.
  void ReplayBand();
  // The FLC frame's controls.
  void OnPosScrollChange(int32_t value);
  void OnOptionEClick(int index);
  void OnSecondCheckClick(bool checked);
  void OnOption1Click(int index);
  void OnFlcMethodClick(int index);
  // Image1: shows or hides the graph panel.
  void OnImage1Click();
  // A left click on the map of field 15: the marker on the diagram.
  void OnDiagramClick(double x, double y);

  // The pointer on Graphe, in its user scale; `button` as in ui/pointer.h.
  void OnGrapheMouseDown(int button, double x, double y);
  void OnGrapheMouseMove(int button, double x, double y);
  void OnGrapheMouseUp(int button, double x, double y);
  void OnGrapheDblClick();
  // TextCLF: a click hides it, Enter takes its pairs.
  void OnTextCLFClick();
  void OnTextCLFEnter(const std::string& text);

 private:
  struct Point {
    double x = 0.0, y = 0.0;
  };
  static constexpr int kMarkerSide = 10;

  // The section tool's line on the map.
  void ShowSectionLine(double x1, double y1, double x2, double y2);
  // The section is laid along the stored band rather than the result's areas.
  bool FromBand(bool fromTool) const;
  // The ends E(1,left), E(1,right), E(2,left), E(2,right) at `position`;
  // false when the result has no two areas and there is no band.
  bool SectionEnds(double position, bool fromTool, std::array<Point, 4>& ends) const;
  void SampleSection(Point start, Point direction, bool keepScale);
  void ResizeSection(int32_t n);
  void PlaceLimits();
  void ShowLimit(const std::string& name, double at);
  void MoveLimits(double x, bool inf);
  void SetPosScroll(int32_t value);
  // GrapheAna with the forming-limit fields and FrameCLF with field 16, while the graph is shown.
  void ShowPanel();
  void CheckOnly(const std::string& group, int count, int chosen);
  // The section again at PosScroll with the window's keepScale, and its graph.
  void Recalculate();
  void StoreCurve(const std::vector<double>& numbers);
  // The strain plotted: Epsilon I unless OptionE(1) is set.
  bool PlotsMajor() const;
  std::vector<double>& PlottedStrain();
  double PlottedMax() const { return PlotsMajor() ? EpsiIMax : EpsiIIMax; }
  double PlottedMin() const { return PlotsMajor() ? EpsiIMin : EpsiIIMin; }
  // Fits the section by both determinations, draws it when Graphe is
  // attached, and returns FitCosLin's answer for the strain plotted.
  int DrawGraph();
  void DetermineLimits();
  void DrawSectionPoints(Canvas& g);
  void DrawFit(Canvas& g);
  void DrawQualityGauge();
  void DrawCurvature(Canvas& g, double smin, double smax);
  void DrawIsoWindows(Canvas& g);
  void ShowLimitLine(double value);
  void DrawDiagram(Canvas& g);
  // The length of an abscissa unit in millimetres, for the fit windows.
  double LengthUnit() const;
  void ToggleMarkAt(int32_t i);

  NewAnalyse& w_;
  bool draggingInf_ = false, draggingSup_ = false;
  // Where the section runs on the map, and the plot's abscissa range on Graphe.
  Point sectionStart_, sectionEnd_;
  double plotLeft_ = 0.0, plotRight_ = 1.0;
};

}  // namespace tessiva

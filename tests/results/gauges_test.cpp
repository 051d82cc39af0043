// Virtual gauges on result files of homogeneous fields: what sliders, linear
// gages and rosettes read against the closed form of the field and against
// the map at the same place, their rows, their creation from a drag, and the
// actions and drawing a user sees.
#include "analysis/gauges.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <string>
#include <vector>

#include "results/analysisfixture.h"
#include "state/numtext.h"
#include "ui/recordingcanvas.h"

namespace tessiva {
namespace {

using testing::AnalysisFixture;
using testing::Displacement;

constexpr double kPi = std::numbers::pi;

// A homogeneous deformation x -> F (x - (100, 100)) + (100, 100) + (0.5, -0.25).
struct Homogeneous {
  double f11, f12, f21, f22;
  testing::DisplacementField Field() const {
    return [*this](double x, double y) {
      const double dx = x - 100, dy = y - 100;
      return Displacement{f11 * dx + f12 * dy - dx + 0.5, f21 * dx + f22 * dy - dy - 0.25};
    };
  }
  double Det() const { return f11 * f22 - f12 * f21; }
};

// R(t) diag(l1, l2) R(t)^T: stretches l1 along the direction t, l2 across it.
Homogeneous PureStretch(double t, double l1, double l2) {
  const double c = std::cos(t), s = std::sin(t);
  return {l1 * c * c + l2 * s * s, (l1 - l2) * c * s, (l1 - l2) * c * s, l1 * s * s + l2 * c * c};
}

class Gauges : public AnalysisFixture {
 protected:
  // 6 x 6 patterns, centres 64..104 every 8 pixels: the mesh covers 60..108.
  void Read(const Homogeneous& f) { ASSERT_TRUE(ReadResult({}, testing::GridPatterns(f.Field(), 64, 64, 6, 6, 8, 8))); }

  GageStore store;
  JaugeCtrl gauges{store};
  FieldSettings settings;
  const std::string format = "0.000000";
};

struct FieldCase {
  const char* name;
  Homogeneous f;
  double e1, e2, teta;  // principal Hencky strains (ratios) and major direction (none without strain)
  double e11, e12, e22;  // Green Lagrange tensor (ratios)
};

TEST_F(Gauges, ARosetteReadsThePrincipalStrainsAngleAndAreaOfAHomogeneousFieldAsTheMapDoes) {
  const double shear = 0.2, l1 = 0.1 + std::sqrt(1.01);  // major stretch of a simple shear of 0.2
  const double c30 = std::cos(kPi / 6), s30 = std::sin(kPi / 6);
  const double g1 = (1.1 * 1.1 - 1) / 2, g2 = (0.95 * 0.95 - 1) / 2;
  const FieldCase cases[] = {
      {"stretch along x", {1.1, 0, 0, 1}, std::log(1.1), 0, 0, 0.105, 0, 0},
      {"stretch along y", {1, 0, 0, 1.2}, std::log(1.2), 0, kPi / 2, 0, 0, 0.22},
      {"rigid rotation", {c30, -s30, s30, c30}, 0, 0, std::nan(""), 0, 0, 0},
      {"simple shear", {1, shear, 0, 1}, std::log(l1), -std::log(l1), (kPi - std::atan(10.0)) / 2, 0, 0.1, 0.02},
      {"stretch along 30 degrees",
       PureStretch(kPi / 6, 1.1, 0.95),
       std::log(1.1),
       std::log(0.95),
       kPi / 6,
       g1 * c30 * c30 + g2 * s30 * s30,
       (g1 - g2) * c30 * s30,
       g1 * s30 * s30 + g2 * c30 * c30},
  };
  for (const FieldCase& c : cases) {
    SCOPED_TRACE(c.name);
    Read(c.f);
    gauges.JaugeClear();
    const int32_t i = gauges.JaugeAdd(nullptr, kGaugeRosette, 70, 72, 94, 96);
    settings = {};
    const GaugeMeasure m = MeasureGauge(s, settings, gauges, i);
    const GaugeReading& r = m.reading;
    EXPECT_NEAR(r.E1, 100 * c.e1, 1e-9);
    EXPECT_NEAR(r.E2, 100 * c.e2, 1e-9);
    if (!std::isnan(c.teta)) {
      EXPECT_NEAR(r.Teta, c.teta, 1e-9);
    }
    EXPECT_NEAR(r.Epsi11, 100 * c.e11, 1e-9);
    EXPECT_NEAR(r.Epsi12, 100 * c.e12, 1e-9);
    EXPECT_NEAR(r.Epsi22, 100 * c.e22, 1e-9);
    EXPECT_NEAR(m.a0 / m.a1, 1 / c.f.Det(), 1e-12) << "surface ratio A0 / A1";
    // The map at the box's centre, on both configurations.
    for (const bool initial : {true, false}) {
      settings.bInitial = window.bInitial = initial;
      window.MinMaxDeformation();
      const GaugeReading g = MeasureGauge(s, settings, gauges, i).reading;
      EXPECT_NEAR(g.E1, DonneIso(s, settings, 82, 84, kViewH1), 1e-9) << initial;
      EXPECT_NEAR(g.E2, DonneIso(s, settings, 82, 84, kViewH2), 1e-9) << initial;
      EXPECT_NEAR(g.Epsi11, DonneIso(s, settings, 82, 84, kViewE11), 1e-9) << initial;
      EXPECT_NEAR(g.Epsi12, DonneIso(s, settings, 82, 84, kViewE12), 1e-9) << initial;
      EXPECT_NEAR(g.Epsi22, DonneIso(s, settings, 82, 84, kViewE22), 1e-9) << initial;
    }
  }
}

TEST_F(Gauges, ARosetteRowTurnsItsStrainsToTheUsersAxesAndLeavesThemWithAxisOneAlongX) {
  const Homogeneous f = PureStretch(kPi / 6, 1.1, 0.95);
  Read(f);
  const int32_t i = gauges.JaugeAdd(nullptr, kGaugeRosette, 70, 72, 94, 96);
  const GaugeMeasure m = MeasureGauge(s, settings, gauges, i);
  const GaugeReading& r = m.reading;
  const auto fields = [&] { return SplitText(GaugeRow(kGaugeRosette, "file.res", "extra", m, settings, format), "\t"); };
  // Fields: file, extras, E1, E2, Teta, Epsi11, Epsi12, Epsi22, surface ratio (the last with CR LF).
  EXPECT_EQ(fields(), (std::vector<std::string>{"file.res", "extra", Format(r.E1, format), Format(r.E2, format),
                                                 Format(30, format), GeneralNumber(r.Epsi11), Format(r.Epsi12, format),
                                                 Format(r.Epsi22, format), Format(1 / f.Det(), format) + "\r\n"}));
  // Axis 1 along the major axis: the tensor is diagonal there, as the map shows it turned.
  settings.teta1 = kPi / 6, settings.cos2Teta = std::cos(kPi / 3), settings.sin2Teta = std::sin(kPi / 3);
  const auto turned = fields();
  const double expected[] = {0, 100 * (1.1 * 1.1 - 1) / 2, 0, 100 * (0.95 * 0.95 - 1) / 2};
  for (size_t k = 0; k < 4; ++k) EXPECT_NEAR(ValNorm(turned[4 + k]), expected[k], 1e-6) << "field " << 4 + k;
  EXPECT_NEAR(ValNorm(turned[5]), DonneIso(s, settings, 82, 84, kViewE11), 1e-9) << "in the general form, all digits";
}

TEST_F(Gauges, ASliderAndALinearGageOnAUniformStretchReadTheStretchOfTheirDiagonal) {
  struct Case {
    double stretch;
    double x2, y2;  // from (70, 80)
  };
  for (const Case c : {Case{0.1, 98, 80}, Case{-0.2, 98, 80}, Case{0.05, 70, 101}, Case{0.1, 98, 101}}) {
    SCOPED_TRACE(std::to_string(c.stretch) + " to " + std::to_string(c.x2) + ", " + std::to_string(c.y2));
    Read({1 + c.stretch, 0, 0, 1});
    gauges.JaugeClear();
    const int32_t slider = gauges.JaugeAdd(nullptr, kGaugeSlider, 70, 80, c.x2, c.y2);
    const int32_t gage = gauges.JaugeAdd(nullptr, kGaugeLinear, 70, 80, c.x2, c.y2);
    const double dx = c.x2 - 70, dy = c.y2 - 80, lini = std::hypot(dx, dy);
    const double lamda = std::hypot((1 + c.stretch) * dx, dy) / lini;
    const GaugeMeasure m = MeasureGauge(s, settings, gauges, slider);
    EXPECT_DOUBLE_EQ(m.reading.Lamda, lamda);
    if (dy == 0) {
      EXPECT_DOUBLE_EQ(m.reading.Lamda, 1 + c.stretch);
    }
    EXPECT_EQ(GaugeRow(kGaugeSlider, "f", "", m, settings, format),
              "f\t\t" + Format(lini, format) + "\t" + Format(lamda * lini, format) + "\t" + Format(lamda, format) +
                  "\r\n");
    // A gage along x or y has a box without area: it reads the stretch along its line.
    const GaugeMeasure g = MeasureGauge(s, settings, gauges, gage);
    EXPECT_NEAR(g.reading.E1, dx != 0 ? 100 * std::log(1 + c.stretch) : 0.0, 1e-9);
    EXPECT_NEAR(g.reading.Epsi11, dx != 0 ? 100 * ((1 + c.stretch) * (1 + c.stretch) - 1) / 2 : 0.0, 1e-9);
    EXPECT_EQ(GaugeRow(kGaugeLinear, "f", "x", g, settings, format),
              "f\tx\t" + Format(g.reading.E1, format) + "\t" + Format(g.reading.Epsi11, format) + "\t" +
                  Format(lamda, format) + "\t" + Format(lini, format) + "\r\n");
  }
}

TEST_F(Gauges, ADragMakesAGaugeOnlyFromADiagonalOfLpasAndARosetteIsTheSquareToTheLowerRight) {
  struct Case {
    int32_t kind;
    double x2, y2;  // released, pressed at (80, 80)
    bool made;
    double boxX2, boxY2;
  };
  const int32_t lpas = 8;
  for (const Case c : {Case{kGaugeSlider, 87, 80, false}, Case{kGaugeSlider, 88, 80, true, 88, 80},
                       Case{kGaugeLinear, 84, 87, true, 84, 87}, Case{kGaugeLinear, 84, 86, false},
                       Case{kGaugeRosette, 70, 76, true, 90, 90}, Case{kGaugeRosette, 85, 81, false}}) {
    SCOPED_TRACE(std::to_string(c.kind) + " " + std::to_string(c.x2) + ", " + std::to_string(c.y2));
    gauges.JaugeClear();
    const int32_t i = JaugeFromDrag(gauges, nullptr, c.kind, 80, 80, c.x2, c.y2, lpas);
    EXPECT_EQ(gauges.JaugeCount(), c.made ? 1 : 0);
    EXPECT_EQ(i, c.made ? 1 : 0);
    if (!c.made) continue;
    EXPECT_EQ(gauges.JaugeKind(i), c.kind);
    EXPECT_EQ(gauges.JaugeXArr(i), c.boxX2);
    EXPECT_EQ(gauges.JaugeYArr(i), c.boxY2);
  }
}

TEST_F(Gauges, ARightClickOnAGaugeOffersToDeleteItAndCopyItsValues) {
  Read({1.1, 0, 0, 1});
  const int32_t first = gauges.JaugeAdd(nullptr, kGaugeRosette, 70, 72, 94, 96);
  const int32_t second = gauges.JaugeAdd(nullptr, kGaugeSlider, 62, 100, 100, 100, "top");
  MeasureGauge(s, settings, gauges, first);
  EXPECT_FALSE(gauges.JaugeMouseUp(1, 0, 80, 80)) << "left button";
  EXPECT_FALSE(gauges.JaugeMouseUp(2, 1, 80, 80)) << "with shift";
  EXPECT_FALSE(gauges.JaugeMouseUp(2, 0, 65, 80)) << "beside both";
  EXPECT_EQ(gauges.JaugeMouseUp(2, 0, 80, 102)->index, second) << "near a flat box";
  const auto menu = gauges.JaugeMouseUp(2, 0, 80, 80);
  ASSERT_TRUE(menu);
  EXPECT_EQ(menu->index, first);

  gauges.JaugeAction(first, GaugeAction::CopyValues, ui, format);
  const auto lines = SplitText(ui.clipboardText, "\r\n");
  ASSERT_EQ(lines.size(), 3u);
  EXPECT_EQ(lines[2], "");
  EXPECT_EQ(SplitText(lines[1], "\t")[0], "Rosette1");
  EXPECT_EQ(SplitText(lines[1], "\t")[4], Format(100 * std::log(1.1), format)) << "E1";

  ui.inputAnswers.push_back(" east ");
  gauges.JaugeAction(first, GaugeAction::Rename, ui, format);
  EXPECT_EQ(gauges.JaugeName(first), "east");
  gauges.JaugeAction(first, GaugeAction::Delete, ui, format);
  EXPECT_FALSE(gauges.Exists(first));
  EXPECT_EQ(gauges.JaugeName(second), "top");
  EXPECT_FALSE(gauges.JaugeMouseUp(2, 0, 80, 80));
}

TEST_F(Gauges, EachKindIsDrawnRecognisablyOnItsSurface) {
  RecordingCanvas canvas(200, 200);
  struct Case {
    int32_t kind;
    size_t lines, boxes;
  };
  for (const Case c : {Case{kGaugeLinear, 3, 0}, Case{kGaugeSlider, 2, 1}, Case{kGaugeRosette, 3, 1}}) {
    SCOPED_TRACE(c.kind);
    canvas.ops.clear();
    gauges.JaugeClear();
    gauges.JaugeDraw(gauges.JaugeAdd(&canvas, c.kind, 70, 72, 94, 96));
    const auto lines = canvas.OfKind("line");
    EXPECT_EQ(lines.size(), c.lines);
    EXPECT_EQ(canvas.OfKind("box").size(), c.boxes);
    ASSERT_FALSE(lines.empty());
    // Every kind shows its diagonal from corner 1 to corner 3.
    EXPECT_TRUE(std::any_of(lines.begin(), lines.end(), [](const RecordingCanvas::Op& l) {
      return l.x1 == 70 && l.y1 == 72 && l.x2 == 94 && l.y2 == 96;
    }));
    EXPECT_EQ(canvas.drawWidth, 1) << "the width is given back";
  }
}

}  // namespace
}  // namespace tessiva

// The distortion correction: the cubic fit, the file it is read from, the
// command that turns it on and off, and its effect on the strains.
#include "results/distortion.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "results/analysisfixture.h"
#include "results/mesh.h"
#include "state/files.h"

namespace tessiva {
namespace {

using testing::AnalysisFixture;
using testing::Displacement;
using testing::GridPatterns;
using testing::ResultHead;

struct Samples {
  std::vector<int32_t> x, y;
  std::vector<double> values;
};

// Values of a function on a 21 x 21 grid spanning a 2048 x 2048 picture.
template <class F>
Samples Sampled(F f) {
  Samples s;
  for (int32_t x = 0; x <= 2000; x += 100)
    for (int32_t y = 24; y <= 2024; y += 100) {
      s.x.push_back(x);
      s.y.push_back(y);
      s.values.push_back(f(x, y));
    }
  return s;
}

double Cubic(const Poly3& c, double x, double y) {
  return c[1] * x * x * x + c[2] * y * y * y + c[3] * x * x * y + c[4] * x * y * y + c[5] * x * x + c[6] * y * y +
         c[7] * x * y + c[8] * x + c[9] * y + c[10];
}

int32_t Count(const Samples& s) { return static_cast<int32_t>(s.x.size()); }

TEST(AjustePoly3, RecoversACubicFieldOnPixelCoordinates) {
  // The size of a lens distortion: a few pixels at the picture's edges.
  const Poly3 truth{0, 2e-10, -1e-10, 3e-10, -2e-10, 1e-7, 2e-7, -1e-7, 1e-3, -2e-3, 0.75};
  const Samples s = Sampled([&](double x, double y) { return Cubic(truth, x, y); });
  Poly3 fitted{};
  ASSERT_TRUE(AjustePoly3(fitted, Count(s), s.x, s.y, s.values));
  for (double x : {0.0, 517.0, 1024.0, 2047.0})
    for (double y : {0.0, 333.0, 2047.0}) EXPECT_NEAR(Cubic(fitted, x, y), Cubic(truth, x, y), 1e-6) << x << ", " << y;
}

TEST(AjustePoly3, ZeroFieldsTooFewPointsAndZeroPivotsGiveZeros) {
  struct Case {
    const char* what;
    Samples samples;
    int32_t count;
    bool solved;
  };
  const Samples zero = Sampled([](double, double) { return 0.0; });
  const Samples ramp = Sampled([](double x, double y) { return 1 + x + y; });
  const Case cases[] = {{"a target that didn't move", zero, Count(zero), true},
                        {"ten points", ramp, 10, true},
                        {"21 points on the column x = 0", ramp, 21, false}};
  for (const Case& c : cases) {
    Poly3 fitted;
    fitted.fill(9.0);
    EXPECT_EQ(AjustePoly3(fitted, c.count, c.samples.x, c.samples.y, c.samples.values), c.solved) << c.what;
    for (double coefficient : fitted) EXPECT_EQ(coefficient, 0.0) << c.what;
  }
}

class DistortionCommand : public AnalysisFixture {
 protected:
  std::string TargetFile(const std::string& text, const std::string& name = "target.res") {
    return dir.Write(name, text);
  }
  void Choose(const std::string& path) { ui.dialogAnswers.push_back({path, FileNameOf(path)}); }
};

TEST_F(DistortionCommand, TheTargetsGoodPatternsAreFitted) {
  const auto linear = [](double x, double y) { return Displacement{0.5 + 1e-3 * x, -2e-3 * y}; };
  auto patterns = GridPatterns(linear, 24, 24, 6, 6, 16, 8);
  patterns[3].flag = 0;
  patterns[3].d1 = 999.0;  // a bad pattern takes no part
  const std::string path = TargetFile(ResultFileText(ResultHead{}, patterns));
  s.NbBox = 7;
  s.NbPatBad = 3;
  Choose(path);
  window.OnOkDistorClick(true);
  EXPECT_EQ(window.Distor.DistorOn, -1);
  EXPECT_EQ(window.Controls().Text("OkDistor"), "target.res");
  EXPECT_NEAR(window.Distor.DistorU(100, 50), -(0.5 + 0.1), 1e-9);
  EXPECT_NEAR(window.Distor.DistorV(100, 50), 0.1, 1e-9);
  EXPECT_EQ(s.NbBox, 0) << "the target's count of areas";
  EXPECT_EQ(s.NbPatBad, 0);
  EXPECT_EQ(ui.dialogRequests.back().title, "Result for distorsion correction");
}

TEST_F(DistortionCommand, FilesWithoutGridStepOrOutlinesAreRefused) {
  const auto shift = [](double, double) { return Displacement{3, 3}; };
  const std::string good = ResultFileText(ResultHead{}, GridPatterns(shift, 24, 24, 4, 4, 8, 8));
  struct Case {
    std::string from, to, message;
  };
  const Case cases[] = {{"  Lgrid=8  \n", "", "Invalid Interpolation coefficient"},
                        {"[OUTLINES]\n  Number=00  \n", "", "Invalid Outlines number"}};
  for (const Case& c : cases) {
    std::string text = good;
    text.replace(text.find(c.from), c.from.size(), c.to);
    window.Distor.CoefDu[10] = 5.0;
    ui.log.clear();
    Choose(TargetFile(text, c.message + ".res"));
    window.OnOkDistorClick(true);
    EXPECT_EQ(ui.Messages(), std::vector<std::string>{c.message});
    EXPECT_EQ(window.Distor.DistorOn, -1) << "the correction stays on, at zero";
    EXPECT_EQ(window.Distor.DistorU(10, 10), 0.0);
  }
}

TEST_F(DistortionCommand, ACancelledDialogOrAClearedBoxTurnsTheCorrectionOff) {
  window.Distor.DistorOn = -1;
  window.OnOkDistorClick(true);  // no answer scripted: cancelled
  EXPECT_EQ(window.Distor.DistorOn, 0);
  EXPECT_FALSE(window.Controls().Checked("OkDistor"));
  ui.dialogAnswers.push_back({"*.res", ""});
  window.OnOkDistorClick(true);
  EXPECT_EQ(window.Distor.DistorOn, 0);
  window.Distor.DistorOn = -1;
  window.OnOkDistorClick(false);
  EXPECT_EQ(window.Distor.DistorOn, 0);
}

class CorrectedStrains : public AnalysisFixture {
 protected:
  void ReadBlock(const testing::DisplacementField& field) {
    ASSERT_TRUE(ReadResult(ResultHead{}, GridPatterns(field, 64, 64, 6, 6, 8, 8)));
  }
  template <class Check>
  void ForEachGoodNode(Check check) {
    for (int32_t i = 1; i <= s.NbPat; ++i) {
      ASSERT_EQ(s.FlagPat[i], -1);
      for (int32_t n : s.Mailles[static_cast<size_t>(NumMaille(s, s.XPat[i], s.YPat[i]))].Noeud)
        check(s.Noeuds[static_cast<size_t>(n)]);
    }
  }
};

// A distortion of p x along x scales corrected positions and displacements
// alike, so a measured stretch g keeps its strain g + g^2 / 2; correcting only
// one of them would give (1 - p) g or g / (1 - p).
TEST_F(CorrectedStrains, ALinearDistortionCorrectsPositionsAndDisplacementsAlike) {
  const double g = 0.1, p = 0.05;
  ReadBlock([g](double x, double) { return Displacement{g * (x - 100), 0.0}; });
  window.Distor.DistorOn = -1;
  window.Distor.CoefDu[8] = p;
  window.MinMaxDeformation();
  ForEachGoodNode([&](const MeshNode& node) { EXPECT_NEAR(node.E11, (g + g * g / 2) * 100, 1e-9); });
}

// With the correction on, Teta on the deformed configuration doesn't take the
// turn of the cell's first side: a translation correction changes nothing else.
TEST_F(CorrectedStrains, WithTheCorrectionOnTetaOnTheDeformedConfigurationLosesTheTurn) {
  const double c = std::cos(0.2), sn = std::sin(0.2);
  ReadBlock([&](double x, double y) {
    return Displacement{(1.1 * c - 1) * (x - 100) - sn * (y - 100), 1.1 * sn * (x - 100) + (c - 1) * (y - 100)};
  });
  window.bInitial = false;
  window.MinMaxDeformation();
  std::vector<MeshNode> plain(s.Noeuds.begin(), s.Noeuds.begin() + s.NbNoeuds + 1);
  window.Distor.DistorOn = -1;
  window.Distor.CoefDu[10] = 2.0;
  window.MinMaxDeformation();
  ForEachGoodNode([&](const MeshNode& node) {
    const MeshNode& before = plain[static_cast<size_t>(&node - s.Noeuds.data())];
    EXPECT_NEAR(node.E11, before.E11, 1e-9);
    EXPECT_NEAR(node.H1, before.H1, 1e-9);
    EXPECT_NEAR(node.Psi, before.Psi, 1e-9);
    // The first side turns by the rotation 0.2 the other way: 2 pi - 0.2.
    EXPECT_NEAR(before.Teta - node.Teta, (2 * std::numbers::pi - 0.2) * 180 / std::numbers::pi, 1e-9);
  });
}

}  // namespace
}  // namespace tessiva

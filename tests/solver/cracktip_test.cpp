// Stress intensity through real pictures: the speckle generator's mode I
// crack-tip field, a data file from the setup engine, the solver's result,
// and the factor measured on it against the one imposed.
#include <gtest/gtest.h>

#include <cmath>

#include "analysis/crackintegral.h"
#include "job.h"
#include "solver/synthetic_job.h"

namespace tessiva {
namespace {

// Behind the tip the faces open: no material point lands between them.
TEST(CrackTipPictures, TheGapBetweenTheOpenedFacesIsNoMaterial) {
  synth::FieldSpec field{synth::FieldKind::CrackTip, 0.5};
  field.cx = field.cy = 64;
  // 50 pixels behind the tip each face has moved 5 pixels off the crack's line.
  struct Case {
    double x, y;
    bool material;
  };
  for (const Case c : {Case{14, 64, false}, {14, 62, false}, {14, 72, true}, {14, 55, true}, {100, 64, true},
                       {64, 90, true}}) {
    const synth::Vec2 from = synth::InverseMap(field, c.x, c.y);
    EXPECT_EQ(synth::Lands(field, from, c.x, c.y), c.material) << c.x << ", " << c.y;
  }
}

TEST(CrackTipPictures, KIOfTheSolvedFieldIsTheOneImposed) {
  testing::TempDir dir;
  synth::SpeckleSettings pictures;
  pictures.width = pictures.height = 256;
  // The crack comes from the left edge to the picture's middle; a is KI / (2 mu) in px^0.5.
  synth::FieldSpec field{synth::FieldKind::CrackTip, 0.05};
  field.cx = field.cy = 128;
  ASSERT_TRUE(synth::WriteSyntheticPair(dir.Path(), pictures, field));
  testing::JobSetup job;
  job.lgrid = 8;
  testing::MakeDataFile(dir.Path(), "crack.don", job);
  const solver::JobOutcome outcome = solver::RunDataFile(dir.Path(), "crack.don", {2});
  ASSERT_TRUE(outcome.ok) << outcome.message;
  testing::ResultView view;
  ASSERT_TRUE(view.Read(dir.Path(), dir.File("crack.res")));

  const AppState& s = view.s;
  // The band covers the patterns that overlap the opened faces.
  const CrackFactors k = CrackIntegrals(s, {10, 128, 128, 128, 118}, {s.Young, s.Poisson, s.UnitPX}, 2.0, 0);
  ASSERT_TRUE(k.Usable());
  const double E = s.Young * 1e6, mu = E / (2 * (1 + s.Poisson));
  const double imposed = field.a * 2 * mu * std::sqrt(s.UnitPX);
  EXPECT_NEAR(k.KI, imposed, 0.05 * imposed);
  EXPECT_NEAR(k.KII, 0, 0.05 * imposed);
}

}  // namespace
}  // namespace tessiva

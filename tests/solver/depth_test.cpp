// The solver correlates at the full depth of its pictures: the same sub-pixel
// sweep written as 8-bit BMP and as 16-bit TIFF, at a noise well below the
// 8-bit quantisation step, where quantisation dominates the random error.
#include <gtest/gtest.h>

#include "solver/depthsweep.h"
#include "support/tempdir.h"

namespace tessiva {
namespace {

TEST(SolverDepth, SixteenBitPicturesAtLeastHalveTheRandomErrorOfEightBitOnes) {
  const testing::SweepSettings sweep;
  testing::SweepFigures figures[2];
  const PictureFileFormat formats[2] = {PictureFileFormat::kBmp, PictureFileFormat::kTiff16};
  for (int i = 0; i < 2; ++i) {
    testing::TempDir dir;
    figures[i] = testing::SolveTranslationSweep(dir.Path(), formats[i], sweep);
    ASSERT_EQ(figures[i].failure, "");
    ASSERT_GT(figures[i].patterns, 40);
  }
  const auto& [eightBit, sixteenBit] = figures;
  EXPECT_LE(sixteenBit.randomError, 0.5 * eightBit.randomError)
      << "8 bits: " << eightBit.randomError << " px, 16 bits: " << sixteenBit.randomError << " px";
  EXPECT_LE(sixteenBit.bias, 0.01);
}

}  // namespace
}  // namespace tessiva

// Correlation jobs over synthetic speckle pictures: the pictures come from the
// generator, the data file from the setup window's engine (areas, grid, start
// search, walk, save), and the result is read back by the analysis.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "setup/rectanglesetup.h"
#include "solver/resultview.h"
#include "support/tempdir.h"
#include "synth/texture.h"

namespace tessiva::testing {

using JobSetup = RectangleSetup;

// Writes `name` (a .don) in `dir` over the job's two pictures there.
inline void MakeDataFile(const std::string& dir, const std::string& name, JobSetup job) {
  job.dir = dir;
  job.dataName = name;
  ASSERT_EQ(SetUpRectangle(job), "");
}

}  // namespace tessiva::testing

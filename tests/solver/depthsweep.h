// A sub-pixel translation sweep solved from picture files: the same speckle
// pairs written in one picture format, each pair's data file made by the setup
// engine, solved by the solver's own job and read back by the analysis; the
// displacement errors of the good patterns against the known translation.
// Shared by the solver tests and the depth benchmark.
#pragma once

#include <cmath>
#include <memory>
#include <string>
#include <vector>

#include "job.h"
#include "resultview.h"
#include "setup/rectanglesetup.h"
#include "state/files.h"
#include "synth/texture.h"

namespace tessiva::testing {

struct SweepSettings {
  int32_t size = 96;   // pixels a side
  double noise = 0.1;  // grey levels (of 255) of Gaussian noise
  int32_t steps = 4;   // translations, spread over one pixel
  // Faint, smooth speckles, as a dim camera sees: the interpolation's own
  // error is small and the grey-level steps of 8 bits weigh.
  double contrast = 0.15;
  double spotRadius = 2.5;
  double density = 0.06;
};

struct SweepFigures {
  // Mean size, over the steps and over U and V, of each step's mean error: what
  // interpolation leaves.
  double bias = 0.0;
  // Spread of the errors about their step's mean: what noise and quantisation leave.
  double randomError = 0.0;
  int64_t patterns = 0;
  std::string failure;        // what stopped the sweep; empty when it ran
};

// The translation of step i: fractions of a pixel both ways, none of them whole.
inline synth::FieldSpec SweepTranslation(int32_t i, int32_t steps) {
  const double u = (i + 0.5) / steps;
  return {synth::FieldKind::Translation, u, 0.3 - u};
}

inline SweepFigures SolveTranslationSweep(const std::string& dir, PictureFileFormat format,
                                          const SweepSettings& sweep) {
  SweepFigures figures;
  synth::SpeckleSettings st;
  st.width = st.height = sweep.size;
  st.noiseSigma = sweep.noise;
  st.contrast = sweep.contrast;
  st.spotRadius = sweep.spotRadius;
  st.density = sweep.density;
  st.superSampling = 2;
  const std::string extension(ExtensionOf(format));
  RectangleSetup job;
  job.dir = dir;
  job.ref = "ref." + extension;
  job.def = "def." + extension;
  job.dataName = "sweep.don";
  // Iterations run until the increment is a thousandth of a pixel, below the errors measured.
  job.precision = 1000;
  double biasSum = 0.0, squares = 0.0;
  int64_t freedom = 0;
  for (int32_t i = 0; i < sweep.steps; ++i) {
    const synth::FieldSpec field = SweepTranslation(i, sweep.steps);
    if (!synth::WriteSyntheticPair(dir, st, field, format)) figures.failure = "the pictures can't be written";
    if (figures.failure.empty()) figures.failure = SetUpRectangle(job);
    if (!figures.failure.empty()) return figures;
    const solver::JobOutcome outcome = solver::RunDataFile(dir, job.dataName, {1});
    const auto view = std::make_unique<ResultView>();
    if (!outcome.ok || !view->Read(dir, JoinPath(dir, "sweep.res"))) {
      figures.failure = outcome.ok ? "the result can't be read" : outcome.message;
      return figures;
    }
    const AppState& s = view->s;
    for (const auto& [values, truth] : {std::pair{&s.D1Pat, field.a}, std::pair{&s.D2Pat, field.b}}) {
      std::vector<double> errors;
      for (int32_t k = 1; k <= s.NbPat; ++k)
        if (s.FlagPat[k] == -1) errors.push_back((*values)[k] - truth);
      if (errors.size() < 2) continue;
      double mean = 0.0;
      for (double e : errors) mean += e / static_cast<double>(errors.size());
      for (double e : errors) squares += (e - mean) * (e - mean);
      freedom += static_cast<int64_t>(errors.size()) - 1;
      biasSum += std::abs(mean);
    }
    figures.patterns += s.NbPat;
  }
  figures.bias = biasSum / (2.0 * sweep.steps);
  figures.randomError = freedom > 0 ? std::sqrt(squares / static_cast<double>(freedom)) : 0.0;
  return figures;
}

}  // namespace tessiva::testing

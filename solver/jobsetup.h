// What a job needs from its data file: the file read by the setup window's
// own reader, headless, so grid, numbering and parameters are the setup's.
#pragma once

#include <optional>
#include <string>

#include "propagation.h"
#include "setup/areaform.h"
#include "ui/scriptedui.h"

namespace tessiva::solver {

struct LoadedJob {
  AppState s;
  ControlRegistry frame;
  ScriptedUi ui{frame};
  Param param{s};
  AreaForm form{s, ui, param};
};

// Reads data file (or result file) `name` of `dataDir`; why it can't be used, or nothing.
std::optional<std::string> LoadJob(LoadedJob& job, const std::string& dataDir, const std::string& name);

// The grid's patterns, their neighbours and the solver settings of the file.
FieldProblem ProblemOf(LoadedJob& job, const SampledPicture& ref, const SampledPicture& def, int32_t threads);

// The interpolant the file asks for.
Interpolant InterpolantOf(const AppState& s);

}  // namespace tessiva::solver

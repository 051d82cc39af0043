// What a job needs from its data file: the file parsed, its pictures read and
// the pattern grid laid over its areas by the setup engine's own rules, so
// the grid and its numbering are those the setup window shows.
#pragma once

#include <optional>
#include <string>

#include "formats/content.h"
#include "propagation.h"
#include "setup/grid.h"
#include "state/appstate.h"

namespace tessiva::solver {

struct LoadedJob {
  AppState s;
  PatternGrid grid;
  PictureNames pictures;
};

// Reads both pictures of a job whole, at their full depth, into PixRef and
// PixDef, sizing the grid by them; what is wrong with the first that can't
// be read, or with a deformed picture of another size, naming it, or the
// empty string. With a pool, the two are read side by side.
std::string ReadPicturePair(const std::string& refPath, const std::string& defPath, AppState& s,
                            WorkerPool* pool = nullptr);

// Reads data file (or result file) `name` of `dataDir`, its pictures over
// the pool when there is one; why it can't be used, or nothing.
std::optional<std::string> LoadJob(LoadedJob& job, const std::string& dataDir, const std::string& name,
                                   WorkerPool* pool = nullptr);

// The grid's patterns, their neighbours (found over the pool) and the solver
// settings of the file, for as many threads as the pool has.
FieldProblem ProblemOf(const LoadedJob& job, const SampledPicture& ref, const SampledPicture& def, WorkerPool& pool);

// The interpolant the file asks for.
Interpolant InterpolantOf(const AppState& s);

}  // namespace tessiva::solver

// Incremental members of a sequence: the previous picture is correlated with
// this one at the places the patterns have reached, and the increment is
// added to the field carried in ResultFrom, so the result holds displacements
// from the first picture at the first picture's pattern positions.
#pragma once

#include <string>

#include "job.h"

namespace tessiva::solver {

// Solves the stub `name` (its pictures and PicRefini) with the areas,
// parameters and field of the result `resultFrom`, both in `dataDir`.
JobOutcome RunIncrementalMember(const std::string& dataDir, const std::string& name, const std::string& resultFrom,
                                const JobOptions& options);

}  // namespace tessiva::solver

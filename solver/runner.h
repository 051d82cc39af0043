// The job contract: entre.dat in the data directory lists data files (or
// sequence files, whose members are taken in order), one a line; each is
// solved in turn, with progress and a summary on the given stream.
#pragma once

#include <cstdint>
#include <functional>
#include <ostream>
#include <string>

#include "job.h"

namespace tessiva::solver {

// Solves one data file of a data directory, as RunDataFile does.
using JobFunction = std::function<JobOutcome(const std::string& dataDir, const std::string& name, const JobOptions&)>;

// Runs every job of dataDir/entre.dat. Returns the exit status: 0 when every
// job succeeded, 1 otherwise (entre.dat unreadable or empty included). A job
// that can't be run (a name no file can bear, a directory, an unreadable
// sequence) or that fails in any way, an exception included, is skipped with
// a message naming it, and the others still run. `job` solves each data file.
int RunJobs(const std::string& dataDir, const JobOptions& options, std::ostream& out,
            const JobFunction& job = RunDataFile);

}  // namespace tessiva::solver

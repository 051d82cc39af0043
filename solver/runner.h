// The job contract: entre.dat in the data directory lists data files (or
// sequence files, whose members are taken in order), one a line; each is
// solved in turn, with progress and a summary on the given stream.
#pragma once

#include <cstdint>
#include <ostream>
#include <string>

#include "job.h"

namespace tessiva::solver {

// Runs every job of dataDir/entre.dat. Returns the exit status: 0 when every
// job succeeded, 1 otherwise (entre.dat unreadable or empty included).
int RunJobs(const std::string& dataDir, const JobOptions& options, std::ostream& out);

}  // namespace tessiva::solver

// One correlation job: a data file read with the setup window's own readers
// (so the grid and its numbering are the setup window's), its field solved,
// and its result file written whole or not at all.
#pragma once

#include <cstdint>
#include <string>

namespace tessiva::solver {

struct JobOptions {
  int32_t threads = 1;
};

struct JobOutcome {
  bool ok = false;
  std::string message;  // why the job was skipped, naming the file
  int32_t patterns = 0;
  int32_t bad = 0;
};

// Whether writing the result of data file `dataPath` would replace the data
// file itself (a .res given as data, or a name cut short by a control character).
bool ResultWouldOverwrite(const std::string& dataPath);

// Solves data file `name` of directory `dataDir` and writes its .res beside it;
// an incremental member goes to RunIncrementalMember.
JobOutcome RunDataFile(const std::string& dataDir, const std::string& name, const JobOptions& options);

}  // namespace tessiva::solver

// What the frame says of a running solver, from the lines it prints: the
// file it works on, the patterns solved so far, the time, and when it ends
// its exit status with the jobs it skipped. The solver's output is read as
// it comes, a line at a time; its last line, added by the program that
// started it, is "exit status N".
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tessiva {

class SolverProgress {
 public:
  // One line of the solver's output, without its line end.
  void Feed(std::string_view line);
  // The status line while it runs, `elapsed` seconds after the start.
  std::string StatusText(double elapsed) const;
  // Once the solver has ended: its exit status, the jobs solved and the ones
  // skipped with their reasons, or the fault that stopped it.
  std::optional<std::string> EndMessage() const;
  // Ended with status 0, every job solved and nothing else said.
  bool EndedCleanly() const { return exitStatus_ == 0 && skipped_.empty() && faults_.empty(); }

 private:
  std::string file_;      // "2 of 5: neck.don"
  long long patterns_ = 0;
  std::string summary_;   // the solver's own last word, "done: ..."
  std::vector<std::string> skipped_;
  std::vector<std::string> faults_;  // lines that are no progress
  std::optional<int> exitStatus_;
};

}  // namespace tessiva

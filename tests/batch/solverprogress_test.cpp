// What the frame says of a running solver, from its output as it comes.
#include <gtest/gtest.h>

#include "batch/solverprogress.h"

namespace tessiva {
namespace {

SolverProgress Fed(std::initializer_list<std::string_view> lines) {
  SolverProgress progress;
  for (const std::string_view line : lines) progress.Feed(line);
  return progress;
}

TEST(SolverProgress, StatusCountsPatternsOverFilesAndTheEndNamesStatusSkippedJobsAndFaults) {
  EXPECT_EQ(Fed({}).StatusText(0.4), "Solver started, 0 s");
  const SolverProgress running = Fed({"file 1 of 3: a.don", "  patterns solved 2601, bad patterns 4, time 0.29 s",
                                      "file 2 of 3: b.don"});
  EXPECT_EQ(running.StatusText(12.7), "Solver: file 2 of 3: b.don, 2601 patterns solved, 12 s");
  EXPECT_FALSE(running.EndMessage());

  struct Case {
    std::initializer_list<std::string_view> tail;
    std::string end;
    bool clean;
  } const cases[] = {
      {{"  patterns solved 100, bad patterns 0, time 0.10 s", "file 3 of 3: c.don", "  patterns solved 1, bad patterns 0, time 0.01 s",
        "done: 3 of 3 jobs solved, 0 skipped, 0.40 s", "exit status 0"},
       "The solver ended with exit status 0: 3 of 3 jobs solved, 0 skipped, 0.40 s.", true},
      {{"  skipped: the picture b.bmp can't be read", "file 3 of 3: c.don", "  skipped: c.don is a directory",
        "done: 1 of 3 jobs solved, 2 skipped, 0.40 s", "exit status 0"},
       "The solver ended with exit status 0: 1 of 3 jobs solved, 2 skipped, 0.40 s.\nSkipped:\n"
       "b.don: the picture b.bmp can't be read\nc.don: c.don is a directory",
       false},
      // Stopped short: no summary, the fault it printed instead.
      {{"tessiva-solver: out of memory while running the jobs of /data", "exit status 1"},
       "The solver ended with exit status 1.\ntessiva-solver: out of memory while running the jobs of /data", false},
  };
  for (const Case& c : cases) {
    SolverProgress progress = running;
    for (const std::string_view line : c.tail) progress.Feed(line);
    EXPECT_EQ(progress.EndMessage().value_or("(running)"), c.end);
    EXPECT_EQ(progress.EndedCleanly(), c.clean) << c.end;
  }
}

}  // namespace
}  // namespace tessiva

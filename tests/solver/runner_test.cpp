#include "runner.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <new>
#include <sstream>
#include <stdexcept>

#include "support/tempdir.h"

namespace tessiva::solver {
namespace {

using namespace std::string_literals;
using testing::TempDir;

// Writes each file of a case; the content "/" makes a directory of that name.
void MakeFiles(const TempDir& dir, const std::vector<std::pair<std::string, std::string>>& files) {
  for (const auto& [name, content] : files) {
    if (content == "/") std::filesystem::create_directory(dir.File(name));
    else dir.Write(name, content);
  }
}

// The runner hands each job it can run to the job function, whatever line
// ends its lists use, and tells every job it can't run or that fails by name.
TEST(RunJobs, ListsAreReadWhateverTheirLineEndsAndBadJobsAreSkippedByName) {
  struct Case {
    const char* name;
    std::vector<std::pair<std::string, std::string>> files;  // entre.dat first
    std::vector<std::string> run;                            // the names the jobs are given
    std::vector<std::string> said;                           // in the runner's output
    int status = 1;
  };
  const Case cases[] = {
      {"CR LF", {{"entre.dat", "a.don\r\nb.don\r\n"}}, {"a.don", "b.don"}, {"file 2 of 2: b.don\n"}, 0},
      {"lone CR", {{"entre.dat", "a.don\rb.don"}}, {"a.don", "b.don"}, {}, 0},
      {"byte order mark", {{"entre.dat", "\xEF\xBB\xBF" "a.don\nb.don\n"}}, {"a.don", "b.don"}, {}, 0},
      {"sequence with CR LF and a mark",
       {{"entre.dat", "s.seq\r\n"}, {"s.seq", "\xEF\xBB\xBF" "a.don\r\nb.don\r\n"}},
       {"a.don", "b.don"},
       {},
       0},
      {"NUL in a name",
       {{"entre.dat", "a.don\nsmall.don\0.don\nb.don\n"s}},
       {"a.don", "b.don"},
       {"file 2 of 3: small.don\\0.don\n", "/small.don\\0.don: the name holds a control character"}},
      {"control character in a member",
       {{"entre.dat", "s.seq"}, {"s.seq", "x\x01.don\nb.don\n"}},
       {"b.don"},
       {"/x\\x01.don: the name holds a control character"}},
      {"directory as a job",
       {{"entre.dat", "d.don\nb.don\n"}, {"d.don", "/"}},
       {"b.don"},
       {"/d.don is a directory, not a data file", "file 2 of 2: b.don\n"}},
      {"directory as a sequence",
       {{"entre.dat", "s.seq\nb.don\n"}, {"s.seq", "/"}},
       {"b.don"},
       {"/s.seq is a directory, not a sequence file"}},
      {"directory as a member",
       {{"entre.dat", "s.seq\n"}, {"s.seq", "d.don\nb.don\n"}, {"d.don", "/"}},
       {"b.don"},
       {"/d.don is a directory, not a data file"}},
      {"jobs that throw",
       {{"entre.dat", "memory.don\nfault.don\nb.don\n"}},
       {"memory.don", "fault.don", "b.don"},
       {"/memory.don: the job needed more memory than the computer could give",
        "/fault.don: the job stopped on an unexpected fault", "1 of 3 jobs solved, 2 skipped"}},
      {"entre.dat a directory", {{"entre.dat", "/"}}, {}, {"/entre.dat: no job was run"}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    TempDir dir;
    MakeFiles(dir, c.files);
    std::vector<std::string> run;
    const JobFunction job = [&run](const std::string&, const std::string& name, const JobOptions&) {
      run.push_back(name);
      if (name == "memory.don") throw std::bad_alloc();
      if (name == "fault.don") throw std::out_of_range("std::vector::_M_range_check");
      return JobOutcome{true, "", 1, 0};
    };
    std::ostringstream out;
    const int status = RunJobs(dir.Path(), {1}, out, job);
    EXPECT_EQ(status, c.status) << out.str();
    EXPECT_EQ(run, c.run);
    for (const std::string& text : c.said) EXPECT_NE(out.str().find(text), std::string::npos) << out.str();
    EXPECT_EQ(out.str().find_first_of("\r"), std::string::npos);
    EXPECT_EQ(out.str().find("std::"), std::string::npos) << out.str();
  }
}

// With the real job: a name the system would cut at its NUL never reaches the
// disk, so the data file it would cut to is not overwritten by its result; a
// missing job listed with CR LF is told by its bare name.
TEST(RunJobs, NamesThatCantBeFilesNeverTouchTheDisk) {
  TempDir dir;
  dir.Write("small.don", "[PICTURES]\n");
  dir.Write("entre.dat", "small.don\0.don\r\nabsent.don\r\n"s);
  std::ostringstream out;
  EXPECT_EQ(RunJobs(dir.Path(), {1}, out), 1);
  EXPECT_EQ(dir.Read("small.don"), "[PICTURES]\n");
  EXPECT_NE(out.str().find("file 2 of 2: absent.don\n"), std::string::npos) << out.str();
  EXPECT_EQ(out.str().find_first_of("\r"), std::string::npos) << out.str();
}

}  // namespace
}  // namespace tessiva::solver

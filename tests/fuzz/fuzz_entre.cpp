// The solver's job list (entre.dat): the input up to its first form feed is
// entre.dat, the rest, when there is a form feed, a sequence file s.seq beside
// it; the data directory also holds a data file a.don and two directories,
// d.don and d.seq. Jobs are recorded instead of solved. No file of the
// directory changes, only usable names of data files reach a job, and the
// summary accounts for every job listed.
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <new>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>

#include "fuzz/fuzzcheck.h"
#include "runner.h"
#include "state/files.h"
#include "state/numtext.h"

using namespace tessiva;

namespace {

const std::string& DataDir() {
  static const std::string dir = [] {
    const std::string& d = fuzz::ScratchDir("entre");
    fuzz::WriteFile(d, "a.don", "[PICTURES]\nPicRef=ref.bmp\nPicDef=def.bmp\n");
    std::filesystem::create_directories(std::filesystem::path(d) / "d.don");
    std::filesystem::create_directories(std::filesystem::path(d) / "d.seq");
    return d;
  }();
  return dir;
}

size_t LinesStarting(const std::string& text, std::string_view start) {
  size_t count = 0;
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) count += line.starts_with(start);
  return count;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string_view input(reinterpret_cast<const char*>(data), size);
  const std::string& dir = DataDir();
  const size_t split = input.find('\f');
  fuzz::WriteFile(dir, "entre.dat", input.substr(0, split));
  const std::string seq = JoinPath(dir, "s.seq");
  if (split != std::string_view::npos) {
    fuzz::WriteFile(dir, "s.seq", input.substr(split + 1));
  } else {
    std::filesystem::remove(seq);
  }
  const auto before = fuzz::Snapshot(dir);

  // Names starting with f fail, with t or m throw: the jobs after them must still run.
  size_t calls = 0, failures = 0;
  const solver::JobFunction job = [&](const std::string& dataDir, const std::string& name, const solver::JobOptions&) {
    ++calls;
    FUZZ_CHECK(dataDir == dir, "job run in " + dataDir);
    FUZZ_CHECK(IsUsableFileName(name) && name == Trim(name), "job given \"" + PrintableName(name) + "\"");
    FUZZ_CHECK(!ToLower(name).ends_with(".seq"), "sequence " + PrintableName(name) + " given as a data file");
    std::error_code ec;
    FUZZ_CHECK(!std::filesystem::is_directory(JoinPath(dir, name), ec), "directory " + name + " given as a data file");
    if (name[0] == 'f' || name[0] == 't' || name[0] == 'm') ++failures;
    if (name[0] == 't') throw std::runtime_error("job failed");
    if (name[0] == 'm') throw std::bad_alloc();
    return solver::JobOutcome{name[0] != 'f', name[0] == 'f' ? "failed " + name : "", 4, 1};
  };
  std::ostringstream out;
  const int status = solver::RunJobs(dir, solver::JobOptions{}, out, job);

  FUZZ_CHECK(fuzz::ChangedEntry(before, fuzz::Snapshot(dir)).empty(), fuzz::ChangedEntry(before, fuzz::Snapshot(dir)));
  const std::string report = out.str();
  const size_t listed = LinesStarting(report, "file ");
  const size_t skipped = LinesStarting(report, "  skipped: ");
  // Every job listed is either refused by name or handed to the job.
  FUZZ_CHECK(skipped >= failures && listed - calls == skipped - failures,
             fuzz::Num(static_cast<double>(listed)) + " listed, " + fuzz::Num(static_cast<double>(calls)) +
                 " run, " + fuzz::Num(static_cast<double>(skipped)) + " skipped:\n" + report);
  FUZZ_CHECK(status == (listed == 0 || skipped > 0 ? 1 : 0), "exit status " + fuzz::Num(status) + "\n" + report);
  return 0;
}

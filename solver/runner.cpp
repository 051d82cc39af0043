#include "runner.h"

#include <chrono>
#include <vector>

#include "state/files.h"
#include "state/numtext.h"

namespace tessiva::solver {
namespace {

// The non-blank lines of a text, trimmed.
std::vector<std::string> Lines(const std::string& text) {
  std::vector<std::string> lines;
  for (const std::string& line : SplitText(text, "\n"))
    if (std::string name = Trim(line); !name.empty()) lines.push_back(std::move(name));
  return lines;
}

bool IsSequence(const std::string& name) { return ToLower(name).ends_with(".seq"); }

// The data files of entre.dat with sequences replaced by their members. A
// sequence that can't be read stays in the list and fails as a job.
std::vector<std::string> JobList(const std::string& dataDir, const std::string& entre) {
  std::vector<std::string> jobs;
  for (const std::string& name : Lines(entre)) {
    const auto members = IsSequence(name) ? ReadWholeFile(JoinPath(dataDir, name)) : std::nullopt;
    if (!members) {
      jobs.push_back(name);
      continue;
    }
    for (const std::string& member : Lines(*members)) jobs.push_back(member);
  }
  return jobs;
}

}  // namespace

int RunJobs(const std::string& dataDir, const JobOptions& options, std::ostream& out) {
  const std::string entrePath = JoinPath(dataDir, "entre.dat");
  const auto entre = ReadWholeFile(ResolvePathNoCase(entrePath));
  if (!entre) {
    out << "Can't read " << entrePath << ": no job was run" << std::endl;
    return 1;
  }
  const std::vector<std::string> jobs = JobList(dataDir, *entre);
  if (jobs.empty()) {
    out << entrePath << " lists no job" << std::endl;
    return 1;
  }
  using Clock = std::chrono::steady_clock;
  const auto start = Clock::now();
  int32_t failed = 0;
  for (size_t i = 0; i < jobs.size(); ++i) {
    out << "file " << i + 1 << " of " << jobs.size() << ": " << jobs[i] << std::endl;
    const auto begun = Clock::now();
    const JobOutcome job = IsSequence(jobs[i])
                               ? JobOutcome{false, JoinPath(dataDir, jobs[i]) + ": the sequence file can't be read"}
                               : RunDataFile(dataDir, jobs[i], options);
    const double seconds = std::chrono::duration<double>(Clock::now() - begun).count();
    if (job.ok) {
      out << "  patterns solved " << job.patterns - job.bad << ", bad patterns " << job.bad << ", time "
          << Format(seconds, "0.00") << " s" << std::endl;
    } else {
      ++failed;
      out << "  skipped: " << job.message << std::endl;
    }
  }
  const double total = std::chrono::duration<double>(Clock::now() - start).count();
  out << "done: " << jobs.size() - failed << " of " << jobs.size() << " jobs solved, " << failed << " skipped, "
      << Format(total, "0.00") << " s" << std::endl;
  return failed == 0 ? 0 : 1;
}

}  // namespace tessiva::solver

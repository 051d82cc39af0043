#include "runner.h"

#include <chrono>
#include <filesystem>
#include <new>
#include <optional>
#include <vector>

#include "state/files.h"
#include "state/numtext.h"

namespace tessiva::solver {
namespace {

// One job of the list: a data file, and why it can't be run (empty when it can).
struct ListedJob {
  std::string name;
  std::string refusal;
};

// The non-blank lines of a text, trimmed, whatever line ends it uses.
std::vector<std::string> Lines(std::string_view text) {
  std::vector<std::string> lines;
  for (const std::string& line : SplitLines(text))
    if (std::string name = Trim(line); !name.empty()) lines.push_back(std::move(name));
  return lines;
}

bool IsSequence(const std::string& name) { return ToLower(name).ends_with(".seq"); }

bool IsDirectory(const std::string& path) {
  std::error_code ec;
  return std::filesystem::is_directory(std::filesystem::u8path(path), ec);
}

// A path as a message shows it: control characters escaped.
std::string Shown(const std::string& dataDir, const std::string& name) {
  return PrintableName(JoinPath(dataDir, name));
}

// Why file `name` of the data directory can't be opened as a `kind`, or
// nothing. The system cuts a name at a NUL: "a.don\0.don" would be read as
// a.don, and its result "a.don\0.res" written over a.don itself. So a name
// with a control character is never opened.
std::string Refusal(const std::string& dataDir, const std::string& name, const char* kind) {
  if (!IsUsableFileName(name))
    return Shown(dataDir, name) + ": the name holds a control character, which no file name may hold";
  if (IsDirectory(JoinPath(dataDir, name))) return Shown(dataDir, name) + " is a directory, not a " + kind;
  return {};
}

// The data files of entre.dat with sequences replaced by their members. A
// sequence that can't be read stays in the list and is skipped as a job.
std::vector<ListedJob> JobList(const std::string& dataDir, const std::string& entre) {
  std::vector<ListedJob> jobs;
  for (const std::string& name : Lines(entre)) {
    if (!IsSequence(name)) {
      jobs.push_back({name, Refusal(dataDir, name, "data file")});
      continue;
    }
    std::string refusal = Refusal(dataDir, name, "sequence file");
    const auto members = refusal.empty() ? ReadWholeFile(JoinPath(dataDir, name)) : std::nullopt;
    if (!members) {
      if (refusal.empty()) refusal = Shown(dataDir, name) + ": the sequence file can't be read";
      jobs.push_back({name, std::move(refusal)});
      continue;
    }
    for (const std::string& member : Lines(*members)) {
      std::string memberRefusal = Refusal(dataDir, member, "data file");
      if (memberRefusal.empty() && IsSequence(member))
        memberRefusal = Shown(dataDir, member) + ": a sequence file can't be a member of " + Shown(dataDir, name);
      jobs.push_back({member, std::move(memberRefusal)});
    }
  }
  return jobs;
}

// The job's outcome. Whatever it throws makes it a failure that names it, so
// that one job never stops the ones after it.
JobOutcome Solve(const JobFunction& job, const std::string& dataDir, const std::string& name,
                 const JobOptions& options) {
  try {
    return job(dataDir, name, options);
  } catch (const std::bad_alloc&) {
    return {false, Shown(dataDir, name) + ": the job needed more memory than the computer could give"};
  } catch (...) {
    return {false, Shown(dataDir, name) + ": the job stopped on an unexpected fault"};
  }
}

}  // namespace

int RunJobs(const std::string& dataDir, const JobOptions& options, std::ostream& out, const JobFunction& job) {
  const std::string entrePath = JoinPath(dataDir, "entre.dat");
  const auto entre = ReadWholeFile(ResolvePathNoCase(entrePath));
  if (!entre) {
    out << "Can't read " << PrintableName(entrePath) << ": no job was run" << std::endl;
    return 1;
  }
  const std::vector<ListedJob> jobs = JobList(dataDir, *entre);
  if (jobs.empty()) {
    out << PrintableName(entrePath) << " lists no job" << std::endl;
    return 1;
  }
  using Clock = std::chrono::steady_clock;
  const auto start = Clock::now();
  int32_t failed = 0;
  for (size_t i = 0; i < jobs.size(); ++i) {
    out << "file " << i + 1 << " of " << jobs.size() << ": " << PrintableName(jobs[i].name) << std::endl;
    const auto begun = Clock::now();
    const JobOutcome outcome =
        jobs[i].refusal.empty() ? Solve(job, dataDir, jobs[i].name, options) : JobOutcome{false, jobs[i].refusal};
    const double seconds = std::chrono::duration<double>(Clock::now() - begun).count();
    if (outcome.ok) {
      out << "  patterns solved " << outcome.patterns - outcome.bad << ", bad patterns " << outcome.bad << ", time "
          << Format(seconds, "0.00") << " s" << std::endl;
    } else {
      ++failed;
      out << "  skipped: " << outcome.message << std::endl;
    }
  }
  const double total = std::chrono::duration<double>(Clock::now() - start).count();
  out << "done: " << jobs.size() - failed << " of " << jobs.size() << " jobs solved, " << failed << " skipped, "
      << Format(total, "0.00") << " s" << std::endl;
  return failed == 0 ? 0 : 1;
}

}  // namespace tessiva::solver

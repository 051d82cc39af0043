#include "job.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <optional>
#include <variant>
#include <vector>

#include "formats/content.h"
#include "state/keyfile.h"
#include "incremental.h"
#include "jobsetup.h"
#include "resultwriter.h"
#include "state/files.h"
#include "state/numtext.h"
#include "workerpool.h"

namespace tessiva::solver {
namespace {

JobOutcome Failure(std::string message) { return {false, std::move(message), 0, 0}; }

// A start point the setup window could have given: on the picture, and
// displaced no further than the picture is wide or high.
std::optional<std::string> StartPointProblem(const AppState& s, int32_t i) {
  const int32_t x = s.XStart[i], y = s.YStart[i], du = s.DuStart[i], dv = s.DvStart[i];
  const std::string point = "start point " + std::to_string(i) + " at (" + std::to_string(x) + ", " +
                            std::to_string(y) + ")";
  if (!s.PixRef.Contains(x, y))
    return point + " lies outside the picture of " + std::to_string(s.Lima) + " x " + std::to_string(s.Hima) + " pixels";
  if (std::abs(int64_t{du}) > s.Lima || std::abs(int64_t{dv}) > s.Hima)
    return point + " is displaced by (" + std::to_string(du) + ", " + std::to_string(dv) + "), beyond the picture";
  return std::nullopt;
}

// The pattern nearest to each start point whose displacement is known, or
// why a start point can't be used.
std::variant<std::vector<StartSeed>, std::string> StartSeeds(const AppState& s) {
  std::vector<StartSeed> seeds;
  for (int32_t i = 1; i <= s.NbStart; ++i) {
    if (s.DuStart[i] == kUnknownValue || s.DvStart[i] == kUnknownValue) continue;
    if (auto problem = StartPointProblem(s, i)) return *problem;
    int32_t nearest = 0;
    int64_t best = std::numeric_limits<int64_t>::max();
    for (int32_t k = 1; k <= s.NbPat; ++k) {
      const int64_t dx = s.XPat[k] - s.XStart[i], dy = s.YPat[k] - s.YStart[i];
      if (dx * dx + dy * dy < best) best = dx * dx + dy * dy, nearest = k;
    }
    seeds.push_back({nearest, static_cast<double>(s.DuStart[i]), static_cast<double>(s.DvStart[i])});
  }
  return seeds;
}

// The job's field on its pictures, prepared over the worker pool. The
// pictures are gone once it returns, before the result is written.
FieldSolution SolvedField(LoadedJob& job, const std::vector<StartSeed>& seeds, WorkerPool& pool) {
  AppState& s = job.s;
  const int32_t width = std::min({s.Lima, s.PixRef.UpperX(), s.PixDef.UpperX()});
  const int32_t height = std::min({s.Hima, s.PixRef.UpperY(), s.PixDef.UpperY()});
  const SampledPair pair(s.PixRef, s.PixDef, width, height, InterpolantOf(s), pool);
  return SolveField(ProblemOf(job, pair.ref, pair.def, pool), seeds, pool);
}

}  // namespace

bool ResultWouldOverwrite(const std::string& dataPath) {
  // The system cuts a name at a control character, so two names that differ
  // after one may be the same file.
  const bool cut = std::any_of(dataPath.begin(), dataPath.end(),
                               [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; });
  return cut || ResultPathOf(dataPath) == dataPath;
}

JobOutcome RunDataFile(const std::string& dataDir, const std::string& name, const JobOptions& options) {
  const std::string path = JoinPath(dataDir, name);
  const std::optional<std::string> dataText = ReadWholeFile(path);
  if (!dataText) return Failure(path + ": the data file can't be read");
  if (ResultWouldOverwrite(path)) return Failure(path + ": its result would be written over the data file itself");
  if (const auto resultFrom = KeyFile::Parse(*dataText).Text("INCREMENTAL", "ResultFrom"))
    return RunIncrementalMember(dataDir, name, *resultFrom, options);
  WorkerPool pool(options.threads);
  auto job = std::make_unique<LoadedJob>();
  if (auto error = LoadJob(*job, dataDir, name, &pool)) return Failure(*error);
  const AppState& s = job->s;
  const auto found = StartSeeds(s);
  if (const auto* problem = std::get_if<std::string>(&found)) return Failure(path + ": " + *problem);
  const auto& seeds = std::get<std::vector<StartSeed>>(found);
  if (seeds.empty()) return Failure(path + ": no start point with a known displacement");

  const FieldSolution field = SolvedField(*job, seeds, pool);
  for (size_t i = 0; i < seeds.size(); ++i)
    if (!field.seedGood[i])
      return Failure(path + ": start point at (" + std::to_string(s.XPat[seeds[i].pattern]) + ", " +
                     std::to_string(s.YPat[seeds[i].pattern]) + ") finds no correlation (blank or featureless region?)");

  JobOutcome outcome{true, "", s.NbPat, 0};
  for (int32_t k = 1; k <= s.NbPat; ++k) outcome.bad += field.patterns[k].good ? 0 : 1;
  // A failed pattern's warp may have diverged: it is written as no displacement.
  const auto record = [&](int32_t k) -> PatternRecord {
    const PatternSolution& p = field.patterns[k];
    const Warp warp = p.good ? p.warp : Warp{};
    return {p.good, s.XPat[k], s.YPat[k], warp, p.iterations, p.side, QualityOf(s.Correlation, p.zncc)};
  };
  const std::string picAna = job->pictures.picRefini.value_or(s.PicRefName);
  if (!WriteResultFile(ResultPathOf(path), *dataText, picAna, s.NbPat, record, s.LpatEven, s.Lpas, pool))
    return Failure(ResultPathOf(path) + ": the result file can't be written");
  return outcome;
}

}  // namespace tessiva::solver

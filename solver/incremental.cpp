#include "incremental.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <vector>

#include "state/keyfile.h"
#include "jobsetup.h"
#include "resultwriter.h"
#include "setup/picture.h"
#include "state/files.h"
#include "state/numtext.h"
#include "workerpool.h"

namespace tessiva::solver {
namespace {

JobOutcome Failure(std::string message) { return {false, std::move(message), 0, 0}; }

// The field of a result file, per pattern as written: flag and first-order warp.
struct CarriedPattern {
  bool good = false;
  Warp warp;
};

std::vector<std::string> Lines(const std::string& text) { return SplitLines(text); }

// The [RESULTS] block read back: the centre displacement of line 1 and the
// gradient of lines 2 and 3 (the coefficients are gradients times L).
std::vector<CarriedPattern> CarriedField(const std::vector<std::string>& block, int32_t lpatEven) {
  std::vector<CarriedPattern> field(1);
  const auto numbers = [](const std::string& line) {
    std::vector<double> values;
    for (const std::string& token : SplitText(Trim(line), " "))
      if (!token.empty()) values.push_back(ValNorm(token));
    return values;
  };
  const double l = lpatEven;
  for (size_t i = 0; i + 3 < block.size(); i += 4) {
    const auto first = numbers(block[i]), u = numbers(block[i + 1]), v = numbers(block[i + 2]);
    if (first.size() < 5 || u.size() < 4 || v.size() < 4) break;
    field.push_back({first[0] == -1, {first[3], u[0] / l, u[1] / l, first[4], v[0] / l, v[1] / l}});
  }
  return field;
}

// The previous result split at its [RESULTS] line.
bool SplitResult(const std::string& text, std::string& head, std::vector<std::string>& block) {
  const std::vector<std::string> lines = Lines(text);
  for (size_t i = 0; i < lines.size(); ++i) {
    if (ToLower(Trim(lines[i])).starts_with("[results]")) {
      block.assign(lines.begin() + static_cast<std::ptrdiff_t>(i) + 1, lines.end());
      return true;
    }
    head += lines[i] + "\n";
  }
  return false;
}

// The head of this member's result: the stub (banner, pictures, ResultFrom)
// followed by every other section of the previous head (areas, parameters...),
// so that the next member finds them here in turn.
std::string MemberHead(const std::string& stub, const std::string& previousHead) {
  std::string out = stub;
  if (!out.empty() && out.back() != '\n') out += '\n';
  bool keep = false;
  for (const std::string& line : Lines(previousHead)) {
    const std::string name = ToLower(Trim(line));
    if (name.starts_with("["))
      keep = !(name.starts_with("[release]") || name.starts_with("[pictures]") || name.starts_with("[incremental]"));
    if (keep && !Trim(line).empty()) out += line + "\n";
  }
  return out;
}

// Displacement from the first picture after adding an increment w that holds
// round the place the point reached: u' = u + w(p), grad u' = grad w (I + grad u) + grad u.
Warp Accumulate(const Warp& total, const Warp& w, double offX, double offY) {
  Warp out;
  out.u = total.u + w.u + w.ux * offX + w.uy * offY;
  out.v = total.v + w.v + w.vx * offX + w.vy * offY;
  out.ux = total.ux + w.ux * (1 + total.ux) + w.uy * total.vx;
  out.uy = total.uy + w.ux * total.uy + w.uy * (1 + total.vy);
  out.vx = total.vx + w.vx * (1 + total.ux) + w.vy * total.vx;
  out.vy = total.vy + w.vx * total.uy + w.vy * (1 + total.vy);
  return out;
}

}  // namespace

JobOutcome RunIncrementalMember(const std::string& dataDir, const std::string& name, const std::string& resultFrom,
                                const JobOptions& options) {
  const std::string path = JoinPath(dataDir, name), previousPath = JoinPath(dataDir, resultFrom);
  const auto stub = ReadWholeFile(path);
  const auto previous = ReadWholeFile(ResolvePathNoCase(previousPath));
  if (!stub) return Failure(path + ": the data file can't be read");
  if (ResultPathOf(path) == previousPath)
    return Failure(path + ": its result would be written over its previous result " + previousPath);
  std::string previousHead;
  std::vector<std::string> block;
  if (!previous || !SplitResult(*previous, previousHead, block))
    return Failure(path + ": its previous result " + previousPath + " is missing or has no [RESULTS]");

  // Areas, grid and parameters of the previous result; the pictures of this member.
  WorkerPool pool(options.threads);
  auto job = std::make_unique<LoadedJob>();
  if (auto error = LoadJob(*job, dataDir, resultFrom, &pool)) return Failure(path + ": previous result " + *error);
  const AppState& s = job->s;
  const KeyFile stubKeys = KeyFile::Parse(*stub);
  const std::string refName = stubKeys.Text("PICTURES", "PicRef").value_or("");
  const std::string defName = stubKeys.Text("PICTURES", "PicDef").value_or("");
  if (refName.empty() || defName.empty()) return Failure(path + ": [PICTURES] names no reference or deformed picture");
  AppState pair;  // this member's pictures, apart from the grid of the previous result
  if (std::string problem = ReadPicturePair(JoinPath(dataDir, refName), JoinPath(dataDir, defName), pair, &pool);
      !problem.empty())
    return Failure(path + ": " + problem);
  const std::vector<CarriedPattern> carried = CarriedField(block, s.LpatEven);
  if (static_cast<int32_t>(carried.size()) - 1 != s.NbPat)
    return Failure(path + ": its previous result doesn't match its grid");

  const int32_t width = std::min(pair.PixRef.UpperX(), pair.PixDef.UpperX());
  const int32_t height = std::min(pair.PixRef.UpperY(), pair.PixDef.UpperY());
  const SampledPair pictures(pair.PixRef, pair.PixDef, width, height, InterpolantOf(s), pool);
  FieldProblem problem = ProblemOf(*job, pictures.ref, pictures.def, pool);
  problem.largeStrain = false;  // an increment is small: each pattern starts from none
  // Subsets stand at the whole pixel nearest to where each pattern has got to.
  std::vector<StartSeed> seeds;
  for (int32_t k = 1; k <= s.NbPat; ++k) {
    problem.x[k] = static_cast<int32_t>(std::lround(s.XPat[k] + carried[k].warp.u));
    problem.y[k] = static_cast<int32_t>(std::lround(s.YPat[k] + carried[k].warp.v));
    if (carried[k].good) seeds.push_back({k, 0.0, 0.0});
  }
  if (seeds.empty()) return Failure(path + ": its previous result has no good pattern");
  const FieldSolution field = SolveField(problem, seeds, pool);

  const auto good = [&](int32_t k) { return carried[k].good && field.patterns[k].good; };
  JobOutcome outcome{true, "", s.NbPat, 0};
  for (int32_t k = 1; k <= s.NbPat; ++k) outcome.bad += good(k) ? 0 : 1;
  const auto record = [&](int32_t k) -> PatternRecord {
    const PatternSolution& p = field.patterns[k];
    const double offX = s.XPat[k] + carried[k].warp.u - problem.x[k], offY = s.YPat[k] + carried[k].warp.v - problem.y[k];
    return {good(k), s.XPat[k], s.YPat[k], good(k) ? Accumulate(carried[k].warp, p.warp, offX, offY) : Warp{},
            p.iterations, p.side, QualityOf(s.Correlation, p.zncc)};
  };
  const std::string picAna = stubKeys.Text("PICTURES", "PicRefini").value_or(refName);
  const std::string head = MemberHead(*stub, previousHead);
  if (!WriteResultFile(ResultPathOf(path), head, picAna, s.NbPat, record, s.LpatEven, s.Lpas, pool))
    return Failure(ResultPathOf(path) + ": the result file can't be written");
  return outcome;
}

}  // namespace tessiva::solver

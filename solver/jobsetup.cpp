#include "jobsetup.h"

#include <algorithm>
#include <filesystem>

#include "formats/datafile.h"
#include "formats/sections.h"
#include "state/files.h"

namespace tessiva::solver {
namespace {

bool PictureMissing(const std::string& path) {
  std::error_code ec;
  return path.empty() || !std::filesystem::is_regular_file(ResolvePathNoCase(path), ec);
}

}  // namespace

std::optional<std::string> LoadJob(LoadedJob& job, const std::string& dataDir, const std::string& name) {
  AppState& s = job.s;
  s.LastDir = s.StartDir = dataDir;
  s.ResizeSequence(1);
  s.DataFileName[1] = name;
  s.DataFilePath[1] = JoinPath(dataDir, name);
  if (!LecDonArea(job.form, 1, false)) {
    for (const std::string* picture : {&s.PicRefPath, &s.PicDefPath})
      if (!picture->empty() && PictureMissing(*picture)) return name + ": picture " + *picture + " is missing or unreadable";
    return name + ": not a readable data file";
  }
  if (s.NbPat == 0) return name + ": no pattern lies inside its areas";
  return std::nullopt;
}

Interpolant InterpolantOf(const AppState& s) {
  return s.Interpolation == 0 ? Interpolant::Bilinear : Interpolant::CubicBSpline;
}

FieldProblem ProblemOf(LoadedJob& job, const SampledPicture& ref, const SampledPicture& def, int32_t threads) {
  const AppState& s = job.s;
  const PatternGrid& grid = job.form.Engine().grid;
  FieldProblem p;
  p.ref = &ref;
  p.def = &def;
  p.x.assign(s.XPat.begin(), s.XPat.begin() + s.NbPat + 1);
  p.y.assign(s.YPat.begin(), s.YPat.begin() + s.NbPat + 1);
  p.neighbours.resize(p.x.size());
  for (int32_t k = 1; k <= s.NbPat; ++k) {
    const int32_t x = s.XPat[k], y = s.YPat[k], step = s.Lpas;
    p.neighbours[k] = {grid.PatternAt(x - step, y), grid.PatternAt(x + step, y), grid.PatternAt(x, y - step),
                       grid.PatternAt(x, y + step)};
  }
  p.sideMin = s.LpatMin | 1;  // an odd side centres the subset on the pattern's pixel
  p.sideMax = s.LpatMax | 1;
  // The setup window's parameter fields reset Precision while reading, so it comes from the file.
  const int32_t precision = std::clamp(SectionReader("PARAMETERS", s.DataFile).Int("Precision", 100), 1, 1000);
  p.icgn.tolerance = 1.0 / precision;
  p.largeStrain = s.LargeStrain != 0;
  p.threads = threads;
  return p;
}

}  // namespace tessiva::solver

#include "jobsetup.h"

#include "formats/datafile.h"
#include "formats/sections.h"
#include "setup/areas.h"
#include "setup/picture.h"
#include "state/files.h"
#include "state/numtext.h"
#include "state/parameters.h"
#include "workerpool.h"

namespace tessiva::solver {
namespace {

// The areas of the file and those its gauges lay, as the setup window stores them.
void StoreAreas(const AreaContent& areas, AppState& s) {
  ApplyOutlines(areas.outlines, s);
  for (int32_t i = 1; i <= areas.gages.Count(); ++i) StoreGaugeAreas(s, areas.gages.Get(i), i);
}

}  // namespace

std::string ReadPicturePair(const std::string& refPath, const std::string& defPath, AppState& s, WorkerPool* pool) {
  // Correlated at the file's full depth, so that 12- and 16-bit cameras get their accuracy.
  std::string problems[2];
  const auto read = [&](int32_t i, int32_t) {
    problems[i] = i == 0 ? ReadWholePicture(refPath, s.PixRef, &s.PicRefPalette, PictureDepth::kFull)
                         : ReadWholePicture(defPath, s.PixDef, &s.PicDefPalette, PictureDepth::kFull);
  };
  if (pool) {
    pool->ForEach(2, read);
  } else {
    for (int32_t i : {0, 1}) read(i, 0);
  }
  if (!problems[0].empty()) return problems[0];
  if (!problems[1].empty()) return problems[1];
  if (s.PixDef.UpperX() != s.PixRef.UpperX() || s.PixDef.UpperY() != s.PixRef.UpperY())
    return "picture " + PrintableName(defPath) + " is " + std::to_string(s.PixDef.UpperX()) + " x " +
           std::to_string(s.PixDef.UpperY()) + " pixels, but the reference picture " + PrintableName(refPath) +
           " is " + std::to_string(s.PixRef.UpperX()) + " x " + std::to_string(s.PixRef.UpperY());
  // The grid follows the deformed picture's size, as when the setup window loads the pair.
  s.Lima = s.PixDef.UpperX();
  s.Hima = s.PixDef.UpperY();
  return {};
}

std::optional<std::string> LoadJob(LoadedJob& job, const std::string& dataDir, const std::string& name,
                                   WorkerPool* pool) {
  AppState& s = job.s;
  s.LastDir = s.StartDir = dataDir;
  s.DataFile = JoinPath(dataDir, name);
  const std::optional<std::string> text = ReadWholeFile(s.DataFile);
  if (!text) return name + ": the data file can't be read";
  const Parsed<DataFileContent> content = ParseDataFile(*text);
  if (!content) return name + ": " + content.Error().message;
  job.pictures = content->pictures;
  s.PicRefName = content->pictures.picRef;
  s.PicDefName = content->pictures.picDef;
  s.PicRefPath = JoinPath(dataDir, s.PicRefName);
  s.PicDefPath = JoinPath(dataDir, s.PicDefName);
  if (std::string problem = ReadPicturePair(s.PicRefPath, s.PicDefPath, s, pool); !problem.empty())
    return name + ": " + problem;
  ApplyParameters(content->parameters, s);
  ClampParameters(s);
  // The pattern store and the analysis mesh, sized for every pattern the
  // picture could hold, are never read here: about 700 bytes a pattern, 700 MB
  // on a 4096 x 4096 picture at a 4-pixel step, and clearing them would hold
  // up the start. Laying the grid sizes the pattern positions it fills.
  if (!SetPatternCapacity(s)) return name + ": " + TooManyPatternsMessage(s);
  StoreAreas(content->areas, s);
  if (LayPatterns(s, job.grid) == 0) return name + ": no pattern lies inside its areas";
  ApplyStartPoints(content->areas.startPoints, s);
  return std::nullopt;
}

Interpolant InterpolantOf(const AppState& s) {
  return s.Interpolation == 0 ? Interpolant::Bilinear : Interpolant::CubicBSpline;
}

FieldProblem ProblemOf(const LoadedJob& job, const SampledPicture& ref, const SampledPicture& def, WorkerPool& pool) {
  const AppState& s = job.s;
  FieldProblem p;
  p.ref = &ref;
  p.def = &def;
  p.x.assign(s.XPat.begin(), s.XPat.begin() + s.NbPat + 1);
  p.y.assign(s.YPat.begin(), s.YPat.begin() + s.NbPat + 1);
  p.neighbours.resize(p.x.size());
  pool.ForEach(s.NbPat, [&](int32_t i, int32_t) {
    const int32_t k = i + 1, x = s.XPat[k], y = s.YPat[k], step = s.Lpas;
    p.neighbours[k] = {job.grid.PatternAt(x - step, y), job.grid.PatternAt(x + step, y),
                       job.grid.PatternAt(x, y - step), job.grid.PatternAt(x, y + step)};
  });
  p.sideMin = s.LpatMin | 1;  // an odd side centres the subset on the pattern's pixel
  p.sideMax = s.LpatMax | 1;
  p.icgn.tolerance = 1.0 / s.Precision;
  p.largeStrain = s.LargeStrain != 0;
  p.threads = pool.Workers();
  return p;
}

}  // namespace tessiva::solver

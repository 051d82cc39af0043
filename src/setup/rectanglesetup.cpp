#include "setup/rectanglesetup.h"

#include <algorithm>
#include <tuple>

#include "formats/datafile.h"
#include "setup/areas.h"
#include "setup/grid.h"
#include "setup/picture.h"
#include "setup/startsearch.h"
#include "state/files.h"
#include "state/numtext.h"
#include "state/parameters.h"
#include "state/settings.h"

namespace tessiva {
namespace {

std::string PointText(int32_t x, int32_t y) { return "(" + StrTrim(x) + ", " + StrTrim(y) + ")"; }

// The area given, or the picture less its margins; the pattern size is the
// one in force, as the parameters keep it within their limits.
RectangleSetup::Corners AreaOf(const RectangleSetup& job, const AppState& s) {
  if (job.area) return *job.area;
  const int32_t width = s.PixRef.UpperX(), height = s.PixRef.UpperY();
  const int32_t mx = std::max(s.LpatMax, width / 10), my = std::max(s.LpatMax, height / 10);
  return {mx, my, width - mx, height - my};
}

}  // namespace

// A rectangle's grid is connected, so every pattern can be reached from the
// start point and no walk needs to check it.
std::string SetUpRectangle(const RectangleSetup& job) {
  AppState s;
  s.Title = kProgramTitle;
  s.LastDir = s.StartDir = job.dir;
  s.PicRefName = job.ref;
  s.PicDefName = job.def;
  s.PicRefPath = JoinPath(job.dir, job.ref);
  s.PicDefPath = JoinPath(job.dir, job.def);
  if (!ChargePicArea(s) || s.PixRef.Empty())
    return "the pictures " + s.PicRefPath + " and " + s.PicDefPath + " can't be read";

  std::tie(s.Lgrid, s.LpatMin, s.LpatMax, s.Interpolation, s.Correlation, s.LargeStrain, s.Precision) =
      std::tuple(job.lgrid, job.lpatMin, job.lpatMax, job.interpolation, 1, job.largeStrain, job.precision);
  ClampParameters(s);
  if (!AllocPat(s)) return TooManyPatternsMessage(s);
  const auto [x1, y1, x2, y2] = AreaOf(job, s);
  const int32_t width = s.PixRef.UpperX(), height = s.PixRef.UpperY();
  const std::string size = StrTrim(width) + " x " + StrTrim(height) + " pixels";
  if (!job.area && (x1 >= x2 || y1 >= y2))
    return "the picture of " + size + " is too small for patterns of " + StrTrim(s.LpatMax) + " pixels";
  if (x1 < 0 || y1 < 0 || x2 > width || y2 > height || x1 >= x2 || y1 >= y2 ||
      !StoreArea(s, {{x1, y1}, {x2, y1}, {x2, y2}, {x1, y2}, {x1, y1}}, 0))
    return "the area " + PointText(x1, y1) + " - " + PointText(x2, y2) + " doesn't lie inside the picture of " + size;
  PatternGrid grid;
  if (LayPatterns(s, grid) < 1) return "the area holds no pattern";

  if (job.withStart) {
    const int32_t x = (x1 + x2) / 2, y = (y1 + y2) / 2;
    int32_t du = 0, dv = 0;
    if (job.startDisplacement)
      std::tie(du, dv) = *job.startDisplacement;
    else if (StartSearch search; !search.ChercheSoluArea(s, x, y, du, dv))
      return "no displacement found for the start point " + PointText(x, y);
    s.ResizeStartPoints(s.NbStart = 1);
    std::tie(s.XStart[1], s.YStart[1], s.DuStart[1], s.DvStart[1]) = std::tuple(x, y, du, dv);
    s.StartOk[1] = true;
  }

  const std::string path = JoinPath(job.dir, job.dataName);
  // The area store's free slot isn't written.
  if (!WriteFileAtomically(path, DataFileText(DataFileContentOf(s, s.NbBox - 1, {}, {}))))
    return path + " could not be written";
  return {};
}

}  // namespace tessiva

#include "setup/rectanglesetup.h"

#include <algorithm>
#include <tuple>

#include "formats/datafile.h"
#include "setup/areaform.h"
#include "setup/areas.h"
#include "state/files.h"
#include "state/numtext.h"
#include "ui/scriptedui.h"

namespace tessiva {
namespace {

std::string PointText(int32_t x, int32_t y) { return "(" + StrTrim(x) + ", " + StrTrim(y) + ")"; }

// The area given, or the picture less its margins; the pattern size is the
// one in force, as the parameters window keeps it within its limits.
RectangleSetup::Corners AreaOf(const RectangleSetup& job, const AppState& s) {
  if (job.area) return *job.area;
  const int32_t width = s.PixRef.UpperX(), height = s.PixRef.UpperY();
  const int32_t mx = std::max(s.LpatMax, width / 10), my = std::max(s.LpatMax, height / 10);
  return {mx, my, width - mx, height - my};
}

}  // namespace

std::string SetUpRectangle(const RectangleSetup& job) {
  AppState s;
  ControlRegistry frame;
  ScriptedUi ui{frame};
  Param param{s};
  AreaForm form{s, ui, param};
  s.LastDir = s.StartDir = job.dir;
  s.PicRefName = job.ref;
  s.PicDefName = job.def;
  s.PicRefPath = JoinPath(job.dir, job.ref);
  s.PicDefPath = JoinPath(job.dir, job.def);
  if (!form.LoadPictures()) return "the pictures " + s.PicRefPath + " and " + s.PicDefPath + " can't be read";

  std::tie(s.Lgrid, s.LpatMin, s.LpatMax, s.Interpolation, s.Correlation, s.LargeStrain) =
      std::tuple(job.lgrid, job.lpatMin, job.lpatMax, job.interpolation, 1, job.largeStrain);
  param.Controls().SetText("Text4", StrTrim(job.precision));
  param.ParamShow();
  const auto [x1, y1, x2, y2] = AreaOf(job, s);
  const int32_t width = s.PixRef.UpperX(), height = s.PixRef.UpperY();
  const std::string size = StrTrim(width) + " x " + StrTrim(height) + " pixels";
  if (!job.area && (x1 >= x2 || y1 >= y2))
    return "the picture of " + size + " is too small for patterns of " + StrTrim(s.LpatMax) + " pixels";
  if (x1 < 0 || y1 < 0 || x2 > width || y2 > height || x1 >= x2 || y1 >= y2 ||
      !StoreArea(s, {{x1, y1}, {x2, y1}, {x2, y2}, {x1, y2}, {x1, y1}}, 0))
    return "the area " + PointText(x1, y1) + " - " + PointText(x2, y2) + " doesn't lie inside the picture of " + size;
  form.CreateRectArea();
  if (s.NbPat < 1) return "the area holds no pattern";

  if (job.withStart) {
    const int32_t x = (x1 + x2) / 2, y = (y1 + y2) / 2;
    int32_t du = 0, dv = 0;
    if (job.startDisplacement)
      std::tie(du, dv) = *job.startDisplacement;
    else if (!form.Engine().search.ChercheSoluArea(s, x, y, du, dv))
      return "no displacement found for the start point " + PointText(x, y);
    s.ResizeStartPoints(s.NbStart = 1);
    std::tie(s.XStart[1], s.YStart[1], s.DuStart[1], s.DvStart[1]) = std::tuple(x, y, du, dv);
    s.StartOk[1] = true;
    s.CurStart = 1;
    form.Engine().silent = true;
    form.PropagArea();
    if (form.Engine().walk.PropagDone != -1) return "some patterns can't be reached from the start point";
  }

  s.ResizeSequence(1);
  s.DataFileName[1] = job.dataName;
  s.DataFilePath[1] = JoinPath(job.dir, job.dataName);
  form.Controls().SetText("Text1", job.dataName);
  if (!SauveDonArea(form, 1)) return s.DataFilePath[1] + " could not be written";
  return {};
}

}  // namespace tessiva

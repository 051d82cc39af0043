#include "setup/grid.h"

#include <algorithm>

#include "setup/areaform.h"
#include "setup/areas.h"
#include "setup/correlation.h"
#include "state/numtext.h"
#include "state/index.h"

namespace tessiva {
namespace {

// How much longer than the longest column run the walk looks for a neighbour's number.
constexpr int32_t kBandMargin = 10;

int32_t StateOf(const std::vector<int32_t>& patState, int32_t p) {
  return At(p) < patState.size() ? patState[At(p)] : 0;
}

Colour OutlineColour(int32_t state) {
  if (state == -1) return QBColor(11);
  if (state == 2 || state == 3) return QBColor(13);
  return QBColor(12);
}

}  // namespace

GridFrame GridFrame::For(int32_t lima, int32_t hima, int32_t lpas) {
  GridFrame f;
  f.Lpas = lpas;
  f.XGridMin = f.YGridMin = f.XGridMax = f.YGridMax = lpas;
  if (lpas <= 0) return f;
  f.XGridMax = lpas + lpas * static_cast<int32_t>(Fix(static_cast<double>(lima - lpas) / lpas));
  f.YGridMax = lpas + lpas * static_cast<int32_t>(Fix(static_cast<double>(hima - lpas) / lpas));
  return f;
}

int32_t GridFrame::Columns() const { return Lpas > 0 && XGridMax >= XGridMin ? (XGridMax - XGridMin) / Lpas + 1 : 0; }
int32_t GridFrame::Rows() const { return Lpas > 0 && YGridMax >= YGridMin ? (YGridMax - YGridMin) / Lpas + 1 : 0; }
int32_t GridFrame::Cells() const { return std::max(Columns() - 1, 0) * std::max(Rows() - 1, 0); }

// A grid point of column index i has the cell of index i - 1: the first
// column and row of points belong to no cell.
int32_t GridFrame::DonIRec(double x, double y) const {
  if (Lpas <= 0) return 0;
  const double half = Lpas / 2.0;
  if (!(x >= XGridMin + half && x <= XGridMax) || !(y >= YGridMin + half && y <= YGridMax)) return 0;
  const double ix = Int((x - XGridMin - half) / Lpas);
  const double iy = Int((y - YGridMin - half) / Lpas);
  const double c = Int(static_cast<double>(YGridMax - YGridMin) / Lpas) * ix + iy;
  return c < 0 ? 0 : static_cast<int32_t>(c) + 1;
}

int32_t PatternGrid::PatternAt(int64_t x, int64_t y) const {
  const int64_t step = frame.Lpas;
  if (step <= 0) return 0;
  const int64_t dx = x - frame.XGridMin, dy = y - frame.YGridMin;
  if (dx < 0 || dy < 0 || dx % step != 0 || dy % step != 0) return 0;
  const int64_t i = dx / step, j = dy / step, rows = frame.Rows();
  if (i >= frame.Columns() || j >= rows) return 0;
  const size_t index = At(i * rows + j);
  return index < PatAt.size() ? PatAt[index] : 0;
}

int32_t PatternGrid::PatternOfCell(double x, double y) const {
  const size_t cell = At(frame.DonIRec(x, y));
  return cell < IRecPat.size() ? IRecPat[cell] : 0;
}

int32_t LayPatterns(AppState& s, PatternGrid& grid) {
  const GridFrame frame = GridFrame::For(s.Lima, s.Hima, s.Lpas);
  s.XGridMin = frame.XGridMin;
  s.XGridMax = frame.XGridMax;
  s.YGridMin = frame.YGridMin;
  s.YGridMax = frame.YGridMax;
  const int32_t columns = frame.Columns(), rows = frame.Rows();
  const size_t points = At(int64_t{columns} * rows);
  grid.frame = frame;
  grid.PatAt.assign(points, 0);
  grid.IRecPat.assign(At(frame.Cells()) + 1, 0);
  grid.BoxPat.assign(points + 1, 0);
  if (s.XPat.size() <= points) s.XPat.resize(points + 1);
  if (s.YPat.size() <= points) s.YPat.resize(points + 1);

  const AreaEdges edges(s, frame);
  int32_t n = 0;
  int32_t longestRun = 0;
  for (int32_t i = 0; i < columns; ++i) {
    const int32_t x = frame.XGridMin + i * frame.Lpas;
    int32_t run = 0;
    for (int32_t j = 0; j < rows; ++j) {
      const int32_t y = frame.YGridMin + j * frame.Lpas;
      const int32_t area = RoundToInt32(edges.InSurfArea(x, y));
      if (area == 0) continue;
      if (n > 0 && s.XPat[At(n)] == x) longestRun = std::max(longestRun, ++run);
      ++n;
      s.XPat[At(n)] = x;
      s.YPat[At(n)] = y;
      grid.BoxPat[At(n)] = area;
      grid.IRecPat[At(frame.DonIRec(x, y))] = n;
      grid.PatAt[At(int64_t{i} * rows + j)] = n;
    }
  }
  // Patterns of the first column and row all land in cell 0, which means "no pattern".
  grid.IRecPat[0] = 0;
  grid.ColBand = longestRun + kBandMargin;
  s.NbPat = n;
  return n;
}

// Of equal advisor values the first pattern stays, and 0 never becomes the best.
void RankPatterns(const AppState& s, PatternGrid& grid) {
  std::array<double, AppState::kMaxAreas + 1> best{};
  grid.BestPat.fill(0);
  for (int32_t p = 1; p <= PatternsInStore(s); ++p) {
    const size_t area = At(grid.BoxPat[At(p)]);
    if (area >= best.size()) continue;
    const double v = CorrelAreaI(s, grid, s.XPat[At(p)], s.YPat[At(p)]);
    if (v > best[area]) {
      best[area] = v;
      grid.BestPat[area] = p;
    }
  }
}

int32_t PatternsInStore(const AppState& s) {
  const size_t stored = std::min(s.XPat.size(), s.YPat.size());
  return stored == 0 ? 0 : std::clamp(s.NbPat, 0, static_cast<int32_t>(stored - 1));
}

bool PatternStored(const AppState& s, int32_t p) { return p >= 0 && At(p) < s.XPat.size() && At(p) < s.YPat.size(); }

CanvasBox PatternSquare(const AppState& s, int32_t lpas, int32_t p, Colour colour) {
  const double half = lpas / 2.0, x = s.XPat[At(p)], y = s.YPat[At(p)];
  return {Round(x - half), Round(y - half), Round(x + half), Round(y + half), colour};
}

void AffichePatternArea(Canvas& canvas, const AppState& s, int32_t lpas, int32_t p, Colour colour) {
  const CanvasBox b = PatternSquare(s, lpas, p, colour);
  canvas.FilledBox(b.x1, b.y1, b.x2, b.y2, b.colour);
}

void AfficheRectArea(Canvas& canvas, const AppState& s, int32_t lpas, const std::vector<int32_t>& patState) {
  std::vector<CanvasBox> outlines;
  outlines.reserve(At(PatternsInStore(s)));
  for (int32_t p = 1; p <= PatternsInStore(s); ++p)
    outlines.push_back(PatternSquare(s, lpas, p, OutlineColour(StateOf(patState, p))));
  canvas.SetDrawWidth(1);
  canvas.SetDrawMode(DrawMode::CopyPen);
  canvas.Boxes(outlines);
}

void CroixRefArea(Canvas& canvas, double x, double y, Colour colour) {
  canvas.Line(x - 1, y, x + 1, y, colour);
  canvas.Line(x, y - 1, x, y + 1, colour);
}

namespace setup {

void CreateRectArea(AreaForm& form) {
  AppState& s = form.State();
  SetupEngine& engine = form.Engine();
  form.DeleteGrille();
  BusyPointer busy(form.Ui());
  form.Parameters().ParamRead();
  s.Lpas = 2 * static_cast<int32_t>(Int(s.Lgrid / 2.0));
  const int32_t n = LayPatterns(s, engine.grid);
  engine.walk.Renew(n);
  form.Ui().StatusLine(StrTrim(n) + " patterns created");
  form.Ui().DoEvents();
  RankPatterns(s, engine.grid);
  form.AreAPicRefRefresh();
  form.AreAPicDefRefresh();
  if (n == 0) return;
  ControlRegistry& controls = form.Controls();
  controls.SetEnabled("Toolbar2.InitialSolution", true);
  controls.SetChecked("Timer1", true);
  controls.SetVisible("FlashInfo", true);
  form.Ui().StatusLine("After now, you can give intial solution for the correlation, follow the blink hand !");
}

void DeleteGrille(AreaForm& form) {
  AppState& s = form.State();
  PatternGrid& grid = form.Engine().grid;
  DeleteSoluIni(form);
  grid.BestPat.fill(0);
  std::fill(grid.IRecPat.begin(), grid.IRecPat.end(), 0);
  std::fill(grid.PatAt.begin(), grid.PatAt.end(), 0);
  std::fill(s.XPat.begin(), s.XPat.end(), 0);
  std::fill(s.YPat.begin(), s.YPat.end(), 0);
  s.NbPat = 0;
  ControlRegistry& controls = form.Controls();
  controls.SetChecked("Timer1", false);
  controls.SetVisible("FlashInfo", false);
  controls.SetEnabled("Toolbar2.InitialSolution", false);
  RestoreCleanPictures(form);
  EnableAreaTools(form, true);
}

namespace {

// The outcome of a finished walk under the outlines of every pattern.
void DrawGrid(AreaForm& form, Canvas& canvas) {
  const SetupEngine& engine = form.Engine();
  BusyPointer busy(form.Ui());
  if (engine.walk.PropagDone != 0) AffichePropag(form);
  AfficheRectArea(canvas, form.State(), engine.grid.frame.Lpas, engine.walk.PatState);
}

}  // namespace

void ShowGrid(AreaForm& form, bool pressed) {
  form.Engine().gridShown = pressed;
  if (!pressed) {
    form.AreAPicRefRefresh();
    return;
  }
  if (Canvas* canvas = form.RefView().GetCanvas()) DrawGrid(form, *canvas);
}

void DrawRefOverlays(AreaForm& form, Canvas& canvas) {
  const AppState& s = form.State();
  if (form.Engine().gridShown) DrawGrid(form, canvas);
  for (int32_t k = 1; k <= s.NbStart && At(k) < s.XStart.size(); ++k)
    MireArea(canvas, s.XStart[At(k)], s.YStart[At(k)], StrTrim(k));
}

void DrawDefOverlays(AreaForm& form, Canvas& canvas) {
  const AppState& s = form.State();
  for (int32_t k = 1; k <= s.NbStart && At(k) < s.XStart.size(); ++k)
    if (s.StartOk[At(k)])
      MireArea(canvas, static_cast<double>(s.XStart[At(k)]) + s.DuStart[At(k)],
               static_cast<double>(s.YStart[At(k)]) + s.DvStart[At(k)], StrTrim(k));
}

void RestoreCleanPictures(AreaForm& form) {
  for (PictureView* view : {&form.RefView(), &form.DefView()}) {
    Canvas* canvas = view->GetCanvas();
    if (!canvas) continue;
    canvas->Clear();
    view->PaintPicture();
    canvas->Refresh();
  }
}

}  // namespace setup
}  // namespace tessiva

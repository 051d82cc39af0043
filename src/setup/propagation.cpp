#include "setup/propagation.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <span>

#include "setup/areaform.h"
#include "state/numtext.h"
#include "state/index.h"

namespace tessiva {
namespace {

// Grid offsets of the eight neighbour directions (index 0 unused).
constexpr std::array<std::array<int, 2>, 9> kDirection = {
    {{0, 0}, {0, 1}, {0, -1}, {1, 0}, {-1, 0}, {1, 1}, {1, -1}, {-1, 1}, {-1, -1}}};
// The directions tried at each of four visits in turn: the straight ones in
// changing orders, and the diagonals only at the second.
constexpr std::array<int, 4> kSweep1 = {1, 2, 3, 4};
constexpr std::array<int, 8> kSweep2 = {8, 7, 6, 5, 4, 3, 2, 1};
constexpr std::array<int, 4> kSweep3 = {4, 3, 2, 1};
constexpr std::array<int, 4> kSweep4 = {1, 2, 3, 4};

std::span<const int> DirectionsOfSweep(int sweep) {
  switch (sweep) {
    case 1: return kSweep1;
    case 2: return kSweep2;
    case 3: return kSweep3;
    default: return kSweep4;
  }
}

// Squares painted during a walk are gathered and handed to the view in
// batches, at the few places where the walk lets the window catch up.
class WalkPainter {
 public:
  WalkPainter(Canvas* canvas, UiPort& ui) : canvas_(canvas), ui_(ui) {}

  void Add(const CanvasBox& box) {
    if (canvas_) pending_.push_back(box);
  }
  void Flush() {
    if (canvas_ && !pending_.empty()) canvas_->FilledBoxes(pending_);
    pending_.clear();
  }
  void CatchUp() {
    Flush();
    ui_.DoEvents();
    if (canvas_) canvas_->Refresh();
  }

 private:
  Canvas* canvas_;
  UiPort& ui_;
  std::vector<CanvasBox> pending_;
};

enum class WalkOutcome { Covered, PatternsLeft, Abandoned };

class Walk {
 public:
  explicit Walk(AreaForm& form)
      : s_(form.State()),
        grid_(form.Engine().grid),
        w_(form.Engine().walk),
        palette_(form.Engine().palette),
        painter_(form.RefView().GetCanvas(), form.Ui()),
        patterns_(PatternsInStore(s_)),
        lpas_(grid_.frame.Lpas),
        tableSize_(At(patterns_) + 2) {
    for (auto* table : {&w_.PatState, &w_.PatOrder, &w_.PatParent})
      if (table->size() < tableSize_) table->resize(tableSize_);
  }

  // Passes from start point `first` down to 1, until the visits cover every pattern.
  WalkOutcome Run(int32_t first) {
    const int32_t lastStored = static_cast<int32_t>(std::min(s_.XStart.size(), s_.YStart.size())) - 1;
    for (int32_t start = std::min(first, lastStored); start >= 1; --start) {
      w_.FoundPat += Pass(start);
      if (abandoned_) return WalkOutcome::Abandoned;
      if (w_.FoundPat >= patterns_ - s_.NbPatBad) return WalkOutcome::Covered;
    }
    return WalkOutcome::PatternsLeft;
  }

  // Bad patterns stand out: light red when the walk reached them, yellow when not.
  void PaintBadPatterns() {
    for (int32_t k = 1; k <= s_.NbPatBad && At(k) < s_.BadPat.size(); ++k) {
      const int32_t p = s_.BadPat[At(k)];
      if (p > patterns_ || !PatternStored(s_, p)) continue;
      painter_.Add(PatternSquare(s_, lpas_, p, QBColor(w_.PatParent[At(p)] != 0 ? 12 : 14)));
    }
  }

  void FinishPainting() { painter_.Flush(); }

 private:
  // A breadth-first walk from the pattern of the start point's cell. Returns
  // its number of visits; the start pattern counts even when reached before.
  int32_t Pass(int32_t start) {
    const int32_t p0 = grid_.PatternOfCell(s_.XStart[At(start)], s_.YStart[At(start)]);
    w_.PatOrder[1] = p0;
    int32_t tail = 1, head = 0, sweep = 0;
    while (head != tail) {
      ++head;
      const int32_t cur = w_.PatOrder[At(head)];
      if (PatternStored(s_, cur)) painter_.Add(PatternSquare(s_, lpas_, cur, VisitColour(head)));
      if (CatchUpDue(head)) {
        painter_.CatchUp();
        // What the window did meanwhile may have renewed the grid or the walk.
        if (!Intact()) {
          abandoned_ = true;
          return head;
        }
      }
      w_.PatState[At(cur)] = Propagation::kReached;
      const std::span<const int> directions = DirectionsOfSweep(++sweep);
      if (sweep == 4) sweep = 0;
      if (!PatternStored(s_, cur)) continue;
      for (const int direction : directions) {
        const int32_t q = Neighbour(cur, direction);
        if (q == 0) continue;
        if (w_.PatState[At(q)] == Propagation::kNotReached) {
          w_.PatState[At(q)] = Propagation::kReached;
          w_.PatOrder[At(++tail)] = q;
        } else {
          w_.PatState[At(q)] = Propagation::kReachedAgain;
        }
        w_.PatParent[At(q)] = cur;
      }
    }
    return head;
  }

  // About five times a walk the window catches up.
  bool CatchUpDue(int32_t head) const {
    if (patterns_ == 0) return false;
    const double share = head / (patterns_ / 5.0);
    return share == std::floor(share);
  }

  bool Intact() const {
    return PatternsInStore(s_) == patterns_ &&
           std::min({w_.PatState.size(), w_.PatOrder.size(), w_.PatParent.size()}) >= tableSize_;
  }

  // The start of a pass in light red, then from dark to light in order of visit.
  Colour VisitColour(int32_t head) const {
    if (head == 1) return QBColor(12);
    double t = static_cast<double>(w_.FoundPat + head) / patterns_;
    return palette_.CouleurEchelle(t, kGreyPalette);
  }

  // The neighbour in a direction that may still be entered: the pattern at
  // that grid place, if its number lies within ColBand of the current one
  // (the neighbours' numbers are that close but for odd shapes) and it is
  // not yet reached.
  int32_t Neighbour(int32_t cur, int direction) const {
    const auto [dx, dy] = kDirection[At(direction)];
    const int32_t q = grid_.PatternAt(int64_t{s_.XPat[At(cur)]} + int64_t{dx} * lpas_,
                                      int64_t{s_.YPat[At(cur)]} + int64_t{dy} * lpas_);
    if (q == 0 || q == cur || q > patterns_ || std::abs(q - cur) > grid_.ColBand) return 0;
    const int32_t state = w_.PatState[At(q)];
    return state == Propagation::kNotReached || state == Propagation::kEnterable ? q : 0;
  }

  AppState& s_;
  const PatternGrid& grid_;
  Propagation& w_;
  const ColourScale& palette_;
  WalkPainter painter_;
  const int32_t patterns_;
  const int32_t lpas_;
  const size_t tableSize_;
  bool abandoned_ = false;
};

std::string Counts(const AppState& s, int32_t found) {
  return StrTrim(found) + " found patterns / " + StrTrim(s.NbPat) + " patterns, " + StrTrim(s.NbPatBad) +
         " are marked as bad";
}

void ReportSuccess(AreaForm& form) {
  ControlRegistry& controls = form.Controls();
  controls.SetChecked("Timer1", false);
  controls.SetVisible("FlashInfo", false);
  controls.SetChecked("Timer2", true);
  controls.SetVisible("FlashInfo2", true);
  form.Ui().StatusLine("Now, you can give a extra initial solution or save tha data file : " +
                       Counts(form.State(), form.Engine().walk.FoundPat));
  controls.SetEnabled("Toolbar1.nextdata", true);
  controls.SetEnabled("Toolbar1.enddata", true);
  form.Engine().walk.PropagDone = -1;
}

void ReportPatternsLeft(AreaForm& form) {
  AppState& s = form.State();
  if (s.CurStart < s.NbStart) ++s.CurStart;
  if (!form.Engine().silent)
    form.Ui().MessageBox(" Give a new initial solution to continue propagation", "", MsgButtons::Ok, MsgIcon::None);
  form.Engine().walk.PropagDone = 0;
  form.Ui().StatusLine(Counts(s, form.Engine().walk.FoundPat));
}

}  // namespace

void Propagation::Renew(int32_t nbPat) {
  const size_t size = At(std::max(nbPat, 0)) + 2;
  PatState.assign(size, kNotReached);
  PatOrder.assign(size, 0);
  PatParent.assign(size, 0);
  FoundPat = 0;
  PropagDone = 0;
}

namespace setup {

void PropagArea(AreaForm& form) {
  if (form.Engine().walk.PropagDone == -1) return;
  Canvas* canvas = form.RefView().GetCanvas();
  const KeptDrawWidth kept(canvas);
  if (canvas) canvas->SetDrawWidth(1);
  form.Ui().StatusLine("Propagation in progress, please wait ...");
  Walk walk(form);
  const WalkOutcome outcome = walk.Run(form.State().CurStart);
  if (outcome == WalkOutcome::Abandoned) return;
  if (outcome == WalkOutcome::Covered) walk.PaintBadPatterns();
  walk.FinishPainting();
  if (outcome == WalkOutcome::Covered)
    ReportSuccess(form);
  else
    ReportPatternsLeft(form);
  if (canvas) canvas->Refresh();
}

void AffichePropag(AreaForm& form) {
  Canvas* canvas = form.RefView().GetCanvas();
  if (!canvas) return;
  const AppState& s = form.State();
  const Propagation& w = form.Engine().walk;
  const int32_t lpas = form.Engine().grid.frame.Lpas;
  const int32_t patterns = PatternsInStore(s);
  std::vector<CanvasBox> squares;
  const int32_t listed = std::min(w.FoundPat, static_cast<int32_t>(w.PatOrder.size()) - 1);
  for (int32_t k = 1; k <= listed; ++k) {
    const int32_t p = w.PatOrder[At(k)];
    if (p > patterns || !PatternStored(s, p)) continue;
    double t = static_cast<double>(k) / w.FoundPat;
    squares.push_back(PatternSquare(s, lpas, p, form.Engine().palette.CouleurEchelle(t, kGreyPalette)));
  }
  for (int32_t k = 1; k <= s.NbPatBad && At(k) < s.BadPat.size(); ++k) {
    const int32_t p = s.BadPat[At(k)];
    if (p <= patterns && PatternStored(s, p) && At(p) < w.PatParent.size())
      squares.push_back(PatternSquare(s, lpas, p, QBColor(w.PatParent[At(p)] != 0 ? 12 : 14)));
  }
  canvas->FilledBoxes(squares);
}

void DeleteSoluIni(AreaForm& form) {
  AppState& s = form.State();
  ControlRegistry& controls = form.Controls();
  controls.SetChecked("Timer2", false);
  controls.SetVisible("FlashInfo2", false);
  form.Engine().walk.Renew(s.NbPat);
  s.NbPatBad = 0;
  std::fill(s.BadPat.begin(), s.BadPat.end(), 0);
  s.NbStart = 0;
  std::fill(s.XStart.begin(), s.XStart.end(), 0);
  std::fill(s.YStart.begin(), s.YStart.end(), 0);
  std::fill(s.DuStart.begin(), s.DuStart.end(), 0);
  std::fill(s.DvStart.begin(), s.DvStart.end(), 0);
  std::fill(s.StartOk.begin(), s.StartOk.end(), false);
  controls.SetEnabled("Toolbar1.nextdata", false);
  controls.SetEnabled("Toolbar1.enddata", false);
  controls.SetEnabled("Toolbar2.InitialSolution", true);
  controls.SetChecked("Toolbar2.InitialSolution", false);
  EnableAreaTools(form, true);
  RestoreCleanPictures(form);
}

}  // namespace setup
}  // namespace tessiva

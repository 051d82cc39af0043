#include "results/resultfile.h"

#include <algorithm>
#include <limits>

#include "state/parameters.h"

namespace tessiva {

int32_t PatternSlots(const AppState& s) {
  const size_t slots =
      std::min({s.FlagPat.size(), s.XPat.size(), s.YPat.size(), s.D1Pat.size(), s.D2Pat.size(), s.AuPat.size(),
                s.BuPat.size(), s.CuPat.size(), s.DuPat.size(), s.AvPat.size(), s.BvPat.size(), s.CvPat.size(),
                s.DvPat.size(), s.Res1Pat.size(), s.Res2Pat.size(), s.Res3Pat.size(), s.NormPat.size()});
  return slots == 0 ? 0 : static_cast<int32_t>(std::min<size_t>(slots - 1, std::numeric_limits<int32_t>::max()));
}

int32_t PatternsHeld(const AppState& s) { return std::clamp(s.NbPat, 0, PatternSlots(s)); }

bool RedimResultats(AppState& s) { return AllocPat(s); }

}  // namespace tessiva

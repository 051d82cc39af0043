// Propagation: can every pattern be reached from the start points by stepping
// from a pattern to its neighbour? The walk compares no grey levels; it is
// painted on the reference view as it goes, and its outcome decides whether
// the data file may be saved.
#pragma once

#include <cstdint>
#include <vector>

namespace tessiva {

class AreaForm;

// The outcome of the walks so far. It survives an incomplete walk, so a new
// start point continues where the last one stopped; only DeleteSoluIni clears it.
struct Propagation {
  static constexpr int32_t kNotReached = 0;
  static constexpr int32_t kReached = -1;
  static constexpr int32_t kReachedAgain = 3;
  // Drawn like kReachedAgain yet still enterable; nothing sets it now.
  static constexpr int32_t kEnterable = 2;

  std::vector<int32_t> PatState;   // per pattern
  std::vector<int32_t> PatOrder;   // visiting list of the last pass
  std::vector<int32_t> PatParent;  // per pattern: the one it was last reached from
  int32_t FoundPat = 0;            // visits over all passes
  int32_t PropagDone = 0;          // -1 once the visits cover every pattern

  // Cleared tables for a grid of nbPat patterns.
  void Renew(int32_t nbPat);
};

namespace setup {

// Walks from the start points CurStart down to 1. The count of visits, not
// the set of patterns reached, decides success, as the solver's data demands.
void PropagArea(AreaForm& form);
// Repaints the outcome of the walk in the order of the visiting list.
void AffichePropag(AreaForm& form);
// Drops all start points and the outcome of the walk.
void DeleteSoluIni(AreaForm& form);

}  // namespace setup
}  // namespace tessiva

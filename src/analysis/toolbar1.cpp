#include "analysis/toolbar1.h"

#include <algorithm>

#include "analysis/picking.h"

namespace tessiva {
namespace {

std::vector<Toolbar1Key> BuildKeys() {
  using K = ToolbarKeyKind;
  std::vector<Toolbar1Key> keys{
      {1, "Parametre", "Show Parameters Windows", K::Plain},
      {2, "", "", K::Separator},
      {kSectionToolButton, "CLF", "FLC Analysis", K::Pressable},
      {10, "", "", K::Separator},
      {11, "combo1", "", K::List},
      {kSaveAOSButton, "SaveAOS", "Save Area Of Selection", K::Plain},
      {13, "", "", K::Separator},
      {kInitialButton, "Initial", "Go to the beginning of the sequence", K::Plain},
      {kPreviousFileButton, "PreviousFile", "Previous file of the sequence", K::Plain},
      {16, "combo4", "", K::List},
      {kNextFileButton, "NextFile", "Next file of the sequence", K::Plain},
      {kFinalButton, "Final", "Go to the end of the sequence", K::Plain},
      {19, "", "", K::Separator},
      {kRunButton, "Run", "Run sequence", K::Plain},
      {kFilmButton, "Film", "Save screen capture", K::Plain},
      {kFilm2Button, "Film2", "Save screen sequence", K::Plain},
  };
  for (const PickToolKey& tool : PickToolKeys()) keys.push_back({tool.button, tool.key, tool.tip, K::Pressable});
  std::sort(keys.begin(), keys.end(), [](const Toolbar1Key& a, const Toolbar1Key& b) { return a.button < b.button; });
  return keys;
}

}  // namespace

const std::vector<Toolbar1Key>& Toolbar1Keys() {
  static const std::vector<Toolbar1Key> keys = BuildKeys();
  return keys;
}

}  // namespace tessiva

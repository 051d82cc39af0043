// The analysis window's tool bar Toolbar1, key by key in button order: the
// parameters, the section tool, the six picking tools, the names of the
// selections and their save key, the sequence navigation with its member
// list, the run and the two captures. Button 2 and the places after the
// rosette, SaveAOS and Final are separators; combo1 and combo4 hold lists.
#pragma once

#include <string_view>
#include <vector>

namespace tessiva {

enum class ToolbarKeyKind {
  Plain,      // a click acts once
  Pressable,  // a tool that stays pressed while armed
  List,       // the place of a list (Combo1, Combo4)
  Separator,
};

struct Toolbar1Key {
  int button;  // its index on Toolbar1, from 1
  std::string_view key;
  std::string_view tip;
  ToolbarKeyKind kind;
};

// Every button of Toolbar1 in order.
const std::vector<Toolbar1Key>& Toolbar1Keys();

inline constexpr int kInitialButton = 14, kPreviousFileButton = 15, kNextFileButton = 17, kFinalButton = 18,
                     kRunButton = 20, kFilmButton = 21, kFilm2Button = 22;

}  // namespace tessiva

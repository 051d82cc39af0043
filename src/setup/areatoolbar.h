// The setup window's two tool bars: which button sits at which place, its key,
// its tooltip and how it behaves, and the registry name each is mirrored under.
// The window logic and the Qt view both read these tables.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace tessiva {

struct ToolbarButton {
  enum Kind {
    kSeparator,
    kPlain,        // one click
    kTool,         // two-state, one of the group of drawing tools: pressing one raises the others
    kToggle,       // two-state on its own
    kPlaceholder,  // holds another control (a list, a text field, a blinking hand, the gauge)
  };
  int index = 0;
  std::string_view key;
  std::string_view tip;
  Kind kind = kSeparator;
  int32_t toolCode = 0;  // for kTool: the code the window holds while it is down
};

// Tool codes held by the setup window while a drawing tool is down.
enum AreaTool : int32_t {
  kNoTool = 0,
  kSliderTool = 1,
  kJaugeTool = 2,
  kRosetteTool = 3,
  kTraitTool = 4,
  kRectangleTool = 5,
  kLibreTool = 6,
  kClfTool = 7,  // the forming-limit band, or the crack tool when the window's crack flag is set
};

// Toolbar2 places of the buttons the logic addresses by place.
inline constexpr int kClfButton = 5;
inline constexpr int kCrackButton = 6;
inline constexpr int kGrilleButton = 10;
inline constexpr int kInitialSolutionButton = 19;

std::span<const ToolbarButton> Toolbar1Buttons();
std::span<const ToolbarButton> Toolbar2Buttons();
// The button at `index` of a bar, null for a place the bar doesn't have.
const ToolbarButton* Toolbar2Button(int index);

// Registry names: "Toolbar1.<key>" on the first bar; "Toolbar2.Button<index>"
// on the second, whose two forming-limit buttons share their key, but for
// "Toolbar2.InitialSolution".
std::string Toolbar1Control(std::string_view key);
std::string Toolbar2Control(int index);

}  // namespace tessiva

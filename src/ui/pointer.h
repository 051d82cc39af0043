// Pointer buttons and modifier keys as the window layers report them.
#pragma once

namespace tessiva {

enum MouseButton : int { kLeftButton = 1, kRightButton = 2, kMiddleButton = 4 };
enum ModifierKey : int { kShiftKey = 1, kCtrlKey = 2, kAltKey = 4 };

}  // namespace tessiva

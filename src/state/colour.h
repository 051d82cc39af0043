// Colours as the program stores and draws them.
#pragma once

#include <cstdint>

namespace tessiva {

using Colour = uint32_t;  // 0xRRGGBB

// The classic 16-colour table: 0 black ... 8 grey, 9 light blue, 10 light green,
// 11 light cyan, 12 light red, 13 light magenta, 14 yellow, 15 white.
Colour QBColor(int code);

}  // namespace tessiva

#include "state/colour.h"

#include <array>
#include <cstddef>

namespace tessiva {

Colour QBColor(int code) {
  static constexpr std::array<Colour, 16> kTable = {
      0x000000, 0x000080, 0x008000, 0x008080, 0x800000, 0x800080, 0x808000, 0xC0C0C0,
      0x808080, 0x0000FF, 0x00FF00, 0x00FFFF, 0xFF0000, 0xFF00FF, 0xFFFF00, 0xFFFFFF};
  return kTable[static_cast<size_t>(code & 15)];
}

}  // namespace tessiva

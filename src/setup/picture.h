// The picture store: 8-bit BMP files read into the grey-level arrays.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "state/appstate.h"

namespace tessiva {

// Reads the reference picture (PicRefPath) and the deformed picture (PicDefPath)
// into PixRef and PixDef; the reference also sizes the picture and pattern
// arrays. A file that isn't a BMP is left alone without a word. Returns false
// when a picture could not be read at all (missing, unreadable, absurd size).
bool ChargePicArea(AppState& s);

// Writes an uncompressed 8-bit BMP with a grey palette: `levels` holds width x
// height bytes, row by row from the top. Used for synthetic pictures and tests.
bool SaveGreyBmp(const std::string& path, int32_t width, int32_t height, const std::vector<uint8_t>& levels);

}  // namespace tessiva

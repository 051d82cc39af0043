// The picture store: 8-bit BMP files read into the grey-level arrays.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "state/appstate.h"

namespace tessiva {

// Reads the reference picture (PicRefPath) and the deformed picture (PicDefPath)
// into PixRef and PixDef, keeping each file's palette beside them, unapplied.
// The reference sets Lima and Hima and renews the picture and pattern arrays;
// the deformed picture then sets Lima and Hima too, but lands in the arrays the
// reference sized, clipped to them. A file that isn't a BMP is passed over
// without a word and is no failure: a reference that isn't one ends the load
// with nothing changed, a deformed one leaves PixDef as it was. Returns false
// when a picture is missing or unreadable, or when its header gives an absurd
// size; nothing of that picture is then taken.
bool ChargePicArea(AppState& s);

// Writes an uncompressed 8-bit BMP with a grey palette: `levels` holds width x
// height bytes, row by row from the top. Used for synthetic pictures and tests.
// Returns false for a size the reader would refuse, or when the write fails.
bool SaveGreyBmp(const std::string& path, int32_t width, int32_t height, const std::vector<uint8_t>& levels);

}  // namespace tessiva

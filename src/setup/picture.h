// The picture store: 8-bit BMP files read into the grey-level arrays.
#pragma once

#include <array>
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
// size; nothing of that picture is then taken. PictureProblem tells why.
bool ChargePicArea(AppState& s);

// Reads an 8-bit uncompressed bottom-up BMP whole into `pixels` (sized to it)
// and its palette into `*palette` when given. Returns the empty string when
// read, else why not, naming the picture; `pixels` is then left as it was.
// The header is checked against the file's length before anything is
// allocated, so a file cut short, or one whose header claims more pixels than
// it holds, is refused at once. The solver reads its pictures this way: it
// must not correlate zeros standing in for missing rows.
std::string ReadWholePicture(const std::string& path, GreyArray& pixels, std::array<Colour, 256>* palette = nullptr);

// What ReadWholePicture would find wrong with a picture file, without reading
// its pixels; the empty string when nothing is.
std::string PictureProblem(const std::string& path);

// Writes an uncompressed 8-bit BMP with a grey palette: `levels` holds width x
// height bytes, row by row from the top. Used for synthetic pictures and tests.
// Returns false for a size the reader would refuse, or when the write fails.
bool SaveGreyBmp(const std::string& path, int32_t width, int32_t height, const std::vector<uint8_t>& levels);

}  // namespace tessiva

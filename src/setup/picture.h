// The picture store: 8-bit BMP, 8- and 16-bit TIFF and PNG files read into the
// grey-level arrays. The kind of a file is told by its first bytes, not its name.
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
// TIFF and PNG pictures are read whole, scaled to 0-255; one that can't be,
// or a deformed one of another size than the reference, is refused with the
// reason in `*problem` (left empty for a BMP, whose refusals go untold).
bool ChargePicArea(AppState& s, std::string* problem = nullptr);

// The levels a whole read gives: 0-255, as the setup engine and the views work
// on, or the file's full depth (0-65535 for a 16-bit file), for the solver.
enum class PictureDepth { kEightBit, kFull };

// Reads a picture whole into `pixels` (sized to it) and its palette into
// `*palette` when given (the grey identity for a TIFF or PNG). A BMP has to
// be 8-bit, uncompressed and bottom-up. Returns the empty string when
// read, else why not, naming the picture; `pixels` is then left as it was.
// The header is checked against the file's length before anything is
// allocated, so a file cut short, or one whose header claims more pixels than
// it holds, is refused at once. The solver reads its pictures this way: it
// must not correlate zeros standing in for missing rows.
std::string ReadWholePicture(const std::string& path, GreyArray& pixels, std::array<Colour, 256>* palette = nullptr,
                             PictureDepth depth = PictureDepth::kEightBit);

// What ReadWholePicture would find wrong with a picture file; the empty string
// when nothing is. A BMP is judged by its header and length alone, a TIFF or
// PNG by decoding it.
std::string PictureProblem(const std::string& path);

// Writes an uncompressed 8-bit BMP with a grey palette: `levels` holds width x
// height bytes, row by row from the top. Used for synthetic pictures and tests.
// Returns false for a size the reader would refuse, or when the write fails.
bool SaveGreyBmp(const std::string& path, int32_t width, int32_t height, const std::vector<uint8_t>& levels);

}  // namespace tessiva

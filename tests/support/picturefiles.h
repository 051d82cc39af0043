// TIFF and PNG files of any layout the tests need, written by libtiff and
// libpng themselves, so that the readers are checked against the libraries
// and not against our own writers.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace tessiva::testing {

struct TiffLayout {
  int bits = 8;           // 8 or 16 (32 with floating)
  int samples = 1;        // 1 grey, 3 RGB
  int compression = 1;    // libtiff's COMPRESSION_* code: 1 none, 5 LZW, 8 Deflate
  int tileSide = 0;       // 0: strips; else square tiles of that side (a multiple of 16)
  int rowsPerStrip = 0;   // 0: one strip
  bool floating = false;  // samples as 32-bit floats
  bool bigEndian = false;
  bool minIsWhite = false;
};

// `samples`: width x height x layout.samples values, row by row from the top.
// False when libtiff refuses.
bool WriteTiff(const std::string& path, int32_t width, int32_t height, const std::vector<uint16_t>& samples,
               const TiffLayout& layout);

// PNG colour types: 0 grey, 2 RGB, 3 palette, 4 grey and alpha, 6 RGB and alpha.
struct PngLayout {
  int bits = 8;
  int colourType = 0;
};

// The bytes of a PNG. `samples` holds width x height x (channels of the
// colour type) values, row by row; for a palette, one index a pixel into
// `palette`, three values an entry. Empty when libpng refuses.
std::string EncodePng(int32_t width, int32_t height, const std::vector<uint16_t>& samples, const PngLayout& layout,
                      const std::vector<uint8_t>& palette = {});

// Damaged pictures for the corruption tests.
enum class BadPicture {
  kTruncatedTiff,   // a 16-bit TIFF cut to 60 % of its length
  kPngBadChecksum,  // the checksum of its picture data changed
  kFloatTiff,       // levels as 32-bit floats
};
// Writes a `width` x `height` picture damaged as told; returns a part of the
// message that refuses it.
std::string WriteBadPicture(const std::string& path, BadPicture kind, int32_t width, int32_t height);

}  // namespace tessiva::testing

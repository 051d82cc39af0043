// TIFF and PNG pictures, decoded by libtiff and libpng into grey levels at the
// file's own depth, and 16-bit grey writers for both. The picture store
// (picture.h) chooses a decoder by the file's first bytes and turns what it
// gives into the grey-level arrays.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tessiva {

// Beyond these a header is taken for garbage: two 32-bit arrays of the largest
// accepted picture already take half a gigabyte.
inline constexpr int32_t kMaxPictureSide = 32768;
inline constexpr int64_t kMaxPicturePixels = int64_t{1} << 26;

// Grey levels row by row from the top; `maxLevel` is 255 for 8-bit files and
// 65535 for 16-bit ones. Colour is made grey by the luma weights 0.299, 0.587
// and 0.114 at the file's depth.
struct GreyPicture {
  int32_t width = 0;
  int32_t height = 0;
  int32_t maxLevel = 255;
  std::vector<uint16_t> levels;
};

enum class PictureCodec { kNone, kTiff, kPng };

// The codec that a file's first bytes announce (at least 8 are needed for PNG).
PictureCodec CodecOfSignature(std::string_view head);

// What is wrong with a size, as the end of a sentence about the picture
// ("is 4 x 40,000 pixels, beyond..."), or "" when it can be read. Decoders
// ask it before they allocate anything for the pixels.
using SizeCheck = std::function<std::string(int32_t width, int32_t height)>;

// Decode a whole file. The empty string when read; else why not, as the end
// of a sentence about the picture ("is cut short: ..."), with `picture` left
// as it was. Libraries' own warnings and errors never reach the terminal.
std::string DecodeTiff(const std::string& path, const SizeCheck& sizeProblem, GreyPicture& picture);
std::string DecodePng(const std::string& path, const SizeCheck& sizeProblem, GreyPicture& picture);

// The formats the synthetic pictures can be written in.
enum class PictureFileFormat { kBmp, kPng16, kTiff16 };
// "bmp", "png16" or "tiff16"; nothing for another name.
std::optional<PictureFileFormat> PictureFileFormatNamed(std::string_view name);
// The extension files of the format are given: "bmp", "png", "tif".
std::string_view ExtensionOf(PictureFileFormat format);

// Write a 16-bit grey picture (`levels`: width x height values row by row from
// the top), whole and atomically. False when the write fails or `levels` does
// not hold the size; the size itself is the caller's to check.
bool WriteGreyPng16(const std::string& path, int32_t width, int32_t height, const std::vector<uint16_t>& levels);
bool WriteGreyTiff16(const std::string& path, int32_t width, int32_t height, const std::vector<uint16_t>& levels);

}  // namespace tessiva

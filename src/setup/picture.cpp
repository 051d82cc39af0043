#include "setup/picture.h"

#include <algorithm>
#include <array>
#include <exception>
#include <filesystem>
#include <fstream>

#include "state/files.h"
#include "state/parameters.h"

namespace tessiva {
namespace {

constexpr uint16_t kBmpType = 19778;  // "BM" read as one little-endian number
constexpr size_t kFileHeaderBytes = 14;
constexpr size_t kInfoHeaderBytes = 40;
constexpr size_t kPaletteEntries = 256;
// The pixels are taken to follow the palette directly; the pixel offset of the
// header is not looked at.
constexpr size_t kHeadBytes = kFileHeaderBytes + kInfoHeaderBytes + 4 * kPaletteEntries;
constexpr size_t kWidthAt = 18;
constexpr size_t kHeightAt = 22;

// Beyond these a header is taken for garbage: two 32-bit arrays of the largest
// accepted picture already take half a gigabyte.
constexpr int32_t kMaxSide = 32768;
constexpr int64_t kMaxPixels = int64_t{1} << 26;

enum class Outcome { Read, NotBmp, Failed };

using Head = std::array<uint8_t, kHeadBytes>;

uint32_t ReadU32(const Head& head, size_t at) {
  return uint32_t{head[at]} | uint32_t{head[at + 1]} << 8 | uint32_t{head[at + 2]} << 16 | uint32_t{head[at + 3]} << 24;
}

uint16_t ReadU16(const Head& head, size_t at) { return static_cast<uint16_t>(head[at] | head[at + 1] << 8); }

int32_t ReadI32(const Head& head, size_t at) { return static_cast<int32_t>(ReadU32(head, at)); }

bool PlausibleSize(int32_t width, int32_t height) {
  return width > 0 && height > 0 && width <= kMaxSide && height <= kMaxSide && int64_t{width} * height <= kMaxPixels;
}

// Bytes a stored row takes: rows are padded to a multiple of four.
size_t RowLength(int32_t width) { return 4 * ((static_cast<size_t>(width) + 3) / 4); }

// The file stores blue, green, red and a spare byte per entry.
std::array<Colour, 256> DecodePalette(const Head& head) {
  std::array<Colour, 256> palette{};
  const size_t first = kFileHeaderBytes + kInfoHeaderBytes;
  for (size_t i = 0; i < kPaletteEntries; ++i) {
    const size_t at = first + 4 * i;
    palette[i] = Colour{head[at + 2]} << 16 | Colour{head[at + 1]} << 8 | Colour{head[at]};
  }
  return palette;
}

// Reads rows of the file bottom-up (the first row in the file is y = height - 1)
// until the file ends; a row partly read keeps the bytes it got. Only what fits
// the array is stored, so a deformed picture larger than the reference is cut.
void ReadRows(std::istream& in, int32_t width, int32_t height, GreyArray& pixels) {
  const size_t rowLength = RowLength(width);
  std::vector<char> row(rowLength);
  const size_t fittingColumns = static_cast<size_t>(std::min(width, pixels.UpperX() + 1));
  for (int32_t y = height - 1; y >= 0; --y) {
    in.read(row.data(), static_cast<std::streamsize>(rowLength));
    const size_t got = static_cast<size_t>(in.gcount());
    if (y <= pixels.UpperY()) {
      const size_t n = std::min(fittingColumns, got);
      std::transform(row.data(), row.data() + n, pixels.Row(y),
                     [](char byte) { return static_cast<int32_t>(static_cast<uint8_t>(byte)); });
    }
    if (got < rowLength) return;
  }
}

// Reads one picture file into `pixels` and `palette`. The header is checked
// before anything is changed; the reference then renews all picture and
// pattern arrays for its size.
Outcome LoadPicture(AppState& s, const std::string& path, GreyArray& pixels, std::array<Colour, 256>& palette,
                    bool isReference) {
  const std::string resolved = ResolvePathNoCase(path);
  if (!FileExists(resolved)) return Outcome::Failed;
  std::ifstream in(std::filesystem::u8path(resolved), std::ios::binary);
  if (!in) return Outcome::Failed;

  Head head{};  // a file ending inside the head reads zeros for the rest
  in.read(reinterpret_cast<char*>(head.data()), static_cast<std::streamsize>(head.size()));
  if (in.bad()) return Outcome::Failed;
  if (ReadU16(head, 0) != kBmpType) return Outcome::NotBmp;
  const int32_t width = ReadI32(head, kWidthAt);
  const int32_t height = ReadI32(head, kHeightAt);
  if (!PlausibleSize(width, height)) return Outcome::Failed;

  palette = DecodePalette(head);
  s.Lima = width;
  s.Hima = height;
  if (isReference) AllocPatAndPictures(s);
  ReadRows(in, width, height, pixels);
  return in.bad() ? Outcome::Failed : Outcome::Read;
}

void PutU16(std::string& out, size_t at, uint16_t v) {
  out[at] = static_cast<char>(v & 0xFF);
  out[at + 1] = static_cast<char>(v >> 8);
}

void PutU32(std::string& out, size_t at, uint32_t v) {
  for (size_t i = 0; i < 4; ++i) out[at + i] = static_cast<char>((v >> (8 * i)) & 0xFF);
}

std::string EncodeGreyBmp(int32_t width, int32_t height, const std::vector<uint8_t>& levels) {
  const size_t rowLength = RowLength(width);
  const size_t pixelBytes = rowLength * static_cast<size_t>(height);
  std::string out(kHeadBytes + pixelBytes, '\0');
  PutU16(out, 0, kBmpType);
  PutU32(out, 2, static_cast<uint32_t>(out.size()));
  PutU32(out, 10, static_cast<uint32_t>(kHeadBytes));
  PutU32(out, kFileHeaderBytes, static_cast<uint32_t>(kInfoHeaderBytes));
  PutU32(out, kWidthAt, static_cast<uint32_t>(width));
  PutU32(out, kHeightAt, static_cast<uint32_t>(height));
  PutU16(out, 26, 1);                                       // planes
  PutU16(out, 28, 8);                                       // bits per pixel
  PutU32(out, 34, static_cast<uint32_t>(pixelBytes));       // image size; compression stays 0
  PutU32(out, 46, static_cast<uint32_t>(kPaletteEntries));  // colours used
  for (size_t i = 0; i < kPaletteEntries; ++i) {
    const size_t at = kFileHeaderBytes + kInfoHeaderBytes + 4 * i;
    out[at] = out[at + 1] = out[at + 2] = static_cast<char>(i);
  }
  const size_t w = static_cast<size_t>(width);
  for (size_t y = 0; y < static_cast<size_t>(height); ++y) {
    const size_t fileRow = static_cast<size_t>(height) - 1 - y;
    std::copy_n(levels.begin() + static_cast<std::ptrdiff_t>(y * w), w,
                out.begin() + static_cast<std::ptrdiff_t>(kHeadBytes + fileRow * rowLength));
  }
  return out;
}

}  // namespace

bool ChargePicArea(AppState& s) {
  try {
    const Outcome ref = LoadPicture(s, s.PicRefPath, s.PixRef, s.PicRefPalette, true);
    if (ref != Outcome::Read) return ref == Outcome::NotBmp;
    return LoadPicture(s, s.PicDefPath, s.PixDef, s.PicDefPalette, false) != Outcome::Failed;
  } catch (const std::exception&) {
    return false;
  }
}

bool SaveGreyBmp(const std::string& path, int32_t width, int32_t height, const std::vector<uint8_t>& levels) {
  if (!PlausibleSize(width, height) || levels.size() != static_cast<size_t>(width) * static_cast<size_t>(height))
    return false;
  try {
    return WriteFileAtomically(path, EncodeGreyBmp(width, height, levels));
  } catch (const std::exception&) {
    return false;
  }
}

}  // namespace tessiva

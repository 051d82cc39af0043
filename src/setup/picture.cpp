#include "setup/picture.h"

#include <algorithm>
#include <array>
#include <exception>
#include <filesystem>
#include <fstream>
#include <new>

#include "state/files.h"
#include "state/numtext.h"
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
constexpr size_t kBitsAt = 28;
constexpr size_t kCompressionAt = 30;

// Beyond these a header is taken for garbage: two 32-bit arrays of the largest
// accepted picture already take half a gigabyte.
constexpr int32_t kMaxSide = 32768;
constexpr int64_t kMaxPixels = int64_t{1} << 26;

enum class Outcome { Read, NotBmp, Failed };

// What can be wrong with a picture file, in the order it is looked for.
enum class Fault {
  None,
  Missing,
  Directory,
  NotAFile,
  Unreadable,
  NotBmp,
  HeadCut,
  BitDepth,
  Compressed,
  TopDown,
  NoPixel,
  SideTooLong,
  TooManyPixels,
  PixelsCut,
};

using Head = std::array<uint8_t, kHeadBytes>;

uint32_t ReadU32(const Head& head, size_t at) {
  return uint32_t{head[at]} | uint32_t{head[at + 1]} << 8 | uint32_t{head[at + 2]} << 16 | uint32_t{head[at + 3]} << 24;
}

uint16_t ReadU16(const Head& head, size_t at) { return static_cast<uint16_t>(head[at] | head[at + 1] << 8); }

int32_t ReadI32(const Head& head, size_t at) { return static_cast<int32_t>(ReadU32(head, at)); }

// A picture file's head as read: a file ending inside it reads zeros for the rest.
struct Header {
  Head bytes{};
  size_t got = 0;              // bytes of the head the file holds
  std::uintmax_t length = 0;   // of the whole file
  int32_t width = 0;
  int32_t height = 0;
  uint16_t bits = 0;
  uint32_t compression = 0;
};

// The size checks both readers make.
Fault SizeFault(int32_t width, int32_t height) {
  if (height < 0) return Fault::TopDown;
  if (width <= 0 || height == 0) return Fault::NoPixel;
  if (width > kMaxSide || height > kMaxSide) return Fault::SideTooLong;
  if (int64_t{width} * height > kMaxPixels) return Fault::TooManyPixels;
  return Fault::None;
}

bool PlausibleSize(int32_t width, int32_t height) { return SizeFault(width, height) == Fault::None; }

// Bytes a stored row takes: rows are padded to a multiple of four.
size_t RowLength(int32_t width) { return 4 * ((static_cast<size_t>(width) + 3) / 4); }

// Bytes the pixels of a plausible size take in the file.
std::uintmax_t PixelBytes(int32_t width, int32_t height) {
  return std::uintmax_t{RowLength(width)} * static_cast<std::uintmax_t>(height);
}

// Finds a picture by its name (without regard to case), opens it and reads
// its head. Judges only what every reader refuses: a file that isn't there or
// can't be opened, and one that isn't a BMP.
Fault OpenPicture(const std::string& path, std::ifstream& in, Header& head) {
  namespace fs = std::filesystem;
  if (path.empty()) return Fault::Missing;
  const fs::path file = fs::u8path(ResolvePathNoCase(path));
  std::error_code ec;
  const fs::file_status status = fs::status(file, ec);
  if (!fs::exists(status)) return Fault::Missing;
  if (fs::is_directory(status)) return Fault::Directory;
  if (!fs::is_regular_file(status)) return Fault::NotAFile;
  head.length = fs::file_size(file, ec);
  if (ec) return Fault::Unreadable;
  in.open(file, std::ios::binary);
  if (!in) return Fault::Unreadable;
  in.read(reinterpret_cast<char*>(head.bytes.data()), static_cast<std::streamsize>(head.bytes.size()));
  if (in.bad()) return Fault::Unreadable;
  head.got = static_cast<size_t>(in.gcount());
  if (ReadU16(head.bytes, 0) != kBmpType) return Fault::NotBmp;
  head.width = ReadI32(head.bytes, kWidthAt);
  head.height = ReadI32(head.bytes, kHeightAt);
  head.bits = ReadU16(head.bytes, kBitsAt);
  head.compression = ReadU32(head.bytes, kCompressionAt);
  return Fault::None;
}

// What the whole reader refuses besides: a head cut short, another kind of
// pixel, an unusable size, or fewer pixel bytes than the header claims. All is
// judged from the head and the file's length, before anything is allocated.
Fault WholeFault(const Header& head) {
  if (head.got < kHeadBytes) return Fault::HeadCut;
  if (head.bits != 8) return Fault::BitDepth;
  if (head.compression != 0) return Fault::Compressed;
  if (const Fault size = SizeFault(head.width, head.height); size != Fault::None) return size;
  if (head.length < kHeadBytes + PixelBytes(head.width, head.height)) return Fault::PixelsCut;
  return Fault::None;
}

// A whole number with its thousands grouped: 67108864 gives "67,108,864".
std::string Grouped(double value) {
  std::string text = StrTrim(value);
  const size_t first = text.starts_with('-') ? 1 : 0;
  for (size_t at = text.size(); at > first + 3; at -= 3) text.insert(at - 3, ",");
  return text;
}

std::string Describe(Fault fault, const std::string& path, const Header& head) {
  const std::string picture = "picture " + PrintableName(path);
  const std::string size = Grouped(head.width) + " x " + Grouped(head.height) + " pixels";
  switch (fault) {
    case Fault::None: return {};
    case Fault::Missing: return picture + " is missing";
    case Fault::Directory: return picture + " is a directory, not a BMP file";
    case Fault::NotAFile: return picture + " is not a regular file";
    case Fault::Unreadable: return picture + " can't be read";
    case Fault::NotBmp: return picture + " is not a BMP file";
    case Fault::HeadCut: return picture + " is cut short: the file ends inside its header";
    case Fault::BitDepth:
      return picture + " has " + StrTrim(head.bits) + " bits per pixel; Tessiva reads 8-bit grey-level BMP pictures only";
    case Fault::Compressed: return picture + " is compressed; Tessiva reads uncompressed BMP pictures only";
    case Fault::TopDown:
      return picture + " stores its rows from the top down (a negative height); Tessiva reads bottom-up BMP pictures only";
    case Fault::NoPixel: return picture + " claims a size of " + size + ", which holds no pixel";
    case Fault::SideTooLong:
      return picture + " is " + size + ", beyond the " + Grouped(kMaxSide) + " pixels a side Tessiva reads";
    case Fault::TooManyPixels:
      return picture + " is " + size + ", larger than the " + Grouped(static_cast<double>(kMaxPixels)) + " pixels (" +
             StrTrim(static_cast<double>(kMaxPixels >> 20)) + " megapixels) Tessiva reads";
    case Fault::PixelsCut:
      return picture + " is cut short: its header gives " + size + ", which take " +
             Grouped(static_cast<double>(kHeadBytes + PixelBytes(head.width, head.height))) +
             " bytes, but the file holds only " + Grouped(static_cast<double>(head.length));
  }
  return picture + " can't be read";
}

// Opens a picture for the whole reader: why it can't be read whole, or "".
std::string Examine(const std::string& path, std::ifstream& in, Header& head) {
  Fault fault = OpenPicture(path, in, head);
  if (fault == Fault::None) fault = WholeFault(head);
  return Describe(fault, path, head);
}

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
// True when every row was read whole.
bool ReadRows(std::istream& in, int32_t width, int32_t height, GreyArray& pixels) {
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
    if (got < rowLength) return false;
  }
  return true;
}

// Reads one picture file into `pixels` and `palette` the setup window's way:
// a file that isn't a BMP is passed over, and a file cut short gives the rows
// it holds. The header is checked before anything is changed; the reference
// then renews all picture and pattern arrays for its size.
Outcome LoadPicture(AppState& s, const std::string& path, GreyArray& pixels, std::array<Colour, 256>& palette,
                    bool isReference) {
  std::ifstream in;
  Header head;
  const Fault fault = OpenPicture(path, in, head);
  if (fault == Fault::NotBmp) return Outcome::NotBmp;
  if (fault != Fault::None || !PlausibleSize(head.width, head.height)) return Outcome::Failed;

  palette = DecodePalette(head.bytes);
  s.Lima = head.width;
  s.Hima = head.height;
  if (isReference) AllocPatAndPictures(s);
  ReadRows(in, head.width, head.height, pixels);
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

std::string ReadWholePicture(const std::string& path, GreyArray& pixels, std::array<Colour, 256>* palette) {
  try {
    std::ifstream in;
    Header head;
    if (std::string problem = Examine(path, in, head); !problem.empty()) return problem;
    GreyArray read;
    read.Allocate(head.width, head.height);
    // The length was checked: rows missing now mean the file changed or failed under us.
    if (!ReadRows(in, head.width, head.height, read)) return Describe(Fault::Unreadable, path, head);
    pixels = std::move(read);
    if (palette) *palette = DecodePalette(head.bytes);
    return {};
  } catch (const std::bad_alloc&) {
    return "picture " + PrintableName(path) + " is too large for the memory left";
  } catch (const std::exception&) {
    return "picture " + PrintableName(path) + " can't be read";
  }
}

std::string PictureProblem(const std::string& path) {
  try {
    std::ifstream in;
    Header head;
    return Examine(path, in, head);
  } catch (const std::exception&) {
    return "picture " + PrintableName(path) + " can't be read";
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

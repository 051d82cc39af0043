#include "setup/picture.h"

#include <algorithm>
#include <array>
#include <exception>
#include <filesystem>
#include <fstream>
#include <new>

#include "setup/picturecodecs.h"
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

enum class Outcome { Read, NotPicture, Failed };

// What can be wrong with a picture file, in the order it is looked for.
enum class Fault {
  None,
  Missing,
  Directory,
  NotAFile,
  Unreadable,
  NotPicture,
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
  PictureCodec codec = PictureCodec::kNone;  // a TIFF or PNG, read by its own decoder
};

// The size checks both readers make.
Fault SizeFault(int32_t width, int32_t height) {
  if (height < 0) return Fault::TopDown;
  if (width <= 0 || height == 0) return Fault::NoPixel;
  if (width > kMaxPictureSide || height > kMaxPictureSide) return Fault::SideTooLong;
  if (int64_t{width} * height > kMaxPicturePixels) return Fault::TooManyPixels;
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
// can't be opened, and one that is neither a BMP nor, by its signature, a
// TIFF or PNG (whose decoders judge the rest).
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
  if (ReadU16(head.bytes, 0) != kBmpType) {
    head.codec = CodecOfSignature({reinterpret_cast<const char*>(head.bytes.data()), head.got});
    return head.codec == PictureCodec::kNone ? Fault::NotPicture : Fault::None;
  }
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

std::string PictureNamed(const std::string& path) { return "picture " + PrintableName(path); }

// What is wrong, as the end of a sentence about the picture.
std::string Complaint(Fault fault, const Header& head) {
  const std::string size = Grouped(head.width) + " x " + Grouped(head.height) + " pixels";
  switch (fault) {
    case Fault::None: return {};
    case Fault::Missing: return "is missing";
    case Fault::Directory: return "is a directory, not a picture file";
    case Fault::NotAFile: return "is not a regular file";
    case Fault::Unreadable: return "can't be read";
    case Fault::NotPicture: return "is not a BMP, TIFF or PNG picture";
    case Fault::HeadCut: return "is cut short: the file ends inside its header";
    case Fault::BitDepth:
      return "has " + StrTrim(head.bits) + " bits per pixel; Tessiva reads 8-bit grey-level BMP pictures only";
    case Fault::Compressed: return "is compressed; Tessiva reads uncompressed BMP pictures only";
    case Fault::TopDown:
      return "stores its rows from the top down (a negative height); Tessiva reads bottom-up BMP pictures only";
    case Fault::NoPixel: return "claims a size of " + size + ", which holds no pixel";
    case Fault::SideTooLong:
      return "is " + size + ", beyond the " + Grouped(kMaxPictureSide) + " pixels a side Tessiva reads";
    case Fault::TooManyPixels:
      return "is " + size + ", larger than the " + Grouped(static_cast<double>(kMaxPicturePixels)) + " pixels (" +
             StrTrim(static_cast<double>(kMaxPicturePixels >> 20)) + " megapixels) Tessiva reads";
    case Fault::PixelsCut:
      return "is cut short: its header gives " + size + ", which take " +
             Grouped(static_cast<double>(kHeadBytes + PixelBytes(head.width, head.height))) +
             " bytes, but the file holds only " + Grouped(static_cast<double>(head.length));
  }
  return "can't be read";
}

std::string Describe(Fault fault, const std::string& path, const Header& head) {
  return fault == Fault::None ? std::string() : PictureNamed(path) + " " + Complaint(fault, head);
}

// A TIFF or PNG decoded whole, its size judged as a BMP's would be; why not, or "".
std::string DecodeCoded(const std::string& path, PictureCodec codec, GreyPicture& picture) {
  const SizeCheck sizeProblem = [](int32_t width, int32_t height) {
    Header sized;
    sized.width = width;
    sized.height = height;
    return Complaint(SizeFault(width, height), sized);
  };
  const std::string file = ResolvePathNoCase(path);
  const std::string problem =
      codec == PictureCodec::kTiff ? DecodeTiff(file, sizeProblem, picture) : DecodePng(file, sizeProblem, picture);
  return problem.empty() ? problem : PictureNamed(path) + " " + problem;
}

// The decoded levels in a grey-level array: unchanged at full depth, else
// scaled to 0-255, the range the setup engine and the views work in.
GreyArray ToGreyArray(const GreyPicture& picture, PictureDepth depth) {
  GreyArray pixels;
  pixels.Allocate(picture.width, picture.height);
  const bool scale = depth == PictureDepth::kEightBit && picture.maxLevel != 255;
  const auto max = static_cast<uint32_t>(picture.maxLevel);
  const size_t width = static_cast<size_t>(picture.width);
  for (int32_t y = 0; y < picture.height; ++y) {
    const uint16_t* from = picture.levels.data() + static_cast<size_t>(y) * width;
    std::transform(from, from + width, pixels.Row(y), [&](uint16_t level) {
      return static_cast<int32_t>(scale ? (level * 255u + max / 2) / max : level);
    });
  }
  return pixels;
}

// Decoded pictures are grey: their palette is the identity.
std::array<Colour, 256> GreyPalette() {
  std::array<Colour, 256> palette{};
  for (Colour i = 0; i < palette.size(); ++i) palette[i] = i << 16 | i << 8 | i;
  return palette;
}

// Opens a picture for the whole reader: why it can't be read whole, or "".
std::string Examine(const std::string& path, std::ifstream& in, Header& head) {
  Fault fault = OpenPicture(path, in, head);
  if (fault == Fault::None && head.codec == PictureCodec::kNone) fault = WholeFault(head);
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

// Copies what fits of `from` into `to`, which keeps its size.
void CopyFitting(const GreyArray& from, GreyArray& to) {
  const int32_t columns = std::min(from.UpperX(), to.UpperX() + 1);
  for (int32_t y = 0; y < std::min(from.UpperY(), to.UpperY() + 1); ++y)
    std::copy_n(from.Data() + static_cast<size_t>(y) * static_cast<size_t>(from.Stride()), columns, to.Row(y));
}

// A TIFF or PNG for the setup window: read whole, at 0-255, or refused with
// `problem` and nothing changed. Unlike a BMP, a deformed picture of another
// size than the reference is refused, since it can't be correlated with it.
Outcome LoadCoded(AppState& s, const std::string& path, PictureCodec codec, GreyArray& pixels,
                  std::array<Colour, 256>& palette, bool isReference, std::string& problem) {
  GreyPicture decoded;
  problem = DecodeCoded(path, codec, decoded);
  if (!problem.empty()) return Outcome::Failed;
  if (!isReference && (decoded.width != s.PixRef.UpperX() || decoded.height != s.PixRef.UpperY())) {
    problem = PictureNamed(path) + " is " + Grouped(decoded.width) + " x " + Grouped(decoded.height) +
              " pixels, but the reference picture is " + Grouped(s.PixRef.UpperX()) + " x " +
              Grouped(s.PixRef.UpperY());
    return Outcome::Failed;
  }
  const GreyArray read = ToGreyArray(decoded, PictureDepth::kEightBit);
  palette = GreyPalette();
  s.Lima = decoded.width;
  s.Hima = decoded.height;
  if (isReference) AllocPatAndPictures(s);
  CopyFitting(read, pixels);
  return Outcome::Read;
}

// Reads one picture file into `pixels` and `palette` the setup window's way:
// a file that is no picture is passed over, and a BMP cut short gives the rows
// it holds. The header is checked before anything is changed; the reference
// then renews all picture and pattern arrays for its size.
Outcome LoadPicture(AppState& s, const std::string& path, GreyArray& pixels, std::array<Colour, 256>& palette,
                    bool isReference, std::string& problem) {
  std::ifstream in;
  Header head;
  const Fault fault = OpenPicture(path, in, head);
  if (fault == Fault::NotPicture) return Outcome::NotPicture;
  if (fault == Fault::None && head.codec != PictureCodec::kNone) {
    in.close();
    return LoadCoded(s, path, head.codec, pixels, palette, isReference, problem);
  }
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

bool ChargePicArea(AppState& s, std::string* problem) {
  std::string why;
  const auto told = [&](bool read) {
    if (problem) *problem = why;
    return read;
  };
  try {
    const Outcome ref = LoadPicture(s, s.PicRefPath, s.PixRef, s.PicRefPalette, true, why);
    if (ref != Outcome::Read) return told(ref == Outcome::NotPicture);
    return told(LoadPicture(s, s.PicDefPath, s.PixDef, s.PicDefPalette, false, why) != Outcome::Failed);
  } catch (const std::exception&) {
    return told(false);
  }
}

std::string ReadWholePicture(const std::string& path, GreyArray& pixels, std::array<Colour, 256>* palette,
                             PictureDepth depth) {
  try {
    std::ifstream in;
    Header head;
    if (std::string problem = Examine(path, in, head); !problem.empty()) return problem;
    if (head.codec != PictureCodec::kNone) {
      in.close();
      GreyPicture decoded;
      if (std::string problem = DecodeCoded(path, head.codec, decoded); !problem.empty()) return problem;
      pixels = ToGreyArray(decoded, depth);
      if (palette) *palette = GreyPalette();
      return {};
    }
    GreyArray read;
    read.Allocate(head.width, head.height);
    // The length was checked: rows missing now mean the file changed or failed under us.
    if (!ReadRows(in, head.width, head.height, read)) return Describe(Fault::Unreadable, path, head);
    pixels = std::move(read);
    if (palette) *palette = DecodePalette(head.bytes);
    return {};
  } catch (const std::bad_alloc&) {
    return PictureNamed(path) + " is too large for the memory left";
  } catch (const std::exception&) {
    return PictureNamed(path) + " can't be read";
  }
}

std::string PictureProblem(const std::string& path) {
  try {
    std::ifstream in;
    Header head;
    std::string problem = Examine(path, in, head);
    // A TIFF's or PNG's faults show only as it is decoded.
    if (problem.empty() && head.codec != PictureCodec::kNone) {
      in.close();
      GreyPicture decoded;
      problem = DecodeCoded(path, head.codec, decoded);
    }
    return problem;
  } catch (const std::bad_alloc&) {
    return PictureNamed(path) + " is too large for the memory left";
  } catch (const std::exception&) {
    return PictureNamed(path) + " can't be read";
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

#include "setup/picturecodecs.h"

#include <png.h>
#include <tiffio.h>
#include <unistd.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <csetjmp>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>

#include "state/files.h"
#include "state/numtext.h"

namespace tessiva {
namespace {

// Enough for the widest accepted row or tile; libtiff refuses larger single
// allocations that a lying header would ask for.
constexpr tmsize_t kMaxTiffAllocation = tmsize_t{1} << 30;
constexpr int32_t kLibraryTextLength = 256;

// The library's own words, after ours.
std::string LibrarySays(const char* name, const char* text) {
  return std::string(" (") + name + ": " + (text[0] ? text : "no reason given") + ")";
}

// How the samples of a decoded row are laid out.
struct SampleLayout {
  int32_t bits = 8;     // 8 or 16, 16-bit samples in the machine's byte order
  int32_t samples = 1;  // per pixel: 1 or 2 for grey (with alpha), 3 or 4 for colour
  bool inverted = false;
};

uint32_t SampleAt(const unsigned char* row, int32_t bits, size_t index) {
  if (bits == 8) return row[index];
  uint16_t value;
  std::memcpy(&value, row + 2 * index, sizeof value);
  return value;
}

// One row of interleaved samples to grey levels; alpha is ignored.
void RowToGrey(const unsigned char* row, const SampleLayout& layout, int32_t width, int32_t maxLevel, uint16_t* out) {
  const bool colour = layout.samples >= 3;
  for (int32_t x = 0; x < width; ++x) {
    const size_t first = static_cast<size_t>(x) * static_cast<size_t>(layout.samples);
    uint32_t grey = SampleAt(row, layout.bits, first);
    if (colour) {
      const double luma =
          0.299 * grey + 0.587 * SampleAt(row, layout.bits, first + 1) + 0.114 * SampleAt(row, layout.bits, first + 2);
      grey = std::min(static_cast<uint32_t>(std::lround(luma)), static_cast<uint32_t>(maxLevel));
    }
    out[x] = static_cast<uint16_t>(layout.inverted ? static_cast<uint32_t>(maxLevel) - grey : grey);
  }
}

// ---- TIFF ----

// libtiff reports through these instead of the terminal: the first error is
// kept for our message, warnings are dropped.
struct TiffErrors {
  char first[kLibraryTextLength] = {};
};

int KeepFirstTiffError(TIFF*, void* user, const char*, const char* format, va_list args) {
  auto* errors = static_cast<TiffErrors*>(user);
  if (!errors->first[0]) std::vsnprintf(errors->first, sizeof errors->first, format, args);
  return 1;
}

int IgnoreTiffWarning(TIFF*, void*, const char*, const char*, va_list) { return 1; }

struct CloseTiff {
  void operator()(TIFF* tiff) const { TIFFClose(tiff); }
};
using TiffHandle = std::unique_ptr<TIFF, CloseTiff>;

TiffHandle OpenTiff(const std::string& path, const char* mode, TiffErrors& errors) {
  TIFFOpenOptions* options = TIFFOpenOptionsAlloc();
  if (!options) return nullptr;
  TIFFOpenOptionsSetErrorHandlerExtR(options, KeepFirstTiffError, &errors);
  TIFFOpenOptionsSetWarningHandlerExtR(options, IgnoreTiffWarning, nullptr);
  TIFFOpenOptionsSetMaxSingleMemAlloc(options, kMaxTiffAllocation);
  TiffHandle tiff(TIFFOpenExt(path.c_str(), mode, options));
  TIFFOpenOptionsFree(options);
  return tiff;
}

struct TiffHead {
  uint32_t width = 0, height = 0;
  uint16_t bits = 1, samples = 1, sampleFormat = SAMPLEFORMAT_UINT, photometric = 0, planar = PLANARCONFIG_CONTIG;
  uint16_t compression = COMPRESSION_NONE;
};

TiffHead ReadTiffHead(TIFF* tiff) {
  TiffHead h;
  TIFFGetField(tiff, TIFFTAG_IMAGEWIDTH, &h.width);
  TIFFGetField(tiff, TIFFTAG_IMAGELENGTH, &h.height);
  TIFFGetFieldDefaulted(tiff, TIFFTAG_BITSPERSAMPLE, &h.bits);
  TIFFGetFieldDefaulted(tiff, TIFFTAG_SAMPLESPERPIXEL, &h.samples);
  TIFFGetFieldDefaulted(tiff, TIFFTAG_SAMPLEFORMAT, &h.sampleFormat);
  TIFFGetFieldDefaulted(tiff, TIFFTAG_PLANARCONFIG, &h.planar);
  TIFFGetFieldDefaulted(tiff, TIFFTAG_COMPRESSION, &h.compression);
  if (!TIFFGetField(tiff, TIFFTAG_PHOTOMETRIC, &h.photometric)) h.photometric = PHOTOMETRIC_MINISBLACK;
  return h;
}

std::string TiffKindProblem(const TiffHead& h) {
  if (h.sampleFormat == SAMPLEFORMAT_IEEEFP)
    return "is a TIFF of " + StrTrim(h.bits) +
           "-bit floating-point levels; Tessiva reads TIFF pictures of 8- or 16-bit whole levels";
  if (h.sampleFormat != SAMPLEFORMAT_UINT)
    return "is a TIFF of signed or complex levels; Tessiva reads TIFF pictures of 8- or 16-bit whole levels";
  if (h.bits != 8 && h.bits != 16)
    return "is a TIFF of " + StrTrim(h.bits) + "-bit levels; Tessiva reads 8- and 16-bit TIFF pictures";
  const bool grey = h.photometric == PHOTOMETRIC_MINISBLACK || h.photometric == PHOTOMETRIC_MINISWHITE;
  if (!grey && h.photometric != PHOTOMETRIC_RGB)
    return "is a TIFF of colour model " + StrTrim(h.photometric) +
           " (a palette, YCbCr, CMYK...); Tessiva reads grey and RGB TIFF pictures";
  if ((grey && h.samples > 2) || (!grey && (h.samples < 3 || h.samples > 4)))
    return "is a TIFF of " + StrTrim(h.samples) + " samples a pixel, which Tessiva can't make grey";
  if (h.planar != PLANARCONFIG_CONTIG)
    return "is a TIFF storing each colour in a plane of its own; Tessiva reads TIFF pictures with interleaved colours";
  if (!TIFFIsCODECConfigured(h.compression))
    return "is a TIFF compressed by scheme " + StrTrim(h.compression) + ", which Tessiva can't decode";
  return {};
}

std::string TiffDamaged(const TiffErrors& errors) {
  return "is damaged or cut short" + LibrarySays("libtiff", errors.first);
}

// Reads the strips or tiles of a TIFF whose kind and size were accepted.
bool ReadTiffPixels(TIFF* tiff, const SampleLayout& layout, GreyPicture& out) {
  const auto width = static_cast<uint32_t>(out.width), height = static_cast<uint32_t>(out.height);
  const size_t pixelBytes = static_cast<size_t>(layout.samples) * static_cast<size_t>(layout.bits / 8);
  if (TIFFIsTiled(tiff)) {
    uint32_t tileWidth = 0, tileHeight = 0;
    TIFFGetField(tiff, TIFFTAG_TILEWIDTH, &tileWidth);
    TIFFGetField(tiff, TIFFTAG_TILELENGTH, &tileHeight);
    if (tileWidth == 0 || tileHeight == 0 || uint64_t{tileWidth} * tileHeight > uint64_t{kMaxPicturePixels})
      return false;
    const tmsize_t tileBytes = TIFFTileSize(tiff);
    if (tileBytes <= 0 || static_cast<uint64_t>(tileBytes) < uint64_t{tileWidth} * tileHeight * pixelBytes)
      return false;
    std::vector<unsigned char> tile(static_cast<size_t>(tileBytes));
    for (uint32_t y0 = 0; y0 < height; y0 += tileHeight)
      for (uint32_t x0 = 0; x0 < width; x0 += tileWidth) {
        if (TIFFReadTile(tiff, tile.data(), x0, y0, 0, 0) < 0) return false;
        const uint32_t columns = std::min(tileWidth, width - x0);
        for (uint32_t r = 0; r < tileHeight && y0 + r < height; ++r)
          RowToGrey(tile.data() + r * tileWidth * pixelBytes, layout, static_cast<int32_t>(columns), out.maxLevel,
                    out.levels.data() + static_cast<size_t>(y0 + r) * width + x0);
      }
    return true;
  }
  uint32_t rowsPerStrip = height;
  TIFFGetFieldDefaulted(tiff, TIFFTAG_ROWSPERSTRIP, &rowsPerStrip);
  rowsPerStrip = std::clamp(rowsPerStrip, uint32_t{1}, height);
  const size_t rowBytes = width * pixelBytes;
  std::vector<unsigned char> strip(rowBytes * rowsPerStrip);
  for (uint32_t y0 = 0; y0 < height; y0 += rowsPerStrip) {
    const uint32_t rows = std::min(rowsPerStrip, height - y0);
    const tmsize_t wanted = static_cast<tmsize_t>(rows * rowBytes);
    if (TIFFReadEncodedStrip(tiff, TIFFComputeStrip(tiff, y0, 0), strip.data(), wanted) < wanted) return false;
    for (uint32_t r = 0; r < rows; ++r)
      RowToGrey(strip.data() + r * rowBytes, layout, out.width, out.maxLevel,
                out.levels.data() + static_cast<size_t>(y0 + r) * width);
  }
  return true;
}

// ---- PNG ----

// libpng reports through these: an error keeps its text and jumps back to the
// stage that was running, a warning is dropped. The stages below hold only
// trivially destructible objects, so the jump skips no destructor.
struct PngFailure {
  char text[kLibraryTextLength] = {};
};

[[noreturn]] void StopOnPngError(png_structp png, png_const_charp text) {
  auto* failure = static_cast<PngFailure*>(png_get_error_ptr(png));
  std::snprintf(failure->text, sizeof failure->text, "%s", text);
  png_longjmp(png, 1);
}

void IgnorePngWarning(png_structp, png_const_charp) {}

struct PngHead {
  png_uint_32 width = 0, height = 0;
  int bits = 0, colourType = 0;
  int channels = 0;
  size_t rowBytes = 0;
};

bool ReadPngInfo(png_structp png, png_infop info, PngHead& head) {
  if (setjmp(png_jmpbuf(png))) return false;
  png_read_info(png, info);
  head.width = png_get_image_width(png, info);
  head.height = png_get_image_height(png, info);
  head.bits = png_get_bit_depth(png, info);
  head.colourType = png_get_color_type(png, info);
  return true;
}

// Palettes become RGB, 16-bit samples come in the machine's byte order and
// interlaced pictures are put together whole.
bool SetPngTransforms(png_structp png, png_infop info, PngHead& head) {
  if (setjmp(png_jmpbuf(png))) return false;
  if (head.colourType == PNG_COLOR_TYPE_PALETTE) png_set_palette_to_rgb(png);
  if (head.bits == 16 && std::endian::native == std::endian::little) png_set_swap(png);
  png_set_interlace_handling(png);
  png_read_update_info(png, info);
  head.channels = png_get_channels(png, info);
  head.bits = png_get_bit_depth(png, info);
  head.rowBytes = png_get_rowbytes(png, info);
  return true;
}

bool ReadPngImage(png_structp png, png_bytepp rows) {
  if (setjmp(png_jmpbuf(png))) return false;
  png_read_image(png, rows);
  png_read_end(png, nullptr);
  return true;
}

std::string PngKindProblem(const PngHead& head) {
  if (head.colourType != PNG_COLOR_TYPE_PALETTE && head.bits < 8)
    return "is a PNG of " + StrTrim(head.bits) + "-bit levels; Tessiva reads 8- and 16-bit PNG pictures";
  return {};
}

struct PngReader {
  png_structp png = nullptr;
  png_infop info = nullptr;
  ~PngReader() { png_destroy_read_struct(&png, info ? &info : nullptr, nullptr); }
};

struct CloseFile {
  void operator()(std::FILE* file) const { std::fclose(file); }
};

// ---- writing ----

struct PngWriter {
  png_structp png = nullptr;
  png_infop info = nullptr;
  ~PngWriter() { png_destroy_write_struct(&png, info ? &info : nullptr); }
};

void AppendPngBytes(png_structp png, png_bytep data, size_t length) {
  auto* out = static_cast<std::string*>(png_get_io_ptr(png));
  bool stored = true;
  try {
    out->append(reinterpret_cast<const char*>(data), length);
  } catch (const std::exception&) {
    stored = false;
  }
  if (!stored) png_error(png, "out of memory");
}

void FlushNothing(png_structp) {}

bool EncodePng16(png_structp png, png_infop info, png_uint_32 width, png_uint_32 height, png_bytepp rows) {
  if (setjmp(png_jmpbuf(png))) return false;
  png_set_IHDR(png, info, width, height, 16, PNG_COLOR_TYPE_GRAY, PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT,
               PNG_FILTER_TYPE_DEFAULT);
  png_write_info(png, info);
  if (std::endian::native == std::endian::little) png_set_swap(png);
  png_write_image(png, rows);
  png_write_end(png, nullptr);
  return true;
}

bool LevelsHold(int32_t width, int32_t height, const std::vector<uint16_t>& levels) {
  return width > 0 && height > 0 && levels.size() == static_cast<size_t>(width) * static_cast<size_t>(height);
}

}  // namespace

PictureCodec CodecOfSignature(std::string_view head) {
  if (head.starts_with(std::string_view("II*\0", 4)) || head.starts_with(std::string_view("MM\0*", 4)) ||
      head.starts_with(std::string_view("II+\0", 4)) || head.starts_with(std::string_view("MM\0+", 4)))
    return PictureCodec::kTiff;
  if (head.starts_with("\x89PNG\r\n\x1a\n")) return PictureCodec::kPng;
  return PictureCodec::kNone;
}

std::string DecodeTiff(const std::string& path, const SizeCheck& sizeProblem, GreyPicture& picture) {
  TiffErrors errors;
  const TiffHandle tiff = OpenTiff(path, "r", errors);
  if (!tiff) return TiffDamaged(errors);
  const TiffHead head = ReadTiffHead(tiff.get());
  if (std::string problem = TiffKindProblem(head); !problem.empty()) return problem;
  if (head.width > uint32_t{kMaxPictureSide} || head.height > uint32_t{kMaxPictureSide})
    return sizeProblem(static_cast<int32_t>(std::min<uint32_t>(head.width, INT32_MAX)),
                       static_cast<int32_t>(std::min<uint32_t>(head.height, INT32_MAX)));
  GreyPicture read{
      static_cast<int32_t>(head.width), static_cast<int32_t>(head.height), head.bits == 8 ? 255 : 65535, {}};
  if (std::string problem = sizeProblem(read.width, read.height); !problem.empty()) return problem;
  read.levels.resize(static_cast<size_t>(read.width) * static_cast<size_t>(read.height));
  const SampleLayout layout{head.bits, head.samples, head.photometric == PHOTOMETRIC_MINISWHITE};
  if (!ReadTiffPixels(tiff.get(), layout, read)) return TiffDamaged(errors);
  picture = std::move(read);
  return {};
}

std::string DecodePng(const std::string& path, const SizeCheck& sizeProblem, GreyPicture& picture) {
  const std::unique_ptr<std::FILE, CloseFile> file(std::fopen(path.c_str(), "rb"));
  if (!file) return "can't be read";
  PngFailure failure;
  PngReader reader;
  reader.png = png_create_read_struct(PNG_LIBPNG_VER_STRING, &failure, StopOnPngError, IgnorePngWarning);
  if (reader.png) reader.info = png_create_info_struct(reader.png);
  if (!reader.info) return "is too large for the memory left";
  png_init_io(reader.png, file.get());
  const std::string damaged = "is damaged or cut short";
  PngHead head;
  if (!ReadPngInfo(reader.png, reader.info, head)) return damaged + LibrarySays("libpng", failure.text);
  if (std::string problem = PngKindProblem(head); !problem.empty()) return problem;
  if (std::string problem = sizeProblem(static_cast<int32_t>(head.width), static_cast<int32_t>(head.height));
      !problem.empty())
    return problem;
  if (!SetPngTransforms(reader.png, reader.info, head)) return damaged + LibrarySays("libpng", failure.text);
  GreyPicture read{
      static_cast<int32_t>(head.width), static_cast<int32_t>(head.height), head.bits == 16 ? 65535 : 255, {}};
  std::vector<unsigned char> pixels(head.rowBytes * head.height);
  std::vector<png_bytep> rows(head.height);
  for (size_t y = 0; y < rows.size(); ++y) rows[y] = pixels.data() + y * head.rowBytes;
  if (!ReadPngImage(reader.png, rows.data())) return damaged + LibrarySays("libpng", failure.text);
  read.levels.resize(static_cast<size_t>(read.width) * static_cast<size_t>(read.height));
  const SampleLayout layout{head.bits, head.channels, false};
  for (int32_t y = 0; y < read.height; ++y)
    RowToGrey(rows[static_cast<size_t>(y)], layout, read.width, read.maxLevel,
              read.levels.data() + static_cast<size_t>(y) * static_cast<size_t>(read.width));
  picture = std::move(read);
  return {};
}

std::optional<PictureFileFormat> PictureFileFormatNamed(std::string_view name) {
  if (name == "bmp") return PictureFileFormat::kBmp;
  if (name == "png16") return PictureFileFormat::kPng16;
  if (name == "tiff16") return PictureFileFormat::kTiff16;
  return std::nullopt;
}

std::string_view ExtensionOf(PictureFileFormat format) {
  switch (format) {
    case PictureFileFormat::kBmp: return "bmp";
    case PictureFileFormat::kPng16: return "png";
    case PictureFileFormat::kTiff16: return "tif";
  }
  return "bmp";
}

bool WriteGreyPng16(const std::string& path, int32_t width, int32_t height, const std::vector<uint16_t>& levels) {
  if (!LevelsHold(width, height, levels)) return false;
  PngFailure failure;
  PngWriter writer;
  writer.png = png_create_write_struct(PNG_LIBPNG_VER_STRING, &failure, StopOnPngError, IgnorePngWarning);
  if (writer.png) writer.info = png_create_info_struct(writer.png);
  if (!writer.info) return false;
  std::string encoded;
  png_set_write_fn(writer.png, &encoded, AppendPngBytes, FlushNothing);
  // libpng takes rows as writable pointers but only reads them.
  std::vector<png_bytep> rows(static_cast<size_t>(height));
  for (size_t y = 0; y < rows.size(); ++y)
    rows[y] = reinterpret_cast<png_bytep>(const_cast<uint16_t*>(levels.data() + y * static_cast<size_t>(width)));
  if (!EncodePng16(writer.png, writer.info, static_cast<png_uint_32>(width), static_cast<png_uint_32>(height),
                   rows.data()))
    return false;
  return WriteFileAtomically(path, encoded);
}

bool WriteGreyTiff16(const std::string& path, int32_t width, int32_t height, const std::vector<uint16_t>& levels) {
  if (!LevelsHold(width, height, levels)) return false;
  namespace fs = std::filesystem;
  // Written beside the target and renamed over it once whole, as every file is.
  const std::string temp = path + ".tmp~" + std::to_string(::getpid());
  bool written = false;
  {
    TiffErrors errors;
    const TiffHandle tiff = OpenTiff(temp, "w", errors);
    if (tiff) {
      TIFF* t = tiff.get();
      TIFFSetField(t, TIFFTAG_IMAGEWIDTH, static_cast<uint32_t>(width));
      TIFFSetField(t, TIFFTAG_IMAGELENGTH, static_cast<uint32_t>(height));
      TIFFSetField(t, TIFFTAG_BITSPERSAMPLE, 16);
      TIFFSetField(t, TIFFTAG_SAMPLESPERPIXEL, 1);
      TIFFSetField(t, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISBLACK);
      TIFFSetField(t, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
      TIFFSetField(t, TIFFTAG_COMPRESSION, COMPRESSION_ADOBE_DEFLATE);
      TIFFSetField(t, TIFFTAG_PREDICTOR, PREDICTOR_HORIZONTAL);
      TIFFSetField(t, TIFFTAG_ROWSPERSTRIP, TIFFDefaultStripSize(t, 0));
      // The row is copied: libtiff's predictor works in the buffer it is given.
      std::vector<uint16_t> row(static_cast<size_t>(width));
      written = true;
      for (int32_t y = 0; y < height && written; ++y) {
        std::copy_n(levels.begin() + static_cast<std::ptrdiff_t>(y) * width, width, row.begin());
        written = TIFFWriteScanline(t, row.data(), static_cast<uint32_t>(y), 0) == 1;
      }
      written = written && TIFFFlush(t) == 1;
    }
  }
  std::error_code ec;
  if (written) fs::rename(fs::u8path(temp), fs::u8path(path), ec);
  const bool replaced = written && !ec;
  if (!replaced) fs::remove(fs::u8path(temp), ec);
  return replaced;
}

}  // namespace tessiva

#include "support/picturefiles.h"

#include <png.h>
#include <tiffio.h>

#include <cstring>
#include <fstream>
#include <iterator>

namespace tessiva::testing {

bool WriteTiff(const std::string& path, int32_t width, int32_t height, const std::vector<uint16_t>& samples,
               const TiffLayout& layout) {
  TIFF* tiff = TIFFOpen(path.c_str(), layout.bigEndian ? "wb" : "wl");
  if (!tiff) return false;
  TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, static_cast<uint32_t>(width));
  TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, static_cast<uint32_t>(height));
  TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, layout.bits);
  TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, layout.samples);
  TIFFSetField(tiff, TIFFTAG_SAMPLEFORMAT, layout.floating ? SAMPLEFORMAT_IEEEFP : SAMPLEFORMAT_UINT);
  TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC,
               layout.samples >= 3 ? PHOTOMETRIC_RGB
               : layout.minIsWhite ? PHOTOMETRIC_MINISWHITE
                                   : PHOTOMETRIC_MINISBLACK);
  TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
  TIFFSetField(tiff, TIFFTAG_COMPRESSION, layout.compression);
  const int side = layout.tileSide;
  if (side > 0) {
    TIFFSetField(tiff, TIFFTAG_TILEWIDTH, side);
    TIFFSetField(tiff, TIFFTAG_TILELENGTH, side);
  } else {
    TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, layout.rowsPerStrip > 0 ? layout.rowsPerStrip : height);
  }
  // The samples in the file's own width, row by row.
  const size_t perRow = static_cast<size_t>(width) * layout.samples, sampleBytes = layout.bits / 8;
  std::vector<unsigned char> raster(perRow * height * sampleBytes);
  for (size_t i = 0; i < perRow * height; ++i) {
    unsigned char* at = raster.data() + i * sampleBytes;
    if (layout.floating) {
      const float value = samples[i];
      std::memcpy(at, &value, sizeof value);
    } else if (layout.bits == 16) {
      std::memcpy(at, &samples[i], 2);
    } else {
      *at = static_cast<unsigned char>(samples[i]);
    }
  }
  bool ok = true;
  if (side > 0) {
    std::vector<unsigned char> tile(static_cast<size_t>(TIFFTileSize(tiff)));
    const size_t tileRow = static_cast<size_t>(side) * layout.samples * sampleBytes, row = perRow * sampleBytes;
    for (int32_t y0 = 0; y0 < height && ok; y0 += side)
      for (int32_t x0 = 0; x0 < width && ok; x0 += side) {
        std::fill(tile.begin(), tile.end(), 0);
        for (int32_t r = 0; r < side && y0 + r < height; ++r) {
          const size_t columns = std::min(side, width - x0) * layout.samples * sampleBytes;
          std::memcpy(tile.data() + r * tileRow, raster.data() + (y0 + r) * row + x0 * layout.samples * sampleBytes,
                      columns);
        }
        ok = TIFFWriteTile(tiff, tile.data(), x0, y0, 0, 0) >= 0;
      }
  } else {
    for (int32_t y = 0; y < height && ok; ++y)
      ok = TIFFWriteScanline(tiff, raster.data() + y * perRow * sampleBytes, y, 0) == 1;
  }
  TIFFClose(tiff);
  return ok;
}

namespace {

void Append(png_structp png, png_bytep data, size_t length) {
  static_cast<std::string*>(png_get_io_ptr(png))->append(reinterpret_cast<const char*>(data), length);
}
void Flush(png_structp) {}

bool Encode(png_structp png, png_infop info, int32_t width, int32_t height, const PngLayout& layout,
            const std::vector<uint8_t>& palette, png_bytepp rows) {
  if (setjmp(png_jmpbuf(png))) return false;
  png_set_IHDR(png, info, width, height, layout.bits, layout.colourType, PNG_INTERLACE_NONE,
               PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
  if (layout.colourType == PNG_COLOR_TYPE_PALETTE)
    png_set_PLTE(png, info, reinterpret_cast<png_const_colorp>(palette.data()), static_cast<int>(palette.size() / 3));
  png_write_info(png, info);
  png_write_image(png, rows);
  png_write_end(png, nullptr);
  return true;
}

}  // namespace

std::string EncodePng(int32_t width, int32_t height, const std::vector<uint16_t>& samples, const PngLayout& layout,
                      const std::vector<uint8_t>& palette) {
  static constexpr int kChannels[7] = {1, 0, 3, 1, 2, 0, 4};
  const size_t perRow = static_cast<size_t>(width) * kChannels[layout.colourType];
  const size_t sampleBytes = layout.bits == 16 ? 2 : 1;
  // Rows in the file's byte order: 16-bit samples big-endian.
  std::vector<png_byte> raster(perRow * height * sampleBytes);
  for (size_t i = 0; i < perRow * height; ++i) {
    if (sampleBytes == 2) {
      raster[2 * i] = static_cast<png_byte>(samples[i] >> 8);
      raster[2 * i + 1] = static_cast<png_byte>(samples[i] & 0xFF);
    } else {
      raster[i] = static_cast<png_byte>(samples[i]);
    }
  }
  std::vector<png_bytep> rows(height);
  for (int32_t y = 0; y < height; ++y) rows[y] = raster.data() + y * perRow * sampleBytes;
  std::string bytes;
  png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
  png_infop info = png ? png_create_info_struct(png) : nullptr;
  if (info) png_set_write_fn(png, &bytes, Append, Flush);
  const bool ok = info && Encode(png, info, width, height, layout, palette, rows.data());
  png_destroy_write_struct(&png, &info);
  return ok ? bytes : std::string();
}

std::string WriteBadPicture(const std::string& path, BadPicture kind, int32_t width, int32_t height) {
  const std::vector<uint16_t> levels(static_cast<size_t>(width) * height, 1000);
  std::string bytes;
  switch (kind) {
    case BadPicture::kTruncatedTiff: {
      WriteTiff(path, width, height, levels, {.bits = 16});
      std::ifstream in(path, std::ios::binary);
      bytes.assign(std::istreambuf_iterator<char>(in), {});
      bytes.resize(bytes.size() * 6 / 10);
      break;
    }
    case BadPicture::kPngBadChecksum: {
      bytes = EncodePng(width, height, levels, {.bits = 16});
      const size_t type = bytes.find("IDAT");
      size_t length = 0;
      for (size_t i = type - 4; i < type; ++i) length = length << 8 | static_cast<unsigned char>(bytes[i]);
      bytes[type + 4 + length] ^= 0x5A;  // the first byte of the chunk's checksum
      break;
    }
    case BadPicture::kFloatTiff:
      WriteTiff(path, width, height, levels, {.bits = 32, .floating = true});
      return "is a TIFF of 32-bit floating-point levels";
  }
  std::ofstream(path, std::ios::binary | std::ios::trunc) << bytes;
  return kind == BadPicture::kTruncatedTiff ? "is damaged or cut short (libtiff: "
                                            : "is damaged or cut short (libpng: IDAT: CRC error)";
}

}  // namespace tessiva::testing

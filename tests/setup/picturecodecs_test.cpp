// TIFF and PNG pictures: every layout libtiff and libpng write reads to the
// grey levels it holds (colour by its luma), at full depth for the solver and
// at 0-255 for the setup window; the 16-bit writers and the synthetic pairs
// read back exactly.
#include "setup/picturecodecs.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>

#include "setup/picture.h"
#include "state/files.h"
#include "support/picturefiles.h"
#include "support/tempdir.h"
#include "synth/texture.h"

namespace tessiva {
namespace {

using testing::PngLayout;
using testing::TiffLayout;

constexpr int32_t kWidth = 37, kHeight = 21;  // partial tiles and strips at both edges

uint16_t Sample(int32_t x, int32_t y, int32_t channel, uint32_t maxLevel) {
  return static_cast<uint16_t>((x * 2311u + y * 7919u + channel * 3001u + 17u) % (maxLevel + 1));
}

std::vector<uint16_t> Samples(int32_t channels, uint32_t maxLevel) {
  std::vector<uint16_t> out;
  for (int32_t y = 0; y < kHeight; ++y)
    for (int32_t x = 0; x < kWidth; ++x)
      for (int32_t c = 0; c < channels; ++c) out.push_back(Sample(x, y, c, maxLevel));
  return out;
}

int32_t Luma(double r, double g, double b) {
  return static_cast<int32_t>(std::lround(0.299 * r + 0.587 * g + 0.114 * b));
}

// A palette of 64 entries, entry i = (4i, 255 - 4i, 2i).
std::vector<uint8_t> Palette() {
  std::vector<uint8_t> rgb;
  for (int i = 0; i < 64; ++i) rgb.insert(rgb.end(), {uint8_t(4 * i), uint8_t(255 - 4 * i), uint8_t(2 * i)});
  return rgb;
}

TEST(PictureCodecs, EveryLayoutOfTheLibrariesReadsToItsGreyLevels) {
  struct Case {
    const char* name;
    int32_t maxLevel;
    // Writes the file and gives the expected full-depth level at (x, y).
    std::function<void(const std::string&)> write;
    std::function<int32_t(int32_t, int32_t)> level;
  };
  const auto grey = [](uint32_t max) { return [max](int32_t x, int32_t y) { return int32_t{Sample(x, y, 0, max)}; }; };
  const auto luma = [](uint32_t max) {
    return
        [max](int32_t x, int32_t y) { return Luma(Sample(x, y, 0, max), Sample(x, y, 1, max), Sample(x, y, 2, max)); };
  };
  const auto tiff = [](TiffLayout layout) {
    return [layout](const std::string& path) {
      ASSERT_TRUE(testing::WriteTiff(path, kWidth, kHeight, Samples(layout.samples, (1u << layout.bits) - 1), layout));
    };
  };
  const auto png = [](PngLayout layout, int32_t channels) {
    return [=](const std::string& path) {
      const uint32_t max = layout.colourType == 3 ? 63 : (1u << layout.bits) - 1;
      const std::string bytes = testing::EncodePng(kWidth, kHeight, Samples(channels, max), layout, Palette());
      ASSERT_FALSE(bytes.empty());
      ASSERT_TRUE(WriteFileAtomically(path, bytes));
    };
  };
  const Case cases[] = {
      {"TIFF 8-bit grey, one uncompressed strip", 255, tiff({}), grey(255)},
      {"TIFF 8-bit grey, LZW strips of 4 rows", 255, tiff({.compression = 5, .rowsPerStrip = 4}), grey(255)},
      {"TIFF 16-bit grey, Deflate strips of 4 rows", 65535, tiff({.bits = 16, .compression = 8, .rowsPerStrip = 4}),
       grey(65535)},
      {"TIFF 16-bit grey, LZW tiles", 65535, tiff({.bits = 16, .compression = 5, .tileSide = 16}), grey(65535)},
      {"TIFF 16-bit grey, big-endian", 65535, tiff({.bits = 16, .bigEndian = true}), grey(65535)},
      {"TIFF 8-bit RGB, Deflate tiles", 255, tiff({.samples = 3, .compression = 8, .tileSide = 16}), luma(255)},
      {"TIFF 16-bit RGB, LZW strips", 65535, tiff({.bits = 16, .samples = 3, .compression = 5, .rowsPerStrip = 5}),
       luma(65535)},
      {"TIFF 8-bit grey, white at zero", 255, tiff({.minIsWhite = true}),
       [](int32_t x, int32_t y) { return 255 - Sample(x, y, 0, 255); }},
      {"PNG 8-bit grey", 255, png({}, 1), grey(255)},
      {"PNG 16-bit grey", 65535, png({.bits = 16}, 1), grey(65535)},
      {"PNG 8-bit RGB", 255, png({.colourType = 2}, 3), luma(255)},
      {"PNG 16-bit RGB", 65535, png({.bits = 16, .colourType = 2}, 3), luma(65535)},
      {"PNG 8-bit grey and alpha", 255, png({.colourType = 4}, 2), grey(255)},
      {"PNG 16-bit RGB and alpha", 65535, png({.bits = 16, .colourType = 6}, 4), luma(65535)},
      {"PNG palette", 255, png({.colourType = 3}, 1),
       [](int32_t x, int32_t y) {
         const int i = Sample(x, y, 0, 63);
         return Luma(4 * i, 255 - 4 * i, 2 * i);
       }},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    testing::TempDir dir;
    // The kind is told by the file's signature: the extension says nothing.
    const std::string path = dir.File("picture.bmp");
    c.write(path);
    GreyArray full, eight;
    std::array<Colour, 256> palette{};
    ASSERT_EQ(ReadWholePicture(path, full, &palette, PictureDepth::kFull), "");
    ASSERT_EQ(ReadWholePicture(path, eight), "");
    ASSERT_EQ(std::tuple(full.UpperX(), full.UpperY(), eight.UpperX()), std::tuple(kWidth, kHeight, kWidth));
    EXPECT_EQ(palette[200], 0xC8C8C8u) << "a decoded picture's palette is the grey identity";
    EXPECT_EQ(PictureProblem(path), "");
    int wrongFull = 0, wrongEight = 0;
    for (int32_t y = 0; y < kHeight; ++y)
      for (int32_t x = 0; x < kWidth; ++x) {
        const int32_t level = c.level(x, y);
        wrongFull += full(x, y) != level;
        wrongEight += eight(x, y) != static_cast<int32_t>(std::lround(level * 255.0 / c.maxLevel));
      }
    EXPECT_EQ(wrongFull, 0);
    EXPECT_EQ(wrongEight, 0);
  }
}

TEST(PictureCodecs, SixteenBitWritersReadBackEveryLevelExactly) {
  std::vector<uint16_t> levels(kWidth * kHeight);
  for (size_t i = 0; i < levels.size(); ++i)
    levels[i] = static_cast<uint16_t>(i * 65535 / (levels.size() - 1) ^ (i & 1));
  for (auto write : {WriteGreyPng16, WriteGreyTiff16}) {
    testing::TempDir dir;
    const std::string path = dir.File("written");
    ASSERT_TRUE(write(path, kWidth, kHeight, levels));
    GreyArray read;
    ASSERT_EQ(ReadWholePicture(path, read, nullptr, PictureDepth::kFull), "");
    int wrong = 0;
    for (int32_t y = 0; y < kHeight; ++y)
      for (int32_t x = 0; x < kWidth; ++x) wrong += read(x, y) != levels[static_cast<size_t>(y) * kWidth + x];
    EXPECT_EQ(wrong, 0);
    EXPECT_FALSE(write(path, kWidth, kHeight + 1, levels)) << "levels that don't fill the size";
  }
}

// The 16-bit pictures of a synthetic pair hold the 8-bit levels to within half
// an 8-bit step, and finer levels between them; PNG and TIFF hold the same.
TEST(PictureCodecs, SyntheticPairsOfEachFormatAgreeAndSixteenBitsCarryFinerLevels) {
  synth::SpeckleSettings st;
  st.width = st.height = 48;
  const synth::FieldSpec field{synth::FieldKind::Translation, 0.4, -0.2};
  GreyArray pictures[3];
  const PictureFileFormat formats[3] = {PictureFileFormat::kBmp, PictureFileFormat::kPng16, PictureFileFormat::kTiff16};
  for (int i = 0; i < 3; ++i) {
    testing::TempDir dir;
    ASSERT_TRUE(synth::WriteSyntheticPair(dir.Path(), st, field, formats[i]));
    const std::string name = "def." + std::string(ExtensionOf(formats[i]));
    ASSERT_EQ(ReadWholePicture(dir.File(name), pictures[i], nullptr, PictureDepth::kFull), "") << name;
  }
  const auto& [bmp, png, tiff] = pictures;
  int farFromEightBit = 0, differ = 0, between = 0;
  for (int32_t y = 0; y < st.height; ++y)
    for (int32_t x = 0; x < st.width; ++x) {
      farFromEightBit += std::abs(png(x, y) / 257.0 - bmp(x, y)) > 0.5 + 1.0 / 514;
      differ += png(x, y) != tiff(x, y);
      between += png(x, y) % 257 != 0;
    }
  EXPECT_EQ(farFromEightBit, 0);
  EXPECT_EQ(differ, 0);
  EXPECT_GT(between, st.width * st.height * 9 / 10);
}

}  // namespace
}  // namespace tessiva

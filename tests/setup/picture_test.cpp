#include "setup/picture.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <limits>
#include <random>
#include <tuple>

#include "state/parameters.h"
#include "support/tempdir.h"

namespace tessiva {
namespace {

constexpr size_t kHead = 14 + 40 + 1024;
constexpr int32_t kIntMax = std::numeric_limits<int32_t>::max(), kIntMin = std::numeric_limits<int32_t>::min();

void Put32(std::string& out, size_t at, int32_t v) {
  for (size_t i = 0; i < 4; ++i) out[at + i] = static_cast<char>(static_cast<uint32_t>(v) >> (8 * i));
}

// A BMP built byte by byte: header, palette entry i = (i + shift) as B, G, R,
// then the row bytes exactly as given, in file order (bottom row first).
std::string Bmp(int32_t width, int32_t height, const std::string& rows, uint8_t shift = 0) {
  std::string out(kHead, '\0');
  out.replace(0, 2, "BM");
  out[14] = 40, out[26] = 1, out[28] = 8;  // information header size, planes, bits per pixel
  Put32(out, 18, width);
  Put32(out, 22, height);
  for (size_t i = 0; i < 256; ++i) out[54 + 4 * i] = static_cast<char>(i + shift);  // blue only
  return out + rows;
}

// Rows of `rowLength` bytes: level 16 * fileRow + x % 7 over the width, 0xEE padding.
std::string Rows(int32_t width, int32_t height, size_t rowLength) {
  std::string rows;
  for (int32_t r = 0; r < height; ++r) {
    std::string row(rowLength, '\xEE');
    for (int32_t x = 0; x < width; ++x) row[x] = static_cast<char>(16 * r + x % 7);
    rows += row;
  }
  return rows;
}
std::string Plain(int32_t width, int32_t height) { return Bmp(width, height, Rows(width, height, (width + 3) & ~3)); }
int32_t Level(int32_t x, int32_t fileRow) { return 16 * fileRow + x % 7; }

std::vector<int32_t> Values(const GreyArray& a) {
  return {a.Data(), a.Data() + (a.Empty() ? 0 : a.Stride() * (a.UpperY() + 1))};
}
auto Snapshot(const AppState& s) {
  return std::tuple{s.Lima,           s.Hima,          s.PixRef.UpperX(), Values(s.PixRef),
                    Values(s.PixDef), s.PicRefPalette, s.PicDefPalette};
}

struct PictureFixture : ::testing::Test {
  testing::TempDir dir;
  AppState s;

  PictureFixture() { s.Lpas = 8; }
  bool Load(const std::string& ref, const std::string& def) {
    s.PicRefPath = dir.Write("ref.bmp", ref);
    s.PicDefPath = dir.Write("def.bmp", def);
    return ChargePicArea(s);
  }
  // Loads a pair that has to be read, both arrays sized width x height.
  bool LoadSized(const std::string& ref, const std::string& def, int32_t w, int32_t h) {
    return Load(ref, def) && s.PixRef.UpperX() == w && s.PixRef.UpperY() == h && s.PixDef.UpperX() == w;
  }
};

// Palettes are kept as RGB and never applied to the levels.
TEST_F(PictureFixture, RowsArePaddedToFourBytesAndStoredBottomUpWithTheirPaletteAside) {
  const std::tuple<int32_t, int32_t, size_t> cases[] = {{1023, 2, 1024}, {1024, 2, 1024}, {1, 3, 4}, {6, 4, 8}};
  for (auto [width, height, rowLength] : cases) {
    SCOPED_TRACE(width);
    const std::string rows = Rows(width, height, rowLength);
    ASSERT_TRUE(LoadSized(Bmp(width, height, rows, 100), Bmp(width, height, rows, 7), width, height));
    EXPECT_EQ(std::tuple(s.PicRefPalette[0], s.PicRefPalette[200], s.PicDefPalette[1]), std::tuple(100u, 44u, 8u));
    EXPECT_EQ(std::tie(s.Lima, s.Hima), std::tie(width, height));
    int wrong = 0;
    for (int32_t r = 0; r < height; ++r) {
      for (int32_t x = 0; x < width; ++x) wrong += s.PixRef(x, height - 1 - r) != Level(x, r);
      wrong += s.PixDef(width, r) != 0;  // padding never lands beyond the picture
    }
    EXPECT_EQ(wrong, 0);
  }
}

TEST_F(PictureFixture, ReferenceSkippedOrRefusedLeavesEverythingAsItWas) {
  const auto sized = [](int32_t width, int32_t height) { return Bmp(width, height, std::string(64, '\x01')); };
  const std::tuple<const char*, std::string, bool> cases[] = {
      {"other format", "GIF89a\x04\x00\x04\x00", true},
      {"empty", "", true},
      {"top-down rows", sized(5, -3), false},
      {"width beyond 32768", sized(32769, 1), false},
      {"giant together", sized(32768, 32768), false},
      {"widest field", sized(kIntMax, 1), false},
  };
  for (const auto& [name, ref, accepted] : cases) {
    SCOPED_TRACE(name);
    std::tie(s.Lima, s.Hima) = std::tuple{5, 4};
    AllocPatAndPictures(s);
    s.PixRef(1, 1) = 42;
    s.PixDef(2, 2) = 43;
    s.PicRefPalette.fill(0x123456);
    const auto before = Snapshot(s);
    EXPECT_EQ(Load(ref, Plain(9, 9)), accepted);  // a file that isn't a BMP is no failure
    EXPECT_TRUE(Snapshot(s) == before);
  }
  const auto before = Snapshot(s);
  s.PicRefPath = dir.File("absent.bmp");
  EXPECT_FALSE(ChargePicArea(s));
  EXPECT_TRUE(Snapshot(s) == before);
}

TEST_F(PictureFixture, ShortFileKeepsTheBytesItHoldsAndLeavesTheRest) {
  const std::string full = Plain(4, 4);
  const std::tuple<const char*, size_t, int> cases[] = {{"two and a half rows", kHead + 10, 10},
                                                        {"no pixels", kHead, 0},
                                                        {"last byte missing", full.size() - 1, 15}};
  for (const auto& [name, length, pixelsRead] : cases) {
    SCOPED_TRACE(name);
    ASSERT_TRUE(LoadSized(full.substr(0, length), full, 4, 4));
    for (int i = 0; i < 16; ++i) {  // in file order
      const int32_t x = i % 4, r = i / 4;
      EXPECT_EQ(s.PixRef(x, 3 - r), i < pixelsRead ? Level(x, r) : 0) << i;
    }
  }
}

TEST_F(PictureFixture, NamesInLowerCaseFindFilesOfAnotherCase) {
  dir.Write("REF.BMP", Plain(2, 2));
  dir.Write("Def.Bmp", Plain(2, 2));
  s.PicRefPath = dir.File("ref.bmp");
  s.PicDefPath = dir.File("def.bmp");
  ASSERT_TRUE(ChargePicArea(s));
  ASSERT_EQ(s.PixDef.UpperX(), 2);
  EXPECT_EQ(s.PixDef(1, 0), Level(1, 1));
}

TEST_F(PictureFixture, DeformedOfAnotherSizeIsCutToTheReferenceArrays) {
  for (auto [width, height] : {std::pair{6, 5}, {2, 2}}) {
    SCOPED_TRACE(::testing::Message() << width << "x" << height);
    ASSERT_TRUE(LoadSized(Plain(4, 3), Plain(width, height), 4, 3));
    EXPECT_EQ(std::tie(s.Lima, s.Hima), std::tie(width, height));  // the deformed picture has the last word
    for (int32_t y = 0; y <= 3; ++y)
      for (int32_t x = 0; x <= 4; ++x)
        EXPECT_EQ(s.PixDef(x, y), x < width && y < height ? Level(x, height - 1 - y) : 0) << x << "," << y;
  }
}

// Damaged files of every kind may be refused or read as garbage, but never
// crash the reader, make it allocate for an absurd header or change the file.
TEST_F(PictureFixture, DamagedFilesNeverCrashNorChangeTheFile) {
  const std::string good = Plain(13, 7);
  const int32_t fields[] = {kIntMax, kIntMin, -1, 0, 32769, 1 << 20, 65535};
  std::mt19937 random(20240611);
  const auto pick = [&](size_t n) { return static_cast<size_t>(random() % n); };
  for (int i = 0; i < 300; ++i) {
    std::string damaged = good;
    if (i % 3 == 0) damaged.resize(pick(good.size()));
    if (i % 3 == 1)
      for (size_t k = 1 + pick(8); k > 0; --k) damaged[pick(2) ? pick(54) : pick(good.size())] = char(random());
    if (i % 3 == 2)
      for (size_t k = 1 + pick(2); k > 0; --k) Put32(damaged, pick(2) ? 18 : 22, fields[pick(std::size(fields))]);
    SCOPED_TRACE(i);
    AppState fresh;
    fresh.PicRefPath = dir.Write("ref.bmp", i % 2 ? good : damaged);
    fresh.PicDefPath = dir.Write("def.bmp", i % 2 ? damaged : good);
    ChargePicArea(fresh);
    GreyArray whole;
    const bool read = ReadWholePicture(dir.File("ref.bmp"), whole).empty();
    EXPECT_EQ(dir.Read(i % 2 ? "def.bmp" : "ref.bmp"), damaged);
    EXPECT_LE(int64_t{fresh.PixRef.UpperX()} * fresh.PixRef.UpperY(), int64_t{1} << 26);
    EXPECT_EQ(read, !whole.Empty());
  }
}

TEST_F(PictureFixture, WholeReadGivesThePictureAndItsPalette) {
  GreyArray pixels;
  std::array<Colour, 256> palette{};
  const std::string rows = Rows(6, 4, 8);
  ASSERT_EQ(ReadWholePicture(dir.Write("pic.bmp", Bmp(6, 4, rows + "extra bytes", 3)), pixels, &palette), "");
  ASSERT_EQ(std::tuple(pixels.UpperX(), pixels.UpperY(), palette[1]), std::tuple(6, 4, 4u));
  int wrong = 0;
  for (int32_t r = 0; r < 4; ++r)
    for (int32_t x = 0; x < 6; ++x) wrong += pixels(x, 3 - r) != Level(x, r);
  EXPECT_EQ(wrong, 0);
}

// Every fault is told with the picture's name, and none of them allocates the
// picture: a header claiming 64 megapixels over a 10 KB file is refused from
// its length alone.
TEST_F(PictureFixture, WholeReadRefusesFaultyPicturesNamingThemAndTheFault) {
  const auto with = [](std::string bmp, size_t at, char byte) {
    bmp[at] = byte;
    return bmp;
  };
  const std::string body(10 * 1024, '\x55');
  const std::pair<std::string, std::string> cases[] = {
      {Plain(8, 8).substr(0, Plain(8, 8).size() - 1),
       "is cut short: its header gives 8 x 8 pixels, which take 1,142 bytes, but the file holds only 1,141"},
      {Bmp(32768, 2048, body), "its header gives 32,768 x 2,048 pixels, which take 67,109,942 bytes"},
      {Bmp(8192, 8192, body), "its header gives 8,192 x 8,192 pixels"},
      {Plain(8, 8).substr(0, 100), "the file ends inside its header"},
      {Bmp(5, -3, body), "stores its rows from the top down (a negative height)"},
      {Bmp(4, 32769, body), "is 4 x 32,769 pixels, beyond the 32,768 pixels a side Tessiva reads"},
      {Bmp(8193, 8193, body), "larger than the 67,108,864 pixels (64 megapixels) Tessiva reads"},
      {Bmp(0, 4, body), "claims a size of 0 x 4 pixels, which holds no pixel"},
      {"GIF89a\x04\x00\x04\x00", "is not a BMP, TIFF or PNG picture"},
      {with(Plain(2, 2), 28, 24), "has 24 bits per pixel; Tessiva reads 8-bit grey-level BMP pictures only"},
      {with(Plain(2, 2), 30, 1), "is compressed"},
      {"directory", "is a directory, not a picture file"},
      {"missing", "is missing"},
  };
  for (const auto& [content, fault] : cases) {
    SCOPED_TRACE(fault);
    const std::string path = dir.File("pic.bmp");
    std::filesystem::remove_all(path);
    if (content == "directory") std::filesystem::create_directory(path);
    if (content != "directory" && content != "missing") dir.Write("pic.bmp", content);
    GreyArray pixels;
    const std::string message = ReadWholePicture(path, pixels);
    EXPECT_NE(message.find("picture " + path + " "), std::string::npos) << message;
    EXPECT_NE(message.find(fault), std::string::npos) << message;
    EXPECT_TRUE(pixels.Empty());
    EXPECT_EQ(PictureProblem(path), message);
  }
}

}  // namespace
}  // namespace tessiva

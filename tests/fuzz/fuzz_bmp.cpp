// BMP pictures: the input is a picture file. Read whole, it has the size its
// header gives and the levels its rows hold; the whole reader and the check
// before it agree; and the setup window's reader, with the input as the
// reference or as the deformed picture beside a good one, leaves pictures of
// one size with levels 0 to 255. No picture file changes.
#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "fuzz/fuzzcheck.h"
#include "setup/picture.h"

using namespace tessiva;

namespace {

constexpr size_t kPixelsAt = 14 + 40 + 4 * 256;
// The setup window's reader sizes its arrays from the header alone and reads
// what rows the file has; beyond this a reference would spend the run filling
// arrays of zeros.
constexpr int64_t kMostPixelsAllocated = int64_t{1} << 20;

int32_t I32At(std::string_view bytes, size_t at) {
  if (bytes.size() < at + 4) return 0;
  uint32_t v = 0;
  for (size_t i = 0; i < 4; ++i) v |= uint32_t{static_cast<uint8_t>(bytes[at + i])} << (8 * i);
  return static_cast<int32_t>(v);
}

void CheckLevels(const GreyArray& pixels, const char* which) {
  if (pixels.Empty()) return;
  const size_t n = static_cast<size_t>(pixels.UpperX() + 1) * static_cast<size_t>(pixels.UpperY() + 1);
  for (size_t i = 0; i < n; ++i)
    FUZZ_CHECK(pixels.Data()[i] >= 0 && pixels.Data()[i] <= 255, std::string(which) + " level " + fuzz::Num(pixels.Data()[i]));
}

void CheckWholeRead(const std::string& path, std::string_view bytes) {
  GreyArray pixels;
  std::array<Colour, 256> palette{};
  const std::string problem = ReadWholePicture(path, pixels, &palette);
  FUZZ_CHECK(problem.empty() == PictureProblem(path).empty(), "whole read: \"" + problem + "\", check: \"" + PictureProblem(path) + "\"");
  if (!problem.empty()) {
    FUZZ_CHECK(pixels.Empty(), "a refused picture left pixels: " + problem);
    return;
  }
  if (!bytes.starts_with("BM")) return;  // a TIFF or PNG: fuzz_tiffpng's part
  const int32_t width = I32At(bytes, 18), height = I32At(bytes, 22);
  FUZZ_CHECK(pixels.UpperX() == width && pixels.UpperY() == height,
             fuzz::Num(pixels.UpperX()) + " x " + fuzz::Num(pixels.UpperY()) + " read for a header of " +
                 fuzz::Num(width) + " x " + fuzz::Num(height));
  // Rows are stored bottom-up, each padded to a multiple of four bytes.
  const size_t row = 4 * ((static_cast<size_t>(width) + 3) / 4);
  for (int32_t y = 0; y < height; ++y)
    for (int32_t x = 0; x < width; ++x) {
      const auto stored = static_cast<uint8_t>(bytes[kPixelsAt + static_cast<size_t>(height - 1 - y) * row + static_cast<size_t>(x)]);
      FUZZ_CHECK(pixels(x, y) == stored, "level at " + fuzz::Num(x) + "," + fuzz::Num(y) + " is " +
                                              fuzz::Num(pixels(x, y)) + ", the file holds " + fuzz::Num(stored));
    }
}

void CheckSetupRead(const std::string& ref, const std::string& def) {
  AppState s;
  s.PicRefPath = ref;
  s.PicDefPath = def;
  ChargePicArea(s);
  CheckLevels(s.PixRef, "reference");
  CheckLevels(s.PixDef, "deformed");
  FUZZ_CHECK(s.PixDef.Empty() || (s.PixDef.UpperX() == s.PixRef.UpperX() && s.PixDef.UpperY() == s.PixRef.UpperY()),
             "deformed " + fuzz::Num(s.PixDef.UpperX()) + " x " + fuzz::Num(s.PixDef.UpperY()) + " beside reference " +
                 fuzz::Num(s.PixRef.UpperX()) + " x " + fuzz::Num(s.PixRef.UpperY()));
  FUZZ_CHECK(s.XPat.size() == static_cast<size_t>(s.NbPatMax) + 1 || (s.XPat.empty() && s.NbPatMax == 0),
             "pattern store of " + fuzz::Num(static_cast<double>(s.XPat.size())) + " for NbPatMax " + fuzz::Num(s.NbPatMax));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  const std::string& dir = fuzz::ScratchDir("bmp");
  static const std::string good = [&dir] {
    const std::string path = dir + "/good.bmp";
    std::vector<uint8_t> levels(5 * 3);
    for (size_t i = 0; i < levels.size(); ++i) levels[i] = static_cast<uint8_t>(40 * i);
    FUZZ_CHECK(SaveGreyBmp(path, 5, 3, levels), "can't write " + path);
    return path;
  }();
  const std::string path = fuzz::WriteFile(dir, "input.bmp", bytes);
  const auto before = fuzz::Snapshot(dir);

  CheckWholeRead(path, bytes);
  const int64_t claimed = int64_t{I32At(bytes, 18)} * I32At(bytes, 22);
  if (claimed <= kMostPixelsAllocated) CheckSetupRead(path, good);
  CheckSetupRead(good, path);

  FUZZ_CHECK(fuzz::ChangedEntry(before, fuzz::Snapshot(dir)).empty(), fuzz::ChangedEntry(before, fuzz::Snapshot(dir)));
  return 0;
}

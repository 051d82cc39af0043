// TIFF and PNG pictures: the input is a picture file. The whole read and the
// check before it agree; a picture read has a size within the limits and
// levels within its depth (0 to 255 at eight bits); the setup window's reader,
// with the input as either picture beside a good one, leaves pictures of one
// size. No picture file changes, and libtiff and libpng print nothing.
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "fuzz/fuzzcheck.h"
#include "setup/picture.h"
#include "setup/picturecodecs.h"

using namespace tessiva;

namespace {

void CheckLevels(const GreyArray& pixels, int32_t top, const std::string& which) {
  if (pixels.Empty()) return;
  FUZZ_CHECK(int64_t{pixels.UpperX()} * pixels.UpperY() <= kMaxPicturePixels,
             which + " of " + fuzz::Num(pixels.UpperX()) + " x " + fuzz::Num(pixels.UpperY()));
  const size_t n = static_cast<size_t>(pixels.UpperX() + 1) * static_cast<size_t>(pixels.UpperY() + 1);
  for (size_t i = 0; i < n; ++i)
    FUZZ_CHECK(pixels.Data()[i] >= 0 && pixels.Data()[i] <= top, which + " level " + fuzz::Num(pixels.Data()[i]));
}

void CheckWholeRead(const std::string& path) {
  for (const PictureDepth depth : {PictureDepth::kEightBit, PictureDepth::kFull}) {
    GreyArray pixels;
    const std::string problem = ReadWholePicture(path, pixels, nullptr, depth);
    FUZZ_CHECK(problem.empty() == PictureProblem(path).empty(),
               "whole read: \"" + problem + "\", check: \"" + PictureProblem(path) + "\"");
    FUZZ_CHECK(problem.empty() != pixels.Empty(), "a refused picture left pixels, or a read one none: " + problem);
    FUZZ_CHECK(problem.empty() || problem.starts_with("picture " + path + " "), "the message names another: " + problem);
    CheckLevels(pixels, depth == PictureDepth::kFull ? 65535 : 255, "whole read");
  }
}

void CheckSetupRead(const std::string& ref, const std::string& def) {
  AppState s;
  s.PicRefPath = ref;
  s.PicDefPath = def;
  ChargePicArea(s);
  CheckLevels(s.PixRef, 255, "reference");
  CheckLevels(s.PixDef, 255, "deformed");
  FUZZ_CHECK(s.PixDef.Empty() || (s.PixDef.UpperX() == s.PixRef.UpperX() && s.PixDef.UpperY() == s.PixRef.UpperY()),
             "deformed " + fuzz::Num(s.PixDef.UpperX()) + " x " + fuzz::Num(s.PixDef.UpperY()) + " beside reference " +
                 fuzz::Num(s.PixRef.UpperX()) + " x " + fuzz::Num(s.PixRef.UpperY()));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  if (bytes.starts_with("BM")) return 0;  // fuzz_bmp's part
  const std::string& dir = fuzz::ScratchDir("tiffpng");
  static const std::string good = [&dir] {
    const std::string path = dir + "/good.png";
    std::vector<uint16_t> levels(16 * 16);
    for (size_t i = 0; i < levels.size(); ++i) levels[i] = static_cast<uint16_t>(257 * i);
    FUZZ_CHECK(WriteGreyPng16(path, 16, 16, levels), "can't write " + path);
    return path;
  }();
  const std::string path = fuzz::WriteFile(dir, "input.pic", bytes);
  const auto before = fuzz::Snapshot(dir);

  CheckWholeRead(path);
  CheckSetupRead(path, good);
  CheckSetupRead(good, path);

  FUZZ_CHECK(fuzz::ChangedEntry(before, fuzz::Snapshot(dir)).empty(), fuzz::ChangedEntry(before, fuzz::Snapshot(dir)));
  return 0;
}

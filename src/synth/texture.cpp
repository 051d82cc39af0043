#include "synth/texture.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>

#include "setup/picture.h"
#include "state/files.h"
#include "state/numtext.h"

namespace tessiva::synth {
namespace {

constexpr double kCell = 8.0;
constexpr double kFlatGrey = 40.0;  // what a hole shows
constexpr double kSixteenBitsPerLevel = 257.0;  // 65535 / 255

// Levels on the 0-255 scale times `scale`, rounded and kept within the type.
template <typename Level>
std::vector<Level> Quantised(const std::vector<double>& levels, double scale) {
  constexpr double top = std::numeric_limits<Level>::max();
  std::vector<Level> out(levels.size());
  std::transform(levels.begin(), levels.end(), out.begin(),
                 [&](double level) { return static_cast<Level>(std::clamp(std::nearbyint(level * scale), 0.0, top)); });
  return out;
}

bool SavePicture(const std::string& path, PictureFileFormat format, int32_t width, int32_t height,
                 const std::vector<double>& levels) {
  if (format == PictureFileFormat::kBmp) return SaveGreyBmp(path, width, height, Quantised<uint8_t>(levels, 1.0));
  const std::vector<uint16_t> fine = Quantised<uint16_t>(levels, kSixteenBitsPerLevel);
  return format == PictureFileFormat::kPng16 ? WriteGreyPng16(path, width, height, fine)
                                             : WriteGreyTiff16(path, width, height, fine);
}

}  // namespace

Speckle::Speckle(const SpeckleSettings& st) {
  // Spots cover a margin round the picture, so that moved points still find speckle.
  margin_ = 0.5 * std::max(st.width, st.height) + 16.0;
  cellsX_ = static_cast<int32_t>(std::ceil((st.width + 2 * margin_) / kCell));
  cellsY_ = static_cast<int32_t>(std::ceil((st.height + 2 * margin_) / kCell));
  cells_.resize(static_cast<size_t>(cellsX_) * cellsY_);
  inverseTwoSigma2_ = 1.0 / (2.0 * st.spotRadius * st.spotRadius);
  reach2_ = 16.0 * st.spotRadius * st.spotRadius;
  std::mt19937_64 rng(st.seed);
  std::uniform_real_distribution<double> px(-margin_, st.width + margin_), py(-margin_, st.height + margin_);
  std::uniform_real_distribution<double> amplitude(-90.0 * st.contrast, 90.0 * st.contrast);
  const auto count = static_cast<int64_t>(st.density * (st.width + 2 * margin_) * (st.height + 2 * margin_));
  for (int64_t n = 0; n < count; ++n) {
    const Spot s{px(rng), py(rng), amplitude(rng)};
    const auto cx = static_cast<int32_t>((s.x + margin_) / kCell), cy = static_cast<int32_t>((s.y + margin_) / kCell);
    cells_[static_cast<size_t>(std::clamp(cy, 0, cellsY_ - 1)) * cellsX_ + std::clamp(cx, 0, cellsX_ - 1)].push_back(s);
  }
}

double Speckle::At(double x, double y) const {
  const auto cx = static_cast<int32_t>(std::floor((x + margin_) / kCell));
  const auto cy = static_cast<int32_t>(std::floor((y + margin_) / kCell));
  double level = 128.0;
  for (int32_t j = std::max(cy - 1, 0); j <= std::min(cy + 1, cellsY_ - 1); ++j)
    for (int32_t i = std::max(cx - 1, 0); i <= std::min(cx + 1, cellsX_ - 1); ++i)
      for (const Spot& s : cells_[static_cast<size_t>(j) * cellsX_ + i]) {
        const double d2 = (x - s.x) * (x - s.x) + (y - s.y) * (y - s.y);
        if (d2 < reach2_) level += s.amplitude * std::exp(-d2 * inverseTwoSigma2_);
      }
  return level;
}

std::vector<double> RenderLevels(const Speckle& speckle, const SpeckleSettings& st, const FieldSpec* field,
                                 uint32_t noiseSeed) {
  std::vector<double> levels(static_cast<size_t>(st.width) * st.height);
  const int32_t n = std::max(st.superSampling, 1);
  std::mt19937_64 rng(noiseSeed);
  std::normal_distribution<double> noise(0.0, std::max(st.noiseSigma, 1e-12));
  for (int32_t py = 0; py < st.height; ++py)
    for (int32_t px = 0; px < st.width; ++px) {
      double sum = 0.0;
      for (int32_t j = 0; j < n; ++j)
        for (int32_t i = 0; i < n; ++i) {
          // Sub-samples spread over the pixel's area, centred on its whole coordinates.
          const double x = px + (i + 0.5) / n - 0.5, y = py + (j + 0.5) / n - 0.5;
          const Vec2 X = field ? InverseMap(*field, x, y) : Vec2{x, y};
          const bool material = !field || (Material(*field, X.u, X.v) && Lands(*field, X, x, y));
          sum += material ? speckle.At(X.u, X.v) : kFlatGrey;
        }
      double level = sum / (n * n);
      if (st.noiseSigma > 0.0) level += noise(rng);
      levels[static_cast<size_t>(py) * st.width + px] = level;
    }
  return levels;
}

std::vector<uint8_t> Render(const Speckle& speckle, const SpeckleSettings& st, const FieldSpec* field,
                            uint32_t noiseSeed) {
  return Quantised<uint8_t>(RenderLevels(speckle, st, field, noiseSeed), 1.0);
}

bool WriteSyntheticPair(const std::string& dir, const SpeckleSettings& st, const FieldSpec& field,
                        PictureFileFormat format, int32_t step) {
  const Speckle speckle(st);
  std::vector<double> ref = RenderLevels(speckle, st, nullptr, st.seed + 1);
  if (field.kind == FieldKind::PlateWithHole) {
    // The hole shows flat in the reference too.
    for (int32_t y = 0; y < st.height; ++y)
      for (int32_t x = 0; x < st.width; ++x)
        if (!Material(field, x, y)) ref[static_cast<size_t>(y) * st.width + x] = kFlatGrey;
  }
  const std::vector<double> def = RenderLevels(speckle, st, &field, st.seed + 2);
  std::string truth = "; synthetic pair: x = X + u(X), lengths in pixels\nfield=" + FieldKindName(field.kind) +
                      "\na=" + StrTrim(field.a) + "\nb=" + StrTrim(field.b) + "\nc=" + StrTrim(field.c) +
                      "\npoisson=" + StrTrim(field.poisson) + "\ncx=" + StrTrim(field.cx) + "\ncy=" + StrTrim(field.cy) +
                      "\nnoise=" + StrTrim(st.noiseSigma) + "\n; X Y u v\n";
  for (int32_t y = 0; y < st.height; y += step)
    for (int32_t x = 0; x < st.width; x += step) {
      if (!Material(field, x, y)) continue;
      const Vec2 d = Displacement(field, x, y);
      truth += std::to_string(x) + " " + std::to_string(y) + " " + Format(d.u, "0.000000") + " " +
               Format(d.v, "0.000000") + "\n";
    }
  const std::string extension(ExtensionOf(format));
  return SavePicture(JoinPath(dir, "ref." + extension), format, st.width, st.height, ref) &&
         SavePicture(JoinPath(dir, "def." + extension), format, st.width, st.height, def) &&
         WriteFileAtomically(JoinPath(dir, "truth.txt"), truth);
}

}  // namespace tessiva::synth

#include "results/palette.h"

#include <algorithm>
#include <cmath>

#include "state/numtext.h"

namespace tessiva {
namespace {

constexpr Colour kOutOfRange = 0x3264C8;  // RGB(50, 100, 200)
constexpr Colour kBlue = 0x0000FF;
constexpr Colour kRed = 0xFF0000;
constexpr Colour kBlack = 0x000000;
constexpr Colour kWhite = 0xFFFFFF;

// A component rounds half to even and saturates to 0..255.
uint32_t Component(double v) { return static_cast<uint32_t>(std::clamp(Round(v), 0.0, 255.0)); }

Colour Rgb(double r, double g, double b) { return Component(r) << 16 | Component(g) << 8 | Component(b); }

Colour Classical(double t) {
  const double c = t * 1020.0;
  return c <= 510.0 ? Rgb(0, c, 560.0 - c) : Rgb(c - 460.0, 1020.0 - c, 0);
}

Colour Grey(double t) {
  const double c = t * 255.0;
  return Rgb(c, c, c);
}

// Seven bands: blue, cyan, green, yellow, red, magenta, black, then up to white.
Colour Enhanced(double t) {
  const double w = 1.0 / 7.0;
  if (t < 1.0 / 7.0) return Rgb(0, 255.0 * 7.0 * t, 255);
  if (t < 2.0 / 7.0) return Rgb(0, 255, 255.0 * (2.0 - 7.0 * t));
  if (t < 3.0 / 7.0) return Rgb(255.0 * (7.0 * t - 2.0), 255, 0);
  if (t < 4.0 / 7.0) return Rgb(255, 255.0 * (4.0 - 7.0 * t), 0);
  if (t < 5.0 / 7.0) return Rgb(255, 0, 255.0 * (7.0 * t - 4.0));
  if (t < 6.0 / 7.0) {
    const double fade = 255.0 * (6.0 / 7.0 - t) / w;
    return Rgb(fade, 0, fade);
  }
  const double rise = 255.0 * (t - 6.0 / 7.0) / w;
  return Rgb(rise, rise, rise);
}

Colour OutOfRange(double t, int mode, bool debordeOn) {
  if (!debordeOn) return kOutOfRange;
  const bool below = t < 0;
  switch (mode) {
    case kClassicalPalette: return below ? kBlue : kRed;
    case kGreyPalette: return below ? kBlack : kWhite;
    case kEnhancedPalette: return below ? kBlue : kWhite;
    default: return kWhite;
  }
}

}  // namespace

ColourScale::ColourScale(int32_t nbCouleurs) { SetNbCouleurs(nbCouleurs); }

void ColourScale::SetNbCouleurs(int32_t steps) {
  steps_ = std::clamp(steps, 1, kMaxSteps);
  Colour (*const palettes[])(double) = {Classical, Grey, Enhanced};
  for (size_t mode = 0; mode < tables_.size(); ++mode) {
    tables_[mode].resize(static_cast<size_t>(steps_) + 1);
    for (int32_t k = 0; k <= steps_; ++k)
      tables_[mode][static_cast<size_t>(k)] = palettes[mode](static_cast<double>(k) / steps_);
  }
}

Colour ColourScale::CouleurEchelle(double& t, int mode) const {
  // NaN counts as out of range too, on the high side.
  if (!(t >= 0.0 && t <= 1.0)) return OutOfRange(t, mode, DebordeOn);
  const double step = Int(t * steps_);
  t = step / steps_;
  if (mode < 0 || mode >= static_cast<int>(tables_.size())) return kWhite;
  return tables_[static_cast<size_t>(mode)][static_cast<size_t>(step)];
}

}  // namespace tessiva

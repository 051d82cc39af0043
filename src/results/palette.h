// The colour scale shared by the field maps, the advisor gauge and the
// propagation walk: a fraction from 0 to 1 is quantised to a number of colour
// steps, so that a map shows bands, and turned into a colour of one palette.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "ui/canvas.h"

namespace tessiva {

// The palettes: blue to red, grey levels, and blue to red followed by black and white.
inline constexpr int kClassicalPalette = 0;
inline constexpr int kGreyPalette = 1;
inline constexpr int kEnhancedPalette = 2;

class ColourScale {
 public:
  // Steps are held between 1 and kMaxSteps, so the quantisation never divides by zero.
  static constexpr int32_t kMaxSteps = 1 << 16;

  explicit ColourScale(int32_t nbCouleurs = 100);

  // The number of colour steps (NbCouleurs).
  int32_t NbCouleurs() const { return steps_; }
  void SetNbCouleurs(int32_t steps);

  // Out-of-range fractions take the palette's end colours when on, one fixed colour when off.
  bool DebordeOn = false;

  // The colour of fraction t in palette `mode`. An in-range t is rewritten with
  // its quantised value Int(t * NbCouleurs) / NbCouleurs; an unknown mode gives white.
  Colour CouleurEchelle(double& t, int mode = kClassicalPalette) const;

 private:
  int32_t steps_ = 0;
  // Colour of step k (0..steps) for each palette, so a call costs a look-up.
  std::array<std::vector<Colour>, 3> tables_;
};

}  // namespace tessiva

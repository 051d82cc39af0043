// Synthetic speckle pictures with a known displacement: an analytic speckle
// (a sum of Gaussian spots) sampled with super-sampling at exact positions.
// The deformed picture samples the same speckle at the reference point each
// sample came from, so no interpolation enters the making.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "setup/picturecodecs.h"
#include "synth/fields.h"

namespace tessiva::synth {

struct SpeckleSettings {
  int32_t width = 256;
  int32_t height = 256;
  double spotRadius = 1.6;  // standard deviation of a spot, pixels (speckles of about 4 pixels)
  double density = 0.12;    // spots per square pixel
  double noiseSigma = 0.0;  // grey levels of Gaussian noise added to each picture
  double contrast = 1.0;    // share of the spots' full amplitude, 90 grey levels about 128
  int32_t superSampling = 4;
  uint32_t seed = 1;
};

// The analytic speckle: its spots are binned so a value sums only nearby ones.
class Speckle {
 public:
  explicit Speckle(const SpeckleSettings& settings);
  // The grey level at a reference point, before quantisation.
  double At(double x, double y) const;

 private:
  struct Spot {
    double x, y, amplitude;
  };
  int32_t cellsX_, cellsY_;
  double margin_, inverseTwoSigma2_, reach2_;
  std::vector<std::vector<Spot>> cells_;
};

// Grey levels on the 0-255 scale, row by row from the top, of the speckle
// seen through `field` (the identity when null), noise added and not yet
// quantised: each pixel averages its super-samples. Points that aren't
// material take a flat grey. `noiseSeed` draws the noise.
std::vector<double> RenderLevels(const Speckle& speckle, const SpeckleSettings& settings, const FieldSpec* field,
                                 uint32_t noiseSeed);
// The same quantised to 8 bits.
std::vector<uint8_t> Render(const Speckle& speckle, const SpeckleSettings& settings, const FieldSpec* field,
                            uint32_t noiseSeed);

// Writes ref.EXT, def.EXT and truth.txt (the field and its displacement at
// every `step` pixels) into `dir`, EXT the extension of `format`. A 16-bit
// format quantises the rendered levels to 1/257 of an 8-bit level, so its
// files carry the finer levels. Returns false when a file can't be written.
bool WriteSyntheticPair(const std::string& dir, const SpeckleSettings& settings, const FieldSpec& field,
                        PictureFileFormat format = PictureFileFormat::kBmp, int32_t step = 8);

}  // namespace tessiva::synth

// tessiva-cli synth: a synthetic speckle pair with a known displacement field,
// and the ground truth it was made with.
#pragma once

#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "synth/texture.h"

namespace tessiva::cli {

struct SynthRequest {
  std::string dir;
  synth::SpeckleSettings settings;
  synth::FieldSpec field;
  PictureFileFormat format = PictureFileFormat::kBmp;
};

// The arguments after "synth": DIR FIELD [A [B [C]]] [--size N] [--noise SIGMA]
// [--seed K] [--format bmp|png16|tiff16]. Nothing, and the complaint in
// `problem`, when they are wrong.
std::optional<SynthRequest> ParseSynth(const std::vector<std::string>& args, std::string& problem);

// Writes DIR/ref.EXT, DIR/def.EXT (EXT: bmp, png or tif) and DIR/truth.txt.
int RunSynth(const SynthRequest& request, std::ostream& out, std::ostream& err);

}  // namespace tessiva::cli

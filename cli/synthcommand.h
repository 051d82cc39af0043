// tessiva-cli synth: a synthetic speckle pair with a known displacement field,
// and the ground truth it was made with.
#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "setup/picturecodecs.h"
#include "synth/texture.h"

namespace CLI {
class App;
}

namespace tessiva::cli {

struct SynthRequest {
  std::string dir;
  synth::SpeckleSettings settings;
  synth::FieldSpec field;
  PictureFileFormat format = PictureFileFormat::kBmp;
};

// Declares "synth" and its options on `app`; parsing fills `request`. A
// field's lengths (a sinusoid's period, a neck's width) must be above zero.
CLI::App* AddSynthCommand(CLI::App& app, SynthRequest& request);

// Writes DIR/ref.EXT, DIR/def.EXT (EXT: bmp, png or tif) and DIR/truth.txt.
int RunSynth(const SynthRequest& request, std::ostream& out, std::ostream& err);

}  // namespace tessiva::cli

// tessiva-cli synth: writes a synthetic speckle pair and its ground truth.
#pragma once

#include <ostream>
#include <string>
#include <vector>

namespace tessiva::cli {

// args: "synth" DIR FIELD [A [B [C]]] [--size N] [--noise SIGMA] [--seed K].
// Returns 0 when written, 1 when a file can't be written, 2 for a wrong command line.
int RunSynth(const std::vector<std::string>& args, std::ostream& out, std::ostream& err);

}  // namespace tessiva::cli

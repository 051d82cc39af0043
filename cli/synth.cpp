#include "synth.h"

#include <optional>

#include "state/numtext.h"
#include "synth/texture.h"

namespace tessiva::cli {
namespace {

constexpr const char* kSynthUsage =
    "Usage: tessiva-cli synth DIR FIELD [A [B [C]]] [--size N] [--noise SIGMA] [--seed K]\n"
    "  FIELD: translation (u=A, v=B), strain (exx=A, eyy=B), shear (gamma=A), rotation (A degrees),\n"
    "         sinusoid (amplitude A, period B), hole (remote strain A, radius B),\n"
    "         neck (strain A, peak B, width C), crack (KI/(2 mu)=A)\n"
    "  Writes DIR/ref.bmp, DIR/def.bmp and DIR/truth.txt.\n";

int Usage(std::ostream& err, const std::string& problem) {
  err << "tessiva-cli synth: " << problem << "\n\n" << kSynthUsage;
  return 2;
}

// A whole number of the command line, or nothing when it isn't one.
std::optional<int32_t> WholeNumber(const std::string& text) {
  const double value = ValNorm(text);
  if (text.empty() || value != Round(value)) return std::nullopt;
  return RoundToInt32(value);
}

}  // namespace

int RunSynth(const std::vector<std::string>& args, std::ostream& out, std::ostream& err) {
  if (args.size() < 3) return Usage(err, "a directory and a field are needed");
  synth::FieldSpec field;
  if (auto kind = synth::FieldKindNamed(args[2])) {
    field.kind = *kind;
  } else {
    return Usage(err, "unknown field " + args[2]);
  }
  synth::SpeckleSettings settings;
  std::vector<double> values;
  for (size_t i = 3; i < args.size(); ++i) {
    const bool option = args[i].starts_with("--");
    if (!option) {
      values.push_back(ValNorm(args[i]));
      continue;
    }
    if (i + 1 >= args.size()) return Usage(err, args[i] + " needs a value");
    const std::string& value = args[++i];
    if (args[i - 1] == "--noise") {
      settings.noiseSigma = ValNorm(value);
    } else if (auto n = WholeNumber(value); n && args[i - 1] == "--size" && *n >= 16 && *n <= 8192) {
      settings.width = settings.height = *n;
    } else if (n && args[i - 1] == "--seed" && *n >= 0) {
      settings.seed = static_cast<uint32_t>(*n);
    } else {
      return Usage(err, "bad option " + args[i - 1] + " " + value);
    }
  }
  if (values.size() > 3) return Usage(err, "at most three field values");
  values.resize(3, 0.0);
  field.a = values[0];
  field.b = values[1];
  field.c = values[2];
  field.cx = settings.width / 2.0;
  field.cy = settings.height / 2.0;
  if (!synth::WriteSyntheticPair(args[1], settings, field)) {
    err << "tessiva-cli synth: can't write the pictures in " << args[1] << "\n";
    return 1;
  }
  out << "wrote ref.bmp, def.bmp and truth.txt in " << args[1] << "\n";
  return 0;
}

}  // namespace tessiva::cli

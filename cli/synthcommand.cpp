#include "synthcommand.h"

#include <filesystem>

#include "commands.h"
#include "state/numtext.h"

namespace tessiva::cli {

std::optional<SynthRequest> ParseSynth(const std::vector<std::string>& args, std::string& problem) {
  const auto refuse = [&problem](std::string complaint) -> std::optional<SynthRequest> {
    problem = std::move(complaint);
    return std::nullopt;
  };
  if (args.size() < 2) return refuse("synth needs a directory and a field");
  SynthRequest request;
  request.dir = args[0];
  const auto kind = synth::FieldKindNamed(args[1]);
  if (!kind) return refuse("unknown field " + args[1]);
  request.field.kind = *kind;
  synth::SpeckleSettings& settings = request.settings;
  std::vector<double> values;
  for (size_t i = 2; i < args.size(); ++i) {
    if (!args[i].starts_with("--")) {
      values.push_back(ValNorm(args[i]));
      continue;
    }
    if (i + 1 >= args.size()) return refuse(args[i] + " needs a value");
    const std::string& option = args[i];
    const std::string& value = args[++i];
    const std::optional<int32_t> n = WholeNumber(value);
    if (option == "--noise" && ValNorm(value) >= 0) {
      settings.noiseSigma = ValNorm(value);
    } else if (option == "--size" && n && *n >= 16 && *n <= 8192) {
      settings.width = settings.height = *n;
    } else if (option == "--seed" && n && *n >= 0) {
      settings.seed = static_cast<uint32_t>(*n);
    } else if (option == "--format" && PictureFileFormatNamed(value)) {
      request.format = *PictureFileFormatNamed(value);
    } else {
      return refuse("bad option " + option + " " + value);
    }
  }
  if (values.size() > 3) return refuse("at most three field values");
  values.resize(3, 0.0);
  request.field.a = values[0];
  request.field.b = values[1];
  request.field.c = values[2];
  request.field.cx = settings.width / 2.0;
  request.field.cy = settings.height / 2.0;
  return request;
}

int RunSynth(const SynthRequest& request, std::ostream& out, std::ostream& err) {
  std::error_code ignored;  // a directory that can't be made fails the writing below
  std::filesystem::create_directories(request.dir, ignored);
  if (!synth::WriteSyntheticPair(request.dir, request.settings, request.field, request.format)) {
    err << "The pictures could not be written in " << request.dir << '\n';
    return kFailed;
  }
  const std::string extension(ExtensionOf(request.format));
  out << "ref." << extension << ", def." << extension << " and truth.txt written in " << request.dir << '\n';
  return kDone;
}

}  // namespace tessiva::cli

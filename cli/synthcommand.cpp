#include "synthcommand.h"

#include <cstdint>
#include <filesystem>
#include <limits>

#include "commands.h"
#include "options.h"
#include "state/files.h"
#include "state/numtext.h"

namespace tessiva::cli {
namespace {

// The values each field takes, in order, as the help names them.
struct FieldValues {
  synth::FieldKind kind;
  const char* names;
};
constexpr FieldValues kFieldValues[] = {
    {synth::FieldKind::Translation, "U V"},         {synth::FieldKind::UniformStrain, "EXX EYY"},
    {synth::FieldKind::SimpleShear, "GAMMA"},       {synth::FieldKind::Rotation, "DEGREES"},
    {synth::FieldKind::Sinusoid, "AMPLITUDE PERIOD"}, {synth::FieldKind::PlateWithHole, "REMOTE_STRAIN RADIUS"},
    {synth::FieldKind::Neck, "STRAIN PEAK WIDTH"},  {synth::FieldKind::CrackTip, "KI/(2 mu)"}};

// Each field with its values, `between` them.
std::string FieldList(const std::string& between) {
  std::string list;
  for (const FieldValues& f : kFieldValues)
    list += (list.empty() ? "" : between) + synth::FieldKindName(f.kind) + " " + f.names;
  return list;
}

// The field's length that the making divides by must be above zero: a
// sinusoid's period, a neck's width.
void CheckLengths(const synth::FieldSpec& field) {
  if (field.kind == synth::FieldKind::Sinusoid && !(field.b > 0))
    Refuse("the sinusoid's PERIOD must be above 0, not " + StrTrim(field.b));
  if (field.kind == synth::FieldKind::Neck && !(field.c > 0))
    Refuse("the neck's WIDTH must be above 0, not " + StrTrim(field.c));
  if (field.kind == synth::FieldKind::PlateWithHole && field.b < 0)
    Refuse("the hole's RADIUS must be 0 or above, not " + StrTrim(field.b));
}

}  // namespace

CLI::App* AddSynthCommand(CLI::App& app, SynthRequest& request) {
  CLI::App* command = app.add_subcommand("synth", "writes a synthetic speckle pair with a known displacement field");
  command->footer("Writes DIR/ref.EXT and DIR/def.EXT (EXT: bmp, png or tif as --format asks), and the field at\n"
                  "every point in DIR/truth.txt. The fields and their values:\n  " +
                  FieldList("\n  "));
  command->add_option("DIR", request.dir, "the directory to write in, made when missing")
      ->required()
      ->type_name("")
      ->check(AValue());
  const auto field = [&request](const std::string& name) {
    const auto kind = synth::FieldKindNamed(name);
    if (!kind) Refuse("unknown field " + name + "; the fields are " + FieldList(", "));
    request.field.kind = *kind;
  };
  command->add_option_function<std::string>("FIELD", field, "the displacement field")->required()->type_name("");
  const auto values = [&request](const std::vector<double>& v) {
    if (v.size() > 3) Refuse("VALUES: a field takes at most 3 values, " + std::to_string(v.size()) + " given");
    request.field.a = v.size() > 0 ? v[0] : 0.0;
    request.field.b = v.size() > 1 ? v[1] : 0.0;
    request.field.c = v.size() > 2 ? v[2] : 0.0;
  };
  command->add_option_function<std::vector<double>>("VALUES", values, "the field's values, 0 when not given")
      // Open-ended here, counted above: the usage line then reads VALUES...
      ->expected(0, CLI::detail::expected_max_vector_size)
      ->type_name("")
      ->check(NumberIn({}));
  synth::SpeckleSettings& settings = request.settings;
  command->add_option_function<int32_t>(
             "--size", [&settings](int32_t n) { settings.width = settings.height = n; },
             "the side of the pictures, pixels, 16 to 8192 (256)")
      ->type_name("N")
      ->check(WholeIn(16, 8192));
  command->add_option("--noise", settings.noiseSigma, "grey levels of Gaussian noise, 0 or above (0)")
      ->type_name("SIGMA")
      ->check(NumberIn({.min = 0.0}));
  command->add_option("--seed", settings.seed, "the speckle's seed, 0 to 4294967295 (1)")
      ->type_name("K")
      ->check(WholeIn(0, std::numeric_limits<uint32_t>::max()));
  command->add_option_function<std::string>(
             "--format", [&request](const std::string& name) { request.format = *PictureFileFormatNamed(name); },
             "bmp: 8-bit BMP (the default); png16, tiff16: 16-bit PNG or TIFF holding the finer levels")
      ->type_name("FORMAT")
      ->check(OneOf({"bmp", "png16", "tiff16"}));
  command->callback([&request] {
    CheckLengths(request.field);
    request.field.cx = request.settings.width / 2.0;
    request.field.cy = request.settings.height / 2.0;
  });
  return command;
}

int RunSynth(const SynthRequest& request, std::ostream& out, std::ostream& err) {
  std::error_code ignored;  // a directory that can't be made fails the writing below
  std::filesystem::create_directories(request.dir, ignored);
  if (!synth::WriteSyntheticPair(request.dir, request.settings, request.field, request.format)) {
    err << "The pictures could not be written in " << request.dir << '\n';
    return kFailed;
  }
  const std::string extension(ExtensionOf(request.format));
  for (const std::string& name : {"ref." + extension, "def." + extension, std::string("truth.txt")})
    out << JoinPath(request.dir, name) << " written\n";
  return kDone;
}

}  // namespace tessiva::cli

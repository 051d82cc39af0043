#include "exportcommand.h"

#include <algorithm>
#include <filesystem>

#include "commands.h"
#include "headlessanalysis.h"
#include "options.h"
#include "results/exports.h"
#include "state/files.h"

namespace tessiva::cli {
namespace {

struct FormatOption {
  const char* name;
  ExportFormat format;
  const char* what;
};
constexpr FormatOption kFormatOptions[] = {
    {"--cfr", ExportFormat::Cfr, "a clean result file"},
    {"--unv", ExportFormat::Unv, "a Universal file"},
    {"--inp", ExportFormat::Inp, "an Abaqus input file"},
    {"--vtu", ExportFormat::Vtu,
     "a VTK unstructured grid for ParaView and meshio (positions and displacements in the calibration's units, y "
     "pointing up)"},
    {"--csv", ExportFormat::Csv, "a table of the valid nodes, a row each, units in the header"}};

constexpr const char* kFormatNames = "--cfr, --unv, --inp, --vtu and --csv";

bool Write(const ExportRequest& request, const AppState& s, int32_t showBad) {
  switch (request.format) {
    case ExportFormat::Cfr: return SauveCfr(s, showBad, request.output);
    case ExportFormat::Unv: return SauveUnv(s, showBad, request.output);
    case ExportFormat::Inp: return SauveInp(s, request.output);
    case ExportFormat::Vtu: return SauveVtu(s, showBad, request.output);
    case ExportFormat::Csv: return SauveCsv(s, request.output);
  }
  return false;
}

}  // namespace

CLI::App* AddExportCommand(CLI::App& app, ExportRequest& request) {
  CLI::App* command = app.add_subcommand("export", "writes a result's mesh and results for other programs");
  command->footer("The result is read as the analysis window reads it (mesh and strains).");
  command->add_option("RESULT", request.result, "the result file (.res)")->required()->type_name("")->check(Found());
  std::vector<const CLI::Option*> formats;
  for (const FormatOption& option : kFormatOptions) {
    const auto choose = [&request, option](const std::string& output) {
      request.format = option.format;
      request.output = output;
    };
    formats.push_back(
        command->add_option_function<std::string>(option.name, choose, option.what)->type_name("OUT")->check(AValue()));
  }
  command->add_flag("--show-bad-pattern", request.showBadPattern, "\"Show Bad Pattern\": patterns that aren't good take part");
  command->add_flag("--final-to-initial", request.finalToInitial,
                    "\"Final -> Initial\": strains on the deformed configuration");
  command->callback([formats] {
    const auto given = std::count_if(formats.begin(), formats.end(), [](const CLI::Option* o) { return o->count() > 0; });
    if (given == 0) Refuse(std::string("give one of ") + kFormatNames + " with the file to write");
    if (given > 1) Refuse(std::string("give only one of ") + kFormatNames);
  });
  return command;
}

int RunExport(const ExportRequest& request, std::ostream& out, std::ostream& err) {
  HeadlessAnalysis h;
  std::error_code ignored;
  if (!h.Open(request.result, JoinPath(std::filesystem::current_path(ignored).string(), "correl.ini"), err))
    return kFailed;
  h.window.bInitial = !request.finalToInitial;
  h.window.Controls().SetChecked("Bad", request.showBadPattern);
  if (!h.ReadMember(1, err)) return kFailed;
  if (!Write(request, h.s, h.window.ShowBad())) {
    err << "The file " << request.output << " could not be written\n";
    return kFailed;
  }
  out << request.output << " written\n";
  return kDone;
}

}  // namespace tessiva::cli

#include "exportcommand.h"

#include <filesystem>
#include <map>

#include "commands.h"
#include "headlessanalysis.h"
#include "results/exports.h"
#include "state/files.h"

namespace tessiva::cli {
namespace {

const std::map<std::string, ExportFormat> kFormatOptions{
    {"--cfr", ExportFormat::Cfr}, {"--unv", ExportFormat::Unv}, {"--inp", ExportFormat::Inp},
    {"--vtu", ExportFormat::Vtu}, {"--csv", ExportFormat::Csv}};

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

std::optional<ExportRequest> ParseExport(const std::vector<std::string>& args, std::string& problem) {
  const auto refuse = [&problem](std::string complaint) -> std::optional<ExportRequest> {
    problem = std::move(complaint);
    return std::nullopt;
  };
  ExportRequest request;
  bool formatGiven = false;
  for (size_t i = 0; i < args.size(); ++i) {
    const std::string& arg = args[i];
    if (const auto format = kFormatOptions.find(arg); format != kFormatOptions.end()) {
      if (formatGiven) return refuse("give only one of --cfr, --unv, --inp, --vtu and --csv");
      if (i + 1 == args.size()) return refuse(arg + " needs the name of the file to write");
      formatGiven = true;
      request.format = format->second;
      request.output = args[++i];
    } else if (arg == "--show-bad-pattern") {
      request.showBadPattern = true;
    } else if (arg == "--final-to-initial") {
      request.finalToInitial = true;
    } else if (arg.starts_with("-") || !request.result.empty()) {
      return refuse("unexpected argument " + arg);
    } else {
      request.result = arg;
    }
  }
  if (request.result.empty()) return refuse("no result file given");
  if (!formatGiven) return refuse("give one of --cfr, --unv, --inp, --vtu and --csv with the file to write");
  return request;
}

int RunExport(const ExportRequest& request, std::ostream& err) {
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
  return kDone;
}

}  // namespace tessiva::cli

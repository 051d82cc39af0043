#include "exportcommand.h"

#include <filesystem>
#include <map>

#include "analysis/analysisfiles.h"
#include "analysis/newanalyse.h"
#include "commands.h"
#include "results/exports.h"
#include "results/resultfile.h"
#include "setup/param.h"
#include "state/files.h"
#include "state/numtext.h"
#include "ui/scriptedui.h"

namespace tessiva::cli {
namespace {

const std::map<std::string, ExportFormat> kFormatOptions{
    {"--cfr", ExportFormat::Cfr}, {"--unv", ExportFormat::Unv}, {"--inp", ExportFormat::Inp}};

// The reader joins picture names to LastDir: the result's own directory.
std::string DirectoryOfResult(const std::string& result) {
  std::error_code ignored;
  return std::filesystem::absolute(result, ignored).parent_path().string();
}

bool Write(const ExportRequest& request, const AppState& s, int32_t showBad) {
  switch (request.format) {
    case ExportFormat::Cfr: return SauveCfr(s, showBad, request.output);
    case ExportFormat::Unv: return SauveUnv(s, showBad, request.output);
    case ExportFormat::Inp: return SauveInp(s, request.output);
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
      if (formatGiven) return refuse("give only one of --cfr, --unv and --inp");
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
  if (!formatGiven) return refuse("give one of --cfr, --unv and --inp with the file to write");
  return request;
}

int RunExport(const ExportRequest& request, std::ostream& err) {
  AppState s;
  s.IniPath = JoinPath(std::filesystem::current_path().string(), "correl.ini");
  s.LastDir = DirectoryOfResult(request.result);
  s.NbSeq = 1;
  s.ResizeSequence(1);
  s.DataFilePath[1] = request.result;
  s.DataFileName[1] = FileNameOf(request.result);
  ControlRegistry frame;
  ScriptedUi ui(frame);
  Param param(s);
  NewAnalyse window(s, ui, param);
  window.bInitial = !request.finalToInitial;
  window.Controls().SetChecked("Bad", request.showBadPattern);
  if (!LecRes(window, 1, false)) {
    for (const std::string& message : ui.Messages()) err << message << '\n';
    if (ui.Messages().empty()) err << Trim(frame.Text("Label1")) << '\n';
    return kFailed;
  }
  if (!Write(request, s, window.ShowBad())) {
    err << "The file " << request.output << " could not be written\n";
    return kFailed;
  }
  return kDone;
}

}  // namespace tessiva::cli

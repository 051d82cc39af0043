#include "commands.h"

#include "exportcommand.h"

namespace tessiva::cli {
namespace {

constexpr const char* kUsage =
    "Usage: tessiva-cli export RESULT.res --cfr|--unv|--inp OUT [--show-bad-pattern] [--final-to-initial]\n"
    "       tessiva-cli --help\n"
    "\n"
    "export  reads a result file as the analysis window does (mesh and strains) and\n"
    "        writes its mesh and results to OUT:\n"
    "  --cfr                a clean result file\n"
    "  --unv                a Universal file\n"
    "  --inp                an Abaqus input file\n"
    "  --show-bad-pattern   \"Show Bad Pattern\": patterns that aren't good take part\n"
    "  --final-to-initial   \"Final -> Initial\": strains on the deformed configuration\n"
    "\n"
    "The forming-limit curve comes from correl.ini in the current directory, when there is one.\n";

}  // namespace

int RunCli(const std::vector<std::string>& args, std::ostream& out, std::ostream& err) {
  if (args.size() == 1 && (args[0] == "--help" || args[0] == "-h")) {
    out << kUsage;
    return kDone;
  }
  std::string problem = "no command given";
  if (!args.empty() && args[0] == "export") {
    const std::vector<std::string> rest(args.begin() + 1, args.end());
    if (const std::optional<ExportRequest> request = ParseExport(rest, problem)) return RunExport(*request, err);
  } else if (!args.empty()) {
    problem = "unknown command " + args[0];
  }
  err << "tessiva-cli: " << problem << "\n\n" << kUsage;
  return kUsageError;
}

}  // namespace tessiva::cli

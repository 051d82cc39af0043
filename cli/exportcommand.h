// tessiva-cli export: a result file read as the analysis window reads it,
// written as one of the result exports.
#pragma once

#include <ostream>
#include <string>

namespace CLI {
class App;
}

namespace tessiva::cli {

enum class ExportFormat { Cfr, Unv, Inp, Vtu, Csv };

struct ExportRequest {
  std::string result;
  ExportFormat format = ExportFormat::Cfr;
  std::string output;
  // "Show Bad Pattern".
  bool showBadPattern = false;
  // "Final -> Initial".
  bool finalToInitial = false;
};

// Declares "export" and its options on `app`; parsing fills `request`.
CLI::App* AddExportCommand(CLI::App& app, ExportRequest& request);

// Reads the result (reader, mesh, repair, ranges, strains) and writes the
// export, saying so on `out`. A result that can't be read gets the reader's
// message on `err`.
int RunExport(const ExportRequest& request, std::ostream& out, std::ostream& err);

}  // namespace tessiva::cli

// tessiva-cli export: a result file read as the analysis window reads it,
// written as one of the result exports.
#pragma once

#include <optional>
#include <ostream>
#include <string>
#include <vector>

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

// The arguments after "export"; nothing, and the complaint in `problem`, when they are wrong.
std::optional<ExportRequest> ParseExport(const std::vector<std::string>& args, std::string& problem);

// Reads the result (reader, mesh, repair, ranges, strains) and writes the
// export. A result that can't be read gets the reader's message on `err`.
int RunExport(const ExportRequest& request, std::ostream& err);

}  // namespace tessiva::cli

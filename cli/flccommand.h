// tessiva-cli flc: the forming-limit determination of the analysis window
// on a result, or on every member of a sequence: the section across the
// neck (the result's two areas, or a band drawn with the section tool), its
// table, and the limit strains by the cosine-linear fit or by the
// cross-section method of ISO 12004-2.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <ostream>
#include <string>

#include "analysis/formlimits.h"

namespace CLI {
class App;
}

namespace tessiva::cli {

struct FlcRequest {
  // A result file, or a sequence file (its name ends in "seq").
  std::string input;
  // The band's press and release positions, picture pixels; none: the
  // result's two areas.
  std::optional<std::array<double, 4>> band;
  // "Line position", 0..100 across the band or along the areas' sides.
  int32_t position = 50;
  // 0 the whole section, 1 the left side mirrored, 2 the right one.
  int32_t side = 0;
  FlcMethod method = FlcMethod::CosineLinear;
  bool csv = false;
};

// Declares "flc" and its options on `app`; parsing fills `request`.
CLI::App* AddFlcCommand(CLI::App& app, FlcRequest& request);

// Lays the section on the first member, rejects the points of the neck
// (those between the inner bounds of the fit windows), and carries the
// section and its states along the sequence as a change of file does.
// Prints the section of the last member, then the limit strains, one row a
// member; a member whose limit can't be read has an empty row and a warning.
// Nothing is printed when the section can't be laid on the first member.
int RunFlc(const FlcRequest& request, std::ostream& out, std::ostream& err);

}  // namespace tessiva::cli

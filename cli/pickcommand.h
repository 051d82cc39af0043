// tessiva-cli pick: a picking tool of the analysis window used on a result,
// or on every member of a sequence, and the table it makes printed as the
// data collector holds it (tab separated) or as CSV.
#pragma once

#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace tessiva::cli {

struct PickRequest {
  // A result file, or a sequence file (its name ends in "seq").
  std::string input;
  // The tool's key on the analysis window's tool bar ("point", "trait", ...).
  std::string toolKey;
  // Press and release positions in picture pixels: x1, y1, and for every
  // tool but the point x2, y2.
  std::vector<double> at;
  // The entry of the field list Combo2.
  int32_t field = 0;
  bool csv = false;
};

// Declares "pick" and its options on `app`; parsing fills `request`. An
// unknown tool's or field's complaint lists the valid names.
CLI::App* AddPickCommand(CLI::App& app, PickRequest& request);

// Reads the first member, makes the selection there with the pointer, replays
// it on each following member as a change of file does, and prints the
// table. A point and a gauge add a row per member to one table; a line and a
// rectangle make a table per member, printed one after the other. Nothing is
// printed, and no file is left anywhere, when a member can't be read or the
// selection makes no row on the first member.
int RunPick(const PickRequest& request, std::ostream& out, std::ostream& err);

// A CSV field: quoted, with its quotes doubled, when it holds a comma, a
// quote or a line end.
std::string CsvField(const std::string& text);

// A table's row without its line end: the fields joined by tabs, or for CSV
// by commas, each made a CsvField.
std::string JoinedFields(const std::vector<std::string>& fields, bool csv);

}  // namespace tessiva::cli

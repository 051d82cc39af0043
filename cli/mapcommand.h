// tessiva-cli map: a field of a result, or of each member of a sequence,
// painted by the analysis window's logic and written as a PNG picture: the
// map at the top left, the colour bar's frame below it, composed as the
// window's captures are.
#pragma once

#include <cstdint>
#include <optional>
#include <ostream>
#include <string>

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace tessiva::cli {

struct MapRequest {
  // Prints the field names and nothing else.
  bool listFields = false;
  // A result file, or a sequence file (its name ends in "seq").
  std::string input;
  // The entry of the field list Combo2.
  int32_t field = 0;
  // The PNG file; a directory for a sequence.
  std::string output;
  // Samples along each side of a cell: above 1, "Interpolation" with that smoothing.
  int32_t smooth = 1;
  // Option3: the map on the deformed picture.
  bool onFinal = false;
  // The amplification of the mesh and vector views as typed in TextMagni, when given.
  std::optional<std::string> magnification;
  // StyleColor: 0 blue to red, 1 grey levels, 2 blue to red then black and white.
  int palette = 0;
  // "Show Bad Pattern".
  bool showBad = false;
};

// The largest smoothing the window offers; each pattern is painted smooth x smooth times.
inline constexpr int32_t kMaxSmooth = 10;

// Declares "map" and its options on `app`; parsing fills `request`.
CLI::App* AddMapCommand(CLI::App& app, MapRequest& request);

// Adds --field NAME to a command: the entry of the field list with that
// name, case ignored, goes to `field`; an unknown name is refused with the
// list of the names.
CLI::Option* AddFieldOption(CLI::App& command, int32_t& field, const std::string& description);

// The complaint about a field name that isn't in the list, listing the names.
std::string UnknownFieldComplaint(const std::string& name);

// The picture of a sequence member: its result's name less the extension,
// "-", and the field's list text with every run of characters other than
// ASCII letters, digits, '.', '-' and '_' made one '_' ("r1.res" and
// "Teta(1,I)" give "r1-Teta_1_I.png").
std::string MemberPictureName(const std::string& resultName, const std::string& fieldText);

// Lists the fields, or reads the result (every member of a sequence, in
// order) and writes its maps. Nothing is written unless every map is made.
int RunMap(const MapRequest& request, std::ostream& out, std::ostream& err);

}  // namespace tessiva::cli

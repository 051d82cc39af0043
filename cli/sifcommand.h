// tessiva-cli sif: the stress intensity factors of a crack on a result, or on
// every member of a sequence, printed one row a member: J, KI, KII, KIfromJ,
// JfromKs and the direction of growth.
#pragma once

#include <optional>
#include <ostream>
#include <string>

namespace CLI {
class App;
}

namespace tessiva::cli {

struct SifRequest {
  // A result file, or a sequence file.
  std::string input;
  // The crack's tip and start, and the radius of its ring, picture pixels.
  double xTip = 0.0, yTip = 0.0, xStart = 0.0, yStart = 0.0;
  double radius = 0.0;
  // The band's half width in grid steps; the window's own when not given.
  std::optional<double> klarg;
  bool csv = false;
};

// Declares "sif" and its options on `app`; parsing fills `request`.
CLI::App* AddSifCommand(CLI::App& app, SifRequest& request);

// Reads each member and measures the crack on it. Nothing is printed when a
// member can't be read, the crack lies off the picture, is shorter than
// three grid steps, or no usable pattern of the first member lies in its
// ring; a later member whose ring holds none is said on standard error and
// gives no row.
int RunSif(const SifRequest& request, std::ostream& out, std::ostream& err);

}  // namespace tessiva::cli

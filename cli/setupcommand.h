// tessiva-cli setup: the data file of one rectangular area over a picture
// pair, made as the setup window makes it (grid, start search, walk check).
#pragma once

#include <ostream>

#include "setup/rectanglesetup.h"

namespace CLI {
class App;
}

namespace tessiva::cli {

// Declares "setup" and its options on `app`; parsing fills `request`. The
// pictures must be there and be pictures, the area's corners in order, and
// the grid step and pattern sizes within the parameters window's limits.
CLI::App* AddSetupCommand(CLI::App& app, RectangleSetup& request);

int RunSetup(const RectangleSetup& request, std::ostream& out, std::ostream& err);

}  // namespace tessiva::cli

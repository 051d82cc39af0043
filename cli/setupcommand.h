// tessiva-cli setup: the data file of one rectangular area over a picture
// pair, made as the setup window makes it (grid, start search, walk check).
#pragma once

#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "setup/rectanglesetup.h"

namespace tessiva::cli {

// The arguments after "setup": DIR [--ref NAME] [--def NAME] [--data NAME]
// [--area X1 Y1 X2 Y2] [--grid N] [--pattern MIN MAX] [--bilinear]
// [--large-strain]. Nothing, and the complaint in `problem`, when they are wrong.
std::optional<RectangleSetup> ParseSetup(const std::vector<std::string>& args, std::string& problem);

int RunSetup(const RectangleSetup& request, std::ostream& out, std::ostream& err);

}  // namespace tessiva::cli

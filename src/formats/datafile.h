// The data file (.don): the input of one correlation job, written by the setup
// window and the command line, read by the setup window and the solver.
#pragma once

#include <string>
#include <string_view>

#include "formats/content.h"
#include "state/appstate.h"

namespace tessiva {

// Every section of a data file's text, or the first that can't be used.
Parsed<DataFileContent> ParseDataFile(std::string_view text);

// The whole file, in the order and with the comments the solver and older
// readers expect.
std::string DataFileText(const DataFileContent& content);

// A data file of the state as it stands, with the window's gauges and extra
// values: the first `areaSlots` slots of the area store and the patterns
// BadPat lists.
DataFileContent DataFileContentOf(const AppState& s, int32_t areaSlots, const GageStore& gages, ExtraValues extra);

}  // namespace tessiva

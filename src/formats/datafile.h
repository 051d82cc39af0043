// The data file (.don): the input of one correlation job, written and read by
// the setup window. Its content lives in AppState and in the window's fields.
#pragma once

#include <string>

#include "state/appstate.h"

namespace tessiva {

class AreaForm;

// The status text of a data or sequence file that can't be used.
std::string NotRightFormattedMessage(const std::string& path);

// Appends the banner comment and the [RELEASE] section every data file starts with.
void BanniereFichier(std::string& out, const AppState& s);

// Writes DataFilePath(index), after asking whether a new name typed in Text1
// renames the file. Without ClfMode the area count NbBox ends one lower: it
// turns the free slot count of memory into the count of areas of the file.
// Returns false when index is no member or the file could not be written.
bool SauveDonArea(AreaForm& form, int index);

// Reads DataFilePath(index) into the state and the setup window: pictures,
// parameters (for the first member only), units, extra values and, unless
// headerOnly, material, forming-limit and crack data, areas, gauges and start
// points. A file that can't be used stops the reading where it is, with the
// "not right formatted" status text, and returns false.
bool LecDonArea(AreaForm& form, int index, bool headerOnly);

}  // namespace tessiva

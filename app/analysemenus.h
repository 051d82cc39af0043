// The entries the analysis window's menus FileMNU and MenuMNU share: the
// result exports, each opening its save dialog through the controller.
#pragma once

class QMenu;

namespace tessiva {

class NewAnalyse;

// Adds an entry per export, named after its menu control (SCFMnu...).
void AddExportEntries(QMenu& menu, NewAnalyse& controller);

}  // namespace tessiva

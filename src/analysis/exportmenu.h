// The export commands of the analysis window's menus FileMNU and MenuMNU:
// each asks for a file name with its own save dialog, then writes the mesh
// and results of the member on show into it.
#pragma once

#include <span>
#include <string>

namespace tessiva {

class NewAnalyse;

struct ExportCommand {
  const char* control;  // the menu entry's name
  const char* caption;
  const char* defaultExt;
  const char* filter;
  const char* title;
};

// The clean result file, the Universal and the Abaqus files, then the VTK
// grid and the CSV table, in menu order.
std::span<const ExportCommand> ExportCommands();

// The menu entry `control`: the save dialog in LastDir, then the writer; a
// cancelled dialog writes nothing. False when nothing was written (said on
// the status line when the file could not be written).
bool OnExportMenu(NewAnalyse& window, const std::string& control);

}  // namespace tessiva

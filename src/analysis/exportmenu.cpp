#include "analysis/exportmenu.h"

#include "analysis/newanalyse.h"
#include "results/exports.h"

namespace tessiva {
namespace {

constexpr ExportCommand kCommands[] = {
    {"SCFMnu", "Write clean result file", "cfr", "Data|*.cfr", "Write clean result file"},
    {"SUFMnu", "Write Universal result file", "unv", "Universal|*.unv", "Write Universal result file"},
    {"SAFMnu", "Write Abaqus input file", "inp", "Abaqus input file|*.inp", "Write Abaqus input file"},
    {"SVTMnu", "Write VTK grid file", "vtu", "VTK unstructured grid|*.vtu", "Write VTK grid file"},
    {"SCSMnu", "Write CSV table file", "csv", "CSV table|*.csv", "Write CSV table file"},
};

bool Write(NewAnalyse& window, const std::string& control, const std::string& file) {
  const AppState& s = window.State();
  const int32_t showBad = window.ShowBad();
  if (control == "SCFMnu") return SauveCfr(s, showBad, file);
  if (control == "SUFMnu") return SauveUnv(s, showBad, file);
  if (control == "SAFMnu") return SauveInp(s, file);
  if (control == "SVTMnu") return SauveVtu(s, showBad, file);
  return SauveCsv(s, file);
}

}  // namespace

std::span<const ExportCommand> ExportCommands() { return kCommands; }

bool OnExportMenu(NewAnalyse& window, const std::string& control) {
  const ExportCommand* command = nullptr;
  for (const ExportCommand& c : kCommands)
    if (control == c.control) command = &c;
  if (!command) return false;
  UiPort& ui = window.Ui();
  FileDialogRequest request;
  request.initialDir = window.State().LastDir;
  request.defaultExt = command->defaultExt;
  request.filter = command->filter;
  request.title = command->title;
  const FileDialogResult chosen = ui.SaveFileDialog(request);
  if (chosen.FileName.empty()) return false;
  BusyPointer busy(ui);
  if (Write(window, control, chosen.FileName)) return true;
  ui.StatusLine("The file " + chosen.FileName + " could not be written");
  return false;
}

}  // namespace tessiva

#include "analysemenus.h"

#include <QAction>
#include <QMenu>
#include <string>

#include "analysis/exportmenu.h"

namespace tessiva {

void AddExportEntries(QMenu& menu, NewAnalyse& controller) {
  for (const ExportCommand& command : ExportCommands()) {
    QAction* entry = menu.addAction(QString::fromLatin1(command.caption));
    entry->setObjectName(QString::fromLatin1(command.control));
    const std::string control = command.control;
    QObject::connect(entry, &QAction::triggered, &menu, [&controller, control] { OnExportMenu(controller, control); });
  }
}

}  // namespace tessiva

// tessiva: the desktop program. It starts in the current directory, where
// correl.ini is, and ends at once when that file gives no solver path.
#include <QApplication>
#include <QDir>

#include "workbench.h"

int main(int argc, char** argv) {
  QApplication app(argc, argv);
  QApplication::setApplicationName(QStringLiteral("Tessiva"));
  tessiva::Workbench workbench;
  if (!workbench.Start(QDir::currentPath())) return 1;
  return QApplication::exec();
}

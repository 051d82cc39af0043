// A sequence of three results over one grey picture, opened with Analyse in
// the desktop program, for the window flows of the analysis window.
#pragma once

#include <QApplication>
#include <QFile>
#include <QFileDialog>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <tuple>

#include "setup/picture.h"
#include "support/resultwriter.h"
#include "workbench.h"

namespace tessiva::testing {

// Members stretched along x by 1, 2 and 3 %: u at picture x is stretch x.
inline constexpr double kStretch[] = {0.01, 0.02, 0.03};

// A 120 x 80 grey picture and three results over it, in a sequence opened with Analyse.
inline bool OpenSequence(const QTemporaryDir& dir, Workbench& workbench) {
  QFile ini(dir.filePath(QStringLiteral("correl.ini")));
  if (!ini.open(QIODevice::WriteOnly) || ini.write("[PATH]\r\nExePath=solver\r\n") < 0) return false;
  ini.close();
  for (const char* name : {"ref.bmp", "d1.bmp", "d2.bmp", "d3.bmp"})
    if (!SaveGreyBmp(dir.filePath(QLatin1String(name)).toStdString(), 120, 80,
                              std::vector<uint8_t>(120 * 80, 128)))
      return false;
  QByteArray list;
  for (int i = 1; i <= 3; ++i) {
    ResultHead head;
    std::tie(head.lima, head.hima, head.picDef) = std::tuple(120, 80, "d" + std::to_string(i) + ".bmp");
    const double e = kStretch[i - 1];
    const auto field = [e](double x, double) { return Displacement{e * x, 0.0}; };
    const QString name = QStringLiteral("ref-d%1").arg(i);
    WriteResultFile(dir.filePath(name + QStringLiteral(".res")).toStdString(), head,
                    GridPatterns(field, 24, 16, 11, 7, 8, 8));
    list += name.toLatin1() + ".don\n";
  }
  QFile sequence(dir.filePath(QStringLiteral("ref-d3-S.seq")));
  if (!sequence.open(QIODevice::WriteOnly) || sequence.write(list) < 0) return false;
  sequence.close();
  if (!workbench.Start(dir.path())) return false;
  QTimer::singleShot(0, qApp, [&dir] {
    if (auto* dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget())) {
      dialog->selectFile(dir.filePath(QStringLiteral("ref-d3-S.seq")));
      QMetaObject::invokeMethod(dialog, "accept");
    }
  });
  QTest::mouseClick(workbench.Window().findChild<QPushButton*>(QStringLiteral("Command1(2)")), Qt::LeftButton);
  return true;
}

}  // namespace tessiva::testing

// End-to-end flows through the real windows: start-up, the Analyse command
// with its file dialog, and the parameters window.
#include <QApplication>
#include <QFile>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include "suites.h"
#include "workbench.h"

using tessiva::Workbench;

namespace {

void WriteIni(const QTemporaryDir& dir, const QByteArray& content) {
  QFile file(dir.filePath(QStringLiteral("correl.ini")));
  QVERIFY(file.open(QIODevice::WriteOnly));
  file.write(content);
}

// Acts on the modal window of type T as soon as its event loop runs. Any other
// modal window is closed, so that a wrong window fails the test instead of hanging it.
template <typename T, typename Act>
void WhenModalShown(Act act) {
  QTimer::singleShot(0, qApp, [act] {
    QWidget* modal = QApplication::activeModalWidget();
    if (auto* window = qobject_cast<T*>(modal))
      act(window);
    else if (modal)
      modal->close();
  });
}

}  // namespace

class WindowFlows : public QObject {
  Q_OBJECT

 private slots:
  void cancelledAnalyseLeavesTheFrameEmpty();
  void startWithoutSolverPathTellsAndFails_data();
  void startWithoutSolverPathTellsAndFails();
  void enteredPatternSizesComeBackClamped();
};

void WindowFlows::cancelledAnalyseLeavesTheFrameEmpty() {
  QTemporaryDir dir;
  const QByteArray ini = "[PATH]\r\nExePath=solver\r\n";
  WriteIni(dir, ini);
  Workbench workbench;
  QVERIFY(workbench.Start(dir.path()));
  QWidget& frame = workbench.Window();
  QCOMPARE(frame.windowTitle(), QString::fromLatin1(tessiva::kProgramTitle));
  QCOMPARE(frame.findChild<QLabel*>(QStringLiteral("Label1"))->text(),
           QStringLiteral(" ") + QString::fromLatin1(tessiva::kStartMessage));
  QVERIFY(frame.findChild<QWidget*>(QStringLiteral("Pub"))->isVisible());

  QString title, directory;
  QStringList filters;
  WhenModalShown<QFileDialog>([&](QFileDialog* dialog) {
    title = dialog->windowTitle();
    directory = dialog->directory().absolutePath();
    filters = dialog->nameFilters();
    dialog->reject();
  });
  QTest::mouseClick(frame.findChild<QPushButton*>(QStringLiteral("Command1(2)")), Qt::LeftButton);

  QCOMPARE(title, QStringLiteral("Reading result file or sequence file"));
  QCOMPARE(directory, QDir(dir.path()).absolutePath());
  QCOMPARE(filters, QStringList({QStringLiteral("Data (*.res)"), QStringLiteral("Sequence (*.seq)")}));
  QVERIFY(!workbench.State().AnalyseOpen);
  for (const char* tool : {"MiseEnDonne", "ManageJobs", "NewAnalyse", "AreaForm", "Param"})
    QVERIFY2(!frame.findChild<QWidget*>(QLatin1String(tool))->isVisible(), tool);
  QCOMPARE(workbench.State().LastDir, tessiva::FromQt(dir.path()));
  QFile file(dir.filePath(QStringLiteral("correl.ini")));
  QVERIFY(file.open(QIODevice::ReadOnly));
  QCOMPARE(file.readAll(), ini);
}

void WindowFlows::startWithoutSolverPathTellsAndFails_data() {
  QTest::addColumn<QByteArray>("ini");  // empty: no correl.ini at all
  QTest::newRow("no correl.ini") << QByteArray();
  QTest::newRow("no ExePath") << QByteArray("[PATH]\r\nLastDir=/tmp\r\n");
}

void WindowFlows::startWithoutSolverPathTellsAndFails() {
  QFETCH(QByteArray, ini);
  QTemporaryDir dir;
  if (!ini.isEmpty()) WriteIni(dir, ini);
  QString message;
  WhenModalShown<QMessageBox>([&](QMessageBox* box) {
    message = box->text();
    box->button(QMessageBox::Ok)->click();
  });
  Workbench workbench;
  QVERIFY(!workbench.Start(dir.path()));
  QCOMPARE(message, QStringLiteral("Please, verify ExePath variable in 'correl.ini' file"));
  QVERIFY(!workbench.Window().isVisible());
}

void WindowFlows::enteredPatternSizesComeBackClamped() {
  QTemporaryDir dir;
  WriteIni(dir, "[PATH]\r\nExePath=solver\r\n");
  Workbench workbench;
  QVERIFY(workbench.Start(dir.path()));
  workbench.FrameControls().SetVisible("Param", true);
  auto* param = workbench.Window().findChild<QWidget*>(QStringLiteral("Param"));
  QVERIFY(param->isVisible());
  auto* minimum = param->findChild<QLineEdit*>(QStringLiteral("Text1"));
  auto* maximum = param->findChild<QLineEdit*>(QStringLiteral("Text2"));
  const QColor yellow(Qt::yellow), black(Qt::black);

  QTest::keyClicks(minimum, QStringLiteral("40"));
  QCOMPARE(minimum->palette().color(QPalette::Text), yellow);
  QTest::keyClicks(maximum, QStringLiteral("10"));
  QTest::keyClick(maximum, Qt::Key_Return);

  QCOMPARE(minimum->text(), QStringLiteral(" 10"));
  QCOMPARE(maximum->text(), QStringLiteral(" 32"));
  QCOMPARE(minimum->palette().color(QPalette::Text), black);
  QCOMPARE(workbench.State().LpatMin, 10);
  QCOMPARE(workbench.State().LpatMax, 32);
}

int RunWindowFlows(int argc, char** argv) {
  WindowFlows flows;
  return QTest::qExec(&flows, argc, argv);
}

#include "test_windows.moc"

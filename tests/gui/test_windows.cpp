// End-to-end flows through the real windows: the Analyse command with its file
// dialog, a start-up without the solver's path, the parameters window, and the
// job queue from its file dialog to the solver it starts, and the input data tool.
#include <QApplication>
#include <QFile>
#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QTreeWidget>

#include "suites.h"
#include "workbench.h"

using tessiva::Workbench;

namespace {

const QByteArray kIni = "[PATH]\r\nExePath=solver\r\n";

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
  void startWithoutSolverPathTellsAndFails();
  void enteredPatternSizesComeBackClamped();
  void queuedJobStartsTheSolverOnItsDirectory();
  void inputDataShowsTheReferenceNode();
};

void WindowFlows::cancelledAnalyseLeavesTheFrameEmpty() {
  QTemporaryDir dir;
  WriteIni(dir, kIni);
  Workbench workbench;
  QVERIFY(workbench.Start(dir.path()));
  QWidget& frame = workbench.Window();
  QString directory;
  QStringList filters;
  WhenModalShown<QFileDialog>([&](QFileDialog* dialog) {
    directory = dialog->directory().absolutePath();
    filters = dialog->nameFilters();
    dialog->reject();
  });
  QTest::mouseClick(frame.findChild<QPushButton*>(QStringLiteral("Command1(2)")), Qt::LeftButton);

  QCOMPARE(directory, QDir(dir.path()).absolutePath());
  QCOMPARE(filters, QStringList({QStringLiteral("Data (*.res)"), QStringLiteral("Sequence (*.seq)")}));
  QVERIFY(!workbench.State().AnalyseOpen);
  for (const char* tool : {"MiseEnDonne", "ManageJobs", "NewAnalyse", "AreaForm", "Param"})
    QVERIFY2(!frame.findChild<QWidget*>(QLatin1String(tool))->isVisible(), tool);
}

void WindowFlows::startWithoutSolverPathTellsAndFails() {
  for (const QByteArray& ini : {QByteArray(), QByteArray("[PATH]\r\nLastDir=/tmp\r\n")}) {  // empty: no correl.ini
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
}

void WindowFlows::enteredPatternSizesComeBackClamped() {
  QTemporaryDir dir;
  WriteIni(dir, kIni);
  Workbench workbench;
  QVERIFY(workbench.Start(dir.path()));
  workbench.FrameControls().SetVisible("Param", true);
  auto* param = workbench.Window().findChild<QWidget*>(QStringLiteral("Param"));
  auto* minimum = param->findChild<QLineEdit*>(QStringLiteral("Text1"));
  auto* maximum = param->findChild<QLineEdit*>(QStringLiteral("Text2"));

  QTest::keyClicks(minimum, QStringLiteral("40"));
  QCOMPARE(minimum->palette().color(QPalette::Text), QColor(Qt::yellow));
  QTest::keyClicks(maximum, QStringLiteral("10"));
  QTest::keyClick(maximum, Qt::Key_Return);

  QCOMPARE(minimum->text(), QStringLiteral(" 10"));
  QCOMPARE(maximum->text(), QStringLiteral(" 32"));
  QCOMPARE(minimum->palette().color(QPalette::Text), QColor(Qt::black));
  QCOMPARE(std::make_pair(workbench.State().LpatMin, workbench.State().LpatMax), std::make_pair(10, 32));
}

void WindowFlows::queuedJobStartsTheSolverOnItsDirectory() {
  QTemporaryDir dir;
  WriteIni(dir, kIni);
  // A stand-in solver beside the program that notes its arguments.
  QFile solver(dir.filePath(QStringLiteral("solver")));
  QVERIFY(solver.open(QIODevice::WriteOnly));
  solver.write("#!/bin/sh\nprintf '%s|%s' \"$1\" \"$2\" > \"$1/started.part\" && mv \"$1/started.part\" \"$1/started\"\n");
  solver.close();
  QVERIFY(solver.setPermissions(solver.permissions() | QFileDevice::ExeOwner));
  QVERIFY(QFile(dir.filePath(QStringLiteral("job.don"))).open(QIODevice::WriteOnly));
  Workbench workbench;
  QVERIFY(workbench.Start(dir.path()));
  QTest::mouseClick(workbench.Window().findChild<QPushButton*>(QStringLiteral("Command1(1)")), Qt::LeftButton);
  auto* jobs = workbench.Window().findChild<QWidget*>(QStringLiteral("ManageJobs"));
  QVERIFY(jobs->isVisible());
  auto* tree = jobs->findChild<QTreeWidget*>(QStringLiteral("Tree1"));
  const auto queue = tree->findItems(QStringLiteral("Queue of jobs"), Qt::MatchExactly | Qt::MatchRecursive);
  QCOMPARE(queue.size(), 1);

  WhenModalShown<QFileDialog>([&](QFileDialog* dialog) {
    dialog->selectFile(dir.filePath(QStringLiteral("job.don")));
    QMetaObject::invokeMethod(dialog, "accept");  // a protected override of the public slot
  });
  QTest::mouseClick(tree->viewport(), Qt::LeftButton, {}, tree->visualItemRect(queue[0]).center());
  const QString jobPath = QDir::toNativeSeparators(dir.filePath(QStringLiteral("job.don")));
  QCOMPARE(tree->findItems(jobPath, Qt::MatchExactly | Qt::MatchRecursive).size(), 1);

  QString message;
  WhenModalShown<QMessageBox>([&](QMessageBox* box) {
    message = box->text();
    box->button(QMessageBox::Ok)->click();
  });
  QTest::mouseClick(jobs->findChild<QPushButton*>(QStringLiteral("Command1")), Qt::LeftButton);
  QCOMPARE(message, QStringLiteral("solver is running"));
  QVERIFY(!jobs->isVisible());
  QFile queued(dir.filePath(QStringLiteral("entre.dat")));
  QVERIFY(queued.open(QIODevice::ReadOnly));
  QCOMPARE(queued.readAll(), QByteArray("job.don\n"));
  // The data directory, then the program's.
  QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(dir.filePath(QStringLiteral("started"))), 10000);
  QFile started(dir.filePath(QStringLiteral("started")));
  QVERIFY(started.open(QIODevice::ReadOnly));
  const QString native = QDir::toNativeSeparators(dir.path());
  QCOMPARE(QString::fromUtf8(started.readAll()), native + QLatin1Char('|') + native);
}

void WindowFlows::inputDataShowsTheReferenceNode() {
  QTemporaryDir dir;
  WriteIni(dir, kIni);
  Workbench workbench;
  QVERIFY(workbench.Start(dir.path()));
  QTest::mouseClick(workbench.Window().findChild<QPushButton*>(QStringLiteral("Command1(0)")), Qt::LeftButton);
  auto* input = workbench.Window().findChild<QWidget*>(QStringLiteral("MiseEnDonne"));
  QVERIFY(input->isVisible());
  QCOMPARE(input->size(), QSize(731, 299));
  auto* tree = input->findChild<QTreeWidget*>(QStringLiteral("Tree1"));
  QCOMPARE(tree->findItems(QStringLiteral("Reference Picture"), Qt::MatchExactly | Qt::MatchRecursive).size(), 1);
  QVERIFY(!input->findChild<QPushButton*>(QStringLiteral("Command1"))->isEnabled());
}

int RunWindowFlows(int argc, char** argv) {
  WindowFlows flows;
  return QTest::qExec(&flows, argc, argv);
}

#include "test_windows.moc"

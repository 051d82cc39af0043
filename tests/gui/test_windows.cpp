// End-to-end flows through the real windows: the Analyse command with its file
// dialog and the map of a result, a start-up without the solver's path, the
// parameters window, the job queue from its file dialog to the solver it
// starts, and the input data tool.
#include <QAbstractItemView>
#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QFile>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QToolButton>
#include <QTreeWidget>

#include "results/palette.h"
#include "setup/picture.h"
#include "suites.h"
#include "support/resultwriter.h"
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

// Chooses a file in the file dialog that is about to open.
void WhenFileDialogShown(const QString& path) {
  WhenModalShown<QFileDialog>([path](QFileDialog* dialog) {
    dialog->selectFile(path);
    QMetaObject::invokeMethod(dialog, "accept");  // a protected override of the public slot
  });
}

// A 120 x 80 mid-grey picture with patterns every 8 pixels from (24, 16) to
// (104, 64), displaced by u = 0.01 x, v = 0, opened with Analyse. At the
// view's zoom of 0.8 the map is 96 x 64 pixels, 1.25 picture pixels each.
QWidget* AnalyseLinearField(const QTemporaryDir& dir, Workbench& workbench) {
  namespace t = tessiva::testing;
  WriteIni(dir, kIni);
  for (const char* name : {"ref.bmp", "def.bmp"})
    if (!tessiva::SaveGreyBmp(dir.filePath(QLatin1String(name)).toStdString(), 120, 80,
                              std::vector<uint8_t>(120 * 80, 128)))
      return nullptr;
  t::ResultHead head;
  head.lima = 120;
  head.hima = 80;
  const auto field = [](double x, double) { return t::Displacement{0.01 * x, 0.0}; };
  const QString result = dir.filePath(QStringLiteral("linear.res"));
  t::WriteResultFile(result.toStdString(), head, t::GridPatterns(field, 24, 16, 11, 7, 8, 8));
  if (!workbench.Start(dir.path())) return nullptr;
  WhenFileDialogShown(result);
  QTest::mouseClick(workbench.Window().findChild<QPushButton*>(QStringLiteral("Command1(2)")), Qt::LeftButton);
  return workbench.Window().findChild<QWidget*>(QStringLiteral("NewAnalyse"));
}

}  // namespace

class WindowFlows : public QObject {
  Q_OBJECT

 private Q_SLOTS:
  void cancelledAnalyseLeavesTheFrameEmpty();
  void analyseMapsTheResultAndSwitchesField();
  void pickedPointAndLineFillTheCollectorUntilItCloses();
  void crackToolChosenFromTheSectionMenuMeasuresADrag();
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

void WindowFlows::analyseMapsTheResultAndSwitchesField() {
  QTemporaryDir dir;
  Workbench workbench;
  QWidget* window = AnalyseLinearField(dir, workbench);
  QVERIFY(window && window->isVisible());
  QTRY_VERIFY(!workbench.Analyse().Controls().Checked("Timer1"));
  QCOMPARE(workbench.State().NbPat, 11 * 7);

  auto* title = window->findChild<QLabel*>(QStringLiteral("Titre"));
  auto* map = window->findChild<QWidget*>(QStringLiteral("PicAna"));
  // A result without a [UNIT] section counts in "pixel".
  QCOMPARE(title->text(), QStringLiteral("Displacement in pixel along axe 1"));
  const QImage first = map->grab().toImage();
  QCOMPARE(first.size(), QSize(96, 64));
  const auto colourAt = [](const QImage& image, int x, int y) { return image.pixel(x * 4 / 5, y * 4 / 5) & 0xFFFFFF; };
  QSet<QRgb> palette;
  tessiva::ColourScale scale(100);
  for (int k = 0; k <= 100; ++k) {
    double fraction = k / 100.0;
    palette.insert(scale.CouleurEchelle(fraction));
  }
  // u grows along x by 0.08 a column, 9 of the 100 colour steps of its range:
  // each pattern of a row in its own palette colour. Off the patterns the picture shows.
  QSet<QRgb> across;
  for (int x = 24; x <= 104; x += 8) {
    const QRgb colour = colourAt(first, x, 40);
    QVERIFY2(palette.contains(colour), qPrintable(QString::number(x)));
    across.insert(colour);
  }
  QCOMPARE(across.size(), 11);
  QCOMPARE(colourAt(first, 4, 4), QRgb(0x808080));

  // The pointer over the map shows the picture position and the value there.
  QTest::mouseMove(map, QPoint(40, 32));
  QCOMPARE(QString::fromStdString(workbench.FrameControls().Text("Label2")),
           QStringLiteral(" X=50.000 Y=40.000  1 displacement=0.500E+0"));

  auto* fields = window->findChild<QComboBox*>(QStringLiteral("Combo2"));
  const int hencky = fields->findText(QStringLiteral("Epsilon I Major Hencky"));
  QVERIFY(hencky > 0);
  fields->showPopup();
  fields->view()->setCurrentIndex(fields->model()->index(hencky, 0));
  QTest::keyClick(fields->view(), Qt::Key_Return);
  QCOMPARE(title->text(), QStringLiteral("Major principal strain - Hencky tensor"));
  QCOMPARE(fields->currentIndex(), hencky);
  QVERIFY(map->grab().toImage() != first);

  // The reference box frames the patterns and their half cells, (20, 12) to
  // (108, 68) in the picture, at the map's zoom.
  QTest::mouseClick(window->findChild<QWidget*>(QStringLiteral("ShowReference")), Qt::LeftButton, {}, QPoint(5, 5));
  auto* box = window->findChild<QWidget*>(QStringLiteral("ReferenceBox"));
  QVERIFY(box->isVisible());
  QCOMPARE(box->geometry(), QRect(16, 10, 70, 45));
}

// The tab separated numbers of a collector row from field `first` on.
QList<double> RowNumbers(const QString& row, int first) {
  QList<double> numbers;
  const QStringList fields = row.split(QLatin1Char('\t'));
  for (int i = first; i < fields.size(); ++i) numbers << fields[i].toDouble();
  return numbers;
}

// On the field u = 0.01 x: a point, then a line, picked on the map, write
// their rows into the collector window; closing it ends the picking.
// "KI Analysis" on the section key's menu arms the crack tool: the drag shows
// the line and the ring, keys typed on the map step the band, and the
// release writes the crack's row and draws its overlay.
void WindowFlows::crackToolChosenFromTheSectionMenuMeasuresADrag() {
  QTemporaryDir dir;
  Workbench workbench;
  QWidget* window = AnalyseLinearField(dir, workbench);
  QVERIFY(window);
  QTRY_VERIFY(!workbench.Analyse().Controls().Checked("Timer1"));
  auto* map = window->findChild<QWidget*>(QStringLiteral("PicAna"));
  auto* section = window->findChild<QToolButton*>(QStringLiteral("Toolbar1.Button3"));
  QVERIFY(section && section->menu());
  const QList<QAction*> modes = section->menu()->actions();
  QCOMPARE(modes.size(), 2);
  QCOMPARE(modes[1]->text(), QStringLiteral("KI Analysis"));
  modes[1]->trigger();
  QVERIFY(section->isChecked());
  QCOMPARE(section->toolTip(), QStringLiteral("KI Analysis"));

  tessiva::AppState& s = workbench.State();
  QTest::keyClick(map, Qt::Key_Plus);
  QCOMPARE(s.Klarg, 4.0);
  // From the tip at picture (100, 40) back to the start at (50, 40); the map shows 0.8 of each pixel.
  QTest::mousePress(map, Qt::LeftButton, {}, QPoint(80, 32));
  QTest::mouseMove(map, QPoint(40, 32));
  const tessiva::ControlRegistry& controls = workbench.Analyse().Controls();
  QVERIFY(controls.Visible("Line1") && controls.Visible("Shape3"));
  QCOMPARE(controls.Get("Shape3").width, 100);
  const QImage dragging = window->grab().toImage();
  QTest::mouseRelease(map, Qt::LeftButton, {}, QPoint(40, 32));
  QVERIFY(!controls.Visible("Shape3"));
  QVERIFY(s.FissureOn);
  QCOMPARE(s.RayonFissure, 50.0);
  auto* text = workbench.Window().findChild<QWidget*>(QStringLiteral("Info"))->findChild<QPlainTextEdit*>(
      QStringLiteral("DataText"));
  const QStringList lines = text->toPlainText().split(QLatin1Char('\n'), Qt::SkipEmptyParts);
  QCOMPARE(lines.size(), 3);
  QVERIFY2(lines[2].startsWith(QStringLiteral("linear.res\t")), qPrintable(lines[2]));
  const QImage drawn = window->grab().toImage();
  QVERIFY(drawn != dragging);
}

void WindowFlows::pickedPointAndLineFillTheCollectorUntilItCloses() {
  QTemporaryDir dir;
  Workbench workbench;
  QWidget* window = AnalyseLinearField(dir, workbench);
  QVERIFY(window);
  QTRY_VERIFY(!workbench.Analyse().Controls().Checked("Timer1"));
  auto* map = window->findChild<QWidget*>(QStringLiteral("PicAna"));
  auto* collector = workbench.Window().findChild<QWidget*>(QStringLiteral("Info"));
  auto* text = collector->findChild<QPlainTextEdit*>(QStringLiteral("DataText"));
  const auto toolButton = [window](int index) {
    return window->findChild<QToolButton*>(QStringLiteral("Toolbar1.Button%1").arg(index));
  };
  const auto rows = [text] { return text->toPlainText().split(QLatin1Char('\n'), Qt::SkipEmptyParts); };
  QVERIFY(!collector->isVisible());
  QVERIFY(!toolButton(12)->isEnabled());  // SaveAOS waits for a name

  QTest::mouseClick(toolButton(4), Qt::LeftButton);
  QVERIFY(toolButton(4)->isChecked());
  QVERIFY(collector->isVisible());
  QCOMPARE(collector->windowTitle(), QStringLiteral("Data collector"));
  QCOMPARE(collector->size(), QSize(850, 300));
  QVERIFY(collector->windowFlags().testFlags(Qt::Tool | Qt::WindowStaysOnTopHint));
  // Map pixel (40, 32) is picture pixel (50, 40): u = 0.5, v = 0, norm 0.5.
  QTest::mouseClick(map, Qt::LeftButton, {}, QPoint(40, 32));
  QStringList lines = rows();
  QCOMPARE(lines.size(), 3);
  QVERIFY2(lines[2].startsWith(QStringLiteral("linear.res\t\t")), qPrintable(lines[2]));
  QCOMPARE(RowNumbers(lines[2], 2), QList<double>({50, 40, 0.5, 0, 0.5}));

  // A drag from picture (37.5, 50), rounded to (38, 50), to (100, 50):
  // 62 pixels sampled every third of the grid step of 8, 24 samples.
  QTest::mouseClick(toolButton(5), Qt::LeftButton);
  QVERIFY(toolButton(5)->isChecked() && !toolButton(4)->isChecked());
  QTest::mousePress(map, Qt::LeftButton, {}, QPoint(30, 40));
  QTest::mouseMove(map, QPoint(80, 40));
  const tessiva::ControlState& rubber = workbench.Analyse().Controls().Get("Line1");
  QVERIFY(rubber.visible);
  QCOMPARE(QRect(rubber.left, rubber.top, rubber.width, rubber.height), QRect(38, 50, 62, 0));
  QTest::mouseRelease(map, Qt::LeftButton, {}, QPoint(80, 40));
  QVERIFY(!workbench.Analyse().Controls().Visible("Line1"));
  lines = rows();
  QCOMPARE(lines.size(), 2 + 24);
  // Rows carry five significant digits.
  const auto near = [](double actual, double expected) { return qAbs(actual - expected) <= 1e-4 * qAbs(expected); };
  for (int k = 0; k < 24; ++k) {
    const QList<double> sample = RowNumbers(lines[2 + k], 1);  // Ds, X, Y, Displ.1, Displ.2, Norm
    const double x = 38 + k * 8.0 / 3;
    QVERIFY2(near(sample[0], k * 8.0 / 3) && near(sample[1], x) && sample[2] == 50 && near(sample[3], 0.01 * x),
             qPrintable(lines[2 + k]));
  }

  // The clipboard takes the table with its CR LF line ends; the collector keeps its head.
  const QString table = QString::fromStdString(workbench.Analyse().Info.DataText());
  QTest::mouseClick(collector->findChild<QPushButton*>(QStringLiteral("Command1(0)")), Qt::LeftButton);
  QCOMPARE(QGuiApplication::clipboard()->text(), table);
  QVERIFY(table.endsWith(QStringLiteral("\r\n")) && table.count(QStringLiteral("\r\n")) == 2 + 24);
  QCOMPARE(rows().size(), 2);

  // The line stored under a typed name replays when the name is chosen.
  auto* names = window->findChild<QComboBox*>(QStringLiteral("Combo1"));
  QTest::keyClicks(names->lineEdit(), QStringLiteral("profile"));
  QVERIFY(toolButton(12)->isEnabled());
  QTest::keyClick(names->lineEdit(), Qt::Key_Return);
  QVERIFY(!toolButton(12)->isEnabled());
  QCOMPARE(names->count(), 1);
  QCOMPARE(rows().size(), 2);
  names->showPopup();
  names->view()->setCurrentIndex(names->model()->index(0, 0));
  QTest::keyClick(names->view(), Qt::Key_Return);
  QCOMPARE(rows().size(), 2 + 24);

  QVERIFY(collector->close());
  QVERIFY(!collector->isVisible());
  for (int i = 3; i <= 9; ++i) QVERIFY(!toolButton(i)->isChecked());
  // With no tool armed the pointer shows the value under it again.
  QTest::mouseMove(map, QPoint(48, 32));
  QCOMPARE(QString::fromStdString(workbench.FrameControls().Text("Label2")),
           QStringLiteral(" X=60.000 Y=40.000  1 displacement=0.600E+0"));
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

  WhenFileDialogShown(dir.filePath(QStringLiteral("job.don")));
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

// The road of a test through the desktop program: "Input Data" picks a
// reference and two deformed synthetic pictures and starts the setup window,
// where a rectangle, a start point found by the search and "enddata" save both
// data files; the solver then finds the pictures' known displacement.
#include <QApplication>
#include <QFile>
#include <QFileDialog>
#include <QLabel>
#include <QMouseEvent>
#include <QProcess>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QToolButton>
#include <QTreeWidget>
#include <array>
#include <cmath>

#include "analysis/analysisfiles.h"
#include "analysis/newanalyse.h"
#include "canvasview.h"
#include "setup/picture.h"
#include "suites.h"
#include "synth/texture.h"
#include "ui/scriptedui.h"
#include "workbench.h"

using tessiva::Workbench;

namespace {

constexpr int kWidth = 160, kHeight = 120;
// The deformed pictures move by these amounts, in pixels.
constexpr std::array<std::array<double, 2>, 2> kShifts{{{2.3, -1.4}, {4.6, -2.8}}};

bool WritePictures(const QTemporaryDir& dir) {
  namespace synth = tessiva::synth;
  synth::SpeckleSettings st;
  st.width = kWidth;
  st.height = kHeight;
  const synth::Speckle speckle(st);
  const auto save = [&](const char* name, const synth::FieldSpec* field) {
    return tessiva::SaveGreyBmp(dir.filePath(QLatin1String(name)).toStdString(), kWidth, kHeight,
                                synth::Render(speckle, st, field, 1));
  };
  const synth::FieldSpec first{synth::FieldKind::Translation, kShifts[0][0], kShifts[0][1]};
  const synth::FieldSpec second{synth::FieldKind::Translation, kShifts[1][0], kShifts[1][1]};
  return save("ref.bmp", nullptr) && save("def1.bmp", &first) && save("def2.bmp", &second);
}

// Chooses `names` (quoted, blank separated for several) in the file dialog about to open.
void ChooseInFileDialog(const QString& names) {
  QTimer::singleShot(0, qApp, [names] {
    if (auto* dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget())) {
      dialog->selectFile(names);
      QMetaObject::invokeMethod(dialog, "accept");
    } else if (QWidget* other = QApplication::activeModalWidget()) {
      other->close();
    }
  });
}

void ClickNode(QTreeWidget* tree, const QString& text) {
  const auto items = tree->findItems(text, Qt::MatchExactly | Qt::MatchRecursive);
  QVERIFY(!items.isEmpty());
  QTest::mouseClick(tree->viewport(), Qt::LeftButton, {}, tree->visualItemRect(items[0]).center());
}

// A pointer event on a picture view at a point given in picture pixels.
void Pointer(tessiva::CanvasView* view, QEvent::Type type, double x, double y, Qt::MouseButtons held) {
  const QPointF at(view->Surface()->ToPixelX(x), view->Surface()->ToPixelY(y));
  const Qt::MouseButton button = type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton;
  QMouseEvent event(type, at, view->mapToGlobal(at), button, held, Qt::NoModifier);
  QApplication::sendEvent(view, &event);
}

void Drag(tessiva::CanvasView* view, double x1, double y1, double x2, double y2) {
  Pointer(view, QEvent::MouseButtonPress, x1, y1, Qt::LeftButton);
  Pointer(view, QEvent::MouseMove, x2, y2, Qt::LeftButton);
  Pointer(view, QEvent::MouseButtonRelease, x2, y2, Qt::NoButton);
}

// The mean error of the good patterns' displacements in a result file.
std::array<double, 2> Bias(const QTemporaryDir& dir, const QString& result, std::array<double, 2> truth) {
  tessiva::AppState s;
  tessiva::ControlRegistry frame;
  tessiva::ScriptedUi ui{frame};
  tessiva::Param param{s};
  tessiva::NewAnalyse window{s, ui, param};
  s.LastDir = dir.path().toStdString();
  s.NbSeq = 1;
  s.ResizeSequence(1);
  s.DataFilePath[1] = dir.filePath(result).toStdString();
  if (!tessiva::LecRes(window, 1, false)) return {1e9, 1e9};
  double du = 0, dv = 0;
  int good = 0;
  for (int32_t i = 1; i <= s.NbPat; ++i) {
    if (s.FlagPat[static_cast<size_t>(i)] != -1) continue;
    du += s.D1Pat[static_cast<size_t>(i)] - truth[0];
    dv += s.D2Pat[static_cast<size_t>(i)] - truth[1];
    ++good;
  }
  if (good < s.NbPat / 2) return {1e9, 1e9};
  return {du / good, dv / good};
}

}  // namespace

class SetupWindowFlows : public QObject {
  Q_OBJECT

 private Q_SLOTS:
  void wholeRoadGivesTheSyntheticTruth();
};

void SetupWindowFlows::wholeRoadGivesTheSyntheticTruth() {
  QTemporaryDir dir;
  QFile ini(dir.filePath(QStringLiteral("correl.ini")));
  QVERIFY(ini.open(QIODevice::WriteOnly));
  ini.write("[PATH]\r\nExePath=solver\r\n");
  ini.close();
  QVERIFY(WritePictures(dir));
  Workbench workbench;
  QVERIFY(workbench.Start(dir.path()));
  QWidget& frame = workbench.Window();

  QTest::mouseClick(frame.findChild<QPushButton*>(QStringLiteral("Command1(0)")), Qt::LeftButton);
  auto* input = frame.findChild<QWidget*>(QStringLiteral("MiseEnDonne"));
  auto* tree = input->findChild<QTreeWidget*>(QStringLiteral("Tree1"));
  ChooseInFileDialog(dir.filePath(QStringLiteral("ref.bmp")));
  ClickNode(tree, QStringLiteral("Reference Picture"));
  ChooseInFileDialog(QStringLiteral("\"def1.bmp\" \"def2.bmp\""));
  ClickNode(tree, QStringLiteral("Deformed Picture"));
  QTest::mouseClick(input->findChild<QPushButton*>(QStringLiteral("Command1")), Qt::LeftButton);

  auto* area = frame.findChild<QWidget*>(QStringLiteral("AreaForm"));
  QVERIFY(area->isVisible());
  QVERIFY(!input->isVisible());
  auto* title = area->findChild<QLabel*>(QStringLiteral("TitleRef"));
  QTRY_VERIFY(title->text().contains(QStringLiteral("ref.bmp")));
  auto* ref = area->findChild<tessiva::CanvasView*>(QStringLiteral("PicRef"));
  auto* start = area->findChild<QToolButton*>(QStringLiteral("Toolbar2.InitialSolution"));
  QVERIFY(!start->isEnabled());

  area->findChild<QToolButton*>(QStringLiteral("Toolbar2.Button8"))->click();
  Drag(ref, 20, 20, 140, 100);
  QVERIFY(start->isEnabled());
  QVERIFY(area->findChild<QLabel*>(QStringLiteral("FlashInfo"))->isVisible());
  start->click();
  QVERIFY(!area->findChild<QToolButton*>(QStringLiteral("Toolbar2.Button8"))->isEnabled());
  Pointer(ref, QEvent::MouseButtonPress, 80, 60, Qt::LeftButton);
  Pointer(ref, QEvent::MouseButtonRelease, 80, 60, Qt::NoButton);
  auto* enddata = area->findChild<QToolButton*>(QStringLiteral("Toolbar1.enddata"));
  QVERIFY(enddata->isEnabled());
  enddata->click();
  QVERIFY(!area->isVisible());
  QVERIFY(frame.findChild<QWidget*>(QStringLiteral("Pub"))->isVisible());

  // The solver over both data files.
  QFile queue(dir.filePath(QStringLiteral("entre.dat")));
  QVERIFY(queue.open(QIODevice::WriteOnly));
  queue.write("ref-def1.don\nref-def2.don\n");
  queue.close();
  QProcess solver;
  solver.start(QStringLiteral(TESSIVA_SOLVER_PATH), {dir.path(), dir.path()});
  QVERIFY(solver.waitForFinished(60000));
  QCOMPARE(solver.exitCode(), 0);
  for (size_t i = 0; i < kShifts.size(); ++i) {
    const auto [du, dv] = Bias(dir, QStringLiteral("ref-def%1.res").arg(i + 1), kShifts[i]);
    QVERIFY2(std::abs(du) < 0.01 && std::abs(dv) < 0.01, qPrintable(QStringLiteral("%1 %2").arg(du).arg(dv)));
  }
}

int RunSetupWindowFlows(int argc, char** argv) {
  SetupWindowFlows flows;
  return QTest::qExec(&flows, argc, argv);
}

#include "test_setupwindow.moc"

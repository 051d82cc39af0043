// The Qt ports and the widget binding on their own: dialog filters and results,
// the QImage canvas and RegistryBinding.
#include <QApplication>
#include <QCheckBox>
#include <QFile>
#include <QLineEdit>
#include <QMessageBox>
#include <QPainter>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include "qimagecanvas.h"
#include "qtui.h"
#include "registrybinding.h"
#include "suites.h"

using namespace tessiva;

static QRgb At(const QImageCanvas& canvas, int x, int y) { return canvas.Image().pixel(x, y) & 0xFFFFFFu; }

class QtPortTests : public QObject {
  Q_OBJECT

 private Q_SLOTS:
  void fileDialogFiltersAndResultsConvert();
  void userScaleMapsOntoPixelsAndBoxesCoverBothCorners();
  void xorDrawingTwiceRestoresThePicture();
  void filledBatchesPaintWhatPainterFillsPaint();
  void bindingMirrorsTheRegistryAndWritesEditsBeforeReportingThem();
  void statusLineFollowsTheSolverAndAMessageSaysHowItEnded();
};

void QtPortTests::fileDialogFiltersAndResultsConvert() {
  const std::pair<const char*, const char*> cases[] = {
      {"Data|*.res|Sequence|*.seq", "Data (*.res);;Sequence (*.seq)"},
      {"Pictures|*.bmp;*.dib", "Pictures (*.bmp *.dib)"}, {"Data|*.don|Other", "Data (*.don)"}, {"", ""}};
  for (const auto& [filter, expected] : cases) QCOMPARE(QtNameFilters(filter), QString::fromLatin1(expected));
  // The chosen files: one path and its name, or the directory and the names joined by NULs.
  QVERIFY(DialogResult({}).FileName.empty());
  const FileDialogResult one = DialogResult({QStringLiteral("/data/test/a.res")});
  QCOMPARE(one.FileName, std::string("/data/test/a.res"));
  QCOMPARE(one.FileTitle, std::string("a.res"));
  const FileDialogResult two = DialogResult({QStringLiteral("/data/test/a.don"), QStringLiteral("/data/test/b.don")});
  QCOMPARE(two.FileName, std::string("/data/test\0a.don\0b.don", 22));
  QVERIFY(two.FileTitle.empty());
}

void QtPortTests::userScaleMapsOntoPixelsAndBoxesCoverBothCorners() {
  QImageCanvas scaled(200, 100);
  scaled.SetScale(0, 50, 100, -50);  // y upwards, half a unit a pixel
  scaled.Point(10, 10, 0xFF0000);
  QCOMPARE(At(scaled, 20, 80), 0xFF0000u);
  QCOMPARE(At(scaled, 20, 79) & At(scaled, 21, 80), 0xFFFFFFu);  // both neighbours stay white
  for (const bool filled : {false, true}) {
    QImageCanvas canvas(20, 20);
    canvas.SetScale(0, 0, 20, 20);
    filled ? canvas.FilledBox(6, 8, 2, 3, 0x0000FF) : canvas.Box(6, 8, 2, 3, 0x0000FF);
    for (const QPoint corner : {QPoint(2, 3), QPoint(6, 3), QPoint(2, 8), QPoint(6, 8)})
      QCOMPARE(At(canvas, corner.x(), corner.y()), 0x0000FFu);
    for (const QPoint outside : {QPoint(7, 8), QPoint(6, 9), QPoint(1, 3), QPoint(2, 2)})
      QCOMPARE(At(canvas, outside.x(), outside.y()), 0xFFFFFFu);
    QCOMPARE(At(canvas, 4, 5), filled ? 0x0000FFu : 0xFFFFFFu);
  }
}

void QtPortTests::xorDrawingTwiceRestoresThePicture() {
  QImageCanvas canvas(40, 30, 0x336699);
  canvas.SetScale(0, 0, 40, 30);
  canvas.FilledBox(0, 0, 9, 9, 0xC0C0C0);
  const QImage before = canvas.Image().copy();
  canvas.SetDrawMode(DrawMode::XorPen);
  for (int pass = 1; pass <= 2; ++pass) {
    canvas.Line(1, 1, 35, 20, 0xFFFF00);
    canvas.Box(5, 5, 30, 25, 0x00FF00);
    canvas.FilledBox(8, 2, 12, 6, 0xFF00FF);
    canvas.Circle(20, 15, 6, 0xFFFFFF);
    QCOMPARE(canvas.Image() == before, pass == 2);
  }
}

// Filled boxes, in a batch or one by one, against QPainter::fillRect box after
// box on a copy, each box rounded to the pixels of both its corners.
void QtPortTests::filledBatchesPaintWhatPainterFillsPaint() {
  struct Case {
    const char* name;
    double left, top, width, height;  // the user scale of a 30 x 20 canvas
    DrawMode mode;
    std::vector<CanvasBox> boxes;
  };
  const Case cases[] = {
      {"partly or wholly outside", 0, 0, 30, 20, DrawMode::CopyPen,
       {{-5, -5, 3, 4, 0xFF0000}, {27, 15, 40, 30, 0x00FF00}, {29, 19, 29, 19, 0x0000FF}, {30, 5, 35, 8, 0x123456},
        {-9, -9, -1, 30, 0x654321}, {-100, 10, 100, 12, 0xABCDEF}}},
      {"corners in reverse order", 0, 0, 30, 20, DrawMode::CopyPen,
       {{9, 8, 2, 3, 0xFF0000}, {20, 1, 25, 6, 0x00FF00}, {28, 18, 22, 12, 0x0000FF}}},
      {"zero size", 0, 0, 30, 20, DrawMode::CopyPen,
       {{4, 4, 4, 4, 0xFF0000}, {6, 2, 6, 9, 0x00FF00}, {-1, -1, -1, -1, 0x0000FF}, {30, 3, 30, 3, 0xFFFF00}}},
      {"fractional scale", 0.25, 0.5, 7.5, 5.0, DrawMode::CopyPen,
       {{0.3, 0.6, 1.1, 1.2, 0xFF0000}, {2.05, 1.875, 3.3, 5.6, 0x00FF00}, {7.0, 0.1, 8.0, 2.0, 0x0000FF}}},
      {"y upwards", 0, 50, 100, -50, DrawMode::CopyPen,
       {{10, 40, 30, 10, 0xFF0000}, {50, -5, 120, 20, 0x00FF00}, {0, 50, 0, 50, 0x0000FF}}},
      {"x leftwards, offset", 40, -10, -40, 30, DrawMode::CopyPen,
       {{35, -8, 20, 5, 0xFF0000}, {2, 15, -3, 25, 0x00FF00}}},
      {"overlapping, last on top", 0, 0, 30, 20, DrawMode::CopyPen,
       {{2, 2, 20, 15, 0xFF0000}, {10, 5, 25, 18, 0x00FF00}, {5, 10, 12, 12, 0x0000FF}, {2, 2, 20, 15, 0x808080}}},
      {"xor", 0, 0, 30, 20, DrawMode::XorPen, {{2, 2, 20, 15, 0xFF00FF}, {10, 5, 25, 18, 0x00FFFF}}},
      {"invert", 0, 0, 30, 20, DrawMode::Invert, {{2, 2, 20, 15, 0xFF00FF}, {-3, 5, 25, 18, 0x00FFFF}}},
  };
  for (const Case& c : cases) {
    for (const bool batch : {true, false}) {
      QImageCanvas canvas(30, 20, 0x336699);
      canvas.SetScale(0, 0, 30, 20);
      canvas.FilledBox(0, 0, 14, 9, 0xC0C0C0);  // a picture under the boxes, for xor and invert
      canvas.SetScale(c.left, c.top, c.width, c.height);
      canvas.SetDrawMode(c.mode);
      const QImage shared = canvas.Image();  // shares the canvas's pixels until they are written
      const QImage before = shared.copy();

      QImage expected = before.copy();
      QPainter painter(&expected);
      if (c.mode == DrawMode::XorPen) painter.setCompositionMode(QPainter::RasterOp_SourceXorDestination);
      if (c.mode == DrawMode::Invert) painter.setCompositionMode(QPainter::RasterOp_NotDestination);
      for (const CanvasBox& b : c.boxes) {
        const int x1 = qRound(canvas.ToPixelX(b.x1)), y1 = qRound(canvas.ToPixelY(b.y1));
        const int x2 = qRound(canvas.ToPixelX(b.x2)), y2 = qRound(canvas.ToPixelY(b.y2));
        painter.fillRect(QRect(QPoint(std::min(x1, x2), std::min(y1, y2)), QPoint(std::max(x1, x2), std::max(y1, y2))),
                         QColor::fromRgb(b.colour));
      }
      painter.end();

      if (batch) {
        canvas.FilledBoxes(c.boxes);
      } else {
        for (const CanvasBox& b : c.boxes) canvas.FilledBox(b.x1, b.y1, b.x2, b.y2, b.colour);
      }
      const QByteArray where = QByteArray(c.name) + (batch ? " (batch)" : " (one by one)");
      QVERIFY2(canvas.Image() == expected, where.constData());
      QVERIFY2(shared == before, where.constData());
    }
  }
}

void QtPortTests::bindingMirrorsTheRegistryAndWritesEditsBeforeReportingThem() {
  ControlRegistry registry;
  registry.SetEnabled("Check1", false);  // written before the window exists
  QWidget root;
  auto* button = new QPushButton(QStringLiteral("Input Data"), &root);
  button->setObjectName(QStringLiteral("Command1(0)"));
  auto* check = new QCheckBox(QStringLiteral("Large strain"), &root);
  check->setObjectName(QStringLiteral("Check1"));
  auto* edit = new QLineEdit(&root);
  edit->setObjectName(QStringLiteral("Text1"));
  // A child window is bound by its own name; its field of the same name isn't this registry's.
  auto* tool = new QWidget(&root, Qt::Tool);
  tool->setObjectName(QStringLiteral("Tool"));
  auto* inner = new QLineEdit(tool);
  inner->setObjectName(QStringLiteral("Text1"));
  RegistryBinding binding(registry, &root);
  QVERIFY(!check->isEnabled());

  // Registry to widgets: each field is applied once written, and only that field.
  registry.SetEnabled("Command1(0)", false);
  QCOMPARE(button->text(), QStringLiteral("Input Data"));
  registry.SetText("Command1(0)", "Go");
  QCOMPARE(std::make_pair(button->text(), button->isEnabled()), std::make_pair(QStringLiteral("Go"), false));
  registry.SetText("Text1", " 8");
  QCOMPARE(std::make_pair(edit->text(), inner->text()), std::make_pair(QStringLiteral(" 8"), QString()));
  registry.SetVisible("Tool", true);
  QVERIFY(tool->isVisible());

  // Widgets to registry: typed text is in the registry when reported; the
  // controller's own writes aren't edits; a closed tool window is hidden.
  std::vector<std::string> seen;
  std::vector<int> keys;
  connect(&binding, &RegistryBinding::edited, this,
          [&](const std::string& name) { seen.push_back(registry.Text(name)); });
  connect(&binding, &RegistryBinding::keyPressed, this, [&](const std::string&, int key) { keys.push_back(key); });
  edit->clear();
  QTest::keyClicks(edit, QStringLiteral("7,5"));
  QTest::keyClick(edit, Qt::Key_Return);
  registry.SetText("Text1", "9");
  QCOMPARE(seen, (std::vector<std::string>{"7", "7,", "7,5"}));
  QCOMPARE(keys, (std::vector<int>{'7', ',', '5', 13}));
  check->setEnabled(true);
  check->click();
  QVERIFY(registry.Checked("Check1"));
  tool->close();
  QVERIFY(!registry.Visible("Tool"));
  registry.SetVisible("Tool", true);  // shown again after the user closed it
  QVERIFY(tool->isVisible());
}

// A stand-in solver that solves one job, pauses, skips the second and fails.
void QtPortTests::statusLineFollowsTheSolverAndAMessageSaysHowItEnded() {
  QTemporaryDir dir;
  QFile solver(dir.filePath("solver"));
  QVERIFY(solver.open(QIODevice::WriteOnly));
  solver.write("#!/bin/sh\n"
               "echo 'file 1 of 2: a.don'\n"
               "echo '  patterns solved 25, bad patterns 0, time 0.10 s'\n"
               "sleep 1\n"
               "echo 'file 2 of 2: b.don'\n"
               "echo \"  skipped: the picture b.bmp can't be read\"\n"
               "echo 'done: 1 of 2 jobs solved, 1 skipped, 0.20 s'\n"
               "exit 3\n");
  solver.close();
  solver.setPermissions(solver.permissions() | QFileDevice::ExeOwner);

  ControlRegistry frame;
  QtUi ui(frame);
  QString shown;
  QTimer answer;  // the end's message box is modal: read and close it
  QObject::connect(&answer, &QTimer::timeout, [&shown] {
    if (auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) {
      shown = box->text();
      box->button(QMessageBox::Ok)->click();
    }
  });
  answer.start(50);
  const std::string log = dir.filePath("solver.log").toStdString();
  QVERIFY(!ui.StartSolver(dir.filePath("missing").toStdString(), {}, log));
  QVERIFY(ui.StartSolver(solver.fileName().toStdString(), {dir.path().toStdString()}, log));
  QTRY_VERIFY_WITH_TIMEOUT(frame.Text("Label1").find("Solver: file 1 of 2: a.don, 25 patterns solved") != std::string::npos,
                           5000);
  QTRY_VERIFY_WITH_TIMEOUT(!shown.isEmpty(), 10000);
  QCOMPARE(shown, QStringLiteral("The solver ended with exit status 3: 1 of 2 jobs solved, 1 skipped, 0.20 s.\n"
                                 "Skipped:\nb.don: the picture b.bmp can't be read"));
  QCOMPARE(frame.Text("Label1"), std::string(" The solver ended with exit status 3: 1 of 2 jobs solved, 1 skipped, 0.20 s."));
}

int RunQtPortTests(int argc, char** argv) {
  QtPortTests tests;
  return QTest::qExec(&tests, argc, argv);
}

#include "test_qtports.moc"

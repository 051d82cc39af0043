// The Qt ports and the widget binding on their own: dialog filters and
// results, the busy pointer, the QImage canvas and RegistryBinding.
#include <QApplication>
#include <QCheckBox>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>

#include "qimagecanvas.h"
#include "qtui.h"
#include "registrybinding.h"
#include "suites.h"

using namespace tessiva;

Q_DECLARE_METATYPE(std::optional<int>)

namespace {

QRgb At(const QImageCanvas& canvas, int x, int y) { return canvas.Image().pixel(x, y) & 0xFFFFFFu; }

}  // namespace

class QtPortTests : public QObject {
  Q_OBJECT

 private slots:
  void nameFiltersComeFromDescriptionPatternPairs_data();
  void nameFiltersComeFromDescriptionPatternPairs();
  void dialogResultsGiveOneFileOrADirectoryAndNames();
  void busyPointerIsCountedAndNeverOverRestored();

  void userScaleMapsOntoImagePixels_data();
  void userScaleMapsOntoImagePixels();
  void boxesCoverBothCorners();
  void xorDrawingTwiceRestoresThePicture();
  void pictureIsStretchedWithoutBlending();

  void indexedControlNames_data();
  void indexedControlNames();
  void bindingAppliesOnlyTheFieldsThatChanged();
  void typedTextIsInTheRegistryWhenReported();
  void childWindowIsBoundByNameOnly();
};

void QtPortTests::nameFiltersComeFromDescriptionPatternPairs_data() {
  QTest::addColumn<QString>("filter");
  QTest::addColumn<QString>("expected");
  QTest::newRow("two pairs") << "Data|*.res|Sequence|*.seq" << "Data (*.res);;Sequence (*.seq)";
  QTest::newRow("several patterns") << "Pictures|*.bmp;*.dib" << "Pictures (*.bmp *.dib)";
  QTest::newRow("description without pattern") << "Data|*.don|Other" << "Data (*.don)";
  QTest::newRow("empty") << "" << "";
}

void QtPortTests::nameFiltersComeFromDescriptionPatternPairs() {
  QFETCH(QString, filter);
  QFETCH(QString, expected);
  QCOMPARE(QtNameFilters(FromQt(filter)), expected);
}

void QtPortTests::dialogResultsGiveOneFileOrADirectoryAndNames() {
  const FileDialogResult none = DialogResult({});
  QVERIFY(none.FileName.empty());

  const FileDialogResult one = DialogResult({QStringLiteral("/data/test/a.res")});
  QCOMPARE(one.FileName, std::string("/data/test/a.res"));
  QCOMPARE(one.FileTitle, std::string("a.res"));

  const FileDialogResult two = DialogResult({QStringLiteral("/data/test/a.don"), QStringLiteral("/data/test/b.don")});
  QCOMPARE(two.FileName, std::string("/data/test\0a.don\0b.don", 22));
  QVERIFY(two.FileTitle.empty());
}

void QtPortTests::busyPointerIsCountedAndNeverOverRestored() {
  QApplication::setOverrideCursor(Qt::CrossCursor);  // someone else's pointer
  {
    ControlRegistry frame;
    QtUi ui(frame);
    ui.SetBusy(true);
    ui.SetBusy(true);
    ui.SetBusy(false);
    QCOMPARE(QApplication::overrideCursor()->shape(), Qt::WaitCursor);
    ui.SetBusy(false);
    ui.SetBusy(false);
    QCOMPARE(QApplication::overrideCursor()->shape(), Qt::CrossCursor);
    ui.SetBusy(true);
  }  // a port destroyed while busy gives the pointer back
  QCOMPARE(QApplication::overrideCursor()->shape(), Qt::CrossCursor);
  QApplication::restoreOverrideCursor();
}

void QtPortTests::userScaleMapsOntoImagePixels_data() {
  QTest::addColumn<QRectF>("scale");  // left, top, width, height
  QTest::addColumn<QPointF>("point");
  QTest::addColumn<QPoint>("pixel");
  QTest::newRow("half size") << QRectF(0, 0, 100, 50) << QPointF(50, 25) << QPoint(100, 50);
  QTest::newRow("shifted origin") << QRectF(-10, -10, 200, 100) << QPointF(0, 0) << QPoint(10, 10);
  QTest::newRow("y upwards") << QRectF(0, 50, 100, -50) << QPointF(10, 10) << QPoint(20, 80);
}

void QtPortTests::userScaleMapsOntoImagePixels() {
  QFETCH(QRectF, scale);
  QFETCH(QPointF, point);
  QFETCH(QPoint, pixel);
  QImageCanvas canvas(200, 100);
  canvas.SetScale(scale.x(), scale.y(), scale.width(), scale.height());
  canvas.Point(point.x(), point.y(), 0xFF0000);
  QCOMPARE(At(canvas, pixel.x(), pixel.y()), 0xFF0000u);
  QCOMPARE(At(canvas, pixel.x() + 1, pixel.y()), 0xFFFFFFu);
  QCOMPARE(At(canvas, pixel.x(), pixel.y() - 1), 0xFFFFFFu);
}

void QtPortTests::boxesCoverBothCorners() {
  for (const bool filled : {false, true}) {
    QImageCanvas canvas(20, 20);
    canvas.SetScale(0, 0, 20, 20);
    if (filled)
      canvas.FilledBox(6, 8, 2, 3, 0x0000FF);
    else
      canvas.Box(6, 8, 2, 3, 0x0000FF);
    for (const QPoint corner : {QPoint(2, 3), QPoint(6, 3), QPoint(2, 8), QPoint(6, 8)})
      QCOMPARE(At(canvas, corner.x(), corner.y()), 0x0000FFu);
    for (const QPoint outside : {QPoint(7, 8), QPoint(6, 9), QPoint(1, 3), QPoint(2, 2)})
      QCOMPARE(At(canvas, outside.x(), outside.y()), 0xFFFFFFu);
    QCOMPARE(At(canvas, 4, 5), filled ? 0x0000FFu : 0xFFFFFFu);
  }

  QImageCanvas canvas(20, 20);
  canvas.SetScale(0, 0, 20, 20);
  const CanvasBox batch[] = {{1, 1, 3, 3, 0xFF0000}, {3, 3, 5, 5, 0x00FF00}};
  canvas.FilledBoxes(batch);
  QCOMPARE(At(canvas, 1, 1), 0xFF0000u);
  QCOMPARE(At(canvas, 3, 3), 0x00FF00u);  // drawn in order: the second covers the shared corner
  QCOMPARE(At(canvas, 5, 5), 0x00FF00u);
  QCOMPARE(At(canvas, 6, 6), 0xFFFFFFu);
}

void QtPortTests::xorDrawingTwiceRestoresThePicture() {
  QImageCanvas canvas(40, 30, 0x336699);
  canvas.SetScale(0, 0, 40, 30);
  canvas.FilledBox(0, 0, 9, 9, 0xC0C0C0);
  const QImage before = canvas.Image().copy();
  canvas.SetDrawMode(DrawMode::XorPen);
  auto drawAll = [&canvas] {
    canvas.Line(1, 1, 35, 20, 0xFFFF00);
    canvas.Box(5, 5, 30, 25, 0x00FF00);
    canvas.FilledBox(8, 2, 12, 6, 0xFF00FF);
    canvas.Circle(20, 15, 6, 0xFFFFFF);
  };
  drawAll();
  QVERIFY(canvas.Image() != before);
  drawAll();
  QCOMPARE(canvas.Image(), before);
}

void QtPortTests::pictureIsStretchedWithoutBlending() {
  // Rows of 3 elements of which 2 are the picture; out-of-range levels are clamped.
  const int32_t pixels[] = {0, 255, 77, 128, 999, 77};
  std::array<Colour, 256> palette{};
  for (uint32_t i = 0; i < 256; ++i) palette[i] = i * 0x010101u;
  const IndexedPicture picture{pixels, 2, 2, 3, palette.data()};
  QImageCanvas canvas(4, 4);
  canvas.DrawPicture(picture, 0, 0, 2, 2, 0, 0, 4, 4);
  const QRgb expected[2][2] = {{0x000000, 0xFFFFFF}, {0x808080, 0xFFFFFF}};
  for (int y = 0; y < 4; ++y)
    for (int x = 0; x < 4; ++x) QCOMPARE(At(canvas, x, y), expected[y / 2][x / 2]);

  const QImage before = canvas.Image().copy();
  canvas.DrawPicture(picture, 1, 0, 2, 2, 0, 0, 4, 4);  // reaches past the picture
  QCOMPARE(canvas.Image(), before);
}

void QtPortTests::indexedControlNames_data() {
  QTest::addColumn<QString>("name");
  QTest::addColumn<std::optional<int>>("index");
  QTest::newRow("indexed") << "Command1(2)" << std::optional<int>(2);
  QTest::newRow("two digits") << "Command1(12)" << std::optional<int>(12);
  QTest::newRow("not indexed") << "Command1" << std::optional<int>();
  QTest::newRow("empty index") << "Command1()" << std::optional<int>();
  QTest::newRow("other control") << "Command10(1)" << std::optional<int>();
  QTest::newRow("not a number") << "Command1(x)" << std::optional<int>();
}

void QtPortTests::indexedControlNames() {
  QFETCH(QString, name);
  QFETCH(std::optional<int>, index);
  QCOMPARE(ControlIndex(FromQt(name), "Command1"), index);
}

void QtPortTests::bindingAppliesOnlyTheFieldsThatChanged() {
  ControlRegistry registry;
  registry.SetEnabled("Check1", false);  // written before the window exists
  QWidget root;
  auto* button = new QPushButton(QStringLiteral("Input Data"), &root);
  button->setObjectName(QStringLiteral("Command1(0)"));
  auto* check = new QCheckBox(QStringLiteral("Large strain"), &root);
  check->setObjectName(QStringLiteral("Check1"));
  RegistryBinding binding(registry, &root);
  QVERIFY(!check->isEnabled());
  QCOMPARE(check->text(), QStringLiteral("Large strain"));

  registry.SetEnabled("Command1(0)", false);
  QVERIFY(!button->isEnabled());
  QCOMPARE(button->text(), QStringLiteral("Input Data"));
  registry.SetText("Command1(0)", "Go");
  QCOMPARE(button->text(), QStringLiteral("Go"));
  QVERIFY(!button->isEnabled());

  registry.SetForeColor("Command1(0)", 12);
  QCOMPARE(button->palette().color(button->foregroundRole()), QColor(Qt::red));

  check->setEnabled(true);
  check->click();
  QVERIFY(registry.Checked("Check1"));
}

void QtPortTests::typedTextIsInTheRegistryWhenReported() {
  ControlRegistry registry;
  QWidget root;
  auto* edit = new QLineEdit(&root);
  edit->setObjectName(QStringLiteral("Text3"));
  RegistryBinding binding(registry, &root);
  std::vector<std::string> seenWhenReported;
  std::vector<int> keys;
  connect(&binding, &RegistryBinding::edited, this,
          [&](const std::string& name) { seenWhenReported.push_back(registry.Text(name)); });
  connect(&binding, &RegistryBinding::keyPressed, this, [&](const std::string&, int key) { keys.push_back(key); });

  QTest::keyClicks(edit, QStringLiteral("7,5"));
  QTest::keyClick(edit, Qt::Key_Return);
  QCOMPARE(seenWhenReported, (std::vector<std::string>{"7", "7,", "7,5"}));
  QCOMPARE(keys, (std::vector<int>{'7', ',', '5', 13}));

  registry.SetText("Text3", " 8");
  QCOMPARE(edit->text(), QStringLiteral(" 8"));
  QCOMPARE(seenWhenReported.size(), size_t(3));  // the controller's own writes aren't edits
}

void QtPortTests::childWindowIsBoundByNameOnly() {
  ControlRegistry registry;
  QWidget root;
  auto* outer = new QLineEdit(&root);
  outer->setObjectName(QStringLiteral("Text1"));
  auto* tool = new QWidget(&root, Qt::Tool);
  tool->setObjectName(QStringLiteral("Tool"));
  auto* inner = new QLineEdit(tool);
  inner->setObjectName(QStringLiteral("Text1"));
  RegistryBinding binding(registry, &root);

  registry.SetText("Text1", "outer");
  QCOMPARE(outer->text(), QStringLiteral("outer"));
  QVERIFY(inner->text().isEmpty());

  registry.SetVisible("Tool", true);
  QVERIFY(tool->isVisible());
  tool->close();
  QVERIFY(!registry.Visible("Tool"));
  registry.SetVisible("Tool", true);  // shown again after the user closed it
  QVERIFY(tool->isVisible());
}

int RunQtPortTests(int argc, char** argv) {
  QtPortTests tests;
  return QTest::qExec(&tests, argc, argv);
}

#include "test_qtports.moc"

// The forming-limit graph panel of the analysis window: a band drawn with the
// section tool across a neck, the panel shown by Image1 with the section's
// graph and its limit, a point rejected on the graph, the side option and
// the determination's choice, and TextCLF from a double click.
#include <QComboBox>
#include <QFile>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QScrollBar>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QToolButton>
#include <QFileDialog>
#include <QApplication>

#include "setup/picture.h"
#include "suites.h"
#include "support/neckfield.h"
#include "workbench.h"

using tessiva::Workbench;

namespace {

// A 256 x 160 grey picture, patterns every 8 pixels over x 24..232 and y
// 24..136 holding the neck, opened with Analyse.
QWidget* AnalyseNeck(const QTemporaryDir& dir, Workbench& workbench) {
  namespace t = tessiva::testing;
  QFile ini(dir.filePath(QStringLiteral("correl.ini")));
  if (!ini.open(QIODevice::WriteOnly)) return nullptr;
  ini.write("[PATH]\r\nExePath=solver\r\n[CLFSEC]\r\nNUMBER=3\r\nX1=-10\r\nY1=30\r\nX2=0\r\nY2=20\r\nX3=10\r\nY3=28\r\n");
  ini.close();
  for (const char* name : {"ref.bmp", "def.bmp"})
    if (!tessiva::SaveGreyBmp(dir.filePath(QLatin1String(name)).toStdString(), 256, 160,
                              std::vector<uint8_t>(256 * 160, 150)))
      return nullptr;
  t::ResultHead head;
  head.lima = 256;
  head.hima = 160;
  head.moreSections = "[UNIT]\nUnitNameX=mm\nUnitNameY=mm\nUnitPX=0.25\nUnitPY=0.25\n";
  const QString result = dir.filePath(QStringLiteral("neck.res"));
  t::WriteResultFile(result.toStdString(), head, t::GridPatterns(t::Neck(8.0), 24, 24, 27, 15, 8, 8));
  if (!workbench.Start(dir.path())) return nullptr;
  QTimer::singleShot(0, qApp, [result] {
    if (auto* dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget())) {
      dialog->selectFile(result);
      QMetaObject::invokeMethod(dialog, "accept");
    }
  });
  QTest::mouseClick(workbench.Window().findChild<QPushButton*>(QStringLiteral("Command1(2)")), Qt::LeftButton);
  return workbench.Window().findChild<QWidget*>(QStringLiteral("NewAnalyse"));
}

}  // namespace

class FlcPanelFlows : public QObject {
  Q_OBJECT

 private Q_SLOTS:
  void bandAcrossTheNeckIsGraphedAndItsPointsRejected();
};

void FlcPanelFlows::bandAcrossTheNeckIsGraphedAndItsPointsRejected() {
  QTemporaryDir dir;
  Workbench workbench;
  QWidget* window = AnalyseNeck(dir, workbench);
  QVERIFY(window);
  workbench.Window().resize(1500, 950);
  QTRY_VERIFY(!workbench.Analyse().Controls().Checked("Timer1"));
  tessiva::NewAnalyse& analyse = workbench.Analyse();
  tessiva::FormingLimits& flc = analyse.Flc;
  auto* map = window->findChild<QWidget*>(QStringLiteral("PicAna"));
  auto* panel = window->findChild<QWidget*>(QStringLiteral("GrapheAna"));
  auto* graph = window->findChild<QWidget*>(QStringLiteral("Graphe"));
  QVERIFY(map && panel && graph);
  QVERIFY(!panel->isVisible());

  // The section tool's band from picture (40, 80) to (220, 80), at the map's zoom.
  analyse.ArmSectionTool(tessiva::SectionKind::FormingLimit);
  const double zoom = analyse.View.Zoom;
  const QPoint from(qRound(40 * zoom), qRound(80 * zoom)), to(qRound(220 * zoom), qRound(80 * zoom));
  QTest::mousePress(map, Qt::LeftButton, {}, from);
  QTest::mouseMove(map, to);
  QTest::mouseRelease(map, Qt::LeftButton, {}, to);
  QCOMPARE(analyse.VueCourante, 16);
  QCOMPARE(flc.NbSection, 79);
  QVERIFY(analyse.Controls().Visible("Line1"));

  QTest::mouseClick(window->findChild<QToolButton*>(QStringLiteral("Image1")), Qt::LeftButton);
  QVERIFY(panel->isVisible());
  QVERIFY(window->findChild<QWidget*>(QStringLiteral("FrameCLF"))->isVisible());
  const QImage drawn = graph->grab().toImage();
  if (qEnvironmentVariableIsSet("TESSIVA_GRAB_DIR"))
    window->grab().save(qEnvironmentVariable("TESSIVA_GRAB_DIR") + QStringLiteral("/flcpanel.png"));
  QCOMPARE(flc.Limits.cosineStatus, -1);
  auto* labMax = window->findChild<QLabel*>(QStringLiteral("LabMax"));
  QVERIFY2(labMax->text().endsWith(QStringLiteral(" %")), qPrintable(labMax->text()));

  // A click on point 4 of the graph rejects it, and the graph changes.
  const tessiva::Canvas& g = *analyse.Graphe;
  const QPoint point4(qRound(g.ToPixelX(flc.XSection[4])), qRound(g.ToPixelY(flc.EpsiISection[4])));
  QTest::mouseClick(graph, Qt::LeftButton, {}, point4);
  QCOMPARE(flc.SectionOk[4], -1);
  QVERIFY(graph->grab().toImage() != drawn);

  // The side kept and the determination follow their options.
  QTest::mouseClick(window->findChild<QRadioButton*>(QStringLiteral("Option1(1)")), Qt::LeftButton);
  QCOMPARE(flc.SectionSide, 1);
  QTest::mouseClick(window->findChild<QRadioButton*>(QStringLiteral("FlcMethod(1)")), Qt::LeftButton);
  QCOMPARE(flc.Method, tessiva::FlcMethod::Iso12004);
  auto* position = window->findChild<QScrollBar*>(QStringLiteral("PosScroll"));
  position->setValue(60);
  QCOMPARE(flc.PosScroll, 60);

  // The diagram: a dot a map sample under the stored curve; a click on the
  // map places the marker at that point's strains.
  auto* fields = window->findChild<QComboBox*>(QStringLiteral("Combo2"));
  analyse.OnCombo2Click(fields->findText(QStringLiteral("FLC Diagram")));
  QVERIFY(panel->isVisible());
  QTest::mouseClick(map, Qt::LeftButton, {}, QPoint(qRound(130 * zoom), qRound(80 * zoom)));
  QVERIFY(window->findChild<QWidget*>(QStringLiteral("Shape2"))->isVisible());
  if (qEnvironmentVariableIsSet("TESSIVA_GRAB_DIR"))
    window->grab().save(qEnvironmentVariable("TESSIVA_GRAB_DIR") + QStringLiteral("/flcdiagram.png"));
  analyse.OnCombo2Click(fields->findText(QStringLiteral("FLC Determination")));

  // A double click lists the section's points in TextCLF.
  QTest::mouseDClick(graph, Qt::LeftButton, {}, QPoint(300, 200));
  QTRY_VERIFY(window->findChild<QWidget*>(QStringLiteral("TextCLF"))->isVisible());
  if (qEnvironmentVariableIsSet("TESSIVA_GRAB_DIR"))
    window->grab().save(qEnvironmentVariable("TESSIVA_GRAB_DIR") + QStringLiteral("/flcpanel-text.png"));
}

int RunFlcPanelFlows(int argc, char** argv) {
  FlcPanelFlows flows;
  return QTest::qExec(&flows, argc, argv);
}

#include "test_flcpanel.moc"

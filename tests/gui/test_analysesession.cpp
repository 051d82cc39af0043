// The analysis window over a sequence of three results, through its real
// widgets: the navigation keys and the member list, the map size switch and
// the lens.
#include <QAbstractItemView>
#include <QApplication>
#include <QComboBox>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QTemporaryDir>
#include <QTest>
#include <QToolButton>

#include "analysissequence.h"
#include "suites.h"
#include "workbench.h"

using tessiva::testing::kStretch;
using tessiva::testing::OpenSequence;

class AnalysisSessionFlows : public QObject {
  Q_OBJECT

 private Q_SLOTS:
  void keysAndListWalkTheSequence();
};

void AnalysisSessionFlows::keysAndListWalkTheSequence() {
  QTemporaryDir dir;
  tessiva::Workbench workbench;
  QVERIFY(OpenSequence(dir, workbench));
  QWidget* window = workbench.Window().findChild<QWidget*>(QStringLiteral("NewAnalyse"));
  tessiva::NewAnalyse& analyse = workbench.Analyse();
  QTRY_VERIFY(!analyse.Controls().Checked("Timer1"));
  auto* members = window->findChild<QComboBox*>(QStringLiteral("Combo4"));
  QCOMPARE(members->count(), 3);
  const auto key = [window](int index) {
    return window->findChild<QToolButton*>(QStringLiteral("Toolbar1.Button%1").arg(index));
  };
  // Each member is told by u at picture (100, 40).
  const auto shown = [&analyse] { return qRound(analyse.DonneIso(100, 40, tessiva::kViewU)); };
  struct Step {
    int button;
    int member;
  };
  for (const Step step : {Step{17, 2}, Step{18, 3}, Step{17, 3}, Step{15, 2}, Step{14, 1}, Step{15, 1}}) {
    QTest::mouseClick(key(step.button), Qt::LeftButton);
    QCOMPARE(analyse.CurFile, step.member);
    QCOMPARE(members->currentIndex(), step.member - 1);
    QCOMPARE(shown(), qRound(100 * kStretch[step.member - 1]));
  }
  QCOMPARE(key(20)->toolTip(), QStringLiteral("Run sequence"));
  // The parameters of the result are shown, not to be edited.
  QTest::mouseClick(key(1), Qt::LeftButton);
  auto* parameters = workbench.Window().findChild<QWidget*>(QStringLiteral("Param"));
  QVERIFY(parameters->isVisible());
  QVERIFY(!parameters->findChild<QLineEdit*>(QStringLiteral("Text3"))->isEnabled());
  members->showPopup();
  QTest::keyClick(members->view(), Qt::Key_End);
  QTest::keyClick(members->view(), Qt::Key_Return);
  QCOMPARE(analyse.CurFile, 3);

  // "1:1" shows the 120 x 80 picture at 0.9, "1:x" at 1.
  auto* map = window->findChild<QWidget*>(QStringLiteral("PicAna"));
  auto* size = window->findChild<QPushButton*>(QStringLiteral("Command1"));
  QCOMPARE(size->text(), QStringLiteral("1:1"));
  QTest::mouseClick(size, Qt::LeftButton);
  QCOMPARE(map->size(), QSize(108, 72));
  QCOMPARE(size->text(), QStringLiteral("1:x"));
  QTest::mouseClick(size, Qt::LeftButton);
  QCOMPARE(map->size(), QSize(120, 80));

  // Control with the right button dragged 600 pixels down: a factor of 3.
  QTest::mousePress(map, Qt::RightButton, Qt::ControlModifier, QPoint(60, 20));
  QVERIFY(analyse.Controls().Visible("MireZoomRef"));
  QMouseEvent drag(QEvent::MouseMove, QPointF(60, 620), map->mapToGlobal(QPointF(60, 620)), Qt::NoButton,
                   Qt::RightButton, Qt::ControlModifier);
  QApplication::sendEvent(map, &drag);
  QTest::mouseRelease(map, Qt::RightButton, Qt::ControlModifier, QPoint(60, 620));
  QVERIFY(!analyse.Controls().Visible("MireZoomRef"));
  QCOMPARE(map->size(), QSize(360, 240));

  // Control with the left button: the lens follows the pointer, and the map
  // is centred where it is let go, as far as it can scroll.
  workbench.Window().resize(700, 500);
  QTest::mousePress(map, Qt::LeftButton, Qt::ControlModifier, QPoint(200, 120));
  QVERIFY(analyse.Controls().Visible("RecZoomRef"));
  QTest::mouseRelease(map, Qt::LeftButton, Qt::ControlModifier, QPoint(200, 120));
  QVERIFY(!analyse.Controls().Visible("RecZoomRef"));
  auto* scroll = qobject_cast<QScrollArea*>(map->parentWidget()->parentWidget());
  QVERIFY(scroll);
  const QPoint centre = map->mapTo(scroll->viewport(), QPoint(200, 120));
  const QSize view = scroll->viewport()->size();
  // The map is wider than its view, so it scrolls to bring the point to the middle.
  QVERIFY(scroll->horizontalScrollBar()->value() > 0);
  QVERIFY(qAbs(centre.x() - view.width() / 2) <= 1);
}

int RunAnalysisSessionFlows(int argc, char** argv) {
  AnalysisSessionFlows flows;
  return QTest::qExec(&flows, argc, argv);
}

#include "test_analysesession.moc"

// The analysis window's captures, its export menu and the frame's About
// window and Output key, through the real widgets and dialogs.
#include <QAbstractButton>
#include <QApplication>
#include <QClipboard>
#include <QDir>
#include <QFileDialog>
#include <QImage>
#include <QImageReader>
#include <QLabel>
#include <QMenu>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <QToolButton>
#include <deque>
#include <functional>

#include "analysis/toolbar1.h"
#include "analysissequence.h"
#include "suites.h"
#include "workbench.h"

namespace {

// Answers the modal windows and pop-up menus as they open, a step each in
// order. A window no step expects is closed, so that the test fails rather
// than hangs. A step whose action opens the next window acts through a
// queued call, so that window's event loop doesn't run inside this handler.
class ModalScript {
 public:
  using Step = std::function<bool(QWidget*)>;

  explicit ModalScript(std::deque<Step> steps) : steps_(std::move(steps)) {
    QObject::connect(&timer_, &QTimer::timeout, [this] { Poll(); });
    timer_.start(10);
  }

  bool Done() const { return steps_.empty() && !unexpected_; }

 private:
  // A closed menu may still count as the active pop-up while the dialog its
  // entry opened runs: both are looked at.
  void Poll() {
    for (QWidget* shown : {QApplication::activePopupWidget(), QApplication::activeModalWidget()}) {
      if (!shown || shown == last_) continue;
      last_ = shown;
      if (steps_.empty() || !steps_.front()(shown)) {
        unexpected_ = true;
        shown->close();
        return;
      }
      steps_.pop_front();
      return;
    }
  }

  std::deque<Step> steps_;
  QTimer timer_;
  // Null again once that window is gone, so that a new one at its address counts as new.
  QPointer<QWidget> last_;
  bool unexpected_ = false;
};

// A file dialog of that title, accepted with the name it offers.
ModalScript::Step AcceptOffered(const QString& title, QString* offered) {
  return [=](QWidget* shown) {
    auto* dialog = qobject_cast<QFileDialog*>(shown);
    if (!dialog || dialog->windowTitle() != title) return false;
    *offered = dialog->selectedFiles().value(0);
    QMetaObject::invokeMethod(dialog, "accept");  // a protected override of the public slot
    return true;
  };
}

// A message box whose text starts with `text`, answered with `button`.
ModalScript::Step Answer(const QString& text, QMessageBox::StandardButton button) {
  return [=](QWidget* shown) {
    auto* box = qobject_cast<QMessageBox*>(shown);
    if (!box || !box->text().startsWith(text)) return false;
    box->button(button)->click();
    return true;
  };
}

QSize PictureSize(const QString& path, const QByteArray& format) {
  QImageReader reader(path);
  return reader.format() == format ? reader.size() : QSize();
}

}  // namespace

class CaptureFlows : public QObject {
  Q_OBJECT

 private Q_SLOTS:
  void filmKeysCaptureTheMemberAndEachMemberOfTheSequence();
  void exportMenuOffersEveryExport();
  void logoShowsAboutAndOutputStandsBesideTheCommands();
};

void CaptureFlows::filmKeysCaptureTheMemberAndEachMemberOfTheSequence() {
  QTemporaryDir dir;
  tessiva::Workbench workbench;
  QVERIFY(tessiva::testing::OpenSequence(dir, workbench));
  tessiva::NewAnalyse& analyse = workbench.Analyse();
  QTRY_VERIFY(!analyse.Controls().Checked("Timer1"));
  QWidget* window = workbench.Window().findChild<QWidget*>(QStringLiteral("NewAnalyse"));
  const auto key = [window](int index) {
    return window->findChild<QToolButton*>(QStringLiteral("Toolbar1.Button%1").arg(index));
  };
  // The map less its frame band (8 x 4) is narrower than the legend, 318 x 71, under it.
  const QSize map = window->findChild<QWidget*>(QStringLiteral("PicAna"))->size();
  QVERIFY(map.width() - 8 < 318);
  const QSize composed(318, map.height() - 4 + 71);

  QString offered;
  {
    ModalScript script({Answer(QStringLiteral("The picture is sent to the clipboard"), QMessageBox::Yes),
                        AcceptOffered(QStringLiteral("Save picture"), &offered)});
    QTest::mouseClick(key(tessiva::kFilmButton), Qt::LeftButton);
    QTRY_VERIFY(script.Done());
  }
  QCOMPARE(QFileInfo(offered).fileName(), QStringLiteral("ref-d1-1 displacement.bmp"));
  QCOMPARE(PictureSize(offered, "bmp"), composed);
  QCOMPARE(QGuiApplication::clipboard()->image().size(), composed);
  QVERIFY(QFile::remove(offered));

  // The directory is the one of the name offered for the first member.
  {
    ModalScript script({AcceptOffered(QStringLiteral("Choose the directory"), &offered),
                        Answer(QStringLiteral("Sequence saved"), QMessageBox::Ok)});
    QTest::mouseClick(key(tessiva::kFilm2Button), Qt::LeftButton);
    QTRY_VERIFY(script.Done());
  }
  const QString frames = QFileInfo(offered).absolutePath();
  for (int i = 1; i <= 3; ++i)
    QCOMPARE(PictureSize(frames + QStringLiteral("/ref-d%1-1 displacement.bmp").arg(i), "bmp"), composed);
  QCOMPARE(analyse.CurFile, 3);
}

// The map's menu, without a tool armed, offers the five exports before the keyboard input.
void CaptureFlows::exportMenuOffersEveryExport() {
  QTemporaryDir dir;
  tessiva::Workbench workbench;
  QVERIFY(tessiva::testing::OpenSequence(dir, workbench));
  QTRY_VERIFY(!workbench.Analyse().Controls().Checked("Timer1"));
  QWidget* map = workbench.Window().findChild<QWidget*>(QStringLiteral("PicAna"));
  QStringList entries;
  ModalScript script({[&entries](QWidget* shown) {
    auto* menu = qobject_cast<QMenu*>(shown);
    if (!menu) return false;
    for (const QAction* action : menu->actions()) entries << (action->isSeparator() ? QString() : action->text());
    QTimer::singleShot(0, menu, &QMenu::close);
    return true;
  }});
  QTest::mouseClick(map, Qt::RightButton, Qt::NoModifier, QPoint(60, 40));
  QTRY_VERIFY(script.Done());
  QCOMPARE(entries, QStringList({QStringLiteral("Write clean result file"), QStringLiteral("Write Universal result file"),
                                 QStringLiteral("Write Abaqus input file"), QStringLiteral("Write VTK grid file"),
                                 QStringLiteral("Write CSV table file"), QString(), QStringLiteral("Keyboard Input")}));
}

void CaptureFlows::logoShowsAboutAndOutputStandsBesideTheCommands() {
  QTemporaryDir dir;
  tessiva::Workbench workbench;
  QVERIFY(tessiva::testing::OpenSequence(dir, workbench));
  QWidget& frame = workbench.Window();
  QCOMPARE(frame.findChild<QPushButton*>(QStringLiteral("Command2"))->text(), QStringLiteral("Output"));
  QString version, licence;
  ModalScript script({[&](QWidget* shown) {
    if (shown->objectName() != QLatin1String("APropos")) return false;
    version = shown->findChild<QLabel*>(QStringLiteral("Version"))->text();
    licence = shown->findChild<QLabel*>(QStringLiteral("Licence"))->text();
    QMetaObject::invokeMethod(shown, "accept");
    return true;
  }});
  QTest::mouseClick(frame.findChild<QWidget*>(QStringLiteral("Picture3")), Qt::LeftButton);
  QTRY_VERIFY(script.Done());
  QCOMPARE(version, QStringLiteral("Version " TESSIVA_VERSION));
  QVERIFY(!licence.isEmpty());
}

int RunCaptureFlows(int argc, char** argv) {
  CaptureFlows flows;
  return QTest::qExec(&flows, argc, argv);
}

#include "test_captures.moc"

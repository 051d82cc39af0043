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
// than hangs. Steps act through queued calls: a step's own dialog may open
// the next window, whose event loop must not run inside this one's handler.
class ModalScript {
 public:
  using Step = std::function<bool(QWidget*)>;

  explicit ModalScript(std::deque<Step> steps) : steps_(std::move(steps)) {
    QObject::connect(&timer_, &QTimer::timeout, [this] { Poll(); });
    timer_.start(10);
  }

  bool Done() const { return steps_.empty() && !unexpected_; }

 private:
  void Poll() {
    QWidget* shown = QApplication::activePopupWidget();
    if (!shown) shown = QApplication::activeModalWidget();
    if (!shown || shown == last_) return;
    last_ = shown;
    if (steps_.empty() || !steps_.front()(shown)) {
      unexpected_ = true;
      shown->close();
      return;
    }
    steps_.pop_front();
  }

  std::deque<Step> steps_;
  QTimer timer_;
  QWidget* last_ = nullptr;
  bool unexpected_ = false;
};

// A file dialog of that title: `name` chosen in its directory's place `path`.
ModalScript::Step ChooseFile(const QString& title, const QString& path, QString* offered = nullptr) {
  return [=](QWidget* shown) {
    auto* dialog = qobject_cast<QFileDialog*>(shown);
    if (!dialog || dialog->windowTitle() != title) return false;
    if (offered) *offered = QFileInfo(dialog->selectedFiles().value(0)).fileName();
    dialog->selectFile(path);
    QMetaObject::invokeMethod(dialog, "accept", Qt::QueuedConnection);
    return true;
  };
}

// A message box whose text starts with `text`, answered with `button`.
ModalScript::Step Answer(const QString& text, QMessageBox::StandardButton button) {
  return [=](QWidget* shown) {
    auto* box = qobject_cast<QMessageBox*>(shown);
    if (!box || !box->text().startsWith(text)) return false;
    QTimer::singleShot(0, box->button(button), &QAbstractButton::click);
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
  void exportMenuWritesTheChosenFormat();
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
  const QString capture = dir.filePath(QStringLiteral("capture.png"));
  {
    ModalScript script({Answer(QStringLiteral("The picture is sent to the clipboard"), QMessageBox::Yes),
                        ChooseFile(QStringLiteral("Save picture"), capture, &offered)});
    QTest::mouseClick(key(tessiva::kFilmButton), Qt::LeftButton);
    QTRY_VERIFY(script.Done());
  }
  QCOMPARE(offered, QStringLiteral("ref-d1-1 displacement.bmp"));
  QCOMPARE(PictureSize(capture, "png"), composed);
  QCOMPARE(QGuiApplication::clipboard()->image().size(), composed);

  const QString frames = dir.filePath(QStringLiteral("frames"));
  QVERIFY(QDir().mkpath(frames));
  {
    ModalScript script({ChooseFile(QStringLiteral("Choose the directory"), frames + QStringLiteral("/any.bmp")),
                        Answer(QStringLiteral("Sequence saved"), QMessageBox::Ok)});
    QTest::mouseClick(key(tessiva::kFilm2Button), Qt::LeftButton);
    QTRY_VERIFY(script.Done());
  }
  for (int i = 1; i <= 3; ++i)
    QCOMPARE(PictureSize(frames + QStringLiteral("/ref-d%1-1 displacement.bmp").arg(i), "bmp"), composed);
  QCOMPARE(QDir(frames).entryList(QDir::Files).size(), 3);
  QCOMPARE(analyse.CurFile, 3);
}

void CaptureFlows::exportMenuWritesTheChosenFormat() {
  QTemporaryDir dir;
  tessiva::Workbench workbench;
  QVERIFY(tessiva::testing::OpenSequence(dir, workbench));
  QTRY_VERIFY(!workbench.Analyse().Controls().Checked("Timer1"));
  QWidget* map = workbench.Window().findChild<QWidget*>(QStringLiteral("PicAna"));
  const QString vtu = dir.filePath(QStringLiteral("mesh.vtu"));
  QStringList entries;
  ModalScript script({[&entries](QWidget* shown) {
                        auto* menu = qobject_cast<QMenu*>(shown);
                        if (!menu) return false;
                        for (const QAction* action : menu->actions()) entries << action->objectName();
                        menu->setActiveAction(menu->findChild<QAction*>(QStringLiteral("SVTMnu")));
                        QTimer::singleShot(0, menu, [menu] { QTest::keyClick(menu, Qt::Key_Return); });
                        return true;
                      },
                      ChooseFile(QStringLiteral("Write VTK grid file"), vtu)});
  QTest::mouseClick(map, Qt::RightButton, Qt::NoModifier, QPoint(60, 40));
  QTRY_VERIFY(script.Done());
  for (const char* entry : {"SCFMnu", "SUFMnu", "SAFMnu", "SVTMnu", "SCSMnu"})
    QVERIFY2(entries.contains(QLatin1String(entry)), entry);
  QTRY_VERIFY(QFileInfo::exists(vtu));
  QFile file(vtu);
  QVERIFY(file.open(QIODevice::ReadOnly));
  QVERIFY(file.readAll().contains("<VTKFile type=\"UnstructuredGrid\""));
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
    QMetaObject::invokeMethod(shown, "accept", Qt::QueuedConnection);
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

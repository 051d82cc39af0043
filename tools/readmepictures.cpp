// Saves what the desktop program shows over the demo's files, as a user
// would reach it: the setup window with an area, its pattern grid and a start
// point on the demo's pictures, then the analysis window with the major
// strain map of the demo's result. Usage:
//   tessiva-readme-pictures DEMO_DIR OUT_DIR
// DEMO_DIR is a directory tessiva-demo has filled (ref.bmp, def.bmp, neck.res
// and correl.ini); OUT_DIR receives setup-window.png and analysis-window.png.
#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QFileDialog>
#include <QMouseEvent>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <QToolButton>
#include <QTreeWidget>
#include <iostream>

#include "canvasview.h"
#include "workbench.h"

namespace {

constexpr QSize kWindowSize(1280, 860);

// Chooses `names` (quoted and blank separated for several) in the file dialog about to open.
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

template <typename T>
T& Child(const QWidget& parent, const char* name) {
  T* child = parent.findChild<T*>(QLatin1String(name));
  if (!child) throw std::runtime_error(std::string("the window has no ") + name);
  return *child;
}

void ClickNode(QTreeWidget& tree, const QString& text) {
  const auto items = tree.findItems(text, Qt::MatchExactly | Qt::MatchRecursive);
  if (items.isEmpty()) throw std::runtime_error("the input tree has no node " + text.toStdString());
  QTest::mouseClick(tree.viewport(), Qt::LeftButton, {}, tree.visualItemRect(items[0]).center());
}

// A left-button pointer event on a picture view at a point in picture pixels.
void Pointer(tessiva::CanvasView& view, QEvent::Type type, QPointF picture) {
  const QPointF at(view.Surface()->ToPixelX(picture.x()), view.Surface()->ToPixelY(picture.y()));
  const bool move = type == QEvent::MouseMove;
  const bool held = type != QEvent::MouseButtonRelease;
  QMouseEvent event(type, at, view.mapToGlobal(at), move ? Qt::NoButton : Qt::LeftButton,
                    held ? Qt::LeftButton : Qt::NoButton, Qt::NoModifier);
  QApplication::sendEvent(&view, &event);
}

void Settle() {
  for (int i = 0; i < 20; ++i) QTest::qWait(25);
}

bool Save(QWidget& window, const QDir& out, const char* name) {
  Settle();
  const QString path = out.filePath(QLatin1String(name));
  if (!window.grab().save(path)) {
    std::cerr << "tessiva-readme-pictures: can't write " << path.toStdString() << '\n';
    return false;
  }
  std::cout << "Wrote " << path.toStdString() << '\n';
  return true;
}

// "Input Data" with the demo's pair, then a rectangle over most of the strip
// and a start point in its middle.
bool SaveSetupWindow(const QDir& demo, const QDir& out) {
  tessiva::Workbench workbench;
  if (!workbench.Start(demo.path())) return false;
  QWidget& frame = workbench.Window();
  frame.resize(kWindowSize);
  QTest::mouseClick(&Child<QPushButton>(frame, "Command1(0)"), Qt::LeftButton);
  auto& input = Child<QWidget>(frame, "MiseEnDonne");
  auto& tree = Child<QTreeWidget>(input, "Tree1");
  ChooseInFileDialog(demo.filePath(QStringLiteral("ref.bmp")));
  ClickNode(tree, QStringLiteral("Reference Picture"));
  ChooseInFileDialog(QStringLiteral("\"def.bmp\""));
  ClickNode(tree, QStringLiteral("Deformed Picture"));
  QTest::mouseClick(&Child<QPushButton>(input, "Command1"), Qt::LeftButton);
  Settle();

  auto& area = Child<QWidget>(frame, "AreaForm");
  auto& ref = Child<tessiva::CanvasView>(area, "PicRef");
  Child<QToolButton>(area, "Toolbar2.Button8").click();
  Pointer(ref, QEvent::MouseButtonPress, {96, 136});
  Pointer(ref, QEvent::MouseMove, {416, 376});
  Pointer(ref, QEvent::MouseButtonRelease, {416, 376});
  // The start point's propagation shades each pattern of the grid.
  Child<QToolButton>(area, "Toolbar2.InitialSolution").click();
  Pointer(ref, QEvent::MouseButtonPress, {256, 256});
  Pointer(ref, QEvent::MouseButtonRelease, {256, 256});
  return Save(frame, out, "setup-window.png");
}

// "Analyse" on the demo's result, showing its major Hencky strain.
bool SaveAnalysisWindow(const QDir& demo, const QDir& out) {
  tessiva::Workbench workbench;
  if (!workbench.Start(demo.path())) return false;
  QWidget& frame = workbench.Window();
  frame.resize(kWindowSize);
  ChooseInFileDialog(demo.filePath(QStringLiteral("neck.res")));
  QTest::mouseClick(&Child<QPushButton>(frame, "Command1(2)"), Qt::LeftButton);
  auto& analyse = Child<QWidget>(frame, "NewAnalyse");
  if (!QTest::qWaitFor([&] { return !workbench.Analyse().Controls().Checked("Timer1"); }, 20000)) return false;
  auto& fields = Child<QComboBox>(analyse, "Combo2");
  const int major = fields.findText(QStringLiteral("Epsilon I Major Hencky"), Qt::MatchContains);
  if (major < 0) throw std::runtime_error("the field list has no major Hencky strain");
  fields.setCurrentIndex(major);
  Q_EMIT fields.activated(major);  // as a choice by the user
  return Save(frame, out, "analysis-window.png");
}

}  // namespace

int main(int argc, char** argv) {
  QApplication app(argc, argv);
  if (argc != 3) {
    std::cerr << "usage: tessiva-readme-pictures DEMO_DIR OUT_DIR\n";
    return 2;
  }
  const QDir demo(QDir(QString::fromLocal8Bit(argv[1])).absolutePath());
  const QDir out(QDir(QString::fromLocal8Bit(argv[2])).absolutePath());
  try {
    return SaveSetupWindow(demo, out) && SaveAnalysisWindow(demo, out) ? 0 : 1;
  } catch (const std::exception& e) {
    std::cerr << "tessiva-readme-pictures: " << e.what() << '\n';
    return 1;
  }
}

#include "qtui.h"

#include <QApplication>
#include <QClipboard>
#include <QDir>
#include <QFileInfo>
#include <QImage>
#include <QInputDialog>
#include <QMessageBox>
#include <QProcess>
#include <QThread>

#include "registrybinding.h"

namespace tessiva {
namespace {

QMessageBox::StandardButtons QtButtons(MsgButtons buttons) {
  switch (buttons) {
    case MsgButtons::OkCancel: return QMessageBox::Ok | QMessageBox::Cancel;
    case MsgButtons::YesNo: return QMessageBox::Yes | QMessageBox::No;
    case MsgButtons::YesNoCancel: return QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel;
    case MsgButtons::Ok: break;
  }
  return QMessageBox::Ok;
}

QMessageBox::Icon QtIcon(MsgIcon icon) {
  switch (icon) {
    case MsgIcon::Critical: return QMessageBox::Critical;
    case MsgIcon::Question: return QMessageBox::Question;
    case MsgIcon::Exclamation: return QMessageBox::Warning;
    case MsgIcon::Information: return QMessageBox::Information;
    case MsgIcon::None: break;
  }
  return QMessageBox::NoIcon;
}

MsgAnswer Answer(int button) {
  switch (button) {
    case QMessageBox::Yes: return MsgAnswer::Yes;
    case QMessageBox::No: return MsgAnswer::No;
    case QMessageBox::Ok: return MsgAnswer::Ok;
    default: return MsgAnswer::Cancel;
  }
}

// A box without a title of its own bears the program's name.
QString BoxTitle(const std::string& title) {
  return title.empty() ? QGuiApplication::applicationDisplayName() : ToQt(title);
}

QString NativePath(const QString& path) { return QDir::toNativeSeparators(path); }

}  // namespace

QString QtNameFilters(const std::string& filter) {
  const QStringList parts = ToQt(filter).split(QLatin1Char('|'));
  QStringList filters;
  for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
    const QString patterns = parts[i + 1].split(QLatin1Char(';'), Qt::SkipEmptyParts).join(QLatin1Char(' '));
    filters << QStringLiteral("%1 (%2)").arg(parts[i], patterns);
  }
  return filters.join(QLatin1String(";;"));
}

FileDialogResult DialogResult(const QStringList& files) {
  if (files.isEmpty()) return {};
  if (files.size() == 1) return {FromQt(NativePath(files[0])), FromQt(QFileInfo(files[0]).fileName())};
  std::string joined = FromQt(NativePath(QFileInfo(files[0]).absolutePath()));
  for (const QString& file : files) {
    joined += '\0';
    joined += FromQt(QFileInfo(file).fileName());
  }
  return {joined, ""};
}

QtUi::~QtUi() {
  while (busyDepth_ > 0) SetBusy(false);
}

MsgAnswer QtUi::MessageBox(const std::string& text, const std::string& title, MsgButtons buttons, MsgIcon icon) {
  QMessageBox box(QtIcon(icon), BoxTitle(title), ToQt(text), QtButtons(buttons), parent_);
  return Answer(box.exec());
}

std::optional<std::string> QtUi::InputBox(const std::string& prompt, const std::string& title,
                                          const std::string& defaultText) {
  QInputDialog box(parent_);
  box.setWindowTitle(BoxTitle(title));
  box.setLabelText(ToQt(prompt));
  box.setTextValue(ToQt(defaultText));
  if (box.exec() != QDialog::Accepted) return std::nullopt;
  return FromQt(box.textValue());
}

FileDialogResult QtUi::RunFileDialog(const FileDialogRequest& request, QFileDialog::AcceptMode mode) {
  QFileDialog dialog(parent_, ToQt(request.title), ToQt(request.initialDir), QtNameFilters(request.filter));
  // Qt's own dialog behaves alike on every platform and can be driven by the window tests.
  dialog.setOption(QFileDialog::DontUseNativeDialog);
  dialog.setAcceptMode(mode);
  if (mode == QFileDialog::AcceptOpen)
    dialog.setFileMode(request.multiSelect ? QFileDialog::ExistingFiles : QFileDialog::ExistingFile);
  dialog.setDefaultSuffix(ToQt(request.defaultExt));
  if (!request.fileName.empty()) dialog.selectFile(ToQt(request.fileName));
  const QStringList filters = dialog.nameFilters();
  if (request.filterIndex >= 1 && request.filterIndex <= filters.size())
    dialog.selectNameFilter(filters[request.filterIndex - 1]);
  if (dialog.exec() != QDialog::Accepted) return {};
  return DialogResult(dialog.selectedFiles());
}

FileDialogResult QtUi::OpenFileDialog(const FileDialogRequest& request) {
  return RunFileDialog(request, QFileDialog::AcceptOpen);
}

FileDialogResult QtUi::SaveFileDialog(const FileDialogRequest& request) {
  return RunFileDialog(request, QFileDialog::AcceptSave);
}

// The text goes as it is: tables keep their CR LF line ends for spreadsheets.
void QtUi::SetClipboardText(const std::string& text) { QGuiApplication::clipboard()->setText(ToQt(text)); }

void QtUi::SetClipboardPicture(const RgbImage& picture) {
  if (picture.width <= 0 || picture.height <= 0 ||
      picture.pixels.size() < static_cast<size_t>(picture.width) * static_cast<size_t>(picture.height))
    return;
  QImage image(picture.width, picture.height, QImage::Format_RGB32);
  const uint32_t* source = picture.pixels.data();
  for (int y = 0; y < picture.height; ++y) {
    auto* row = reinterpret_cast<QRgb*>(image.scanLine(y));
    for (int x = 0; x < picture.width; ++x) row[x] = 0xFF000000u | *source++;
  }
  QGuiApplication::clipboard()->setImage(image);
}

void QtUi::Beep() { QApplication::beep(); }

bool QtUi::StartProcess(const std::string& program, const std::vector<std::string>& arguments) {
  QStringList args;
  for (const std::string& a : arguments) args << ToQt(a);
  return QProcess::startDetached(ToQt(program), args);
}

bool QtUi::StartSolver(const std::string& program, const std::vector<std::string>& arguments,
                       const std::string& outputFile) {
  if (!solverMonitor_) solverMonitor_ = std::make_unique<SolverMonitor>(*this);
  return solverMonitor_->Start(program, arguments, outputFile);
}

void QtUi::SetBusy(bool busy) {
  if (busy) {
    ++busyDepth_;
    QApplication::setOverrideCursor(Qt::WaitCursor);
  } else if (busyDepth_ > 0) {
    --busyDepth_;
    QApplication::restoreOverrideCursor();
  }
}

void QtUi::DoEvents() { QCoreApplication::processEvents(); }

void QtUi::EndProgram(int status) {
  // Outside every event loop (a failed start-up) Qt would instead stop the next
  // loop to run, such as a later message box's; start-up reports its failure itself.
  if (QThread::currentThread()->loopLevel() > 0) QCoreApplication::exit(status);
}

}  // namespace tessiva

#include "solvermonitor.h"

#include <QFile>
#include <QFileInfo>
#include <QProcess>

namespace tessiva {
namespace {

constexpr int kPollMilliseconds = 500;

// Runs the program with its output in the file named by $0, then adds its exit status.
constexpr const char* kFollowedRun = "exec >\"$0\" 2>&1; \"$@\"; echo \"exit status $?\"";

}  // namespace

SolverMonitor::SolverMonitor(UiPort& ui, QObject* parent) : QObject(parent), ui_(ui) {
  poll_.setInterval(kPollMilliseconds);
  connect(&poll_, &QTimer::timeout, this, &SolverMonitor::Poll);
}

bool SolverMonitor::Start(const std::string& program, const std::vector<std::string>& arguments,
                          const std::string& outputFile) {
  const QString qtProgram = QString::fromStdString(program);
  if (!QFileInfo(qtProgram).isExecutable()) return false;
  QStringList args{"-c", kFollowedRun, QString::fromStdString(outputFile), qtProgram};
  for (const std::string& a : arguments) args << QString::fromStdString(a);
  // Emptied first, so that the last run's report is never read as this one's.
  QFile output(QString::fromStdString(outputFile));
  if (!output.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
    QStringList plain;
    for (const std::string& a : arguments) plain << QString::fromStdString(a);
    return QProcess::startDetached(qtProgram, plain);
  }
  output.close();
  if (!QProcess::startDetached("/bin/sh", args)) return false;
  outputFile_ = output.fileName();
  read_ = 0;
  partialLine_.clear();
  progress_ = SolverProgress();
  clock_.start();
  poll_.start();
  ui_.StatusLine(progress_.StatusText(0.0));
  return true;
}

void SolverMonitor::Poll() {
  QFile output(outputFile_);
  if (output.open(QIODevice::ReadOnly) && output.seek(read_)) {
    const QByteArray fresh = output.readAll();
    read_ += fresh.size();
    partialLine_.append(fresh.constData(), static_cast<size_t>(fresh.size()));
  }
  for (size_t end = partialLine_.find('\n'); end != std::string::npos; end = partialLine_.find('\n')) {
    progress_.Feed(std::string_view(partialLine_).substr(0, end));
    partialLine_.erase(0, end + 1);
  }
  if (const auto ended = progress_.EndMessage()) return Finish(*ended);
  ui_.StatusLine(progress_.StatusText(static_cast<double>(clock_.elapsed()) / 1000.0));
}

void SolverMonitor::Finish(const std::string& message) {
  poll_.stop();
  ui_.StatusLine(message.substr(0, message.find('\n')));
  ui_.MessageBox(message, "Solver", MsgButtons::Ok,
                 progress_.EndedCleanly() ? MsgIcon::Information : MsgIcon::Exclamation);
}

}  // namespace tessiva

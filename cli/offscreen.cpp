#include "offscreen.h"

#include <QGuiApplication>
#include <cstdio>

#include "analysis/newanalyse.h"
#include "capturepicture.h"

namespace tessiva::cli {
namespace {

// Qt's notes about the desktop session (no runtime directory, no screen)
// mean nothing on the command line; its errors still go to standard error.
void QuietQtMessages(QtMsgType type, const QMessageLogContext&, const QString& message) {
  if (type == QtCriticalMsg || type == QtFatalMsg) std::fprintf(stderr, "%s\n", qPrintable(message));
}

}  // namespace

bool OffscreenGuiReady() {
  if (QCoreApplication::instance()) return qobject_cast<QGuiApplication*>(QCoreApplication::instance()) != nullptr;
  qInstallMessageHandler(QuietQtMessages);
  static int argc = 3;
  static char name[] = "tessiva-cli", option[] = "-platform", platform[] = "offscreen";
  static char* argv[] = {name, option, platform, nullptr};
  static QGuiApplication* const app = new QGuiApplication(argc, argv);
  return app != nullptr;
}

std::optional<std::string> ComposedPng(NewAnalyse& window, const CaptureParts& parts) {
  QtCapture port;
  const auto picture = ComposeCapture(window, port, parts);
  if (!picture) return std::nullopt;
  return EncodedPicture(ToQImage(*picture), "PNG");
}

}  // namespace tessiva::cli

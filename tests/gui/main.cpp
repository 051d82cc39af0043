#include <QApplication>

#include "suites.h"

int main(int argc, char** argv) {
  QApplication app(argc, argv);
  int failed = RunQtPortTests(argc, argv);
  failed += RunWindowFlows(argc, argv);
  failed += RunFlcPanelFlows(argc, argv);
  failed += RunSetupWindowFlows(argc, argv);
  failed += RunAnalysisSessionFlows(argc, argv);
  failed += RunCaptureFlows(argc, argv);
  return failed == 0 ? 0 : 1;
}

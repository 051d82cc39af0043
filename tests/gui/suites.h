// The QtTest classes of test_gui, each run by its own function.
#pragma once

int RunQtPortTests(int argc, char** argv);
int RunWindowFlows(int argc, char** argv);
int RunFlcPanelFlows(int argc, char** argv);
int RunSetupWindowFlows(int argc, char** argv);
int RunAnalysisSessionFlows(int argc, char** argv);
int RunCaptureFlows(int argc, char** argv);

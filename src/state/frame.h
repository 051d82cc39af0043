// The frame window's logic (MDIForm1): start-up from correl.ini, the three
// commands that each open one tool, the resize rules and exit. The tool windows
// are entries of the frame's control registry, shown or unloaded by name.
#pragma once

#include <string>

#include "state/appstate.h"
#include "ui/uiport.h"

namespace tessiva {

inline constexpr const char* kStartMessage =
    "Input data : generates data files,  Manage jobs : generates batch files,  Analyse : examines results";
inline constexpr const char* kProgramTitle = "Tessiva - Version 4.65.0 - Tessiva Workbench - tessiva.org";

// Reads the forming-limit curve of [CLFSEC] and widens the diagram's bounds,
// which start at x -10 to 10 and y -15 to 25, to hold every point.
void ReadFormingLimitCurve(AppState& s);

// The directory of a file chosen in a dialog: its FileName less its FileTitle
// and the separator before it.
std::string ChosenDirectory(const FileDialogResult& chosen);
// Makes `dir` the data directory, kept in correl.ini for the next start.
void RememberLastDir(AppState& s, const std::string& dir);

class MDIForm1 {
 public:
  enum Command { kInputData = 0, kManageJobs = 1, kAnalyse = 2 };
  static constexpr int kStartWidth = 800, kStartHeight = 600;
  static constexpr int kMinWidth = 640, kMinHeight = 480;

  MDIForm1(AppState& state, UiPort& ui) : s_(state), ui_(ui) {}

  // Start-up in `startDir` on a screen of the given size. Returns false when the
  // program has to end (correl.ini without ExePath).
  bool Load(const std::string& startDir, int screenWidth, int screenHeight);

  // "Input Data", "Manage Jobs" or "Analyse".
  void OnCommand1(int index);
  // The pointer over the frame brings the start message back.
  void OnMouseMove();
  // Applies the size limits and lays out the logo, Label2, Pub and the open tool.
  // Frame and client sizes are in pixels; the corrected frame size is stored
  // as the bounds of "MDIForm1".
  void OnResize(int frameWidth, int frameHeight, int clientWidth, int clientHeight);
  // Unload or termination of the frame.
  void Unload();

 private:
  bool ConfirmDiscardDataInput();
  void UnloadTools();
  void OpenAnalyse();

  AppState& s_;
  UiPort& ui_;
};

}  // namespace tessiva

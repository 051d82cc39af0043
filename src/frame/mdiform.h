// The frame window's logic (MDIForm1): start-up from correl.ini, the three
// commands that each open one tool, the resize rules and exit. The tool windows
// are entries of the frame's control registry, shown or unloaded by name.
#pragma once

#include <string>

#include "state/appstate.h"
#include "state/settings.h"
#include "ui/uiport.h"

namespace tessiva {

inline constexpr const char* kStartMessage =
    "Input data : generates data files,  Manage jobs : generates batch files,  Analyse : examines results";

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

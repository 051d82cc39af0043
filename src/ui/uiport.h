// What the window logic needs from the platform: the frame's status texts,
// message and input boxes, file dialogs, the clipboard, processes, the busy
// pointer and a turn for pending events.
#pragma once

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "state/numtext.h"
#include "ui/controls.h"

namespace tessiva {

enum class MsgButtons { Ok, OkCancel, YesNo, YesNoCancel };
enum class MsgIcon { None, Critical, Question, Exclamation, Information };
enum class MsgAnswer { Ok, Cancel, Yes, No };

struct FileDialogRequest {
  std::string initialDir;
  std::string defaultExt;
  std::string filter;  // "Data|*.res|Sequence|*.seq"
  std::string title;
  bool multiSelect = false;
  int filterIndex = 1;
  // The name the dialog offers, empty for none.
  std::string fileName;
};

// A cancelled dialog gives an empty FileName. A multiple selection gives an
// empty FileTitle and the directory and the names separated by NUL characters.
struct FileDialogResult {
  std::string FileName;
  std::string FileTitle;
};

// The directory of a file chosen in a dialog: its FileName less its FileTitle
// and the separator before it.
inline std::string ChosenDirectory(const FileDialogResult& chosen) {
  const size_t cut = std::min(chosen.FileName.size(), chosen.FileTitle.size() + 1);
  return chosen.FileName.substr(0, chosen.FileName.size() - cut);
}

// The answer of a dialog where several names were chosen (FileTitle empty):
// the directory, then the names, as FileName holds them NUL-separated.
inline std::vector<std::string> ChosenNames(const FileDialogResult& chosen) {
  return SplitText(chosen.FileName, std::string_view("\0", 1));
}

// A picture for the clipboard, 0xRRGGBB per pixel, row by row from the top.
struct RgbImage {
  int width = 0;
  int height = 0;
  std::vector<uint32_t> pixels;
};

class UiPort {
 public:
  explicit UiPort(ControlRegistry& frameControls) : frame_(frameControls) {}
  virtual ~UiPort() = default;
  UiPort(const UiPort&) = delete;
  UiPort& operator=(const UiPort&) = delete;

  // The frame's controls: the status texts, the three commands, the tool windows.
  ControlRegistry& Frame() { return frame_; }

  // The status text Label1 and the pointer text Label2, each shown after one blank.
  void StatusLine(std::string_view text) { frame_.SetText("Label1", " " + std::string(text)); }
  void StatusPos(std::string_view text) { frame_.SetText("Label2", " " + std::string(text)); }

  virtual MsgAnswer MessageBox(const std::string& text, const std::string& title, MsgButtons buttons,
                               MsgIcon icon) = 0;
  // The typed text, or nothing when the box was cancelled.
  virtual std::optional<std::string> InputBox(const std::string& prompt, const std::string& title,
                                              const std::string& defaultText) = 0;
  virtual FileDialogResult OpenFileDialog(const FileDialogRequest& request) = 0;
  virtual FileDialogResult SaveFileDialog(const FileDialogRequest& request) = 0;
  virtual void SetClipboardText(const std::string& text) = 0;
  virtual void SetClipboardPicture(const RgbImage& picture) = 0;
  // The system's alert sound, when a long transfer is done.
  virtual void Beep() {}
  // Starts a program without waiting for it; false when it could not be started.
  virtual bool StartProcess(const std::string& program, const std::vector<std::string>& arguments) = 0;
  // Starts the correlation solver without waiting for it, its output going
  // to `outputFile`, where a desktop port follows it: the status line shows
  // its progress and a message its end. Here it is only started.
  virtual bool StartSolver(const std::string& program, const std::vector<std::string>& arguments,
                           const std::string& /*outputFile*/) {
    return StartProcess(program, arguments);
  }
  virtual void SetBusy(bool busy) = 0;
  // Lets pending window events run (the marked places of long work).
  virtual void DoEvents() = 0;
  // Ends the program with the given status once the current event is handled.
  virtual void EndProgram(int status) = 0;

 private:
  ControlRegistry& frame_;
};

// Shows the busy pointer for the lifetime of the guard.
class BusyPointer {
 public:
  explicit BusyPointer(UiPort& ui) : ui_(ui) { ui_.SetBusy(true); }
  ~BusyPointer() { ui_.SetBusy(false); }
  BusyPointer(const BusyPointer&) = delete;
  BusyPointer& operator=(const BusyPointer&) = delete;

 private:
  UiPort& ui_;
};

}  // namespace tessiva

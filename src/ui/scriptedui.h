// The headless UiPort: answers come from a script given beforehand, and
// everything shown is logged. Used by the tests and by the command-line tool.
#pragma once

#include <deque>
#include <string>
#include <vector>

#include "ui/uiport.h"

namespace tessiva {

class ScriptedUi : public UiPort {
 public:
  struct Shown {
    std::string kind;  // "message", "input", "open", "save", "clipboard", "process", "beep"
    std::string text;
    std::string title;
  };

  explicit ScriptedUi(ControlRegistry& frameControls) : UiPort(frameControls) {}

  // Answers given in order; once a queue is empty, a message box gets its
  // cancel-like answer (No, Cancel or Ok), an input box and a dialog are cancelled.
  std::deque<MsgAnswer> messageAnswers;
  std::deque<std::optional<std::string>> inputAnswers;
  std::deque<FileDialogResult> dialogAnswers;

  std::vector<Shown> log;
  std::vector<FileDialogRequest> dialogRequests;
  std::string clipboardText;
  RgbImage clipboardPicture;
  int busyDepth = 0;
  int endStatus = -1;  // -1 while the program hasn't been ended

  // The texts of every message box shown, in order.
  std::vector<std::string> Messages() const;

  MsgAnswer MessageBox(const std::string& text, const std::string& title, MsgButtons buttons,
                       MsgIcon icon) override;
  std::optional<std::string> InputBox(const std::string& prompt, const std::string& title,
                                      const std::string& defaultText) override;
  FileDialogResult OpenFileDialog(const FileDialogRequest& request) override;
  FileDialogResult SaveFileDialog(const FileDialogRequest& request) override;
  void SetClipboardText(const std::string& text) override;
  void SetClipboardPicture(const RgbImage& picture) override;
  void Beep() override { log.push_back({"beep", {}, {}}); }
  bool StartProcess(const std::string& program, const std::vector<std::string>& arguments) override;
  void SetBusy(bool busy) override { busyDepth += busy ? 1 : -1; }
  void DoEvents() override {}
  void EndProgram(int status) override { endStatus = status; }
};

}  // namespace tessiva

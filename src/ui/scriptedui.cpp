#include "ui/scriptedui.h"

namespace tessiva {

std::vector<std::string> ScriptedUi::Messages() const {
  std::vector<std::string> texts;
  for (const Shown& s : log)
    if (s.kind == "message") texts.push_back(s.text);
  return texts;
}

MsgAnswer ScriptedUi::MessageBox(const std::string& text, const std::string& title, MsgButtons buttons, MsgIcon) {
  log.push_back({"message", text, title});
  if (!messageAnswers.empty()) {
    const MsgAnswer answer = messageAnswers.front();
    messageAnswers.pop_front();
    return answer;
  }
  switch (buttons) {
    case MsgButtons::YesNo: return MsgAnswer::No;
    case MsgButtons::Ok: return MsgAnswer::Ok;
    default: return MsgAnswer::Cancel;
  }
}

std::optional<std::string> ScriptedUi::InputBox(const std::string& prompt, const std::string& title,
                                                const std::string&) {
  log.push_back({"input", prompt, title});
  if (inputAnswers.empty()) return std::nullopt;
  auto answer = inputAnswers.front();
  inputAnswers.pop_front();
  return answer;
}

FileDialogResult ScriptedUi::OpenFileDialog(const FileDialogRequest& request) {
  log.push_back({"open", request.filter, request.title});
  dialogRequests.push_back(request);
  if (dialogAnswers.empty()) return {};
  FileDialogResult answer = dialogAnswers.front();
  dialogAnswers.pop_front();
  return answer;
}

FileDialogResult ScriptedUi::SaveFileDialog(const FileDialogRequest& request) {
  log.push_back({"save", request.filter, request.title});
  dialogRequests.push_back(request);
  if (dialogAnswers.empty()) return {};
  FileDialogResult answer = dialogAnswers.front();
  dialogAnswers.pop_front();
  return answer;
}

void ScriptedUi::SetClipboardText(const std::string& text) {
  log.push_back({"clipboard", text, {}});
  clipboardText = text;
}

void ScriptedUi::SetClipboardPicture(const RgbImage& picture) {
  log.push_back({"clipboard", "picture", {}});
  clipboardPicture = picture;
}

bool ScriptedUi::StartProcess(const std::string& program, const std::vector<std::string>& arguments) {
  std::string line = program;
  for (const std::string& a : arguments) line += " " + a;
  log.push_back({"process", line, {}});
  return true;
}

}  // namespace tessiva

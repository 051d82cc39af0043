#include "headlessanalysis.h"

#include <filesystem>

#include "analysis/analysisfiles.h"
#include "state/files.h"
#include "state/numtext.h"

namespace tessiva::cli {

bool HeadlessAnalysis::Open(const std::string& input, const std::string& iniPath, std::ostream& err) {
  if (scratch_.Path().empty()) {
    err << "tessiva-cli: no temporary directory could be made\n";
    return false;
  }
  std::error_code ignored;
  s.StartDir = scratch_.Path();
  s.IniPath = iniPath.empty() ? JoinPath(scratch_.Path(), "correl.ini") : iniPath;
  s.LastDir = std::filesystem::absolute(input, ignored).parent_path().string();
  s.FileName = input;
  s.FileTitle = FileNameOf(input);
  window.Load();
  if (s.NbSeq >= 1) return true;
  err << "The sequence " << input << (FileExists(input) ? " names no result file" : " can't be read") << '\n';
  return false;
}

bool HeadlessAnalysis::ReadMember(int32_t i, std::ostream& err) {
  shown_ = ui.Messages().size();
  window.CurFile = i;
  if (LecRes(window, i, i > 1)) return true;
  ReportMessages(err);
  return false;
}

bool HeadlessAnalysis::ChooseField(int32_t field, std::ostream& err) {
  window.OnCombo2Click(field);
  // The field list refuses an entry the result has no data for, with a message.
  if (window.Controls().Get("Combo2").listIndex == field) return true;
  ReportMessages(err);
  return false;
}

void HeadlessAnalysis::ReportMessages(std::ostream& err) const {
  const std::vector<std::string> messages = ui.Messages();
  for (size_t m = shown_; m < messages.size(); ++m) err << messages[m] << '\n';
  if (messages.size() == shown_) err << Trim(frame.Text("Label1")) << '\n';
}

}  // namespace tessiva::cli

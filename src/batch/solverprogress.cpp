#include "batch/solverprogress.h"

#include <charconv>
#include <cmath>

#include "state/numtext.h"

namespace tessiva {
namespace {

bool Starts(std::string_view line, std::string_view head) { return line.substr(0, head.size()) == head; }

// The whole number at the start of `text`, if any.
std::optional<long long> LeadingNumber(std::string_view text) {
  long long value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end == text.data()) return std::nullopt;
  return value;
}

}  // namespace

void SolverProgress::Feed(std::string_view line) {
  if (const std::string_view head = "file "; Starts(line, head)) {
    file_ = std::string(line.substr(head.size()));
  } else if (const std::string_view solved = "  patterns solved "; Starts(line, solved)) {
    patterns_ += LeadingNumber(line.substr(solved.size())).value_or(0);
  } else if (const std::string_view skipped = "  skipped: "; Starts(line, skipped)) {
    const size_t name = file_.find(": ");
    skipped_.push_back((name == std::string::npos ? file_ : file_.substr(name + 2)) + ": " +
                       std::string(line.substr(skipped.size())));
  } else if (Starts(line, "done: ")) {
    summary_ = std::string(line);
  } else if (const std::string_view status = "exit status "; Starts(line, status)) {
    exitStatus_ = static_cast<int>(LeadingNumber(line.substr(status.size())).value_or(-1));
  } else if (!Trim(line).empty()) {
    faults_.push_back(std::string(line));
  }
}

std::string SolverProgress::StatusText(double elapsed) const {
  const std::string time = std::to_string(static_cast<long long>(std::floor(elapsed))) + " s";
  if (file_.empty()) return "Solver started, " + time;
  return "Solver: file " + file_ + ", " + std::to_string(patterns_) + " patterns solved, " + time;
}

std::optional<std::string> SolverProgress::EndMessage() const {
  if (!exitStatus_) return std::nullopt;
  std::string text = "The solver ended with exit status " + std::to_string(*exitStatus_);
  text += summary_.empty() ? "." : ": " + summary_.substr(6) + ".";
  if (!skipped_.empty()) text += "\nSkipped:";
  for (const std::string& job : skipped_) text += "\n" + job;
  for (const std::string& fault : faults_) text += "\n" + fault;
  return text;
}

}  // namespace tessiva

// The commands of tessiva-cli and its usage text.
#pragma once

#include <cstdint>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

namespace tessiva::cli {

// Exit statuses: done, the work failed (the message is on standard error),
// the command line is wrong (the usage follows the complaint).
inline constexpr int kDone = 0;
inline constexpr int kFailed = 1;
inline constexpr int kUsageError = 2;

// A whole number of the command line, or nothing when the text isn't one.
std::optional<int32_t> WholeNumber(const std::string& text);

// Runs a command line, the program's name left out.
int RunCli(const std::vector<std::string>& args, std::ostream& out, std::ostream& err);

}  // namespace tessiva::cli

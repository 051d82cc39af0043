// tessiva-cli: one command line parser (CLI11) with a command for each of
// the program's jobs; each command declares its options beside its work.
#pragma once

#include <ostream>
#include <string>
#include <vector>

namespace tessiva::cli {

// Exit statuses: done, the work failed (the message is on standard error),
// the command line was refused before anything was done (the complaint names
// what is wrong and where the command's help is).
inline constexpr int kDone = 0;
inline constexpr int kFailed = 1;
inline constexpr int kUsageError = 2;

// Runs a command line, the program's name left out.
int RunCli(const std::vector<std::string>& args, std::ostream& out, std::ostream& err);

}  // namespace tessiva::cli

// Runs tessiva-cli's commands in the test process and keeps what they print.
#pragma once

#include <sstream>
#include <string>
#include <vector>

#include "commands.h"

namespace tessiva::cli {

struct Outcome {
  int status;
  std::string out, err;
};

inline Outcome RunCommand(const std::vector<std::string>& args) {
  std::ostringstream out, err;
  const int status = RunCli(args, out, err);
  return {status, out.str(), err.str()};
}

}  // namespace tessiva::cli

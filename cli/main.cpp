// tessiva-cli: the analysis of result files without a window.
#include <iostream>
#include <string>
#include <vector>

#include "commands.h"
#include "synth.h"

int main(int argc, char** argv) {
  const std::vector<std::string> args(argv + 1, argv + argc);
  if (!args.empty() && args[0] == "synth") return tessiva::cli::RunSynth(args, std::cout, std::cerr);
  return tessiva::cli::RunCli(args, std::cout, std::cerr);
}

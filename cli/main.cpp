// tessiva-cli: synthetic pictures, data files and result exports without a window.
#include <iostream>
#include <string>
#include <vector>

#include "commands.h"

int main(int argc, char** argv) {
  return tessiva::cli::RunCli(std::vector<std::string>(argv + 1, argv + argc), std::cout, std::cerr);
}

// tessiva-cli: synthetic pictures, data files and result exports without a window.
#include <iostream>
#include <new>
#include <string>
#include <vector>

#include "commands.h"

int main(int argc, char** argv) {
  // The commands report their own failures; a fault that still escapes them
  // is told in plain words, since the library's own texts mean nothing to users.
  try {
    return tessiva::cli::RunCli(std::vector<std::string>(argv + 1, argv + argc), std::cout, std::cerr);
  } catch (const std::bad_alloc&) {
    std::cerr << "tessiva-cli: out of memory; the command was stopped" << std::endl;
  } catch (...) {
    std::cerr << "tessiva-cli: the command stopped on an unexpected fault" << std::endl;
  }
  return tessiva::cli::kFailed;
}

// tessiva-solver <data directory> <program directory>: solves the jobs that
// entre.dat in the data directory lists, on every core.
#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <memory_resource>
#include <new>
#include <string>
#include <thread>

#include "largearray.h"
#include "runner.h"

namespace {

// TESSIVA_SOLVER_THREADS overrides the core count, for measurements.
int32_t ThreadCount() {
  if (const char* text = std::getenv("TESSIVA_SOLVER_THREADS")) {
    const int value = std::atoi(text);
    if (value > 0) return value;
  }
  return static_cast<int32_t>(std::max(1u, std::thread::hardware_concurrency()));
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 3) {
    std::cerr << "usage: tessiva-solver <data directory> <program directory>" << std::endl;
    return 2;
  }
  std::pmr::set_default_resource(tessiva::solver::LargeMemory());
  // Every job catches its own faults; what is left is a fault of the batch
  // itself, told in plain words: the library's own texts mean nothing to users.
  try {
    return tessiva::solver::RunJobs(argv[1], {ThreadCount()}, std::cout);
  } catch (const std::bad_alloc&) {
    std::cerr << "tessiva-solver: out of memory while running the jobs of " << argv[1] << std::endl;
  } catch (...) {
    std::cerr << "tessiva-solver: the jobs of " << argv[1] << " stopped on an unexpected fault" << std::endl;
  }
  return 1;
}

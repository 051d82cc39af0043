// The worker pool runs every item of every loop once, on a worker of its
// own, and hands a body's exception back to the caller from any thread.
#include "workerpool.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace tessiva::solver {
namespace {

// Runs one loop of `count` items and checks each ran exactly once on a
// worker in range.
void ExpectEachItemOnce(WorkerPool& pool, int32_t count) {
  const auto runs = std::make_unique<std::atomic<int32_t>[]>(static_cast<size_t>(count) + 1);
  std::atomic<bool> workerOutOfRange{false};
  pool.ForEach(count, [&](int32_t item, int32_t worker) {
    if (worker < 0 || worker >= pool.Workers()) workerOutOfRange = true;
    ++runs[item];
  });
  EXPECT_FALSE(workerOutOfRange);
  for (int32_t i = 0; i < count; ++i) ASSERT_EQ(runs[i].load(), 1) << "item " << i << " of " << count;
}

TEST(WorkerPool, RunsEveryItemOnceInEveryLoop) {
  for (int32_t workers : {0, 1, 2, 3}) {
    WorkerPool pool(workers);
    EXPECT_EQ(pool.Workers(), std::max(workers, 1));
    // Waves of the propagation: many short loops back to back, of any size.
    for (int32_t loop = 0; loop < 25; ++loop)
      for (int32_t count : {0, 1, 2, 3, 17, 500}) {
        SCOPED_TRACE(std::to_string(workers) + " workers, loop " + std::to_string(loop));
        ExpectEachItemOnce(pool, count);
      }
  }
}

// Blocks until `flag` is set; the tests below use it to be sure which thread
// takes an item, however the threads are scheduled.
void WaitFor(const std::atomic<bool>& flag) {
  while (!flag.load()) std::this_thread::yield();
}

TEST(WorkerPool, RethrowsABodysExceptionOnTheCallerOnceAllWorkersAreIdle) {
  struct Case {
    const char* name;
    int32_t workers;
    bool callerThrows;  // else a helper thread throws
  };
  const Case cases[] = {
      {"caller alone", 1, true},
      {"caller beside helpers", 3, true},
      {"helper", 2, false},
      {"helper among several", 4, false},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    WorkerPool pool(c.workers);
    std::atomic<bool> thrown{false};
    std::atomic<int32_t> started{0}, finished{0};
    try {
      pool.ForEach(200, [&](int32_t item, int32_t worker) {
        ++started;
        const bool thrower = c.callerThrows == (worker == 0);
        if (thrower) {
          thrown = true;
          ++finished;
          throw std::runtime_error("item " + std::to_string(item));
        }
        // The others wait until the throw, then take a while: ForEach must
        // not hand the exception on while they still run.
        WaitFor(thrown);
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
        ++finished;
      });
      ADD_FAILURE() << "ForEach returned normally";
    } catch (const std::runtime_error& e) {
      EXPECT_EQ(std::string(e.what()).rfind("item ", 0), 0u) << e.what();
      EXPECT_EQ(started.load(), finished.load()) << "a body still ran when ForEach threw";
    }
    // The pool serves the next loop in full, and a loop after that.
    ExpectEachItemOnce(pool, 300);
    ExpectEachItemOnce(pool, 300);
  }
}

}  // namespace
}  // namespace tessiva::solver

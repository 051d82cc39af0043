// A fixed set of worker threads that runs one parallel loop after another.
// The propagation calls a short loop per wave, a hundred or more per field;
// keeping the threads alive between loops, and letting them spin briefly
// before they sleep, saves a thread start and a wake-up on every wave.
#pragma once

#include <atomic>
#include <cstdint>
#include <exception>
#include <functional>
#include <thread>
#include <vector>

namespace tessiva::solver {

class WorkerPool {
 public:
  // `workers` threads take part, the caller's own included.
  explicit WorkerPool(int32_t workers);
  ~WorkerPool();
  WorkerPool(const WorkerPool&) = delete;
  WorkerPool& operator=(const WorkerPool&) = delete;

  int32_t Workers() const { return static_cast<int32_t>(threads_.size()) + 1; }

  // Runs body(item, worker) for items 0..count-1, handed out in runs of
  // consecutive items, each a share of what is left and single items near the
  // end, and returns when all are done. `worker` is 0..Workers()-1, so a body can
  // keep per-worker scratch. When a body throws, on any thread, no further
  // item is handed out, and once every worker is idle the first exception
  // thrown is rethrown here; the pool stays ready for the next loop.
  void ForEach(int32_t count, const std::function<void(int32_t, int32_t)>& body);

 private:
  void Serve(int32_t worker);
  void TakeItems(int32_t worker);

  std::vector<std::thread> threads_;
  const std::function<void(int32_t, int32_t)>* body_ = nullptr;
  int32_t count_ = 0;
  // The next item to hand out, on a cache line of its own, so that claiming
  // items doesn't take from the others the line they read on every item.
  alignas(64) std::atomic<int32_t> next_{0};
  alignas(64) std::atomic<bool> open_{false};  // the current loop still takes helpers
  std::atomic<int32_t> inside_{0};        // helpers in a loop
  std::atomic<uint32_t> generation_{0};   // raised for every loop, and to stop
  std::atomic<bool> stopping_{false};
  std::atomic<int32_t> moved_{0};  // helpers moved off the creator's processor
  std::atomic<bool> failed_{false};  // a body of the current loop has thrown
  std::exception_ptr error_;         // the first one's exception
};

}  // namespace tessiva::solver

#include "workerpool.h"

#include <algorithm>
#include <utility>

namespace tessiva::solver {
namespace {

// About a few tens of microseconds of polling: longer than the gap between
// two waves, far shorter than a pattern loop is worth sleeping through.
constexpr int32_t kSpinRounds = 4000;

void Pause() {
#if defined(__x86_64__) || defined(__i386__)
  __builtin_ia32_pause();
#else
  std::this_thread::yield();
#endif
}

}  // namespace

WorkerPool::WorkerPool(int32_t workers) {
  for (int32_t w = 1; w < std::max(workers, 1); ++w) threads_.emplace_back([this, w] { Serve(w); });
}

WorkerPool::~WorkerPool() {
  stopping_ = true;
  generation_.fetch_add(1);
  generation_.notify_all();
  for (std::thread& t : threads_) t.join();
}

void WorkerPool::ForEach(int32_t count, const std::function<void(int32_t, int32_t)>& body) {
  if (threads_.empty() || count <= 1) {
    for (int32_t i = 0; i < count; ++i) body(i, 0);
    return;
  }
  body_ = &body;
  count_ = count;
  next_ = 0;
  open_ = true;
  generation_.fetch_add(1);
  generation_.notify_all();
  TakeItems(0);
  // Every item is handed out. A helper still asleep, or only now waking, has
  // nothing left to take: the loop is closed to it rather than waited for,
  // and only the helpers inside are waited for, to finish their items.
  open_ = false;
  while (inside_.load() > 0) Pause();
  // Every helper has left the loop, so the exception is ours alone to hand on.
  if (failed_.load()) {
    failed_ = false;
    std::rethrow_exception(std::exchange(error_, nullptr));
  }
}

void WorkerPool::TakeItems(int32_t worker) {
  // The try block costs nothing until a body throws. An exception would end
  // the program if it left a helper's thread; it is kept for ForEach to
  // rethrow instead.
  try {
    const int32_t shares = 2 * Workers();
    int32_t first = next_.load();
    for (;;) {
      // A share of what is left, down to single items near the end, so that
      // the workers seldom meet on the counter and still finish together.
      int32_t take = 0;
      do {
        if (first >= count_) return;
        take = std::max(1, (count_ - first) / shares);
      } while (!next_.compare_exchange_weak(first, first + take));
      for (int32_t i = first; i < first + take && !failed_.load(std::memory_order_relaxed); ++i) (*body_)(i, worker);
      first = next_.load();
    }
  } catch (...) {
    if (!failed_.exchange(true)) error_ = std::current_exception();
    next_ = count_;  // hand out no further item
  }
}

void WorkerPool::Serve(int32_t worker) {
  uint32_t seen = 0;
  for (;;) {
    for (int32_t spin = 0; spin < kSpinRounds && generation_.load() == seen; ++spin) Pause();
    generation_.wait(seen);
    seen = generation_.load();
    if (stopping_) return;
    // Inside first, then the look at the loop: a caller that closes the
    // loop after this helper came in waits for it, and one that closed it
    // before is seen to have. A loop opened since is joined all the same.
    inside_.fetch_add(1);
    if (open_.load()) TakeItems(worker);
    inside_.fetch_sub(1);
  }
}

}  // namespace tessiva::solver

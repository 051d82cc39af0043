#include "workerpool.h"

#include <algorithm>
#include <utility>

#ifdef __linux__
#include <pthread.h>
#include <sched.h>
#endif

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

// Linux queues a new thread on its creator's processor, where it waits,
// while another processor idles, until the scheduler next balances the load:
// about 2 ms on a two-core machine, longer than reading a job's pictures
// takes. So each helper is moved to another processor as it is made, and
// lets itself run anywhere again once it runs.
class Placement {
 public:
#ifdef __linux__
  Placement() { usable_ = sched_getaffinity(0, sizeof allowed_, &allowed_) == 0; }

  void MoveOffThisProcessor(std::thread& t) const {
    const int here = sched_getcpu();
    if (!usable_ || here < 0) return;
    cpu_set_t others = allowed_;
    CPU_CLR(here, &others);
    if (CPU_COUNT(&others) > 0) pthread_setaffinity_np(t.native_handle(), sizeof others, &others);
  }
  void RunAnywhere() const {
    if (usable_) pthread_setaffinity_np(pthread_self(), sizeof allowed_, &allowed_);
  }

 private:
  cpu_set_t allowed_{};  // the processors the process may use
  bool usable_ = false;
#else
  void MoveOffThisProcessor(std::thread&) const {}
  void RunAnywhere() const {}
#endif
};

}  // namespace

WorkerPool::WorkerPool(int32_t workers) {
  const Placement placement;
  for (int32_t w = 1; w < std::max(workers, 1); ++w) {
    // The helper waits to be moved before it frees itself, or the move
    // could come after and tie it to the other processors for good.
    threads_.emplace_back([this, w, placement] {
      for (int32_t moved = moved_.load(); moved < w; moved = moved_.load()) moved_.wait(moved);
      placement.RunAnywhere();
      Serve(w);
    });
    placement.MoveOffThisProcessor(threads_.back());
    moved_.store(w);
    moved_.notify_all();
  }
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

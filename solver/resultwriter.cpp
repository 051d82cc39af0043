#include "resultwriter.h"

#include <algorithm>
#include <charconv>
#include <initializer_list>
#include <mutex>
#include <ostream>

#include "state/files.h"
#include "state/numtext.h"
#include "workerpool.h"

namespace tessiva::solver {
namespace {

// Patterns formatted together: about 80 kB of text, enough to keep a worker
// busy well beyond the cost of handing the block out and writing it, small
// enough that the writing keeps pace with the formatting.
constexpr size_t kPatternsPerBlock = 512;

// Blocks formatted on several threads go out in their order, each as soon as
// those before it have: whichever thread finds the next block ready writes
// it, and the others go on formatting meanwhile.
class InOrderOutput {
 public:
  InOrderOutput(std::ostream& out, size_t blocks) : out_(out), texts_(blocks), ready_(blocks, false) {}

  void Done(size_t block, std::string text) {
    std::unique_lock lock(mutex_);
    texts_[block] = std::move(text);
    ready_[block] = true;
    if (writing_) return;  // the thread writing sees it before it stops
    writing_ = true;
    while (next_ < texts_.size() && ready_[next_]) {
      const std::string ready = std::move(texts_[next_++]);
      lock.unlock();
      out_.write(ready.data(), static_cast<std::streamsize>(ready.size()));
      lock.lock();
    }
    writing_ = false;
  }

 private:
  std::ostream& out_;
  std::mutex mutex_;
  std::vector<std::string> texts_;
  std::vector<bool> ready_;
  size_t next_ = 0;
  bool writing_ = false;
};

void AppendInt(std::string& out, int32_t v) {
  char text[12];
  out.append(text, std::to_chars(text, text + sizeof text, v).ptr);
}

// Each number after a blank, with six decimals, then the line end.
void AppendFixedLine(std::string& out, std::initializer_list<double> values) {
  for (double v : values) {
    out += ' ';
    AppendFixed(out, v, 6);
  }
  out += '\n';
}

void AppendPattern(std::string& out, const PatternRecord& p, int32_t lpatEven, int32_t lpas) {
  const Bilinear b = BilinearOf(p.warp, lpatEven, lpas);
  // The first line is cut at single blanks: every field is one token.
  out += p.good ? "-1 " : "0 ";
  AppendInt(out, p.x);
  out += ' ';
  AppendInt(out, p.y);
  AppendFixedLine(out, {p.warp.u, p.warp.v});
  AppendFixedLine(out, {b.u[0], b.u[1], b.u[2], b.u[3]});
  AppendFixedLine(out, {b.v[0], b.v[1], b.v[2], b.v[3]});
  out += ' ';
  AppendInt(out, p.iterations);
  out += ' ';
  AppendInt(out, p.side);
  AppendFixedLine(out, {p.quality});
}

// The data file's text with the PicAna key as the first key of [PICTURES].
std::string WithPicAna(const std::string& dataText, const std::string& picAna) {
  std::string out;
  size_t pos = 0;
  bool added = false;
  while (pos < dataText.size()) {
    size_t end = dataText.find('\n', pos);
    end = end == std::string::npos ? dataText.size() : end + 1;
    const std::string line = dataText.substr(pos, end - pos);
    out += line;
    if (!added && ToLower(Trim(line)).starts_with("[pictures]")) {
      if (out.back() != '\n') out += '\n';
      out += "  PicAna=" + picAna + "\n";
      added = true;
    }
    pos = end;
  }
  if (!out.empty() && out.back() != '\n') out += '\n';
  return out;
}

}  // namespace

Bilinear BilinearOf(const Warp& w, int32_t lpatEven, int32_t lpas) {
  const double l = lpatEven, h = lpas / 2.0;
  return {{w.ux * l, w.uy * l, 0.0, w.u - w.ux * h - w.uy * h}, {w.vx * l, w.vy * l, 0.0, w.v - w.vx * h - w.vy * h}};
}

double QualityOf(int32_t correlationSwitch, double zncc) {
  return correlationSwitch == 0 ? 2.0 * (1.0 - zncc) : zncc;
}

void WriteResult(std::ostream& out, const std::string& dataText, const std::string& picAna, int32_t patterns,
                 const RecordOf& record, int32_t lpatEven, int32_t lpas, WorkerPool* pool) {
  out << WithPicAna(dataText, picAna) << "[RESULTS]\n";
  const auto count = static_cast<size_t>(std::max(patterns, 0));
  const size_t blocks = (count + kPatternsPerBlock - 1) / kPatternsPerBlock;
  InOrderOutput output(out, blocks);
  const auto formatBlock = [&](int32_t b, int32_t) {
    const size_t first = static_cast<size_t>(b) * kPatternsPerBlock;
    const size_t end = std::min(count, first + kPatternsPerBlock);
    std::string text;
    text.reserve((end - first) * 160);  // four lines of about 40 characters
    for (size_t i = first; i < end; ++i) AppendPattern(text, record(static_cast<int32_t>(i + 1)), lpatEven, lpas);
    output.Done(static_cast<size_t>(b), std::move(text));
  };
  if (pool) {
    pool->ForEach(static_cast<int32_t>(blocks), formatBlock);
  } else {
    for (size_t b = 0; b < blocks; ++b) formatBlock(static_cast<int32_t>(b), 0);
  }
}

bool WriteResultFile(const std::string& path, const std::string& dataText, const std::string& picAna, int32_t patterns,
                     const RecordOf& record, int32_t lpatEven, int32_t lpas, WorkerPool& pool) {
  return WriteFileAtomically(path, [&](std::ostream& out) {
    WriteResult(out, dataText, picAna, patterns, record, lpatEven, lpas, &pool);
  });
}

}  // namespace tessiva::solver

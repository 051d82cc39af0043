#include "resultwriter.h"

#include <algorithm>

#include "state/numtext.h"
#include "workerpool.h"

namespace tessiva::solver {
namespace {

// Patterns formatted together: about a third of a megabyte of text, enough
// to keep a worker busy well beyond the cost of handing the block out.
constexpr size_t kPatternsPerBlock = 2048;

std::string Fixed(double v) { return Format(v, "0.000000"); }

void AppendPattern(std::string& out, const PatternRecord& p, int32_t lpatEven, int32_t lpas) {
  const Bilinear b = BilinearOf(p.warp, lpatEven, lpas);
  // The first line is cut at single blanks: every field is one token.
  out += (p.good ? "-1 " : "0 ") + std::to_string(p.x) + " " + std::to_string(p.y) + " " + Fixed(p.warp.u) + " " +
         Fixed(p.warp.v) + "\n";
  out += " " + Fixed(b.u[0]) + " " + Fixed(b.u[1]) + " " + Fixed(b.u[2]) + " " + Fixed(b.u[3]) + "\n";
  out += " " + Fixed(b.v[0]) + " " + Fixed(b.v[1]) + " " + Fixed(b.v[2]) + " " + Fixed(b.v[3]) + "\n";
  out += " " + std::to_string(p.iterations) + " " + std::to_string(p.side) + " " + Fixed(p.quality) + "\n";
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

std::string ResultText(const std::string& dataText, const std::string& picAna, const std::vector<PatternRecord>& patterns,
                       int32_t lpatEven, int32_t lpas, WorkerPool* pool) {
  std::string out = WithPicAna(dataText, picAna);
  out += "[RESULTS]\n";
  const size_t blocks = (patterns.size() + kPatternsPerBlock - 1) / kPatternsPerBlock;
  std::vector<std::string> texts(blocks);
  const auto formatBlock = [&](int32_t b, int32_t) {
    const size_t first = static_cast<size_t>(b) * kPatternsPerBlock;
    const size_t end = std::min(patterns.size(), first + kPatternsPerBlock);
    texts[b].reserve((end - first) * 160);  // four lines of about 40 characters
    for (size_t i = first; i < end; ++i) AppendPattern(texts[b], patterns[i], lpatEven, lpas);
  };
  if (pool) {
    pool->ForEach(static_cast<int32_t>(blocks), formatBlock);
  } else {
    for (size_t b = 0; b < blocks; ++b) formatBlock(static_cast<int32_t>(b), 0);
  }
  size_t size = out.size();
  for (const std::string& text : texts) size += text.size();
  out.reserve(size);
  for (const std::string& text : texts) out += text;
  return out;
}

}  // namespace tessiva::solver

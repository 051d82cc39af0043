#include "resultwriter.h"

#include "state/numtext.h"

namespace tessiva::solver {
namespace {

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
                       int32_t lpatEven, int32_t lpas) {
  std::string out = WithPicAna(dataText, picAna);
  out += "[RESULTS]\n";
  for (const PatternRecord& p : patterns) AppendPattern(out, p, lpatEven, lpas);
  return out;
}

}  // namespace tessiva::solver

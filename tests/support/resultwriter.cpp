#include "support/resultwriter.h"

#include <charconv>
#include <fstream>

namespace tessiva::testing {
namespace {

std::string Number(double value, std::chars_format format) {
  char buffer[512];
  const auto result = std::to_chars(buffer, buffer + sizeof buffer, value, format);
  return std::string(buffer, result.ptr);
}

std::string Fixed(double value) { return Number(value, std::chars_format::fixed); }
std::string Shortest(double value) { return Number(value, std::chars_format::general); }

std::string Line(std::initializer_list<std::string> fields) {
  std::string line;
  for (const std::string& f : fields) line += (line.empty() ? "" : " ") + f;
  return line + "\n";
}

}  // namespace

ResultPattern PatternOf(const DisplacementField& field, int32_t x, int32_t y, int32_t lpatEven) {
  const double l = lpatEven;
  const double x0 = x - l / 2, y0 = y - l / 2;
  const Displacement d00 = field(x0, y0), d10 = field(x0 + l, y0), d01 = field(x0, y0 + l), d11 = field(x0 + l, y0 + l),
                     centre = field(x, y);
  ResultPattern p;
  p.x = x;
  p.y = y;
  p.d1 = centre.u;
  p.d2 = centre.v;
  p.u = {d10.u - d00.u, d01.u - d00.u, d11.u - d10.u - d01.u + d00.u, d00.u};
  p.v = {d10.v - d00.v, d01.v - d00.v, d11.v - d10.v - d01.v + d00.v, d00.v};
  return p;
}

std::vector<ResultPattern> GridPatterns(const DisplacementField& field, int32_t x0, int32_t y0, int32_t columns,
                                        int32_t rows, int32_t step, int32_t lpatEven) {
  std::vector<ResultPattern> patterns;
  for (int32_t c = 0; c < columns; ++c)
    for (int32_t r = 0; r < rows; ++r) patterns.push_back(PatternOf(field, x0 + c * step, y0 + r * step, lpatEven));
  return patterns;
}

std::string ResultFileText(const ResultHead& head, const std::vector<ResultPattern>& patterns) {
  std::string text = "; Tessiva RESULTS\n[RELEASE]\n  name=Tessiva\n  date=20240611\n";
  text += "[PICTURES]\n  PicRef=" + head.picRef + "\n  PicDef=" + head.picDef + "\n";
  text += "  Lima =" + std::to_string(head.lima) + "\n  Hima =" + std::to_string(head.hima) + "\n";
  text += "[PARAMETERS]\n  LpatMin=" + std::to_string(head.lpatMin) + "  \n  LpatMax=" + std::to_string(head.lpatMax) +
          "  \n  Lgrid=" + std::to_string(head.lgrid) + "  \n";
  text += "  Interpolation=01  \n  Correlation=01  \n  LargeStrain=00  \n  Precision=0100  \n";
  text += "[OUTLINES]\n  Number=00  \n" + head.moreSections;
  text += ";[RESULTS] This section gives the displacement field between PicRef and PicDef\n";
  text += ";the fourth line is reserved for Tessiva\n[RESULTS]\n";
  for (const ResultPattern& p : patterns) {
    text += Line({std::to_string(p.flag), std::to_string(p.x), std::to_string(p.y), Fixed(p.d1), Fixed(p.d2)});
    text += Line({Shortest(p.u[0]), Shortest(p.u[1]), Shortest(p.u[2]), Shortest(p.u[3])});
    text += Line({Shortest(p.v[0]), Shortest(p.v[1]), Shortest(p.v[2]), Shortest(p.v[3])});
    text += Line({Shortest(p.reserved[0]), Shortest(p.reserved[1]), Shortest(p.reserved[2])});
  }
  return text;
}

std::string WriteResultFile(const std::string& path, const ResultHead& head,
                            const std::vector<ResultPattern>& patterns) {
  std::ofstream out(path, std::ios::binary);
  const std::string text = ResultFileText(head, patterns);
  out.write(text.data(), static_cast<std::streamsize>(text.size()));
  return path;
}

}  // namespace tessiva::testing

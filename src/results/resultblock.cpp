#include "results/resultblock.h"

#include <charconv>
#include <cmath>

#include "state/numtext.h"

namespace tessiva {
namespace {

constexpr std::string_view kResultsLine = "[RESULTS]";

std::string_view WithoutLeadingBlanks(std::string_view line) {
  const std::size_t first = line.find_first_not_of(' ');
  return first == std::string_view::npos ? std::string_view() : line.substr(first);
}

bool IsSeparator(char c) { return c == ' ' || c == '\t' || c == ','; }

std::optional<double> StrictNumber(std::string_view field) {
  if (!field.empty() && field.front() == '+') field.remove_prefix(1);
  double value = 0.0;
  const auto [end, ec] = std::from_chars(field.data(), field.data() + field.size(), value);
  if (ec != std::errc() || end != field.data() + field.size() || !std::isfinite(value)) return std::nullopt;
  return value;
}

}  // namespace

bool SkipToResults(LineCursor& lines) {
  while (!lines.AtEnd()) {
    const std::string_view line = lines.Next();
    if (line.size() >= kResultsLine.size() && EqualsNoCase(line.substr(0, kResultsLine.size()), kResultsLine))
      return true;
  }
  return false;
}

PatternLines NextPatternLines(LineCursor& lines) {
  PatternLines block;
  block.first = WithoutLeadingBlanks(lines.Next());
  if (!block.first.empty() && block.first.front() == '[') {
    block.passedOver = true;
    return block;
  }
  block.second = lines.Next();
  block.third = lines.Next();
  block.fourth = lines.Next();
  return block;
}

int64_t CountPatternTurns(LineCursor lines) {
  int64_t turns = 0;
  do {
    ++turns;
    NextPatternLines(lines);
  } while (!lines.AtEnd());
  return turns;
}

FirstLineFields SplitFirstLine(std::string_view line) {
  // Positions of the first four blanks, npos when missing.
  std::array<std::size_t, 4> blank{};
  std::size_t from = 0;
  for (std::size_t& b : blank) {
    b = from == std::string_view::npos ? std::string_view::npos : line.find(' ', from);
    from = b == std::string_view::npos ? b : b + 1;
  }
  const auto between = [&](std::size_t first, std::size_t last) { return line.substr(first + 1, last - first - 1); };
  const auto found = [](std::size_t p) { return p != std::string_view::npos; };

  FirstLineFields f;
  // The flag is the text up to the first blank; without a blank that text is empty.
  f.flag = WholeNumber(ValNorm(found(blank[0]) ? line.substr(0, blank[0] + 1) : std::string_view()));
  if (found(blank[1])) f.x = WholeNumber(ValNorm(between(blank[0], blank[1])));
  if (found(blank[2])) f.y = WholeNumber(ValNorm(between(blank[1], blank[2])));
  if (found(blank[3])) {
    f.d1 = ValNorm(between(blank[2], blank[3]));
    f.d2 = ValNorm(line.substr(blank[3] + 1));
  }
  return f;
}

std::array<std::optional<double>, 4> FreeFormNumbers(std::string_view line) {
  std::array<std::optional<double>, 4> numbers;
  std::size_t i = 0;
  for (std::optional<double>& number : numbers) {
    while (i < line.size() && IsSeparator(line[i])) ++i;
    const std::size_t start = i;
    while (i < line.size() && !IsSeparator(line[i])) ++i;
    if (i == start) break;
    number = StrictNumber(line.substr(start, i - start));
  }
  return numbers;
}

std::optional<int32_t> WholeNumber(double value) {
  const double whole = Round(value);
  if (!(whole >= -2147483648.0 && whole <= 2147483647.0)) return std::nullopt;
  return static_cast<int32_t>(whole);
}

}  // namespace tessiva

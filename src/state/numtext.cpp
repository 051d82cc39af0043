#include "state/numtext.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <ctime>
#include <limits>

namespace tessiva {

int32_t ClampToInt32(double x) {
  if (std::isnan(x)) return 0;
  if (x >= 2147483647.0) return std::numeric_limits<int32_t>::max();
  if (x <= -2147483648.0) return std::numeric_limits<int32_t>::min();
  return static_cast<int32_t>(x);
}

int32_t RoundToInt32(double x) { return ClampToInt32(Round(x)); }

double ValNorm(std::string_view text) {
  std::string kept;
  for (size_t i = 0; i < text.size(); ++i) {
    const auto c = static_cast<unsigned char>(text[i]);
    if ((c >= '0' && c <= '9') || c == '-' || c == '+') {
      kept += static_cast<char>(c);
    } else if (c == ',' || c == '.') {
      kept += '.';
    } else if (c == ' ' || c == 0xA0) {
      continue;
    } else if (c == 0xC2 && i + 1 < text.size() &&
               static_cast<unsigned char>(text[i + 1]) == 0xA0) {
      ++i;  // a no-break space typed in UTF-8
    } else {
      break;
    }
  }
  // Read from the left: one optional sign, then digits with at most one point.
  bool negative = false;
  size_t start = 0;
  if (!kept.empty() && (kept[0] == '-' || kept[0] == '+')) {
    negative = kept[0] == '-';
    start = 1;
  }
  const char* first = kept.data() + start;
  const char* last = kept.data() + kept.size();
  if (first == last || *first == '-' || *first == '+') return 0.0;
  double value = 0.0;
  auto [ptr, ec] = std::from_chars(first, last, value, std::chars_format::fixed);
  if (ec == std::errc::result_out_of_range) {
    // Too many digits before any point overflows; after it, the value underflows.
    const bool overflow = std::find(first, ptr, '.') - first > 300;
    value = overflow ? std::numeric_limits<double>::max() : 0.0;
  } else if (ec != std::errc()) {
    value = 0.0;
  }
  return negative ? -value : value;
}

namespace {

// A non-negative number as significant digits: value = 0.digits x 10^point.
// Empty digits mean zero.
struct Decimal {
  std::string digits;
  int point = 0;
};

Decimal ToDecimal(double absValue) {
  Decimal d;
  if (!(absValue > 0.0) || !std::isfinite(absValue)) return d;
  char buf[64];
  auto res = std::to_chars(buf, buf + sizeof buf, absValue, std::chars_format::scientific, 14);
  std::string_view text(buf, static_cast<size_t>(res.ptr - buf));
  const size_t e = text.find('e');
  for (char c : text.substr(0, e))
    if (c != '.') d.digits += c;
  int exponent = 0;
  std::string_view expText = text.substr(e + 1);
  if (!expText.empty() && expText[0] == '+') expText.remove_prefix(1);
  std::from_chars(expText.data(), expText.data() + expText.size(), exponent);
  d.point = exponent + 1;
  while (!d.digits.empty() && d.digits.back() == '0') d.digits.pop_back();
  return d;
}

// Keeps the first `keep` significant digits, rounding half away from zero.
Decimal KeepDigits(Decimal d, int keep) {
  if (keep < 0 || d.digits.empty()) return Decimal{};
  if (static_cast<size_t>(keep) >= d.digits.size()) return d;
  const bool up = d.digits[static_cast<size_t>(keep)] >= '5';
  d.digits.resize(static_cast<size_t>(keep));
  if (up) {
    int i = keep - 1;
    while (i >= 0 && d.digits[static_cast<size_t>(i)] == '9') d.digits[static_cast<size_t>(i--)] = '0';
    if (i >= 0) {
      ++d.digits[static_cast<size_t>(i)];
    } else {
      d.digits.insert(d.digits.begin(), '1');
      ++d.point;
    }
  }
  while (!d.digits.empty() && d.digits.back() == '0') d.digits.pop_back();
  if (d.digits.empty()) d.point = 0;
  return d;
}

// Digits of the integer part (empty for zero) and `places` digits of the fraction.
std::string IntegerDigits(const Decimal& d) {
  if (d.point <= 0) return {};
  std::string s = d.digits.substr(0, static_cast<size_t>(d.point));
  s.resize(static_cast<size_t>(d.point), '0');
  return s;
}

std::string FractionDigits(const Decimal& d, int places) {
  std::string s;
  for (int i = 0; i < places; ++i) {
    const int index = d.point + i;
    s += (index >= 0 && static_cast<size_t>(index) < d.digits.size()) ? d.digits[static_cast<size_t>(index)] : '0';
  }
  return s;
}

bool IsPlace(char c) { return c == '0' || c == '#'; }

// One section of a pattern, split into its integer, fraction and exponent parts.
struct Section {
  std::string integer;   // pattern before the point (with literals)
  std::string fraction;  // pattern after the point, before any exponent
  bool hasPoint = false;
  bool hasExponent = false;
  char exponentLetter = 'E';
  bool exponentSignAlways = false;
  int exponentPlaces = 0;
  std::string suffix;    // literals after the exponent digits
};

Section ParseSection(std::string_view pattern) {
  Section s;
  size_t i = 0;
  for (; i < pattern.size() && pattern[i] != '.'; ++i) {
    const char c = pattern[i];
    if ((c == 'E' || c == 'e') && i + 1 < pattern.size() && (pattern[i + 1] == '+' || pattern[i + 1] == '-')) break;
    s.integer += c;
  }
  if (i < pattern.size() && pattern[i] == '.') {
    s.hasPoint = true;
    for (++i; i < pattern.size(); ++i) {
      const char c = pattern[i];
      if ((c == 'E' || c == 'e') && i + 1 < pattern.size() && (pattern[i + 1] == '+' || pattern[i + 1] == '-')) break;
      s.fraction += c;
    }
  }
  if (i < pattern.size()) {
    s.hasExponent = true;
    s.exponentLetter = pattern[i];
    s.exponentSignAlways = pattern[i + 1] == '+';
    for (i += 2; i < pattern.size() && IsPlace(pattern[i]); ++i) ++s.exponentPlaces;
    s.suffix = std::string(pattern.substr(i));
  }
  return s;
}

int CountPlaces(std::string_view part) {
  return static_cast<int>(std::count_if(part.begin(), part.end(), IsPlace));
}

// Fills the integer pattern from the right with the digits; digits beyond the
// places stand at the leftmost place, and '#' places without a digit stay empty.
std::string FillInteger(std::string_view pattern, std::string digits) {
  const int places = CountPlaces(pattern);
  const size_t firstZero = pattern.find('0');
  const int required = firstZero == std::string_view::npos ? 0 : CountPlaces(pattern.substr(firstZero));
  if (static_cast<int>(digits.size()) < required) digits.insert(0, static_cast<size_t>(required) - digits.size(), '0');
  std::string out;
  int placesSeen = 0;
  size_t next = digits.size();
  for (size_t k = pattern.size(); k-- > 0;) {
    const char c = pattern[k];
    if (!IsPlace(c)) {
      out.insert(out.begin(), c);
      continue;
    }
    ++placesSeen;
    if (placesSeen == places) {
      out.insert(0, digits.substr(0, next));
      next = 0;
    } else if (next > 0) {
      out.insert(out.begin(), digits[--next]);
    }
  }
  return out;
}

std::string FillFraction(std::string_view pattern, const std::string& digits) {
  // '#' places drop trailing zeros; '0' places always show.
  std::string shown = digits;
  int lastZeroPlace = -1, place = 0;
  for (char c : pattern)
    if (IsPlace(c)) {
      if (c == '0') lastZeroPlace = place;
      ++place;
    }
  while (static_cast<int>(shown.size()) > lastZeroPlace + 1 && !shown.empty() && shown.back() == '0') shown.pop_back();
  std::string out;
  size_t next = 0;
  for (char c : pattern) {
    if (!IsPlace(c)) {
      out += c;
    } else if (next < shown.size()) {
      out += shown[next++];
    } else {
      ++next;
    }
  }
  return out;
}

std::string FormatFixed(double absValue, const Section& s) {
  const int fracPlaces = CountPlaces(s.fraction);
  const Decimal d0 = ToDecimal(absValue);
  const Decimal d = KeepDigits(d0, d0.point + fracPlaces);
  std::string out = FillInteger(s.integer, IntegerDigits(d));
  if (s.hasPoint) out += '.' + FillFraction(s.fraction, FractionDigits(d, fracPlaces));
  return out;
}

std::string FormatExponent(double absValue, const Section& s) {
  const int intPlaces = CountPlaces(s.integer);
  const int fracPlaces = CountPlaces(s.fraction);
  // A lone '0' before the point gives the normalised form 0.ddd x 10^e.
  const bool normalisedBelowOne = intPlaces == 1 && s.integer.find('0') != std::string::npos;
  const int integerDigits = normalisedBelowOne ? 0 : intPlaces;
  Decimal d = KeepDigits(ToDecimal(absValue), integerDigits + fracPlaces);
  int exponent = 0;
  std::string mantissaInt, mantissaFrac;
  if (!d.digits.empty()) {
    exponent = d.point - integerDigits;
    Decimal m = d;
    m.point = integerDigits;
    mantissaInt = IntegerDigits(m);
    mantissaFrac = FractionDigits(m, fracPlaces);
  } else {
    mantissaFrac = std::string(static_cast<size_t>(fracPlaces), '0');
  }
  std::string out = FillInteger(s.integer, mantissaInt);
  if (s.hasPoint) out += '.' + FillFraction(s.fraction, mantissaFrac);
  out += s.exponentLetter;
  if (exponent < 0) out += '-';
  else if (s.exponentSignAlways) out += '+';
  std::string expDigits = std::to_string(std::abs(exponent));
  if (static_cast<int>(expDigits.size()) < s.exponentPlaces)
    expDigits.insert(0, static_cast<size_t>(s.exponentPlaces) - expDigits.size(), '0');
  return out + expDigits + s.suffix;
}

}  // namespace

std::string Str(double x) {
  if (std::isnan(x)) return " 0";
  const Decimal d = ToDecimal(std::fabs(x));
  std::string out = x < 0 && !d.digits.empty() ? "-" : " ";
  if (d.digits.empty()) return out + "0";
  out += IntegerDigits(d);
  const int fracPlaces = std::max(0, static_cast<int>(d.digits.size()) - d.point);
  if (fracPlaces > 0) out += '.' + FractionDigits(d, fracPlaces);
  return out;
}

std::string StrTrim(double x) { return Trim(Str(x)); }

std::string GeneralNumber(double x) {
  if (x == 0.0) return "0";
  if (!std::isfinite(x)) return std::isnan(x) ? "NaN" : (x > 0 ? "Infinity" : "-Infinity");
  char text[64];
  const auto end = std::to_chars(text, text + sizeof text, x, std::chars_format::general, 15).ptr;
  std::string out(text, end);
  // "1e-05" as "1E-05".
  if (const size_t e = out.find('e'); e != std::string::npos) out[e] = 'E';
  return out;
}

std::string Format(double value, std::string_view pattern) {
  std::vector<std::string> sections = SplitText(pattern, ";");
  if (!std::isfinite(value)) value = 0.0;
  size_t which = 0;
  if (value < 0 && sections.size() >= 2) which = 1;
  else if (value == 0 && sections.size() >= 3) which = 2;
  const Section s = ParseSection(sections[which]);
  const double absValue = std::fabs(value);
  std::string text = s.hasExponent ? FormatExponent(absValue, s) : FormatFixed(absValue, s);
  const bool anyDigit = text.find_first_of("123456789") != std::string::npos;
  if (value < 0 && which == 0 && anyDigit) text.insert(0, 1, '-');
  return text;
}

namespace {

// Products of 53 and 56 bits, which only GCC's and Clang's own type holds.
__extension__ typedef unsigned __int128 Wide;

// 5^0 to 5^24, the powers that scale a value of [1e-9, 1e9) to 15 digits.
constexpr auto kPowersOfFive = [] {
  std::array<uint64_t, 25> powers{};
  powers[0] = 1;
  for (size_t i = 1; i < powers.size(); ++i) powers[i] = powers[i - 1] * 5;
  return powers;
}();

// The 15 significant digits of a in [1e-9, 1e9), rounded to nearest, by
// exact integer arithmetic: a = digits x 10^(point - 15). False where the
// general conversion must decide: a out of range, or halfway between two
// 15-digit decimals, which it rounds to even.
bool FifteenDigits(double a, uint64_t& digits, int& point) {
  if (!(a >= 1e-9 && a < 1e9)) return false;
  static constexpr uint64_t kFifteenDigits = 1'000'000'000'000'000;
  // a = mantissa x 2^(power - 52), a normal number.
  const auto bits = std::bit_cast<uint64_t>(a);
  const uint64_t mantissa = (bits & ((uint64_t{1} << 52) - 1)) | (uint64_t{1} << 52);
  const int power = static_cast<int>(bits >> 52) - 1023;
  // floor(power x log10 2) + 1: the point of a, or one short of it.
  int p = ((power * 78913) >> 18) + 1;
  for (int tries = 0; tries < 2; ++tries, ++p) {
    // a x 10^s = mantissa x 5^s / 2^shift: at most 53 + 56 bits.
    const int s = 15 - p, shift = 52 - power - s;
    const Wide scaled = static_cast<Wide>(mantissa) * kPowersOfFive[static_cast<size_t>(s)];
    const auto whole = static_cast<uint64_t>(scaled >> shift);
    if (whole >= kFifteenDigits) continue;  // the point is the next one
    const Wide half = static_cast<Wide>(1) << (shift - 1);
    const Wide rest = scaled & ((half << 1) - 1);
    if (rest == half) return false;
    digits = whole + (rest > half ? 1 : 0);
    point = p;
    if (digits == kFifteenDigits) {  // 999...9.5 and more rounds up to the next power of ten
      digits /= 10;
      ++point;
    }
    return true;
  }
  return false;
}

}  // namespace

void AppendFixed(std::string& out, double value, int decimals) {
  // The digits Format works on: 15 significant ones, value = 0.digits x 10^point.
  char digits[16];
  int count = 0, point = 0;
  if (const double a = std::isfinite(value) ? std::fabs(value) : 0.0; a > 0.0) {
    count = 15;
    if (uint64_t whole = 0; FifteenDigits(a, whole, point)) {
      std::to_chars(digits, digits + sizeof digits, whole);
    } else {
      char text[32];  // "d.dddddddddddddde-ddd"
      const char* end = std::to_chars(text, text + sizeof text, a, std::chars_format::scientific, 14).ptr;
      digits[0] = text[0];
      std::copy(text + 2, text + 16, digits + 1);
      const char* exponent = text + 17 + (text[17] == '+');
      std::from_chars(exponent, end, point);
      ++point;
    }
  }
  // Rounded half away from zero at the last place shown.
  const int keep = point + decimals;
  if (keep < 0) {
    count = 0;
  } else if (keep < count) {
    const bool up = digits[keep] >= '5';
    count = keep;
    int i = count - 1;
    if (up) {
      while (i >= 0 && digits[i] == '9') digits[i--] = '0';
      if (i >= 0) {
        ++digits[i];
      } else {  // all nines: one more digit before them
        std::copy_backward(digits, digits + count, digits + count + 1);
        digits[0] = '1';
        ++count;
        ++point;
      }
    }
  }
  const auto digitAt = [&](int index) { return index >= 0 && index < count ? digits[index] : '0'; };
  const bool negative = value < 0 && std::any_of(digits, digits + count, [](char c) { return c != '0'; });
  const int integerPlaces = std::max(point, 1);
  const size_t at = out.size();
  out.resize(at + (negative ? 1 : 0) + static_cast<size_t>(integerPlaces) + (decimals > 0 ? decimals + 1 : 0));
  char* text = out.data() + at;
  if (negative) *text++ = '-';
  for (int i = point - integerPlaces; i < point; ++i) *text++ = digitAt(i);
  if (decimals > 0) {
    *text++ = '.';
    for (int i = point; i < point + decimals; ++i) *text++ = digitAt(i);
  }
}

int32_t TodayNumber() {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  localtime_r(&now, &local);
  return (local.tm_year + 1900) * 10000 + (local.tm_mon + 1) * 100 + local.tm_mday;
}

std::string TodayText() { return Format(TodayNumber(), "00000000"); }

namespace {

std::string RightAligned(const std::string& text, int width) {
  const size_t w = static_cast<size_t>(std::clamp(width, 0, 1024));
  if (text.size() >= w) return text.substr(0, w);
  return std::string(w - text.size(), ' ') + text;
}

int FieldWidth(std::string_view part) { return ClampToInt32(std::clamp(ValNorm(part), 0.0, 1024.0)); }

std::string Repeat(char c, int n) { return std::string(static_cast<size_t>(std::max(n, 0)), c); }

}  // namespace

std::string FormatFortran(double value, std::string_view descriptor) {
  if (descriptor.empty()) return {};
  const char kind = static_cast<char>(std::toupper(static_cast<unsigned char>(descriptor[0])));
  const size_t dot = descriptor.find('.');
  const std::string_view afterDot = dot == std::string_view::npos ? std::string_view{} : descriptor.substr(dot + 1);
  if (kind == 'I') {
    const int width = FieldWidth(descriptor.substr(1));
    const std::string digits = StrTrim(Int(value));
    if (static_cast<int>(digits.size()) > width) return Repeat('#', width);
    return RightAligned(digits, width);
  }
  if (kind == 'F') {
    const int width = FieldWidth(descriptor.substr(1, dot == std::string_view::npos ? std::string_view::npos : dot - 1));
    const int decimals = FieldWidth(afterDot);
    const std::string half = Repeat('#', width - 1) + "0." + Repeat('0', decimals);
    return RightAligned(Format(value, half + ";-" + half), width);
  }
  const int repeat = ClampToInt32(ValNorm(descriptor.substr(0, 1)));
  const std::string_view widthText =
      descriptor.size() > 2 ? descriptor.substr(2, dot == std::string_view::npos ? std::string_view::npos : dot - 2) : std::string_view{};
  const int width = FieldWidth(widthText);
  if (repeat < 1 || repeat > 9) return Repeat('#', width);
  const char letter = descriptor.size() > 1 ? descriptor[1] : 'E';
  const int decimals = FieldWidth(afterDot);
  const std::string exponent = "E+" + Repeat('0', repeat - 1);
  const std::string pattern = "0." + Repeat('0', decimals) + exponent + ";-0." + Repeat('0', decimals - 1) + exponent;
  std::string field = RightAligned(Format(value, pattern), width);
  const size_t e = field.find('E');
  if (e != std::string::npos) field[e] = letter;
  return field;
}

std::vector<std::string> SplitText(std::string_view text, std::string_view delim, int limit, CompareMode compare) {
  if (delim.empty()) return {std::string(text)};
  const std::string haystack = compare == CompareMode::Text ? ToLower(text) : std::string(text);
  const std::string needle = compare == CompareMode::Text ? ToLower(delim) : std::string(delim);
  std::vector<std::string> parts;
  size_t from = 0;
  while (limit == -1 || static_cast<int>(parts.size()) < limit) {
    const size_t at = haystack.find(needle, from);
    if (at == std::string::npos) break;
    parts.emplace_back(text.substr(from, at - from));
    from = at + needle.size();
  }
  parts.emplace_back(text.substr(from));
  return parts;
}

std::string ToLower(std::string_view text) {
  std::string out(text);
  for (char& c : out)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  return out;
}

bool EqualsNoCase(std::string_view a, std::string_view b) {
  return a.size() == b.size() && ToLower(a) == ToLower(b);
}

std::string Trim(std::string_view text) {
  const size_t first = text.find_first_not_of(" \t");
  if (first == std::string_view::npos) return {};
  const size_t last = text.find_last_not_of(" \t");
  return std::string(text.substr(first, last - first + 1));
}

}  // namespace tessiva

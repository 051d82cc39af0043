// Number text: the rounding rules, the locale-proof number reader and every
// formatter the files and the user see. Nothing else formats or parses numbers.
#pragma once

#include <cmath>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tessiva {

// Round to nearest, ties to even (the default conversion of a real to an integer).
inline double Round(double x) { return std::nearbyint(x); }
// Round down.
inline double Int(double x) { return std::floor(x); }
// Round towards zero.
inline double Fix(double x) { return std::trunc(x); }
// Round(x) as a 32-bit integer, saturating at the type's range (NaN gives 0), so
// that absurd values read from files never overflow.
int32_t RoundToInt32(double x);
// An already whole value as a 32-bit integer, saturating like RoundToInt32.
int32_t ClampToInt32(double x);

// Reads a number typed by a user or stored as decimal text, whatever its decimal
// separator: digits and signs are kept, ',' and '.' are the decimal point, blanks
// and no-break spaces are skipped, and any other character ends the number. The
// exponent of 1.5E-03 is no part of the number (it reads 1.5). Empty text reads 0.
double ValNorm(std::string_view text);

// The plain number-to-text conversion: up to 15 significant digits, a decimal point,
// no leading zero before it, a leading blank for a number that isn't negative:
// 5 -> " 5", 0.3 -> " .3", -0.25 -> "-.25". Never an exponent.
std::string Str(double x);
// Str without its leading blank.
std::string StrTrim(double x);
// The general number form: up to 15 significant digits, an exponent "E" when
// the number is very large or small (1E-05), "0" for zero.
std::string GeneralNumber(double x);

// Formats with a pattern of digit places ('0' always shown, '#' shown when
// significant), an optional '.', an optional exponent part ("E+00", "E-00") and
// literal characters; ';' separates the sections for positive, negative and zero
// values. The value is rounded, half away from zero, to the places shown. A lone
// '0' before the point of an exponent pattern gives the normalised form 0.ddd.
std::string Format(double value, std::string_view pattern);

// Appends the text Format gives with the pattern "0.000..." of `decimals`
// zeros ("0" for none), without parsing a pattern or building strings: the
// result files hold hundreds of thousands of such numbers.
void AppendFixed(std::string& out, double value, int decimals);

// Today's date as the decimal number yyyymmdd, and as its eight-digit text.
int32_t TodayNumber();
std::string TodayText();

// Fixed-width number text for the exports: I (integers), F (fixed point) and
// nEw.d / nDw.d (exponent with n - 1 exponent digits) edit descriptors.
std::string FormatFortran(double value, std::string_view descriptor);

enum class CompareMode { Binary, Text };

// Splits text at each delimiter. A limit other than -1 stops the search once that
// many elements are stored; the rest of the text is always the last element.
std::vector<std::string> SplitText(std::string_view text, std::string_view delim,
                                   int limit = -1, CompareMode compare = CompareMode::Binary);

// Case-blind comparison and lower-casing of 8-bit text; bytes above 127 are left
// as they are, since files keep the code page they were written in.
std::string ToLower(std::string_view text);
bool EqualsNoCase(std::string_view a, std::string_view b);
std::string Trim(std::string_view text);

}  // namespace tessiva

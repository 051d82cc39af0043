#include "options.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <filesystem>

#include "state/numtext.h"

namespace tessiva::cli {
namespace {

// The whole text as a number of type T, or nothing.
template <typename T>
std::optional<T> Parsed(const std::string& text) {
  T value{};
  const char* end = text.data() + text.size();
  const auto [stop, ec] = std::from_chars(text.data(), end, value);
  if (text.empty() || ec != std::errc() || stop != end) return std::nullopt;
  return value;
}

std::string OutOfRange(const std::string& text, const std::string& range) {
  return text + " is out of range (" + range + ")";
}

std::string Describe(const NumberRange& r) {
  const std::string min = r.min ? StrTrim(*r.min) : "", max = r.max ? StrTrim(*r.max) : "";
  if (r.min && r.max) return min + " to " + max;
  if (r.min) return (r.minIncluded ? min + " or above" : "above " + min);
  if (r.max) return max + " or below";
  return {};
}

bool LooksLikeOption(const std::string& text) { return text.starts_with("--"); }

std::string MissingBefore(const std::string& option) { return "a value is missing before " + option; }

}  // namespace

void Refuse(const std::string& message) { throw CLI::ValidationError(message); }

CLI::Validator WholeIn(int64_t min, int64_t max) {
  return CLI::Validator(
      [min, max](std::string& text) -> std::string {
        if (LooksLikeOption(text)) return MissingBefore(text);
        const auto value = Parsed<int64_t>(text);
        if (!value) return text + " is not a whole number";
        if (*value < min || *value > max) return OutOfRange(text, StrTrim(static_cast<double>(min)) + " to " +
                                                                      StrTrim(static_cast<double>(max)));
        return {};
      },
      "");
}

CLI::Validator NumberIn(NumberRange range) {
  return CLI::Validator(
      [range](std::string& text) -> std::string {
        if (LooksLikeOption(text)) return MissingBefore(text);
        const auto value = Parsed<double>(text);
        if (!value || !std::isfinite(*value)) return text + " is not a number";
        const bool low = range.min && (range.minIncluded ? *value < *range.min : *value <= *range.min);
        if (low || (range.max && *value > *range.max)) return OutOfRange(text, Describe(range));
        return {};
      },
      "");
}

CLI::Validator Positive() { return NumberIn({.min = 0.0, .minIncluded = false}); }

CLI::Validator OneOf(std::vector<std::string> names) {
  return CLI::Validator(
      [names](std::string& text) -> std::string {
        if (std::find(names.begin(), names.end(), text) != names.end()) return {};
        std::string list;
        for (const std::string& name : names) list += (list.empty() ? "" : ", ") + name;
        return LooksLikeOption(text) ? MissingBefore(text) : text + " is not one of " + list;
      },
      "");
}

CLI::Validator Found() {
  return CLI::Validator(
      [](std::string& path) -> std::string {
        if (LooksLikeOption(path)) return MissingBefore(path);
        std::error_code ec;
        return std::filesystem::exists(path, ec) ? "" : path + " not found";
      },
      "");
}

CLI::Validator AValue() {
  return CLI::Validator([](std::string& text) { return LooksLikeOption(text) ? MissingBefore(text) : std::string(); },
                        "");
}

std::optional<std::vector<double>> Coordinates(const std::string& text) {
  std::vector<double> values;
  for (const std::string& part : SplitText(text, ",")) {
    const auto value = Parsed<double>(Trim(part));
    if (!value || !std::isfinite(*value)) return std::nullopt;
    values.push_back(*value);
  }
  return values;
}

CLI::Option* AddPositions(CLI::App& command, const std::string& name, const std::string& form,
                          std::optional<size_t> count, const std::string& description,
                          std::function<void(const std::vector<double>&)> take) {
  const auto read = [take = std::move(take), name, form, count](const std::string& text) {
    if (LooksLikeOption(text)) Refuse(name + ": " + MissingBefore(text));
    const auto numbers = Coordinates(text);
    if (!numbers || (count && numbers->size() != *count))
      Refuse(name + " takes " + form + ", numbers separated by commas, not " + text);
    take(*numbers);
  };
  return command.add_option_function<std::string>(name, read, description)->type_name(form);
}

}  // namespace tessiva::cli

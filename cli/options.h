// What the commands of tessiva-cli share in declaring their options: checks
// that refuse a value with a message saying what was wanted (a number, a
// whole number within its range, a file that is there), and options that
// take a list of positions. A check names the range it holds the value to;
// no value is ever brought into range behind the user's back.
#pragma once

#include <CLI/CLI.hpp>

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace tessiva::cli {

// Stops the parse with `message`, said to the user as it stands.
[[noreturn]] void Refuse(const std::string& message);

// A whole number from `min` to `max`.
CLI::Validator WholeIn(int64_t min, int64_t max);

// A finite number within bounds; a bound that is not given is open, an
// excluded one keeps the value strictly on its side.
struct NumberRange {
  std::optional<double> min, max;
  bool minIncluded = true;
};
CLI::Validator NumberIn(NumberRange range);
// Above zero, for lengths, radii and factors.
CLI::Validator Positive();

// One of `names`, as written.
CLI::Validator OneOf(std::vector<std::string> names);

// A file or directory that is there; "... not found" otherwise.
CLI::Validator Found();

// Any text but an option's name: CLI11 takes the word after an option as its
// value whatever it is, so "--ref --def b.bmp" would name the picture "--def".
CLI::Validator AValue();

// "12.5,40" as numbers; nothing unless every part is a finite number.
std::optional<std::vector<double>> Coordinates(const std::string& text);

// An option of comma-separated numbers ("X1,Y1,X2,Y2"), handed to `take`:
// `form` names them in the help and in the complaint; `count`, when given,
// is how many there must be.
CLI::Option* AddPositions(CLI::App& command, const std::string& name, const std::string& form,
                          std::optional<size_t> count, const std::string& description,
                          std::function<void(const std::vector<double>&)> take);

}  // namespace tessiva::cli

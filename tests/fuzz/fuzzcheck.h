// What the fuzz targets share: a check that aborts with a message (libFuzzer
// then keeps the input that broke it), a scratch directory each process
// reuses, a snapshot of a directory's files to tell that a reader changed
// none, and the checks every written key-file must pass.
#pragma once

#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <sstream>
#include <string>
#include <string_view>

#include "formats/content.h"
#include "state/appstate.h"

namespace tessiva::fuzz {

[[noreturn]] inline void Fail(const char* file, int line, const char* condition, const std::string& detail) {
  std::fprintf(stderr, "\n%s:%d: fuzz check failed: %s\n  %s\n", file, line, condition, detail.c_str());
  std::fflush(stderr);
  std::abort();
}

// The detail is built only when the condition fails.
#define FUZZ_CHECK(condition, detail)                                            \
  do {                                                                           \
    if (!(condition)) ::tessiva::fuzz::Fail(__FILE__, __LINE__, #condition, (detail)); \
  } while (0)

inline std::string Num(double value) {
  std::ostringstream text;
  text << value;
  return text.str();
}

// A directory of its own under the system's temporary directory, made on the
// first call and removed when the process ends normally (a crash leaves it
// for a look).
inline const std::string& ScratchDir(const std::string& reader) {
  struct Dir {
    std::filesystem::path path;
    explicit Dir(const std::string& name)
        : path(std::filesystem::temp_directory_path() /
               ("tessiva-fuzz-" + name + "-" + std::to_string(static_cast<long>(::getpid())))) {
      std::filesystem::remove_all(path);
      std::filesystem::create_directories(path);
    }
    ~Dir() {
      std::error_code ec;
      std::filesystem::remove_all(path, ec);
    }
  };
  static const Dir dir(reader);
  static const std::string text = dir.path.string();
  return text;
}

inline std::string WriteFile(const std::string& dir, const std::string& name, std::string_view bytes) {
  const std::string path = (std::filesystem::path(dir) / name).string();
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  FUZZ_CHECK(out.good(), "can't write scratch file " + path);
  return path;
}

// Every entry under a directory: its bytes for a file, a mark for a directory.
inline std::map<std::string, std::string> Snapshot(const std::string& dir) {
  std::map<std::string, std::string> files;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(dir)) {
    const std::string name = entry.path().lexically_relative(dir).string();
    if (entry.is_directory()) {
      files[name] = "<directory>";
      continue;
    }
    std::ifstream in(entry.path(), std::ios::binary);
    files[name] = std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
  }
  return files;
}

inline std::string ChangedEntry(const std::map<std::string, std::string>& before,
                                const std::map<std::string, std::string>& after) {
  for (const auto& [name, bytes] : after) {
    const auto it = before.find(name);
    if (it == before.end()) return name + " appeared";
    if (it->second != bytes) return name + " changed";
  }
  for (const auto& [name, bytes] : before)
    if (!after.contains(name)) return name + " disappeared";
  return {};
}

// The first line where two texts part, for a message.
inline std::string FirstDifference(std::string_view a, std::string_view b) {
  size_t at = 0;
  while (at < a.size() && at < b.size() && a[at] == b[at]) ++at;
  const size_t start = a.rfind('\n', at == 0 ? 0 : at - 1);
  const size_t from = start == std::string_view::npos ? 0 : start + 1;
  const auto line = [from](std::string_view t) { return std::string(t.substr(from, t.find('\n', from) - from)); };
  return "first written \"" + line(a) + "\", then \"" + line(b) + "\"";
}

// Values of a key-file text that are written as numbers: everything of the
// sections that hold only numbers, and the numeric keys of the others.
inline bool IsNumericKey(std::string_view section, std::string_view key) {
  for (std::string_view numeric : {"parameters", "outlines", "startpoints", "material", "clf", "fissure", "badpattern"})
    if (section == numeric) return true;
  if (section == "pictures") return key == "lima" || key == "hima";
  if (section == "unit") return key == "unitpx" || key == "unitpy";
  if (section == "gages") return !key.starts_with("name");
  if (section == "extra") return key == "number";
  return false;
}

// A number as the writers give it: an optional sign, digits with at most one
// point, blanks around and after the sign (" 00 " writes -1 as "- 01 "); never
// "nan", "inf", an exponent or nothing.
inline bool IsPlainNumber(std::string_view value) {
  size_t i = 0, digits = 0, points = 0;
  while (i < value.size() && value[i] == ' ') ++i;
  if (i < value.size() && value[i] == '-') ++i;
  while (i < value.size() && value[i] == ' ') ++i;
  for (; i < value.size() && (std::isdigit(static_cast<unsigned char>(value[i])) || value[i] == '.'); ++i)
    value[i] == '.' ? ++points : ++digits;
  while (i < value.size() && value[i] == ' ') ++i;
  return i == value.size() && digits > 0 && points <= 1;
}

// Every numeric value of a text a writer made is a plain finite number.
inline void CheckWrittenNumbers(std::string_view text) {
  std::string section;
  size_t pos = 0;
  while (pos < text.size()) {
    const size_t end = std::min(text.find('\n', pos), text.size());
    const std::string_view line = text.substr(pos, end - pos);
    pos = end + 1;
    if (line.starts_with('[')) {
      section.clear();
      for (char c : line.substr(1, line.find(']') - 1)) section += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
      continue;
    }
    if (!line.starts_with("  ")) continue;
    const size_t eq = line.find('=');
    if (eq == std::string_view::npos) continue;
    std::string key;
    for (char c : line.substr(2, eq - 2))
      if (c != ' ') key += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    if (IsNumericKey(section, key))
      FUZZ_CHECK(IsPlainNumber(line.substr(eq + 1)), "written [" + section + "] " + std::string(line));
  }
}

// An outline slot's TagBox of -1 and 0 both mean an ordinary area. A slot
// without the key reads -1, which " 00 " writes "- 01", which reads 0, which
// isn't written: the line comes and goes at each writing without changing
// anything, so the comparisons leave it out.
inline std::string WithoutOrdinaryTags(std::string_view text) {
  std::string kept;
  for (size_t pos = 0; pos < text.size();) {
    const size_t end = std::min(text.find('\n', pos), text.size());
    const std::string_view line = text.substr(pos, end - pos + (end < text.size()));
    pos = end + 1;
    if (!(line.starts_with("  TagBox") && line.find("=- 01 ") != std::string_view::npos)) kept += line;
  }
  return kept;
}

// Written, read back and written again, content keeps its counts (`counts`
// names them) and its text settles: the first writing may still normalise
// (a value cut to 127 characters may end in a blank the next read trims),
// from then on the text must read back to itself.
template <class Content, class Write, class Read, class Counts>
void CheckRoundTrip(const Content& content, Write write, Read read, Counts counts) {
  const std::string first = write(content);
  CheckWrittenNumbers(first);
  const auto reread = read(first);
  FUZZ_CHECK(reread, "the written text is refused: " + reread.Error().message);
  FUZZ_CHECK(counts(*reread) == counts(content), "read \"" + counts(content) + "\", written and read \"" + counts(*reread) + "\"");
  const std::string second = WithoutOrdinaryTags(write(*reread));
  const auto again = read(second);
  FUZZ_CHECK(again, "the text written twice is refused: " + again.Error().message);
  const std::string third = WithoutOrdinaryTags(write(*again));
  FUZZ_CHECK(third == second, FirstDifference(second, third));
}

// The counts of an area content, as one text.
inline std::string AreaCounts(const AreaContent& c) {
  std::string text = "slots";
  for (const AreaSlot& slot : c.outlines.slots)
    text += " " + std::to_string(slot.vertices.size()) + (slot.skipped ? "skipped" : "");
  return text + ", areas " + std::to_string(c.outlines.areas) + ", start points " +
         std::to_string(c.startPoints.points.size()) + ", gauges " + std::to_string(c.gages.Count()) + ", extra " +
         std::to_string(c.extra.names.size());
}

// The " 00 " pattern TagBox is written with gives a negative number as
// "- 0N", which reads 0. -1 (an ordinary area, what a missing key reads) comes
// back as the equal 0; any other negative tag, which only a damaged file
// holds, would come back as an ordinary area, so its content isn't written.
inline bool HoldsNegativeGaugeTag(const AreaContent& c) {
  return std::any_of(c.outlines.slots.begin(), c.outlines.slots.end(),
                     [](const AreaSlot& slot) { return slot.tag < -1; });
}

// The lists of an area content fit the stores they are applied to.
inline void CheckAreaContent(const AreaContent& c) {
  const Outlines& o = c.outlines;
  FUZZ_CHECK(o.slots.size() <= AppState::kMaxAreas, Num(static_cast<double>(o.slots.size())) + " outline slots");
  FUZZ_CHECK(o.areas >= 0 && o.areas <= static_cast<int32_t>(o.slots.size()), Num(o.areas) + " areas");
  for (const AreaSlot& slot : o.slots) {
    FUZZ_CHECK(slot.nbox >= -1 && slot.nbox <= AppState::kMaxVertices, Num(slot.nbox) + " vertices stated");
    FUZZ_CHECK(slot.vertices.size() <= static_cast<size_t>(std::max(slot.nbox, 0)),
               Num(static_cast<double>(slot.vertices.size())) + " vertices read of " + Num(slot.nbox));
  }
  const StartPointList& p = c.startPoints;
  FUZZ_CHECK(p.number >= 0 && p.number <= AppState::kMaxStartPoints && p.points.size() == static_cast<size_t>(p.number),
             Num(p.number) + " start points stated, " + Num(static_cast<double>(p.points.size())) + " read");
  FUZZ_CHECK(c.gages.Count() <= kMaxGages, Num(c.gages.Count()) + " gauges");
  FUZZ_CHECK(c.extra.names.size() <= kMaxExtraValues && c.extra.names.size() == c.extra.values.size(),
             Num(static_cast<double>(c.extra.names.size())) + " extra names");
  for (double v : {c.units.px, c.units.py, c.material.young, c.material.poisson, c.crack.xDep, c.crack.yDep,
                   c.crack.xArr, c.crack.yArr, c.crack.radius})
    FUZZ_CHECK(std::isfinite(v), "a decimal read as " + Num(v));
}

// The counts of the area and start-point stores index their arrays.
inline void CheckAreaStores(const AppState& s) {
  FUZZ_CHECK(s.NbBox >= 1 && s.NbBox <= AppState::kMaxAreas + 1, "NbBox " + Num(s.NbBox));
  for (int32_t i = 1; i <= AppState::kMaxAreas; ++i)
    FUZZ_CHECK(s.Nbox[static_cast<size_t>(i)] >= -1 && s.Nbox[static_cast<size_t>(i)] <= AppState::kMaxVertices,
               "Nbox(" + Num(i) + ") " + Num(s.Nbox[static_cast<size_t>(i)]));
  const size_t size = s.XStart.size();
  FUZZ_CHECK(size >= 1 && s.YStart.size() == size && s.DuStart.size() == size && s.DvStart.size() == size &&
                 s.StartOk.size() == size,
             "start-point arrays of different sizes");
  FUZZ_CHECK(s.NbStart >= 0 && static_cast<size_t>(s.NbStart) < size, "NbStart " + Num(s.NbStart));
  FUZZ_CHECK(s.CurStart >= 0 && static_cast<size_t>(s.CurStart) < size, "CurStart " + Num(s.CurStart));
}

}  // namespace tessiva::fuzz

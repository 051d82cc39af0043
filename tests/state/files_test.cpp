#include "state/files.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <ostream>
#include <stdexcept>

#include "support/tempdir.h"

namespace tessiva {
namespace {

using namespace std::string_literals;
using Lines = std::vector<std::string>;

TEST(LineSplitting, EveryLineEndAndALeadingByteOrderMarkGiveTheSameLines) {
  const std::pair<std::string, Lines> cases[] = {
      {"a\nb\n", {"a", "b"}},
      {"a\r\nb\r\n", {"a", "b"}},
      {"a\rb\r", {"a", "b"}},
      {"\xEF\xBB\xBF" "a\r\nb", {"a", "b"}},
      {"a\r\n\r\nb", {"a", "", "b"}},
      {"a\n\rb", {"a", "", "b"}},  // LF then CR: two ends, not one
      {"\r\n", {""}},
      {"", {}},
      {"\xEF\xBB\xBF", {}},
      {"a\xEF\xBB\xBF", {"a\xEF\xBB\xBF"}},  // only at the start is it a mark
  };
  for (const auto& [text, lines] : cases) EXPECT_EQ(SplitLines(text), lines) << text;

  const std::string text = "\xEF\xBB\xBFx\r\ny\rz";
  LineCursor cursor(text);
  EXPECT_EQ(cursor.Next(), "x");
  EXPECT_EQ(cursor.Next(), "y");
  EXPECT_EQ(cursor.Consumed(), "\xEF\xBB\xBFx\r\ny\r");
  EXPECT_EQ(cursor.Next(), "z");
  EXPECT_TRUE(cursor.AtEnd());
  EXPECT_EQ(cursor.Consumed(), text);
}

TEST(ReadWholeFile, ReadsEveryByteOfARegularFileAndNothingElse) {
  testing::TempDir dir;
  std::string bytes(200'000, '\0');  // beyond one read's chunk
  for (size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<char>(i * 7);
  EXPECT_EQ(ReadWholeFile(dir.Write("data.bin", bytes)), bytes);
  EXPECT_EQ(ReadWholeFile(dir.Write("empty", "")), "");
  std::filesystem::create_directory(dir.File("folder.don"));
  EXPECT_EQ(ReadWholeFile(dir.File("folder.don")), std::nullopt);
  EXPECT_EQ(ReadWholeFile(dir.File("absent")), std::nullopt);
}

TEST(WriteFileAtomically, AFailedOrInterruptedWriteLeavesTheOldFileAndNoTrace) {
  testing::TempDir dir;
  const std::string path = dir.Write("a.res", "old");
  EXPECT_THROW(WriteFileAtomically(path, [](std::ostream& out) {
                 out << "half";
                 throw std::runtime_error("out of memory");
               }),
               std::runtime_error);
  EXPECT_FALSE(WriteFileAtomically(path, [](std::ostream& out) { out.setstate(std::ios::badbit); }));
  EXPECT_EQ(ReadWholeFile(path), "old");
  EXPECT_TRUE(WriteFileAtomically(path, [](std::ostream& out) { out << "new"; }));
  EXPECT_EQ(ReadWholeFile(path), "new");
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir.Path()), {}), 1) << "a temporary file was left";
}

TEST(FileNames, ControlCharactersMakeANameUnusableAndAreShownEscaped) {
  const std::tuple<std::string, bool, std::string> cases[] = {
      {"job 1.don", true, "job 1.don"},
      {"\xC3\xA9t\xC3\xA9.don", true, "\xC3\xA9t\xC3\xA9.don"},  // UTF-8 is no control character
      {"", false, ""},
      {"small.don\0.don"s, false, "small.don\\0.don"},
      {"a\x01" "b\tc", false, "a\\x01b\\x09c"},
      {"a\x1F\x7F", false, "a\\x1F\\x7F"},
  };
  for (const auto& [name, usable, shown] : cases) {
    EXPECT_EQ(IsUsableFileName(name), usable) << shown;
    EXPECT_EQ(PrintableName(name), shown);
  }
}

}  // namespace
}  // namespace tessiva

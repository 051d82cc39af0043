#include "state/keyfile.h"

#include <gtest/gtest.h>

#include <limits>
#include <random>

#include "support/tempdir.h"

namespace tessiva {
namespace {

using testing::TempDir;

const std::string kSample =
    "; head comment\n"
    "[Parameters]\n"
    "  Lgrid=10  \n"
    "  Lima =00512\n"
    "  empty=\n"
    "  neg= -012\n"
    "  pos= 012\n"
    "  word=abc\n"
    "  big=99999999999999999999\n"
    "  small=-99999999999999999999\n"
    "  text=  hello world  \n"
    "; commented=1\n"
    "  long=" + std::string(200, 'x') + "\n"
    "[other]\n"
    "  Lgrid=3\n";

TEST(KeyFileRead, TextValuesFollowTheBufferAndDefaultRules) {
  TempDir dir;
  const std::string file = dir.Write("a.ini", kSample);
  struct Case {
    const char* section;
    const char* key;
    std::string value;
  };
  const Case cases[] = {
      {"Parameters", "Lgrid", "10"},
      {"PARAMETERS", "lgrid", "10"},
      {"parameters", "Lima", "00512"},
      {"Parameters", "text", "hello world"},
      {"Parameters", "empty", ""},
      {"Parameters", "commented", "not found"},
      {"Parameters", "missing", "not found"},
      {"Nowhere", "Lgrid", "not found"},
      {"other", "Lgrid", "3"},
      {"Parameters", "long", std::string(127, 'x')},
  };
  for (const Case& c : cases) EXPECT_EQ(ReadKeyText(c.section, c.key, file), c.value) << c.section << "/" << c.key;
  EXPECT_EQ(ReadKeyText("Parameters", "Lgrid", dir.File("absent.ini")), "not found");
  EXPECT_EQ(GetPrivateProfileStringA("Parameters", "Lgrid", "d", 2, file), "1");
}

TEST(KeyFileRead, IntegersParseTheLeadingDigitsOnlyAndSaturate) {
  TempDir dir;
  const std::string file = dir.Write("a.ini", kSample);
  struct Case {
    const char* key;
    int32_t value;
  };
  const Case cases[] = {
      {"Lgrid", 10}, {"Lima", 512}, {"empty", 0}, {"neg", -12}, {"pos", 12}, {"word", 0}, {"missing", 77},
      {"big", std::numeric_limits<int32_t>::max()}, {"small", std::numeric_limits<int32_t>::min()},
  };
  for (const Case& c : cases) EXPECT_EQ(GetPrivateProfileIntA("Parameters", c.key, 77, file), c.value) << c.key;
  EXPECT_EQ(GetPrivateProfileIntA("Parameters", "Lgrid", -2, dir.File("absent.ini")), -2);
}

// A key is replaced where it stands, added after the last line of its section
// or in a new section at the end, with the line ends the file already has.
TEST(KeyFileWrite, ReplacesOrAddsAndKeepsEveryOtherLine) {
  TempDir dir;
  const std::string file = dir.Write(
      "correl.ini", "; keep me\r\n[PATH]\r\n  LastDir=C:\\old \xE9t\xE9\r\n  ExePath=solver\r\n\r\n[AOI]\r\n  NAME1=a\r\n");
  ASSERT_TRUE(WritePrivateProfileStringA("path", "lastdir", "/data/new", file));
  ASSERT_TRUE(WritePrivateProfileStringA("PATH", "New", "/x", file));
  ASSERT_TRUE(WritePrivateProfileStringA("AOS", "NUMBEROFAOS", " 1", file));
  EXPECT_EQ(dir.Read("correl.ini"), "; keep me\r\n[PATH]\r\nlastdir=/data/new\r\n  ExePath=solver\r\nNew=/x\r\n\r\n[AOI]\r\n"
                                    "  NAME1=a\r\n[AOS]\r\nNUMBEROFAOS= 1\r\n");
  ASSERT_TRUE(WritePrivateProfileStringA("new", "k", "v", dir.File("fresh.ini")));
  EXPECT_EQ(dir.Read("fresh.ini"), "[new]\nk=v\n");
}

TEST(KeyFileWrite, EveryWriteIsSeenByTheNextRead) {
  TempDir dir;
  const std::string file = dir.Write("a.ini", "[s]\nk=1\n");
  EXPECT_EQ(GetPrivateProfileIntA("s", "k", 0, file), 1);
  for (int i = 2; i < 6; ++i) {
    ASSERT_TRUE(WritePrivateProfileStringA("s", "k", std::to_string(i), file));
    EXPECT_EQ(GetPrivateProfileIntA("s", "k", 0, file), i);
  }
  // A file replaced by another writer is read anew too.
  dir.Write("a.ini", "[s]\nk=123456\n");
  EXPECT_EQ(GetPrivateProfileIntA("s", "k", 0, file), 123456);
}

TEST(KeyFileRead, SurvivesRandomBytes) {
  TempDir dir;
  std::mt19937 random(7);
  for (int round = 0; round < 300; ++round) {
    std::string content = kSample;
    const int edits = 1 + static_cast<int>(random() % 20);
    for (int e = 0; e < edits; ++e) content[random() % content.size()] = static_cast<char>(random() % 256);
    if (round % 3 == 0) content.resize(random() % content.size());
    const std::string file = dir.Write("fuzz.ini", content);
    (void)ReadKeyText("Parameters", "text", file);
    (void)GetPrivateProfileIntA("parameters", "Lgrid", 0, file);
    (void)GetPrivateProfileIntA("other", "Lgrid", 0, file);
    EXPECT_EQ(dir.Read("fuzz.ini"), content);
  }
}

}  // namespace
}  // namespace tessiva

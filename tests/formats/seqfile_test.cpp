#include "formats/seqfile.h"

#include <gtest/gtest.h>

#include <utility>

#include "analysis/analysisfiles.h"
#include "formats/setupwindow.h"
#include "setup/areafiles.h"

namespace tessiva {
namespace {

using testing::SetupWindow;

// A build of three deformed pictures after the reference "Ref.BMP", in mixed case.
SequenceMembers PrepareBuild(SetupWindow& w, int32_t seqRefChange) {
  std::tie(w.s.PicRefName, w.s.PicRefPath, w.s.NbSeq) = std::tuple("Ref.BMP", w.dir.File("Ref.BMP"), 3);
  w.s.SeqRefChange = seqRefChange;
  w.s.FileName = w.dir.File("Ref-D3-S.seq");
  SequenceMembers m;
  for (const char* name : {"D1.BMP", "d2.bmp", "D3.bmp"}) {
    m.FicDefText.push_back(name);
    m.FicDefTag.push_back(w.dir.File(name));
  }
  return m;
}

// A stub data file; an incremental member after the first also names the previous result.
std::string Stub(const std::string& ref, const std::string& def, const std::string& resultFrom = "") {
  std::string text = testing::ExpectedBanner() + "[PICTURES]\n; PicRef= filename of the reference picture\n  PicRef=" +
                     ref + "\n; PicDef= filename of the deformed picture\n  PicDef=" + def + "\n";
  if (resultFrom.empty()) return text;
  return text + "; PicRefini= filename of the first picture in an incremental sequence\n  PicRefini=ref.bmp\n"
                "[INCREMENTAL]\n; ResultFrom= filename of the previous result\n  ResultFrom=" + resultFrom + "\n";
}

TEST(SequenceWrite, StubsNamePicturesInLowerCaseTheListKeepsCaseAndReadsBackWithItsKind) {
  struct Case {
    int32_t incremental;
    std::vector<std::pair<std::string, std::string>> files;  // name, text
  };
  const Case cases[] = {
      {0,
       {{"Ref-D3-S.seq", "Ref-D1.don\nRef-d2.don\nRef-D3.don\n"}, {"Ref-D1.don", Stub("ref.bmp", "d1.bmp")},
        {"Ref-d2.don", Stub("ref.bmp", "d2.bmp")}, {"Ref-D3.don", Stub("ref.bmp", "d3.bmp")}}},
      {1,
       {{"Ref-D3-S.seq", "Ref-D1.don\nD1-d2.don\nd2-D3.don\n"}, {"Ref-D1.don", Stub("ref.bmp", "d1.bmp")},
        {"D1-d2.don", Stub("d1.bmp", "d2.bmp", "ref-d1.res")}, {"d2-D3.don", Stub("d2.bmp", "d3.bmp", "d1-d2.res")}}},
  };
  for (const Case& c : cases) {
    SetupWindow w;
    ASSERT_TRUE(SauveSeq(w.s, PrepareBuild(w, c.incremental)));
    for (const auto& [name, text] : c.files) EXPECT_EQ(w.dir.Read(name), text) << name;
    w.s.SeqRefChange = 0;
    ASSERT_TRUE(LecSeq(w.form)) << w.Status();
    EXPECT_EQ(std::tie(w.s.SeqRefChange, w.s.NbSeq), std::make_tuple(c.incremental, c.incremental ? 1 : 3));
  }
}

TEST(SequenceWrite, AnOpenedSequenceWritesNothingAndShortListsFail) {
  SetupWindow w;
  SequenceMembers opened = PrepareBuild(w, 0), shortList = opened;
  opened.FromFile = true;
  shortList.FicDefText.pop_back();
  EXPECT_TRUE(SauveSeq(w.s, opened));
  EXPECT_FALSE(SauveSeq(w.s, shortList));
  EXPECT_EQ(w.dir.Read("Ref-D1.don") + w.dir.Read("Ref-D3-S.seq"), "");
}

// Members m1.don ... naming the given reference pictures, listed with trailing
// blanks, and their results m1.res ... naming the same pictures as PicAna.
void WriteMembers(SetupWindow& w, const std::vector<std::string>& pictures) {
  std::string lines;
  for (size_t i = 0; i < pictures.size(); ++i) {
    const std::string stem = "m" + std::to_string(i + 1);
    w.dir.Write(stem + ".don", "[PICTURES]\n  PicRef=" + pictures[i] + "\n  PicDef=x.bmp\n");
    w.dir.Write(stem + ".res", "[PICTURES]\n  PicAna=" + pictures[i] + "\n");
    lines += stem + ".don  \n";
  }
  w.dir.Write("t-S.seq", lines);
  w.s.FileName = w.dir.File("t-S.seq");
}

TEST(SequenceRead, BothReadersTellTheKindFromTheMembersPictures) {
  struct Case {
    std::vector<std::string> pictures;
    int32_t seqRefChange;  // 1: incremental, prepared from its first member
    int32_t nbSeqSetup;
  };
  for (const Case& c : {Case{{"a"}, 0, 1}, Case{{"a", "a", "a"}, 0, 3}, Case{{"a", "b", "c"}, 1, 1},
                        Case{{"a", "a", "b"}, 1, 1}}) {
    SetupWindow w;
    WriteMembers(w, c.pictures);
    const auto members = static_cast<int32_t>(c.pictures.size());
    SCOPED_TRACE(std::to_string(members) + c.pictures.back());
    ASSERT_TRUE(LecSeq(w.form)) << w.Status();
    EXPECT_EQ(std::tie(w.s.SeqRefChange, w.s.NbSeq), std::make_tuple(c.seqRefChange, c.nbSeqSetup));
    EXPECT_EQ(w.form.Controls().Visible("Toolbar1.enddata"), c.nbSeqSetup > 1);
    EXPECT_EQ(w.s.DataFilePath[1], w.dir.File("m1.don"));
    ControlRegistry analyse;
    w.s.SeqRefChange = 0;
    ASSERT_TRUE(LecSeqResults(w.s, w.ui, analyse)) << w.Status();
    EXPECT_EQ(std::tie(w.s.SeqRefChange, w.s.NbSeq), std::make_tuple(c.seqRefChange, members));
    EXPECT_EQ(analyse.Get("Combo4").items.front(), "m1.res");
    EXPECT_EQ(analyse.Enabled("Toolbar1.Button14"), members > 1);
  }
}

TEST(SequenceRead, AMemberWithoutItsPictureOrAMissingSequenceStopsTheReading) {
  SetupWindow w;
  WriteMembers(w, {"a", "b", "c"});
  w.dir.Write("m2.don", "[PICTURES]\n  PicDef=x.bmp\n");
  for (const std::string& unusable : {w.dir.File("m2.don"), w.dir.File("absent.seq")}) {
    EXPECT_FALSE(LecSeq(w.form));
    EXPECT_EQ(w.Status(),
              " This file :" + unusable + " is not right formatted, no data could be retrieved from this file");
    w.s.FileName = w.dir.File("absent.seq");
  }
}

}  // namespace
}  // namespace tessiva

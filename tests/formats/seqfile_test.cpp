#include "formats/seqfile.h"

#include <gtest/gtest.h>

#include "formats/setupwindow.h"

namespace tessiva {
namespace {

using testing::ExpectedBanner;
using testing::SetupWindow;

// A builder's three deformed pictures after the reference "Ref.BMP", in mixed case.
SequenceMembers ThreeMembers(const testing::TempDir& dir) {
  SequenceMembers m;
  for (const char* name : {"D1.BMP", "d2.bmp", "D3.bmp"}) {
    m.FicDefText.push_back(name);
    m.FicDefTag.push_back(dir.File(name));
  }
  return m;
}

void PrepareBuild(SetupWindow& w, int32_t seqRefChange) {
  w.s.PicRefName = "Ref.BMP";
  w.s.PicRefPath = w.dir.File("Ref.BMP");
  w.s.NbSeq = 3;
  w.s.SeqRefChange = seqRefChange;
  w.s.FileName = w.dir.File("Ref-D3-S.seq");
}

std::string Stub(const std::string& ref, const std::string& def) {
  return ExpectedBanner() + "[PICTURES]\n; PicRef= filename of the reference picture\n  PicRef=" + ref +
         "\n; PicDef= filename of the deformed picture\n  PicDef=" + def + "\n";
}

std::string IncrementalStub(const std::string& ref, const std::string& def, const std::string& resultFrom) {
  return Stub(ref, def) +
         "; PicRefini= filename of the first picture in an incremental sequence\n  PicRefini=ref.bmp\n"
         "[INCREMENTAL]\n; ResultFrom= filename of the previous result\n  ResultFrom=" +
         resultFrom + "\n";
}

TEST(SequenceWrite, SequentialMembersShareTheReference) {
  SetupWindow w;
  PrepareBuild(w, 0);
  ASSERT_TRUE(SauveSeq(w.s, ThreeMembers(w.dir)));
  // Names keep the pictures' case; the stubs name the pictures in lower case.
  EXPECT_EQ(w.dir.Read("Ref-D3-S.seq"), "Ref-D1.don\nRef-d2.don\nRef-D3.don\n");
  EXPECT_EQ(w.dir.Read("Ref-D1.don"), Stub("ref.bmp", "d1.bmp"));
  EXPECT_EQ(w.dir.Read("Ref-d2.don"), Stub("ref.bmp", "d2.bmp"));
  EXPECT_EQ(w.dir.Read("Ref-D3.don"), Stub("ref.bmp", "d3.bmp"));
  EXPECT_EQ(w.s.DataFile, w.dir.File("Ref-D3.don"));
  EXPECT_EQ(w.s.PicDefName, "D3.bmp");
}

TEST(SequenceWrite, IncrementalMembersChainTheirPicturesAndResults) {
  SetupWindow w;
  PrepareBuild(w, 1);
  ASSERT_TRUE(SauveSeq(w.s, ThreeMembers(w.dir)));
  EXPECT_EQ(w.dir.Read("Ref-D3-S.seq"), "Ref-D1.don\nD1-d2.don\nd2-D3.don\n");
  EXPECT_EQ(w.dir.Read("Ref-D1.don"), Stub("ref.bmp", "d1.bmp"));
  EXPECT_EQ(w.dir.Read("D1-d2.don"), IncrementalStub("d1.bmp", "d2.bmp", "ref-d1.res"));
  EXPECT_EQ(w.dir.Read("d2-D3.don"), IncrementalStub("d2.bmp", "d3.bmp", "d1-d2.res"));
  EXPECT_EQ(w.s.ResultFrom, "D1-d2.res");
}

TEST(SequenceWrite, ASinglePairOrAnOpenedSequenceMakesNoSequenceFile) {
  struct Case {
    const char* name;
    int32_t nbSeq;
    bool fromFile;
    bool stubWritten;
  };
  for (const Case& c : {Case{"no member", 0, false, true}, Case{"one member", 1, false, true},
                        Case{"opened from a file", 3, true, false}}) {
    SetupWindow w;
    PrepareBuild(w, 0);
    w.s.NbSeq = c.nbSeq;
    w.s.PicDefName = "D1.BMP";
    w.s.FileName = w.dir.File("Ref-D1.don");
    SequenceMembers members = ThreeMembers(w.dir);
    members.FromFile = c.fromFile;
    const auto before = testing::Snapshot(w.dir);
    ASSERT_TRUE(SauveSeq(w.s, members)) << c.name;
    if (c.stubWritten) {
      EXPECT_EQ(w.dir.Read("Ref-D1.don"), Stub("ref.bmp", "d1.bmp")) << c.name;
      EXPECT_EQ(testing::Snapshot(w.dir).size(), before.size() + 1) << c.name;
    } else {
      EXPECT_EQ(testing::Snapshot(w.dir), before) << c.name;
    }
  }
}

TEST(SequenceWrite, FailsWhenTheDirectoryCantBeWrittenOrTheListsAreShort) {
  SetupWindow w;
  PrepareBuild(w, 0);
  SequenceMembers members = ThreeMembers(w.dir);
  members.FicDefText.pop_back();
  EXPECT_FALSE(SauveSeq(w.s, members));
  w.s.PicRefPath = w.dir.File("missing/Ref.BMP");
  EXPECT_FALSE(SauveSeq(w.s, ThreeMembers(w.dir)));
  EXPECT_EQ(w.dir.Read("Ref-D3-S.seq"), "");
}

// Members m1.don, m2.don ... naming the given reference pictures, with their
// results m1.res ... naming the same pictures as PicAna.
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

TEST(SequenceRead, TheKindComesFromTheMembersReferencePictures) {
  struct Case {
    std::vector<std::string> pictures;
    int32_t seqRefChange;
    int32_t nbSeqSetup, nbSeqAnalysis;
    bool nextToolShown;
  };
  const Case cases[] = {
      {{"a"}, 0, 1, 1, false},
      {{"a", "a", "a"}, 0, 3, 3, true},
      {{"a", "b", "c"}, 1, 1, 3, false},
      {{"a", "a", "b"}, 1, 1, 3, false},
      {{"a", "b", "b"}, 1, 1, 3, false},
  };
  for (const Case& c : cases) {
    SetupWindow w;
    WriteMembers(w, c.pictures);
    const std::string label = std::to_string(c.pictures.size()) + c.pictures.back();
    ASSERT_TRUE(LecSeq(w.form)) << label << w.Status();
    EXPECT_EQ(w.s.SeqRefChange, c.seqRefChange) << label;
    EXPECT_EQ(w.s.NbSeq, c.nbSeqSetup) << label;
    EXPECT_EQ(w.form.Controls().Visible("Toolbar1.enddata"), c.nextToolShown) << label;
    EXPECT_EQ(w.form.Controls().Enabled("Toolbar1.enddata"), c.nextToolShown) << label;
    EXPECT_EQ(w.s.DataFileName[1], "m1.don") << label;
    EXPECT_EQ(w.s.DataFilePath[1], w.dir.File("m1.don")) << label;

    ControlRegistry analyse;
    w.s.SeqRefChange = 0;
    ASSERT_TRUE(LecSeqResults(w.s, w.ui, analyse)) << label << w.Status();
    EXPECT_EQ(w.s.SeqRefChange, c.seqRefChange) << label;
    EXPECT_EQ(w.s.NbSeq, c.nbSeqAnalysis) << label;
    EXPECT_EQ(analyse.Get("Combo4").items.size(), c.pictures.size()) << label;
    EXPECT_EQ(analyse.Get("Combo4").items[0], "m1.res") << label;
    EXPECT_EQ(w.s.ResFile, w.dir.File("m" + std::to_string(c.pictures.size()) + ".res")) << label;
    EXPECT_EQ(analyse.Enabled("Toolbar1.Button14"), c.pictures.size() > 1) << label;
    EXPECT_EQ(analyse.Enabled("OptionMinMax(1)"), c.pictures.size() > 1) << label;
  }
}

TEST(SequenceRead, ASingleDataFileIsItsOwnSequence) {
  SetupWindow w;
  w.dir.Write("one.don", testing::kPicturesSection);
  w.s.FileName = w.dir.File("one.don");
  w.s.FileTitle = "one.don";
  w.form.Controls().SetItems("Combo2", {"old"});
  ASSERT_TRUE(LecSeq(w.form));
  EXPECT_EQ(w.s.NbSeq, 1);
  EXPECT_EQ(w.s.DataFilePath[1], w.dir.File("one.don"));
  EXPECT_EQ(w.s.DataFileName[1], "one.don");
  EXPECT_TRUE(w.Items("Combo2").empty());
  EXPECT_EQ(w.form.DoneFlags, std::vector<bool>({false, false}));

  ControlRegistry analyse;
  w.s.FileName = w.dir.File("one.res");
  w.s.FileTitle = "one.res";
  w.dir.Write("one.res", "[PICTURES]\n  PicAna=ref.bmp\n");
  ASSERT_TRUE(LecSeqResults(w.s, w.ui, analyse));
  EXPECT_EQ(analyse.Get("Combo4").items, std::vector<std::string>({"one.res"}));
  EXPECT_FALSE(analyse.Enabled("Toolbar1.Button22"));
}

TEST(SequenceRead, AMemberWithoutItsPictureStopsTheReading) {
  SetupWindow w;
  WriteMembers(w, {"a", "b", "c"});
  w.dir.Write("m2.don", "[PICTURES]\n  PicDef=x.bmp\n");
  w.s.SeqRefChange = 0;
  EXPECT_FALSE(LecSeq(w.form));
  EXPECT_EQ(w.Status(), " This file :" + w.dir.File("m2.don") +
                            " is not right formatted, no data could be retrieved from this file");
  // The list stays as far as it was built; the kind isn't decided.
  EXPECT_EQ(w.s.NbSeq, 3);
  EXPECT_EQ(w.s.SeqRefChange, -1);
  EXPECT_TRUE(w.form.Controls().Visible("Toolbar1.enddata"));

  w.s.FileName = w.dir.File("absent.seq");
  EXPECT_FALSE(LecSeq(w.form));
  EXPECT_EQ(w.Status(), " This file :" + w.dir.File("absent.seq") +
                            " is not right formatted, no data could be retrieved from this file");
}

TEST(SequenceRoundTrip, BuiltSequencesReadBackWithTheirKind) {
  for (int32_t incremental : {0, 1}) {
    SetupWindow w;
    PrepareBuild(w, incremental);
    w.s.LastDir = w.dir.Path();
    ASSERT_TRUE(SauveSeq(w.s, ThreeMembers(w.dir)));
    w.s.SeqRefChange = 0;
    w.s.NbSeq = 0;
    ASSERT_TRUE(LecSeq(w.form)) << w.Status();
    EXPECT_EQ(w.s.SeqRefChange, incremental);
    EXPECT_EQ(w.s.NbSeq, incremental ? 1 : 3);
    EXPECT_EQ(w.s.DataFileName[3], incremental ? "d2-D3.don" : "Ref-D3.don");
    EXPECT_EQ(w.form.DoneFlags.size(), 4u);
  }
}

}  // namespace
}  // namespace tessiva

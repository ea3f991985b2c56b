#include "core/docfile.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "core/tables.h"
#include "core/text.h"
#include "platform/scripted/scripted.h"
#include "temp_home.h"

using namespace tavik;
using tavik::testing::At;
using tavik::testing::ByteWriter;
using tavik::testing::ReadBytes;
using tavik::testing::TempHome;
using tavik::testing::WriteBytes;

namespace {

// A .SPC laid out by hand from the format's table of offsets.
struct SpcFile {
  std::string version = "7321153";
  int16_t mapType = 1;
  double scale = 500;
  std::string stationName;  // raw CP950
  double station[3] = {0, 0, 0};
  double backsight[2] = {0, 0};
  std::string backsightName;
  int32_t counts[3] = {0, 0, 0};  // points, entities, base map as the header states them
  int32_t refPoints = 0, refEntities = 0, serial = 0;
  int16_t splitStakes = 0, refLoaded = 0;
  ByteWriter body;

  SpcFile& AddPoint(double E, double N, double H) {
    body.Put(E).Put(N).Put(H);
    return *this;
  }
  SpcFile& AddEntity(int16_t code, int16_t kind, std::initializer_list<double> xyz, const std::string& name) {
    // xyz: X1, Y1, Z1, X2, Y2, Z2, X3, Y3, Z3 as given vertex by vertex.
    std::vector<double> v(xyz);
    v.resize(9);
    body.Put(code).Put(kind);
    for (int axis = 0; axis < 3; ++axis)
      for (int k = 0; k < 3; ++k) body.Put(v[3 * k + axis]);
    body.Text(name, 20);
    return *this;
  }
  SpcFile& AddOldBaseMap(int16_t code, int16_t kind, double x1, double y1, double x2, double y2,
                         const std::string& name) {
    body.Put(code).Put(kind).Put(x1).Put(x2).Put(0.0).Put(y1).Put(y2).Put(0.0).Text(name, 20);
    return *this;
  }
  std::string Bytes() const {
    ByteWriter h;
    h.Text(version, 8).Put(mapType).Put(scale).Text(stationName, 20).Put(1.5).Put(1.2);
    h.Put(station[0]).Put(station[1]).Put(station[2]).Put(0.25).Put(280000.0).Put(2750000.0);
    h.Put(1.0).Put(2.0).Put(3.0).Put(4.0);
    h.Put(counts[0]).Put(counts[1]).Put(counts[2]).Put(refPoints).Put(refEntities).Put(serial);
    h.Zeros(6).Put(splitStakes).Put(backsight[0]).Put(backsight[1]).Text(backsightName, 40).Put(refLoaded);
    return h.bytes + body.bytes;
  }
};

class DocFileTest : public ::testing::Test {
 protected:
  TempHome home;
  AppPaths paths{home.path};
  WorkFiles wf{paths};
  ui::ScriptedDialogs dialogs;
  View view;

  void SetUp() override {
    paths.EnsureFolders();
    view.ScreenMinE = 0, view.ScreenMaxE = 1e7, view.ScreenMinN = 0, view.ScreenMaxN = 1e8;
  }
  std::string Name(const std::string& n) const { return (home.path / n).string(); }
  Document Named(const std::string& n, bool inHome = true) const {
    Document d;
    SetDocumentName(d, inHome ? Name(n) : n);
    return d;
  }
  // Loads the bytes into `d` (the state before the load) under a name of the test's own.
  Document Load(const std::string& bytes, bool expectOk = true, Document d = {}) {
    SetDocumentName(d, Name("in"));
    WriteBytes(d.SpcPath, bytes);
    EXPECT_EQ(LoadDocument(d, dialogs), expectOk);
    return d;
  }
};

}  // namespace

TEST_F(DocFileTest, SaveLaysOutHeaderAndRecordsAtTheDocumentedOffsets) {
  Document d = Named("map");
  d.MapType = 2, d.ScaleDenominator = 250, d.StationName = "測站A";
  d.InstrumentHeight = 1.55, d.TargetHeight = 1.7;
  d.StationE = 281000.125, d.StationN = 2751000.5, d.StationH = 12.25;
  d.OrientationConstant = 0.75;
  d.ViewCentreE = 280900, d.ViewCentreN = 2752700;
  d.BacksightE = 281100, d.BacksightN = 2751100;
  d.BacksightName = "後視點";
  d.ReferenceMapLoaded = kTrue, d.ReferencePointCount = 1, d.ReferenceEntityCount = 0;
  d.SerialCounter = 42, d.SplitStakeCount = 3;
  AddPoint(d, view, wf, 281001, 2751001, 10);
  AddPoint(d, view, wf, 281002, 2751002, 11);
  AddPoint(d, view, wf, 281003, 2751003, 12);
  DeletePoint(d, wf, 2);
  AddEntity(d, view, wf, 99, 281001, 2751001, 10, "P1");
  AddEntity(d, view, wf, 301, KindLine, 1, 2, 3, 4, 5, 6, 0, 0, 0, "一二三四五六七八九十百");
  AddEntity(d, view, wf, 301, KindLine, 7, 7, 1, 7, 7, 2, 0, 0, 0, "dz");  // same E, N; other Z
  AddEntity(d, view, wf, 301, KindLine, 9, 9, 9, 9, 9, 9, 0, 0, 0, "same");  // not written
  AddEntity(d, view, wf, 302, KindLine, 1, 1, 0, 2, 2, 0, 0, 0, 0, "gone");
  DeleteEntity(d, wf, 5);
  BaseMapLine b;
  b.Number = 1, b.Code = 5, b.Kind = KindLine, b.X[0] = 10, b.Y[0] = 20, b.Z[0] = 30, b.X[1] = 11, b.Y[1] = 21;
  b.Name = "BM";
  d.BaseMapTable.push_back(b);
  d.BaseMapCount = 1;

  ASSERT_TRUE(SaveDocument(d, wf, dialogs));
  std::string f = ReadBytes(d.SpcPath);
  ASSERT_EQ(f.size(), 224u + 2 * 24 + 3 * 96 + 96);
  EXPECT_EQ(f.substr(0, 8), "7321153 ");
  EXPECT_EQ(f.substr(18, 20), text::ToCp950("測站A") + std::string(15, ' '));
  EXPECT_EQ(f.substr(158, 6), std::string(6, '\0'));
  EXPECT_EQ(f.substr(182, 40), text::ToCp950("後視點") + std::string(34, ' '));
  const std::size_t e2 = 224 + 48 + 96, bm = 224 + 48 + 3 * 96;
  // Header, then points 1 and 3, entity 2 (X, Y, Z arrays), the base map with Z zero.
  for (auto [off, want] : std::initializer_list<std::pair<std::size_t, double>>{
           {10, 250}, {38, 1.55}, {46, 1.7}, {54, 281000.125}, {62, 2751000.5}, {70, 12.25}, {78, 0.75},
           {86, 280900}, {94, 2752700}, {102, 281001}, {110, 281003}, {118, 2751001}, {126, 2751003},
           {166, 281100}, {174, 2751100}, {224, 281001}, {224 + 24, 281003}, {224 + 24 + 16, 12},
           {e2 + 4, 1}, {e2 + 12, 4}, {e2 + 28, 2}, {e2 + 36, 5}, {e2 + 52, 3}, {e2 + 60, 6},
           {bm + 4, 10}, {bm + 52, 0}}) {
    EXPECT_EQ(At<double>(f, off), want) << "at " << off;
  }
  // Counts: 3 points less 1 deleted; 5 entities less 1 deleted, though only 3 are written.
  for (auto [off, want] : std::initializer_list<std::pair<std::size_t, int32_t>>{
           {134, 2}, {138, 4}, {142, 1}, {146, 1}, {150, 0}, {154, 42}}) {
    EXPECT_EQ(At<int32_t>(f, off), want) << "at " << off;
  }
  for (auto [off, want] : std::initializer_list<std::pair<std::size_t, int16_t>>{
           {8, 2}, {164, 3}, {222, -1}, {e2, 301}, {e2 + 2, KindLine}, {bm, 5}}) {
    EXPECT_EQ(At<int16_t>(f, off), want) << "at " << off;
  }
  // A name cut at 20 bytes on a character boundary; entity 3 differs only in Z and is written.
  EXPECT_EQ(f.substr(e2 + 76, 20), text::ToCp950("一二三四五六七八九十"));
  EXPECT_EQ(f.substr(e2 + 96 + 76, 20), "dz" + std::string(18, ' '));
  // Counts follow what was written; the rows stay until the reload.
  EXPECT_EQ(d.PointCount, 2);
  EXPECT_EQ(d.EntityCount, 3);
  EXPECT_EQ(d.DeletedPointCount, 0);
  EXPECT_EQ(d.DeletedEntityCount, 0);
  EXPECT_EQ(wf.Check(), WorkFiles::CrashState::None);
}

TEST_F(DocFileTest, SaveThenLoadRoundTripsAndKeepsOneOldGeneration) {
  Document d = Named("rt");
  d.StationName = "S1";
  d.StationE = 100, d.StationN = 100, d.BacksightE = 200, d.BacksightN = 200;
  AddPoint(d, view, wf, 281000.123456789, 2751000.987654321, -9999);
  AddEntity(d, view, wf, 99, 281000.123456789, 2751000.987654321, 5.5, "界樁 7");
  ASSERT_TRUE(SaveDocument(d, wf, dialogs));
  std::string first = ReadBytes(d.SpcPath);
  AddPoint(d, view, wf, 281010, 2751010, 1);
  ASSERT_TRUE(SaveDocument(d, wf, dialogs));
  EXPECT_EQ(ReadBytes(d.OldPath), first);

  Document r = Named(d.DocumentName, false);
  ASSERT_TRUE(LoadDocument(r, dialogs));
  ASSERT_EQ(r.PointCount, 2);
  EXPECT_EQ(r.PointTable[0].E, 281000.123456789);
  EXPECT_EQ(r.PointTable[0].H, -9999);
  EXPECT_EQ(r.PointTable[1].Number, 2);
  ASSERT_EQ(r.EntityCount, 1);
  EXPECT_EQ(r.EntityTable[0].Name, "界樁 7");
  EXPECT_EQ(r.EntityTable[0].Z[0], 5.5);
  EXPECT_EQ(r.StationSet, kTrue);
  EXPECT_NEAR(r.BacksightAzimuth, 3.14159265358979 / 4, 1e-12);
  EXPECT_EQ(r.MapChanged, kFalse);
  EXPECT_EQ(r.FileVersion, "7321153");
}

TEST_F(DocFileTest, LoadFiltersPointsAndEntitiesAndDerivesTheSplitValues) {
  SpcFile f;
  f.counts[0] = 4;
  f.AddPoint(10, 20, 1).AddPoint(0, 20, 1).AddPoint(10, 0, 1).AddPoint(11, 21, 2);
  f.counts[1] = 9;
  f.AddEntity(0, 21, {1, 1, 0, 2, 2, 0}, "code0");
  f.AddEntity(1000, 21, {1, 1, 0, 2, 2, 0}, "code1000");
  f.AddEntity(5, 0, {1, 1, 0, 2, 2, 0}, "kind0");
  f.AddEntity(266, 21, {0, 0, 0, 10, 0, 0}, "  edge1  ");
  f.AddEntity(266, 21, {10, 0, 0, 10, 10, 0}, "edge2");
  f.AddEntity(267, 21, {5, -1, 0, 5, 11, 0}, "");
  f.AddEntity(267, 11, {3, 4, 0}, "123.5㎡");
  f.AddEntity(301, 21, {7, 7, 1, 7, 7, 2}, "flat");  // same E, N: deleted on load
  f.AddEntity(99, 11, {0, 0, 0}, "origin");          // Kind 11 at 0, 0: deleted too
  Document d = Load(f.Bytes());
  ASSERT_EQ(d.PointCount, 2);
  EXPECT_EQ(d.PointTable[0].Number, 1);
  EXPECT_EQ(d.PointTable[1].Number, 4);  // ordinal in the file, not row + 1
  ASSERT_EQ(d.EntityCount, 6);
  EXPECT_EQ(d.EntityTable[0].Name, "edge1");
  EXPECT_EQ(d.EntityTable[0].Number, 1);
  EXPECT_EQ(d.EntityTable[5].Number, 6);
  EXPECT_EQ(d.DeletedEntityCount, 2);
  EXPECT_EQ(d.EntityTable[4].Deleted, kTrue);
  EXPECT_EQ(d.EntityTable[5].Deleted, kTrue);
  EXPECT_EQ(d.MapChanged, kTrue);
  ASSERT_EQ(d.SplitBoundaryEdges[0].size(), 2u);
  EXPECT_EQ(d.SplitBoundaryEdges[2][1], 10);
  EXPECT_EQ(d.SplitBoundaryEdges[3][1], 10);
  ASSERT_EQ(d.SplitBoundaryVertices[0].size(), 3u);
  EXPECT_EQ(d.SplitBoundaryVertices[0][2], 10);
  EXPECT_EQ(d.SplitBoundaryVertices[1][2], 10);
  EXPECT_EQ(d.SplitLine[3], 11);
  EXPECT_EQ(d.SplitLineLabelled[1], -1);
  EXPECT_EQ(d.SplitAreaValue, 123.5);
  EXPECT_EQ(d.SplitAreaAt[0], 3);
}

// The version decides the split stakes and the base-map record size; the reference
// counts come only with the reference-map flag.
TEST_F(DocFileTest, VersionDecidesSplitStakesAndBaseMapRecordSize) {
  struct Case {
    const char* version;
    bool stakesCopied;
    bool oldBaseMap;
    int16_t refLoaded = 0;
  } cases[] = {
      {"7321153", true, false, -1}, {"7321152", true, false},  {"7321151", false, false},
      {"7221081", false, false},    {"7221080", false, true},  {"TAVIK722", false, true},
      {"garbage", false, true},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.version);
    SpcFile f;
    f.version = c.version;
    f.splitStakes = 7;
    f.refLoaded = c.refLoaded;
    f.refPoints = 3;
    f.counts[2] = 2;
    if (c.oldBaseMap) {
      f.AddOldBaseMap(4, 21, 1, 2, 3, 4, "a");
      f.AddOldBaseMap(6, 21, 5, 6, 7, 8, "b");
    } else {
      f.AddEntity(4, 21, {1, 2, 9, 3, 4, 9}, "a");
      f.AddEntity(6, 21, {5, 6, 9, 7, 8, 9}, "b");
    }
    Document before;
    before.SplitStakeCount = 1, before.ReferencePointCount = 9;
    Document d = Load(f.Bytes(), true, before);
    EXPECT_EQ(d.SplitStakeCount, c.stakesCopied ? 7 : 1);
    EXPECT_EQ(d.ReferencePointCount, c.refLoaded ? 3 : 9);
    ASSERT_EQ(d.BaseMapCount, 2);
    EXPECT_EQ(d.BaseMapTable[1].Code, 6);
    EXPECT_EQ(d.BaseMapTable[1].X[1], 7);
    EXPECT_EQ(d.BaseMapTable[1].Y[0], 6);
    EXPECT_EQ(d.BaseMapTable[1].Name, "b");
    EXPECT_EQ(d.BaseMapTable[1].Number, 2);
    EXPECT_EQ(d.BaseMapTable[0].Z[0], c.oldBaseMap ? 0 : 9);
  }
}

TEST_F(DocFileTest, PurgedEntityMakesTheLoaderRunIntoTheBaseMap) {
  // A purged entity is still counted by the header, so the reader takes one record too
  // many as an entity. Without a base map that record lies past the end and is dropped.
  for (bool withBaseMap : {false, true}) {
    SCOPED_TRACE(withBaseMap);
    Document d = Named(withBaseMap ? "pb" : "p");
    AddEntity(d, view, wf, 99, 0, 0, 0, "zero");
    AddEntity(d, view, wf, 301, KindLine, 1, 1, 0, 2, 2, 0, 0, 0, 0, "line");
    if (withBaseMap) {
      BaseMapLine b;
      b.Code = 8, b.Kind = KindLine, b.X[0] = 3, b.Y[0] = 3, b.X[1] = 4, b.Y[1] = 4;
      d.BaseMapTable.push_back(b);
      d.BaseMapCount = 1;
    }
    PurgeZeroEntities(d);
    EXPECT_EQ(d.EntityTable[0].Deleted, kTrue);
    EXPECT_EQ(d.DeletedEntityCount, 0);
    ASSERT_TRUE(SaveDocument(d, wf, dialogs));
    Document r = Named(d.DocumentName, false);
    ASSERT_TRUE(LoadDocument(r, dialogs));
    ASSERT_EQ(r.EntityCount, withBaseMap ? 2 : 1);
    EXPECT_EQ(r.EntityTable[0].Name, "line");
    if (withBaseMap) {
      EXPECT_EQ(r.EntityTable[1].Code, 8);
    }
    EXPECT_EQ(r.BaseMapCount, 0);
  }
}

TEST_F(DocFileTest, DamagedFilesAreReadAsFarAsTheyGo) {
  SpcFile good;
  good.counts[0] = 3;
  good.AddPoint(1, 1, 1).AddPoint(2, 2, 2).AddPoint(3, 3, 3);
  good.counts[1] = 2;
  good.AddEntity(301, 21, {1, 1, 0, 2, 2, 0}, "a").AddEntity(302, 21, {3, 3, 0, 4, 4, 0}, "b");
  const std::string bytes = good.Bytes();

  // Truncated inside the second point: one point; the half record has N 0 and drops.
  Document d = Load(bytes.substr(0, 224 + 24 + 12));
  EXPECT_EQ(d.PointCount, 1);
  EXPECT_EQ(d.EntityCount, 0);
  // Truncated inside the second entity's name: both entities, the name cut short.
  d = Load(bytes.substr(0, bytes.size() - 19));
  ASSERT_EQ(d.EntityCount, 2);
  EXPECT_EQ(d.EntityTable[1].Name, "b");
  // A header alone, cut short: all counts read as zero, and a file with nothing in it is
  // refused with the tables left as they were.
  Document before;
  AddPoint(before, view, wf, 5, 5, 5);
  dialogs.shown.clear();
  d = Load(bytes.substr(0, 100), false, before);
  EXPECT_EQ(d.PointCount, 1);
  ASSERT_EQ(dialogs.shown.size(), 1u);
  EXPECT_EQ(dialogs.shown[0].text, d.SpcPath + "檔案沒有內容");
  EXPECT_EQ(dialogs.shown[0].title, "讀檔動作取消");

  // Absurd counts: nothing is allocated for records the file cannot hold.
  SpcFile absurd = good;
  for (int32_t& n : absurd.counts) n = 2147483647;
  const std::string absurdBytes = absurd.Bytes();
  d = Load(absurdBytes);
  // Everything after the header is read as points (the entity bytes too), no further.
  ASSERT_GE(d.PointCount, 3);
  EXPECT_LE(d.PointCount, static_cast<int32_t>((absurdBytes.size() - 224) / 24));
  EXPECT_EQ(d.PointTable[2].E, 3);
  EXPECT_EQ(d.EntityCount, 0);  // they would lie where 2^31 points end
  EXPECT_EQ(d.BaseMapCount, 0);
  SpcFile negative = good;
  negative.counts[0] = -5;
  d = Load(negative.Bytes());
  EXPECT_EQ(d.PointCount, 0);  // and the entities are looked for right after the header
}

TEST_F(DocFileTest, RandomBytesNeverCrashTheLoader) {
  std::mt19937 rng(20261121);
  for (int round = 0; round < 200; ++round) {
    std::string junk(rng() % 3000, '\0');
    for (char& c : junk) c = static_cast<char>(rng());
    Document d = Named("junk");
    WriteBytes(d.SpcPath, junk);
    WriteBytes(d.SpPath, junk);
    LoadDocument(d, dialogs);
    EXPECT_LE(d.PointTable.size(), junk.size() / 24 + 1);
    EXPECT_LE(d.EntityTable.size(), junk.size() / 96 + 1);
    EXPECT_EQ(d.PointCount, static_cast<int32_t>(d.PointTable.size()));
    // The same bytes as an older document and as a merge source.
    Document old = Named("junk");
    ASSERT_TRUE(ReadOldDocument(old, dialogs));
    EXPECT_LE(old.PointTable.size(), junk.size() / 24 + 1);
    EXPECT_LE(old.EntityTable.size() + old.BaseMapTable.size(), junk.size() / 108 + 1);
    if (round % 8 == 0) {  // a merge rewrites the journals, flushed: fewer rounds
      Document merged = Named("open");
      MergeDocumentRecords(merged, wf, d.SpcPath, dialogs);
      EXPECT_LE(merged.PointTable.size(), junk.size() / 24 + 1);
    }
  }
}

TEST_F(DocFileTest, FailedSaveKeepsThePreviousFileAndTheTables) {
  Document d = Named("keep");
  AddPoint(d, view, wf, 1, 1, 1);
  ASSERT_TRUE(SaveDocument(d, wf, dialogs));
  const std::string before = ReadBytes(d.SpcPath);
  AddPoint(d, view, wf, 2, 2, 2);
  // The new file cannot be made: a folder stands where it would be written.
  std::filesystem::create_directory(d.SpcPath + "~new");
  EXPECT_FALSE(SaveDocument(d, wf, dialogs));
  EXPECT_EQ(ReadBytes(d.SpcPath), before);
  EXPECT_EQ(d.PointCount, 2);
  EXPECT_EQ(ReadBytes(wf.Paths().TempP0()), "2,2,2,2,#FALSE#\r\n");  // the journal stays
  ASSERT_FALSE(dialogs.shown.empty());
  EXPECT_EQ(dialogs.shown.back().title, "存檔失敗");
  EXPECT_FALSE(std::filesystem::exists(d.OldPath));
}

TEST_F(DocFileTest, OldDocumentFormatIsRead) {
  ByteWriter f;
  f.Put<int16_t>(2).Zeros(12).Text("unused text", 14).Zeros(132 - 28).Put<int32_t>(2).Zeros(4).Put<int32_t>(3);
  f.Zeros(148 - f.bytes.size());
  f.Put(100.0).Put(200.0).Put(1.0).Put(0.0).Put(300.0).Put(2.0);
  auto item = [&](const std::string& code, int16_t kind, double x1, double y1, double x2, double y2,
                  const std::string& name) {
    f.Text(code, 6).Put(kind).Put(x1).Put(x2).Put(0.0).Put(y1).Put(y2).Put(0.0).Zeros(24);
    std::string n = name;
    n.resize(20, '\0');
    f.bytes += n;
    f.Zeros(8);
  };
  item("301", 21, 100, 200, 150, 250, std::string("ab\0zz", 5));
  item("299", 21, 50, 60, 70, 80, "bm");
  item(" 99", 11, 120, 220, 0, 0, "\"\"");
  Document d = Named("old");
  WriteBytes(d.SpPath, f.bytes);
  d.StationSet = kTrue, d.StationName = "x";
  ASSERT_TRUE(ReadOldDocument(d, dialogs));
  EXPECT_EQ(d.MapType, 2);
  EXPECT_EQ(d.StationSet, kFalse);
  EXPECT_EQ(d.StationName, "");
  ASSERT_EQ(d.PointCount, 2);
  EXPECT_EQ(d.PointTable[1].E, 0);  // nothing is filtered
  EXPECT_EQ(d.PointTable[1].Number, 2);
  ASSERT_EQ(d.EntityCount, 2);
  EXPECT_EQ(d.EntityTable[0].Code, 301);
  EXPECT_EQ(d.EntityTable[0].Name, "ab");
  EXPECT_EQ(d.EntityTable[0].X[1], 150);
  EXPECT_EQ(d.EntityTable[1].Code, 99);
  EXPECT_EQ(d.EntityTable[1].Name, "");
  ASSERT_EQ(d.BaseMapCount, 1);
  EXPECT_EQ(d.BaseMapTable[0].Code, 0);
  EXPECT_EQ(d.BaseMapTable[0].Kind, KindLine);
  EXPECT_EQ(d.BaseMapTable[0].Y[1], 80);
}

TEST_F(DocFileTest, MergeSkipsTheReferenceRowsAndAppends) {
  SpcFile f;
  f.counts[0] = 3;
  f.AddPoint(1, 1, 1).AddPoint(0, 0, 0).AddPoint(3, 3, 3);
  f.counts[1] = 2;
  f.AddEntity(301, 21, {1, 1, 0, 2, 2, 0}, "ref").AddEntity(302, 21, {3, 3, 0, 4, 4, 0}, " new ");
  f.counts[2] = 1;
  f.AddEntity(5, 21, {9, 9, 0, 8, 8, 0}, "bm");
  const std::string other = Name("other.SPC");
  WriteBytes(other, f.Bytes());

  Document d = Named("open");
  AddPoint(d, view, wf, 10, 10, 10);
  AddEntity(d, view, wf, 99, 10, 10, 10, "mine");
  d.ReferencePointCount = 1, d.ReferenceEntityCount = 1;
  ASSERT_TRUE(MergeDocumentRecords(d, wf, other, dialogs));
  ASSERT_EQ(d.PointCount, 3);  // the zero point comes along: merge looks at nothing
  EXPECT_EQ(d.PointTable[1].E, 0);
  EXPECT_EQ(d.PointTable[2].Number, 3);
  ASSERT_EQ(d.EntityCount, 2);
  EXPECT_EQ(d.EntityTable[1].Name, "new");
  EXPECT_EQ(d.EntityTable[1].Number, 2);
  EXPECT_EQ(d.BaseMapCount, 0);
  EXPECT_EQ(d.MapChanged, kTrue);

  SpcFile noEntities;
  noEntities.counts[0] = 1;
  noEntities.AddPoint(1, 1, 1);
  WriteBytes(other, noEntities.Bytes());
  EXPECT_FALSE(MergeDocumentRecords(d, wf, other, dialogs));
  EXPECT_EQ(d.PointCount, 3);
  EXPECT_EQ(dialogs.shown.back().text, d.SpcPath + "檔案沒有內容");
  EXPECT_EQ(dialogs.shown.back().title, "合併動作取消");
}

// A 200 MB document, laid out quickly by repeating one block of records: the load tells
// its progress from 0 to exactly the number of records, never backwards, and the save
// of the same tables does the same.
TEST_F(DocFileTest, LargeDocumentReportsProgressUpToItsTotal) {
  constexpr int32_t points = 1000000, entities = 1840000, block = 10000;
  SpcFile f;
  f.counts[0] = points, f.counts[1] = entities;
  ByteWriter pointBlock, entityBlock;
  for (int i = 0; i < block; ++i) pointBlock.Put(280000.0 + i).Put(2750000.0).Put(1.0);
  SpcFile e;
  for (int i = 0; i < block; ++i) e.AddEntity(301, KindLine, {280000.0 + i, 2750000.0, 0, 280001.0 + i, 2750001.0}, "");
  const std::string path = Name("big.SPC");
  {
    std::ofstream out(path, std::ios::binary);
    out << f.Bytes();
    for (int i = 0; i < points / block; ++i) out << pointBlock.bytes;
    for (int i = 0; i < entities / block; ++i) out << e.body.bytes;
  }
  ASSERT_GT(std::filesystem::file_size(path), 200u * 1000 * 1000);

  struct Seen {
    int64_t last = -1, total = -1, calls = 0;
    bool backwards = false;
  };
  auto sink = [](Seen& s) {
    return [&s](int64_t done, int64_t total) {
      s.backwards = s.backwards || done < s.last || (s.total >= 0 && total != s.total);
      s.last = done, s.total = total, ++s.calls;
    };
  };
  Document d;
  SetDocumentName(d, Name("big"));
  d.SpcPath = path;
  Seen load;
  ASSERT_TRUE(LoadDocument(d, dialogs, sink(load)));
  EXPECT_EQ(d.PointCount, points);
  EXPECT_EQ(d.EntityCount, entities);
  EXPECT_EQ(load.total, points + entities);
  EXPECT_EQ(load.last, load.total);
  EXPECT_FALSE(load.backwards);
  EXPECT_GT(load.calls, 100);  // often enough for the bar to move

  Seen save;
  ASSERT_TRUE(WriteDocumentFile(d, dialogs, sink(save)));
  EXPECT_EQ(save.last, points + entities);
  EXPECT_EQ(save.total, save.last);
  EXPECT_FALSE(save.backwards);
}

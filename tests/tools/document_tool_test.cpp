// tavik-tool info, dump and convert, run as a separate process on files made here.
#include <gtest/gtest.h>

#include <sys/wait.h>

#include <cstdlib>
#include <string>

#include "core/docfile.h"
#include "core/numbers.h"
#include "core/tables.h"
#include "core/temp_home.h"
#include "platform/scripted/scripted.h"
#include "tests/tools/tool_run.h"

using namespace tavik;
using tavik::testing::ByteWriter;
using tavik::testing::ReadBytes;
using tavik::testing::RunTool;
using tavik::testing::ToolRun;
using tavik::testing::TempHome;
using tavik::testing::WriteBytes;

namespace {

class ToolTest : public ::testing::Test {
 protected:
  TempHome home;

  ToolRun Tool(const std::string& args) { return RunTool(home.path, args); }
  std::string Quoted(const std::string& name) const { return "'" + (home.path / name).string() + "'"; }

  // A small document saved by the program's own save.
  std::string MakeSpc() { return MakeSpc(AppPaths{home.path}, home.path / "small"); }
  std::string MakeSpc(const AppPaths& paths, const std::filesystem::path& name) {
    WorkFiles wf(paths);
    View view;
    Document d;
    SetDocumentName(d, name.string());
    d.StationName = "站A";
    d.ScaleDenominator = 250;
    AddPoint(d, view, wf, 281000.12345678901, 2751000.1, 0.1 + 0.2);
    AddPoint(d, view, wf, 281001, 2751001, -9999);
    AddEntity(d, view, wf, 99, 281000.12345678901, 2751000.1, 0.3, "界 \"1\"");
    AddEntity(d, view, wf, 301, KindLine, 1, 2, 3, 4, 5, 6, 0, 0, 0, "L");
    ui::ScriptedDialogs dialogs;
    EXPECT_TRUE(SaveDocument(d, wf, dialogs));
    return d.SpcPath;
  }
};

std::string Line(const std::string& text, const std::string& name) {
  auto at = text.find("\n" + name + ": ");
  if (at == std::string::npos) return "(missing)";
  at += name.size() + 3;
  return text.substr(at, text.find('\n', at) - at);
}

}  // namespace

TEST_F(ToolTest, InfoListsHeaderValuesAndKeptCounts) {
  std::string spc = MakeSpc();
  ToolRun r = Tool("info '" + spc + "'");
  ASSERT_EQ(r.exit, 0) << r.err;
  EXPECT_EQ(r.out.substr(0, r.out.find('\n')), "FileVersion: 7321153");
  EXPECT_EQ(Line(r.out, "StationName"), "站A");
  EXPECT_EQ(Line(r.out, "ScaleDenominator"), "250");
  EXPECT_EQ(Line(r.out, "ReferenceMapLoaded"), "0");
  EXPECT_EQ(Line(r.out, "points"), "2");
  EXPECT_EQ(Line(r.out, "entities"), "2");
  EXPECT_EQ(Line(r.out, "basemap"), "0");
  // 24 header values and three counts.
  EXPECT_EQ(std::count(r.out.begin(), r.out.end(), '\n'), 27);
}

// A document saved where a new user's file dialog starts is read by the tool too.
TEST_F(ToolTest, InfoReadsADocumentInTheDefaultWorkFolder) {
  const char* vars[] = {"HOME", "TAVIK_HOME", "XDG_DATA_HOME"};
  std::string saved[3];
  bool had[3];
  for (int i = 0; i < 3; ++i) {
    const char* v = std::getenv(vars[i]);
    had[i] = v != nullptr;
    if (v) saved[i] = v;
    ::unsetenv(vars[i]);
  }
  ::setenv("HOME", home.path.c_str(), 1);
  AppPaths paths = AppPaths::FromEnvironment();
  for (int i = 0; i < 3; ++i) had[i] ? ::setenv(vars[i], saved[i].c_str(), 1) : ::unsetenv(vars[i]);
  ASSERT_TRUE(paths.EnsureFolders());
  const std::string spc = MakeSpc(paths, paths.WorkFolder() / "site");
  EXPECT_EQ(spc, (home.path / "TAVIK" / "工作目錄" / "site.SPC").string());
  ToolRun r = Tool("info '" + spc + "'");
  ASSERT_EQ(r.exit, 0) << r.err;
  EXPECT_EQ(Line(r.out, "points"), "2");
}

TEST_F(ToolTest, DumpPrintsDoublesThatReadBackIdentical) {
  std::string spc = MakeSpc();
  ToolRun r = Tool("dump '" + spc + "'");
  ASSERT_EQ(r.exit, 0) << r.err;
  const std::string first = "{\"Number\":1,\"E\":";
  auto at = r.out.find(first);
  ASSERT_NE(at, std::string::npos) << r.out;
  // E, N, H as printed read back to the very doubles that were saved.
  const char* p = r.out.c_str() + at + first.size();
  char* end = nullptr;
  EXPECT_EQ(std::strtod(p, &end), 281000.12345678901);
  ASSERT_EQ(std::string(end, 5), ",\"N\":");
  EXPECT_EQ(std::strtod(end + 5, &end), 2751000.1);
  ASSERT_EQ(std::string(end, 5), ",\"H\":");
  EXPECT_EQ(std::strtod(end + 5, &end), 0.1 + 0.2);
  EXPECT_NE(r.out.find("\"Code\":301,\"Kind\":21,\"X\":[1,4,0],\"Y\":[2,5,0],\"Z\":[3,6,0],\"Name\":\"L\","
                       "\"Deleted\":false}"),
            std::string::npos);
  EXPECT_NE(r.out.find("\"Name\":\"界 \\\"1\\\"\""), std::string::npos);
  EXPECT_NE(r.out.find("\"StationName\": \"站A\""), std::string::npos);
  EXPECT_NE(r.out.find("\"basemap\": [\n]"), std::string::npos);
}

TEST_F(ToolTest, ConvertSavesAnOlderDocumentInTheCurrentFormat) {
  ByteWriter f;
  f.Put<int16_t>(1).Zeros(130).Put<int32_t>(1).Zeros(4).Put<int32_t>(2).Zeros(4);
  f.Put(281000.5).Put(2751000.5).Put(12.0);
  auto item = [&](const std::string& code, int16_t kind, double x1, double y1, double x2, double y2) {
    f.Text(code, 6).Put(kind).Put(x1).Put(x2).Put(0.0).Put(y1).Put(y2).Put(0.0).Zeros(24).Text("n", 20).Zeros(8);
  };
  item("301", 21, 281000, 2751000, 281010, 2751010);
  item("299", 21, 281020, 2751020, 281030, 2751030);
  WriteBytes(home.path / "old.SP", f.bytes);

  ToolRun d = Tool("dump " + Quoted("old.SP"));
  ASSERT_EQ(d.exit, 0) << d.err;
  EXPECT_NE(d.out.find("\"E\":281000.5"), std::string::npos);

  ToolRun c = Tool("convert " + Quoted("old.SP") + " " + Quoted("new.SPC"));
  ASSERT_EQ(c.exit, 0) << c.err;
  ToolRun i = Tool("info " + Quoted("new.SPC"));
  ASSERT_EQ(i.exit, 0) << i.err;
  EXPECT_EQ(Line(i.out, "points"), "1");
  EXPECT_EQ(Line(i.out, "entities"), "1");
  EXPECT_EQ(Line(i.out, "basemap"), "1");
  EXPECT_EQ(Line(i.out, "MinE"), "281000");
  EXPECT_EQ(Line(i.out, "MaxN"), "2751030");
  // The converted document loads in the program with the same records.
  ToolRun j = Tool("dump " + Quoted("new.SPC"));
  EXPECT_NE(j.out.find("\"X\":[281020,281030,0]"), std::string::npos);
}

TEST_F(ToolTest, RefusedOrUnreadableFilesGiveOneLineAndExitOne) {
  ByteWriter empty;
  empty.Text("7321153", 8).Zeros(216);
  WriteBytes(home.path / "empty.SPC", empty.bytes);
  WriteBytes(home.path / "notes.txt", "hello");
  struct Case {
    std::string args, mentions;
  } cases[] = {
      {"info " + Quoted("empty.SPC"), "檔案沒有內容"},
      {"dump " + Quoted("missing.SPC"), "missing.SPC"},
      {"info " + Quoted("notes.txt"), "notes.txt"},
      {"convert " + Quoted("empty.SPC") + " " + Quoted("x.SPC"), "empty.SPC"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.args);
    ToolRun r = Tool(c.args);
    EXPECT_EQ(r.exit, 1);
    EXPECT_EQ(r.out, "");
    EXPECT_EQ(std::count(r.err.begin(), r.err.end(), '\n'), 1) << r.err;
    EXPECT_NE(r.err.find(c.mentions), std::string::npos) << r.err;
  }
}

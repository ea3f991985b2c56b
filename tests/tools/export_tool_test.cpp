// tavik-tool tables and report on a fresh machine: no data folder, a document made by
// the program's own save, the files read back by independent readers.
#include <gtest/gtest.h>

#include <sys/wait.h>

#include <algorithm>
#include <cstdlib>
#include <string>

#include "core/docfile.h"
#include "core/tables.h"
#include "core/temp_home.h"
#include "platform/scripted/scripted.h"

using namespace tavik;
using tavik::testing::ReadBytes;
using tavik::testing::TempHome;

namespace {

class ExportToolTest : public ::testing::Test {
 protected:
  TempHome home;

  // Runs the tool with a home that has never seen the program.
  int Tool(const std::string& args, std::string* out = nullptr, std::string* err = nullptr) {
    const std::string o = (home.path / "stdout").string(), e = (home.path / "stderr").string();
    const std::string cmd = "cd '" + home.path.string() + "' && env -u TAVIK_HOME HOME='" +
                            (home.path / "fresh").string() + "' XDG_DATA_HOME= " + TAVIK_BIN_DIR +
                            "/tools/tavik-tool " + args + " >'" + o + "' 2>'" + e + "'";
    const int status = std::system(cmd.c_str());
    if (out) *out = ReadBytes(o);
    if (err) *err = ReadBytes(e);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }

  std::string MakeSpc() {
    AppPaths paths(home.path / "work");
    paths.EnsureFolders();
    WorkFiles wf(paths);
    View view;
    Document d;
    SetDocumentName(d, (home.path / "東區").string());
    AddPoint(d, view, wf, 281000, 2751000, 10.5);
    AddEntity(d, view, wf, 113, 281000.5, 2751000.25, 10.5, "導1");
    AddEntity(d, view, wf, 605, 281001, 2751001, 0, "電桿");
    AddEntity(d, view, wf, 301, KindLine, 281000, 2751000, 0, 281003, 2751004, 0, 0, 0, 0, "");
    ui::ScriptedDialogs dialogs;
    EXPECT_TRUE(SaveDocument(d, wf, dialogs));
    return d.SpcPath;
  }
};

std::string Cp950File(const std::filesystem::path& p) {
  std::string cmd = "/usr/bin/python3 -c \"import sys; sys.stdout.write(open(sys.argv[1], encoding='cp950', "
                    "newline='').read().replace(chr(13), ''))\" '" + p.string() + "'";
  std::string out;
  if (FILE* f = ::popen(cmd.c_str(), "r")) {
    char buf[4096];
    for (std::size_t n; (n = std::fread(buf, 1, sizeof buf, f)) > 0;) out.append(buf, n);
    ::pclose(f);
  }
  return out;
}

}  // namespace

TEST_F(ExportToolTest, TablesIntoTheNamedFolderOrTheCurrentOne) {
  const std::string spc = MakeSpc();
  std::string out, err;
  // A folder that isn't there: the message as one line, exit 1, nothing written.
  EXPECT_EQ(Tool("tables '" + spc + "' out", &out, &err), 1);
  EXPECT_EQ(std::count(err.begin(), err.end(), '\n'), 1) << err;
  EXPECT_NE(err.find("[控制點樁位表.CSV]"), std::string::npos) << err;

  std::filesystem::create_directory(home.path / "out");
  ASSERT_EQ(Tool("tables '" + spc + "' out", &out, &err), 0) << err;
  EXPECT_EQ(out, "[控制點樁位表.CSV] 檔輸出OK!! 總共1支樁\n[分類樁位表.CSV] 輸出完成!! 總共1支樁\n");
  const std::string points = Cp950File(home.path / "out" / "控制點樁位表.CSV");
  EXPECT_EQ(points.substr(0, points.find('"')), "點名,橫座標E,縱座標N,高程H,樁標種類\n導1,281000.5,2751000.25,10.5,");
  EXPECT_NE(Cp950File(home.path / "out" / "分類樁位表.CSV").find("電桿,281001,2751001,0,\"電力桿"), std::string::npos);

  ASSERT_EQ(Tool("tables '" + spc + "'"), 0);
  EXPECT_EQ(Cp950File(home.path / "控制點樁位表.CSV"), points);
}

TEST_F(ExportToolTest, ReportToStandardOutputOrAFile) {
  const std::string spc = MakeSpc();
  std::string out, err;
  ASSERT_EQ(Tool("report '" + spc + "'", &out, &err), 0) << err;
  EXPECT_NE(out.find("測點: 1 點"), std::string::npos) << out;
  EXPECT_NE(out.find("301   建物_房屋_牆壁         0       1     0     0         5.000"), std::string::npos) << out;

  ASSERT_EQ(Tool("report '" + spc + "' r.TXT", &out, &err), 0) << err;
  EXPECT_EQ(out, "");
  const std::string file = Cp950File(home.path / "r.TXT");
  EXPECT_NE(file.find("導1"), std::string::npos) << file;
  EXPECT_NE(file.find("281000.500"), std::string::npos) << file;

  EXPECT_EQ(Tool("report '" + (home.path / "none.SPC").string() + "'", &out, &err), 1);
  EXPECT_EQ(std::count(err.begin(), err.end(), '\n'), 1) << err;
  EXPECT_EQ(Tool("report", &out, &err), 2);
}

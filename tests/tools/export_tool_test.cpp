// tavik-tool tables and report on a fresh machine: no data folder, a document made by
// the program's own save, the files read back by Python in code page 950.
#include <gtest/gtest.h>

#include <sys/wait.h>

#include <algorithm>
#include <cstdlib>
#include <string>

#include "core/docfile.h"
#include "core/tables.h"
#include "core/temp_home.h"
#include "export/peer.h"
#include "platform/scripted/scripted.h"

using namespace tavik;
using tavik::testing::ReadBytes;
using tavik::testing::RunPeer;
using tavik::testing::TempHome;

TEST(ExportTool, TablesAndReportOfASavedDocument) {
  TempHome home;
  AppPaths paths(home.path / "work");
  paths.EnsureFolders();
  WorkFiles wf(paths);
  View view;
  Document d;
  SetDocumentName(d, (home.path / "東區").string());
  AddEntity(d, view, wf, 113, 281000.5, 2751000.25, 10.5, "導1");
  AddEntity(d, view, wf, 605, 281001, 2751001, 0, "電桿");
  AddEntity(d, view, wf, 301, KindLine, 281000, 2751000, 0, 281003, 2751004, 0, 0, 0, 0, "");
  ui::ScriptedDialogs dialogs;
  ASSERT_TRUE(SaveDocument(d, wf, dialogs));
  const std::string spc = "'" + d.SpcPath + "'";

  std::string out, err;
  auto tool = [&](const std::string& args) {
    const std::string o = (home.path / "stdout").string(), e = (home.path / "stderr").string();
    const int status = std::system(("cd '" + home.path.string() + "' && env -u TAVIK_HOME HOME='" +
                                    (home.path / "fresh").string() + "' XDG_DATA_HOME= " + TAVIK_BIN_DIR +
                                    "/tools/tavik-tool " + args + " >'" + o + "' 2>'" + e + "'")
                                       .c_str());
    out = ReadBytes(o);
    err = ReadBytes(e);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  };
  auto cp950 = [](const std::filesystem::path& p) {
    return RunPeer("/usr/bin/python3 -c \"import sys; sys.stdout.write(open(sys.argv[1], encoding='cp950', "
                   "newline='').read().replace(chr(13), ''))\" '" + p.string() + "'");
  };

  // A folder that isn't there: the message as one line, exit 1.
  EXPECT_EQ(tool("tables " + spc + " out"), 1);
  EXPECT_EQ(std::count(err.begin(), err.end(), '\n'), 1) << err;
  std::filesystem::create_directory(home.path / "out");
  ASSERT_EQ(tool("tables " + spc + " out"), 0) << err;
  EXPECT_EQ(out, "[控制點樁位表.CSV] 檔輸出OK!! 總共1支樁\n[分類樁位表.CSV] 輸出完成!! 總共1支樁\n");
  const std::string points = cp950(home.path / "out" / "控制點樁位表.CSV");
  EXPECT_EQ(points.substr(0, points.find('"')), "點名,橫座標E,縱座標N,高程H,樁標種類\n導1,281000.5,2751000.25,10.5,");
  EXPECT_NE(cp950(home.path / "out" / "分類樁位表.CSV").find("電桿,281001,2751001,0,\"電力桿"), std::string::npos);
  ASSERT_EQ(tool("tables " + spc), 0);  // the current folder
  EXPECT_EQ(cp950(home.path / "控制點樁位表.CSV"), points);

  ASSERT_EQ(tool("report " + spc), 0) << err;
  EXPECT_NE(out.find("301   建物_房屋_牆壁         0       1     0     0         5.000\n"), std::string::npos) << out;
  ASSERT_EQ(tool("report " + spc + " r.TXT"), 0) << err;
  EXPECT_NE(cp950(home.path / "r.TXT").find("導1                     281000.500"), std::string::npos);
  EXPECT_EQ(tool("report '" + (home.path / "none.SPC").string() + "'"), 1);
  EXPECT_EQ(std::count(err.begin(), err.end(), '\n'), 1) << err;
}

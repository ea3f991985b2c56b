// tavik-tool dxf on a fresh machine: the sample map (every symbol code, every line
// code, curves and special points) exported with the shipped symbol library and read by
// ezdxf, the options as the dialog has them, and the refusals.
#include <gtest/gtest.h>

#include <sys/wait.h>

#include <algorithm>
#include <cstdlib>
#include <string>

#include "core/docfile.h"
#include "core/temp_home.h"
#include "platform/scripted/scripted.h"
#include "view/sample_document.h"

using namespace tavik;
using tavik::testing::ReadBytes;
using tavik::testing::TempHome;

namespace {

class DxfToolTest : public ::testing::Test {
 protected:
  TempHome home;
  std::string spc;

  void SetUp() override {
    AppPaths paths(home.path / "work");
    paths.EnsureFolders();
    WorkFiles wf(paths);
    View view;
    Document d;
    SetDocumentName(d, (home.path / "sample").string());
    view::FillSampleDocument(d, view, wf);
    ui::ScriptedDialogs dialogs;
    ASSERT_TRUE(SaveDocument(d, wf, dialogs));
    spc = d.SpcPath;
  }

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

  // ezdxf's view of a drawing: the INSERTs naming no defined block, the texts on the
  // frame, the spot heights by type, and $LTSCALE.
  std::string Ezdxf(const std::string& dxf) {
    const std::string cmd =
        "/usr/bin/python3 -c '"
        "import sys, ezdxf\n"
        "d = ezdxf.readfile(sys.argv[1], encoding=\"cp950\")\n"
        "m = d.modelspace()\n"
        "print(\"undefined\", sorted({e.dxf.name for e in m.query(\"INSERT\") if e.dxf.name not in d.blocks}))\n"
        "print(\"frame texts\", len(m.query(\"TEXT[layer==\\\"圖框\\\"]\")) > 0)\n"
        "print(\"spot\", sorted({e.dxftype() for e in m if e.dxf.layer == \"獨立高程點\"}))\n"
        "print(\"ltscale\", d.header[\"$LTSCALE\"])\n"
        "' '" + (home.path / dxf).string() + "' 2>&1";
    std::string out;
    if (FILE* f = ::popen(cmd.c_str(), "r")) {
      char buf[4096];
      for (std::size_t n; (n = std::fread(buf, 1, sizeof buf, f)) > 0;) out.append(buf, n);
      ::pclose(f);
    }
    return out;
  }
};

}  // namespace

TEST_F(DxfToolTest, SampleMapWithTheShippedLibraryAndTheOptions) {
  std::string out, err;
  ASSERT_EQ(Tool("dxf '" + spc + "' out.DXF", &out, &err), 0) << err;
  EXPECT_EQ(out, "1/1000 DXF檔輸出完成\n");
  EXPECT_EQ(err, "");  // no library file missing
  EXPECT_EQ(Ezdxf("out.DXF"), "undefined []\nframe texts True\nspot ['INSERT', 'TEXT']\nltscale 10.0\n");
  // LibreCAD prints it: the drawing must cover a fair part of the page, not vanish (a
  // reader that misjudges the release of the file draws nothing).
  const std::string pdf = (home.path / "out.pdf").string(), pgm = (home.path / "page").string();
  ASSERT_EQ(std::system(("cd '" + home.path.string() + "' && HOME='" + home.path.string() +
                         "' XDG_RUNTIME_DIR='" + home.path.string() + "' QT_QPA_PLATFORM=offscreen librecad dxf2pdf -a "
                         "-o out.pdf out.DXF >/dev/null 2>&1 && pdftoppm -gray -r 20 -singlefile out.pdf '" + pgm + "'")
                            .c_str()),
            0);
  const std::string page = ReadBytes(pgm + ".pgm");
  std::size_t header = 0;
  for (int fields = 0; fields < 3 && header < page.size(); ++header)
    if (page[header] == '\n') ++fields;  // "P5", "W H", "255", then the pixels
  const auto inked = std::count_if(page.begin() + static_cast<long>(std::min(header, page.size())), page.end(),
                                   [](char c) { return static_cast<unsigned char>(c) < 128; });
  EXPECT_GT(inked, 500) << "of " << page.size() - header << " pixels";
  if (const char* keep = std::getenv("TAVIK_KEEP_DXF")) std::filesystem::copy_file(home.path / "out.DXF", keep,
                                                                                   std::filesystem::copy_options::overwrite_existing);

  ASSERT_EQ(Tool("dxf '" + spc + "' opt.DXF --scale 500 --point-as point --height-decimals 3 --grid frame "
                 "--grid-labels off --area-unit ha", &out, &err), 0) << err;
  EXPECT_EQ(out, "1/500 DXF檔輸出完成\n");
  EXPECT_EQ(Ezdxf("opt.DXF"), "undefined []\nframe texts False\nspot ['POINT', 'TEXT']\nltscale 5.0\n");
}

TEST_F(DxfToolTest, RefusalsAndUsage) {
  std::string out, err;
  EXPECT_EQ(Tool("dxf '" + spc + "' out.DXF --scale 0.001", &out, &err), 1);
  EXPECT_EQ(err, "比例尺太大,以致方格數超過32767, 請改變比例尺後再試.\n");
  EXPECT_FALSE(std::filesystem::exists(home.path / "out.DXF"));
  for (const char* bad : {"", " out.DXF --grid half", " out.DXF --scale", " out.DXF --scale -5", " a b c"})
    EXPECT_EQ(Tool("dxf '" + spc + "'" + bad), 2) << bad;
}

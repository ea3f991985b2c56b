// The sample document rendered through tavik-tool render and compared with the
// reviewed reference picture, pixel by pixel with a small tolerance so that a font
// hinting difference does not fail it while a moved or missing symbol does.
#include <QGuiApplication>
#include <QImage>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include "core/app_paths.h"
#include "core/temp_home.h"
#include "platform/scripted/scripted.h"
#include "sample_document.h"

namespace tavik::view {
namespace {

const std::string kTool = std::string(TAVIK_BIN_DIR) + "/tools/tavik-tool";
const std::string kReference = std::string(TAVIK_TEST_DATA) + "/view/sample_render.png";

int RunTool(const std::string& command) {
  const int status = std::system((command + " 2>/dev/null").c_str());
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

class RenderReference : public ::testing::Test {
 protected:
  testing::TempHome home;
  std::string spc;
  void SetUp() override {
    AppPaths paths{home.path};
    WorkFiles wf{paths};
    Document d;
    View view;
    SetDocumentName(d, (home.path / "sample").string());
    FillSampleDocument(d, view, wf);
    ui::ScriptedDialogs dialogs;
    ASSERT_TRUE(SaveDocument(d, wf, dialogs));
    spc = d.SpcPath;
  }
};

TEST_F(RenderReference, SampleMatchesTheReviewedPicture) {
  const std::string out = (home.path / "out.png").string();
  ASSERT_EQ(RunTool(kTool + " render " + spc + " " + out), 0);
  QImage got(QString::fromStdString(out));
  ASSERT_EQ(got.width(), 1600);
  ASSERT_EQ(got.height(), 1200);
  if (std::getenv("TAVIK_WRITE_REFERENCE")) {
    ASSERT_TRUE(got.save(QString::fromStdString(kReference)));
    GTEST_SKIP() << "reference written to " << kReference;
  }
  QImage want(QString::fromStdString(kReference));
  ASSERT_FALSE(want.isNull()) << kReference;
  ASSERT_EQ(want.size(), got.size());
  long differing = 0, inked = 0;
  for (int y = 0; y < got.height(); ++y)
    for (int x = 0; x < got.width(); ++x) {
      const QRgb a = got.pixel(x, y), b = want.pixel(x, y);
      if (b != qRgb(255, 255, 255)) ++inked;
      if (std::abs(qRed(a) - qRed(b)) > 48 || std::abs(qGreen(a) - qGreen(b)) > 48 || std::abs(qBlue(a) - qBlue(b)) > 48)
        ++differing;
    }
  EXPECT_GT(inked, 20000);                // the picture isn't blank
  EXPECT_LT(differing, inked / 100 + 50);  // under 1% of the drawn pixels moved
}

TEST_F(RenderReference, ScaleCentreAndSizeOptions) {
  auto ink = [&](const std::string& options) {
    const std::string out = (home.path / "zoom.png").string();
    EXPECT_EQ(RunTool(kTool + " render " + spc + " " + out + " " + options), 0) << options;
    QImage got(QString::fromStdString(out));
    EXPECT_EQ(got.width(), 400);
    EXPECT_EQ(got.height(), 300);
    int n = 0;
    for (int y = 0; y < got.height(); ++y)
      for (int x = 0; x < got.width(); ++x) n += got.pixel(x, y) != qRgb(255, 255, 255);
    return n;
  };
  // Over the symbols at 1 : 100 there is plenty to see; far from the survey, only the
  // scale bar and its label.
  const int near = ink("--size 400x300 --scale 100 --centre 280020,2749990");
  const int far = ink("--size 400x300 --scale 100 --centre 280020,2760000");
  EXPECT_GT(near, 250);
  EXPECT_LT(far, 150);
  EXPECT_GT(far, 20);
}

TEST_F(RenderReference, BadArgumentsAndFiles) {
  const std::string out = (home.path / "x.png").string();
  struct Case {
    std::string args;
    int code;
  } cases[] = {
      {"render", 2},
      {"render " + spc, 2},
      {"render " + spc + " " + out + " --size 0x5", 2},
      {"render " + spc + " " + out + " --size 40", 2},
      {"render " + spc + " " + out + " --scale abc", 2},
      {"render " + spc + " " + out + " --centre 5", 2},
      {"render " + spc + " " + out + " --bogus", 2},
      {"render " + (home.path / "missing.SPC").string() + " " + out, 1},
      {"render " + spc + " /nonexistent-folder/x.png", 1},
  };
  for (const Case& c : cases) EXPECT_EQ(RunTool(kTool + " " + c.args), c.code) << c.args;
  EXPECT_FALSE(std::filesystem::exists(out));
}

}  // namespace
}  // namespace tavik::view

// The demo document holds the simulator's scene as named control points.
#include <gtest/gtest.h>

#include "core/docfile.h"
#include "core/temp_home.h"
#include "platform/scripted/scripted.h"
#include "procedures/demo_document.h"

namespace tavik {
namespace {

TEST(DemoDocument, SceneBecomesControlPoints) {
  const auto scene = ReadDemoScene(
      "# demo\r\nstation 1000.000 2000.000 50.000 1.500\norientation 30.0\n"
      "target P1 1050.000 2050.000 51.200 1.500\ntarget P2 1080.5 1990.25 49.87 1.5\n");
  ASSERT_TRUE(scene.has_value());
  ASSERT_EQ(scene->Targets.size(), 2u);
  testing::TempHome home;
  ui::ScriptedDialogs d;
  const std::string path = (home.path / "demo.SPC").string();
  ASSERT_TRUE(WriteDemoDocument(*scene, path, d));
  Document doc;
  SetDocumentName(doc, (home.path / "demo").string());
  ASSERT_TRUE(LoadDocument(doc, d));
  EXPECT_EQ(doc.MapType, 1);
  ASSERT_EQ(doc.EntityCount, 3);
  EXPECT_EQ(doc.EntityTable[0].Name, "K1");
  EXPECT_EQ(doc.EntityTable[2].Name, "P2");
  EXPECT_EQ(doc.EntityTable[2].Code, 113);
  EXPECT_EQ(doc.EntityTable[2].X[0], 1080.5);
  EXPECT_EQ(doc.EntityTable[2].Z[0], 49.87);
}

TEST(DemoDocument, BadSceneIsRefused) {
  EXPECT_FALSE(ReadDemoScene("target P1 1 2 3 4\n").has_value());
  EXPECT_FALSE(ReadDemoScene("station 1 2 x 4\n").has_value());
  EXPECT_FALSE(ReadDemoScene("station 1 2 3 4\ntarget P1 1 2\n").has_value());
}

}  // namespace
}  // namespace tavik

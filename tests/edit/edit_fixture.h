// A document, a view at 1:100 (32.5 pixels to the metre) centred on (1000, 2000), a
// screen of 1600 by 1200 pixels,
// journal in a temporary folder, scripted dialogs, a recording surface and a host that
// records what the editor asked of the window. Picks are made in world coordinates.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "core/document.h"
#include "core/tables.h"
#include "core/workfiles.h"
#include "edit/editor.h"
#include "edit/modes.h"
#include "platform/scripted/scripted.h"
#include "view/transform.h"

namespace tavik::edit {

class RecordingHost : public EditHost {
 public:
  std::vector<std::string> calls, prompts;
  std::vector<std::pair<std::string, PlugEvent>> plugged;
  std::string inquiry;
  int32_t inquiryRow = -1;
  double zoom[4] = {0, 0, 0, 0};
  Document* doc = nullptr;
  View* view = nullptr;

  void BeginPan(float, float) override { calls.push_back("BeginPan"); }
  void MovePan(float, float, float, float) override { calls.push_back("MovePan"); }
  void EndPan() override { calls.push_back("EndPan"); }
  void ZoomWindow(double E1, double N1, double E2, double N2) override {
    calls.push_back("ZoomWindow");
    zoom[0] = E1, zoom[1] = N1, zoom[2] = E2, zoom[3] = N2;
  }
  void ViewChanged() override { calls.push_back("ViewChanged"), view::ComputeView(*doc, *view); }
  void Redraw() override { calls.push_back("Redraw"); }
  void DrawEntityRow(int32_t) override {}
  void DrawPointRow(int32_t, bool) override {}
  void ViewCommand(const std::string& key) override { calls.push_back("View:" + key); }
  void SetPrompt(const std::string& p) override { prompts.push_back(p); }
  void ShowInquiry(int32_t row, const std::string& text) override { inquiryRow = row, inquiry = text; }
  void FrameCommand(const std::string& key) override { calls.push_back("Frame:" + key); }
  void Measure() override { calls.push_back("Measure"); }
  bool Plugged(const std::string& m, PlugEvent ev, double, double) override {
    plugged.emplace_back(m, ev);
    return true;
  }
  int Count(const std::string& call) const { return static_cast<int>(std::count(calls.begin(), calls.end(), call)); }
};

class EditFixture : public ::testing::Test {
 protected:
  EditFixture()
      : home(std::filesystem::temp_directory_path() /
             ("tavik_edit_" + std::to_string(::testing::UnitTest::GetInstance()->random_seed()) + "_" +
              ::testing::UnitTest::GetInstance()->current_test_info()->name())),
        work(MakePaths(home)),
        ed(doc, view, work, dialogs, surface, host) {
    work.CreateEmpty();
    SetDocumentName(doc, (home / "map").string());
    doc.ScaleDenominator = 100, doc.ViewCentreE = 1000, doc.ViewCentreN = 2000, doc.MapType = 1;
    view::SetViewportSize(view, 1600, 1200);  // 49 by 37 metres on the screen
    view::ComputeView(doc, view);
    host.doc = &doc, host.view = &view;
  }
  ~EditFixture() override {
    std::error_code ec;
    std::filesystem::remove_all(home, ec);
  }
  static AppPaths MakePaths(const std::filesystem::path& h) {
    std::filesystem::create_directories(h);
    return AppPaths{h};
  }

  // A surveyed point on the map.
  void Pt(double E, double N, double H = 0) { ASSERT_TRUE(AddPoint(doc, view, work, E, N, H)); }
  void Line(double E1, double N1, double H1, double E2, double N2, double H2, int16_t code = 301) {
    ASSERT_TRUE(AddEntity(doc, view, work, code, KindLine, E1, N1, H1, E2, N2, H2, 0, 0, 0, ""));
  }
  // Empties the point and entity tables and the dialogs' record, for the next case.
  void ClearTables() {
    doc.EntityTable.clear(), doc.EntityCount = 0, doc.ScreenEntityTable.clear(), doc.ScreenEntityCount = 0;
    doc.PointTable.clear(), doc.PointCount = 0, doc.ScreenPointTable.clear(), doc.ScreenPointCount = 0;
    dialogs.shown.clear();
  }
  void Click(double E, double N) { ed.ClickAt(LeftButton, E, N); }
  void RightClick(double E, double N) { ed.ClickAt(RightButton, E, N); }

  // Live entities of a kind.
  std::vector<Entity> Live(int16_t kind = 0) const {
    std::vector<Entity> out;
    for (const auto& e : doc.EntityTable)
      if (!e.Deleted && (kind == 0 || e.Kind == kind)) out.push_back(e);
    return out;
  }
  // A new point's place, to a tolerance.
  static void ExpectAt(const Point& p, double E, double N, double tol = 1e-9) {
    EXPECT_NEAR(p.E, E, tol);
    EXPECT_NEAR(p.N, N, tol);
  }
  // Lines of a work file.
  std::vector<std::string> JournalLines(const std::filesystem::path& file) const {
    std::ifstream in(file, std::ios::binary);
    std::vector<std::string> lines;
    std::string l;
    while (std::getline(in, l)) lines.push_back(l);
    return lines;
  }
  std::vector<std::string> Messages() const { return dialogs.Messages(); }

  std::filesystem::path home;
  Document doc;
  View view;
  WorkFiles work;
  ui::ScriptedDialogs dialogs;
  ui::RecordingSurface surface;
  RecordingHost host;
  Editor ed;
};

}  // namespace tavik::edit

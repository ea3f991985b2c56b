#include "app/program.h"

#include <QApplication>
#include <QComboBox>
#include <QFile>

#include "app/gpsinitdlg.h"
#include "app/survey_panel.h"
#include "app/survey_station.h"
#include "procedures/demo_document.h"
#include "view/document_view.h"
#include "view/screen_tables.h"
#include "view/transform.h"

Program::Program(tavik::AppPaths paths, tavik::ui::Dialogs* replacement)
    : app(paths),
      qtDialogs(&frm),
      dialogs(replacement ? *replacement : static_cast<tavik::ui::Dialogs&>(qtDialogs)),
      store(paths.Home),
      cycle(app, dialogs, store, frm, timers) {
  cycle.hooks.ComputeView = [this](tavik::Document& doc, tavik::View& view) {
    tavik::view::SetViewportSize(view, frm.Paper1()->Surface().Width(), frm.Paper1()->Surface().Height());
    tavik::view::ComputeView(doc, view, frm);
  };
  cycle.hooks.RebuildScreenTables = [](tavik::Document& doc, tavik::View& view) {
    tavik::RebuildScreenPoints(doc, view);
    tavik::RebuildScreenEntities(doc, view);
  };
  cycle.hooks.CollectSettings = [this](tavik::SoftwareIni& ini) {
    ini.FineShiftStep = frm.Combo1()->currentText().toStdString();
    ini.FineRotationStep = frm.Combo2()->currentText().toStdString();
  };
  cycle.hooks.CommandRunning = [] { return QApplication::activeModalWidget() != nullptr; };
  cycle.hooks.LoadOldDocument = [](tavik::Document& doc, tavik::View& view, tavik::ui::Dialogs& d) {
    return tavik::LoadOldDocument(doc, view, d);
  };

  auto& h = frm.handlers;
  h.New = [this] { cycle.New(); };
  h.Open = [this] { cycle.Open(); };
  h.Save = [this] { cycle.Save(); };
  h.SaveAs = [this] { cycle.SaveAs(); };
  h.Close = [this] { cycle.Close(); };
  h.OpenRecent = [this](int k) { cycle.OpenRecent(k); };
  h.ClearRecent = [this] { cycle.ClearRecent(); };
  h.Exit = [this] { return cycle.Exit(); };
  h.ShowCounts = [this] { cycle.ShowCounts(); };
  // A new size of Paper1 is a view change: the rectangles, the screen tables and the
  // picture follow it.
  h.Resized = [this] {
    if (!app.doc.IsOpen()) {
      frm.RedrawPaper();
      return;
    }
    cycle.hooks.ComputeView(app.doc, app.view);
    cycle.hooks.RebuildScreenTables(app.doc, app.view);
    frm.RedrawPaper();
    cycle.ShowCounts();
  };
  AddGpsInitCommand(frm, gpsDatum, app.ini, [] { return false; });  // no GNSS port yet
  h.Redraw = [](tavik::ui::Surface& s) { s.Clear(tavik::ui::MakeRgb(255, 255, 255)); };

  survey = std::make_unique<SurveyStation>(frm, app, dialogs, instruments.inst, instruments.link);
  survey->StartTimer10 = [this](int ms) {
    instruments.Timer10.SetInterval(ms);
    instruments.Timer10.SetEnabled(true);
  };
  instruments.ShowButtons = [this](bool cmdStop, bool recButton) {
    survey->panel()->SetEnabled("CmdSTOP", cmdStop);
    survey->panel()->SetEnabled("RecButton", recButton);
  };
  survey->MakePort = [this] { return std::make_unique<tavik::ui::QtSerialPort>(&store); };
}

Program::~Program() = default;

void Program::OpenDemo(const std::string& scenePath) {
  tavik::DemoScene scene = tavik::DefaultDemoScene();
  if (QFile f(QString::fromStdString(scenePath)); f.open(QIODevice::ReadOnly)) {
    if (auto read = tavik::ReadDemoScene(f.readAll().toStdString())) scene = *read;
  }
  const std::string path = (app.paths.WorkFolder() / "示範測量.SPC").string();
  if (!app.doc.IsOpen() && tavik::WriteDemoDocument(scene, path, dialogs)) cycle.OpenFile(path);
}

void Program::Start() {
  cycle.Startup();
  frm.SelectFineSteps(app.ini.FineShiftStep, app.ini.FineRotationStep);
  // The stored pair: only TWD97 loads its own constants (see LoadStoredDatum).
  tavik::LoadStoredDatum(gpsDatum, app.ini.GpsDatum, app.ini.CentralMeridian);
}

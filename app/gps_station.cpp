#include "app/gps_station.h"

#include <QAction>
#include <QComboBox>
#include <QMenu>
#include <QToolBar>
#include <vector>

#include "app/edit_wiring.h"
#include "app/frmreplay.h"
#include "app/gpsstackout.h"
#include "app/mainfrm.h"
#include "app/program.h"
#include "app/survey_panel.h"
#include "app/survey_station.h"
#include "core/tables.h"
#include "edit/editor.h"
#include "view/screen_tables.h"
#include "view/transform.h"

namespace {
// Dialogs live while shown and go when closed; the station forgets them at once.
template <typename T>
void ShowOwned(T*& slot, T* dlg) {
  slot = dlg;
  dlg->setAttribute(Qt::WA_DeleteOnClose);
  QObject::connect(dlg, &QObject::destroyed, [&slot] { slot = nullptr; });
  dlg->show();
  dlg->raise();
}
}  // namespace

GpsStation::GpsStation(Program& program, EditWiring& edit) : QObject(&program.frm), program_(program), edit_(edit) {
  ends.gps = &spareGps_;
  ends.panels = &sparePanels_;
  MainFrm& frm = program.frm;
  if (QMenu* mete = frm.Menu("MainMnuMete")) {
    QAction* stake = mete->addAction("GPS放樣...");
    stake->setObjectName("MainMnuGpsStackOut");
    stake->setProperty("measureMode", "GPS");
    connect(stake, &QAction::triggered, this, &GpsStation::OpenStakeOut);
    QAction* replay = mete->addAction("重播...");
    replay->setObjectName("RePlay");
    connect(replay, &QAction::triggered, this, &GpsStation::OpenRePlay);
  }
  if (auto* bar = frm.findChild<QToolBar*>("Toolbar1")) {
    QAction* key = bar->addAction("放樣");
    key->setObjectName("放樣");
    key->setProperty("measureMode", "GPS");
    key->setToolTip("GPS放樣");
    connect(key, &QAction::triggered, this, &GpsStation::OpenStakeOut);
  }
  frm.SetMeasureModeMenus(program.instruments.inst.MeasureMode);

  edit.Host().Plugs["GPSSTKOUT"] = [this](tavik::edit::PlugEvent e, double E, double N) {
    if (e != tavik::edit::PlugEvent::Press || !stakeOut_) return false;
    float x = 0, y = 0;
    tavik::WorldToPaper(program_.app.view, program_.app.doc.ScaleDenominator, E, N, x, y);
    edit_.Editor().Reset();
    stakeOut_->show();
    stakeOut_->raise();
    stakeOut_->PickTarget(x + 1, y + 1);
    return true;
  };
}

// The windows go first, while what their closing reaches (the document cycle, the map)
// is still there: a replay still open gives the surveyor's document back.
GpsStation::~GpsStation() {
  delete replay_;
  delete stakeOut_;
}

void GpsStation::ViewChanged() {
  tavik::App& app = program_.app;
  program_.cycle.hooks.ComputeView(app.doc, app.view);
  program_.cycle.hooks.RebuildScreenTables(app.doc, app.view);
  app.work.WriteRecoveryHeader(app.doc);
  program_.survey->panel()->RedrawAll();
  program_.cycle.ShowCounts();
}

// "放樣" in GPS mode: needs a document; the window stays until closed.
void GpsStation::OpenStakeOut() {
  tavik::App& app = program_.app;
  if (!app.doc.IsOpen() || stakeOut_ || program_.instruments.inst.MeasureMode != "GPS") return;
  ShowOwned(stakeOut_, new GPSstackOut(app.doc, app.view, *ends.gps, program_.dialogs, &program_.frm));
  // In the map's upper left corner, off the rover and the target in the middle.
  stakeOut_->move(program_.frm.Paper1()->mapToGlobal(QPoint(12, 12)));
  tavik::GpsStakeHooks& h = stakeOut_->Hooks();
  SurveyPanel* window = program_.survey->panel();
  h.RecordObservation = [this](double E, double N, double H) {
    return ends.RecordStake && ends.RecordStake(E, N, H);
  };
  h.AddNamedEntity = [this, window](int16_t code, double E, double N, double H, const std::string& name) {
    tavik::App& a = program_.app;
    tavik::AddEntity(a.doc, a.view, a.work, code, E, N, H, name);
    a.doc.MapChanged = tavik::kTrue;
    window->DrawSymbol(code, E, N, H, name);
    program_.cycle.ShowCounts();
  };
  h.DrawTargetMark = [this, window](double E, double N, int16_t code, const std::string& name) {
    window->SetTargetCircle(ends.gps->StakeRadius);
    window->DrawTargetMark(E, N, code, name);
  };
  h.EraseTargetMark = [window] {
    window->SetTargetCircle(0);
    window->EraseTargetMark();
  };
  h.ViewChanged = [this] { ViewChanged(); };
  stakeOut_->StartPick = [this] {
    stakeOut_->hide();
    edit_.Editor().StartCommand("GPSSTKOUT");
  };
  // A target chosen earlier stays chosen: its mark comes back with the window.
  if (!ends.gps->StakeName.empty())
    h.DrawTargetMark(ends.gps->StakeX, ends.gps->StakeY, ends.gps->StakeCode, ends.gps->StakeName);
}

void GpsStation::StakeRefresh() {
  if (stakeOut_) stakeOut_->StakeRefresh();
}

void GpsStation::DrawStakeMarks() {
  const tavik::GpsState& g = *ends.gps;
  if (stakeOut_ && !g.StakeName.empty())
    program_.survey->panel()->DrawTargetMark(g.StakeX, g.StakeY, g.StakeCode, g.StakeName);
}

void GpsStation::OpenRePlay() {
  if (replay_) return;
  const bool connected = ends.Connected && ends.Connected();
  if (!tavik::RePlayLogic::CanOpen(program_.instruments.inst.MeasureMode, connected, program_.dialogs)) return;
  if (stakeOut_) stakeOut_->close();
  ShowOwned(replay_, new FrmRePlay(program_.app, *ends.gps, *ends.panels, program_.dialogs, program_.timers,
                                   &program_.frm));
  tavik::ReplayHooks& h = replay_->Hooks();
  SurveyPanel* window = program_.survey->panel();
  tavik::DocumentCycle& cycle = program_.cycle;
  h.SaveDocument = [&cycle] { cycle.Save(); };
  h.EnableAutosave = [this, &cycle](bool on) {
    const tavik::App& a = program_.app;
    cycle.Timer5().SetEnabled(on && a.ini.AutoSaveMinutes > 0 && a.doc.IsOpen());
  };
  h.MapReplaced = [this] {
    edit_.Editor().Reset();
    if (program_.app.doc.IsOpen()) {
      ViewChanged();
    } else {
      program_.frm.RedrawPaper();
      program_.cycle.ShowCounts();
    }
  };
  h.ShowPanels = [this] {
    if (ends.ShowPanels) ends.ShowPanels();
  };
  // The recording controls show the replayed antenna height, draft and reference while
  // the replay runs, and what they showed before once it has gone.
  h.SetText = [this](const std::string& control, const std::string& text) {
    SetControlText(control, QString::fromStdString(text));
  };
  std::vector<std::pair<std::string, QString>> shown;
  for (const char* name : {"CmdIh", "CmdRod", "Combo3"}) shown.emplace_back(name, ControlText(name));
  connect(replay_, &QObject::destroyed, this, [this, shown] {
    for (const auto& [name, text] : shown) SetControlText(name, text);
  });
  h.FitViewTo = [window](double minE, double minN, double maxE, double maxN, double factor) {
    window->FitViewTo(minE, minN, maxE, maxN, factor);
  };
  h.CentreViewOn = [this](double E, double N) {
    program_.app.doc.ViewCentreE = E;
    program_.app.doc.ViewCentreN = N;
    ViewChanged();
  };
  h.DrawMarker = [this](double E, double N) {
    if (ends.DrawMarker) ends.DrawMarker(E, N);
  };
}

QString GpsStation::ControlText(const std::string& control) const {
  QObject* o = program_.frm.findChild<QObject*>(QString::fromStdString(control));
  if (auto* a = qobject_cast<QAction*>(o)) return a->text();
  if (auto* c = qobject_cast<QComboBox*>(o)) return c->currentText();
  return {};
}

void GpsStation::SetControlText(const std::string& control, const QString& text) {
  if (ends.SetText) {
    ends.SetText(control, text.toStdString());
    return;
  }
  QObject* o = program_.frm.findChild<QObject*>(QString::fromStdString(control));
  if (auto* a = qobject_cast<QAction*>(o)) a->setText(text);
  if (auto* c = qobject_cast<QComboBox*>(o)) c->setCurrentText(text);
}

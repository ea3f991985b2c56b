#include "app/survey_station.h"

#include <QAction>
#include <QMenu>
#include <QTimer>

#include "app/fitdialog.h"
#include "app/mainfrm.h"
#include "app/resectdlg.h"
#include "app/stackout.h"
#include "app/survey_panel.h"
#include "app/userdialog.h"
#include "core/app_state.h"
#include "core/tables.h"
#include "edit/editor.h"
#include "instruments/link.h"
#include "procedures/import_obs.h"
#include "procedures/observation_log.h"
#include "procedures/observation_pipeline.h"

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

SurveyStation::SurveyStation(MainFrm& frm, tavik::App& app, tavik::ui::Dialogs& dialogs,
                             tavik::InstrumentState& inst, tavik::TotalStationLink& link)
    : QObject(&frm),
      panel_(new SurveyPanel(frm, app, inst, dialogs)),
      ctx{app.doc, app.view, app.work, inst, survey, dialogs, *panel_,
          tavik::obslog::NowText, {}},
      frm_(frm),
      app_(app) {
  Wire(link);
  AddMenus();
}

// The dialogs go first, while the context they work on is still there: a stake-out
// still open at exit gives its port back and clears StakeOutActive.
SurveyStation::~SurveyStation() {
  delete stackOut_;
  delete resectDlg_;
  delete fitDialog_;
  delete userDialog_;
}

void SurveyStation::Wire(tavik::TotalStationLink& link) {
  auto& l = ctx.link;
  l.StartShot = [&link] { link.StartShot(); };
  l.Send = [&link](tavik::Request r) { return link.Send(r); };
  l.Write = [&link](tavik::Channel c, const std::string& bytes) {
    if (!link.OpenChannel(c)) return false;
    tavik::ui::SerialPort* p = c == tavik::Channel::Set ? link.MSComm_SET : link.MSComm_TOP;
    if (p == nullptr) return false;
    p->Output(bytes);
    return true;
  };
  l.Close = [&link](tavik::Channel c) {
    tavik::ui::SerialPort* p = c == tavik::Channel::Set ? link.MSComm_SET : link.MSComm_TOP;
    if (p != nullptr && p->PortOpen()) p->Close();
  };
  l.Label29 = [&link] { return link.picture.Label29; };
  l.AppendOBSBox = [&link](const std::string& text, bool red) { link.AppendToOBSBox(text, red); };
  l.StartTimer10 = [this](int ms) {
    if (StartTimer10) StartTimer10(ms);
  };

  link.receivers.StationShot = [this] {
    if (userDialog_) userDialog_->Received();
  };
  link.receivers.PointShot = [this] { tavik::ReducePoint(ctx); };
  link.receivers.FitShot = [this] {
    if (fitDialog_) fitDialog_->DistanceReceived();
  };
  link.receivers.FitAngle = [this] {
    if (fitDialog_) fitDialog_->AngleReceived();
  };
  link.receivers.StakeOutLine = [this](const std::string& line) {
    if (stackOut_) stackOut_->SetLine(line);
  };
  panel_->OnRecord = [this] { tavik::RecButton(ctx); };
  panel_->OnStop = [this, &link] {
    link.StopShot();
    panel_->SetEnabled("CmdSTOP", false);
    panel_->SetEnabled("RecButton", true);
  };
}

void SurveyStation::AddMenus() {
  QMenu* mete = frm_.Menu("MainMnuMete");
  if (mete == nullptr) return;
  auto add = [&](const char* name, const char* caption, std::function<void()> run) {
    QAction* a = mete->addAction(QString::fromUtf8(caption));
    a->setObjectName(name);
    connect(a, &QAction::triggered, this, [run = std::move(run)] { run(); });
    return a;
  };
  add("MainMnuUserDialog", "空圖 -現地任意兩點開圖...", [this] { OpenUserDialog(); });
  add("MainMnuFit", "擺站...", [this] { OpenFitDialog(); });
  add("MainMnuResect", "後方交會...", [this] { OpenResectDlg(); });
  add("MainMnuStackOut", "放樣...", [this] { OpenStackOut(); });
  mete->addSeparator();
  QAction* link = add("MainMnuAutoLink", "自動連線", [] {});
  link->setCheckable(true);
  connect(link, &QAction::toggled, this, [this](bool on) { survey.AutoLink = on ? tavik::kTrue : tavik::kFalse; });
  if (QMenu* import = frm_.Menu("MainMnuImport")) {
    QAction* a = import->addAction("匯入OBS檔...");
    a->setObjectName("ImportOBS");
    connect(a, &QAction::triggered, this, [this] {
      if (tavik::ImportOBS(ctx.dialogs, app_.paths.WorkFolder().string())) panel_->RedrawAll();
    });
  }
}

void SurveyStation::OpenUserDialog() {
  if (!app_.doc.IsOpen() || userDialog_) return;
  ShowOwned(userDialog_, new UserDialog(ctx, &frm_));
  userDialog_->StartPick = [this](const std::string& mode) { StartPick(userDialog_, mode); };
}

void SurveyStation::OpenFitDialog() {
  if (!app_.doc.IsOpen() || fitDialog_) return;
  ShowOwned(fitDialog_, new FitDialog(ctx, &frm_));
  fitDialog_->StartPick = [this](const std::string& mode) { StartPick(fitDialog_, mode); };
}

void SurveyStation::OpenResectDlg() {
  if (!app_.doc.IsOpen() || resectDlg_) return;
  ShowOwned(resectDlg_, new ResectDlg(ctx, MakePort ? MakePort() : nullptr, &frm_));
  resectDlg_->StartPick = [this](int slot) {
    resectSlot_ = slot;
    StartPick(resectDlg_, "RESECT_BS");
  };
}

void SurveyStation::OpenStackOut() {
  if (!app_.doc.IsOpen() || stackOut_ || ctx.inst.MeasureMode != "TS") return;
  if (!tavik::StackOutLogic::CanOpen(ctx)) return;
  ShowOwned(stackOut_, new StackOut(ctx, MakePort ? MakePort() : nullptr, &frm_));
  stackOut_->StartPick = [this](const std::string& mode) { StartPick(stackOut_, mode); };
}

void SurveyStation::StartPick(QDialog* dialog, const std::string& mode) {
  if (editor_ == nullptr || dialog == nullptr) return;
  dialog->hide();
  editor_->StartCommand(mode);
}

// The pick is over: the command ends and the dialog comes back.
bool SurveyStation::Picked(QDialog* dialog) {
  if (editor_) editor_->Reset();
  if (dialog) {
    dialog->show();
    dialog->raise();
  }
  return true;
}

void SurveyStation::ConnectEditor(tavik::edit::Editor& editor, tavik::edit::EditHost& host) {
  editor_ = &editor;
  panel_->OnLink = [&editor](double E1, double N1, double H1, double E2, double N2, double H2) {
    if (!editor.AutoJoin) editor.AddLine(E1, N1, H1, E2, N2, H2);
  };
  panel_->OnPointStored = [&editor] { editor.MeasuredPointAdded(); };
  using tavik::edit::PlugEvent;
  auto pixel = [this](double E, double N) {
    float x = 0, y = 0;
    tavik::WorldToPaper(app_.view, app_.doc.ScaleDenominator, E, N, x, y);
    return std::pair<double, double>(x + 1, y + 1);
  };
  host.Plugs["STKOUT"] = [this, pixel](PlugEvent e, double E, double N) {
    if (e != PlugEvent::Press || !stackOut_) return false;
    const auto [x, y] = pixel(E, N);
    Picked(stackOut_);
    stackOut_->Pick(x, y);
    return true;
  };
  for (const char* mode : {"FIT", "FIT2"}) {
    const bool backsight = std::string(mode) == "FIT2";
    host.Plugs[mode] = [this, pixel, backsight](PlugEvent e, double E, double N) {
      if (e != PlugEvent::Press || !fitDialog_) return false;
      const auto [x, y] = pixel(E, N);
      Picked(fitDialog_);
      fitDialog_->Pick(x, y, backsight);
      return true;
    };
  }
  host.Plugs["RESECT_BS"] = [this, pixel](PlugEvent e, double E, double N) {
    if (e != PlugEvent::Press || !resectDlg_) return false;
    const auto [x, y] = pixel(E, N);
    Picked(resectDlg_);
    resectDlg_->Pick(resectSlot_, x, y);
    return true;
  };
  host.Plugs["PickCoord"] = [this](PlugEvent e, double E, double N) {
    if (e != PlugEvent::Press || !userDialog_) return false;
    Picked(userDialog_);
    userDialog_->PickCoord(E, N);
    return true;
  };
}

#include "app/program.h"

#include <QApplication>
#include <QComboBox>
#include <QAction>
#include <QFile>

#include "app/edit_wiring.h"
#include "app/export_menu.h"
#include "app/frmdispsetup.h"
#include "app/print_map.h"
#include "app/gnss_wiring.h"
#include "app/gpsinitdlg.h"
#include "app/ntrip_link.h"
#include "app/survey_panel.h"
#include "app/survey_station.h"
#include "app/field_tools.h"
#include "instruments/rt_base.h"
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
  cycle.hooks.PlaceScrollBars = [this](tavik::Document& doc, tavik::View& view) {
    int h = 0, v = 0;
    tavik::view::ScrollValues(doc, view, h, v);
    frm.SetScrollBars(h, v);
  };
  cycle.hooks.CommandRunning = [] { return QApplication::activeModalWidget() != nullptr; };
  cycle.hooks.Progress = frm.Progress();
  cycle.hooks.LoadOldDocument = [this](tavik::Document& doc, tavik::View& view, tavik::ui::Dialogs& d) {
    return tavik::LoadOldDocument(doc, view, d, cycle.hooks.Progress);
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
  gnss = std::make_unique<GnssWiring>(*this);
  instruments.gnss = &gnss->setup;
  // A new datum reaches the receiver at the next connect: the open port is closed.
  AddGpsInitCommand(frm, gpsDatum, app.ini, [this] { return gnss->MSComm1.PortOpen(); },
                    [this](const tavik::GpsInitOk& ok) {
                      gnss->receiver.Panels().Label25[0] = ok.Label25_0;
                      if (ok.CloseMSComm1) gnss->MSComm1.Close();
                    });
  h.Redraw = [](tavik::ui::Surface& s) { s.Clear(tavik::ui::MakeRgb(255, 255, 255)); };

  survey = std::make_unique<SurveyStation>(frm, app, dialogs, instruments.inst, instruments.link);
  survey->StartTimer10 = [this](int ms) {
    instruments.Timer10.SetInterval(ms);
    instruments.Timer10.SetEnabled(true);
  };
  // The stake-out stops autosave while a Trimble streams its readings; enabled again,
  // it runs only as the settings and the open document allow.
  survey->ctx.link.EnableTimer5 = [this](bool on) {
    cycle.Timer5().SetEnabled(on && app.ini.AutoSaveMinutes > 0 && app.doc.IsOpen());
  };
  instruments.ShowButtons = [this](bool cmdStop, bool recButton) {
    survey->panel()->SetEnabled("CmdSTOP", cmdStop);
    survey->panel()->SetEnabled("RecButton", recButton);
  };
  survey->MakePort = [this] { return std::make_unique<tavik::ui::QtSerialPort>(&store); };
  fieldTools = new FieldTools(frm, app, *survey, instruments.link);
  exports = new ExportMenu(*this);
  ntrip = std::make_unique<NtripLink>(frm, dialogs, store);
  ntrip->MakePort = [this] { return std::make_unique<tavik::ui::QtSerialPort>(&store); };
  // Corrections may go into the receiver's own port while it is open, and the rover's
  // position goes up from the last GGA it sent.
  ntrip->ReceiverPort = [this]() -> tavik::ui::SerialPort* {
    return gnss->MSComm1.PortOpen() ? &gnss->MSComm1 : nullptr;
  };
  ntrip->LatestGga = [this, last = std::string()]() mutable {
    if (gnss->gps.GpsLine.rfind("$GPGGA,", 0) == 0) last = tavik::ntrip::WithNmeaChecksum(gnss->gps.GpsLine);
    return last;
  };

  // Save, Close, Exit and every full repaint stop the blinking mark of the last point;
  // Close and Exit let go of the instrument's ports, which the next request opens again.
  // At exit a base station that logs raw data is told to stop.
  cycle.hooks.StopBaseLogging = [this] { tavik::RtBaseLogic::StopBaseLogging(gnss->gps, &gnss->MSComm1); };
  cycle.hooks.StopLiveMarker = [this] { survey->panel()->StopBlink(); };
  cycle.hooks.TakenUp = [this] { survey->panel()->ShowStation(); };
  frm.handlers.StopLiveMarker = cycle.hooks.StopLiveMarker;
  cycle.hooks.CloseSensorPorts = [this] {
    instruments.MSComm_SET.Close();
    instruments.MSComm_TOP.Close();
    gnss->CloseAll();
  };
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

void Program::UseGpsReceiver(const std::string& kind, int16_t port, int32_t baud) {
  instruments.inst.MeasureMode = "GPS";
  instruments.inst.InstrumentKind = kind;
  gnss->setup.GpsReceiverKind = kind;
  gnss->setup.CommPortNumber = port;
  gnss->setup.CommBaud = baud;
  instruments.ShowMeasureMode("GPS");
  instruments.ShowInstrumentLabels(kind, "");
}

void Program::LinkSettings() {
  using tavik::SoftwareIni;
  tavik::SettingsLinks& s = app.settings;
  tavik::InstrumentState& inst = instruments.inst;
  s.Link(&SoftwareIni::MeasureMode, inst.MeasureMode);
  s.Link(&SoftwareIni::InstrumentKind, inst.InstrumentKind);
  s.Link(&SoftwareIni::InstrumentSerial, inst.InstrumentSerial);
  s.Link(&SoftwareIni::PortNumber, inst.PortNumber);
  s.Link(&SoftwareIni::BaudRate, inst.BaudRate);
  // The instrument frame shows the restored choice at once.
  s.Link(
      [this](const SoftwareIni& ini) {
        instruments.ShowInstrumentLabels(ini.InstrumentKind, ini.InstrumentSerial);
        instruments.ShowRobotPanel(tavik::KindHasRobotPanel(ini.InstrumentKind));
      },
      [](SoftwareIni&) {});
  // The stored pair: only TWD97 loads its own constants (see LoadStoredDatum).
  s.Link(
      [this](const SoftwareIni& ini) {
        tavik::LoadStoredDatum(gpsDatum, ini.GpsDatum, ini.CentralMeridian);
        gnss->ShowDatum();
      },
         [this](SoftwareIni& ini) {
           ini.GpsDatum = gpsDatum.GpsDatum;
           ini.CentralMeridian = gpsDatum.CentralMeridian;
         });
  // The receiver. In GPS mode the kind, port and speed of the file are the receiver's.
  tavik::GnssSetup& g = gnss->setup;
  s.Link(&SoftwareIni::SounderKind, g.SounderKind);
  s.Link(&SoftwareIni::MotionSensorKind, g.MotionSensorKind);
  s.Link(&SoftwareIni::SounderPort, g.SounderPort);
  s.Link(&SoftwareIni::SounderBaud, g.SounderBaud);
  s.Link(&SoftwareIni::MotionSensorPort, g.MotionSensorPort);
  s.Link(&SoftwareIni::MotionSensorBaud, g.MotionSensorBaud);
  s.Link(&SoftwareIni::ImuAttached, g.ImuAttached);
  s.Link(&SoftwareIni::DiffSbas, g.DiffSbas);
  s.Link(&SoftwareIni::CorrectionFormat, g.CorrectionFormat);
  s.Link(&SoftwareIni::DiffEgps, g.DiffEgps);
  s.Link(&SoftwareIni::DiffThird, g.DiffRtk);
  s.Link(
      [this, &g](const SoftwareIni& ini) {
        g.ImuOffsetX = ini.ImuOffset[0];
        g.ImuOffsetY = ini.ImuOffset[1];
        g.ImuOffsetZ = ini.ImuOffset[2];
        if (ini.MeasureMode == "GPS") {
          g.GpsReceiverKind = ini.InstrumentKind;
          g.CommPortNumber = ini.PortNumber;
          g.CommBaud = ini.BaudRate;
        }
      },
      [this, &g](SoftwareIni& ini) {
        ini.ImuOffset[0] = g.ImuOffsetX;
        ini.ImuOffset[1] = g.ImuOffsetY;
        ini.ImuOffset[2] = g.ImuOffsetZ;
        if (instruments.inst.MeasureMode == "GPS") {
          ini.InstrumentKind = g.GpsReceiverKind;
          ini.PortNumber = g.CommPortNumber;
          ini.BaudRate = g.CommBaud;
        }
      });
  s.Link([this](const SoftwareIni& ini) { frm.SelectFineSteps(ini.FineShiftStep, ini.FineRotationStep); },
         [this](SoftwareIni& ini) {
           ini.FineShiftStep = frm.Combo1()->currentText().toStdString();
           ini.FineRotationStep = frm.Combo2()->currentText().toStdString();
         });
  if (!edit) return;

  tavik::edit::Editor& editor = edit->Editor();
  s.Link(&SoftwareIni::AutoNamePrefix, editor.Names.Prefix);
  s.Link(&SoftwareIni::AutoNameNext, editor.Names.Number);
  s.Link(&SoftwareIni::AutoNameDigits, editor.Names.Width);
  s.Link(&SoftwareIni::AreaUnit, editor.Area.AreaUnit);
  // Automatic naming is also the checked state of its menu item.
  s.Link(
      [this, &editor](const SoftwareIni& ini) {
        editor.Names.AutoNaming = ini.AutoNameOn;
        if (QAction* a = frm.findChild<QAction*>("AutoNaming")) a->setChecked(ini.AutoNameOn);
      },
      [&editor](SoftwareIni& ini) { ini.AutoNameOn = editor.Names.AutoNaming; });

  tavik::view::Display& d = edit->Canvas().display;
  s.Link(
      [&d](const SoftwareIni& ini) {
        d.BaseMapLineColour = static_cast<tavik::ui::Rgb>(ini.BaseMapLineColour);
        d.BaseMapTextColour = static_cast<tavik::ui::Rgb>(ini.BaseMapTextColour);
      },
      [&d](SoftwareIni& ini) {
        ini.BaseMapLineColour = static_cast<int32_t>(d.BaseMapLineColour);
        ini.BaseMapTextColour = static_cast<int32_t>(d.BaseMapTextColour);
      });
  // The reference map is drawn in one colour, when that colour is in use.
  s.Link(
      [&d](const SoftwareIni& ini) {
        const tavik::ui::Rgb grey = tavik::ui::MakeRgb(ini.RefRed, ini.RefGreen, ini.RefBlue);
        d.ReferenceLineColour = d.ReferencePointColour = d.ReferenceTextColour = grey;
        d.ReferenceEntityColourOn = d.ReferenceTextColourOn = ini.RefColourInUse ? tavik::kTrue : tavik::kFalse;
      },
      [&d](SoftwareIni& ini) {
        ini.RefRed = tavik::ui::RedOf(d.ReferenceLineColour);
        ini.RefGreen = tavik::ui::GreenOf(d.ReferenceLineColour);
        ini.RefBlue = tavik::ui::BlueOf(d.ReferenceLineColour);
        ini.RefColourInUse = d.ReferenceEntityColourOn != 0;
      });
  LinkDisplaySettings(s, d, store);
}

void Program::Start() {
  LinkSettings();
  if (edit) {
    AddDisplaySetupCommand(*this);
    AddPrintCommands(*this);
  }
  cycle.Startup();
  // The remembered display settings on the paper and on their toolbar buttons at once,
  // with or without a document.
  if (edit) frm.RedrawPaper();
}

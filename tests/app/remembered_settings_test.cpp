// Every value of Software.ini survives a restart of the program: the values with an
// owner in the running program reach it at the start and come back from it at exit,
// the others are written back as they were read.
#include <QAction>
#include <QComboBox>
#include <QLabel>
#include <QtTest>

#include "app/edit_wiring.h"
#include "app/gnss_wiring.h"
#include "app/field_tools.h"
#include "app/program.h"
#include "core/record_text.h"
#include "core/text.h"
#include "core/temp_home.h"
#include "platform/scripted/scripted.h"

namespace {

// Every value of the file changed from its default: booleans flipped, numbers raised,
// texts lengthened.
tavik::SoftwareIni EveryValueChanged(const std::filesystem::path& folder) {
  const std::string defaults = tavik::SoftwareIniText(tavik::SoftwareIni{});
  std::string changed;
  for (std::string_view line : tavik::rec::SplitLines(defaults)) {
    std::string l(line);
    if (l == "#TRUE#") l = "#FALSE#";
    else if (l == "#FALSE#") l = "#TRUE#";
    else if (!l.empty() && l[0] == '"') l.insert(l.size() - 1, "2");
    else l = std::to_string(std::stod(l) + 2);
    changed += l + "\r\n";
  }
  const auto file = folder / "every.ini";
  tavik::testing::WriteBytes(file, tavik::text::ToCp950(changed));
  tavik::SoftwareIni ini;
  if (tavik::ReadSoftwareIni(file, ini) != tavik::IniReadResult::Read) qFatal("the changed file does not read");
  return ini;
}

}  // namespace

class RememberedSettingsTest : public QObject {
  Q_OBJECT

 private slots:
  void everyValueSurvivesARestart() {
    tavik::testing::TempHome home;
    const tavik::AppPaths paths{home.path};
    paths.EnsureFolders();
    tavik::SoftwareIni want = EveryValueChanged(home.path);
    want.FineShiftStep = "25cm";  // the lists hold only their own texts
    want.FineRotationStep = "10度";
    want.AreaUnit = 3;
    want.PointMarkStyle = 1;  // the marks are shown or not
    {
      tavik::ui::ScriptedDialogs dialogs;
      Program p(paths, &dialogs);
      EditWiring w(p);
      p.Start();
      QCOMPARE(p.instruments.inst.InstrumentKind, std::string("SET30R"));
      // The values nobody owns yet are kept in the settings; the owned ones are set
      // where the program keeps them, and only there.
      const tavik::SoftwareIni def;
      p.app.ini = want;
      for (auto field : {&tavik::SoftwareIni::MeasureMode, &tavik::SoftwareIni::InstrumentKind,
                         &tavik::SoftwareIni::InstrumentSerial, &tavik::SoftwareIni::AutoNamePrefix,
                         &tavik::SoftwareIni::GpsDatum, &tavik::SoftwareIni::FineShiftStep,
                         &tavik::SoftwareIni::SounderKind, &tavik::SoftwareIni::MotionSensorKind,
                         &tavik::SoftwareIni::CorrectionFormat})
        p.app.ini.*field = def.*field;
      for (auto field : {&tavik::SoftwareIni::PortNumber, &tavik::SoftwareIni::AutoNameNext,
                         &tavik::SoftwareIni::AutoNameDigits, &tavik::SoftwareIni::AreaUnit,
                         &tavik::SoftwareIni::CurrentLegend, &tavik::SoftwareIni::SounderPort,
                         &tavik::SoftwareIni::MotionSensorPort})
        p.app.ini.*field = def.*field;
      for (auto field : {&tavik::SoftwareIni::BaudRate, &tavik::SoftwareIni::BaseMapLineColour,
                         &tavik::SoftwareIni::BaseMapTextColour, &tavik::SoftwareIni::RefRed,
                         &tavik::SoftwareIni::SounderBaud, &tavik::SoftwareIni::MotionSensorBaud})
        p.app.ini.*field = def.*field;
      for (auto field : {&tavik::SoftwareIni::AutoNameOn, &tavik::SoftwareIni::ImuAttached,
                         &tavik::SoftwareIni::DiffSbas, &tavik::SoftwareIni::DiffEgps, &tavik::SoftwareIni::DiffThird})
        p.app.ini.*field = def.*field;
      for (double& v : p.app.ini.ImuOffset) v = 0;
      // The receiver's set-up.
      auto& g = p.gnss->setup;
      g.SounderKind = want.SounderKind;
      g.MotionSensorKind = want.MotionSensorKind;
      g.SounderPort = want.SounderPort;
      g.SounderBaud = want.SounderBaud;
      g.MotionSensorPort = want.MotionSensorPort;
      g.MotionSensorBaud = want.MotionSensorBaud;
      g.ImuAttached = want.ImuAttached ? -1 : 0;
      g.ImuOffsetX = want.ImuOffset[0];
      g.ImuOffsetY = want.ImuOffset[1];
      g.ImuOffsetZ = want.ImuOffset[2];
      g.DiffSbas = want.DiffSbas ? -1 : 0;
      g.CorrectionFormat = want.CorrectionFormat;
      g.DiffEgps = want.DiffEgps ? -1 : 0;
      g.DiffRtk = want.DiffThird ? -1 : 0;
      p.app.ini.RefColourInUse = def.RefColourInUse;
      p.app.ini.InstrumentHeight = def.InstrumentHeight;
      p.app.ini.CentralMeridian = def.CentralMeridian;
      p.app.ini.TrajectoryIntervalCm = def.TrajectoryIntervalCm;
      p.fieldTools->TrajectorySpacingCm = want.TrajectoryIntervalCm;
      auto& inst = p.instruments.inst;
      inst.MeasureMode = want.MeasureMode;
      inst.InstrumentKind = want.InstrumentKind;
      inst.InstrumentSerial = want.InstrumentSerial;
      inst.PortNumber = want.PortNumber;
      inst.BaudRate = want.BaudRate;
      auto& names = w.Editor().Names;
      names.AutoNaming = want.AutoNameOn;
      names.Prefix = want.AutoNamePrefix;
      names.Number = want.AutoNameNext;
      names.Width = want.AutoNameDigits;
      w.Editor().Area.AreaUnit = want.AreaUnit;
      p.app.doc.CurrentLegend = want.CurrentLegend;
      p.app.doc.InstrumentHeight = want.InstrumentHeight;
      p.app.doc.TargetHeight = want.TargetHeight;
      p.gpsDatum.GpsDatum = want.GpsDatum;
      p.gpsDatum.CentralMeridian = want.CentralMeridian;
      p.frm.Combo1()->setCurrentText("25cm");
      p.frm.Combo2()->setCurrentText("10度");
      auto& d = w.Canvas().display;
      d.BaseMapLineColour = static_cast<tavik::ui::Rgb>(want.BaseMapLineColour);
      d.BaseMapTextColour = static_cast<tavik::ui::Rgb>(want.BaseMapTextColour);
      d.ReferenceLineColour = tavik::ui::MakeRgb(want.RefRed, want.RefGreen, want.RefBlue);
      d.ReferenceEntityColourOn = want.RefColourInUse ? tavik::kTrue : tavik::kFalse;
      d.ShowPointNames = want.ShowPointNames ? tavik::kTrue : tavik::kFalse;
      d.ShowPointMarks = false;
      d.TextScale = want.TextScale;
      d.LineWidthScale = want.LineWidthScale;
      d.GridOn = want.GridOn;
      d.Background = tavik::ui::MakeRgb(0, 40, 0);
      QVERIFY(p.frm.close());
    }
    tavik::ui::ScriptedDialogs dialogs;
    Program p(paths, &dialogs);
    EditWiring w(p);
    p.Start();
    QCOMPARE(tavik::SoftwareIniText(p.app.ini), tavik::SoftwareIniText(want));

    // And the owners hold them again.
    QCOMPARE(p.fieldTools->TrajectorySpacingCm, want.TrajectoryIntervalCm);
    const auto& inst = p.instruments.inst;
    QCOMPARE(inst.MeasureMode, want.MeasureMode);
    QCOMPARE(inst.InstrumentKind, want.InstrumentKind);
    QCOMPARE(inst.InstrumentSerial, want.InstrumentSerial);
    QCOMPARE(inst.PortNumber, want.PortNumber);
    QCOMPARE(inst.BaudRate, want.BaudRate);
    auto* label23 = p.frm.findChild<QLabel*>("Label23");
    QVERIFY(label23);
    QCOMPARE(label23->text().toStdString(), want.InstrumentKind);
    const auto& names = w.Editor().Names;
    QCOMPARE(names.AutoNaming, want.AutoNameOn);
    QCOMPARE(p.frm.findChild<QAction*>("AutoNaming")->isChecked(), want.AutoNameOn);
    QCOMPARE(names.Prefix, want.AutoNamePrefix);
    QCOMPARE(names.Number, want.AutoNameNext);
    QCOMPARE(names.Width, want.AutoNameDigits);
    QCOMPARE(w.Editor().Area.AreaUnit, int16_t{3});
    QCOMPARE(p.app.doc.CurrentLegend, want.CurrentLegend);
    QCOMPARE(p.app.doc.InstrumentHeight, want.InstrumentHeight);
    QCOMPARE(p.gpsDatum.GpsDatum, want.GpsDatum);
    QCOMPARE(p.gpsDatum.CentralMeridian, want.CentralMeridian);
    QCOMPARE(p.gnss->setup.CorrectionFormat, want.CorrectionFormat);
    QCOMPARE(p.gnss->setup.ImuOffsetZ, want.ImuOffset[2]);
    QCOMPARE(p.gnss->setup.DiffRtk != 0, want.DiffThird);
    QCOMPARE(p.frm.Combo1()->currentText(), QString("25cm"));
    const auto& d = w.Canvas().display;
    QCOMPARE(d.BaseMapLineColour, static_cast<tavik::ui::Rgb>(want.BaseMapLineColour));
    QCOMPARE(d.ReferenceTextColour, tavik::ui::MakeRgb(want.RefRed, want.RefGreen, want.RefBlue));
    QCOMPARE(d.ReferenceEntityColourOn != 0, want.RefColourInUse);
    QCOMPARE(d.ShowPointMarks, false);
    QCOMPARE(d.TextScale, 3.0);
    QCOMPARE(d.Background, tavik::ui::MakeRgb(0, 40, 0));  // kept in the settings store
  }
};

QTEST_MAIN(RememberedSettingsTest)
#include "remembered_settings_test.moc"

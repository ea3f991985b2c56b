// RTBASE, "啟動 RTK 基地站": the Qt face of RtBaseLogic, and RtBaseStation, which puts it
// in the 測量 menu (GPS mode), lets the map pick the base ("BasePt"), hands it each
// position of the receiver (for 自動接收 and the averaging) and remembers the chosen
// correction format and raw period between runs.
#pragma once

#include <QDialog>
#include <QElapsedTimer>
#include <QObject>
#include <QTimer>
#include <functional>
#include <map>
#include <string>

#include "instruments/rt_base.h"

class EditWiring;
class Program;
class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QRadioButton;
class QSpinBox;

class RTBASE : public QDialog {
  Q_OBJECT
 public:
  RTBASE(tavik::Document& doc, const tavik::View& view, tavik::GpsState& gps, tavik::GnssSetup& setup,
         tavik::GpsPanels& panels, const tavik::GpsDatumSettings& datum, tavik::ui::Dialogs& dialogs,
         QWidget* parent = nullptr);

  tavik::RtBaseLogic& Logic() { return logic_; }
  // Option3: the owner hides the dialog and lets the next click pick ("BasePt").
  std::function<void()> StartPick;
  // A new format was chosen or a period set: the owner remembers them.
  std::function<void()> SettingsChanged;

  // The pointer event of "BasePt" at pixel (x, y) of Paper1.
  void Pick(double x, double y);
  // A position of the receiver arrived.
  void PositionArrived();
  // The controls copied back from the logic (after a change made outside the dialog).
  void Push();

  // Controls by their form names, for the owner and the tests.
  QWidget* Control(const std::string& name) const;
  QString Text(const std::string& name) const;

 private:
  void Pull();
  void Start();
  void ToggleAveraging();
  void Tick();
  double Now() const { return clock_.elapsed() / 1000.0; }

  tavik::GnssSetup& setup_;
  tavik::GpsPanels& panels_;
  tavik::RtBaseLogic logic_;
  std::map<std::string, QWidget*> controls_;
  std::map<std::string, QRadioButton*> formats_;  // by format word
  QLineEdit *xe_, *yn_, *zh_, *text1_;
  QRadioButton *option1_, *option2_, *option3_;
  QLabel *label13_, *label6_, *rawPath_, *averageStatus_;
  QLabel *label15_, *label45_, *label10_, *label11_;
  QCheckBox *checkMkPt_, *rawDataCheckFlag_, *check1_;
  QComboBox *combo2_, *combo3_, *averageUnit_;
  QSpinBox* averageAmount_;
  QPushButton* averageButton_;
  QTimer timer_;
  QElapsedTimer clock_;
};

class RtBaseStation : public QObject {
  Q_OBJECT
 public:
  // Made after the recording controls, whose position hook it extends.
  RtBaseStation(Program& program, EditWiring& edit);
  ~RtBaseStation() override;

  void Open();
  RTBASE* dialog() const { return dialog_; }

 private:
  Program& program_;
  EditWiring& edit_;
  RTBASE* dialog_ = nullptr;
  std::string baseFormat_;  // the format last started, offered again
};

// NtripDlg: the settings of the NTRIP client (rover) or server (base). The caster, its
// port and protocol version, the mount point, chosen from the caster's source table
// (fetched in the background on request) or typed, the login, and the serial side.
// OK checks the caster and mount point and keeps the settings in the settings store.
#pragma once

#include <QDialog>
#include <QElapsedTimer>
#include <QTimer>
#include <memory>

#include "instruments/ntrip_options.h"
#include "platform/dialogs.h"
#include "platform/qt/qt_tcp_link.h"
#include "platform/settings_store.h"

class QComboBox;
class QLabel;
class QLineEdit;
class QRadioButton;
class QSpinBox;

class NtripDlg : public QDialog {
  Q_OBJECT
 public:
  NtripDlg(tavik::ntrip::Role role, tavik::ui::SettingsStore& store, tavik::ui::Dialogs& dialogs,
           bool receiverPortAvailable, QWidget* parent = nullptr);
  ~NtripDlg() override;

  // The source table of the caster in the boxes, read without holding the window.
  void FetchMounts();
  QComboBox* MountBox() const { return mount_; }
  QLabel* SourceLabel() const { return sourceLabel_; }

 public slots:
  void accept() override;

 private:
  tavik::ntrip::Options Read() const;

  tavik::ntrip::Role role_;
  tavik::ui::SettingsStore& store_;
  tavik::ui::Dialogs& dialogs_;
  QLineEdit* caster_ = nullptr;
  QSpinBox* port_ = nullptr;
  QComboBox* version_ = nullptr;
  QComboBox* mount_ = nullptr;
  QLabel* sourceLabel_ = nullptr;
  QLineEdit* user_ = nullptr;
  QLineEdit* password_ = nullptr;
  QSpinBox* ggaSeconds_ = nullptr;
  QLineEdit* gga_ = nullptr;
  QRadioButton* toComputer_ = nullptr;
  QRadioButton* toReceiver_ = nullptr;
  QSpinBox* comPort_ = nullptr;
  QComboBox* portSettings_ = nullptr;
  std::unique_ptr<tavik::ui::QtTcpLink> fetchLink_;
  std::unique_ptr<tavik::ntrip::Session> fetch_;
  QTimer fetchTick_;
  QElapsedTimer clock_;
};

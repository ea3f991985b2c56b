// InputHVSDlg: the keyed observation. Horizontal circle reading and zenith angle are
// typed as DDDMMSS, as the instrument's display shows them, and the slope distance in
// metres. OK leaves them in the link state as an instrument's answer would.
#pragma once

#include <QDialog>

#include "instruments/instrument_state.h"
#include "platform/dialogs.h"

class QLineEdit;

class InputHVSDlg : public QDialog {
  Q_OBJECT
 public:
  InputHVSDlg(tavik::InstrumentState& inst, tavik::ui::Dialogs& dialogs, QWidget* parent = nullptr);
  // Modal; true when a reading was accepted.
  static bool Ask(tavik::InstrumentState& inst, tavik::ui::Dialogs& dialogs, QWidget* parent);

 private:
  void OnOk();
  tavik::InstrumentState& inst_;
  tavik::ui::Dialogs& dialogs_;
  QLineEdit *hz_, *v_, *slope_;
};

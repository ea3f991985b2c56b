// frmTSDownLoad, "儀器記憶體下載": takes the jobs stored in a total station's memory
// over the serial port. The surveyor picks the family, presses 開始下載 and starts the
// output at the instrument; LogBox shows the text as it comes. At the end mark the
// link writes the raw text beside the documents and the dump is read into the map;
// 停止下載 reads what has come so far, and a transfer cut in the middle says where it
// stopped.
#pragma once

#include <QDialog>
#include <string>

#include "instruments/memory_dump.h"
#include "platform/serial.h"
#include "procedures/survey_context.h"

class QComboBox;
class QLabel;
class QPlainTextEdit;
class QPushButton;
class QTimer;

namespace tavik {
class TotalStationLink;
}

class FrmTSDownLoad : public QDialog {
  Q_OBJECT
 public:
  FrmTSDownLoad(tavik::SurveyContext& ctx, tavik::TotalStationLink& link, std::string folder,
                QWidget* parent = nullptr);
  ~FrmTSDownLoad() override;

  tavik::dump::Format format() const;
  void Start();
  void Stop();

 protected:
  void done(int r) override;

 private:
  void Poll();
  void Convert(bool complete);
  tavik::ui::SerialPort* Port() const;

  tavik::SurveyContext& ctx_;
  tavik::TotalStationLink& link_;
  std::string folder_;
  QComboBox* family_;
  QLabel* port_;
  QPlainTextEdit* logBox_;
  QLabel* label1_;
  QPushButton *start_, *stop_;
  QTimer* poll_;
  std::size_t shown_ = 0;
};

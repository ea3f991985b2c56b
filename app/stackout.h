// StackOut, "放樣": the Qt face of StackOutLogic, with its own serial port for the
// MSComm_TOP families. The target is picked from the map, or typed by name here.
#pragma once

#include <QDialog>
#include <functional>
#include <memory>

#include "platform/serial.h"
#include "procedures/stakeout.h"

class QLabel;
class QLineEdit;
class QPushButton;

class StackOut : public QDialog {
  Q_OBJECT
 public:
  StackOut(tavik::SurveyContext& ctx, std::unique_ptr<tavik::ui::SerialPort> port, QWidget* parent = nullptr);
  ~StackOut() override;
  tavik::StackOutLogic& Logic() { return *logic_; }
  // A line of the main link's SET channel.
  void SetLine(const std::string& line);
  // A click on the map at pixel (x, y) of Paper1.
  void Pick(double x, double y);
  // 點選: the next click on the map picks the target ("STKOUT").
  std::function<void(const std::string& mode)> StartPick;

 protected:
  void reject() override;

 private:
  void Push();
  void PickByName();

  tavik::SurveyContext& ctx_;
  std::unique_ptr<tavik::ui::SerialPort> port_;
  std::unique_ptr<tavik::StackOutLogic> logic_;
  QLineEdit* name_;
  QLabel *label4_, *label5_, *label8_, *label9_, *labelS_, *label45_, *label29_, *labelZA_;
  QPushButton *label6_, *readTS_, *command18_, *command2_, *command5_;
};

// RobotCtrl: the robotic panel of a motorised SOKKIA on the main window, over the
// RobotCtrl logic. Arrow buttons turn the telescope in large and small steps; the
// cycling buttons show the instrument's modes by their captions and colours.
#pragma once

#include <QWidget>
#include <map>
#include <string>

#include "instruments/robot_ctrl.h"

class QPushButton;

class RobotCtrlPanel : public QWidget {
  Q_OBJECT
 public:
  RobotCtrlPanel(tavik::RobotCtrl& robot, tavik::InstrumentState& state, QWidget* parent = nullptr);
  QPushButton* Button(const std::string& name) const { return buttons_.at(name); }
  // Captions and colours from the state.
  void ShowState();

 private:
  QPushButton* Add(const char* name, const QString& caption, std::function<void()> click);

  tavik::RobotCtrl& robot_;
  tavik::InstrumentState& state_;
  std::map<std::string, QPushButton*> buttons_;
};

// DlgCadaMete: after each shot, what the point is. Enter keeps it a plain survey point
// (only the legend symbol); a name with "地籍" records it in the cadastral book (.MAC)
// and makes a named point; Esc abandons the shot.
#pragma once

#include <QDialog>
#include <string>

class QLineEdit;

class DlgCadaMete : public QDialog {
  Q_OBJECT
 public:
  explicit DlgCadaMete(QWidget* parent = nullptr);
  // Modal: 0 cancelled, 1 a cadastral point named `name`, 2 only the point.
  static int16_t Ask(QWidget* parent, std::string& name, std::string& lastName);

 private:
  QLineEdit* name_;
  int16_t choice_ = 0;
};

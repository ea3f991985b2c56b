#include "app/frmdispsetup.h"

#include <QAction>
#include <QCheckBox>
#include <QColorDialog>
#include <QDialogButtonBox>
#include <QDoubleSpinBox>
#include <QFormLayout>
#include <QMenu>
#include <QPushButton>
#include <QVBoxLayout>

#include "app/program.h"
#include "app/survey_panel.h"
#include "app/survey_station.h"
#include "app/edit_wiring.h"
#include "core/numbers.h"
#include "core/settings_links.h"
#include "platform/settings_store.h"

namespace {

constexpr const char* kApp = "TAVIK";
constexpr const char* kSection = "Display";
constexpr const char* kBackground = "Background";

QDoubleSpinBox* Factor(QWidget* parent, const char* name, double lo, double hi, double value) {
  auto* box = new QDoubleSpinBox(parent);
  box->setObjectName(name);
  box->setRange(lo, hi);
  box->setSingleStep(0.1);
  box->setDecimals(1);
  box->setSuffix(" 倍");
  box->setValue(value);
  return box;
}

}  // namespace

FrmDispSetup::FrmDispSetup(tavik::view::Display& display, QWidget* parent)
    : QDialog(parent), display_(display), background_(display.Background) {
  setObjectName("FrmDispSetup");
  setWindowTitle("顯示設定");
  auto* col = new QVBoxLayout(this);
  auto* form = new QFormLayout;
  marks_ = new QCheckBox("顯示測點記號", this);
  marks_->setObjectName("chkMarks");
  marks_->setChecked(display.ShowPointMarks);
  names_ = new QCheckBox("顯示點名", this);
  names_->setObjectName("chkNames");
  names_->setChecked(display.ShowPointNames != 0);
  grid_ = new QCheckBox("顯示方格", this);
  grid_->setObjectName("chkGrid");
  grid_->setChecked(display.GridOn);
  form->addRow(marks_);
  form->addRow(names_);
  form->addRow(grid_);
  textScale_ = Factor(this, "txtTextScale", tavik::view::MinTextScale, tavik::view::MaxTextScale, display.TextScale);
  lineScale_ = Factor(this, "txtLineScale", tavik::view::MinLineWidthScale, tavik::view::MaxLineWidthScale,
                      display.LineWidthScale);
  form->addRow("文字大小", textScale_);
  form->addRow("線寬", lineScale_);
  colour_ = new QPushButton(this);
  colour_->setObjectName("cmdBackground");
  connect(colour_, &QPushButton::clicked, this, [this] {
    const QColor c = QColorDialog::getColor(tavik::ui::ImageSurface::ToQColor(background_), this, "背景顏色");
    if (c.isValid()) SetBackground(tavik::ui::MakeRgb(c.red(), c.green(), c.blue()));
  });
  form->addRow("背景顏色", colour_);
  col->addLayout(form);
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
  buttons->button(QDialogButtonBox::Ok)->setText("確定");
  buttons->button(QDialogButtonBox::Cancel)->setText("取消");
  connect(buttons, &QDialogButtonBox::accepted, this, &FrmDispSetup::accept);
  connect(buttons, &QDialogButtonBox::rejected, this, &FrmDispSetup::reject);
  col->addWidget(buttons);
  ShowBackground();
}

void FrmDispSetup::SetBackground(tavik::ui::Rgb colour) {
  background_ = colour;
  ShowBackground();
}

void FrmDispSetup::OfferStakeLastObserved(int16_t& flag) {
  stakeLastFlag_ = &flag;
  stakeLast_ = new QCheckBox("放樣時可點選最後觀測點", this);
  stakeLast_->setObjectName("chkStakeLastObserved");
  stakeLast_->setChecked(flag != 0);
  auto* col = static_cast<QVBoxLayout*>(layout());
  col->insertWidget(col->count() - 1, stakeLast_);  // above the buttons
  adjustSize();
}

void FrmDispSetup::ShowBackground() {
  const QColor c = tavik::ui::ImageSurface::ToQColor(background_);
  colour_->setText(c.name().toUpper());
  // The swatch's own text stays readable on a dark colour.
  const QString ink = c.lightness() < 128 ? "#FFFFFF" : "#000000";
  colour_->setStyleSheet(QString("background-color: %1; color: %2;").arg(c.name(), ink));
}

void FrmDispSetup::accept() {
  display_.ShowPointMarks = marks_->isChecked();
  display_.ShowPointNames = names_->isChecked() ? tavik::kTrue : tavik::kFalse;
  display_.GridOn = grid_->isChecked();
  display_.TextScale = textScale_->value();
  display_.LineWidthScale = lineScale_->value();
  display_.Background = background_;
  if (stakeLastFlag_) *stakeLastFlag_ = stakeLast_->isChecked() ? tavik::kTrue : tavik::kFalse;
  QDialog::accept();
}

void LinkDisplaySettings(tavik::SettingsLinks& links, tavik::view::Display& d, tavik::ui::SettingsStore& store) {
  using tavik::SoftwareIni;
  using tavik::view::ScaleOrOne;
  links.Link(
      [&d, &store](const SoftwareIni& ini) {
        d.ShowPointNames = ini.ShowPointNames ? tavik::kTrue : tavik::kFalse;
        d.ShowPointMarks = ini.PointMarkStyle == 0;
        d.TextScale = ScaleOrOne(ini.TextScale, tavik::view::MinTextScale, tavik::view::MaxTextScale);
        d.LineWidthScale = ScaleOrOne(ini.LineWidthScale, tavik::view::MinLineWidthScale,
                                      tavik::view::MaxLineWidthScale);
        d.GridOn = ini.GridOn;
        // A colour that does not read leaves the white paper.
        const auto stored = tavik::num::ParseStrict(store.GetSetting(kApp, kSection, kBackground));
        d.Background = stored && *stored >= 0 && *stored <= 0xFFFFFF && *stored == static_cast<int64_t>(*stored)
                           ? static_cast<tavik::ui::Rgb>(*stored)
                           : tavik::ui::MakeRgb(255, 255, 255);
      },
      [&d, &store](SoftwareIni& ini) {
        ini.ShowPointNames = d.ShowPointNames != 0;
        ini.PointMarkStyle = d.ShowPointMarks ? 0 : 1;
        ini.TextScale = static_cast<float>(d.TextScale);
        ini.LineWidthScale = d.LineWidthScale;
        ini.GridOn = d.GridOn;
        store.SaveSetting(kApp, kSection, kBackground, std::to_string(d.Background));
      });
}

void AddDisplaySetupCommand(Program& program) {
  QMenu* setup = program.frm.Menu("MainMnuSetup");
  if (!setup || !program.edit) return;
  QAction* a = setup->addAction("顯示設定...");
  a->setObjectName("MainMnuDispSetup");
  QObject::connect(a, &QAction::triggered, &program.frm, [&program] {
    FrmDispSetup dlg(program.edit->Canvas().display, &program.frm);
    if (program.survey) dlg.OfferStakeLastObserved(program.survey->survey.StakeLastObserved);
    if (dlg.exec() != QDialog::Accepted) return;
    // The new look at once: the whole picture is painted again, with the marks the
    // survey keeps over it.
    if (program.survey)
      program.survey->panel()->RedrawAll();
    else
      program.frm.RedrawPaper();
  });
}

#include "app/survey_panel.h"

#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>
#include <QWidget>
#include <algorithm>

#include "app/dlgcadamete.h"
#include "app/inputhvsdlg.h"
#include "app/mainfrm.h"
#include "core/app_state.h"
#include "core/numbers.h"
#include "core/workfiles.h"
#include "instruments/instrument_state.h"
#include "view/screen_tables.h"
#include "view/extent.h"
#include "view/transform.h"

namespace {
QString Q(const std::string& s) { return QString::fromStdString(s); }
const tavik::ui::Rgb kGreen = tavik::ui::MakeRgb(0, 160, 0);
const tavik::ui::Rgb kRed = tavik::ui::MakeRgb(255, 0, 0);
const tavik::ui::Rgb kBlue = tavik::ui::MakeRgb(0, 0, 255);
}  // namespace

SurveyPanel::SurveyPanel(MainFrm& frm, tavik::App& app, tavik::InstrumentState& inst, tavik::ui::Dialogs& dialogs)
    : QDockWidget("測量", &frm), frm_(frm), app_(app), inst_(inst), dialogs_(dialogs) {
  setObjectName("SurveyPanel");
  setFeatures(QDockWidget::DockWidgetMovable);
  auto* body = new QWidget(this);
  auto* col = new QVBoxLayout(body);
  auto* buttons = new QHBoxLayout;
  rec_ = new QPushButton("記錄 (空白鍵)", body);
  rec_->setObjectName("RecButton");
  stop_ = new QPushButton("停止觀測", body);
  stop_->setObjectName("CmdSTOP");
  stop_->setEnabled(false);
  buttons->addWidget(rec_);
  buttons->addWidget(stop_);
  col->addLayout(buttons);
  connect(rec_, &QPushButton::clicked, this, [this] { if (OnRecord) OnRecord(); });
  connect(stop_, &QPushButton::clicked, this, [this] { if (OnStop) OnStop(); });
  auto* form = new QFormLayout;
  AddLabel(form, "LabelStaName", "測站");
  AddLabel(form, "LabelSZ", "測站高程");
  AddLabel(form, "LabelIH", "儀器高");
  AddLabel(form, "LabelTZ", "覘標高");
  AddLabel(form, "Label1XY(0)", "E");
  AddLabel(form, "Label1XY(1)", "N");
  AddLabel(form, "LabelHZ", "H");
  col->addLayout(form);
  col->addStretch(1);
  setWidget(body);
  frm.addDockWidget(Qt::RightDockWidgetArea, this);
  timer3_.setInterval(500);
  connect(&timer3_, &QTimer::timeout, this, &SurveyPanel::BlinkTick);
  connect(&frm, &MainFrm::paperCleared, this, &SurveyPanel::Forget);
}

void SurveyPanel::Forget() {
  // The picture is already wiped: the blink stops without drawing its last half.
  timer3_.stop();
  blinkShown_ = false;
  stationShown_ = false;
  targetShown_ = false;
  targetName_.clear();
  for (auto& [name, label] : labels_) label->clear();
}

void SurveyPanel::ShowStation() {
  const tavik::Document& doc = app_.doc;
  if (!doc.IsOpen() || !doc.StationSet || doc.StationName.empty()) return;
  auto f3 = [](double v) { return tavik::num::Format(v, "0.000"); };
  SetText("LabelStaName", doc.StationName);
  SetText("LabelSZ", f3(doc.StationH));
  SetText("LabelIH", f3(doc.InstrumentHeight));
  SetText("LabelTZ", f3(doc.TargetHeight));
}

QLabel* SurveyPanel::AddLabel(QFormLayout* form, const char* name, const QString& caption) {
  auto* l = new QLabel(widget());
  l->setObjectName(name);
  l->setFrameShape(QFrame::Panel);
  l->setFrameShadow(QFrame::Sunken);
  l->setMinimumWidth(110);
  form->addRow(caption, l);
  labels_[name] = l;
  return l;
}

QString SurveyPanel::Text(const std::string& control) const {
  auto it = labels_.find(control);
  return it == labels_.end() ? QString() : it->second->text();
}

void SurveyPanel::SetText(const std::string& control, const std::string& text) {
  if (auto it = labels_.find(control); it != labels_.end()) {
    it->second->setText(Q(text));
  } else if (control == "OBSBox") {
    frm_.SetOBSBox(text);
  } else if (control == "Label41") {
    frm_.SetLabel41(text);
  } else if (control == "Label42") {
    frm_.SetLabel42(text);
  } else if (control.rfind("StatusBar1(", 0) == 0) {
    frm_.SetPanel(std::atoi(control.c_str() + 11), text);
  }
}

void SurveyPanel::SetEnabled(const std::string& control, bool enabled) {
  if (control == "RecButton") rec_->setEnabled(enabled);
  if (control == "CmdSTOP") stop_->setEnabled(enabled);
}

// Pixel of Paper1's picture, which holds the visible area only: the paper transform
// counts from the whole four-by-four paper, whose visible part starts one and a half
// viewports in, as the editor's paper surface does for the map itself.
bool SurveyPanel::ToPixel(double E, double N, float& x, float& y) const {
  tavik::WorldToPaper(app_.view, app_.doc.ScaleDenominator, E, N, x, y);
  x -= 1.5f * app_.view.ViewWidthPixels;
  y -= 1.5f * app_.view.ViewHeightPixels;
  return true;
}

// Marks that the map's own repaint does not know of: the station, the stake-out target
// and the blinking last point, drawn over the picture after each repaint.
void SurveyPanel::Overlays() {
  auto& s = frm_.Paper1()->Surface();
  float x = 0, y = 0;
  if (stationShown_ && ToPixel(stationE_, stationN_, x, y)) {
    s.SetPen(kBlue, 2, tavik::ui::LineStyle::Solid);
    s.Line(x - 8, y + 6, x + 8, y + 6);
    s.Line(x - 8, y + 6, x, y - 8);
    s.Line(x + 8, y + 6, x, y - 8);
  }
  if (targetShown_ && ToPixel(targetE_, targetN_, x, y)) {
    s.SetPen(kRed, 1, tavik::ui::LineStyle::Solid);
    for (float r : {2.f, 3.f, 4.f}) s.Circle(x, y, r);
    if (targetRadius_ > 0) {
      s.SetPen(kRed, 1, tavik::ui::LineStyle::Dash);
      s.Circle(x, y, static_cast<float>(targetRadius_ / (app_.doc.ScaleDenominator / 100) * tavik::PixelsPerCm));
      s.SetPen(kRed, 1, tavik::ui::LineStyle::Solid);
    }
    s.Text(x + 4, y - 2 - 12, targetName_, kRed, 12);
  }
}

// A new mark or symbol is drawn by painting the map again. The full repaint stops the
// blink of the last point, which a mark alone would not: it goes on afterwards.
void SurveyPanel::RepaintKeepingBlink() {
  const bool blinking = timer3_.isActive();
  RedrawAll();
  if (blinking) timer3_.start();
}

void SurveyPanel::DrawPointMark(int32_t, double, double) { RepaintKeepingBlink(); }

void SurveyPanel::DrawHeightText(double E, double N, const std::string& text) {
  float x = 0, y = 0;
  ToPixel(E, N, x, y);
  frm_.Paper1()->Surface().Text(x + 6, y - 5 - 12, text, kGreen, 12);
  frm_.Paper1()->update();
}

void SurveyPanel::DrawSymbol(int16_t, double, double, double, const std::string&) { RepaintKeepingBlink(); }

void SurveyPanel::DrawStationMark(double E, double N) {
  stationShown_ = true;
  stationE_ = E;
  stationN_ = N;
  RedrawAll();
}

void SurveyPanel::DrawTargetMark(double E, double N, int16_t, const std::string& name) {
  targetShown_ = true;
  targetE_ = E;
  targetN_ = N;
  targetName_ = name;
  RedrawAll();
}

void SurveyPanel::EraseTargetMark() {
  targetShown_ = false;
  RedrawAll();
}

void SurveyPanel::FitViewTo(double minE, double minN, double maxE, double maxN, double factor) {
  tavik::Document& doc = app_.doc;
  tavik::view::FitScale(doc, app_.view, minE, minN, maxE, maxN);
  doc.ScaleDenominator *= factor;
  doc.ViewCentreE = (minE + maxE) / 2;
  doc.ViewCentreN = (minN + maxN) / 2;
  tavik::view::ComputeView(doc, app_.view);
  tavik::RebuildScreenPoints(doc, app_.view);
  tavik::RebuildScreenEntities(doc, app_.view);
  app_.work.WriteRecoveryHeader(doc);
  RedrawAll();
}

void SurveyPanel::FitViewToExtent() {
  tavik::Document& doc = app_.doc;
  tavik::view::FitWholeExtent(doc, app_.view);
  if (doc.ScaleDenominator <= 1) doc.ScaleDenominator = 1;
  tavik::RebuildScreenPoints(doc, app_.view);
  tavik::RebuildScreenEntities(doc, app_.view);
  app_.work.WriteRecoveryHeader(doc);
  RedrawAll();
}

void SurveyPanel::RedrawAll() {
  frm_.RedrawPaper();
  Overlays();
  blinkShown_ = false;
  frm_.Paper1()->update();
}

void SurveyPanel::Refresh() { frm_.Paper1()->update(); }

void SurveyPanel::BlinkTick() {
  float x = 0, y = 0;
  ToPixel(blinkE_, blinkN_, x, y);
  auto& s = frm_.Paper1()->Surface();
  s.SetDrawMode(tavik::ui::DrawMode::Invert);
  s.SetPen(kRed, 2, tavik::ui::LineStyle::Solid);
  s.Circle(x, y, 6);
  s.SetDrawMode(tavik::ui::DrawMode::Copy);
  blinkShown_ = !blinkShown_;
  frm_.Paper1()->update();
}

void SurveyPanel::StartBlink(double E, double N) {
  blinkE_ = E;
  blinkN_ = N;
  blinkShown_ = false;
  timer3_.start();
}

void SurveyPanel::StopBlink() {
  timer3_.stop();
  if (blinkShown_) BlinkTick();
}

void SurveyPanel::LinkPoints(double E1, double N1, double H1, double E2, double N2, double H2) {
  if (OnLink) OnLink(E1, N1, H1, E2, N2, H2);
}

void SurveyPanel::SafetySave() { app_.work.WriteRecoveryHeader(app_.doc); }

int16_t SurveyPanel::ShowCadastralDialog(std::string& pointName) {
  return DlgCadaMete::Ask(&frm_, pointName, lastCadastralName_);
}

bool SurveyPanel::ShowKeyedObservation() { return InputHVSDlg::Ask(inst_, dialogs_, &frm_); }

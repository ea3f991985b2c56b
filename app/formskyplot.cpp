#include "app/formskyplot.h"

#include <QFontDatabase>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QPainter>
#include <QVBoxLayout>

namespace {

using tavik::SkyPlot;

constexpr double kCentre = 166.5;   // zenith, in the form's units
constexpr double kHorizon = 150;    // radius of elevation 0

QLabel* ValueLabel(const char* name, QWidget* parent) {
  auto* l = new QLabel(parent);
  l->setObjectName(name);
  l->setFrameShape(QFrame::Panel);
  l->setFrameShadow(QFrame::Sunken);
  l->setMinimumWidth(48);
  return l;
}

}  // namespace

SkyPlotCanvas::SkyPlotCanvas(QWidget* parent) : QWidget(parent) {
  setObjectName("SkyPlotCanvas");
  setMinimumSize(240, 240);
  setAutoFillBackground(true);
  QPalette p = palette();
  p.setColor(QPalette::Window, Qt::white);
  setPalette(p);
}

void SkyPlotCanvas::SetPlot(const SkyPlot& plot) {
  plot_ = plot;
  update();
}

QPointF SkyPlotCanvas::ToPixels(double x, double y) const {
  const double scale = std::min(width(), height()) / SkyPlot::Size;
  return {x * scale, y * scale};
}

void SkyPlotCanvas::paintEvent(QPaintEvent*) {
  QPainter p(this);
  p.setRenderHint(QPainter::Antialiasing);
  const double scale = std::min(width(), height()) / SkyPlot::Size;
  p.scale(scale, scale);
  // Rings at elevations 0, 30 and 60 degrees, the two axes and the compass letters.
  p.setPen(QPen(QColor(128, 128, 128), 1 / scale));
  p.setBrush(Qt::NoBrush);
  // The rings centre on the zenith as the markers do: y is measured from the bottom edge.
  const QPointF zenith(kCentre, SkyPlot::Size - kCentre);
  for (double r : {kHorizon, kHorizon * 2 / 3, kHorizon / 3}) p.drawEllipse(zenith, r, r);
  p.drawLine(QPointF(kCentre - kHorizon, zenith.y()), QPointF(kCentre + kHorizon, zenith.y()));
  p.drawLine(QPointF(kCentre, zenith.y() - kHorizon), QPointF(kCentre, zenith.y() + kHorizon));
  QFont f = font();
  f.setPixelSize(12);
  p.setFont(f);
  p.setPen(Qt::black);
  p.drawText(QPointF(kCentre - 4, zenith.y() - kHorizon - 2), "N");
  p.drawText(QPointF(kCentre + kHorizon + 3, zenith.y() + 4), "E");
  p.drawText(QPointF(kCentre - 4, zenith.y() + kHorizon + 13), "S");
  p.drawText(QPointF(kCentre - kHorizon - 13, zenith.y() + 4), "W");

  const double half = SkyPlot::MarkerSize / 2;
  for (const SkyPlot::Marker& m : plot_.Markers) {
    p.setPen(QPen(Qt::black, 1 / scale));
    p.setBrush(m.Used ? QColor(0, 255, 0) : QColor(255, 255, 255));
    p.drawEllipse(QPointF(m.X, m.Y), half, half);
    p.drawText(QRectF(m.X - 8, m.Y - 7, 16, 14), Qt::AlignCenter, QString::number(m.Prn));
  }
}

FormSkyPlot::FormSkyPlot(QWidget* parent) : QWidget(parent, Qt::Window) {
  setObjectName("FormSkyPlot");
  setWindowTitle("衛星分佈圖");
  auto* row = new QHBoxLayout(this);
  canvas_ = new SkyPlotCanvas(this);
  row->addWidget(canvas_, 1);

  auto* side = new QVBoxLayout;
  auto* counts = new QGridLayout;
  inView_ = ValueLabel("Label4(2)", this);
  usable_ = ValueLabel("Label4(3)", this);
  pdop_ = ValueLabel("LabelPDOP", this);
  hdop_ = ValueLabel("LabelHDOP", this);
  vdop_ = ValueLabel("LabelVDOP", this);
  const std::pair<const char*, QLabel*> rows[] = {
      {"現有衛星", inView_}, {"可用衛星", usable_}, {"PDOP", pdop_}, {"HDOP", hdop_}, {"VDOP", vdop_}};
  int r = 0;
  for (auto [caption, label] : rows) {
    counts->addWidget(new QLabel(caption, this), r, 0);
    counts->addWidget(label, r++, 1);
  }
  side->addLayout(counts);

  auto* header = new QLabel(SkyPlot::ListHeader, this);
  header->setObjectName("ListHeader");
  QFont mono = QFontDatabase::systemFont(QFontDatabase::FixedFont);
  header->setFont(mono);
  side->addWidget(header);
  auto* listsRow = new QHBoxLayout;
  listsRow->setSpacing(0);
  for (int i = 0; i < 4; ++i) {
    lists_[i] = new QListWidget(this);
    lists_[i]->setObjectName(QString("List%1").arg(i + 1));
    lists_[i]->setFixedWidth(56);
    lists_[i]->setSelectionMode(QAbstractItemView::NoSelection);
    lists_[i]->setFocusPolicy(Qt::NoFocus);
    // Rows without a signal show on the button face, those with one on white.
    QPalette pal = lists_[i]->palette();
    pal.setColor(QPalette::Base, pal.color(QPalette::Button));
    lists_[i]->setPalette(pal);
    listsRow->addWidget(lists_[i]);
  }
  side->addLayout(listsRow, 1);
  row->addLayout(side);
  resize(640, 380);
}

void FormSkyPlot::ShowSkyPlot(const SkyPlot& plot) {
  canvas_->SetPlot(plot);
  inView_->setText(QString::fromStdString(plot.Label4_2));
  usable_->setText(QString::fromStdString(plot.Label4_3));
  pdop_->setText(QString::fromStdString(plot.LabelPDOP));
  hdop_->setText(QString::fromStdString(plot.LabelHDOP));
  vdop_->setText(QString::fromStdString(plot.LabelVDOP));
  for (QListWidget* l : lists_) l->clear();
  for (const SkyPlot::ListRow& row : plot.Lists) {
    const int values[4] = {row.Prn, row.Elevation, row.Azimuth, row.Snr};
    for (int i = 0; i < 4; ++i) {
      auto* item = new QListWidgetItem(QString::number(values[i]), lists_[i]);
      if (row.Used) item->setBackground(Qt::white);
    }
  }
}

#include "app/legmenu.h"

#include <QAction>
#include <QFontMetrics>
#include <QTabBar>
#include <algorithm>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QTabWidget>
#include <QToolBar>
#include <QVBoxLayout>

#include "view/legends.h"

namespace {
QString Q(const std::string& s) { return QString::fromStdString(s); }
QString CurrentText(int code) {
  return Q("目前圖例: " + std::to_string(code) + " " + tavik::view::LegendMenuText(code));
}
}  // namespace

LegMenu::LegMenu(QWidget* parent, tavik::Document& doc, bool edu) : QDialog(parent), doc_(doc), edu_(edu) {
  setObjectName(edu ? "EduLegends" : "LegMenu");
  setWindowTitle(Q(tavik::view::LegMenuCaption));
  auto* layout = new QVBoxLayout(this);
  auto* tabs = new QTabWidget(this);
  tabs->setObjectName("SSTab1");
  // All nine tabs stay in sight: no scrolling strip, the dialog is as wide as the tabs.
  tabs->tabBar()->setUsesScrollButtons(false);
  tabs->tabBar()->setElideMode(Qt::ElideNone);
  // Every page is one grid of equal cells, the same columns on every tab, buttons as
  // wide as the widest caption, filled from the top left.
  const auto& all = tavik::view::LegMenuTabs();
  std::size_t most = 0;
  int widest = 0;
  const QFontMetrics metrics(font());
  for (const auto& tab : all) {
    most = std::max(most, tab.codes.size());
    for (int code : tab.codes) widest = std::max(widest, metrics.horizontalAdvance(Q(tavik::view::LegendMenuText(code))));
  }
  const int columns = most > 40 ? 6 : 5;
  const int rows = static_cast<int>((most + columns - 1) / columns);
  for (const auto& tab : all) {
    auto* page = new QWidget(tabs);
    auto* grid = new QGridLayout(page);
    grid->setSpacing(4);
    int i = 0;
    for (int code : tab.codes) {
      auto* b = new QPushButton(Q(tavik::view::LegendMenuText(code)), page);
      b->setObjectName(QString("Btn%1_%2").arg(tab.classDigit * 100).arg(code));
      b->setToolTip(QString::number(code));
      b->setMinimumWidth(widest + 16);
      b->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
      connect(b, &QPushButton::clicked, this, [this, code] { Pick(code); });
      grid->addWidget(b, i / columns, i % columns);
      ++i;
    }
    for (int c = 0; c < columns; ++c) grid->setColumnStretch(c, 1);
    grid->setRowStretch(rows, 1);
    tabs->addTab(page, Q(std::to_string(tab.classDigit * 100) + " " + tab.title));
  }
  tabs->setMinimumWidth(tabs->tabBar()->sizeHint().width() + 8);
  layout->addWidget(tabs);
  auto* row = new QHBoxLayout;
  current_ = new QLabel(CurrentText(doc_.CurrentLegend), this);
  current_->setObjectName("CurrentLegend");
  row->addWidget(current_, 1);
  auto* ok = new QPushButton("確定", this);
  ok->setObjectName("OKButton");
  auto* close = new QPushButton("關閉", this);
  close->setObjectName("Command1");
  connect(ok, &QPushButton::clicked, this, &QDialog::accept);
  connect(close, &QPushButton::clicked, this, &QDialog::reject);
  row->addWidget(ok);
  row->addWidget(close);
  layout->addLayout(row);
}

void LegMenu::Pick(int code) {
  const int16_t before = doc_.CurrentLegend;
  if (edu_)
    tavik::view::EduLegendsPick(doc_, code);
  else
    tavik::view::LegMenuPick(doc_, code);
  current_->setText(CurrentText(doc_.CurrentLegend));
  if (doc_.CurrentLegend != before && OnPicked) OnPicked(doc_.CurrentLegend);
}

void AddLegendButton(QToolBar* toolbar, tavik::Document& doc, std::function<std::string()> actionMode,
                     tavik::ui::Dialogs& dialogs, std::function<void(int16_t)> picked) {
  QAction* a = toolbar->addAction("圖例");
  a->setObjectName("LegendButton");
  QObject::connect(a, &QAction::triggered, toolbar, [toolbar, &doc, actionMode, &dialogs, picked] {
    if (!tavik::view::LegendButton_Click(actionMode ? actionMode() : std::string(), dialogs)) return;
    LegMenu menu(toolbar->window(), doc);
    menu.OnPicked = picked;
    menu.exec();
  });
}

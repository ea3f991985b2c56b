#include "app/image_basemap.h"

#include <QAction>
#include <QCheckBox>
#include <QDialog>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QMenu>
#include <QPushButton>
#include <QSlider>
#include <QTimer>
#include <QVBoxLayout>
#include <filesystem>

#include "app/edit_wiring.h"
#include "app/mainfrm.h"
#include "app/program.h"
#include "core/view_state.h"

namespace {

constexpr const char* Title = "影像底圖";
constexpr const char* ImageFilter =
    "影像(*.tif;*.tiff;*.jpg;*.jpeg;*.png)|*.tif;*.tiff;*.jpg;*.jpeg;*.png|所有檔案(*.*)|*.*";

QString Q(const std::string& s) { return QString::fromStdString(s); }

}  // namespace

ImageBaseMap::ImageBaseMap(Program& program, EditWiring& edit)
    : QObject(&program.frm), program_(program), edit_(edit) {
  MainFrm& frm = program_.frm;
  edit_.Canvas().display.Underlay = [this] { Draw(); };
  // A document saved under another name takes its images along.
  frm.handlers.SaveAs = [this, saveAs = frm.handlers.SaveAs] {
    Follow();
    savingAs_ = true;
    if (saveAs) saveAs();
    savingAs_ = false;
    const std::string& name = program_.app.doc.DocumentName;
    if (name.empty() || name == loadedFor_) return;
    loadedFor_ = name;
    Save();
  };
  if (QMenu* import = frm.Menu("MainMnuImport")) {
    QAction* a = import->addAction("匯入影像底圖...");
    a->setObjectName("ImportImage");
    connect(a, &QAction::triggered, this, [this] { Import(); });
  }
  QMenu* bm = frm.Menu("MainMnuBasemap");
  QAction* setup = frm.Command("BmDispSetup");
  if (bm && setup) {
    show_ = new QAction("顯示影像底圖", bm);
    show_->setObjectName("BmImageShow");
    show_->setCheckable(true);
    bm->insertAction(setup, show_);
    connect(show_, &QAction::triggered, this, [this](bool on) { SetShown(on); });
    connect(setup, &QAction::triggered, this, [this] { ShowSettings(); });
    setup->setVisible(true);
    // The images need no vector base map: both items work whenever a document is open.
    connect(bm, &QMenu::aboutToShow, this, [this, setup] {
      Follow();
      setup->setEnabled(program_.app.doc.IsOpen());
    });
  }
}

void ImageBaseMap::Later(const std::string& message) {
  QTimer::singleShot(0, this, [this, message] { program_.dialogs.MsgBox(message, Title); });
}

void ImageBaseMap::ShowToggle() {
  if (!show_) return;
  show_->setEnabled(program_.app.doc.IsOpen() && !settings_.Images.empty());
  show_->setChecked(settings_.Shown);
}

void ImageBaseMap::Follow() {
  const std::string& name = program_.app.doc.DocumentName;
  if (name == loadedFor_ || savingAs_) return;
  loadedFor_ = name;
  settings_ = {};
  images_.clear();
  ShowToggle();
  if (name.empty()) return;
  std::string message;
  if (!tavik::basemap::ReadImageList(tavik::basemap::ImageListPath(name), settings_, message)) {
    Later(message);
    return;
  }
  std::string failed;
  for (const auto& e : settings_.Images) {
    std::string why;
    images_.push_back(tavik::basemap::RasterImage::Open(e.Path, why));
    if (!images_.back()) failed += (failed.empty() ? "" : "\r\n\r\n") + why;
  }
  ShowToggle();
  if (!failed.empty()) Later(failed);
}

void ImageBaseMap::Draw() {
  Follow();
  auto& app = program_.app;
  if (!app.doc.IsOpen() || !settings_.Shown) return;
  QImage& picture = program_.frm.Paper1()->Surface().Pixels();
  if (picture.format() != QImage::Format_RGB32 && picture.format() != QImage::Format_ARGB32) return;
  // The picture holds the visible part of Paper1, which starts 1.5 views into it.
  tavik::basemap::RasterView v;
  tavik::PaperToWorld(app.view, app.doc.ScaleDenominator, 1.5 * app.view.ViewWidthPixels,
                      1.5 * app.view.ViewHeightPixels, v.LeftE, v.TopN);
  v.MetresPerPixel = app.doc.ScaleDenominator / 100 / tavik::PixelsPerCm;
  v.Width = picture.width();
  v.Height = picture.height();
  auto* pixels = reinterpret_cast<uint32_t*>(picture.bits());
  const int stride = static_cast<int>(picture.bytesPerLine() / 4);
  for (std::size_t i = 0; i < images_.size() && i < settings_.Images.size(); ++i) {
    if (!images_[i] || !settings_.Images[i].Shown) continue;
    std::string message;
    if (!images_[i]->Render(v, settings_.Look, pixels, stride, message)) {
      images_[i].reset();  // said once; the list keeps it for the next opening
      Later(message);
    }
  }
}

void ImageBaseMap::Save() {
  if (!program_.app.doc.IsOpen()) return;
  std::string message;
  if (!tavik::basemap::WriteImageList(tavik::basemap::ImageListPath(program_.app.doc.DocumentName), settings_,
                                      message))
    program_.dialogs.MsgBox(message, Title);
}

void ImageBaseMap::Redraw() {
  edit_.Host().Redraw();
  program_.frm.Paper1()->update();
}

void ImageBaseMap::ZoomTo(std::size_t row) {
  if (!Image(row)) return;
  double minE, minN, maxE, maxN;
  Image(row)->Extent(minE, minN, maxE, maxN);
  edit_.Host().ZoomWindow(minE, minN, maxE, maxN);
  program_.frm.Paper1()->update();
}

bool ImageBaseMap::Import(std::string path) {
  auto& doc = program_.app.doc;
  if (!doc.IsOpen()) return false;
  Follow();
  if (path.empty()) {
    const std::string folder = std::filesystem::path(doc.DocumentName).parent_path().string();
    path = program_.dialogs.OpenFileName("匯入影像底圖", ImageFilter, folder);
    if (path.empty()) return false;
  }
  std::string message;
  auto img = tavik::basemap::RasterImage::Open(path, message);
  if (!img) {
    program_.dialogs.MsgBox(message, Title);
    return false;
  }
  double minE, minN, maxE, maxN;
  img->Extent(minE, minN, maxE, maxN);
  const auto& v = program_.app.view;
  const bool onScreen = maxE >= v.ScreenMinE && minE <= v.ScreenMaxE && maxN >= v.ScreenMinN && minN <= v.ScreenMaxN;
  settings_.Images.push_back({path, true});
  images_.push_back(std::move(img));
  settings_.Shown = true;
  ShowToggle();
  Save();
  if (onScreen)
    Redraw();
  else
    ZoomTo(images_.size() - 1);
  return true;
}

void ImageBaseMap::SetShown(bool shown) {
  Follow();
  if (settings_.Shown == shown) return;
  settings_.Shown = shown;
  ShowToggle();
  Save();
  Redraw();
}

void ImageBaseMap::ShowSettings() {
  if (!program_.app.doc.IsOpen()) return;
  Follow();
  QDialog dlg(&program_.frm);
  dlg.setObjectName("BmDispSetup");
  dlg.setWindowTitle("底圖顯示設定");
  auto* col = new QVBoxLayout(&dlg);
  col->addWidget(new QLabel("影像底圖(勾選者顯示,先列者在下層)", &dlg));
  auto* list = new QListWidget(&dlg);
  list->setObjectName("Images");
  col->addWidget(list);
  auto fill = [this, list] {
    QSignalBlocker quiet(list);
    list->clear();
    for (std::size_t i = 0; i < settings_.Images.size(); ++i) {
      const auto& e = settings_.Images[i];
      auto* item = new QListWidgetItem(Q(Image(i) ? e.Path : e.Path + "  (無法開啟)"), list);
      item->setFlags(item->flags() | Qt::ItemIsUserCheckable);
      item->setCheckState(e.Shown ? Qt::Checked : Qt::Unchecked);
    }
  };
  fill();
  connect(list, &QListWidget::itemChanged, &dlg, [this, list](QListWidgetItem* item) {
    const auto row = static_cast<std::size_t>(list->row(item));
    if (row >= settings_.Images.size()) return;
    settings_.Images[row].Shown = item->checkState() == Qt::Checked;
    Save();
    Redraw();
  });

  auto* buttons = new QHBoxLayout;
  auto button = [&dlg, buttons](const char* name, const char* caption) {
    auto* b = new QPushButton(caption, &dlg);
    b->setObjectName(name);
    buttons->addWidget(b);
    return b;
  };
  connect(button("AddImage", "加入影像..."), &QPushButton::clicked, &dlg, [this, fill] {
    if (Import()) fill();
  });
  connect(button("RemoveImage", "移除"), &QPushButton::clicked, &dlg, [this, list, fill] {
    const int row = list->currentRow();
    if (row < 0 || row >= static_cast<int>(settings_.Images.size())) return;
    settings_.Images.erase(settings_.Images.begin() + row);
    images_.erase(images_.begin() + row);
    ShowToggle();
    Save();
    fill();
    Redraw();
  });
  connect(button("ZoomToImage", "縮放至影像"), &QPushButton::clicked, &dlg, [this, list] {
    if (list->currentRow() >= 0) ZoomTo(static_cast<std::size_t>(list->currentRow()));
  });
  col->addLayout(buttons);

  auto* form = new QFormLayout;
  auto* shown = new QCheckBox("顯示影像底圖", &dlg);
  shown->setObjectName("ShowImages");
  shown->setChecked(settings_.Shown);
  connect(shown, &QCheckBox::toggled, &dlg, [this](bool on) { SetShown(on); });
  form->addRow(shown);
  auto slider = [&dlg, form](const char* name, const char* caption, int lo, int hi, int value) {
    auto* s = new QSlider(Qt::Horizontal, &dlg);
    s->setObjectName(name);
    s->setRange(lo, hi);
    s->setValue(value);
    auto* shownValue = new QLabel(QString::number(value), &dlg);
    shownValue->setMinimumWidth(30);
    connect(s, &QSlider::valueChanged, shownValue, [shownValue](int v) { shownValue->setText(QString::number(v)); });
    auto* row = new QHBoxLayout;
    row->addWidget(s, 1);
    row->addWidget(shownValue);
    form->addRow(caption, row);
    return s;
  };
  QSlider* brightness = slider("Brightness", "亮度", -100, 100, settings_.Look.Brightness);
  QSlider* transparency = slider("Transparency", "透明度(%)", 0, 100, settings_.Look.Transparency);
  connect(brightness, &QSlider::valueChanged, &dlg, [this](int v) {
    settings_.Look.Brightness = v;
    Redraw();
  });
  connect(transparency, &QSlider::valueChanged, &dlg, [this](int v) {
    settings_.Look.Transparency = v;
    Redraw();
  });
  col->addLayout(form);

  auto* close = new QDialogButtonBox(&dlg);
  close->addButton("關閉", QDialogButtonBox::AcceptRole)->setObjectName("Close");
  connect(close, &QDialogButtonBox::accepted, &dlg, &QDialog::accept);
  col->addWidget(close);
  dlg.resize(560, 420);
  dlg.exec();
  Save();  // the look as it was left
}

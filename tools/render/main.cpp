// tavik-render FILE.SPC OUT.png [--size WxH] [--scale N] [--centre E,N]
// Draws a document as the program shows it, without a window: by default its whole
// extent as ZE would show it on a 1600 x 1200 view. Messages the repaint would show
// (a collinear arc, say) go to standard error. Exit 0 done, 1 unusable input, 2 usage.
#include <QGuiApplication>
#include <QImage>
#include <stdlib.h>

#include <cctype>
#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

#include "core/docfile.h"
#include "core/numbers.h"
#include "platform/qt/image_surface.h"
#include "platform/scripted/scripted.h"
#include "view/document_view.h"
#include "view/headless.h"

namespace {

int Usage() {
  std::fprintf(stderr, "usage: tavik-render FILE.SPC OUT.png [--size WxH] [--scale N] [--centre E,N]\n");
  return 2;
}

// The toolkit looks into the user's runtime folder as it starts, and without one (a
// batch job, a shell with no desktop session) it warns and makes one of its own under
// the temporary folder that outlives the run. Given none, the renderer lends it a
// private empty folder for the run and removes it afterwards.
class RuntimeFolder {
 public:
  RuntimeFolder() {
    if (!qEnvironmentVariableIsEmpty("XDG_RUNTIME_DIR")) return;
    std::string pattern = (std::filesystem::temp_directory_path() / "tavik-render-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr) return;
    path_ = pattern;
    qputenv("XDG_RUNTIME_DIR", QByteArray::fromStdString(path_));
  }
  ~RuntimeFolder() {
    if (path_.empty()) return;
    std::error_code ec;
    std::filesystem::remove_all(path_, ec);
  }
  RuntimeFolder(const RuntimeFolder&) = delete;
  RuntimeFolder& operator=(const RuntimeFolder&) = delete;

 private:
  std::string path_;
};

}  // namespace

int main(int argc, char** argv) {
  using namespace tavik;
  std::vector<std::string> args(argv + 1, argv + argc);
  std::vector<std::string> files;
  view::HeadlessView options;
  for (std::size_t i = 0; i < args.size(); ++i) {
    const std::string& a = args[i];
    const bool hasValue = i + 1 < args.size();
    if (a == "--size") {
      if (!hasValue || !view::ParseSize(args[++i], options.width, options.height)) return Usage();
    } else if (a == "--scale") {
      if (!hasValue) return Usage();
      const auto s = num::ParseStrict(args[++i]);
      if (!s || !(*s >= 1) || *s > 1e8) return Usage();
      options.scale = *s;
    } else if (a == "--centre" || a == "--center") {
      double E, N;
      if (!hasValue || !view::ParseCentre(args[++i], E, N)) return Usage();
      options.centreE = E;
      options.centreN = N;
    } else if (a.size() > 1 && a[0] == '-' && a[1] == '-') {
      return Usage();
    } else {
      files.push_back(a);
    }
  }
  if (files.size() != 2) return Usage();

  // Text needs a font database: the offscreen platform gives one without a display.
  if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  RuntimeFolder runtime;
  int qargc = 1;
  QGuiApplication app(qargc, argv);

  Document doc;
  ui::ScriptedDialogs dialogs;
  std::filesystem::path in(files[0]);
  SetDocumentName(doc, (in.parent_path() / in.stem()).string());
  std::string ext = in.extension().string();
  for (char& c : ext) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  bool loaded = false;
  if (ext == ".SP") {
    View scratch;
    doc.SpPath = files[0];
    loaded = LoadOldDocument(doc, scratch, dialogs);
  } else {
    doc.SpcPath = files[0];
    loaded = LoadDocument(doc, dialogs);
  }
  if (!loaded) {
    std::fprintf(stderr, "tavik-render: %s\n",
                 dialogs.shown.empty() ? "cannot read the document" : dialogs.shown.back().text.c_str());
    return 1;
  }
  ui::ImageSurface surface(options.width, options.height);
  if (!view::RenderHeadless(doc, options, surface, dialogs)) return Usage();
  for (const auto& shown : dialogs.shown) std::fprintf(stderr, "tavik-render: %s\n", shown.text.c_str());
  if (!surface.Image().save(QString::fromStdString(files[1]), "PNG")) {
    std::fprintf(stderr, "tavik-render: cannot write %s\n", files[1].c_str());
    return 1;
  }
  return 0;
}

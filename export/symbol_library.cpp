#include "export/symbol_library.h"

#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <set>
#include <system_error>

#include "core/durable_file.h"
#include "core/numbers.h"
#include "core/text.h"
#include "view/decorations.h"
#include "view/legends.h"
#include "view/symbols.h"

namespace tavik::dxf {

namespace fs = std::filesystem;

namespace {

constexpr double k = SymbolPixel;

// A real value as the export writes them: a blank before a value that is not negative,
// one after every value.
std::string Real(double v) {
  if (v == 0) v = 0;  // no "-0"
  const std::string s = num::Plain(v);
  return (v < 0 ? "" : " ") + s + " ";
}

struct Block {
  std::string text;
  void Item(const char* group, const std::string& value) {
    text += group;
    text += '\n';
    text += value;
    text += '\n';
  }
  void Point(double x, double y, const char* gx = " 10", const char* gy = " 20", const char* gz = " 30") {
    Item(gx, Real(x));
    Item(gy, Real(y));
    Item(gz, Real(0));
  }
  // Every entity of a block lies on layer 0 with its colour BYBLOCK, so that it takes
  // the layer and colour of each INSERT.
  void Head(const char* type) {
    Item("  0", type);
    Item("  8", "0");
    Item(" 62", "     0");
  }
  // Pixel offsets (y downward) to block units (y upward).
  void Line(double x1, double y1, double x2, double y2) {
    Head("LINE");
    Point(x1 * k, -y1 * k);
    Point(x2 * k, -y2 * k, " 11", " 21", " 31");
  }
  void Circle(double x, double y, double r) {
    Head("CIRCLE");
    Point(x * k, -y * k);
    Item(" 40", Real(r * k));
  }
  void Arc(double x, double y, double r, double a1, double a2) {
    Head("ARC");
    Point(x * k, -y * k);
    Item(" 40", Real(r * k));
    Item(" 50", Real(std::fmod(a1, 360)));
    Item(" 51", Real(std::fmod(a2, 360)));
  }
  // A filled dot: its outline, and a closed two-vertex polyline of half-circle bulges
  // whose width fills it, the form CAD programs give a solid dot.
  void Dot(double x, double y, double r) {
    Circle(x, y, r);
    Head("POLYLINE");
    Item(" 66", "     1");
    Point(0, 0);
    Item(" 70", "     1");
    Item(" 40", Real(r * k));
    Item(" 41", Real(r * k));
    for (double side : {-0.5, 0.5}) {
      Item("  0", "VERTEX");
      Item("  8", "0");
      Point((x + side * r) * k, -y * k);
      Item(" 42", Real(1));
    }
    Item("  0", "SEQEND");
    Item("  8", "0");
  }
  // A character with its top-left corner at the offset, as the map prints it.
  void Text(double x, double y, double size, const std::string& utf8) {
    Head("TEXT");
    Point(x * k, -(y + size) * k);
    Item(" 40", Real(size * k));
    Item("  1", text::ToCp950(utf8));
    Item(" 50", Real(0));
    Item("  7", "STANDARD");
  }
};

void Play(Block& b, const std::vector<view::GlyphOp>& ops) {
  for (const view::GlyphOp& op : ops) {
    const auto& v = op.v;
    switch (op.kind) {
      case 'L':
        b.Line(v[0], v[1], v[2], v[3]);
        break;
      case 'P':
        for (std::size_t i = 2; i + 1 < v.size(); i += 2) b.Line(v[i - 2], v[i - 1], v[i], v[i + 1]);
        break;
      case 'R':
        b.Line(v[0], v[1], v[2], v[1]);
        b.Line(v[2], v[1], v[2], v[3]);
        b.Line(v[2], v[3], v[0], v[3]);
        b.Line(v[0], v[3], v[0], v[1]);
        break;
      case 'C':
        if (v.size() == 1)
          b.Circle(0, 0, v[0]);
        else
          b.Circle(v[0], v[1], v[2]);
        break;
      case 'D':
        b.Dot(v[0], v[1], v[2]);
        break;
      case 'A':
        b.Arc(v[0], v[1], v[2], v[3], v[4]);
        break;
      case 'T':
        b.Text(v[0], v[1], v[2], op.text);
        break;
      default:
        break;
    }
  }
}

// The mark a decorated line repeats, drawn at the origin for a line along +x: the export
// turns each copy to the line's direction. Pixel y grows downward, so the left of the
// direction of travel is -y here.
void PlayMark(Block& b, const view::LineDecoration& d) {
  const double s = d.size;
  switch (d.mark) {
    case view::LineMark::TicksLeft:
      b.Line(0, 0, 0, -s);
      break;
    case view::LineMark::TicksBoth:
      b.Line(0, s, 0, -s);
      break;
    case view::LineMark::Crosses:
      b.Line(-0.7 * s, 0.7 * s, 0.7 * s, -0.7 * s);
      b.Line(-0.7 * s, -0.7 * s, 0.7 * s, 0.7 * s);
      break;
    case view::LineMark::Rings:
      b.Circle(0, 0, s);
      break;
    case view::LineMark::RingsLeft:
      b.Circle(0, -(s + 1), s);
      break;
    case view::LineMark::Letter:
      b.Text(-s / 2, -s - 2, s, d.letter);
      break;
    case view::LineMark::None:
      break;
  }
}

// The default block: a ring with a cross, the sign of a thing the legend doesn't know.
const std::vector<view::GlyphOp>& DefaultGlyph() {
  static const std::vector<view::GlyphOp> g = {
      {'C', {0, 0, 5}, ""}, {'L', {-3.5, -3.5, 3.5, 3.5}, ""}, {'L', {-3.5, 3.5, 3.5, -3.5}, ""}};
  return g;
}

}  // namespace

std::string SymbolFileName(int code) { return std::to_string(code) + ".dxf"; }

const std::vector<int>& SymbolLibraryCodes() {
  static const std::vector<int> codes = [] {
    std::set<int> all;
    for (int code = 1; code < DefaultBlockCode; ++code) {
      if (view::GlyphOps(code) || view::LineDecorationOf(code).mark != view::LineMark::None ||
          !view::LegendName(code).empty() || !view::LegendMenuText(code).empty())
        all.insert(code);
    }
    std::vector<int> v(all.begin(), all.end());
    v.push_back(DefaultBlockCode);
    return v;
  }();
  return codes;
}

std::string SymbolBlockFile(int code) {
  const auto& codes = SymbolLibraryCodes();
  if (!std::binary_search(codes.begin(), codes.end(), code)) return {};
  Block b;
  // The six lines the export replaces with the legend's own.
  b.Item("  0", "BLOCK");
  b.Item("  8", "0");
  b.Item("  2", std::to_string(code));
  b.Item(" 70", "     0");
  b.Point(0, 0);
  if (code == DefaultBlockCode) {
    Play(b, DefaultGlyph());
  } else if (const auto* ops = view::GlyphOps(code)) {
    Play(b, *ops);
  } else {
    PlayMark(b, view::LineDecorationOf(code));
  }
  b.Item("  0", "ENDBLK");
  b.Item("  8", "0");
  return b.text;
}

namespace {

bool HoldsLibrary(const fs::path& dir) {
  std::error_code ec;
  return !dir.empty() && fs::is_regular_file(dir / SymbolFileName(DefaultBlockCode), ec);
}

fs::path ExecutableFolder() {
  std::error_code ec;
  const fs::path exe = fs::read_symlink("/proc/self/exe", ec);
  return ec ? fs::path() : exe.parent_path();
}

}  // namespace

fs::path ShippedSymbolLibrary() {
  std::vector<fs::path> places;
  if (const fs::path here = ExecutableFolder(); !here.empty()) {
    places.push_back(here / "symb");
    places.push_back(here.parent_path() / "share" / "tavik" / "symb");
  }
#ifdef TAVIK_SYMB_SOURCE
  places.emplace_back(TAVIK_SYMB_SOURCE);
#endif
  for (const fs::path& p : places)
    if (HoldsLibrary(p)) return p;
  return {};
}

fs::path SymbolLibraryFolder(const AppPaths& paths) {
  const fs::path own = paths.Symb();
  if (HoldsLibrary(own)) return own;
  const fs::path shipped = ShippedSymbolLibrary();
  return shipped.empty() ? own : shipped;
}

int InstallSymbolLibrary(const AppPaths& paths) {
  const fs::path from = ShippedSymbolLibrary();
  if (from.empty()) return -1;
  const fs::path to = paths.Symb();
  std::error_code ec;
  fs::create_directories(to, ec);
  int copied = 0;
  for (fs::directory_iterator it(from, ec), end; !ec && it != end; it.increment(ec)) {
    const fs::path name = it->path().filename();
    // The blocks and the layouts of the workbooks.
    const std::string ext = text::UpperAscii(name.extension().string());
    if (ext != ".DXF" && ext != ".TPL") continue;
    std::error_code e2;
    if (fs::exists(AppPaths::Find(to, name.string()), e2)) continue;
    if (!fs::copy_file(it->path(), to / name, e2)) return -1;
    ++copied;
  }
  return ec ? -1 : copied;
}

bool WriteSymbolLibrary(const fs::path& dir) {
  std::error_code ec;
  fs::create_directories(dir, ec);
  for (int code : SymbolLibraryCodes())
    if (!io::WriteNewFile(dir / SymbolFileName(code), SymbolBlockFile(code))) return false;
  return true;
}

}  // namespace tavik::dxf

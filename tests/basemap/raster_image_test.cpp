// Images under the map: what is drawn for a view is compared pixel by pixel with the
// window GDAL's own gdal_translate cuts out of the same file (-srcwin, and -ovr for an
// overview), so the choice of level, the window and the resampling are checked against
// an independent reader. The fixtures are made by GDAL's tools from a PPM written here.
#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <sstream>

#include "basemap/image_list.h"
#include "basemap/raster_image.h"
#include "core/temp_home.h"
#include "export/peer.h"

namespace tavik::basemap {
namespace {

using tavik::testing::RunPeer;
namespace fs = std::filesystem;

constexpr int W = 300, H = 200;
constexpr double OriginE = 250000, OriginN = 2650000, Pixel = 0.5;

uint32_t Pattern(int x, int y) {
  return 0xFF000000u | static_cast<uint32_t>((x * 7 + y) & 255) << 16 | static_cast<uint32_t>((y * 5) & 255) << 8 |
         static_cast<uint32_t>((x ^ y) & 255);
}

void WritePpm(const fs::path& p) {
  std::ofstream out(p, std::ios::binary);
  out << "P6\n" << W << " " << H << "\n255\n";
  for (int y = 0; y < H; ++y)
    for (int x = 0; x < W; ++x) {
      const uint32_t c = Pattern(x, y);
      out.put(static_cast<char>(c >> 16)).put(static_cast<char>(c >> 8)).put(static_cast<char>(c));
    }
}

// A binary PNM as 0xFFRRGGBB pixels.
std::vector<uint32_t> ReadPnm(const fs::path& p, int& w, int& h) {
  std::ifstream in(p, std::ios::binary);
  std::string magic;
  int maxval = 0;
  in >> magic >> w >> h >> maxval;
  in.get();
  std::vector<uint32_t> px(static_cast<std::size_t>(w * h));
  for (auto& v : px) {
    unsigned char rgb[3];
    in.read(reinterpret_cast<char*>(rgb), 3);
    v = 0xFF000000u | rgb[0] << 16 | rgb[1] << 8 | rgb[2];
  }
  return px;
}

int RunTool(const std::string& cmd) {
  int rc = -1;
  RunPeer(cmd + " >/dev/null 2>&1", &rc);
  return rc;
}

class RasterImageTest : public ::testing::Test {
 protected:
  void SetUp() override {
    WritePpm(dir.path / "src.ppm");
    tif = (dir.path / "photo.tif").string();
    char ullr[200];
    std::snprintf(ullr, sizeof ullr, "%.3f %.3f %.3f %.3f", OriginE, OriginN, OriginE + W * Pixel, OriginN - H * Pixel);
    ASSERT_EQ(0, RunTool("gdal_translate -q -of GTiff -co TILED=YES -co BLOCKXSIZE=64 -co BLOCKYSIZE=64 -a_ullr " +
                     std::string(ullr) + " " + (dir.path / "src.ppm").string() + " " + tif));
    ASSERT_EQ(0, RunTool("gdaladdo -q -r nearest " + tif + " 2 4"));
  }

  // gdal_translate's window of the image at overview `ovr` (-1 the full image), in
  // pixels of that level; -srcwin itself counts pixels of the full image.
  std::vector<uint32_t> Peer(int ovr, int x, int y, int w, int h) {
    const fs::path out = dir.path / "peer.ppm";
    std::string cmd = "gdal_translate -q -of PNM ";
    if (ovr >= 0) cmd += "-ovr " + std::to_string(ovr) + " ";
    const int f = ovr < 0 ? 1 : 2 << ovr;
    x *= f, y *= f, w *= f, h *= f;
    cmd += "-srcwin " + std::to_string(x) + " " + std::to_string(y) + " " + std::to_string(w) + " " +
           std::to_string(h) + " " + tif + " " + out.string();
    EXPECT_EQ(0, RunTool(cmd));
    int pw = 0, ph = 0;
    return ReadPnm(out, pw, ph);
  }

  tavik::testing::TempHome dir;
  std::string tif;
};

TEST_F(RasterImageTest, ViewMatchesGdalWindowPixelForPixel) {
  std::string message;
  auto img = RasterImage::Open(tif, message);
  ASSERT_TRUE(img) << message;
  EXPECT_EQ(3, img->Levels());
  struct Case {
    const char* legend;
    int factor;  // image pixels per screen pixel
    int ovr;     // gdal_translate -ovr, -1 the full image
    int x, y, w, h;
  } cases[] = {
      {"full resolution, inside", 1, -1, 37, 21, 90, 60},
      {"full resolution, at the corner", 1, -1, 0, 0, 40, 30},
      {"half: first overview", 2, 0, 11, 7, 60, 40},
      {"quarter: second overview", 4, 1, 3, 2, 30, 20},
      {"three: still the first overview", 3, 0, 10, 6, 40, 30},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.legend);
    RasterView v;
    const int f = c.ovr < 0 ? 1 : (c.ovr == 0 ? 2 : 4);  // the level the peer reads
    v.MetresPerPixel = Pixel * c.factor;
    v.Width = c.w * f / c.factor;
    v.Height = c.h * f / c.factor;
    v.LeftE = OriginE + c.x * f * Pixel;
    v.TopN = OriginN - c.y * f * Pixel;
    std::vector<uint32_t> screen(static_cast<std::size_t>(v.Width * v.Height), 0xFFFFFFFFu);
    ASSERT_TRUE(img->Render(v, {}, screen.data(), v.Width, message)) << message;
    EXPECT_EQ(c.ovr + 1, img->LastLevel());
    const std::vector<uint32_t> peer = Peer(c.ovr, c.x, c.y, c.w, c.h);
    ASSERT_EQ(static_cast<std::size_t>(c.w * c.h), peer.size());
    int wrong = 0;
    for (int py = 0; py < v.Height; ++py)
      for (int px = 0; px < v.Width; ++px) {
        // The centre of a screen pixel, in pixels of the peer's level.
        const int lx = static_cast<int>((px + 0.5) * c.factor / f), ly = static_cast<int>((py + 0.5) * c.factor / f);
        const uint32_t want = peer[static_cast<std::size_t>(ly * c.w + lx)];
        wrong += screen[static_cast<std::size_t>(py * v.Width + px)] != want;
      }
    EXPECT_EQ(0, wrong);
  }
}

TEST_F(RasterImageTest, OutsideTheImageStaysAndTheCacheServesShortPans) {
  std::string message;
  auto img = RasterImage::Open(tif, message);
  ASSERT_TRUE(img) << message;
  // A view half off the image's left edge: the left half keeps the background.
  RasterView v{OriginE - 20 * Pixel, OriginN, Pixel, 40, 30};
  std::vector<uint32_t> screen(40 * 30, 0xFF123456u);
  ASSERT_TRUE(img->Render(v, {}, screen.data(), 40, message));
  EXPECT_EQ(0xFF123456u, screen[19]);
  EXPECT_EQ(Pattern(0, 0), screen[20]);
  const int reads = img->ReadCount();
  v.LeftE += 2 * Pixel;  // a short pan, and the same view again
  ASSERT_TRUE(img->Render(v, {}, screen.data(), 40, message));
  ASSERT_TRUE(img->Render(v, {}, screen.data(), 40, message));
  EXPECT_EQ(reads, img->ReadCount());
  v.LeftE += 200 * Pixel;  // far away: a new read
  ASSERT_TRUE(img->Render(v, {}, screen.data(), 40, message));
  EXPECT_EQ(reads + 1, img->ReadCount());

  // The look: fully transparent leaves the picture, full brightness is white, and half
  // transparency over black halves the colour.
  struct Look {
    ImageLook look;
    uint32_t background, want;
  } looks[] = {{{0, 100}, 0xFF123456u, 0xFF123456u},
               {{100, 0}, 0xFF000000u, 0xFFFFFFFFu},
               {{-100, 0}, 0xFFFFFFFFu, 0xFF000000u},
               {{0, 50}, 0xFF000000u, 0xFF000000u | ((Pattern(0, 0) >> 1) & 0x7F7F7Fu)}};
  for (const Look& l : looks) {
    RasterView one{OriginE, OriginN, Pixel, 1, 1};
    uint32_t px = l.background;
    ASSERT_TRUE(img->Render(one, l.look, &px, 1, message));
    EXPECT_NEAR(static_cast<double>(l.want & 0xFF), static_cast<double>(px & 0xFF), 1.0);
    EXPECT_NEAR(static_cast<double>((l.want >> 16) & 0xFF), static_cast<double>((px >> 16) & 0xFF), 1.0);
  }
}

TEST(RasterImageOpen, WorldFileAndBadFilesGiveClearMessages) {
  tavik::testing::TempHome dir;
  WritePpm(dir.path / "src.ppm");
  const std::string png = (dir.path / "scan.png").string();
  ASSERT_EQ(0, RunTool("gdal_translate -q -of PNG " + (dir.path / "src.ppm").string() + " " + png));
  std::string message;
  EXPECT_FALSE(RasterImage::Open(png, message));
  EXPECT_NE(std::string::npos, message.find(ImageNoGeoreferenceMessage));

  // A world file gives the centre of the first pixel; a zero pixel size is refused.
  std::ofstream(dir.path / "scan.pgw") << "0.0\n0\n0\n-0.25\n" << std::fixed << OriginE + 0.125 << "\n" << OriginN - 0.125 << "\n";
  message.clear();
  EXPECT_FALSE(RasterImage::Open(png, message));
  EXPECT_NE(std::string::npos, message.find(ImageZeroPixelMessage));
  std::ofstream(dir.path / "scan.pgw") << "0.25\n0\n0\n-0.25\n" << std::fixed << OriginE + 0.125 << "\n" << OriginN - 0.125 << "\n";
  auto img = RasterImage::Open(png, message);
  ASSERT_TRUE(img) << message;
  double minE, minN, maxE, maxN;
  img->Extent(minE, minN, maxE, maxN);
  EXPECT_DOUBLE_EQ(OriginE, minE);
  EXPECT_DOUBLE_EQ(OriginN, maxN);
  EXPECT_DOUBLE_EQ(OriginE + W * 0.25, maxE);
  RasterView v{OriginE + 10 * 0.25, OriginN - 5 * 0.25, 0.25, 1, 1};
  uint32_t px = 0;
  ASSERT_TRUE(img->Render(v, {}, &px, 1, message));
  EXPECT_EQ(Pattern(10, 5), px);

  const std::string huge = (dir.path / "huge.tif").string();
  ASSERT_EQ(0, RunTool("gdal_create -of GTiff -ot Byte -outsize 100000 100000 -bands 1 -co SPARSE_OK=TRUE -co TILED=YES "
                   "-a_ullr 0 100000 100000 0 " + huge));
  struct Bad {
    std::string file, says;
  } bad[] = {{(dir.path / "missing.tif").string(), ImageOpenMessage},
             {(dir.path / "garbled.tif").string(), ImageOpenMessage},
             {huge, ImageNoOverviewsMessage}};
  std::ofstream(dir.path / "garbled.tif") << "II*\0garbage that is no TIFF";
  for (const Bad& b : bad) {
    message.clear();
    EXPECT_FALSE(RasterImage::Open(b.file, message)) << b.file;
    EXPECT_EQ(0u, message.find(b.says)) << message;
  }
}

TEST(ImageList, SideFileKeepsTheListInCodePage950) {
  tavik::testing::TempHome dir;
  const std::string doc = (dir.path / "大同段").string();
  ImageSettings s;
  s.Shown = false;
  s.Look = {-20, 35};
  s.Images = {{(dir.path / "航照.tif").string(), true}, {"/data/b.jpg", false}};
  std::string message;
  ASSERT_TRUE(WriteImageList(ImageListPath(doc), s, message)) << message;
  const std::string bytes = tavik::testing::ReadBytes(ImageListPath(doc));
  EXPECT_NE(std::string::npos, bytes.find("\xAF\xE8\xB7\xD3.tif"));  // 航照 in Big5
  // A relative path is read from the document's folder.
  std::ofstream(ImageListPath(doc), std::ios::app) << "\xBCv\xB9\xB3=1,c.png\r\n";  // 影像 in Big5
  ImageSettings r;
  ASSERT_TRUE(ReadImageList(ImageListPath(doc), r, message)) << message;
  EXPECT_FALSE(r.Shown);
  EXPECT_EQ(-20, r.Look.Brightness);
  EXPECT_EQ(35, r.Look.Transparency);
  ASSERT_EQ(3u, r.Images.size());
  EXPECT_EQ(s.Images[0].Path, r.Images[0].Path);
  EXPECT_FALSE(r.Images[1].Shown);
  EXPECT_EQ((dir.path / "c.png").string(), r.Images[2].Path);
  // No images: no side file.
  ASSERT_TRUE(WriteImageList(ImageListPath(doc), ImageSettings{}, message));
  EXPECT_FALSE(fs::exists(ImageListPath(doc)));
}

}  // namespace
}  // namespace tavik::basemap

// A fresh folder per test, removed afterwards, and small helpers to lay out document
// files byte by byte the way the format describes them (independently of the writer).
#pragma once

#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace tavik::testing {

class TempHome {
 public:
  TempHome() {
    std::string tmpl = (std::filesystem::temp_directory_path() / "tavik-test-XXXXXX").string();
    char* made = ::mkdtemp(tmpl.data());
    path = made ? made : tmpl;
  }
  ~TempHome() {
    std::error_code ec;
    std::filesystem::permissions(path, std::filesystem::perms::owner_all, ec);
    std::filesystem::remove_all(path, ec);
  }
  TempHome(const TempHome&) = delete;
  TempHome& operator=(const TempHome&) = delete;
  std::filesystem::path path;
};

inline std::string ReadBytes(const std::filesystem::path& p) {
  std::ifstream in(p, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), {});
}

inline void WriteBytes(const std::filesystem::path& p, const std::string& bytes) {
  std::ofstream out(p, std::ios::binary | std::ios::trunc);
  out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

// Appends little-endian values and fixed text to a byte string.
struct ByteWriter {
  std::string bytes;
  template <typename T>
  ByteWriter& Put(T v) {
    char b[sizeof v];
    std::memcpy(b, &v, sizeof v);
    bytes.append(b, sizeof v);
    return *this;
  }
  ByteWriter& Text(const std::string& raw, std::size_t width) {
    std::string f = raw.substr(0, width);
    f.resize(width, ' ');
    bytes += f;
    return *this;
  }
  ByteWriter& Zeros(std::size_t n) {
    bytes.append(n, '\0');
    return *this;
  }
};

template <typename T>
T At(const std::string& bytes, std::size_t off) {
  T v{};
  std::memcpy(&v, bytes.data() + off, sizeof v);
  return v;
}

}  // namespace tavik::testing

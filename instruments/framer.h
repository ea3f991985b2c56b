// Gathers the bytes of a total-station answer into one frame. Answers end with LF,
// except Trimble's, which ends with the prompt ">". Reads may be split anywhere; a
// run of bytes that grows past any real answer without ending is dropped, so that
// garbage on the line cannot grow the buffer, and the next answer starts afresh.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace tavik {

class LineFramer {
 public:
  static constexpr std::size_t kMaxFrame = 1024;

  // Appends one byte. When it ends a frame the frame is returned, terminator included,
  // and the buffer is emptied.
  std::optional<std::string> Feed(char c, char terminator = '\n');
  void Clear() { RxBuffer.clear(); }
  const std::string& Buffer() const { return RxBuffer; }

 private:
  std::string RxBuffer;
};

}  // namespace tavik

#include "instruments/framer.h"

namespace tavik {

std::optional<std::string> LineFramer::Feed(char c, char terminator) {
  if (RxBuffer.size() >= kMaxFrame) RxBuffer.clear();
  RxBuffer.push_back(c);
  if (c != terminator) return std::nullopt;
  std::string frame;
  frame.swap(RxBuffer);
  return frame;
}

}  // namespace tavik

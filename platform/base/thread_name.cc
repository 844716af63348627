#include "platform/base/thread_name.h"

namespace base {

namespace {

bool IsContinuation(char byte) { return (static_cast<unsigned char>(byte) & 0xC0) == 0x80; }
bool IsLead(char byte) { return (static_cast<unsigned char>(byte) & 0xC0) == 0xC0; }

}  // namespace

std::string CutAtCharacterBoundary(const std::string& name, std::size_t max_bytes) {
  if (name.size() <= max_bytes) return name;
  std::size_t cut = max_bytes;
  // When the first dropped byte continues a character, back off to that
  // character's lead byte (at most three bytes back) and drop it whole.
  std::size_t start = cut;
  while (start > 0 && cut - start < 3 && IsContinuation(name[start])) --start;
  if (start < cut && IsLead(name[start])) cut = start;
  return name.substr(0, cut);
}

}  // namespace base

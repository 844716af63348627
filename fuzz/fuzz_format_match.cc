// Checks I18nUtils::formatMatch on fuzzed format strings. Any format goes to
// the typed form with arguments of mixed types, which must never fault
// whatever conversions the format names. Formats whose placeholders can only
// read byte strings also go to the variadic form with ten string arguments,
// which must give the same text as the typed form. Properties: a format
// without "%" comes back unchanged; a value that itself looks like a
// placeholder ("%s1") is never expanded again; no placeholder adds more than
// the 102397-byte cut, however large its width or precision; and each input
// stays within the memory and time bounds below ("%999999999d1" included).
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

#include "fuzz_bounds.h"
#include "i18n/i18n_utils.h"

namespace {

constexpr size_t kMaxFormat = 4096;
constexpr size_t kMaxValueBytes = 102397;

// True when each "%" is followed, after flags, digits and points, by an "s"
// or by a byte that cannot begin a conversion or length modifier, and there
// are at most ten "%" signs.
bool ReadsOnlyStrings(const std::string& format) {
  size_t percents = 0;
  for (size_t i = 0; i < format.size(); ++i) {
    if (format[i] != '%') continue;
    if (++percents > 10) return false;
    size_t j = i + 1;
    while (j < format.size() && strchr("-+# 0123456789.", format[j])) ++j;
    if (j < format.size() && format[j] != 's' && strchr("cdioxXufFeEaAgGpjztLhl", format[j])) {
      return false;
    }
  }
  return true;
}

size_t Count(const std::string& text, const char* needle) {
  size_t count = 0;
  for (size_t at = text.find(needle); at != std::string::npos; at = text.find(needle, at + 1)) {
    ++count;
  }
  return count;
}

// Char* arguments only: the one list both forms can take.
template <typename Form>
std::string WithStrings(const char* format, Form form) {
  return form(format, "<A>", "<B>", "%s1", "<D>", "%s3", "<F>", "<G>", "<H>", "<I>", "<J>");
}

}  // namespace

FUZZ_DEFAULT_BOUNDS(512, 10)

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size > kMaxFormat) return 0;
  std::string format(reinterpret_cast<const char*>(data), size);
  format.resize(strnlen(format.c_str(), format.size()));

  const int anchor = 0;
  const std::string typed = I18N::I18nUtils::formatMatch(
      format.c_str(), "<A>", -7, 2.5, "%s1", 1LL << 40, L"wide", &anchor, 'c', std::string("<I>"),
      static_cast<unsigned short>(65535));
  const size_t percents = Count(format, "%");
  if (percents == 0 && typed != format) abort();
  if (typed.size() > format.size() + percents * kMaxValueBytes) abort();
  // "<A>" can only come from the first argument; if the inserted "%s1" text
  // were searched again, it would turn into "<A>" more often than the format
  // has placeholders.
  if (Count(typed, "<A>") > percents + Count(format, "<A>")) abort();

  if (ReadsOnlyStrings(format)) {
    using Variadic = std::string (*)(const char*, ...);
    const Variadic variadic = &I18N::I18nUtils::formatMatch;
    const auto checked = [](const char* f, const auto&... arguments) {
      return I18N::I18nUtils::formatMatch(f, arguments...);
    };
    if (WithStrings(format.c_str(), variadic) != WithStrings(format.c_str(), checked)) abort();
  }
  return 0;
}

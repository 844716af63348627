// Checks I18nUtils::formatMatch on fuzzed format strings with a fixed list of
// ten string arguments. Formats are kept only when every placeholder they
// could hold reads a byte string ("%s" with flags, width below 1000 and
// precision), so the variadic reads are always of the right type and count.
// Properties: no fault; a format without "%" comes back unchanged; a value
// that itself looks like a placeholder ("%s1") is never expanded again.
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

#include "i18n/i18n_utils.h"

namespace {

// True when each "%" is followed, after flags, digits and points, by an "s"
// or by a byte that cannot begin a conversion or length modifier; at most
// ten "%" signs and no run of more than three digits (bounded widths).
bool ReadsOnlyStrings(const std::string& format) {
  size_t percents = 0;
  for (size_t i = 0; i < format.size(); ++i) {
    if (format[i] != '%') continue;
    if (++percents > 10) return false;
    size_t j = i + 1, digits = 0;
    for (; j < format.size() && strchr("-+# 0123456789.", format[j]); ++j) {
      digits = (format[j] >= '0' && format[j] <= '9') ? digits + 1 : 0;
      if (digits > 3) return false;
    }
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

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size > 4096) return 0;
  std::string format(reinterpret_cast<const char*>(data), size);
  format.resize(strnlen(format.c_str(), format.size()));
  if (!ReadsOnlyStrings(format)) return 0;

  std::string result = I18N::I18nUtils::formatMatch(
      format.c_str(), "<A>", "<B>", "%s1", "<D>", "%s3", "<F>", "<G>", "<H>", "<I>", "<J>");
  if (format.find('%') == std::string::npos && result != format) abort();
  // "<A>" can only come from the first argument; if the inserted "%s1" text
  // were searched again, it would turn into "<A>" more often than the format
  // has placeholders.
  size_t percents = 0;
  for (char c : format) percents += c == '%';
  if (Count(result, "<A>") > percents + Count(format, "<A>")) abort();
  return 0;
}

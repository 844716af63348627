// StringUtils collects the library's byte-string utilities: number
// conversion, trimming, case mapping, replacement, splitting and joining,
// printf-style formatting, validation, URLs and paths, the strict UTF-8/wide
// conversions, MD5 of a string and UUIDs. All members are static, keep no
// state between calls and may be called from any thread at once. Strings are
// bytes; nothing here decodes UTF-8 unless a function says so.
#ifndef TESSEL_COMMON_STRING_UTILS_H_
#define TESSEL_COMMON_STRING_UTILS_H_

#include <sstream>
#include <string>
#include <unordered_map>
#include <vector>

#include "common/tessel_export.h"

namespace tessel {

class TESSEL_API StringUtils {
 public:
  // ---- String core -------------------------------------------------------
  static std::string intToString(const int& value, const unsigned int& width);
  static bool isNumberString(const std::string& text);
  static bool string2Bool(std::string text);
  static int stringToInt(const std::string& text, const int& default_value);
  static bool hasPrefix(std::string text, std::string prefix);
  static bool hasSuffix(std::string text, std::string suffix);
  static std::string& trim(std::string& text);
  static std::string to_lowercase(std::string& text);
  static std::string to_uppercase(const std::string& text);
  static const std::string& replace_all_distinct(std::string& text,
                                                 const std::string& old_value,
                                                 const std::string& new_value);
  static std::vector<std::string> string_split(const std::string& text,
                                               const std::string& separators);
  static std::string componentsJoinedByString(const std::vector<std::string>& components,
                                              const std::string& separator);
  static std::string string_format(const char* format, ...)
      __attribute__((format(printf, 1, 2)));
  static std::string getDate();
  static void OuputDateFrom1979(std::ostringstream& out, long long seconds,
                                const char* format);
  static std::string getEmailDomain(const std::string& address);
  static bool isValidEmail(const std::string& address);
  static bool isValidMobile(const std::string& number);

  // ---- Encodings -----------------------------------------------------------
  // Strict UTF-8 to wide conversion, one wchar_t per code point. Throws
  // std::range_error("bad conversion") on ill-formed UTF-8.
  static std::wstring s2ws(const std::string& text);
  // Strict wide to UTF-8 conversion, one wchar_t per code point. Throws
  // std::range_error("bad conversion") on a surrogate value or a value above
  // 0x10FFFF.
  static std::string ws2s(const std::wstring& text);
  // MD5 digest of the bytes of `text` up to its first NUL, as 32 upper-case
  // hexadecimal digits.
  static std::string md5(const std::string& text);

  // ---- URLs and paths ------------------------------------------------------
  static std::string url_encode(const std::string& text);
  static std::string url_decode(const std::string& text);
  static int getUrlParams(const std::string& url,
                          std::unordered_map<std::string, std::string>& params);
  static const std::string appendUrlParams(
      const std::string& url, std::unordered_map<std::string, std::string>& params,
      bool encode);
  static std::string FilePathFromURL(const std::string& url);
  static std::string URLFromFilePath(const std::string& path);
  static std::string fullPathFromRelativePath(const std::string& relative_path,
                                              const std::string& base_directory);
  static std::string relativePath2Path(const std::string& absolute_path,
                                       const std::string& base_directory);
  static std::string lastPathComponent(const std::string& path, char separator);

  // ---- Identifiers ---------------------------------------------------------
  // A random version-4 UUID in its 36-character text form (random_uuid()).
  static std::string generateUUID();
};

}  // namespace tessel

#endif  // TESSEL_COMMON_STRING_UTILS_H_

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
  // `value` in decimal. Width 0: plain text ("-7"). Width 1 to 9: at least
  // `width` characters, zero-filled after any sign ("-07" for width 3). Width
  // 10 or more: at least `width` characters, right-aligned with spaces. A
  // longer number is never cut and there is no upper limit on the width; the
  // width is read as a signed int, so one above INT_MAX left-aligns with the
  // magnitude of its two's complement, and a result of INT_MAX bytes or more
  // gives "".
  static std::string intToString(const int& value, const unsigned int& width);
  // True when `text` is non-empty and every byte is an ASCII digit 0-9.
  static bool isNumberString(const std::string& text);
  // A digit string is true when its value is 1 ("1", "001"), false otherwise.
  // Anything else is lower-cased (ASCII) and true when, after leading white
  // space, it starts with "true" ("TRUE", " True", "trueish"); false for
  // everything else, "yes", "on" and "" included.
  static bool string2Bool(std::string text);
  // std::stoi in base 10: leading white space, one optional sign, the digits
  // that follow; trailing bytes are ignored ("12abc" is 12). Returns
  // `default_value` when there are no digits or the number does not fit an int.
  static int stringToInt(const std::string& text, const int& default_value);
  // Byte-for-byte, case-sensitive prefix / suffix tests; an empty prefix or
  // suffix is always found, one longer than `text` never.
  static bool hasPrefix(std::string text, std::string prefix);
  static bool hasSuffix(std::string text, std::string suffix);
  // Removes, in place and in this order: leading spaces, then a trailing run
  // of spaces, then a trailing run of "\n", then a trailing run of "\t"
  // ("ab \t\n" becomes "ab "). Leading tabs and line feeds and every "\r"
  // stay. Returns `text`.
  static std::string& trim(std::string& text);
  // Maps ASCII A-Z to a-z in `text` itself and returns a copy of the result.
  // Other bytes, UTF-8 sequences included, are untouched.
  static std::string to_lowercase(std::string& text);
  // Returns `text` with ASCII a-z mapped to A-Z, by the "C" rules whatever
  // the global locale; `text` is unchanged.
  static std::string to_uppercase(const std::string& text);
  // Replaces, in place and left to right, every occurrence of `old_value` by
  // `new_value`, searching on after each inserted text so that an insertion
  // is never matched again ("aabb" with "ab" -> "b" gives "abb"). An empty
  // `old_value` leaves `text` unchanged. Returns `text`.
  static const std::string& replace_all_distinct(std::string& text,
                                                 const std::string& old_value,
                                                 const std::string& new_value);
  // Splits `text` at every byte that occurs in `separators` (a set of single
  // bytes) and drops empty pieces: "/a//b/" by "/" gives {"a", "b"}. An empty
  // `separators` gives the whole text as one piece; an empty text, none.
  static std::vector<std::string> string_split(const std::string& text,
                                               const std::string& separators);
  // The components with `separator` between each two; "" for none. Empty
  // components keep their separators ({"a", "", "b"} with "," is "a,,b").
  static std::string componentsJoinedByString(const std::vector<std::string>& components,
                                              const std::string& separator);
  // printf-style formatting into a new string; the text ends at the first
  // formatted NUL byte. `format` must not be null. Returns "" when the C
  // library reports a formatting error (an unconvertible wide character, a
  // result of INT_MAX bytes or more).
  static std::string string_format(const char* format, ...)
      __attribute__((format(printf, 1, 2)));
  // Today's local date as "year-month-day" without leading zeros, e.g.
  // "2016-3-7".
  static std::string getDate();
  // Appends `seconds` (since 1970-01-01 00:00:00 UTC) as local time to `out`,
  // formatted by std::put_time with the strftime-style `format` and the
  // stream's locale. Writes nothing when the local-time conversion rejects
  // the value, when it is beyond the 100 ns tick range (about ±29,000
  // years), or when `format` is null.
  static void OuputDateFrom1979(std::ostringstream& out, long long seconds,
                                const char* format);
  // The bytes after the last "@", or "" when there is none or nothing follows.
  static std::string getEmailDomain(const std::string& address);
  // Whole-string match of \w+([-+.&]\w+)*@\w+([-.]\w+)*\.\w+([-.]\w+)* where
  // \w is an ASCII letter, digit or "_" (the "C" rules, whatever the global
  // locale). Nothing is compiled per call.
  static bool isValidEmail(const std::string& address);
  // True for exactly 11 ASCII digits beginning with 13, 14, 15, 17 or 18.
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
  // Percent-encodes every byte except ASCII letters, digits and "-._~", with
  // lower-case hex digits: "a b/" gives "a%20b%2f".
  static std::string url_encode(const std::string& text);
  // Decodes "+" to a space and "%" escapes. An escape reads its (up to) two
  // following bytes as sscanf's "%x" would (white space, a sign and a "0x"
  // prefix accepted: "%4g" gives 0x04, "%-1" gives 0xff), appends the low 8
  // bits and skips both bytes. A "%" whose bytes hold no number ("%zz", a
  // final "%") is copied as it is and decoding goes on after it.
  static std::string url_decode(const std::string& text);
  // Reads the query after the last "?" of `url` into `params`: cleared first,
  // then one entry per "&"-separated piece that splits on "=" into exactly
  // two non-empty parts (later keys win; nothing is decoded; a "#fragment"
  // stays in the last value). Without a "?", `params` is left as it was.
  // Returns params.size() afterwards.
  static int getUrlParams(const std::string& url,
                          std::unordered_map<std::string, std::string>& params);
  // Adds "key=value" pieces (url_encode'd first when `encode`), joined by "&"
  // in the map's unspecified iteration order, to the query of `url`, before
  // any "#fragment". An existing query is always followed by "&", even with
  // no params ("p?a=1" gives "p?a=1&"); "p?" with no params gives "p".
  // `params` is not changed.
  static const std::string appendUrlParams(
      const std::string& url, std::unordered_map<std::string, std::string>& params,
      bool encode);
  // Strips a leading "file:///" (case-sensitive) and url_decode's the rest.
  // A stripped URL whose decoded path does not start with a drive letter and
  // ":" gets its leading "/" back: "file:///tmp/a%20b" gives "/tmp/a b",
  // "file:///C:/a%20b" gives "C:/a b". Other text is only url_decode'd.
  static std::string FilePathFromURL(const std::string& url);
  // "file:///" followed by the "/"-separated components of `path`, each
  // url_encode'd; empty components (leading, trailing, doubled slashes) are
  // dropped, and ":" and "\\" are escaped like any reserved byte ("C:/a b"
  // gives "file:///C%3a/a%20b"). FilePathFromURL inverts it for absolute
  // paths without doubled or trailing slashes whose first component does not
  // begin with a letter and ":", and for drive-letter paths.
  static std::string URLFromFilePath(const std::string& path);
  // Resolves `relative_path` against `base_directory`. A non-empty path not
  // starting with "/" or "." is returned unchanged. Otherwise each leading
  // ".." component drops one trailing base component; the rest is appended
  // ("../c/d" against "/a/b" gives "/a/c/d", "./c" gives "/a/b/./c", ""
  // gives "/a/b/"). Later ".." and "." components are kept as they stand.
  static std::string fullPathFromRelativePath(const std::string& relative_path,
                                              const std::string& base_directory);
  // The path leading from `base_directory` to `absolute_path`, comparing
  // components case-sensitively: "/a/b/c/d.txt" from "/a/b/x" gives
  // "../c/d.txt"; "/a" from "/a/b/c" gives "../../". A non-empty path not
  // starting with "/" is returned unchanged.
  static std::string relativePath2Path(const std::string& absolute_path,
                                       const std::string& base_directory);
  // The text after the last `separator` that is not the final byte, without a
  // final separator: "/a/b/" gives "b", "/a/b//" gives "". The first byte is
  // never taken as a separator, so "/a" and "b/" come back unchanged, as does
  // any path shorter than two bytes or without such a separator.
  static std::string lastPathComponent(const std::string& path, char separator);

  // ---- Identifiers ---------------------------------------------------------
  // A random version-4 UUID in its 36-character text form: random_uuid() of
  // common/identifiers.h, with the same contract.
  static std::string generateUUID();
};

}  // namespace tessel

#endif  // TESSEL_COMMON_STRING_UTILS_H_

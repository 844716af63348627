// The URL and path members of StringUtils: percent-encoding, query
// parameters, "file:///" URLs and relative paths. "/" is the only path
// separator here; a backslash is an ordinary byte.
#include <algorithm>
#include <array>
#include <cstddef>

#include "common/string_utils.h"
#include "platform/hex_digits.h"
#include "platform/path_component.h"

namespace tessel {

namespace {

using Params = std::unordered_map<std::string, std::string>;
using tessel_platform::HexDigitValue;

const char kFileScheme[] = "file:///";
constexpr size_t kFileSchemeLength = sizeof kFileScheme - 1;

constexpr bool IsAsciiLetter(unsigned char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

constexpr bool IsAsciiAlnum(unsigned char c) { return IsAsciiLetter(c) || (c >= '0' && c <= '9'); }

// One flag per byte value: true when url_encode escapes it. Only RFC 3986's
// unreserved characters pass.
constexpr std::array<bool, 256> MakeEscapeTable() {
  std::array<bool, 256> escaped{};
  for (int c = 0; c < 256; ++c) {
    const auto byte = static_cast<unsigned char>(c);
    escaped[c] = !(IsAsciiAlnum(byte) || byte == '-' || byte == '.' || byte == '_' || byte == '~');
  }
  return escaped;
}

constexpr std::array<bool, 256> kEscaped = MakeEscapeTable();

// sscanf's white space in the "C" locale.
bool IsScanSpace(unsigned char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

// Reads the bytes of [p, end) (at most two) as sscanf("%x") reads the
// NUL-terminated string of them. Returns false when no number is read; else
// stores the number's low 8 bits in *byte.
bool ScanHexByte(const char* p, const char* end, unsigned char* byte) {
  const char* const stop = std::find(p, end, '\0');
  while (p != stop && IsScanSpace(static_cast<unsigned char>(*p))) ++p;
  bool negative = false;
  if (p != stop && (*p == '+' || *p == '-')) {
    negative = *p == '-';
    ++p;
  }
  // With at most two bytes, "0x" has no digits after it and reads as 0.
  if (stop - p >= 2 && p[0] == '0' && (p[1] == 'x' || p[1] == 'X')) {
    *byte = 0;
    return true;
  }
  unsigned value = 0;
  bool any_digit = false;
  for (; p != stop && HexDigitValue(static_cast<unsigned char>(*p)) >= 0; ++p) {
    value = value * 16 + static_cast<unsigned>(HexDigitValue(static_cast<unsigned char>(*p)));
    any_digit = true;
  }
  if (!any_digit) return false;
  *byte = static_cast<unsigned char>(negative ? 0u - value : value);
  return true;
}

bool StartsWithDriveLetter(const std::string& path) {
  return path.size() >= 2 && IsAsciiLetter(static_cast<unsigned char>(path[0])) && path[1] == ':';
}

// `count` components from `first`, each followed by "/" when `trailing`,
// otherwise with "/" between them.
void AppendComponents(std::string* out, const std::vector<std::string>& components,
                      size_t first, size_t count, bool trailing) {
  for (size_t i = first; i < first + count; ++i) {
    if (!trailing && i != first) *out += '/';
    *out += components[i];
    if (trailing) *out += '/';
  }
}

}  // namespace

std::string StringUtils::url_encode(const std::string& text) {
  std::string encoded(text.size() * 3, '\0');
  char* out = &encoded[0];
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (!kEscaped[byte]) {
      *out++ = c;
      continue;
    }
    *out++ = '%';
    out = tessel_platform::WriteHexByte(byte, tessel_platform::kLowerHexDigits, out);
  }
  encoded.resize(static_cast<size_t>(out - encoded.data()));
  return encoded;
}

std::string StringUtils::url_decode(const std::string& text) {
  std::string decoded;
  decoded.reserve(text.size());
  const char* p = text.data();
  const char* const end = p + text.size();
  while (p != end) {
    const char c = *p++;
    if (c == '+') {
      decoded += ' ';
    } else if (c != '%') {
      decoded += c;
    } else {
      const char* const escape_end = end - p < 2 ? end : p + 2;
      unsigned char byte = 0;
      if (ScanHexByte(p, escape_end, &byte)) {
        decoded += static_cast<char>(byte);
        p = escape_end;
      } else {
        decoded += '%';
      }
    }
  }
  return decoded;
}

int StringUtils::getUrlParams(const std::string& url, Params& params) {
  const size_t question = url.rfind('?');
  if (question == std::string::npos) return static_cast<int>(params.size());
  params.clear();
  for (const std::string& piece : string_split(url.substr(question + 1), "&")) {
    std::vector<std::string> parts = string_split(piece, "=");
    if (parts.size() == 2) params[parts[0]] = std::move(parts[1]);
  }
  return static_cast<int>(params.size());
}

const std::string StringUtils::appendUrlParams(const std::string& url, Params& params,
                                               bool encode) {
  std::vector<std::string> pieces;
  pieces.reserve(params.size());
  for (const auto& entry : params) {
    const std::string key = encode ? url_encode(entry.first) : entry.first;
    const std::string value = encode ? url_encode(entry.second) : entry.second;
    pieces.push_back(string_format("%s=%s", key.c_str(), value.c_str()));
  }
  const std::string new_query = componentsJoinedByString(pieces, "&");

  const size_t hash = url.find('#');
  const std::string address = url.substr(0, hash);
  const std::string fragment = hash == std::string::npos ? std::string() : url.substr(hash + 1);
  const size_t question = address.find('?');
  const std::string path = address.substr(0, question);
  const std::string old_query =
      question == std::string::npos ? std::string() : address.substr(question + 1);

  std::string result = path;
  if (!old_query.empty() || !new_query.empty()) result += '?';
  if (!old_query.empty()) result += old_query + "&";
  result += new_query;
  if (!fragment.empty()) result += "#" + fragment;
  return result;
}

std::string StringUtils::FilePathFromURL(const std::string& url) {
  if (url.compare(0, kFileSchemeLength, kFileScheme) != 0) return url_decode(url);
  std::string path = url_decode(url.substr(kFileSchemeLength));
  if (!StartsWithDriveLetter(path)) path.insert(0, 1, '/');
  return path;
}

std::string StringUtils::URLFromFilePath(const std::string& path) {
  std::vector<std::string> components = string_split(path, "/");
  for (std::string& component : components) component = url_encode(component);
  return kFileScheme + componentsJoinedByString(components, "/");
}

std::string StringUtils::fullPathFromRelativePath(const std::string& relative_path,
                                                  const std::string& base_directory) {
  if (!relative_path.empty() && relative_path[0] != '/' && relative_path[0] != '.') {
    return relative_path;
  }
  const std::vector<std::string> relative = string_split(relative_path, "/");
  const std::vector<std::string> base = string_split(base_directory, "/");
  size_t climbs = 0;
  while (climbs < relative.size() && relative[climbs] == "..") ++climbs;

  std::string result = !base_directory.empty() && base_directory[0] == '/' ? "/" : "";
  const size_t kept = climbs < base.size() ? base.size() - climbs : 0;
  AppendComponents(&result, base, 0, kept, true);
  AppendComponents(&result, relative, climbs, relative.size() - climbs, false);
  return result;
}

std::string StringUtils::relativePath2Path(const std::string& absolute_path,
                                           const std::string& base_directory) {
  if (!absolute_path.empty() && absolute_path[0] != '/') return absolute_path;
  const std::vector<std::string> path = string_split(absolute_path, "/");
  const std::vector<std::string> base = string_split(base_directory, "/");
  size_t common = 0;
  size_t ups = 0;
  for (size_t i = 0; i < base.size(); ++i) {
    if (ups == 0 && i < path.size() && path[i] == base[i]) {
      ++common;
    } else {
      ++ups;
    }
  }
  std::string result;
  for (size_t i = 0; i < ups; ++i) result += "../";
  AppendComponents(&result, path, common, path.size() - common, false);
  return result;
}

std::string StringUtils::lastPathComponent(const std::string& path, char separator) {
  for (size_t i = path.size() < 2 ? 0 : path.size() - 2; i >= 1; --i) {
    if (path[i] == separator) return tessel_platform::ComponentFrom(path, i + 1, separator);
  }
  return path;
}

}  // namespace tessel

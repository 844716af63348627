// The final component of a path once its start is known, shared by the two
// path-splitting rules of the library (the file helpers' and the string
// utilities'), which differ only in where a component starts. Pure function;
// safe on any thread.
#ifndef TESSEL_PLATFORM_PATH_COMPONENT_H_
#define TESSEL_PLATFORM_PATH_COMPONENT_H_

#include <cstddef>
#include <string>

namespace tessel_platform {

// path[start..] without one final `separator`; empty when start >= size.
inline std::string ComponentFrom(const std::string& path, std::size_t start, char separator) {
  if (start >= path.size()) return std::string();
  const bool trailing = path.back() == separator;
  return path.substr(start, path.size() - start - (trailing ? 1 : 0));
}

}  // namespace tessel_platform

#endif  // TESSEL_PLATFORM_PATH_COMPONENT_H_

// Names the calling thread for the system's tools (debuggers, crash dumps,
// process listings). Where the system limits the length, the name is cut at
// the last whole UTF-8 character that fits. Best effort: a system that
// refuses the name leaves the thread unnamed. Thread-safe.
#ifndef TESSEL_PLATFORM_BASE_THREAD_NAME_H_
#define TESSEL_PLATFORM_BASE_THREAD_NAME_H_

#include <cstddef>
#include <string>

namespace base {

void SetCurrentThreadName(const std::string& name);

// The longest prefix of `name` of at most `max_bytes` bytes that does not
// end inside a UTF-8 character (bytes that are not UTF-8 count as whole).
std::string CutAtCharacterBoundary(const std::string& name, std::size_t max_bytes);

}  // namespace base

#endif  // TESSEL_PLATFORM_BASE_THREAD_NAME_H_

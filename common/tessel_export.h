// TESSEL_API marks the library's exported interface. Everything else is built
// with hidden visibility, so only what carries this macro leaves the library.
#ifndef TESSEL_COMMON_TESSEL_EXPORT_H_
#define TESSEL_COMMON_TESSEL_EXPORT_H_

#if defined(_WIN32)
#if defined(TESSEL_BUILDING_LIBRARY)
#define TESSEL_API __declspec(dllexport)
#else
#define TESSEL_API __declspec(dllimport)
#endif
#else
#define TESSEL_API __attribute__((visibility("default")))
#endif

#endif  // TESSEL_COMMON_TESSEL_EXPORT_H_

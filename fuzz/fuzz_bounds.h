// Per-target default bounds for a libFuzzer run: FUZZ_DEFAULT_BOUNDS(rss, s)
// defines LLVMFuzzerInitialize so that every run of the target, seed replay
// included, fails an input that needs more than rss megabytes or s seconds.
// Flags given on the command line come later and win.
#ifndef TESSEL_FUZZ_FUZZ_BOUNDS_H_
#define TESSEL_FUZZ_FUZZ_BOUNDS_H_

#include <string>

#define FUZZ_DEFAULT_BOUNDS(rss_mb, seconds)                                  \
  extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv) {             \
    static std::string rss = "-rss_limit_mb=" + std::to_string(rss_mb);      \
    static std::string timeout = "-timeout=" + std::to_string(seconds);      \
    static char** extended = new char*[*argc + 3];                            \
    extended[0] = (*argv)[0];                                                 \
    extended[1] = &rss[0];                                                    \
    extended[2] = &timeout[0];                                                \
    for (int i = 1; i < *argc; ++i) extended[i + 2] = (*argv)[i];             \
    extended[*argc + 2] = nullptr;                                            \
    *argc += 2;                                                               \
    *argv = extended;                                                         \
    return 0;                                                                 \
  }

#endif  // TESSEL_FUZZ_FUZZ_BOUNDS_H_

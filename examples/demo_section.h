// A demo section shows one family of the library the way a host uses it.
// Each demo_*.cc file registers its sections at static-initialisation time;
// demo_host.cpp runs them sorted by `order`, which follows the order in which
// a host meets the library: logging, injection, threads, then the utilities.
#ifndef TESSEL_EXAMPLES_DEMO_SECTION_H_
#define TESSEL_EXAMPLES_DEMO_SECTION_H_

#include <functional>
#include <iostream>
#include <string>
#include <vector>

namespace demo {

struct Section {
  int order;
  std::string title;
  std::function<void()> run;
};

std::vector<Section>& Sections();

// Use at namespace scope: `static const bool kRegistered = demo::Register(...)`.
bool Register(int order, std::string title, std::function<void()> run);

// Prints one "  label: value" line of a section's output.
void Show(const std::string& label, const std::string& value);

}  // namespace demo

#endif  // TESSEL_EXAMPLES_DEMO_SECTION_H_

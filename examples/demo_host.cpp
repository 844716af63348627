// The demo host: a small program that loads the library and uses it the way a
// real host does, printing what each family gives back.
#include <algorithm>
#include <iostream>

#include "demo_section.h"
#include "platform/base/message_loop.h"
#include "tessel_depends.h"

namespace demo {

std::vector<Section>& Sections() {
  static std::vector<Section> sections;
  return sections;
}

bool Register(int order, std::string title, std::function<void()> run) {
  Sections().push_back({order, std::move(title), std::move(run)});
  return true;
}

void Show(const std::string& label, const std::string& value) {
  std::cout << "  " << label << ": " << value << "\n";
}

}  // namespace demo

int main() {
  // Like a desktop host, the demo's main thread runs the user-interface loop
  // of the host's base library; the library's main thread posts to it.
  base::MessageLoop ui_loop(base::MessageLoop::TYPE_UI, "demo-ui");
  std::cout << "TesselSDK-Depends " << TESSEL_DEPENDS_VERSION_STRING << " demo host\n";
  auto sections = demo::Sections();
  std::stable_sort(sections.begin(), sections.end(),
                   [](const demo::Section& a, const demo::Section& b) { return a.order < b.order; });
  for (const auto& section : sections) {
    std::cout << "\n== " << section.title << " ==\n";
    section.run();
  }
  std::cout << std::flush;
  return 0;
}

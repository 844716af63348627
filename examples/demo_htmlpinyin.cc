// HTML entities and pinyin: a contact list's names with their pinyin and
// index initials, and a fragment of a mail body with its references decoded.
#include <string>
#include <vector>

#include "demo_section.h"
#include "tessel_depends.h"

namespace {

void Run() {
  const struct {
    const char* label;
    const wchar_t* text;
  } kNames[] = {{"张伟", L"张伟"}, {"王芳", L"王芳"}, {"李长乐", L"李长乐"}, {"欧阳明", L"欧阳明"}};
  for (const auto& name : kNames) {
    std::wstring text = name.text;
    demo::Show(name.label, pinYinConvert(text) + " / " + jianPinConvert(text));
  }
  const char* html = "Caf&eacute; &amp; cr&egrave;me &lt;b&gt; &#8364;5 &#x1F600; &AMP; &nope;";
  std::vector<char> text(std::char_traits<char>::length(html) + 1);
  const size_t size = decode_html_entities_utf8(text.data(), html);
  demo::Show("html", html);
  demo::Show("decoded", std::string(text.data(), size));
  clearCache();
}

const bool kRegistered = demo::Register(100, "HTML entities and pinyin", Run);

}  // namespace

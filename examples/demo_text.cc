// Dates, and strings, URLs and UUIDs: what a host shows of a message.
#include "demo_section.h"
#include "tessel_depends.h"

namespace {

void RunDates() {
  const tessel::DateTime sent(1425823200);  // 2015-03-08 14:00:00 UTC
  demo::Show("sent", sent.description());
  demo::Show("start of its day", sent.dateStart().description());
  demo::Show("one month later", sent.addMonthsCopy(1).description());
  demo::Show("open end", tessel::DateTime::future().description());
}

void RunText() {
  std::unordered_map<std::string, std::string> params{{"q", "café & crème"}};
  demo::Show("url", tessel::StringUtils::appendUrlParams("https://mail.example/search?page=2#top",
                                                         params, true));
  demo::Show("file url", tessel::StringUtils::URLFromFilePath("/tmp/My Files/a.txt"));
  demo::Show("uuid", tessel::StringUtils::generateUUID());
  demo::Show("nonce", tessel::nonce());
}

const bool kDatesRegistered = demo::Register(40, "Dates", RunDates);
const bool kTextRegistered = demo::Register(50, "Strings, URLs and UUIDs", RunText);

}  // namespace

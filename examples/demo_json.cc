// JSON: the host parses a small document, reads fields, builds a new object
// from it (values are immutable), writes it back, and shows how a malformed
// document is reported.
#include <string>

#include "demo_section.h"
#include "tessel_depends.h"

namespace {

using json11::Json;

void Run() {
  const std::string text =
      R"({"account": "ada@example.org", "unread": 12, "quota": 0.75, "folders": ["Inbox", "Sent"]})";
  std::string err;
  const Json account = Json::parse(text, err);
  demo::Show("account", account["account"].string_value());
  demo::Show("unread", std::to_string(account["unread"].int_value()));
  demo::Show("first folder", account["folders"][0].string_value());
  demo::Show("shape ok", account.has_shape({{"unread", Json::Number}, {"folders", Json::Array}}, err)
                             ? "yes"
                             : err);

  Json::object changed = account.object_items();
  changed["unread"] = account["unread"].int_value() + 1;
  changed["synced"] = true;
  demo::Show("new object", Json(std::move(changed)).dump());
  demo::Show("original kept", std::to_string(account["unread"].int_value()));

  Json::parse(R"({"unread": 12,})", err);
  demo::Show("malformed", err);
}

const bool kRegistered = demo::Register(80, "JSON values", Run);

}  // namespace

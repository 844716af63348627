// Translations: the host registers a German catalog (compiled from
// demo_i18n.po at build time) and translates through the registry.
#include "demo_section.h"
#include "tessel_depends.h"

namespace {

void Run() {
  I18N::I18nUtils* i18n = I18N::I18nUtils::getInstance();
  i18n->addMO(std::string(TESSEL_DEMO_MO_PATH), [](int n) { return n != 1 ? 1 : 0; }, 2, "mail");
  demo::Show("catalog loaded", i18n->getMO("mail").getIsInited() ? "yes" : "no");
  demo::Show("gettext(Inbox)", i18n->gettext("Inbox", "mail"));
  for (int n : {1, 5}) {
    const std::string format =
        i18n->nxgettext("%d1 unread message", "%d1 unread messages", n, "mailbox", "mail");
    demo::Show("n = " + std::to_string(n), I18N::I18nUtils::formatMatch(format.c_str(), n));
  }
  I18N::NoopEntry later = i18n->ngettextNoop("attachment", "attachments", "");
  demo::Show("deferred, n = 3", i18n->translateNooped(later, 3, "mail"));
  const std::string sent = i18n->gettext("%s1 sent you %d2 files", "mail");
  demo::Show("reordered", I18N::I18nUtils::formatMatch(sent.c_str(), "Ann", 4));
  demo::Show("missing message", i18n->gettext("Outbox", "mail"));
  I18N::I18nUtils::destroyInstance();
}

const bool kRegistered = demo::Register(90, "Translations", Run);

}  // namespace

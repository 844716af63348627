// Our answers against the C library's own gettext on the same msgfmt-compiled
// catalog, installed in a private locale tree.
#include <gtest/gtest.h>
#include <libintl.h>

#include <clocale>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "i18n/i18n_utils.h"
#include "i18n/mo_image.h"

namespace {

using I18N::I18nUtils;

struct PoMessage {
  std::string context, singular, plural;
};

// The messages of tests/data/i18n/ru.po, the header excepted.
const std::vector<PoMessage> kMessages = {
    {"", "Open", ""},          {"menu", "Open", ""},
    {"", "Inbox", ""},         {"folder", "Sent", ""},
    {"verb", "Sent", ""},      {"", "file", "files"},
    {"", "%d1 new message", "%d1 new messages"},
    {"attachments", "item", "items"}, {"contacts", "item", "items"},
    {"", "Quote \"this\" and back\\slash", ""},
};

// The catalog header's rule, in int arithmetic.
int RussianRule(int n) {
  return n % 10 == 1 && n % 100 != 11                                       ? 0
         : n % 10 >= 2 && n % 10 <= 4 && (n % 100 < 10 || n % 100 >= 20) ? 1
                                                                            : 2;
}

std::string GlibcSingular(const std::string& domain, const PoMessage& m) {
  const std::string key = m.context.empty() ? m.singular : m.context + '\x04' + m.singular;
  const char* answer = dcgettext(domain.c_str(), key.c_str(), LC_MESSAGES);
  return key == answer ? m.singular : answer;
}

std::string GlibcPlural(const std::string& domain, const PoMessage& m, int n) {
  const std::string key = m.context.empty() ? m.singular : m.context + '\x04' + m.singular;
  const char* answer = dcngettext(domain.c_str(), key.c_str(), m.plural.c_str(),
                                  static_cast<unsigned long>(n), LC_MESSAGES);
  return key == answer ? m.singular : answer;
}

class GlibcCrossCheck : public ::testing::TestWithParam<const char*> {};

TEST_P(GlibcCrossCheck, EveryMessageAndCountAgrees) {
  const std::string order = GetParam();
  const std::string domain = "tessel_xcheck_" + order;
  const std::filesystem::path root =
      std::filesystem::path(::testing::TempDir()) / ("tessel-locale-" + order);
  std::filesystem::create_directories(root / "ru" / "LC_MESSAGES");
  std::filesystem::copy_file(i18n_test::CompiledCatalog("ru", order),
                             root / "ru" / "LC_MESSAGES" / (domain + ".mo"),
                             std::filesystem::copy_options::overwrite_existing);
  ASSERT_NE(std::setlocale(LC_ALL, "C.UTF-8"), nullptr);
  // LANGUAGE is honoured for any locale other than plain "C".
  ASSERT_EQ(setenv("LANGUAGE", "ru", 1), 0);
  ASSERT_NE(bindtextdomain(domain.c_str(), root.c_str()), nullptr);
  bind_textdomain_codeset(domain.c_str(), "UTF-8");

  I18nUtils* ours = I18nUtils::getInstance();
  ours->addMO(i18n_test::CompiledCatalog("ru", order), RussianRule, 3, domain);
  ASSERT_TRUE(ours->getMO(domain).getIsInited());

  const std::vector<PoMessage>& messages = kMessages;
  const std::vector<PoMessage> misses = {{"", "Unknown", "Unknowns"}, {"menu", "Inbox", "Inboxes"}};
  int translatedByGlibc = 0;
  for (const std::vector<PoMessage>* list : {&messages, &misses}) {
    for (const PoMessage& m : *list) {
      SCOPED_TRACE(m.context + "|" + m.singular);
      const std::string glibc = GlibcSingular(domain, m);
      translatedByGlibc += glibc != m.singular;
      if (m.context.empty()) {
        EXPECT_EQ(ours->gettext(m.singular, domain), glibc);
      }
      EXPECT_EQ(ours->xgettext(m.singular, m.context, domain), glibc);
      if (m.plural.empty()) continue;
      for (int n : {0, 1, 2, 5, 21, -1, 11, 22, 104, 111}) {
        const std::string expected = GlibcPlural(domain, m, n);
        if (m.context.empty()) {
          EXPECT_EQ(ours->ngettext(m.singular, m.plural, n, domain), expected);
        }
        EXPECT_EQ(ours->nxgettext(m.singular, m.plural, n, m.context, domain), expected) << n;
      }
    }
  }
  // The C library really translated every message of the catalog, so the
  // comparison above cannot pass on fallbacks alone.
  EXPECT_EQ(translatedByGlibc, static_cast<int>(messages.size()));
  EXPECT_STREQ(dcngettext(domain.c_str(), "file", "files", 5, LC_MESSAGES), "файлов");
  I18nUtils::destroyInstance();
}

INSTANTIATE_TEST_SUITE_P(ByteOrders, GlibcCrossCheck, ::testing::Values("little", "big"));

}  // namespace

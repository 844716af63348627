#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <future>
#include <string>
#include <thread>
#include <vector>

#include "i18n/i18n_utils.h"
#include "i18n/mo_image.h"

namespace {

using I18N::I18nUtils;
using I18N::MO;
using i18n_test::CompiledCatalog;
using i18n_test::GermanRule;

const std::string kNul(1, '\0');

// Every case starts and ends with no registry and the load-time default name.
class Registry : public ::testing::Test {
 protected:
  void SetUp() override { I18nUtils::destroyInstance(); }
  void TearDown() override {
    I18nUtils::destroyInstance();
    I18nUtils::DEFAULT_DOMAIN = "default";
  }
  I18nUtils& registry() { return *I18nUtils::getInstance(); }
  std::vector<unsigned char> image_ = i18n_test::BuildImage({
      {"Open", "Öffnen"},
      {"menu\x04Open", "Menü öffnen"},
      {"file" + kNul + "files", "Datei" + kNul + "Dateien"},
      {"box\x04" "mail" + kNul + "mails", "Post" + kNul + "Posten"},
  });
};

TEST_F(Registry, EmptyDomainIsDefaultDomainOnlyWhenRegisteringAndFetching) {
  EXPECT_EQ(I18nUtils::DEFAULT_DOMAIN, "default");
  registry().addMO(image_.data(), GermanRule, 2, "");
  EXPECT_TRUE(registry().hasMO("default"));
  EXPECT_FALSE(registry().hasMO(""));
  EXPECT_EQ(registry().gettext("Open", ""), "Open");
  EXPECT_EQ(registry().gettext("Open", "default"), "Öffnen");
  EXPECT_TRUE(registry().getMO("").getIsInited());
  registry().removeMO("");
  EXPECT_TRUE(registry().hasMO("default"));

  I18nUtils::DEFAULT_DOMAIN = "app";
  registry().addMO(image_.data(), GermanRule, 2, "");
  EXPECT_TRUE(registry().hasMO("app"));
  EXPECT_EQ(registry().gettext("Open", "app"), "Öffnen");
}

TEST_F(Registry, RegisteringABadSourceStillReplacesTheCatalog) {
  registry().addMO(image_.data(), GermanRule, 2, "ui");
  EXPECT_EQ(registry().gettext("Open", "ui"), "Öffnen");
  registry().addMO(std::string("/nonexistent/ui.mo"), GermanRule, 2, "ui");
  EXPECT_TRUE(registry().hasMO("ui"));
  EXPECT_FALSE(registry().getMO("ui").getIsInited());
  EXPECT_EQ(registry().gettext("Open", "ui"), "Open");

  registry().addMO(static_cast<unsigned char*>(nullptr), GermanRule, 2, "x");
  registry().addMO(std::string(), GermanRule, 2, "x");
  EXPECT_FALSE(registry().hasMO("x"));
}

TEST_F(Registry, DeferredEntriesTranslateInTheirOwnDomainFirst) {
  registry().addMO(image_.data(), GermanRule, 2, "core");
  auto fromArgument = registry().ngettextNoop("file", "files", "");
  EXPECT_EQ(registry().translateNooped(fromArgument, 1, "core"), "Datei");
  EXPECT_EQ(registry().translateNooped(fromArgument, 4, "ui"), "files");
  auto own = registry().ngettextNoop("file", "files", "core");
  EXPECT_EQ(registry().translateNooped(own, 4, "ui"), "Dateien");
  auto withContext = registry().nxgettextNoop("mail", "mails", "box", "core");
  EXPECT_EQ(registry().translateNooped(withContext, 2, ""), "Posten");
  EXPECT_EQ(withContext.getDomain(), "core");
  EXPECT_TRUE(own.getIsPural());
}

// The UI thread switches the language of a domain back and forth, removes it
// and clears the table, while workers translate in it: every answer belongs to
// one whole catalog or to none, and a catalog fetched before the switches
// stays as it was.
TEST_F(Registry, SwitchingLanguageWhileOthersTranslate) {
  const auto french = i18n_test::BuildImage({
      {"Open", "Ouvrir"},
      {"file" + kNul + "files", "Fichier" + kNul + "Fichiers"},
  });
  const MO germanCatalog(image_.data(), image_.size(), GermanRule, 2);
  const MO frenchCatalog(french.data(), french.size(), GermanRule, 2);
  registry().addMO(germanCatalog, "ui");
  const MO& held = registry().getMO("ui");

  std::atomic<bool> stop{false};
  std::atomic<int> started{0};
  std::vector<std::future<int>> workers;
  for (int t = 0; t < 3; ++t) {
    workers.push_back(std::async(std::launch::async, [&] {
      int wrong = 0;
      I18nUtils* shared = I18nUtils::getInstance();
      for (int i = 0; i < 100 || !stop.load(); ++i) {
        const std::string open = shared->gettext("Open", "ui");
        const std::string files = shared->ngettext("file", "files", 2, "ui");
        wrong += open != "Öffnen" && open != "Ouvrir" && open != "Open";
        wrong += files != "Dateien" && files != "Fichiers" && files != "files";
        wrong += shared->getMO("ui").translate("Open", "menu") == "";
        if (i == 0) ++started;
      }
      return wrong;
    }));
  }
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(60);
  while (started.load() < 3 && std::chrono::steady_clock::now() < deadline) {
    std::this_thread::yield();
  }
  for (int i = 0; i < 600; ++i) {
    registry().addMO(i % 2 == 0 ? germanCatalog : frenchCatalog, "ui");
    if (i % 7 == 0) registry().removeMO("ui");
    if (i % 31 == 0) registry().removeAllMO();
  }
  stop = true;
  for (auto& worker : workers) {
    ASSERT_EQ(worker.wait_until(deadline), std::future_status::ready);
    EXPECT_EQ(worker.get(), 0);
  }
  EXPECT_EQ(held.translate("Open", ""), "Öffnen");
  EXPECT_EQ(registry().gettext("Open", "ui"), "Ouvrir");  // the last switch, i = 599
}

TEST_F(Registry, ConcurrentFirstUseCreatesOneRegistry) {
  std::vector<std::future<I18nUtils*>> callers;
  for (int t = 0; t < 4; ++t) {
    callers.push_back(std::async(std::launch::async, [] { return I18nUtils::getInstance(); }));
  }
  I18nUtils* first = nullptr;
  for (auto& caller : callers) {
    ASSERT_EQ(caller.wait_for(std::chrono::seconds(60)), std::future_status::ready);
    I18nUtils* got = caller.get();
    if (first == nullptr) first = got;
    EXPECT_EQ(got, first);
  }
}

}  // namespace

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "i18n/entry.h"
#include "i18n/i18n_utils.h"

namespace {

using I18N::Entry;
using I18N::NoopEntry;
using I18N::TranslateEntry;

// Test-only access to the protected setters that the catalog and registry use.
struct KeyProbe : Entry {
  using Entry::createKey;
};

struct FilledTranslateEntry : TranslateEntry {
  FilledTranslateEntry(std::string singular, std::string plural, bool isPural,
                       std::vector<std::string> forms) {
    setSingular(std::move(singular));
    setPlural(std::move(plural));
    setIsPural(isPural);
    setTranslations(std::move(forms));
  }
};

TEST(Entry, KeysJoinContextAndMessageWithEot) {
  EXPECT_EQ(KeyProbe::createKey("Open", ""), "Open");
  EXPECT_EQ(KeyProbe::createKey("Open", "menu"), std::string("menu\x04Open"));
  EXPECT_EQ(KeyProbe::createKey("", "menu"), std::string("menu\x04"));
  const NoopEntry noop = I18N::I18nUtils::getInstance()->nxgettextNoop("a", "b", "ctx", "d");
  EXPECT_EQ(noop.getKey(), std::string("ctx\x04" "a"));  // the plural is never part of it
}

// The plural line needs both the flag and the text; one form prints unnumbered.
TEST(Entry, TranslateEntryPrintsItsFieldsAndForms) {
  const std::string head = "[TranslateEntry]\n\t Singular:\t\t ";
  const std::pair<FilledTranslateEntry, std::string> kCases[] = {
      {{"file", "files", false, {}}, head + "file"},
      {{"file", "", true, {}}, head + "file"},
      {{"", "files", true, {}}, "[TranslateEntry]\n\t Plural:\t\t files"},
      {{"file", "files", true, {"Datei", "Dateien"}},
       head + "file\n\t Plural:\t\t files\n\t Translation[0]: Datei\n\t Translation[1]: Dateien"},
      {{"file", "", false, {"Datei"}}, head + "file\n\t Translation:\t Datei"},
      {{"x", "", false, {""}}, head + "x\n\t Translation:\t "},
      {{"", "", false, {}}, "[TranslateEntry]"},
  };
  for (const auto& [entry, expected] : kCases) EXPECT_EQ(entry.toString(), expected);
}

}  // namespace

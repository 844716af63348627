#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "i18n/mo.h"
#include "i18n/mo_image.h"

namespace {

using I18N::MO;
using i18n_test::BuildImage;
using i18n_test::CompiledCatalog;
using i18n_test::GermanRule;
using i18n_test::PutWord;
using i18n_test::ReadBytes;

MO FromImage(const std::vector<unsigned char>& image, std::function<int(int)> rule = GermanRule,
             unsigned int nplurals = 2) {
  return MO(image.data(), image.size(), std::move(rule), nplurals);
}

// Expected answers are the msgstr texts of tests/data/i18n/de.po.
void ExpectGermanAnswers(const MO& mo) {
  ASSERT_TRUE(mo.getIsInited());
  const struct {
    const char *message, *context, *expected;
  } kCases[] = {
      {"Open", "", "Öffnen"},     {"Open", "menu", "Öffnen…"},
      {"Close", "toolbar", "Zu"}, {"Close", "menu", "Close"},
      {"Line one\nLine two", "", "Zeile eins\nZeile zwei"},
  };
  for (const auto& c : kCases) {
    EXPECT_EQ(mo.translate(c.message, c.context), c.expected) << c.context << "|" << c.message;
  }
  EXPECT_EQ(mo.translatePlural("file", "files", 1, ""), "Datei");
  EXPECT_EQ(mo.translatePlural("message", "messages", 7, "mailbox"), "Nachrichten");
  // Stored only with a context: without one it is missing.
  EXPECT_EQ(mo.translatePlural("message", "messages", 7, ""), "messages");
  EXPECT_EQ(mo.getHeadersInfo(),
            "Project-Id-Version: tessel-test 1.0\nLanguage: de\nMIME-Version: 1.0\n"
            "Content-Type: text/plain; charset=UTF-8\nContent-Transfer-Encoding: 8bit\n"
            "Plural-Forms: nplurals=2; plural=(n != 1);\n");
}

TEST(MoCatalog, MsgfmtCatalogsInBothByteOrdersAnswerAlike) {
  for (const char* order : {"little", "big"}) {
    SCOPED_TRACE(order);
    MO fromFile(CompiledCatalog("de", order), GermanRule, 2);
    ExpectGermanAnswers(fromFile);
    std::vector<unsigned char> image = ReadBytes(CompiledCatalog("de", order));
    ExpectGermanAnswers(FromImage(image));
    ExpectGermanAnswers(MO(image.data(), GermanRule, 2));
  }
}

TEST(MoCatalog, RefusesRevisionOneAndStillAcceptsAValidImageAfterwards) {
  // msgfmt writes revision 1 for catalogs with <PRIu64>.
  MO mo;
  EXPECT_TRUE(mo.loadMoFile(CompiledCatalog("sysdep", "little")));
  EXPECT_FALSE(mo.getIsInited());
  EXPECT_EQ(mo.translate("Open", ""), "Open");
  std::vector<unsigned char> handMade = BuildImage({{"Open", "Auf"}}, true, 1);
  mo.parseMoFile(handMade.data(), handMade.size());
  EXPECT_FALSE(mo.getIsInited());
  EXPECT_TRUE(mo.loadMoFile(CompiledCatalog("de", "big")));
  EXPECT_TRUE(mo.getIsInited());
  EXPECT_EQ(mo.translate("Open", ""), "Öffnen");
  // Once initialised, nothing more is read in.
  EXPECT_FALSE(mo.loadMoFile(CompiledCatalog("de", "little")));
  std::vector<unsigned char> other = BuildImage({{"Open", "Auf"}});
  mo.parseMoFile(other.data(), other.size());
  mo.parseMoFile(other.data());
  EXPECT_EQ(mo.translate("Open", ""), "Öffnen");
}

TEST(MoCatalog, EveryTruncationOfARealCatalogIsRefusedWithoutOverreading) {
  const std::vector<unsigned char> full = ReadBytes(CompiledCatalog("de", "little"));
  ASSERT_GT(full.size(), 100u);
  ASSERT_EQ(full.back(), 0);  // msgfmt ends the image with the last string's NUL
  for (size_t size = 0; size <= full.size(); ++size) {
    // An exact-size heap copy, so that AddressSanitizer sees any read past it.
    std::vector<unsigned char> prefix(full.begin(), full.begin() + size);
    const MO mo = FromImage(prefix);
    // The terminating NUL of the last string is not needed.
    ASSERT_EQ(mo.getIsInited(), size + 1 >= full.size()) << size;
  }
}

TEST(MoCatalog, HostileHeadersAndDescriptorsAreRefused) {
  const auto valid = BuildImage({{"Open", "Auf"}, {"Save", "Sichern"}});
  struct Case {
    const char* what;
    size_t offset;
    uint32_t value;
  };
  const Case cases[] = {
      {"count whose table size overflows 32 bits", 8, 0x20000000},
      {"largest count", 8, 0xFFFFFFFF},
      {"count one too many", 8, 3},
      {"source table beyond the end", 12, 0xFFFFFFF8},
      {"translation table beyond the end", 16, 0xFFFFFFF8},
      {"source offset near 2^32", 28 + 4, 0xFFFFFFF0},
      {"source length past the end", 28, 0x7FFFFFFF},
      {"translation length past the end", 28 + 16 + 8, 0xFFFFFFFF},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    auto image = valid;
    PutWord(image, c.offset, c.value, false);
    EXPECT_FALSE(FromImage(image).getIsInited());
  }
  // A string that ends exactly at the end of the image is fine.
  auto exact = BuildImage({{"Open", "Auf"}});
  exact.pop_back();
  EXPECT_EQ(FromImage(exact).translate("Open", ""), "Auf");
}

}  // namespace

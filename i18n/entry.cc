#include "i18n/entry.h"

#include <utility>

#include "i18n/mo.h"

namespace I18N {

namespace {

// One "\n\t <label>:<gap> <value>" line of a diagnostic dump.
void appendLine(std::string& out, const char* label, const char* gap,
                const std::string& value) {
  out += "\n\t ";
  out += label;
  out += ':';
  out += gap;
  out += ' ';
  out += value;
}

}  // namespace

Entry::Entry() : isPural(false), typeName("Entry") {}
Entry::Entry(const Entry& other) = default;
Entry& Entry::operator=(const Entry& other) = default;
Entry::~Entry() = default;

bool Entry::getIsPural() const { return isPural; }
std::string Entry::getSingular() const { return singular; }
std::string Entry::getPlural() const { return plural; }
std::string Entry::getContext() const { return context; }

void Entry::setSingular(std::string value) { singular = std::move(value); }
void Entry::setPlural(std::string value) { plural = std::move(value); }
void Entry::setContext(std::string value) { context = std::move(value); }
void Entry::setIsPural(bool value) { isPural = value; }

std::string Entry::createKey(std::string singular, std::string context) {
  if (context.empty()) return singular;
  context += MO::CONTEXT_SEPARATOR;
  context += singular;
  return context;
}

std::string Entry::getKey() const { return createKey(singular, context); }

std::string Entry::toString() const {
  std::string out = "[" + typeName + "]";
  if (!singular.empty()) appendLine(out, "Singular", "\t\t", singular);
  if (isPural && !plural.empty()) appendLine(out, "Plural", "\t\t", plural);
  if (!context.empty()) appendLine(out, "Context", "\t\t", context);
  return out;
}

TranslateEntry::TranslateEntry() { typeName = "TranslateEntry"; }
TranslateEntry::TranslateEntry(const TranslateEntry& other) = default;
TranslateEntry& TranslateEntry::operator=(const TranslateEntry& other) = default;
TranslateEntry::~TranslateEntry() = default;

std::string TranslateEntry::toString() const {
  std::string out = Entry::toString();
  if (translations.size() == 1) {
    appendLine(out, "Translation", "\t", translations[0]);
    return out;
  }
  for (size_t i = 0; i < translations.size(); ++i) {
    const std::string label = "Translation[" + std::to_string(i) + "]";
    appendLine(out, label.c_str(), "", translations[i]);
  }
  return out;
}

const std::vector<std::string>& TranslateEntry::getTranslations() const {
  return translations;
}

void TranslateEntry::setTranslations(std::vector<std::string> value) {
  translations = std::move(value);
}

NoopEntry::NoopEntry() { typeName = "NoopEntry"; }
NoopEntry::NoopEntry(const NoopEntry& other) = default;
NoopEntry& NoopEntry::operator=(const NoopEntry& other) = default;
NoopEntry::~NoopEntry() = default;

std::string NoopEntry::toString() const {
  std::string out = Entry::toString();
  if (!domain.empty()) appendLine(out, "Domain", "\t\t", domain);
  return out;
}

const std::string& NoopEntry::getDomain() const { return domain; }

void NoopEntry::setDomain(std::string value) { domain = std::move(value); }

}  // namespace I18N

#include "i18n/i18n_utils.h"

#include <atomic>
#include <mutex>
#include <utility>

namespace I18N {

namespace {

// The registry pointer is published atomically so that lookups reach it
// without a lock; creation and destruction are serialised by the mutex.
std::atomic<I18nUtils*> instance{nullptr};
std::mutex instanceMutex;  // guards creating and deleting *instance

std::string& orDefault(std::string& domain) {
  if (domain.empty()) domain = I18nUtils::DEFAULT_DOMAIN;
  return domain;
}

}  // namespace

std::string I18nUtils::DEFAULT_DOMAIN = "default";

I18nUtils::I18nUtils() = default;
I18nUtils::I18nUtils(const I18nUtils& other) = default;
I18nUtils& I18nUtils::operator=(const I18nUtils& other) = default;
I18nUtils::~I18nUtils() = default;

I18nUtils* I18nUtils::getInstance() {
  I18nUtils* current = instance.load(std::memory_order_acquire);
  if (current != nullptr) return current;
  std::lock_guard<std::mutex> lock(instanceMutex);
  current = instance.load(std::memory_order_relaxed);
  if (current == nullptr) {
    current = new I18nUtils();
    instance.store(current, std::memory_order_release);
  }
  return current;
}

void I18nUtils::destroyInstance() {
  std::lock_guard<std::mutex> lock(instanceMutex);
  delete instance.exchange(nullptr, std::memory_order_acq_rel);
}

void I18nUtils::addMO(unsigned char* data, std::function<int(int)> pluralExpression,
                      unsigned int nplurals, std::string domain) {
  if (data == nullptr) return;
  addMO(MO(data, std::move(pluralExpression), nplurals), std::move(domain));
}

void I18nUtils::addMO(std::string path, std::function<int(int)> pluralExpression,
                      unsigned int nplurals, std::string domain) {
  if (path.empty()) return;
  addMO(MO(std::move(path), std::move(pluralExpression), nplurals), std::move(domain));
}

void I18nUtils::addMO(MO mo, std::string domain) {
  moMap.insert_or_assign(std::move(orDefault(domain)), std::move(mo));
}

const MO& I18nUtils::getMO(std::string domain) {
  return moMap.try_emplace(std::move(orDefault(domain))).first->second;
}

bool I18nUtils::hasMO(std::string domain) const { return moMap.count(domain) != 0; }

void I18nUtils::removeMO(std::string domain) { moMap.erase(domain); }

void I18nUtils::removeAllMO() { moMap.clear(); }

std::string I18nUtils::gettext(std::string message, std::string domain) const {
  return translate(std::move(message), std::string(), std::move(domain));
}

std::string I18nUtils::xgettext(std::string message, std::string context,
                                std::string domain) const {
  return translate(std::move(message), std::move(context), std::move(domain));
}

std::string I18nUtils::ngettext(std::string singular, std::string plural, int n,
                                std::string domain) const {
  return translatePlural(std::move(singular), std::move(plural), n, std::string(),
                         std::move(domain));
}

std::string I18nUtils::nxgettext(std::string singular, std::string plural, int n,
                                 std::string context, std::string domain) const {
  return translatePlural(std::move(singular), std::move(plural), n, std::move(context),
                         std::move(domain));
}

NoopEntry I18nUtils::ngettextNoop(std::string singular, std::string plural,
                                  std::string domain) const {
  return nxgettextNoop(std::move(singular), std::move(plural), std::string(), std::move(domain));
}

NoopEntry I18nUtils::nxgettextNoop(std::string singular, std::string plural,
                                   std::string context, std::string domain) const {
  NoopEntry entry;
  entry.setIsPural(true);
  entry.setSingular(std::move(singular));
  entry.setPlural(std::move(plural));
  entry.setContext(std::move(context));
  entry.setDomain(std::move(domain));
  return entry;
}

std::string I18nUtils::translateNooped(NoopEntry& entry, int n, std::string domain) const {
  return translatePlural(entry.getSingular(), entry.getPlural(), n, entry.getContext(),
                         entry.getDomain().empty() ? std::move(domain) : entry.getDomain());
}

std::string I18nUtils::translate(std::string message, std::string context,
                                 std::string domain) const {
  const auto found = moMap.find(domain);
  if (found == moMap.end()) return message;
  return found->second.translate(std::move(message), std::move(context));
}

std::string I18nUtils::translatePlural(std::string singular, std::string plural, int n,
                                       std::string context, std::string domain) const {
  const auto found = moMap.find(domain);
  if (found == moMap.end()) return n == 1 ? singular : plural;
  return found->second.translatePlural(std::move(singular), std::move(plural), n,
                                       std::move(context));
}

}  // namespace I18N

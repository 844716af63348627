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

I18nUtils::I18nUtils() : moMap(nullptr) {
  published.push_back(std::make_unique<const Catalogs>());
  moMap.store(published.back().get(), std::memory_order_release);
}

I18nUtils::I18nUtils(const I18nUtils& other) : I18nUtils() { *this = other; }

I18nUtils& I18nUtils::operator=(const I18nUtils& other) {
  if (this != &other) {
    const Catalogs* source = other.moMap.load(std::memory_order_acquire);
    publish([source](Catalogs& table) {
      table = *source;
      return true;
    });
  }
  return *this;
}

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

void I18nUtils::publish(const std::function<bool(Catalogs&)>& edit) {
  std::lock_guard<std::mutex> lock(publishMutex);
  auto next = std::make_unique<Catalogs>(*moMap.load(std::memory_order_relaxed));
  if (!edit(*next)) return;
  published.push_back(std::move(next));
  moMap.store(published.back().get(), std::memory_order_release);
}

const MO* I18nUtils::find(const std::string& domain) const {
  const Catalogs& table = *moMap.load(std::memory_order_acquire);
  const auto found = table.find(domain);
  return found == table.end() ? nullptr : found->second.get();
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
  std::shared_ptr<const MO> catalog = std::make_shared<const MO>(std::move(mo));
  orDefault(domain);
  publish([&](Catalogs& table) {
    table[domain] = std::move(catalog);
    return true;
  });
}

const MO& I18nUtils::getMO(std::string domain) {
  orDefault(domain);
  if (const MO* present = find(domain)) return *present;
  const MO* stored = nullptr;
  publish([&](Catalogs& table) {
    auto& slot = table[domain];
    const bool absent = slot == nullptr;  // another thread may have bound it meanwhile
    if (absent) slot = std::make_shared<const MO>();
    stored = slot.get();
    return absent;
  });
  return *stored;
}

bool I18nUtils::hasMO(std::string domain) const { return find(domain) != nullptr; }

void I18nUtils::removeMO(std::string domain) {
  publish([&](Catalogs& table) { return table.erase(domain) != 0; });
}

void I18nUtils::removeAllMO() {
  publish([](Catalogs& table) {
    const bool any = !table.empty();
    table.clear();
    return any;
  });
}

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
  const MO* catalog = find(domain);
  if (catalog == nullptr) return message;
  return catalog->translate(std::move(message), std::move(context));
}

std::string I18nUtils::translatePlural(std::string singular, std::string plural, int n,
                                       std::string context, std::string domain) const {
  const MO* catalog = find(domain);
  if (catalog == nullptr) return n == 1 ? singular : plural;
  return catalog->translatePlural(std::move(singular), std::move(plural), n, std::move(context));
}

}  // namespace I18N

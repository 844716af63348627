#include "i18n/mo.h"

#include <algorithm>
#include <cstring>
#include <fstream>
#include <limits>
#include <utility>

#include "platform/file_system.h"

namespace I18N {

namespace {

constexpr size_t kHeaderSize = 28;  // magic, revision, N, O, T, S, H
constexpr unsigned char kLittleEndianMagic[4] = {0xDE, 0x12, 0x04, 0x95};
constexpr unsigned char kBigEndianMagic[4] = {0x95, 0x04, 0x12, 0xDE};
// Keys longer than this are assembled on the heap when a lookup has a context.
constexpr size_t kStackKeySize = 256;

int twoFormRule(int n) { return n != 1 ? 1 : 0; }

size_t hashKey(std::string_view key) { return std::hash<std::string_view>()(key); }

// Reads 32-bit words of an image in the byte order its magic announced.
class WordReader {
 public:
  WordReader(const unsigned char* data, bool bigEndian) : data_(data), bigEndian_(bigEndian) {}
  uint64_t at(uint64_t offset) const {
    const unsigned char* p = data_ + offset;
    if (bigEndian_) {
      return uint32_t(p[0]) << 24 | uint32_t(p[1]) << 16 | uint32_t(p[2]) << 8 | p[3];
    }
    return uint32_t(p[3]) << 24 | uint32_t(p[2]) << 16 | uint32_t(p[1]) << 8 | p[0];
  }

 private:
  const unsigned char* data_;
  bool bigEndian_;
};

// Cuts a translation at every NUL into forms; a NUL that ends the text starts
// no further form, and an empty translation is one empty form.
std::vector<std::string> splitForms(std::string_view text) {
  std::vector<std::string> forms;
  size_t start = 0;
  for (;;) {
    const size_t end = text.find(MO::PLURAL_SEPARATOR, start);
    forms.emplace_back(text.substr(start, end == std::string_view::npos ? end : end - start));
    if (end == std::string_view::npos || end + 1 >= text.size()) return forms;
    start = end + 1;
  }
}

// A lookup record: three native 32-bit words, then the key, then form 0.
constexpr size_t kRecordHeader = 12;

struct RecordView {
  uint32_t entry;
  std::string_view key;
  std::string_view form;
};

RecordView viewRecord(const char* record) {
  uint32_t words[3];
  std::memcpy(words, record, sizeof words);
  const char* key = record + kRecordHeader;
  return RecordView{words[0], std::string_view(key, words[1]),
                    std::string_view(key + words[1], words[2])};
}

size_t slotCountFor(size_t entries) {
  size_t count = 16;
  while (count < entries * 2) count *= 2;
  return count;
}

}  // namespace

const char MO::CONTEXT_SEPARATOR = 0x04;
const char MO::PLURAL_SEPARATOR = 0x00;
const unsigned int MO::DEFAULT_NPLURALS = 2;
const std::function<int(int)> MO::DEFAULT_PLURAL_EXPRESSION = twoFormRule;

MO::MO() : MO(std::string(), DEFAULT_PLURAL_EXPRESSION, DEFAULT_NPLURALS) {}

MO::MO(unsigned char* data, std::function<int(int)> pluralExpression, unsigned int nplurals)
    : nplurals(nplurals), pluralExpression(std::move(pluralExpression)), isInited(false) {
  parseMoFile(data);
}

MO::MO(const unsigned char* data, size_t size, std::function<int(int)> pluralExpression,
       unsigned int nplurals)
    : nplurals(nplurals), pluralExpression(std::move(pluralExpression)), isInited(false) {
  parseMoFile(data, size);
}

MO::MO(std::string path, std::function<int(int)> pluralExpression, unsigned int nplurals)
    : nplurals(nplurals), pluralExpression(std::move(pluralExpression)), isInited(false) {
  if (!path.empty()) loadMoFile(std::move(path));
}

MO::MO(const MO& other) = default;
MO& MO::operator=(const MO& other) = default;
MO::~MO() = default;

bool MO::loadMoFile(std::string path) {
  if (isInited || path.empty()) return false;
  std::ifstream in(tessel_platform::NativePath(path), std::ios::in | std::ios::binary);
  // peek() fails on what opens but cannot be read (a directory) and on an
  // empty file, before the size is trusted for an allocation.
  if (!in.is_open() || !in.good() ||
      in.peek() == std::ifstream::traits_type::eof()) {
    return false;
  }
  in.seekg(0, std::ios::end);
  const std::streamoff end = in.tellg();
  in.seekg(0, std::ios::beg);
  if (end <= 0) return false;
  std::vector<unsigned char> buffer(static_cast<size_t>(end));
  in.read(reinterpret_cast<char*>(buffer.data()), end);
  // A file that shrank while being read is parsed as far as it was read.
  const size_t got = static_cast<size_t>(in.gcount());
  in.close();
  parseImage(buffer.data(), got);
  return true;
}

void MO::parseMoFile(unsigned char* data) {
  parseImage(data, std::numeric_limits<size_t>::max());
}

void MO::parseMoFile(const unsigned char* data, size_t size) { parseImage(data, size); }

void MO::parseImage(const unsigned char* data, size_t size) {
  if (data == nullptr || isInited || size < kHeaderSize) return;
  bool bigEndian;
  if (std::memcmp(data, kBigEndianMagic, 4) == 0) {
    bigEndian = true;
  } else if (std::memcmp(data, kLittleEndianMagic, 4) == 0) {
    bigEndian = false;
  } else {
    return;
  }
  const WordReader word(data, bigEndian);
  if (word.at(4) != 0) return;
  const uint64_t count = word.at(8);
  const uint64_t sources = word.at(12);
  const uint64_t targets = word.at(16);
  // A table whose byte size does not fit in 32 bits cannot be in any image.
  if (count > std::numeric_limits<uint32_t>::max() / 8) return;
  const uint64_t tableBytes = count * 8;
  if (sources + tableBytes > size || targets + tableBytes > size) return;

  MO staged;
  // Each message takes two descriptors, so a sized image bounds the count;
  // past a million messages (only a size-less image) the table just grows.
  const size_t expected =
      static_cast<size_t>(std::min<uint64_t>({count, size / 16, uint64_t{1} << 20}));
  staged.entries.reserve(expected);
  staged.slots.resize(slotCountFor(expected));
  for (uint64_t i = 0; i < count; ++i) {
    const uint64_t sourceLength = word.at(sources + 8 * i);
    const uint64_t sourceOffset = word.at(sources + 8 * i + 4);
    const uint64_t targetLength = word.at(targets + 8 * i);
    const uint64_t targetOffset = word.at(targets + 8 * i + 4);
    if (sourceOffset + sourceLength > size || targetOffset + targetLength > size) return;
    const std::string_view source(reinterpret_cast<const char*>(data) + sourceOffset,
                                  sourceLength);
    const std::string_view target(reinterpret_cast<const char*>(data) + targetOffset,
                                  targetLength);
    if (source.empty() && staged.headersInfo.empty()) {
      staged.headersInfo.assign(target.substr(0, target.find(PLURAL_SEPARATOR)));
      continue;
    }
    TranslateEntry entry;
    std::string_view rest = source;
    const size_t contextEnd = source.find(CONTEXT_SEPARATOR);
    if (contextEnd != std::string_view::npos) {
      entry.context.assign(source.substr(0, contextEnd));
      rest = source.substr(contextEnd + 1);
    }
    const size_t singularEnd = rest.find(PLURAL_SEPARATOR);
    entry.singular.assign(rest.substr(0, singularEnd));
    if (singularEnd != std::string_view::npos) {
      const std::string_view plural = rest.substr(singularEnd + 1);
      entry.plural.assign(plural.substr(0, plural.find(PLURAL_SEPARATOR)));
      entry.isPural = true;
    }
    entry.translations = splitForms(target);
    if (!staged.store(std::move(entry))) return;
  }
  headersInfo = std::move(staged.headersInfo);
  entries = std::move(staged.entries);
  lookup = std::move(staged.lookup);
  slots = std::move(staged.slots);
  isInited = true;
}

bool MO::store(TranslateEntry entry) {
  const std::string joined = entry.context.empty() ? std::string() : entry.getKey();
  const std::string_view key = entry.context.empty() ? entry.singular : joined;
  const std::string& form = entry.translations.front();
  const uint64_t recordOffset = lookup.size();
  if (recordOffset + kRecordHeader + key.size() + form.size() >=
      std::numeric_limits<uint32_t>::max()) {
    return false;
  }
  const size_t hash = hashKey(key);
  const char* existing = findKey(key, hash);
  const uint32_t index =
      existing != nullptr ? viewRecord(existing).entry : static_cast<uint32_t>(entries.size());
  const uint32_t words[3] = {index, static_cast<uint32_t>(key.size()),
                             static_cast<uint32_t>(form.size())};
  lookup.append(reinterpret_cast<const char*>(words), sizeof words);
  lookup.append(key);
  lookup.append(form);
  if (existing != nullptr) {
    entries[index] = std::move(entry);  // the later message wins
  } else {
    entries.push_back(std::move(entry));
  }
  if ((entries.size() + 1) * 2 > slots.size()) {
    std::vector<Slot> old = std::move(slots);
    slots.assign(slotCountFor(entries.size() + 1), Slot{0, 0});
    for (const Slot& slot : old) {
      if (slot.record != 0) placeSlot(slot);
    }
  }
  placeSlot(Slot{static_cast<uint32_t>(recordOffset + 1), static_cast<uint32_t>(hash)});
  return true;
}

// Puts the slot where its key's probe sequence finds it: over the slot of the
// same key, or in the first free one.
void MO::placeSlot(Slot slot) {
  const size_t mask = slots.size() - 1;
  const std::string_view key = viewRecord(lookup.data() + slot.record - 1).key;
  for (size_t i = slot.hash & mask;; i = (i + 1) & mask) {
    Slot& here = slots[i];
    if (here.record == 0 ||
        (here.hash == slot.hash && viewRecord(lookup.data() + here.record - 1).key == key)) {
      here = slot;
      return;
    }
  }
}

const char* MO::findKey(std::string_view key, size_t hash) const {
  if (slots.empty()) return nullptr;
  const size_t mask = slots.size() - 1;
  for (size_t i = hash & mask;; i = (i + 1) & mask) {
    const Slot& slot = slots[i];
    if (slot.record == 0) return nullptr;
    if (slot.hash == static_cast<uint32_t>(hash)) {
      const char* record = lookup.data() + slot.record - 1;
      if (viewRecord(record).key == key) return record;
    }
  }
}

const char* MO::find(const std::string& singular, const std::string& context) const {
  if (entries.empty()) return nullptr;
  if (context.empty()) return findKey(singular, hashKey(singular));
  const size_t length = context.size() + 1 + singular.size();
  char stackKey[kStackKeySize];
  std::string heapKey;
  char* key = stackKey;
  if (length > kStackKeySize) {
    heapKey.resize(length);
    key = heapKey.data();
  }
  std::memcpy(key, context.data(), context.size());
  key[context.size()] = CONTEXT_SEPARATOR;
  std::memcpy(key + context.size() + 1, singular.data(), singular.size());
  const std::string_view view(key, length);
  return findKey(view, hashKey(view));
}

bool MO::getIsInited() const { return isInited; }

std::string MO::getHeadersInfo() const { return headersInfo; }

std::string MO::translate(std::string singular, std::string context) const {
  const char* record = find(singular, context);
  return record != nullptr ? std::string(viewRecord(record).form) : singular;
}

std::string MO::translatePlural(std::string singular, std::string plural, int n,
                                std::string context) const {
  const char* record = find(singular, context);
  const unsigned int index = selectPluralForm(n);
  if (record != nullptr) {
    const std::vector<std::string>& forms = entries[viewRecord(record).entry].translations;
    if (index < forms.size()) return forms[index];
  }
  return n == 1 ? singular : plural;
}

unsigned int MO::selectPluralForm(int n) const {
  const int chosen = pluralExpression ? pluralExpression(n) : DEFAULT_PLURAL_EXPRESSION(n);
  const long long last = static_cast<long long>(nplurals) - 1;
  return static_cast<unsigned int>(std::max(0LL, std::min<long long>(chosen, last)));
}

}  // namespace I18N

#include "i18n/mo.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstring>
#include <fstream>
#include <limits>
#include <random>
#include <utility>

#include "platform/file_system.h"

namespace I18N {

namespace {

constexpr size_t kHeaderSize = 28;  // magic, revision, N, O, T, S, H
constexpr unsigned char kLittleEndianMagic[4] = {0xDE, 0x12, 0x04, 0x95};
constexpr unsigned char kBigEndianMagic[4] = {0x95, 0x04, 0x12, 0xDE};
// Keys longer than this are assembled on the heap when a lookup has a context.
constexpr size_t kStackKeySize = 256;
// How far a key may sit from its home slot. At the index's load of at most
// one half, random keys stay within about 64 slots even for millions of
// messages; keys that do not are crafted, or met a rare seed, and get fresh
// seeds and a larger index before the image is refused.
constexpr size_t kMaxProbe = 128;
constexpr int kIndexAttempts = 3;

int twoFormRule(int n) { return n != 1 ? 1 : 0; }

uint64_t mixBits(uint64_t x) {
  x += 0x9E3779B97F4A7C15u;
  x = (x ^ (x >> 30)) * 0xBF58476D1CE4E5B9u;
  x = (x ^ (x >> 27)) * 0x94D049BB133111EBu;
  return x ^ (x >> 31);
}

// The process's secret: the platform's random source when it works, mixed
// with the clock and an address that differs from run to run.
uint64_t processSecret() {
  uint64_t bits = static_cast<uint64_t>(
      std::chrono::steady_clock::now().time_since_epoch().count());
  bits ^= mixBits(reinterpret_cast<uintptr_t>(&bits));
  try {
    std::random_device device;
    bits ^= uint64_t{device()} << 32 ^ device();
  } catch (...) {
    // No random source: clock and address alone still vary per process.
  }
  return mixBits(bits);
}

// A new hash seed for each index build. Thread-safe.
uint64_t drawSeed() {
  static const uint64_t secret = processSecret();
  static std::atomic<uint64_t> draws{0};
  return mixBits(secret + draws.fetch_add(1, std::memory_order_relaxed));
}

// The 64-bit product of a and b folded from 128 bits: every input bit
// reaches every output bit.
uint64_t fold(uint64_t a, uint64_t b) {
#if defined(__SIZEOF_INT128__)
  __extension__ typedef unsigned __int128 Wide;
  const Wide product = static_cast<Wide>(a) * b;
  return static_cast<uint64_t>(product) ^ static_cast<uint64_t>(product >> 64);
#else
  const uint64_t aLow = a & 0xFFFFFFFFu, aHigh = a >> 32;
  const uint64_t bLow = b & 0xFFFFFFFFu, bHigh = b >> 32;
  const uint64_t lowLow = aLow * bLow, lowHigh = aLow * bHigh;
  const uint64_t highLow = aHigh * bLow, highHigh = aHigh * bHigh;
  const uint64_t middle = (lowLow >> 32) + (lowHigh & 0xFFFFFFFFu) + (highLow & 0xFFFFFFFFu);
  const uint64_t low = (middle << 32) | (lowLow & 0xFFFFFFFFu);
  const uint64_t high = highHigh + (lowHigh >> 32) + (highLow >> 32) + (middle >> 32);
  return low ^ high;
#endif
}

uint64_t load64(const char* p) {
  uint64_t value;
  std::memcpy(&value, p, sizeof value);
  return value;
}

uint64_t load32(const char* p) {
  uint32_t value;
  std::memcpy(&value, p, sizeof value);
  return value;
}

// Keyed hash of a table key. Every 16 bytes are folded with the running state
// and the seed, so which keys collide depends on the seed, which stays inside
// the process; the final fold mixes in the length.
uint64_t keyHash(std::string_view key, uint64_t seed) {
  const char* p = key.data();
  size_t left = key.size();
  uint64_t state = seed ^ 0xA0761D6478BD642Fu;
  for (; left > 16; p += 16, left -= 16) {
    state = fold(load64(p) ^ seed, load64(p + 8) ^ state);
  }
  uint64_t first = 0, last = 0;
  if (left >= 8) {
    first = load64(p);
    last = load64(p + left - 8);
  } else if (left >= 4) {
    first = load32(p);
    last = load32(p + left - 4);
  } else if (left > 0) {
    first = uint64_t{static_cast<unsigned char>(p[0])} << 16 |
            uint64_t{static_cast<unsigned char>(p[left / 2])} << 8 |
            static_cast<unsigned char>(p[left - 1]);
  }
  state = fold(first ^ seed, last ^ state);
  return fold(state ^ 0xE7037ED1A0B428DBu, key.size() ^ seed ^ 0x8EBC6AF09C88C6E3u);
}

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

// The table key within a source string "[context 0x04] singular [0x00
// plural]": the bytes up to the singular's end, less the separator of an
// empty context.
std::string_view keyOf(std::string_view source) {
  const size_t separator = source.find(MO::CONTEXT_SEPARATOR);
  const size_t singular = separator == std::string_view::npos ? 0 : separator + 1;
  const size_t start = separator == 0 ? 1 : 0;
  const size_t end = std::min(source.find(MO::PLURAL_SEPARATOR, singular), source.size());
  return source.substr(start, end - start);
}

// A message record: three native 32-bit words, then the key, then the
// translation, whose first form the second word measures.
constexpr size_t kRecordHeader = 12;

struct RecordView {
  std::string_view key;
  std::string_view form;
  std::string_view translation;
};

RecordView viewRecord(const char* record) {
  uint32_t words[3];
  std::memcpy(words, record, sizeof words);
  const char* key = record + kRecordHeader;
  return RecordView{std::string_view(key, words[0]), std::string_view(key + words[0], words[1]),
                    std::string_view(key + words[0], words[2])};
}

// Form `index` of a record's translation cut at every NUL, where a NUL that
// ends the translation starts no further form; false when there are fewer
// forms. Form 0 is measured in the record; the walk starts after it.
bool formAt(const RecordView& record, unsigned int index, std::string_view& form) {
  form = record.form;
  const std::string_view translation = record.translation;
  for (size_t end = form.size(); index > 0; --index) {
    if (end + 1 >= translation.size()) return false;
    const size_t start = end + 1;
    end = std::min(translation.find(MO::PLURAL_SEPARATOR, start), translation.size());
    form = translation.substr(start, end - start);
  }
  return true;
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
    : nplurals(nplurals), pluralExpression(std::move(pluralExpression)), isInited(false), seed(0) {
  parseMoFile(data);
}

MO::MO(const unsigned char* data, size_t size, std::function<int(int)> pluralExpression,
       unsigned int nplurals)
    : nplurals(nplurals), pluralExpression(std::move(pluralExpression)), isInited(false), seed(0) {
  parseMoFile(data, size);
}

MO::MO(std::string path, std::function<int(int)> pluralExpression, unsigned int nplurals)
    : nplurals(nplurals), pluralExpression(std::move(pluralExpression)), isInited(false), seed(0) {
  if (!path.empty()) loadMoFile(std::move(path));
}

MO::MO(const MO& other) = default;
MO& MO::operator=(const MO& other) = default;

MO::MO(MO&& other) noexcept
    : nplurals(other.nplurals),
      pluralExpression(std::exchange(other.pluralExpression, nullptr)),
      isInited(std::exchange(other.isInited, false)),
      headersInfo(std::move(other.headersInfo)),
      records(std::move(other.records)),
      slots(std::move(other.slots)),
      seed(other.seed) {
  other.headersInfo.clear();
  other.records.clear();
  other.slots.clear();
}

MO& MO::operator=(MO&& other) noexcept {
  if (this != &other) {
    nplurals = other.nplurals;
    pluralExpression = std::exchange(other.pluralExpression, nullptr);
    isInited = std::exchange(other.isInited, false);
    headersInfo = std::move(other.headersInfo);
    records = std::move(other.records);
    slots = std::move(other.slots);
    seed = other.seed;
    other.headersInfo.clear();
    other.records.clear();
    other.slots.clear();
  }
  return *this;
}

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

  // Every string must lie in the image, and together they may not be longer
  // than the part of it that the tables and strings span: otherwise
  // descriptors share bytes, and a small image could claim any amount.
  uint64_t extent = std::max(sources, targets) + tableBytes;
  uint64_t total = 0;
  for (uint64_t at = 0; at < tableBytes; at += 8) {
    for (const uint64_t table : {sources, targets}) {
      const uint64_t end = word.at(table + at + 4) + word.at(table + at);
      if (end > size) return;
      extent = std::max(extent, end);
      total += word.at(table + at);
    }
  }
  if (total > extent || total + kRecordHeader * count >= std::numeric_limits<uint32_t>::max()) {
    return;
  }

  MO staged;
  staged.seed = drawSeed();
  staged.records.reserve(static_cast<size_t>(total + kRecordHeader * count));
  staged.slots.assign(slotCountFor(static_cast<size_t>(count)), Slot{0, 0});
  const auto text = [data](uint64_t descriptor, const WordReader& read) {
    return std::string_view(reinterpret_cast<const char*>(data) + read.at(descriptor + 4),
                            static_cast<size_t>(read.at(descriptor)));
  };
  for (uint64_t at = 0; at < tableBytes; at += 8) {
    const std::string_view source = text(sources + at, word);
    const std::string_view target = text(targets + at, word);
    if (source.empty() && staged.headersInfo.empty()) {
      staged.headersInfo.assign(target.substr(0, target.find(PLURAL_SEPARATOR)));
    } else if (!staged.store(keyOf(source), target)) {
      return;
    }
  }
  headersInfo = std::move(staged.headersInfo);
  records = std::move(staged.records);
  slots = std::move(staged.slots);
  seed = staged.seed;
  isInited = true;
}

bool MO::store(std::string_view key, std::string_view translation) {
  const uint32_t words[3] = {
      static_cast<uint32_t>(key.size()),
      static_cast<uint32_t>(std::min(translation.find(PLURAL_SEPARATOR), translation.size())),
      static_cast<uint32_t>(translation.size())};
  const Slot slot{static_cast<uint32_t>(records.size() + 1),
                  static_cast<uint32_t>(keyHash(key, seed))};
  records.append(reinterpret_cast<const char*>(words), sizeof words);
  records.append(key);
  records.append(translation);
  return placeSlot(slot) || reindex(slot);
}

bool MO::placeSlot(Slot slot) {
  const size_t mask = slots.size() - 1;
  const std::string_view key = viewRecord(records.data() + slot.record - 1).key;
  size_t i = slot.hash & mask;
  for (size_t probe = 0; probe <= kMaxProbe; ++probe, i = (i + 1) & mask) {
    Slot& here = slots[i];
    if (here.record == 0 ||
        (here.hash == slot.hash && viewRecord(records.data() + here.record - 1).key == key)) {
      here = slot;  // a later message with the same key wins
      return true;
    }
  }
  return false;
}

bool MO::reindex(Slot pending) {
  std::vector<Slot> placed;
  for (const Slot& slot : slots) {
    if (slot.record != 0) placed.push_back(slot);
  }
  placed.push_back(pending);
  for (int attempt = 0; attempt < kIndexAttempts; ++attempt) {
    seed = drawSeed();
    slots.assign(slots.size() * 2, Slot{0, 0});
    const bool all = std::all_of(placed.begin(), placed.end(), [this](Slot slot) {
      const std::string_view key = viewRecord(records.data() + slot.record - 1).key;
      return placeSlot(Slot{slot.record, static_cast<uint32_t>(keyHash(key, seed))});
    });
    if (all) return true;
  }
  return false;
}

const char* MO::findKey(std::string_view key) const {
  if (slots.empty()) return nullptr;
  const uint64_t hash = keyHash(key, seed);
  const size_t mask = slots.size() - 1;
  size_t i = hash & mask;
  for (size_t probe = 0; probe <= kMaxProbe; ++probe, i = (i + 1) & mask) {
    const Slot& slot = slots[i];
    if (slot.record == 0) return nullptr;
    if (slot.hash == static_cast<uint32_t>(hash)) {
      const char* record = records.data() + slot.record - 1;
      if (viewRecord(record).key == key) return record;
    }
  }
  return nullptr;
}

const char* MO::find(const std::string& singular, const std::string& context) const {
  if (slots.empty()) return nullptr;
  if (context.empty()) return findKey(singular);
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
  return findKey(std::string_view(key, length));
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
  std::string_view form;
  if (record != nullptr && formAt(viewRecord(record), index, form)) {
    return std::string(form);
  }
  return n == 1 ? singular : plural;
}

unsigned int MO::selectPluralForm(int n) const {
  const int chosen = pluralExpression ? pluralExpression(n) : DEFAULT_PLURAL_EXPRESSION(n);
  const long long last = static_cast<long long>(nplurals) - 1;
  return static_cast<unsigned int>(std::max(0LL, std::min<long long>(chosen, last)));
}

}  // namespace I18N

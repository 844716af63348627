#include "common/pinyin.h"

#include <array>
#include <cstdint>
#include <cstring>
#include <memory>
#include <mutex>
#include <type_traits>
#include <vector>

#include "common/pinyin_table.h"

namespace {

using tessel::pinyin_internal::kPinyinSyllableCount;
using tessel::pinyin_internal::kPinyinSyllables;

// Smallest and largest code unit in all character lists. Computed once, on
// the first conversion, and kept for the life of the process.
struct CodeRange {
  uint32_t lowest = 0xFFFFFFFF;
  uint32_t highest = 0;
};

const CodeRange& TableCodeRange() {
  static const CodeRange range = [] {
    CodeRange scanned;
    for (const auto& syllable : kPinyinSyllables) {
      for (const char16_t* c = syllable.characters; *c != 0; ++c) {
        if (*c < scanned.lowest) scanned.lowest = *c;
        if (*c > scanned.highest) scanned.highest = *c;
      }
    }
    return scanned;
  }();
  return range;
}

// What a syllable or a missing one appends to the result.
struct Piece {
  const char* bytes;
  size_t size;
};

constexpr Piece kUnlisted = {"#", 1};

// The syllable row of every code in the range. Immutable once built, so any
// number of conversions read one at once.
class CharIndex {
 public:
  static constexpr int kUnlistedRow = -1;
  static constexpr int kOutsideRange = -2;

  explicit CharIndex(const CodeRange& range)
      : lowest_(range.lowest),
        rows_(range.highest >= range.lowest ? range.highest - range.lowest + 1 : 0,
              static_cast<int16_t>(kUnlistedRow)) {
    for (size_t row = 0; row < kPinyinSyllableCount; ++row) {
      for (const char16_t* c = kPinyinSyllables[row].characters; *c != 0; ++c) {
        rows_[*c - lowest_] = static_cast<int16_t>(row);  // later rows win
      }
    }
  }

  // The row of `code`, kUnlistedRow when no row lists it, or kOutsideRange.
  int RowOf(uint32_t code) const {
    const uint32_t offset = code - lowest_;  // wraps past the end below lowest_
    return offset < rows_.size() ? rows_[offset] : kOutsideRange;
  }

 private:
  const uint32_t lowest_;
  std::vector<int16_t> rows_;  // row per code from lowest_; kUnlistedRow if none
};

// The current index, swapped atomically: a conversion holds the index it
// loaded until it returns, so clearCache() never frees one in use. Never
// destroyed, so conversions on threads outliving static destruction stay safe.
std::shared_ptr<const CharIndex>& CurrentIndex() {
  static auto* current = new std::shared_ptr<const CharIndex>();
  return *current;
}

std::mutex& BuildMutex() {  // serialises builds, so one is made per generation
  static auto* mutex = new std::mutex();
  return *mutex;
}

std::shared_ptr<const CharIndex> AcquireIndex() {
  std::shared_ptr<const CharIndex> index = std::atomic_load(&CurrentIndex());
  if (index) return index;
  std::lock_guard<std::mutex> lock(BuildMutex());
  index = std::atomic_load(&CurrentIndex());
  if (!index) {
    index = std::make_shared<const CharIndex>(TableCodeRange());
    std::atomic_store(&CurrentIndex(), index);
  }
  return index;
}

struct Spellings {
  std::array<Piece, kPinyinSyllableCount> rows;  // each row's name
  size_t longest;                                // longest piece a code unit appends
};

const Spellings& FullSpellings() {
  static const Spellings spellings = [] {
    Spellings names{{}, kUnlisted.size};
    for (size_t row = 0; row < kPinyinSyllableCount; ++row) {
      const char* name = kPinyinSyllables[row].name;
      names.rows[row] = {name, std::strlen(name)};
      if (names.rows[row].size > names.longest) names.longest = names.rows[row].size;
    }
    return names;
  }();
  return spellings;
}

// A wchar_t holds a UTF-16 unit where it is 16 bits wide; where it is 32 bits,
// any value past 0xFFFF simply lies outside the code range.
uint32_t CodeUnit(wchar_t unit) {
  return static_cast<uint32_t>(static_cast<std::make_unsigned_t<wchar_t>>(unit));
}

// The walk both converters share; `initials_only` keeps one letter per syllable.
std::string Convert(const std::wstring& text, bool initials_only) {
  const std::shared_ptr<const CharIndex> index = AcquireIndex();
  const auto& spellings = FullSpellings();
  std::string result(text.size() * (initials_only ? 1 : spellings.longest), '\0');
  char* out = &result[0];
  for (const wchar_t unit : text) {
    const uint32_t code = CodeUnit(unit);
    if (code < 255) {
      *out++ = static_cast<char>(code);
      continue;
    }
    const int row = index->RowOf(code);
    if (row == CharIndex::kOutsideRange) continue;
    Piece piece = row == CharIndex::kUnlistedRow ? kUnlisted : spellings.rows[row];
    if (initials_only) piece.size = 1;
    std::memcpy(out, piece.bytes, piece.size);
    out += piece.size;
  }
  result.resize(static_cast<size_t>(out - result.data()));
  return result;
}

}  // namespace

std::string pinYinConvert(std::wstring& text) { return Convert(text, false); }

std::string jianPinConvert(std::wstring& text) { return Convert(text, true); }

void clearCache() { std::atomic_store(&CurrentIndex(), std::shared_ptr<const CharIndex>()); }

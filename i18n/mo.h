// MO is one translation catalog: the messages of one text domain in one
// language, read from a GNU gettext MO image (either byte order) held in
// memory or in a file. It answers the translation of a message, with an
// optional context, and of a message with plural forms for a count; the plural
// rule and the number of forms are given by whoever builds it, never read from
// the catalog header. Lookups only read and may run on several threads at once
// on a catalog that no thread changes; parsing, loading and assignment must
// not overlap with any other use of the same object.
#ifndef TESSEL_I18N_MO_H_
#define TESSEL_I18N_MO_H_

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "common/tessel_export.h"
#include "i18n/entry.h"

namespace I18N {

class TESSEL_API MO {
 public:
  // Separates context from message in MO source strings and in table keys.
  static const char CONTEXT_SEPARATOR;  // 0x04
  // Separates singular from plural, and translated forms from each other.
  static const char PLURAL_SEPARATOR;  // 0x00
  static const unsigned int DEFAULT_NPLURALS;  // 2
  // The two-form rule: 0 for exactly 1, 1 for every other count (0 and
  // negative counts included). Built when the library is loaded.
  static const std::function<int(int)> DEFAULT_PLURAL_EXPRESSION;

  // An empty, uninitialised catalog with the default rule and two forms.
  MO();
  // Parses the image at once when `data` is not null. The image must be
  // well formed: its own table extents and string descriptors are trusted.
  // Use the sized constructor for images of unknown origin.
  MO(unsigned char* data, std::function<int(int)> pluralExpression, unsigned int nplurals);
  // Parses the `size` bytes at `data` at once when `data` is not null; an
  // image whose tables or strings reach beyond `size` is refused whole.
  MO(const unsigned char* data, size_t size, std::function<int(int)> pluralExpression,
     unsigned int nplurals);
  // Loads the file at once when `path` is not empty (see loadMoFile).
  MO(std::string path, std::function<int(int)> pluralExpression, unsigned int nplurals);
  // Deep copies; the copy is independent of the original.
  MO(const MO& other);
  MO& operator=(const MO& other);
  // Take over another catalog; `other` is left empty and uninitialised, with
  // the default rule and its own form count.
  MO(MO&& other) noexcept;
  MO& operator=(MO&& other) noexcept;
  virtual ~MO();

  // Reads the whole file at `path` (narrow byte string, binary mode) and
  // parses it. Returns false without reading when the catalog is already
  // initialised or the path is empty, and false when the file cannot be
  // opened or is empty. True means the file was read and parsed, not that the
  // image was accepted: check getIsInited().
  bool loadMoFile(std::string path);
  // Parses a whole MO image into an uninitialised catalog; a null pointer or
  // an initialised catalog is ignored. A wrong magic number, a revision other
  // than 0, or (sized overload) a table, descriptor or string beyond `size`
  // rejects the image whole and leaves the catalog uninitialised. So do
  // strings whose lengths add up to more than the image spans (descriptors
  // sharing bytes, which msgfmt never writes) and keys that the index cannot
  // place within its probe bound: the work and memory of a parse stay
  // proportional to the image. The image is copied: it may be freed as soon
  // as the call returns. The size-less overload requires a well-formed image
  // (it trusts the image's own extents).
  void parseMoFile(unsigned char* data);
  void parseMoFile(const unsigned char* data, size_t size);

  bool getIsInited() const;
  // The translation of the catalog's empty message up to its first NUL, or
  // empty when the image had none.
  std::string getHeadersInfo() const;

  // Form 0 of the message stored under (singular, context), even when it is
  // empty; the singular itself when the message is missing.
  std::string translate(std::string singular, std::string context) const;
  // The form selectPluralForm(n) of the message stored under (singular,
  // context); when the message is missing or has too few forms, the singular
  // for n == 1 and the plural for every other n.
  std::string translatePlural(std::string singular, std::string plural, int n,
                              std::string context) const;
  // The plural rule's result for n (the default rule when the rule is empty),
  // clamped to 0 .. nplurals - 1; 0 when nplurals is 0. Exceptions thrown by
  // the rule propagate.
  unsigned int selectPluralForm(int n) const;

 private:
  friend class MOIndexInspector;  // tests read the slot layout to count probes

  // Slot of the open-addressing index over the message records.
  struct Slot {
    uint32_t record;  // offset of the message's record in `records` plus one; 0: free
    uint32_t hash;    // low bits of the key's hash, checked before the key
  };

  void parseImage(const unsigned char* data, size_t size);
  // Appends a message's record and indexes it, replacing an earlier message
  // with the same key; false when the index cannot place it (see reindex).
  bool store(std::string_view key, std::string_view translation);
  // Puts `slot` over the slot of the same key or into the first free one;
  // false, with nothing changed, when that is beyond the probe bound.
  bool placeSlot(Slot slot);
  // Rebuilds the index with fresh seeds and twice the slots, `pending` added;
  // false when no attempt keeps every key within the probe bound.
  bool reindex(Slot pending);
  // The record of the message stored under (singular, context), or null.
  const char* find(const std::string& singular, const std::string& context) const;
  const char* findKey(std::string_view key) const;

  unsigned int nplurals;
  std::function<int(int)> pluralExpression;
  bool isInited;
  std::string headersInfo;
  // The messages, one record each: three native 32-bit words (key length,
  // form-0 length, translation length), the key (Entry::getKey), then the
  // translation with its forms still separated by NULs. The parse refuses
  // images whose strings add up to more than the image, so the records are
  // bounded by its size.
  std::string records;
  // Linear-probing index over `records`: a power-of-two size at least twice
  // the message count, probed at most kMaxProbe slots from a key's home.
  std::vector<Slot> slots;
  // Seed of the keyed hash the index was built with: derived from a
  // per-process secret for each parse, and drawn again if the index is
  // rebuilt.
  uint64_t seed;
};

}  // namespace I18N

#endif  // TESSEL_I18N_MO_H_

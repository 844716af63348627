// Entries are the message records of the translation catalogs: a message id
// (singular), an optional plural and context, and whether the message has
// plural forms. TranslateEntry adds the translated forms read from a catalog;
// NoopEntry remembers the domain of a message marked now and translated later.
// Entries are plain values without locks: an entry that no thread changes may
// be read on several threads at once.
#ifndef TESSEL_I18N_ENTRY_H_
#define TESSEL_I18N_ENTRY_H_

#include <string>
#include <vector>

#include "common/tessel_export.h"

namespace I18N {

class MO;
class I18nUtils;

// A message. Only MO and I18nUtils fill entries; everyone else reads them or
// assigns whole entries. Copies copy every field, the class name included.
class TESSEL_API Entry {
 public:
  Entry();
  Entry(const Entry& other);
  Entry& operator=(const Entry& other);

  virtual bool getIsPural() const;
  virtual std::string getSingular() const;
  virtual std::string getPlural() const;
  virtual std::string getContext() const;

  virtual ~Entry();

  // The key under which a catalog stores this message: createKey(singular,
  // context). The plural is never part of it.
  virtual std::string getKey() const;
  // A readable dump for diagnostics: "[<class>]" followed by a line for each
  // non-empty field ("\n\t Singular:\t\t <singular>", the plural only when
  // getIsPural() is true, then the context). Never fails.
  virtual std::string toString() const;

 protected:
  friend class MO;
  friend class I18nUtils;

  void setSingular(std::string value);
  void setPlural(std::string value);
  void setContext(std::string value);
  void setIsPural(bool value);

  // The singular alone when the context is empty, else context, byte 0x04,
  // singular. Note the order: message first, context second.
  static std::string createKey(std::string singular, std::string context);

  bool isPural;
  std::string singular;
  std::string plural;
  std::string context;
  std::string typeName;  // "Entry", "TranslateEntry" or "NoopEntry"
};

// A message as a catalog read it, with its translated forms in plural-form
// order (form 0 translates the singular).
class TESSEL_API TranslateEntry : public Entry {
 public:
  TranslateEntry();
  TranslateEntry(const TranslateEntry& other);
  TranslateEntry& operator=(const TranslateEntry& other);
  ~TranslateEntry() override;

  // The base text, then one line per form: " Translation:\t <form>" when there
  // is exactly one form, " Translation[i]: <form>" when there are several.
  std::string toString() const override;

  virtual const std::vector<std::string>& getTranslations() const;

 protected:
  friend class MO;
  friend class I18nUtils;

  void setTranslations(std::vector<std::string> value);

  std::vector<std::string> translations;
};

// A message marked for translation whose count is not known yet; hand it to
// I18nUtils::translateNooped when it is. An empty domain means "the domain
// given at translation time".
class TESSEL_API NoopEntry : public Entry {
 public:
  NoopEntry();
  NoopEntry(const NoopEntry& other);
  NoopEntry& operator=(const NoopEntry& other);
  ~NoopEntry() override;

  // The base text, then "\n\t Domain:\t\t <domain>" when the domain is set.
  std::string toString() const override;

  virtual const std::string& getDomain() const;

 protected:
  friend class MO;
  friend class I18nUtils;

  void setDomain(std::string value);

  std::string domain;
};

}  // namespace I18N

#endif  // TESSEL_I18N_ENTRY_H_

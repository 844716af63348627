// I18nUtils is the process-wide registry of translation catalogs, one MO per
// text domain, and the gettext-style front for translating texts: gettext,
// xgettext (with context), ngettext (with plural), nxgettext (both), deferred
// entries for texts whose count is known later, and the positional formatter
// formatMatch. Every lookup degrades to the caller's own text.
// Thread-safety: the registered catalogs form an immutable table that each
// change replaces whole, so lookups, hasMO and getMO of a present domain take
// no lock and may run on any thread while other threads register or remove
// catalogs; the changes (addMO, getMO of an absent domain, removeMO,
// removeAllMO, assignment) are serialised by a mutex. Only destroyInstance
// must not overlap with any other use.
#ifndef TESSEL_I18N_I18N_UTILS_H_
#define TESSEL_I18N_I18N_UTILS_H_

#include <array>
#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>
#include <vector>

#include "common/tessel_export.h"
#include "i18n/entry.h"
#include "i18n/format_argument.h"
#include "i18n/mo.h"

namespace I18N {

class TESSEL_API I18nUtils {
 public:
  // The name that addMO and getMO use for an empty domain; "default" when the
  // library is loaded. Writable; not guarded: change it before other threads
  // register catalogs.
  static std::string DEFAULT_DOMAIN;

  // The single registry, created empty on first use. Never null. Concurrent
  // first calls create one registry.
  static I18nUtils* getInstance();
  // Deletes the registry with every catalog it ever held, replaced and removed
  // ones included; harmless when there is none. Must not overlap with any
  // other use of the registry or of a catalog reference from getMO. A later
  // getInstance() starts empty.
  static void destroyInstance();

  // Copies share the catalogs, which never change once registered.
  I18nUtils(const I18nUtils& other);
  I18nUtils& operator=(const I18nUtils& other);
  virtual ~I18nUtils();

  // Build a catalog (MO's constructors) and store a copy under `domain`
  // (DEFAULT_DOMAIN when empty), replacing any catalog there, even when the
  // new one was not accepted: callers that care check getMO(d).getIsInited().
  // A null image or an empty path does nothing. The image must be well
  // formed (see MO); for images of unknown origin, build an MO with the sized
  // constructor and register it with the third overload. The catalog is built
  // before the registry's mutex is taken; lookups running meanwhile answer
  // from the old catalog, later ones from the new. The replaced catalog is
  // kept, unchanged, until destroyInstance.
  void addMO(unsigned char* data, std::function<int(int)> pluralExpression,
             unsigned int nplurals, std::string domain);
  void addMO(std::string path, std::function<int(int)> pluralExpression, unsigned int nplurals,
             std::string domain);
  void addMO(MO mo, std::string domain);
  // The catalog of `domain` (DEFAULT_DOMAIN when empty); an empty,
  // uninitialised catalog is stored there first when there is none. The
  // reference stays valid, and the catalog unchanged, until the registry is
  // destroyed, even after the domain is replaced or removed or the table
  // cleared: the registry keeps every catalog it held until then.
  const MO& getMO(std::string domain);
  // Exact names: an empty name is not replaced by DEFAULT_DOMAIN here.
  bool hasMO(std::string domain) const;
  // Unbind the domain, or every domain; the catalogs are kept until
  // destroyInstance for readers that still use them.
  void removeMO(std::string domain);
  void removeAllMO();

  // Lookups by the exact domain name (an empty name is the empty name). A
  // missing domain or message gives back the message, or for the plural calls
  // the singular when n == 1 and the plural otherwise.
  std::string gettext(std::string message, std::string domain) const;
  std::string xgettext(std::string message, std::string context, std::string domain) const;
  std::string ngettext(std::string singular, std::string plural, int n,
                       std::string domain) const;
  std::string nxgettext(std::string singular, std::string plural, int n, std::string context,
                        std::string domain) const;

  // Package a plural message for later translation, without looking at any
  // catalog; the domain is kept as passed (empty stays empty).
  NoopEntry ngettextNoop(std::string singular, std::string plural, std::string domain) const;
  NoopEntry nxgettextNoop(std::string singular, std::string plural, std::string context,
                          std::string domain) const;
  // Translates the entry as nxgettext would, in the entry's own domain when it
  // has one and in `domain` otherwise. The entry is not changed.
  std::string translateNooped(NoopEntry& entry, int n, std::string domain) const;

  // Fills a format whose printf-style placeholders carry their argument's
  // position right after the conversion ("%s1", "%.2f2", "%-8.3lf3"): the
  // arguments are the values for positions 1, 2, 3 ... in that order, of the
  // types the conversions call for (integers as int unless the length is "l"
  // or "ll", "hh"/"h" values reduced to 8/16 bits, "%c" an int, "%s"/"%p"
  // pointers, floating conversions a double). For each position the first
  // placeholder decides how its argument is read and formatted; every
  // placeholder with the same position digits receives that text, inserted
  // verbatim and never searched again. Positions must run 1 to K without
  // gaps; a gap skips an index without reading an argument and leaves higher
  // positions unfilled. Anything else ("%d", "%%", "%1$s", position 0,
  // positions beyond the int range) stays as it is. A width or precision
  // above 102397 counts as 102397, and a value is cut to 102397 bytes. A null
  // format gives an empty string. Thread-safe.
  //
  // This form trusts the format: an argument of another type than a
  // placeholder calls for, or fewer arguments than positions, is undefined
  // behaviour as with printf. C++ callers with one or more arguments get the
  // template below instead; a call with the format alone still lands here
  // (the language prefers a non-template on a tie), so write
  // formatMatch<>(format) for a format of unknown origin without arguments.
  static std::string formatMatch(const char* format, ...);
  // The checked form for formats that come from translations: the same text
  // as the variadic form for every call that is well typed for it, but a
  // placeholder whose conversion does not fit its argument's type, or that
  // has no argument left, stays as written (see formatMatchArguments).
  template <typename... Args>
  static std::string formatMatch(const char* format, const Args&... args) {
    const std::array<FormatArgument, sizeof...(Args)> arguments{FormatArgument(args)...};
    return formatMatchArguments(format, arguments.data(), arguments.size());
  }

 private:
  I18nUtils();

  std::string translate(std::string message, std::string context, std::string domain) const;
  std::string translatePlural(std::string singular, std::string plural, int n,
                              std::string context, std::string domain) const;

  // An immutable table of the registered catalogs, by domain.
  using Catalogs = std::unordered_map<std::string, std::shared_ptr<const MO>>;

  // The catalog bound to the exact name, or null. Lock-free.
  const MO* find(const std::string& domain) const;
  // Applies `edit` to a copy of the current table and publishes the copy when
  // `edit` returns true. Serialised by publishMutex.
  void publish(const std::function<bool(Catalogs&)>& edit);

  // The current table. Readers load it without a lock; it is replaced, never
  // changed, and every table ever published lives in `published` until the
  // registry is destroyed, so a reader never sees it freed.
  std::atomic<const Catalogs*> moMap;
  std::mutex publishMutex;  // guards `published` and serialises replacing moMap
  std::vector<std::unique_ptr<const Catalogs>> published;
};

}  // namespace I18N

#endif  // TESSEL_I18N_I18N_UTILS_H_

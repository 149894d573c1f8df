/// @file
/// Registry service: typed values under keys under roots.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <kvdm/export.h>

namespace kvdm {

struct Platform;

/// The roots that keys stand under. The component uses the machine's.
enum class RegistryRoot {
  kLocalMachine,  ///< HKEY_LOCAL_MACHINE
  kCurrentUser,   ///< HKEY_CURRENT_USER
};

/// The type numbers of registry values; only text is ever interpreted.
enum class RegistryType : int {
  kText = 1,        ///< REG_SZ
  kExpandText = 2,  ///< REG_EXPAND_SZ
  kBinary = 3,      ///< REG_BINARY
  kNumber = 4,      ///< REG_DWORD
};

/// A value as stored.
struct RegistryValue {
  /// What it is.
  RegistryType type = RegistryType::kText;

  /// The bytes as stored, converted to UTF-8 from the ANSI code page when `type` is kText. May hold
  /// NULs.
  std::string data;

  bool operator==(const RegistryValue&) const = default;
};

/// A value, or a part of one, that was kept before it was overwritten.
struct KeptValue {
  std::string when;     ///< in UTC, such as "2026-11-15T07:35:30Z"
  RegistryValue value;  ///< what it was
};

/// What the last access found, and a read also whether a write would be refused.
enum class RegistryState {
  kReady,         ///< all is well
  kBusy,          ///< another program holds it
  kDamaged,       ///< its content is not what was written
  kNotADatabase,  ///< the file, or whatever is in its place, is something else
  kForeign,       ///< it belongs to another program
  kNewer,         ///< a newer version of this component wrote it
  kForbidden,     ///< the user has no right to it
  kReadOnly,      ///< the user has no right to write it
  kTooLarge,      ///< what it holds is more than can be read
  kFailing,       ///< the system reports an error
};

/// The state of a registry, with words for people.
struct KVDM_EXPORT RegistryCondition {
  RegistryState state = RegistryState::kReady;  ///< what is wrong, if anything
  std::string cause;                            ///< in the words of the system; "" for kReady

  /// The state as one word: "busy".
  [[nodiscard]] std::string_view Name() const;

  /// The state as the end of a sentence that begins with the registry's place: "is held by another
  /// program".
  [[nodiscard]] std::string_view Sentence() const;

  /// What can be done about it, as sentences; "" for kReady.
  [[nodiscard]] std::string_view Advice() const;
};

/// A change of a text that others may have changed since it was read. It knows the text that it
/// started from and the one that it leads to, and decides what to store in place of what is stored
/// by now.
class KVDM_EXPORT TextUpdate {
 public:
  /// A part of a text that changes by itself.
  struct Piece {
    std::string key;        ///< what tells it from the others; "" for all that is no such part
    std::size_t place = 0;  ///< its position among the others, from 0
    std::string text;       ///< the part itself

    bool operator==(const Piece&) const = default;
  };

  /// What becomes of the stored value.
  struct Outcome {
    std::string text;                    ///< to be stored
    bool keeps_stored = false;           ///< whether the stored value is to be kept, to the byte
    std::vector<std::string> kept = {};  ///< parts of it that are to be kept
  };

  /// Two texts: the one that is stored unless somebody else wrote, and what takes its place then.
  struct Unopposed {
    std::string_view base;    ///< what is stored then
    std::string_view wanted;  ///< what takes its place
  };

  virtual ~TextUpdate() = default;

  /// The text that it started from, in pieces, for stores that keep it so.
  [[nodiscard]] virtual std::vector<Piece> Base() const = 0;

  /// The text that it leads to, in pieces.
  [[nodiscard]] virtual std::vector<Piece> Wanted() const = 0;

  /// Where pieces of `text`, which may be in the store's own encoding, begin: places in their
  /// order, at which a store may cut it into parts that it changes by themselves.
  [[nodiscard]] virtual std::vector<std::size_t> Cuts(std::string_view text) const;

  /// For stores that can compare without loading: when `base` is stored, to the byte, On answers
  /// `wanted` and nothing to be kept. Nothing where On has to be asked. Both stay while this does.
  [[nodiscard]] virtual std::optional<Unopposed> IfUnopposed() const;

  /// For stores that keep the text as one. An error when the stored value must stand as it is.
  [[nodiscard]] virtual Outcome On(const std::optional<RegistryValue>& stored) const = 0;
};

/// Keys and value names are found whatever the case of their ASCII letters; the system's own
/// registry takes no other letter's case either. A key is a path such as "Software\Velk".
///
/// What fails is noted in the log and shows in Condition.
class KVDM_EXPORT Registry {
 public:
  virtual ~Registry() = default;

  /// The value; nothing when the key or the value is missing. Run-time error 68 when it can't be
  /// read, which says nothing about what is there.
  virtual std::optional<RegistryValue> Read(RegistryRoot root, std::string_view key,
                                            std::string_view name) = 0;

  /// Stores `text` in the ANSI code page, its length counted in bytes after that conversion;
  /// creates the key. False when the registry refuses; the old value then stands.
  virtual bool WriteText(RegistryRoot root, std::string_view key, std::string_view name,
                         std::string_view text) = 0;

  /// Reads the value, keeps and stores what `update` makes of it, in one transaction: nobody writes
  /// in between, and what is to be kept is kept or nothing is stored. False when the registry or
  /// the update refuses; the old value then stands.
  virtual bool Update(RegistryRoot root, std::string_view key, std::string_view name,
                      const TextUpdate& update) = 0;

  /// What was kept of a value, the oldest first. The oldest go when there is too much. Run-time
  /// error 68 when it can't be read.
  virtual std::vector<KeptValue> Kept(RegistryRoot root, std::string_view key,
                                      std::string_view name) = 0;

  /// A text that becomes another one when anybody changes what is stored; "" where that can't be
  /// told without reading it, as here. Two changes within one tick of the system's clock may look
  /// like one: whoever has something to write asks Update, not this.
  [[nodiscard]] virtual std::string Stamp() const;

  /// What the last access found.
  [[nodiscard]] virtual RegistryCondition Condition() const = 0;

  /// Whether the ANSI code page has `character`; others are stored replaced.
  [[nodiscard]] virtual bool Holds(char32_t character) const = 0;
};

/// An error of a registry in this condition, for Read and Kept.
[[noreturn]] KVDM_EXPORT void ThrowUnreadable(const RegistryCondition& condition);

/// How many entries are kept of one value.
inline constexpr std::size_t kMostKeptValues = 1000;

/// How many bytes they may have together.
inline constexpr std::size_t kMostKeptBytes = std::size_t{256} << 20U;

/// The change that leads from the catalogue `base`, as it was read, to `wanted`, for
/// Registry::Update. Study areas that others changed, added or deleted since stay as they left
/// them; of one that was changed here and there `wanted` stands, and what was stored is kept. An
/// empty `wanted` changes nothing. It keeps what it needs of `platform`.
[[nodiscard]] KVDM_EXPORT std::shared_ptr<TextUpdate> MakeCatalogueUpdate(const Platform& platform,
                                                                          std::string_view base,
                                                                          std::string wanted);

}  // namespace kvdm

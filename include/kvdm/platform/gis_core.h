/// @file
/// GIS core library, as far as the component needs it: identifiers, persistence streams and layer
/// metadata.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <kvdm/export.h>
#include <kvdm/platform/value.h>

namespace kvdm {

/// A unique identifier: a globally unique one after Generate, or any text that was put in.
class KVDM_EXPORT Identifier {
 public:
  virtual ~Identifier() = default;

  /// Makes it a new version-4 identifier.
  virtual void Generate() = 0;

  /// The identifier in registry form, 38 characters: braces, upper-case hexadecimal digits and
  /// hyphens; or the text put.
  [[nodiscard]] virtual std::string GetValue() const = 0;

  /// Makes it hold `text`.
  virtual void PutValue(std::string_view text) = 0;
};

/// A sequence of values in the host's saved document. A failure ends the load or save quietly.
class KVDM_EXPORT VariantStream {
 public:
  virtual ~VariantStream() = default;

  /// Appends a value.
  virtual void Write(const Value& value) = 0;

  /// The next value; an error when there is none left.
  virtual Value Read() = 0;
};

/// Values under slash-separated paths, in the order in which the paths were first put.
class KVDM_EXPORT NamedValueSet {
 public:
  /// Paths and values as parallel arrays.
  struct Listing {
    std::vector<std::string> names;  ///< the paths
    std::vector<Value> values;       ///< the value of each
  };

  virtual ~NamedValueSet() = default;

  /// The values under `path`; empty when there are none.
  virtual std::vector<Value> GetValues(std::string_view path) = 0;

  /// Stores one value under `path` in place of what was there.
  virtual void PutValue(std::string_view path, const Value& value) = 0;

  /// All paths with their values; a path with several values stands once for each.
  virtual Listing ListAll() = 0;

  /// The number of entries that ListAll has.
  virtual int EntryCount() = 0;

  /// To be called once before the first PutValue into a set that describes a layer.
  virtual void PrepareForUpdate() = 0;
};

/// The descriptive metadata that is kept with one layer.
class KVDM_EXPORT LayerMetadata {
 public:
  virtual ~LayerMetadata() = default;

  /// The layer's document. Nothing, or an error, when it has none.
  virtual std::shared_ptr<NamedValueSet> ReadDocument() = 0;

  /// Stores the document as the layer's.
  virtual void WriteDocument(const std::shared_ptr<NamedValueSet>& document) = 0;
};

/// Creates the library's objects.
class KVDM_EXPORT GisCore {
 public:
  virtual ~GisCore() = default;

  /// A new identifier, without a value yet.
  virtual std::shared_ptr<Identifier> CreateIdentifier() = 0;

  /// A new, empty set.
  virtual std::shared_ptr<NamedValueSet> CreateNamedValueSet() = 0;
};

}  // namespace kvdm

#pragma once

#include "readers/FieldPlaces.h"
#include "views/explain/Explain.h"
#include "views/explain/SourceValues.h"

#include <filesystem>
#include <string>
#include <string_view>

namespace nv {

/// The places of a record's fields in the evidence, where its format has a way to find them again.
class LocatedFields {
  public:
    /// Reads the evidence. `file` is the record's source, a file or a folder. Failures are kept.
    LocatedFields(const ExplainSource &source, EvidenceTables &tables, UrlId id,
                  const std::filesystem::path &file);

    /// Null where nothing is told of the field.
    const FieldPlace *of(std::string_view field) const { return m_places.of(field); }
    /// Why some or all places weren't found; empty when they were, and for formats without a way.
    const std::string &failure() const { return m_failure; }

    /// Puts where it lies, how, and by which rule.
    void describe(const FieldPlace &place, ValueOrigin &value) const;

  private:
    std::filesystem::path m_file;
    FieldPlaces m_places;
    std::string m_failure;
};

} // namespace nv

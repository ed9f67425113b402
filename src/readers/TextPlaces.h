#pragma once

#include "readers/FieldPlaces.h"

#include <filesystem>
#include <string>
#include <string_view>

namespace nv {

/// Fields of a record that lie in a text file: each is told with its line and column, too.
class TextPlaces {
  public:
    /// Reads up to `most` bytes of the file. Throws EvidenceFailure. Both must outlive this.
    TextPlaces(const PlaceSearch &search, std::filesystem::path file, std::uint64_t most,
               FieldPlaces &places);

    std::string_view text() const { return ByteView(m_bytes).raw(); }
    ByteView view() const { return ByteView(m_bytes); }

    /// Bytes of the text, by their offset in it; `what` says what they are: "the first line".
    void value(std::string_view field, std::uint64_t at, std::uint64_t size, MadeValue made,
               std::string_view what, std::string rule = {});
    void value(std::string_view field, std::string_view part, MadeValue made, std::string_view what,
               std::string rule = {});
    /// A number in digits, by its form.
    void digits(std::string_view field, std::string_view part, SourceForm form,
                std::string_view what);

  private:
    std::filesystem::path m_file;
    Bytes m_bytes;
    FieldPlaces &m_places;
};

/// The whole number that digits are, blanks around them allowed; nothing for others.
std::optional<std::int64_t> wholeNumberIn(std::string_view digits);

} // namespace nv

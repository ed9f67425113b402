#pragma once

#include "readers/Body.h"
#include "reports/exports/ExportFile.h"

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace nv {

/// Whether each record of a WARC file is a member of gzip of its own, so that a reader can begin at
/// any of them.
enum class WarcPacking : std::uint8_t { none, gzip };

/// Plain for a name that ends in ".warc", packed for any other.
WarcPacking warcPackingOf(const std::filesystem::path &name);

/// What a content was found to be when it was read through.
struct WarcDigests {
    std::uint64_t size = 0;    ///< bytes of the content
    std::string payloadSha1{}; ///< hexadecimal, of the content
    std::string blockSha1{};   ///< hexadecimal, of what stands before it as well
    std::string sha256{};      ///< hexadecimal, of the content
};

/// The size of a content in bytes. Throws FileFailure.
std::uint64_t sizeOf(const Body &content);
/// Reads it through once. Throws FileFailure.
WarcDigests digestsOf(std::string_view before, const Body &content);

/// "sha1:" and the digest in base 32, as WARC files have it.
std::string warcDigest(std::string_view sha1Hex);
/// A record's name: a UUID that is made of `words` (RFC 4122, version 5), so that the same record
/// of the same evidence has the same one in each file.
std::string warcIdOf(std::string_view words);

/// A record on its way to a file. Fields stand in their order; values have no line breaks.
struct WarcRecord {
    std::string_view type; ///< "response"
    std::string id{};      ///< warcIdOf()
    std::string date{};    ///< ISO 8601, UTC
    std::vector<std::pair<std::string_view, std::string>> fields{};
    std::string contentType{};
    std::string before{};          ///< the block's first bytes; all of them without a content
    const Body *content = nullptr; ///< the rest of it
    std::uint64_t contentSize = 0; ///< bytes, as sizeOf() gave them
};

/// A file of WARC 1.1 that is being written beside its place, record after record. Contents pass
/// through in blocks, so that memory doesn't grow with them.
class WarcFile {
  public:
    /// Throws StorageFailure.
    WarcFile(const std::filesystem::path &place, WarcPacking packing);
    ~WarcFile();
    WarcFile(const WarcFile &) = delete;
    WarcFile &operator=(const WarcFile &) = delete;

    /// Throws StorageFailure, also when the content isn't of the size any more that it had: half a
    /// record would make all that follow unreadable.
    void write(const WarcRecord &record);
    /// It takes its place. Throws StorageFailure.
    void finish() { m_file.finish(); }

  private:
    class Member;

    ExportFile m_file;
    WarcPacking m_packing;
};

} // namespace nv

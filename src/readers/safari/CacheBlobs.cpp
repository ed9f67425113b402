#include "readers/safari/CacheBlobs.h"

#include <array>
#include <string>

namespace nv {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kBlobs = "cfurl_cache_blob_data";
constexpr std::string_view kLaterBodies = "cfurl_cache_receiver_data";
constexpr std::string_view kKey = "entry_id";
constexpr std::string_view kFolderOfBodies = "fsCachedData/";

constexpr std::array<std::string_view, 1> kResponseColumns = {"response_object"};
constexpr std::array<std::string_view, 2> kBodyColumns = {"receiver_data", "isDataOnFS"};
enum BodyColumn : std::size_t { kReceiver, kIsFile };

} // namespace

std::uint64_t SafariBody::size() const {
    if (file)
        return evidence->factsOf(*file).size;
    return bytes ? bytes->size() : 0;
}

void SafariBody::writeTo(BodyTarget &target) const {
    if (file) {
        const EvidenceFile body = evidence->open(*file);
        target.copy(body, 0, body.size());
    } else if (bytes) {
        target.write(bytes->raw());
    }
}

CacheBlobs::CacheBlobs(EvidenceDatabase &database, const Evidence &evidence, const fs::path &file)
    : m_evidence(evidence), m_folder(file.parent_path()),
      m_responses(database, kBlobs, kKey, kResponseColumns),
      m_bodies(database, kBlobs, kKey, kBodyColumns) {
    if (database.hasTable(kLaterBodies))
        m_laterBodies.emplace(database, kLaterBodies, kKey, kBodyColumns);
}

std::optional<ByteView> CacheBlobs::response(std::int64_t entryId) {
    const std::optional<Row> row = m_responses.find(entryId);
    return row ? row->bytes(0) : std::nullopt;
}

SafariBody CacheBlobs::body(std::int64_t entryId) {
    if (m_laterBodies)
        if (const std::optional<Row> row = m_laterBodies->find(entryId))
            return bodyIn(*row);
    const std::optional<Row> row = m_bodies.find(entryId);
    return row ? bodyIn(*row) : SafariBody();
}

SafariBody CacheBlobs::bodyIn(const Row &row) const {
    SafariBody body;
    body.evidence = &m_evidence;
    if (!row.truth(kIsFile)) {
        body.bytes = row.bytes(kReceiver);
        return body;
    }
    body.file = m_evidence.find(m_folder, std::string(kFolderOfBodies) + row.text(kReceiver));
    body.fileIsGone = !body.file;
    return body;
}

} // namespace nv

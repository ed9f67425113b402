#include "readers/Coding.h"

#include "base/Files.h"
#include "base/Storage.h"
#include "base/Succeeds.h"
#include "base/Text.h"
#include "readers/HttpHeaders.h"
#include "readers/Limits.h"
#include "readers/Scratch.h"
#include "readers/Unpacker.h"

#include <fmt/format.h>

#include <algorithm>
#include <optional>
#include <utility>

namespace nv {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kGZip = "gzip";
constexpr std::string_view kDeflate = "deflate";
constexpr std::string_view kMark = "\x1F\x8B";

std::string_view procedureOf(std::string_view coding) {
    return coding == kGZip ? "ParserClass.DecompressGZipFile()" : "ParserClass.DecompressBody()";
}

/// The work file beside the target.
fs::path workFileOf(const fs::path &target) {
    fs::path work = target;
    return work += ".~unpacked";
}

Bytes headOf(const Body &body, std::size_t count) {
    if (!body.isInMemory)
        return ScratchFile(body.file).read(0, count);
    const std::size_t size = std::min(body.bytes.size(), count);
    return {body.bytes.data(), body.bytes.data() + size};
}

std::uint64_t sizeOf(const Body &body) {
    return body.isInMemory ? body.bytes.size() : ScratchFile(body.file).size();
}

/// One try to undo a coding.
struct Attempt {
    Body part; ///< what was unpacked
    std::uint64_t size = 0;
    std::string problem; ///< why it isn't all; empty when it is
    bool isTooLarge = false;
};

class Attempting {
  public:
    Attempting(const Body &packed, std::string_view coding, std::uint64_t inMemory)
        : m_packed(packed), m_coding(coding), m_most(mostOf(sizeOf(packed))),
          m_target(workFileOf(packed.file), inMemory) {}

    Attempt run(Unpacker &unpacker) {
        const Unpacker::Take take = [this](std::string_view piece) { return write(piece); };
        if (m_packed.isInMemory)
            unpacker.feed(m_packed.raw(), take);
        else
            static_cast<void>(inBlocks(ScratchFile(m_packed.file), [&](std::string_view block) {
                return unpacker.feed(block, take);
            }));
        Attempt attempt{{}, m_size, problemOf(unpacker), m_isTooLarge};
        attempt.part = m_target.take();
        return attempt;
    }

  private:
    static std::uint64_t mostOf(std::uint64_t packed) {
        const std::uint64_t byRatio =
            std::max(limits::kUnpackedAnyway, packed * limits::kUnpackedTimes);
        return std::min(limits::kUnpackedBytes, byRatio);
    }

    bool write(std::string_view piece) {
        if (piece.size() > m_most - m_size) {
            m_isTooLarge = true;
            return false;
        }
        m_size += piece.size();
        m_target.write(piece);
        return true;
    }

    std::string problemOf(const Unpacker &unpacker) const {
        const std::string name = textOf(m_packed.file);
        if (m_isTooLarge)
            return fmt::format("\"{}\" unpacks to more than {} bytes and is left packed", name,
                               m_most);
        if (!unpacker.problem().empty())
            return fmt::format("\"{}\" is no sound {} data behind {} unpacked bytes: {}", name,
                               m_coding, m_size, unpacker.problem());
        if (!unpacker.isWhole())
            return fmt::format("\"{}\" ends amid its packed content ({}), after {} unpacked bytes",
                               name, m_coding, m_size);
        return {};
    }

    const Body &m_packed;
    std::string_view m_coding;
    std::uint64_t m_most;
    BodyTarget m_target;
    std::uint64_t m_size = 0;
    bool m_isTooLarge = false;
};

void drop(Attempt &attempt) {
    if (!attempt.part.isInMemory)
        scratch::remove(attempt.part.file);
    attempt.part = {};
}

/// "deflate" is zlib's form by the standard, and the bare one of some servers.
Attempt inflated(const Body &packed, std::uint64_t inMemory) {
    Attempt attempt = Attempting(packed, kDeflate, inMemory).run(*inflating(Deflate::zlib));
    if (attempt.problem.empty() || attempt.isTooLarge || attempt.size > 0)
        return attempt;
    drop(attempt);
    Attempt bare = Attempting(packed, kDeflate, inMemory).run(*inflating(Deflate::raw));
    return bare;
}

std::unique_ptr<Unpacker> unpackerFor(std::string_view coding) {
    if (coding == kGZip)
        return inflating(Deflate::gzip);
    if (coding == "br")
        return brotliUnpacker();
    return coding == "zstd" ? zstdUnpacker() : nullptr;
}

/// Nothing for a coding that can't be undone.
std::optional<Attempt> attempted(const Body &packed, std::string_view coding,
                                 std::uint64_t inMemory) {
    if (coding == kDeflate)
        return inflated(packed, inMemory);
    const auto unpacker = unpackerFor(coding);
    if (!unpacker)
        return std::nullopt;
    return Attempting(packed, coding, inMemory).run(*unpacker);
}

/// What is unpacked takes the place of what was packed.
void replace(Body &body, Attempt &attempt, std::string_view coding) {
    Body &part = attempt.part;
    if (!part.isInMemory)
        moveFile(part.file, body.file);
    else if (!body.isInMemory)
        scratch::remove(body.file);
    part.file = body.file;
    part.doubt = std::move(body.doubt);
    part.unpackedFrom = std::string(coding);
    if (!body.unpackedFrom.empty())
        part.unpackedFrom += ", " + body.unpackedFrom;
    body = std::move(part);
}

void addDoubt(Body &body, std::string_view doubt) {
    body.doubt += fmt::format("{}{}", body.doubt.empty() ? "" : "; ", doubt);
}

/// The dictionary's SHA-256 stands behind a mark: of four bytes before brotli, of eight before
/// zstd.
std::string doubtOfUnknown(const Body &body, std::string_view coding) {
    constexpr std::size_t kHash = 32;
    const std::size_t mark = coding == "dcb" ? 4 : coding == "dcz" ? 8 : 0;
    if (mark == 0)
        return fmt::format("as stored: its coding \"{}\" is not known", coding);
    const Bytes head = headOf(body, mark + kHash);
    const std::string hash =
        head.size() < mark + kHash
            ? std::string("an unknown SHA-256")
            : "SHA-256 " + toLower(bytesToHex(ByteView(head).from(mark), 0, kHash));
    return fmt::format("as stored: its coding \"{}\" needs the shared dictionary with {}", coding,
                       hash);
}

/// False when what is left can't be undone either.
bool undo(Body &body, std::string_view coding, Damaged damaged, std::uint64_t inMemory,
          FailureLog &log) {
    const Bytes head = headOf(body, kMark.size());
    if (head.empty() || (coding == kGZip && !beginsAsGZip(ByteView(head))))
        return true;
    std::optional<Attempt> attempt = attempted(body, coding, inMemory);
    if (!attempt) {
        addDoubt(body, doubtOfUnknown(body, coding));
        return false;
    }
    const bool isWhole = attempt->problem.empty();
    const bool isKept =
        isWhole || (damaged == Damaged::givesPart && !attempt->isTooLarge && attempt->size > 0);
    if (!isWhole) {
        log.write({attempt->problem, std::string(procedureOf(coding)), Severity::Warning,
                   std::string(kContactSupport)});
        addDoubt(body, attempt->isTooLarge
                           ? fmt::format("still packed ({}): it unpacks to more than a page or "
                                         "picture ever does",
                                         coding)
                       : isKept ? fmt::format("only its first {} unpacked bytes: the packed ones "
                                              "({}) are damaged or end too early",
                                              attempt->size, coding)
                                : fmt::format("still packed ({}): damaged, or not packed at all",
                                              coding));
    }
    if (isKept)
        replace(body, *attempt, coding);
    else
        drop(*attempt);
    return isKept;
}

} // namespace

std::vector<std::string> codingsOf(std::string_view headers) {
    std::vector<std::string> codings;
    for (const std::string_view value : headerValues(headers, "content-encoding"))
        for (const std::string_view word : split(value, ',')) {
            const std::string coding = toLower(trim(word));
            if (!coding.empty() && coding != "identity")
                codings.push_back(coding == "x-gzip" ? std::string(kGZip) : coding);
        }
    return codings;
}

bool beginsAsGZip(ByteView head) {
    return head.raw().starts_with(kMark);
}

bool unpackBody(Body &body, std::span<const std::string> codings, Damaged damaged,
                std::uint64_t inMemory, FailureLog &log) {
    if (codings.size() > limits::kCodings) {
        addDoubt(body, fmt::format("as stored: its headers name {} codings", codings.size()));
        return false;
    }
    const std::string_view first = codings.empty() ? std::string_view() : codings.back();
    const bool isRead = succeeds(log, Severity::Warning, procedureOf(first), kContactSupport, [&] {
        for (std::size_t left = codings.size(); left > 0; --left)
            if (!undo(body, codings[left - 1], damaged, inMemory, log))
                break;
    });
    return isRead && body.doubt.empty();
}

} // namespace nv

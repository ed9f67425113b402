#include "reports/warc/WarcFile.h"

#include "base/Base32.h"
#include "base/Digest.h"
#include "base/Files.h"
#include "base/Text.h"
#include "base/Trap.h"

#include <fmt/format.h>

#include <array>
#include <functional>
#include <new>
#define ZLIB_CONST // zlib only reads its input
#include <zlib.h>

namespace nv {

namespace {

constexpr std::string_view kLineBreak = "\r\n";
constexpr std::size_t kPiece = std::size_t{64} << 10; // bytes

/// Hands the content on in blocks.
void eachBlock(const Body &content, const std::function<void(std::string_view)> &take) {
    if (content.isInMemory)
        return take(content.raw());
    readInBlocks(content.file, [&take](std::string_view block, std::uint64_t) {
        take(block);
        return true;
    });
}

std::string headOf(const WarcRecord &record) {
    std::string head =
        fmt::format("WARC/1.1\r\nWARC-Type: {}\r\nWARC-Record-ID: <{}>\r\nWARC-Date: {}\r\n",
                    record.type, record.id, record.date);
    for (const auto &[name, value] : record.fields)
        head.append(name).append(": ").append(value).append(kLineBreak);
    if (!record.contentType.empty())
        head.append("Content-Type: ").append(record.contentType).append(kLineBreak);
    return head +
           fmt::format("Content-Length: {}\r\n\r\n", record.before.size() + record.contentSize);
}

std::string bytesOfHex(std::string_view hex) {
    constexpr int kBase = 16;
    std::string bytes;
    bytes.reserve(hex.size() / 2);
    for (std::size_t at = 0; at + 1 < hex.size(); at += 2)
        bytes += static_cast<char>(std::stoi(std::string(hex.substr(at, 2)), nullptr, kBase));
    return bytes;
}

} // namespace

WarcPacking warcPackingOf(const std::filesystem::path &name) {
    return equalsNoCase(textOf(name.extension()), ".warc") ? WarcPacking::none : WarcPacking::gzip;
}

std::uint64_t sizeOf(const Body &content) {
    return content.isInMemory ? content.bytes.size() : FileReader(content.file).size();
}

WarcDigests digestsOf(std::string_view before, const Body &content) {
    Digest payload(DigestAlgorithm::sha1);
    Digest block(DigestAlgorithm::sha1);
    Digest sha256(DigestAlgorithm::sha256);
    WarcDigests found;
    block.add(before);
    eachBlock(content, [&](std::string_view piece) {
        payload.add(piece);
        block.add(piece);
        sha256.add(piece);
        found.size += piece.size();
    });
    found.payloadSha1 = payload.takeHex();
    found.blockSha1 = block.takeHex();
    found.sha256 = sha256.takeHex();
    return found;
}

std::string warcDigest(std::string_view sha1Hex) {
    return "sha1:" + base32(bytesOfHex(sha1Hex));
}

std::string warcIdOf(std::string_view words) {
    // The standard's own space of names for addresses.
    constexpr std::string_view kSpace = "6ba7b8119dad11d180b400c04fd430c8";
    constexpr std::size_t kDigits = 32;
    constexpr std::size_t kVersion = 12; // digits, 0-based
    constexpr std::size_t kVariant = 16;
    Digest digest(DigestAlgorithm::sha1);
    digest.add(bytesOfHex(kSpace));
    digest.add(words);
    std::string hex = digest.takeHex().substr(0, kDigits);
    hex[kVersion] = '5';
    const std::size_t two = std::string_view("0123456789abcdef").find(hex[kVariant]) & 3U;
    hex[kVariant] = "89ab"[two];
    const std::string_view all = hex;
    return fmt::format("urn:uuid:{}-{}-{}-{}-{}", all.substr(0, 8), all.substr(8, 4),
                       all.substr(12, 4), all.substr(16, 4), all.substr(20));
}

/// The bytes of one record, packed or not.
class WarcFile::Member {
  public:
    Member(ExportFile &file, WarcPacking packing) : m_file(file) {
        constexpr int kGZip = 15 + 16; // the largest window, and a gzip header
        constexpr int kMemory = 8;
        if (packing == WarcPacking::none)
            return;
        if (deflateInit2(&m_stream, Z_DEFAULT_COMPRESSION, Z_DEFLATED, kGZip, kMemory,
                         Z_DEFAULT_STRATEGY) != Z_OK)
            throw std::bad_alloc();
        m_isPacked = true;
        m_out.resize(kPiece);
    }
    ~Member() {
        if (m_isPacked)
            deflateEnd(&m_stream);
    }
    Member(const Member &) = delete;
    Member &operator=(const Member &) = delete;

    void add(std::string_view bytes) {
        if (!m_isPacked)
            return m_file.write(bytes);
        for (; !bytes.empty(); bytes.remove_prefix(std::min(kPiece, bytes.size()))) {
            const std::string_view piece = bytes.substr(0, kPiece);
            m_stream.next_in = reinterpret_cast<const Bytef *>(piece.data());
            m_stream.avail_in = static_cast<uInt>(piece.size());
            run(Z_NO_FLUSH);
        }
    }
    void end() {
        if (m_isPacked)
            run(Z_FINISH);
    }

  private:
    void run(int flush) {
        do {
            m_stream.next_out = reinterpret_cast<Bytef *>(m_out.data());
            m_stream.avail_out = static_cast<uInt>(m_out.size());
            deflate(&m_stream, flush);
            m_file.write({m_out.data(), m_out.size() - m_stream.avail_out});
        } while (m_stream.avail_out == 0);
    }

    ExportFile &m_file;
    bool m_isPacked = false;
    z_stream m_stream{};
    std::string m_out;
};

WarcFile::WarcFile(const std::filesystem::path &place, WarcPacking packing)
    : m_file(place), m_packing(packing) {}

WarcFile::~WarcFile() = default;

void WarcFile::write(const WarcRecord &record) {
    Member member(m_file, m_packing);
    member.add(headOf(record));
    member.add(record.before);
    std::uint64_t written = 0;
    if (record.content)
        eachBlock(*record.content, [&](std::string_view block) {
            written += block.size();
            if (written <= record.contentSize)
                member.add(block);
        });
    if (written != record.contentSize)
        throw StorageFailure(fmt::format("\"{}\" has {} bytes now, and had {} a moment ago",
                                         textOf(record.content->file), written,
                                         record.contentSize));
    member.add("\r\n\r\n");
    member.end();
}

} // namespace nv

#include "readers/GZip.h"

#include "base/Files.h"
#include "base/Storage.h"
#include "base/Succeeds.h"
#include "readers/Limits.h"
#include "readers/Scratch.h"

#include <fmt/format.h>

#include <memory>
#include <stdexcept>
#define ZLIB_CONST // zlib only reads its input
#include <zlib.h>

namespace nv {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kProcedure = "ParserClass.DecompressGZipFile()";
constexpr std::string_view kMark = "\x1F\x8B";
constexpr std::size_t kBlock = std::size_t{256} << 10;
/// zlib: the largest window, and a gzip header is expected.
constexpr int kGZipWindow = 15 + 16;

struct EndInflate {
    void operator()(z_stream *stream) const { inflateEnd(stream); }
};

/// Inflates a file or the bytes of one, member after member, as browsers do.
class Unpacking {
  public:
    Unpacking(const fs::path &packed, BodyTarget &target) : m_packed(packed), m_target(target) {
        if (inflateInit2(&m_stream, kGZipWindow) != Z_OK)
            throw std::runtime_error("the unpacking can't begin: out of memory");
        m_end.reset(&m_stream);
    }

    void take(std::string_view block) {
        m_stream.next_in = reinterpret_cast<const Bytef *>(block.data());
        m_stream.avail_in = static_cast<uInt>(block.size());
        while (m_stream.avail_in > 0 && !m_trailing)
            step();
    }

    /// Throws when the stream ended before its content did.
    void finish() const {
        if (!m_memberEnded)
            throw std::runtime_error(fmt::format("\"{}\" ends amid its packed content, after {} "
                                                 "unpacked bytes",
                                                 textOf(m_packed), m_unpacked));
    }

  private:
    void step() {
        if (m_memberEnded && !beginMember())
            return;
        m_stream.next_out = reinterpret_cast<Bytef *>(m_out.get());
        m_stream.avail_out = kBlock;
        const int result = inflate(&m_stream, Z_NO_FLUSH);
        if (result != Z_OK && result != Z_STREAM_END && result != Z_BUF_ERROR)
            throw std::runtime_error(fmt::format("\"{}\" is no sound gzip data behind {} unpacked "
                                                 "bytes: {}",
                                                 textOf(m_packed), m_unpacked,
                                                 m_stream.msg ? m_stream.msg : "damaged"));
        write(kBlock - m_stream.avail_out);
        m_memberEnded = result == Z_STREAM_END;
    }

    /// What follows a member is either another one or padding, which is left.
    bool beginMember() {
        m_trailing = *m_stream.next_in != static_cast<Bytef>(kMark.front());
        if (!m_trailing)
            inflateReset(&m_stream);
        m_memberEnded = m_trailing;
        return !m_trailing;
    }

    void write(std::size_t count) {
        m_unpacked += count;
        if (m_unpacked > limits::kUnpackedBytes)
            throw std::runtime_error(fmt::format("\"{}\" unpacks to more than {} bytes and is left "
                                                 "packed",
                                                 textOf(m_packed), limits::kUnpackedBytes));
        m_target.write({m_out.get(), count});
    }

    const fs::path &m_packed;
    BodyTarget &m_target;
    z_stream m_stream{};
    std::unique_ptr<z_stream, EndInflate> m_end;
    std::unique_ptr<char[]> m_out = std::make_unique_for_overwrite<char[]>(kBlock);
    std::uint64_t m_unpacked = 0;
    bool m_memberEnded = false;
    bool m_trailing = false;
};

/// The work file beside the target.
fs::path workFileOf(const fs::path &target) {
    fs::path work = target;
    return work += ".~gzip";
}

void feed(Unpacking &unpacking, const Body &packed) {
    if (packed.isInMemory)
        return unpacking.take(packed.raw());
    static_cast<void>(inBlocks(ScratchFile(packed.file), [&unpacking](std::string_view block) {
        unpacking.take(block);
        return true;
    }));
}

Body unpacked(const Body &packed, const fs::path &work, std::uint64_t inMemory) {
    BodyTarget target(work, inMemory);
    Unpacking unpacking(packed.file, target);
    feed(unpacking, packed);
    unpacking.finish();
    return target.take();
}

} // namespace

bool beginsAsGZip(ByteView head) {
    return head.raw().starts_with(kMark);
}

bool unpackBody(Body &body, std::uint64_t inMemory, FailureLog &log) {
    return succeeds(log, Severity::Warning, kProcedure, kContactSupport, [&] {
        Body whole = unpacked(body, workFileOf(body.file), inMemory);
        if (!whole.isInMemory)
            moveFile(whole.file, body.file);
        else if (!body.isInMemory)
            scratch::remove(body.file);
        whole.file = body.file;
        body = std::move(whole);
    });
}

} // namespace nv

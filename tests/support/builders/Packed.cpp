#include "support/builders/Packed.h"

#include <algorithm>
#include <array>
#include <brotli/encode.h>
#include <stdexcept>
#include <zstd.h>
#define ZLIB_CONST // zlib only reads its input
#include <zlib.h>

namespace nv::test {

namespace {

constexpr int kGZip = 15 + 16;
constexpr int kZlib = 15;
constexpr int kRaw = -15;

/// A stream that is written piece by piece.
class Packing {
  public:
    explicit Packing(int window = kGZip) {
        if (deflateInit2(&m_stream, Z_BEST_COMPRESSION, Z_DEFLATED, window, 8,
                         Z_DEFAULT_STRATEGY) != Z_OK)
            throw std::runtime_error("the packing can't begin");
    }
    ~Packing() { deflateEnd(&m_stream); }
    Packing(const Packing &) = delete;
    Packing &operator=(const Packing &) = delete;

    void add(std::string_view piece, int flush) {
        m_stream.next_in = reinterpret_cast<const Bytef *>(piece.data());
        m_stream.avail_in = static_cast<uInt>(piece.size());
        std::array<char, 4096> out{};
        do {
            m_stream.next_out = reinterpret_cast<Bytef *>(out.data());
            m_stream.avail_out = static_cast<uInt>(out.size());
            deflate(&m_stream, flush);
            m_packed.append(out.data(), out.size() - m_stream.avail_out);
        } while (m_stream.avail_out == 0);
    }
    const std::string &packed() const { return m_packed; }

  private:
    z_stream m_stream{};
    std::string m_packed;
};

std::string deflated(std::string_view text, int window) {
    Packing packing(window);
    packing.add(text, Z_FINISH);
    return packing.packed();
}

} // namespace

std::string gzip(std::string_view text) {
    return deflated(text, kGZip);
}

std::string zlibDeflate(std::string_view text) {
    return deflated(text, kZlib);
}

std::string rawDeflate(std::string_view text) {
    return deflated(text, kRaw);
}

std::string brotli(std::string_view text) {
    constexpr int kQuality = 5;
    constexpr int kWindow = 22;
    std::string packed(BrotliEncoderMaxCompressedSize(text.size()) + 64, '\0');
    std::size_t size = packed.size();
    if (BrotliEncoderCompress(kQuality, kWindow, BROTLI_MODE_GENERIC, text.size(),
                              reinterpret_cast<const std::uint8_t *>(text.data()), &size,
                              reinterpret_cast<std::uint8_t *>(packed.data())) != BROTLI_TRUE)
        throw std::runtime_error("brotli could not pack");
    packed.resize(size);
    return packed;
}

std::string zstd(std::string_view text) {
    constexpr int kLevel = 3;
    std::string packed(ZSTD_compressBound(text.size()), '\0');
    const std::size_t size =
        ZSTD_compress(packed.data(), packed.size(), text.data(), text.size(), kLevel);
    if (ZSTD_isError(size) != 0)
        throw std::runtime_error("zstd could not pack");
    packed.resize(size);
    return packed;
}

std::string gzipOfZeros(std::uint64_t count) {
    const std::string zeros(std::size_t{1} << 20, '\0');
    Packing packing;
    for (std::uint64_t left = count; left > 0; left -= std::min<std::uint64_t>(left, zeros.size()))
        packing.add(std::string_view(zeros).substr(
                        0, static_cast<std::size_t>(std::min<std::uint64_t>(left, zeros.size()))),
                    Z_NO_FLUSH);
    packing.add({}, Z_FINISH);
    return packing.packed();
}

} // namespace nv::test

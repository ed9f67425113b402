#include "support/builders/Packed.h"

#include <algorithm>
#include <array>
#include <stdexcept>
#define ZLIB_CONST // zlib only reads its input
#include <zlib.h>

namespace nv::test {

namespace {

/// A gzip stream that is written piece by piece.
class Packing {
  public:
    Packing() {
        if (deflateInit2(&m_stream, Z_BEST_COMPRESSION, Z_DEFLATED, 15 + 16, 8,
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

} // namespace

std::string gzip(std::string_view text) {
    Packing packing;
    packing.add(text, Z_FINISH);
    return packing.packed();
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

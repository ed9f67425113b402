#include "readers/Unpacker.h"

#include <algorithm>
#include <cstddef>
#include <stdexcept>
#include <zstd.h>

namespace nv {

namespace {

/// What a server may ask a browser to remember, as a power of 2: RFC 9659.
constexpr int kWindow = 23;

/// Damage takes along what the library has unpacked of a slice, and no more.
constexpr std::size_t kSlice = 1024;

struct EndZstd {
    void operator()(ZSTD_DCtx *context) const { ZSTD_freeDCtx(context); }
};

class Zstd final : public Unpacker {
  public:
    Zstd() : m_context(ZSTD_createDCtx()) {
        if (!m_context)
            throw std::runtime_error("the unpacking can't begin: out of memory");
        ZSTD_DCtx_setParameter(m_context.get(), ZSTD_d_windowLogMax, kWindow);
    }

    bool feed(std::string_view block, const Take &take) override {
        for (; !block.empty(); block.remove_prefix(std::min(kSlice, block.size())))
            if (!feedSlice(block.substr(0, kSlice), take))
                return false;
        return true;
    }

    bool isWhole() const override { return m_isWhole; }

  private:
    bool feedSlice(std::string_view block, const Take &take) {
        ZSTD_inBuffer in = {block.data(), block.size(), 0};
        bool isFull = false; // then there may be more, whether there is input or not
        while (in.pos < in.size || isFull) {
            const bool isAtFrame = m_isWhole;
            ZSTD_outBuffer out = {m_out.get(), m_size, 0};
            const std::size_t result = ZSTD_decompressStream(m_context.get(), &out, &in);
            if (out.pos > 0 && !take({m_out.get(), out.pos}))
                return false;
            if (ZSTD_isError(result) != 0) // after a frame it is padding
                return isAtFrame ? false : damaged(ZSTD_getErrorName(result));
            m_isWhole = result == 0;
            isFull = out.pos == out.size && !m_isWhole;
        }
        return true;
    }

    std::unique_ptr<ZSTD_DCtx, EndZstd> m_context;
    std::size_t m_size = ZSTD_DStreamOutSize();
    std::unique_ptr<char[]> m_out = std::make_unique_for_overwrite<char[]>(m_size);
    bool m_isWhole = false;
};

} // namespace

std::unique_ptr<Unpacker> zstdUnpacker() {
    return std::make_unique<Zstd>();
}

} // namespace nv

#include "readers/Unpacker.h"

#include <algorithm>
#include <brotli/decode.h>
#include <cstddef>
#include <cstdint>
#include <stdexcept>

namespace nv {

namespace {

/// Damage takes along what the library has unpacked of a slice, and no more.
constexpr std::size_t kSlice = 1024;

struct EndBrotli {
    void operator()(BrotliDecoderState *state) const { BrotliDecoderDestroyInstance(state); }
};

/// Windows of more than 16 MB aren't asked for: browsers refuse them, and memory stays bounded.
class Brotli final : public Unpacker {
  public:
    Brotli() : m_state(BrotliDecoderCreateInstance(nullptr, nullptr, nullptr)) {
        if (!m_state)
            throw std::runtime_error("the unpacking can't begin: out of memory");
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
        const auto *next = reinterpret_cast<const std::uint8_t *>(block.data());
        std::size_t left = block.size();
        BrotliDecoderResult result = BROTLI_DECODER_RESULT_NEEDS_MORE_OUTPUT;
        while (result == BROTLI_DECODER_RESULT_NEEDS_MORE_OUTPUT) {
            std::size_t none = 0;
            result =
                BrotliDecoderDecompressStream(m_state.get(), &left, &next, &none, nullptr, nullptr);
            if (!giveAway(take))
                return false;
        }
        m_isWhole = result == BROTLI_DECODER_RESULT_SUCCESS;
        if (result == BROTLI_DECODER_RESULT_ERROR)
            return damaged(BrotliDecoderErrorString(BrotliDecoderGetErrorCode(m_state.get())));
        return !m_isWhole;
    }

    /// What the decoder has in its window, without a copy.
    bool giveAway(const Take &take) {
        while (BrotliDecoderHasMoreOutput(m_state.get()) == BROTLI_TRUE) {
            std::size_t count = 0; // as much as there is
            const std::uint8_t *bytes = BrotliDecoderTakeOutput(m_state.get(), &count);
            if (count == 0)
                break;
            if (!take({reinterpret_cast<const char *>(bytes), count}))
                return false;
        }
        return true;
    }

    std::unique_ptr<BrotliDecoderState, EndBrotli> m_state;
    bool m_isWhole = false;
};

} // namespace

std::unique_ptr<Unpacker> brotliUnpacker() {
    return std::make_unique<Brotli>();
}

} // namespace nv

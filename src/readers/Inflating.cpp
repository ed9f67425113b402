#include "readers/Unpacker.h"

#include <cstddef>
#include <stdexcept>
#define ZLIB_CONST // zlib only reads its input
#include <zlib.h>

namespace nv {

namespace {

constexpr std::size_t kPiece = std::size_t{256} << 10;
constexpr char kFirstOfMember = '\x1F';

/// zlib: the largest window, and what stands before the data.
int windowOf(Deflate form) {
    constexpr int kWindow = 15;
    constexpr int kGZip = 16;
    return form == Deflate::gzip ? kWindow + kGZip : form == Deflate::zlib ? kWindow : -kWindow;
}

struct EndInflate {
    void operator()(z_stream *stream) const { inflateEnd(stream); }
};

class Inflating final : public Unpacker {
  public:
    explicit Inflating(Deflate form) : m_form(form) {
        if (inflateInit2(&m_stream, windowOf(form)) != Z_OK)
            throw std::runtime_error("the unpacking can't begin: out of memory");
        m_end.reset(&m_stream);
    }

    bool feed(std::string_view block, const Take &take) override {
        m_stream.next_in = reinterpret_cast<const Bytef *>(block.data());
        m_stream.avail_in = static_cast<uInt>(block.size());
        bool isFull = false; // then zlib may hold more, whether there is input or not
        while (m_stream.avail_in > 0 || isFull) {
            if (m_ended && !beginMember())
                return false;
            m_stream.next_out = reinterpret_cast<Bytef *>(m_out.get());
            m_stream.avail_out = kPiece;
            const int result = inflate(&m_stream, Z_NO_FLUSH);
            const std::size_t count = kPiece - m_stream.avail_out;
            if (count > 0 && !take({m_out.get(), count}))
                return false;
            m_ended = result == Z_STREAM_END;
            if (result != Z_OK && result != Z_STREAM_END && result != Z_BUF_ERROR)
                return damaged(m_stream.msg ? m_stream.msg : "damaged");
            isFull = m_stream.avail_out == 0 && !m_ended;
        }
        return true;
    }

    bool isWhole() const override { return m_ended; }

  private:
    /// What follows a member of gzip is either another one or padding, which is left.
    bool beginMember() {
        if (m_form != Deflate::gzip || *m_stream.next_in != static_cast<Bytef>(kFirstOfMember))
            return false;
        inflateReset(&m_stream);
        m_ended = false;
        return true;
    }

    Deflate m_form;
    z_stream m_stream{};
    std::unique_ptr<z_stream, EndInflate> m_end;
    std::unique_ptr<char[]> m_out = std::make_unique_for_overwrite<char[]>(kPiece);
    bool m_ended = false;
};

} // namespace

std::unique_ptr<Unpacker> inflating(Deflate form) {
    return std::make_unique<Inflating>(form);
}

} // namespace nv

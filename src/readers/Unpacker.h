#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace nv {

/// Undoes one coding of a body, block after block. Nothing throws: damage is what it finds.
class Unpacker {
  public:
    /// Gets the unpacked bytes, piece by piece; false ends the unpacking.
    using Take = std::function<bool(std::string_view piece)>;

    Unpacker() = default;
    virtual ~Unpacker() = default;
    Unpacker(const Unpacker &) = delete;
    Unpacker &operator=(const Unpacker &) = delete;

    /// False when no further block is wanted: the content is whole, damaged, or not taken.
    virtual bool feed(std::string_view block, const Take &take) = 0;
    /// Whether the content came to its end. What follows it is padding.
    virtual bool isWhole() const = 0;
    /// What is wrong with the data; empty where nothing is.
    const std::string &problem() const { return m_problem; }

  protected:
    /// Always false.
    bool damaged(std::string_view what) {
        m_problem = what;
        return false;
    }

  private:
    std::string m_problem;
};

/// What the words of servers stand for.
enum class Deflate {
    gzip, ///< members one after the other
    zlib, ///< "deflate" as its standard says
    raw,  ///< "deflate" of some servers: without zlib's head and checksum
};

// Each throws std::runtime_error when there is no memory for it.

std::unique_ptr<Unpacker> inflating(Deflate form);
std::unique_ptr<Unpacker> brotliUnpacker();
std::unique_ptr<Unpacker> zstdUnpacker();
/// Snappy in frames with checksums: no server sends it, Firefox keeps so what sites store.
std::unique_ptr<Unpacker> snappyUnpacker();

} // namespace nv

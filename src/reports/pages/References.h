#pragma once

#include "reports/pages/PageFolder.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace nv {

/// What a browser makes of the thing that an address names.
enum class Use : std::uint8_t {
    image, ///< drawn, and never run: a picture that is a page of SVG fetches nothing
    style,
    font,
    media,
    track,    ///< subtitles
    document, ///< a frame
    link,     ///< what a click leads to
};

class PartsInside;

/// A page as an attribute of the frame that shows it.
struct FramedPage {
    std::string_view attribute; ///< "srcdoc" or "src"
    std::string value;
};

/// Which references of a page may stay: those to files of its own folder, to places in itself, and
/// data that the page itself holds. Whatever else there is goes, whether or not anybody knows that
/// browsers fetch it.
class References {
  public:
    /// `folder` must outlive it. `depth` counts the documents that this one lies in as data.
    explicit References(const PageFolder &folder, int depth = 0)
        : m_folder(folder), m_depth(depth) {}

    /// Parts of the folder are written as data that `inside` gives, which must outlive it.
    References(const PageFolder &folder, PartsInside &inside) : References(folder) {
        m_inside = &inside;
    }

    /// The address in its plainest form; nothing when it has to go.
    std::optional<std::string> kept(std::string_view address, Use use) const;
    /// A page that stands in a frame, where parts are written as data; nothing for another part,
    /// which kept() gives.
    std::optional<FramedPage> framed(std::string_view address) const;

    /// Whether what the address names is drawn as a picture.
    bool isPicture(std::string_view address) const;
    /// A page that stands in an attribute of this one, guarded; nothing when it lies too deep.
    std::optional<std::string> keptText(std::string_view html) const;

    bool haveInside() const { return m_inside != nullptr; }
    const PageFolder &folder() const { return m_folder; }
    int depth() const { return m_depth; }

  private:
    std::optional<std::string> keptPart(const std::string &address, Use use) const;
    std::optional<std::string> keptData(std::string_view data, Use use) const;
    References within() const;
    std::optional<std::string> keptDocument(std::string_view type, const std::string &bytes,
                                            std::string_view charset) const;

    const PageFolder &m_folder;
    int m_depth;
    PartsInside *m_inside = nullptr; ///< null: parts stay files
};

} // namespace nv

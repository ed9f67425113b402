#pragma once

#include "readers/ContentProbe.h"
#include "readers/Scratch.h"

#include <filesystem>
#include <utility>

namespace nv {

/// A body that a reader has at hand, for those who look into the record that it saves next. It is
/// let go of, with its scratch file, at the end of the scope.
class HeldBody {
  public:
    explicit HeldBody(ContentProbe &content) : m_content(content) {}
    ~HeldBody() {
        m_content.forget();
        if (!m_file.empty())
            scratch::drop(m_file);
    }
    HeldBody(const HeldBody &) = delete;
    HeldBody &operator=(const HeldBody &) = delete;

    void take(Body body) {
        if (!body.isInMemory)
            m_file = body.file;
        m_content.hold(std::move(body));
    }

  private:
    ContentProbe &m_content;
    std::filesystem::path m_file; ///< empty while the body is in memory
};

} // namespace nv

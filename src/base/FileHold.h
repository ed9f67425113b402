#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace nv {

/// A lock on a file, for other processes to see: it is held until it goes or its process ends,
/// however that ends.
class FileHold {
  public:
    enum class Kind { alone, shared };
    enum class Make { no, yes }; ///< the file, for its owner only, where it isn't there
    enum class State {
        held,
        ofAnother, ///< another hold, of this process or another, stands against it
        unknown,   ///< no such file, no permission, or a file system without locks
    };

    FileHold(const std::filesystem::path &file, Kind kind, Make make);
    ~FileHold();
    FileHold(FileHold &&other) noexcept;
    FileHold(const FileHold &) = delete;
    FileHold &operator=(const FileHold &) = delete;
    FileHold &operator=(FileHold &&) = delete;

    State state() const { return m_state; }
    bool isHeld() const { return m_state == State::held; }
    /// True when nobody else holds it, who is then kept out. Otherwise the hold is lost.
    [[nodiscard]] bool becomesAlone();
    /// The file of this name is the one that was opened: its last holder may have removed that.
    bool isStillAt(const std::filesystem::path &file) const;
    /// What stands in the file, also in that of another holder; at most 4 KB.
    std::string text() const;
    /// Writes over what stood there. Of a file that is held.
    void write(std::string_view text) const;

  private:
    int m_file; ///< a descriptor, which owns the lock
    State m_state = State::unknown;
};

} // namespace nv

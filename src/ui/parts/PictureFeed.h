#pragma once

#include "platform/posix/DrawService.h"
#include "ui/parts/Workbench.h"

#include <QImage>
#include <QTimer>

#include <cstdint>
#include <deque>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <vector>

namespace nv {

class PicturePane;

/// Fills the Picture pane. Pictures of evidence are decoded outside of this process, since damaged
/// ones can crash what reads them, and one after another while the examiner goes on. Only the
/// current record's is waited for; those after it in the table are drawn ahead.
class PictureFeed final : public QObject {
    Q_OBJECT

  public:
    PictureFeed(Workbench &bench, PicturePane &pane);
    ~PictureFeed() override;
    PictureFeed(const PictureFeed &) = delete;
    PictureFeed &operator=(const PictureFeed &) = delete;

    void show(UrlId id);
    void clear();
    /// Whether the record's picture is drawn, whatever the pane shows.
    bool has(UrlId id) const { return kept(id) != nullptr; }

  private:
    /// What is known of a record's picture.
    struct Picture {
        UrlId id{};
        std::filesystem::path file; ///< what was drawn
        QImage image;               ///< of no pixels when it can't be drawn
        QSize size;                 ///< of the picture itself
        std::string failure;
    };
    /// A picture that is ordered.
    struct Pending {
        Picture picture;
        std::filesystem::path folder; ///< of its own, for what is fetched and drawn
    };

    void startWith(UrlId id);
    void order(UrlId id);
    bool isOrdered(UrlId id);
    void showDrawn(const Picture &picture);
    const Picture *kept(UrlId id) const;
    void keep(Picture picture);
    /// Why the content isn't there, or nothing when it is `fetched`.
    std::optional<QString> fetch(UrlId id, Pending &fetched);
    DrawService::Order orderFor(Pending pending);
    static DrawService::Order orderOf(std::uint64_t number, const Pending &pending);
    void want(std::vector<DrawService::Order> orders);
    void takeDrawn(std::uint64_t number, const Drawn &drawn, const QImage &image);
    void drop(std::uint64_t number);
    void readAhead();
    std::optional<UrlId> nextToDraw() const;
    bool isPictureRecord(UrlId id) const;
    void forgetProject();

    ProgramState &state() { return m_bench.program.state; }

    Workbench &m_bench;
    PicturePane &m_pane;
    std::optional<UrlId> m_wanted; ///< the record that the pane is for
    int m_row = -1;                ///< its place in the table
    int m_direction = 1;           ///< in which the examiner goes through the rows
    std::deque<Picture> m_kept;    ///< the newest first
    std::filesystem::path m_base;  ///< in which they were found
    std::map<std::uint64_t, Pending> m_pending;
    std::uint64_t m_number = 0;
    QTimer m_idle; ///< begins to read ahead
    std::unique_ptr<DrawService> m_service;
};

} // namespace nv

#pragma once

#include "ui/gallery/GalleryModel.h"
#include "ui/gallery/GalleryTile.h"
#include "ui/table/TableTab.h"
#include "views/gallery/Gallery.h"

#include <QWidget>

#include <array>
#include <functional>
#include <memory>
#include <utility>

class QCheckBox;
class QLabel;
class QLineEdit;
class QListView;
class QPushButton;
class QSpinBox;

namespace nv {

/// The Gallery tab: thumbnails page by page, chosen by shape, size, kind and host.
class GalleryTab final : public QWidget {
    Q_OBJECT

  public:
    GalleryTab(RunTask runTask, Examiner &examiner, QWidget *parent = nullptr);

    /// Takes up an open project; it is loaded when the tab is looked at. The project and the log
    /// must stay until closeProject(). `thumbnailWidth` is in pixels.
    void openProject(SQLite::Database &project, FailureLog &log, const GallerySettings &settings,
                     int thumbnailWidth);
    void closeProject();
    /// Tells at each load which rows are shown and no others; null for all of the query's.
    using RowSource = std::function<std::shared_ptr<const FoundIds>()>;
    void setRowSource(RowSource source) { m_rowSource = std::move(source); }
    /// The table has loaded its rows, of this query.
    void followTable(const std::string &query);
    /// By what the table is limited, in words; none hides the line.
    void showLimits(const QStringList &limits);
    /// What the next load filters by; empty turns the host filter off. The box shows it.
    void setHost(const QString &host);
    /// Rows or thumbnails have changed.
    void setDirty();
    /// The same, but what is shown stays until it is refreshed.
    void setOutdated();
    /// How many of the pictures and pages have a thumbnail, and whether the others are being drawn.
    void showDrawn(qint64 drawn, qint64 drawable, bool isDrawing);
    /// Takes up other settings and the choice of shapes, and shows what they lead to.
    void setChoice(const GallerySettings &settings, const PardChoice &pard, int thumbnailWidth);

  signals:
    /// The examiner opened a tile, or went to it.
    void urlChosen(qint64 urlID);
    void tagChanged(qint64 urlID, bool tagged);
    /// The examiner has changed the box.
    void hostEntered(const QString &host);
    /// Missing thumbnails are to be drawn, or no more of them.
    void thumbnailsWanted();
    /// The tab is looked at, after it was out of sight.
    void lookedAt();
    /// The examiner has ticked other shapes or kinds.
    void choiceChanged(const nv::PardChoice &pard, const nv::GalleryMedia &media);

  protected:
    void showEvent(QShowEvent *event) override;

  private:
    QWidget *newChoiceBar();
    QWidget *newPageBar();
    QListView *newTiles();
    QCheckBox *newBox(const char *name, const QString &text, const QString &toolTip, bool on) const;
    void showThumbnailSize(int width);
    void enableShapes();
    void takeChoice();
    bool takeHost();
    void load();
    void refresh();
    void showPage(bool (Gallery::*turn)());
    void showState();

    RunTask m_runTask;
    RowSource m_rowSource;
    Examiner &m_examiner;
    std::unique_ptr<Gallery> m_gallery;
    GalleryModel m_model;
    GalleryTile m_tile;
    QListView *m_tiles = nullptr;
    QLabel *m_limits = nullptr;
    QLabel *m_empty = nullptr;
    QCheckBox *m_pard = nullptr;
    QSpinBox *m_from = nullptr;
    QSpinBox *m_to = nullptr;
    std::array<QCheckBox *, 5> m_sizes{}; ///< from extra small to extra large
    QCheckBox *m_pictures = nullptr;
    QCheckBox *m_pages = nullptr;
    QLineEdit *m_host = nullptr;
    QLabel *m_page = nullptr;
    QLabel *m_drawn = nullptr;
    QPushButton *m_make = nullptr;
    std::array<QPushButton *, 4> m_turn{}; ///< first, previous, next, last
};

} // namespace nv

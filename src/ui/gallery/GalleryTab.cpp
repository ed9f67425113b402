#include "ui/gallery/GalleryTab.h"

#include "base/Text.h"
#include "platform/qt/QtText.h"
#include "ui/widgets/GridCopy.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QPushButton>
#include <QSpinBox>
#include <QTextDocument>
#include <QVBoxLayout>

namespace nv {

namespace {

// The shapes of photographs.
constexpr int kBestFrom = 15;
constexpr int kBestTo = 40;

/// In the order of their boxes.
constexpr std::array<bool PardChoice::*, 5> kSizeFlags = {
    &PardChoice::showXSmallPics, &PardChoice::showSmallPics, &PardChoice::showMediumPics,
    &PardChoice::showLargePics, &PardChoice::showXLargePics};

using Turn = bool (Gallery::*)();

} // namespace

GalleryTab::GalleryTab(RunTask runTask, Examiner &examiner, QWidget *parent)
    : QWidget(parent), m_runTask(std::move(runTask)), m_examiner(examiner) {
    setObjectName(QStringLiteral("GalleryTab"));
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(newChoiceBar());
    m_limits = new QLabel;
    m_limits->setObjectName(QStringLiteral("labGalleryLimits"));
    m_limits->setTextFormat(Qt::PlainText); // it quotes evidence
    m_limits->setWordWrap(true);
    m_limits->setContentsMargins(8, 0, 8, 4);
    m_limits->setMinimumWidth(1); // a long name doesn't widen the window
    m_limits->hide();
    column->addWidget(m_limits);
    m_empty = new QLabel;
    m_empty->setObjectName(QStringLiteral("labGalleryEmpty"));
    m_empty->setAlignment(Qt::AlignCenter);
    m_empty->setWordWrap(true);
    column->addWidget(m_empty, 1);
    column->addWidget(newTiles(), 1);
    column->addWidget(newPageBar());
    connect(&m_model, &GalleryModel::tagged, this, &GalleryTab::tagChanged);
    showState();
}

QCheckBox *GalleryTab::newBox(const char *name, const QString &text, const QString &toolTip,
                              bool on) const {
    auto *box = new QCheckBox(text);
    box->setObjectName(QLatin1String(name));
    box->setToolTip(toolTip);
    box->setChecked(on);
    connect(box, &QCheckBox::toggled, this, &GalleryTab::takeChoice);
    return box;
}

QWidget *GalleryTab::newChoiceBar() {
    auto *bar = new QWidget;
    auto *row = new QHBoxLayout(bar);
    row->setContentsMargins(6, 6, 6, 6);
    const QString hint = tr("Photograph Aspect Ratio Differential (Best range: 15% to 40%)");
    m_pard = newBox("chkPARD", tr("P.A.R.D."), hint, false);
    row->addWidget(m_pard);
    const auto newLimit = [&](const char *name, const QString &said, int value) {
        auto *limit = new QSpinBox;
        limit->setObjectName(QLatin1String(name));
        limit->setAccessibleName(said);
        limit->setRange(0, 100);
        limit->setValue(value);
        limit->setToolTip(hint);
        limit->setEnabled(false);
        connect(limit, &QSpinBox::valueChanged, this, &GalleryTab::takeChoice);
        row->addWidget(limit);
        return limit;
    };
    m_from = newLimit("spnFrom", tr("P.A.R.D. from"), kBestFrom);
    row->addWidget(new QLabel(tr("to")));
    m_to = newLimit("spnTo", tr("P.A.R.D. to"), kBestTo);
    struct Box {
        const char *name;
        QString text;
        QString toolTip;
    };
    const std::array<Box, 5> sizes = {
        {{"chkXSmall", tr("XS"), tr("Up to 39 by 39 pixels")},
         {"chkSmall", tr("S"), tr("40 to 299 pixels")},
         {"chkMedium", tr("M"), tr("300 to 599 pixels wide, 100 to 599 high")},
         {"chkLarge", tr("L"), tr("600 to 1199 pixels")},
         {"chkXLarge", tr("XL"), tr("1200 pixels and more")}}};
    for (std::size_t i = 0; i < sizes.size(); ++i) {
        m_sizes[i] = newBox(sizes[i].name, sizes[i].text,
                            sizes[i].toolTip + tr("; sizes count together with P.A.R.D."), false);
        m_sizes[i]->setEnabled(false);
        row->addWidget(m_sizes[i]);
    }
    m_pictures = newBox("chkIncludePictures", tr("Pictures"), tr("Show pictures"), true);
    m_pages = newBox("chkIncludeHTML", tr("Web Pages"), tr("Show web pages"), true);
    row->addWidget(m_pictures);
    row->addWidget(m_pages);
    m_host = new QLineEdit;
    m_host->setObjectName(QStringLiteral("txtGalleryHost"));
    m_host->setAccessibleName(tr("Host"));
    m_host->setPlaceholderText(tr("Part of a host's name, then Enter"));
    m_host->setClearButtonEnabled(true);
    connect(m_host, &QLineEdit::editingFinished, this, &GalleryTab::takeChoice);
    row->addWidget(m_host, 1);
    return bar;
}

QWidget *GalleryTab::newPageBar() {
    auto *bar = new QWidget;
    auto *row = new QHBoxLayout(bar);
    row->setContentsMargins(6, 4, 6, 4);
    struct Button {
        const char *name;
        QString text;
        QString toolTip;
        Turn turn;
    };
    const std::array<Button, 4> turns = {
        {{"btnFirst", tr("|<"), tr("First page"), &Gallery::firstPage},
         {"btnPrevious", tr("<"), tr("Previous page"), &Gallery::previousPage},
         {"btnNextPage", tr(">"), tr("Next page"), &Gallery::nextPage},
         {"btnLast", tr(">|"), tr("Last page"), &Gallery::lastPage}}};
    for (std::size_t i = 0; i < turns.size(); ++i) {
        m_turn[i] = new QPushButton(turns[i].text);
        m_turn[i]->setObjectName(QLatin1String(turns[i].name));
        m_turn[i]->setToolTip(turns[i].toolTip);
        m_turn[i]->setAccessibleName(turns[i].toolTip);
        connect(m_turn[i], &QPushButton::clicked, this,
                [this, turn = turns[i].turn] { showPage(turn); });
        row->addWidget(m_turn[i]);
        if (i == 1) {
            m_page = new QLabel;
            m_page->setObjectName(QStringLiteral("labGalleryPage"));
            row->addWidget(m_page);
        }
    }
    row->addStretch(1);
    m_drawn = new QLabel;
    m_drawn->setObjectName(QStringLiteral("labGalleryDrawn"));
    m_drawn->setToolTip(tr("Of the pictures and pages of the project whose content is there"));
    row->addWidget(m_drawn);
    m_make = new QPushButton(tr("Make Thumbnails"));
    m_make->setObjectName(QStringLiteral("btnMakeThumbnails"));
    connect(m_make, &QPushButton::clicked, this, &GalleryTab::thumbnailsWanted);
    row->addWidget(m_make);
    auto *again = new QPushButton(tr("Refresh"));
    again->setObjectName(QStringLiteral("btnRefreshGallery"));
    connect(again, &QPushButton::clicked, this, &GalleryTab::refresh);
    row->addWidget(again);
    return bar;
}

QListView *GalleryTab::newTiles() {
    m_tiles = new QListView;
    m_tiles->setObjectName(QStringLiteral("GalleryTiles"));
    m_tiles->setAccessibleName(tr("Pictures and pages"));
    m_tiles->setViewMode(QListView::IconMode);
    m_tiles->setResizeMode(QListView::Adjust);
    m_tiles->setMovement(QListView::Static);
    m_tiles->setUniformItemSizes(true);
    m_tiles->setSelectionMode(QAbstractItemView::SingleSelection);
    m_tiles->setModel(&m_model);
    m_tiles->setItemDelegate(&m_tile);
    m_tiles->setSpacing(4);
    letCopy(*m_tiles);
    const auto choose = [this](const QModelIndex &tile) {
        if (tile.isValid())
            emit urlChosen(m_model.idAt(tile));
    };
    connect(m_tiles, &QListView::activated, this, choose);
    connect(m_tiles->selectionModel(), &QItemSelectionModel::currentChanged, this, choose);
    return m_tiles;
}

void GalleryTab::openProject(SQLite::Database &project, FailureLog &log,
                             const GallerySettings &settings, int thumbnailWidth) {
    m_gallery = std::make_unique<Gallery>(project, log);
    m_gallery->settings = settings;
    m_gallery->galleryDirty = true;
    takeHost();
    showThumbnailSize(thumbnailWidth);
    m_model.setGallery(m_gallery.get(), &project, &log);
    {
        const QSignalBlocker quiet(this);
        m_pictures->setChecked(settings.media.galleryIncludePictures);
        m_pages->setChecked(settings.media.galleryIncludeHTML);
    }
    if (isVisible())
        load();
    showState();
}

void GalleryTab::closeProject() {
    m_model.setGallery(nullptr, nullptr, nullptr);
    m_gallery.reset();
    showState();
}

void GalleryTab::followTable(const std::string &query) {
    if (!m_gallery)
        return;
    m_gallery->choice.activeQueryName = query;
    setDirty();
}

void GalleryTab::showLimits(const QStringList &limits) {
    m_limits->setText(tr("Limited as the table is: %1").arg(limits.join(QStringLiteral("; "))));
    m_limits->setToolTip(Qt::convertFromPlainText(m_limits->text()));
    m_limits->setVisible(!limits.isEmpty());
}

void GalleryTab::setDirty() {
    if (!m_gallery)
        return;
    m_gallery->galleryDirty = true;
    if (isVisible())
        load();
}

void GalleryTab::setOutdated() {
    if (m_gallery)
        m_gallery->galleryDirty = true;
}

void GalleryTab::showDrawn(qint64 drawn, qint64 drawable, bool isDrawing) {
    m_drawn->setText(drawable > 0 ? tr("%L1 of %L2 drawn").arg(drawn).arg(drawable) : QString());
    m_make->setEnabled(isDrawing || drawn == 0 || drawn < drawable);
    if (isDrawing)
        m_make->setText(tr("Stop Drawing"));
    else
        m_make->setText(drawn > 0 ? tr("Draw the Rest") : tr("Make Thumbnails"));
    m_make->setToolTip(isDrawing
                           ? tr("What is drawn stays")
                           : tr("Draw the pictures and pages that have no thumbnail yet, while you "
                                "go on"));
}

void GalleryTab::showThumbnailSize(int width) {
    const QSize size(width, width * 3 / 4);
    m_model.setThumbnailSize(size);
    m_tile.setThumbnailSize(size);
}

void GalleryTab::setChoice(const GallerySettings &settings, const PardChoice &pard,
                           int thumbnailWidth) {
    std::vector<QObject *> controls = {m_pard, m_from, m_to, m_pictures, m_pages};
    controls.insert(controls.end(), m_sizes.begin(), m_sizes.end());
    for (QObject *control : controls)
        control->blockSignals(true);
    m_pard->setChecked(pard.enablePARD);
    m_from->setValue(pard.fromValue);
    m_to->setValue(pard.toValue);
    m_pictures->setChecked(settings.media.galleryIncludePictures);
    m_pages->setChecked(settings.media.galleryIncludeHTML);
    for (std::size_t i = 0; i < m_sizes.size(); ++i)
        m_sizes[i]->setChecked(pard.*kSizeFlags[i]);
    for (QObject *control : controls)
        control->blockSignals(false);
    enableShapes();
    showThumbnailSize(thumbnailWidth);
    if (!m_gallery)
        return;
    m_gallery->settings = settings;
    m_gallery->pard = pard;
    setDirty();
}

void GalleryTab::showEvent(QShowEvent *event) {
    QWidget::showEvent(event);
    if (m_gallery && m_gallery->galleryDirty)
        load();
    emit lookedAt();
}

void GalleryTab::enableShapes() {
    const bool byShape = m_pard->isChecked();
    m_from->setEnabled(byShape);
    m_to->setEnabled(byShape);
    for (QCheckBox *size : m_sizes)
        size->setEnabled(byShape);
}

void GalleryTab::takeChoice() {
    enableShapes();
    if (!m_gallery)
        return;
    PardChoice &choice = m_gallery->pard;
    choice.enablePARD = m_pard->isChecked();
    choice.fromValue = static_cast<std::int16_t>(m_from->value());
    choice.toValue = static_cast<std::int16_t>(m_to->value());
    for (std::size_t i = 0; i < m_sizes.size(); ++i)
        choice.*kSizeFlags[i] = m_sizes[i]->isChecked();
    m_gallery->settings.media = {m_pictures->isChecked(), m_pages->isChecked()};
    emit choiceChanged(choice, m_gallery->settings.media);
    if (takeHost()) {
        m_gallery->galleryDirty = true;
        emit hostEntered(m_host->text().trimmed());
        if (!m_gallery->galleryDirty)
            return; // the table was loaded by it, and this with that
    }
    load();
}

/// True when the box says something new.
bool GalleryTab::takeHost() {
    const std::string host = fromQt(m_host->text().trimmed());
    RowChoice &choice = m_gallery->choice;
    if (choice.filterByHostValue == host)
        return false;
    choice.filterByHostValue = host;
    choice.filterByHostEnabled = !host.empty();
    return true;
}

void GalleryTab::setHost(const QString &host) {
    m_host->setText(host); // which isn't taken for the examiner's: nothing hears of it
    if (m_gallery && takeHost())
        m_gallery->galleryDirty = true;
}

void GalleryTab::load() {
    if (!m_gallery)
        return;
    m_gallery->among = m_rowSource ? m_rowSource() : nullptr;
    m_runTask({}, [this](TaskMonitor &task) { m_gallery->load(task); });
    m_model.reset();
    showState();
}

void GalleryTab::refresh() {
    if (!m_gallery)
        return;
    if (!m_gallery->galleryDirty)
        m_examiner.tell(galleryNotChanged());
    else
        load();
}

void GalleryTab::showPage(bool (Gallery::*turn)()) {
    if (!m_gallery)
        return;
    (m_gallery.get()->*turn)();
    m_model.reset();
    m_tiles->scrollToTop();
    showState();
}

void GalleryTab::showState() {
    const int count = m_gallery ? m_gallery->galleryADOPageCount() : 0;
    const int page = m_gallery ? m_gallery->galleryADOPage() : 0;
    m_page->setText(count > 0 ? tr("Page %1").arg(toQt(m_gallery->pageText())) : tr("No pages"));
    const UnreadRows unread = m_gallery ? m_gallery->unread() : UnreadRows();
    if (!unread.empty())
        m_page->setText(tr("%1; %2 could not be read")
                            .arg(m_page->text(), toQt(counted(unread.size(), "row"))));
    m_page->setToolTip(Qt::convertFromPlainText(toQt(noteOf(unread))));
    for (std::size_t i = 0; i < m_turn.size(); ++i)
        m_turn[i]->setEnabled(i < 2 ? page > 1 : page < count);
    m_tiles->setVisible(count > 0);
    m_empty->setVisible(count == 0);
    m_empty->setText(tr("No thumbnails to show. The button below draws the pictures and pages "
                        "whose content is there; a narrower choice above may hide the others."));
}

} // namespace nv

#include "ui/viewers/HexPane.h"

#include "platform/qt/QtText.h"
#include "ui/viewers/HexGrid.h"
#include "ui/widgets/FlowLayout.h"
#include "views/rows/CellText.h"

#include <QBoxLayout>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollBar>

#include <algorithm>
#include <initializer_list>

namespace nv {

namespace {

constexpr std::uint64_t kMostSeen = 4 * kHexRowBytes; ///< of marked bytes, in little height

enum Kind { anyCase, sameCase, asBytes }; ///< in the order of the box

QString sourceText() {
    return HexPane::tr("Sou&rce file at this record's offset");
}

} // namespace

HexPane::HexPane(RunTask runTask, FailureLog &log, QWidget *parent)
    : ViewerFrame("HexPane", *new HexGrid(log), parent), m_runTask(std::move(runTask)),
      m_grid(findChild<HexGrid *>()) {
    // In as many lines as the width asks for: on a small screen one would squeeze the boxes.
    auto *flow = new FlowLayout;
    flow->setContentsMargins(0, 0, 0, 0);
    bar().addLayout(flow, 1);
    addFind(*flow);
    addPlace(*flow);
    connect(m_grid, &HexGrid::cursorMoved, this, &HexPane::showPlace);
    connect(m_grid, &HexGrid::copyCut, this, [this](std::uint64_t chosen, std::uint64_t copied) {
        showNotice(
            tr("Only the first %L1 of %L2 chosen bytes were copied.").arg(copied).arg(chosen));
    });
    connect(m_grid, &HexGrid::unreadable, this,
            [this](const QString &reason) { showMissing(reason); });
}

void HexPane::addFind(FlowLayout &flow) {
    m_find = new QLineEdit;
    m_find->setObjectName(QStringLiteral("txtFindInHex"));
    m_find->setAccessibleName(tr("Find text or bytes"));
    m_find->setPlaceholderText(tr("Find text or bytes"));
    m_find->setClearButtonEnabled(true);
    m_kind = new QComboBox;
    m_kind->setObjectName(QStringLiteral("cbHexKind"));
    m_kind->setAccessibleName(tr("What is looked for"));
    m_kind->addItems({tr("Text"), tr("Text, match case"), tr("Bytes, as 4A 46")});
    m_kind->setToolTip(tr("Text is looked for in Windows-1252, UTF-8 and UTF-16"));
    auto *next = new QPushButton(tr("Find &Next"));
    next->setObjectName(QStringLiteral("btnFindInHex"));
    for (QWidget *box : std::initializer_list<QWidget *>{m_find, m_kind, next})
        flow.addWidget(box);
    connect(m_find, &QLineEdit::returnPressed, this, &HexPane::findNext);
    connect(next, &QPushButton::clicked, this, &HexPane::findNext);
}

void HexPane::addPlace(FlowLayout &flow) {
    m_offset = new QLineEdit;
    m_offset->setObjectName(QStringLiteral("txtHexOffset"));
    m_offset->setAccessibleName(tr("Go to offset"));
    m_offset->setPlaceholderText(tr("Go to offset"));
    m_offset->setToolTip(tr("Decimal, or hexadecimal as 0x1F40"));
    m_offset->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed); // the find box grows
    m_source = new QPushButton(sourceText());
    m_source->setObjectName(QStringLiteral("btnHexSource"));
    m_source->setCheckable(true);
    m_source->setToolTip(tr("Show the artefact file where the record stands in it, "
                            "not the cached content"));
    m_evidence = new QPushButton(tr("Choose the Folder Where the Evidence Lies Now..."));
    m_evidence->setObjectName(QStringLiteral("btnHexEvidence"));
    m_evidence->setToolTip(tr("The base folder of the project, as in the menu Tools"));
    m_evidence->hide();
    connect(m_evidence, &QPushButton::clicked, this, &HexPane::evidenceWanted);
    m_place = newLabel("labHexPlace");
    for (QWidget *box : std::initializer_list<QWidget *>{m_offset, m_source, m_place, m_evidence})
        flow.addWidget(box);
    connect(m_offset, &QLineEdit::returnPressed, this, &HexPane::goToTyped);
    connect(m_source, &QPushButton::toggled, this, [this](bool source) {
        // A button that is down hardly looks it in some themes.
        m_source->setText(source ? tr("Back to the &cached content") : sourceText());
        emit sourceToggled();
    });
}

void HexPane::showFile(const std::filesystem::path &file, std::uint64_t offset) {
    m_grid->setSource(std::make_unique<HexSource>(file));
    m_evidence->hide();
    m_matchAt.reset();
    showContent();
    m_grid->goTo(offset);
    showNotice(m_grid->source()->size() == 0 ? tr("The file is empty.") : QString());
}

bool HexPane::isShowing(const std::filesystem::path &file) const {
    return m_grid->source() && m_grid->source()->file().path() == file;
}

void HexPane::showAgain() {
    if (!m_grid->source())
        return;
    const HexMatch chosen = m_grid->selection();
    const int top = m_grid->verticalScrollBar()->value();
    m_grid->setSource(std::make_unique<HexSource>(m_grid->source()->file().path()));
    if (m_grid->source()->size() > 0)
        m_grid->select(chosen);
    m_grid->verticalScrollBar()->setValue(top);
}

void HexPane::showMissing(const QString &reason, Missing missing) {
    clear();
    m_evidence->setVisible(missing == Missing::evidence);
    // The bar stays live: the other file may be there.
    showContent();
    showNotice(reason);
}

void HexPane::clear() {
    m_grid->setSource(nullptr);
    m_evidence->hide();
    m_place->clear();
    showReason({});
}

bool HexPane::wantsSource() const {
    return m_source->isChecked();
}

void HexPane::askForSource() {
    m_source->setChecked(true);
}

void HexPane::mark(std::uint64_t offset, std::uint64_t length) {
    constexpr std::uint64_t kBelow = 4 * kHexRowBytes;
    length = std::max<std::uint64_t>(length, 1);
    m_grid->goTo(offset + std::min(length, kMostSeen) +
                 kBelow); // some of what follows is seen, too
    m_grid->select({offset, length});
}

void HexPane::openFind() {
    m_find->setFocus(Qt::ShortcutFocusReason);
    m_find->selectAll();
}

std::optional<std::vector<HexNeedle>> HexPane::needles() {
    const std::string text = fromQt(m_find->text());
    if (m_kind->currentIndex() != asBytes)
        return needlesOfText(text, m_kind->currentIndex() == anyCase ? LetterCase::ignored
                                                                     : LetterCase::exact);
    const auto needle = needleOfBytes(text);
    if (!needle) {
        showNotice(tr("Bytes are given in pairs of digits, such as 4A 46 49 46."));
        return std::nullopt;
    }
    return std::vector{*needle};
}

/// Goes on from the top when there is no further one.
void HexPane::findNext() {
    if (m_find->text().isEmpty())
        return openFind();
    const auto wanted = needles();
    if (!m_grid->source() || !wanted)
        return;
    // A match with the cursor on it has been seen; a byte that was gone to may begin one.
    const std::uint64_t from = m_grid->cursor() + (m_matchAt == m_grid->cursor() ? 1 : 0);
    std::optional<HexSearch> search; // nothing when the file couldn't be read
    bool fromTop = false;
    m_runTask({"SEARCHING", "Looking for text or bytes", fromQt(m_find->text()), ""},
              // Held: the grid lets its file go when the drive goes away meanwhile.
              [&, source = m_grid->source()](TaskMonitor &task) {
                  HexSearch found = findInFile(source->file(), *wanted, from, task);
                  fromTop = !found.match && !found.cancelled && from > 0;
                  if (fromTop)
                      found = findInFile(source->file(), *wanted, 0, task);
                  search = found;
              });
    if (!search)
        return showNotice(tr("The file could not be searched."));
    if (search->match && m_grid->source()) {
        m_grid->select(*search->match);
        m_matchAt = search->match->offset;
    }
    showNotice(search->match       ? fromTop ? tr("Found from the top.") : QString()
                     : search->cancelled ? tr("The search was cancelled.")
                                   : tr("Not found."));
}

void HexPane::goToTyped() {
    const auto offset = offsetIn(fromQt(m_offset->text()));
    if (!offset)
        return showNotice(tr("An offset is a decimal number, or hexadecimal as 0x1F40."));
    if (!m_grid->source())
        return;
    const bool behind = *offset >= m_grid->source()->size();
    m_grid->goTo(*offset);
    m_grid->setFocus();
    showNotice(behind ? tr("The file ends before this offset.") : QString());
}

void HexPane::showPlace() {
    const auto source = m_grid->source();
    if (!source)
        return m_place->clear();
    const auto placeText = [&source](std::uint64_t offset) {
        return tr("Offset %1 (%2) of %L3 bytes")
            .arg(offset)
            .arg(toQt("0x" + hexOffset(offset, 1)))
            .arg(source->size());
    };
    // Wide enough for the last offset: nothing moves to another line as the cursor moves.
    m_place->setMinimumWidth(m_place->fontMetrics().horizontalAdvance(placeText(source->size())));
    m_place->setText(placeText(m_grid->cursor()));
}

} // namespace nv

#include "ui/search/SearchBar.h"

#include "base/DisplayText.h"
#include "platform/qt/Icons.h"
#include "platform/qt/QtText.h"
#include "ui/search/HitCountsForm.h"
#include "ui/search/SearchNames.h"

#include <QBoxLayout>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QScopedValueRollback>
#include <QToolButton>

#include <algorithm>

namespace nv {

namespace {

constexpr std::size_t kMostNames = 12; ///< of kinds, and of hosts

/// In quotation marks, whatever it is.
QString conditionOf(ClauseKind kind, const std::string &name) {
    const QString quoted = toQt(name).replace(u'"', QStringLiteral("\"\""));
    return toQt(operatorWord(kind)) + u'"' + quoted + u'"';
}

/// Red that is read on either ground.
QColor faultColor(const QPalette &palette) {
    return palette.color(QPalette::Window).lightness() < 128 ? QColor(0xFF, 0x9A, 0x8A)
                                                             : QColor(0xB0, 0x1E, 0x1E);
}

} // namespace

SearchBar::SearchBar(QWidget *parent) : QWidget(parent) {
    setObjectName(QStringLiteral("searchBar"));
    m_text = new QLineEdit;
    m_text->setObjectName(QStringLiteral("txtSearch"));
    m_text->setAccessibleName(tr("Search"));
    m_text->setPlaceholderText(tr("Search; Enter: pages too"));
    m_text->setToolTip(
        tr("Looks through addresses, titles, hosts, notes and facts while you type;\n"
           "with Enter through the text of pages and headers too.\n"
           "\"phrase\"  -word  *part*  host:  browser:  kind:  tag:  hashset:  before:  after:  "
           "/expression/\nDates behind before: and after: go by the project's zone."));
    m_text->setClearButtonEnabled(true);
    m_text->addAction(icon("find"), QLineEdit::LeadingPosition);
    m_text->setMinimumWidth(200);
    m_text->setMaximumWidth(420);
    m_text->installEventFilter(this);
    m_hits = new QToolButton;
    m_hits->setObjectName(QStringLiteral("btnSearchHits"));
    m_hits->setText(tr("Hits"));
    m_hits->setAccessibleName(tr("Hits by kind and host"));
    m_hits->setToolTip(tr("How many were found, by kind and by host; a click looks there only"));
    m_hits->setFocusPolicy(Qt::TabFocus);
    m_hits->setPopupMode(QToolButton::InstantPopup);
    m_menu = new QMenu(this);
    m_menu->setObjectName(QStringLiteral("menuSearchHits"));
    m_hits->setMenu(m_menu);
    m_message = new QLabel;
    m_message->setObjectName(QStringLiteral("labSearchMessage"));
    m_message->setTextFormat(Qt::PlainText);
    m_message->setWordWrap(true);
    auto *row = new QHBoxLayout;
    row->addWidget(m_text, 3);
    row->addWidget(m_hits);
    row->addStretch();
    // In a line of its own it is read whole, and takes no more than that from the table.
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->addLayout(row);
    column->addWidget(m_message);
    m_names = new SearchNames(*m_text);
    connect(m_names, &SearchNames::chosen, this, &SearchBar::nameChosen);
    connect(m_text, &QLineEdit::textEdited, this, &SearchBar::typed);
    connect(m_text, &QLineEdit::textEdited, this, &SearchBar::edited);
    connect(m_text, &QLineEdit::returnPressed, this, [this] { emit entered(m_text->text()); });
    // Its cross doesn't count as an edit.
    connect(m_text, &QLineEdit::textChanged, this, [this](const QString &text) {
        if (text.isEmpty() && !m_isSet)
            emit typed(text);
    });
    clearCounts();
    showMessage({});
}

QString SearchBar::text() const {
    return m_text->text();
}

/// The box has to hear of it itself, or its cross would stay.
void SearchBar::setText(const QString &text) {
    const QScopedValueRollback quiet(m_isSet, true);
    m_text->setText(text);
}

void SearchBar::putText(const QString &text, int cursor) {
    setText(text);
    m_text->setCursorPosition(cursor);
    emit typed(text);
    emit edited();
}

int SearchBar::cursor() const {
    return m_text->cursorPosition();
}

void SearchBar::offerNames(const NamedCounts &names) {
    m_names->offer(m_text->hasFocus() || hasBoxFocus() ? names : NamedCounts());
}

void SearchBar::focusBox() {
    m_text->setFocus(Qt::ShortcutFocusReason);
    m_text->selectAll();
}

bool SearchBar::hasBoxFocus() const {
    return window()->focusWidget() == m_text;
}

void SearchBar::addCondition(const QString &condition) {
    setText(QStringLiteral("%1 %2").arg(m_text->text().trimmed(), condition));
    emit entered(m_text->text());
}

void SearchBar::showMessage(const QString &text, Tone tone) {
    m_tone = tone;
    m_isHint = false;
    showTone();
    m_message->setText(text);
    m_message->setToolTip(Qt::convertFromPlainText(text));
    m_message->setVisible(!text.isEmpty());
    m_text->setAccessibleDescription(
        text.isEmpty() ? tr("Addresses, titles, hosts, notes and facts while you type; pages and "
                            "headers too with Enter")
                       : text);
}

void SearchBar::showHint() {
    showMessage(tr("Type: word   \"a phrase\"   -without   *part*   host:name   browser:name   "
                   "kind:cookies   tag:name   hashset:name   after:2011-03   before:2011-03-15   "
                   "/expression/"));
    m_isHint = true;
}

/// One colour of its own, since the others are the theme's, which may change.
void SearchBar::showTone() {
    QPalette own;
    if (m_tone == Tone::fault)
        own.setColor(QPalette::WindowText, faultColor(QGuiApplication::palette()));
    m_message->setPalette(own);
}

void SearchBar::changeEvent(QEvent *event) {
    QWidget::changeEvent(event);
    // After the change is over: the style gives its labels their palettes back.
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::StyleChange)
        QMetaObject::invokeMethod(this, &SearchBar::showTone, Qt::QueuedConnection);
}

void SearchBar::addCounts(const QString &title, ClauseKind kind, const NamedCounts &counts) {
    if (counts.empty())
        return;
    m_menu->addSection(title);
    for (std::size_t at = 0; at < std::min(counts.size(), kMostNames); ++at) {
        const auto &[name, rows] = counts[at];
        QString shown = name.empty() ? tr("(none)") : toQt(displayText(name, 80));
        QAction *entry = m_menu->addAction(
            QStringLiteral("%1\t%L2").arg(shown.replace(u'&', QStringLiteral("&&"))).arg(rows));
        entry->setEnabled(!name.empty());
        const QString condition = conditionOf(kind, name);
        connect(entry, &QAction::triggered, this, [this, condition] { addCondition(condition); });
    }
    if (counts.size() > kMostNames)
        m_menu->addAction(tr("All %L1...").arg(counts.size()), this,
                          [this, title, kind, counts] { chooseFrom(title, kind, counts); });
}

void SearchBar::chooseFrom(const QString &title, ClauseKind kind, const NamedCounts &counts) {
    HitCountsForm form(tr("Hits %1").arg(title.toLower()), counts, window());
    form.exec();
    if (const auto name = form.chosen(); name && form.result() == QDialog::Accepted)
        addCondition(conditionOf(kind, *name));
}

void SearchBar::showCounts(const FoundCounts &counts) {
    m_menu->clear();
    addCounts(tr("By kind"), ClauseKind::kind, counts.byKind);
    addCounts(tr("By host"), ClauseKind::host, counts.byHost);
    emit menuWanted();
    m_hits->setEnabled(!m_menu->isEmpty());
}

/// Down and Escape lead out of the box, unless names are offered.
bool SearchBar::eventFilter(QObject *watched, QEvent *event) {
    if (event->type() == QEvent::FocusOut) {
        m_names->offer({});
        if (m_isHint)
            showMessage({});
    }
    if (event->type() != QEvent::KeyPress)
        return QWidget::eventFilter(watched, event);
    const int key = static_cast<QKeyEvent *>(event)->key();
    if (m_names->takeKey(key))
        return true;
    if (key == Qt::Key_Escape && !m_text->text().isEmpty()) {
        m_text->clear();
        return true;
    }
    if (key != Qt::Key_Down && key != Qt::Key_Escape)
        return QWidget::eventFilter(watched, event);
    if (m_isHint)
        showMessage({});
    emit left();
    return true;
}

} // namespace nv

#include "ui/frame/ViewerTabs.h"

#include "platform/qt/QtText.h"
#include "ui/frame/PaneWindow.h"
#include "ui/widgets/NoRow.h"

#include <QAbstractScrollArea>
#include <QBoxLayout>
#include <QEvent>
#include <QShortcut>
#include <QTabBar>
#include <QToolButton>

#include <algorithm>

namespace nv {

namespace {

constexpr int kAgain = 50; ///< milliseconds after which a locked window is asked again

QToolButton *newButton(const char *name, const QString &text, const QString &tip) {
    auto *button = new QToolButton;
    button->setObjectName(QLatin1String(name));
    button->setText(text);
    button->setToolTip(tip);
    button->setAutoRaise(true);
    button->setFocusPolicy(Qt::TabFocus);
    return button;
}

/// Two parts of the text's colour and one of the ground's: dim, and still easy to read.
QColor dimColour(const QPalette &palette) {
    // Of a window that isn't locked, which it may be now.
    const QColor text = palette.color(QPalette::Active, QPalette::WindowText);
    const QColor ground = palette.color(QPalette::Active, QPalette::Window);
    const auto mixed = [](int more, int less) { return (more * 2 + less) / 3; };
    return {mixed(text.red(), ground.red()), mixed(text.green(), ground.green()),
            mixed(text.blue(), ground.blue())};
}

/// What is read in a pane, beside the bars around it.
QWidget *contentOf(const QWidget &pane) {
    for (QWidget *each : pane.findChildren<QWidget *>())
        if (each->isVisible() && each->isEnabled() &&
            (qobject_cast<QAbstractScrollArea *>(each) || each->inherits("QWebEngineView")))
            return each;
    return nullptr;
}

} // namespace

ViewerTabs::ViewerTabs(RunCommand run, std::function<bool()> isBusy, QWidget *parent)
    : QTabWidget(parent), m_run(std::move(run)), m_isBusy(std::move(isBusy)) {
    setObjectName(QStringLiteral("viewerTabs"));
    setDocumentMode(true);
    setUsesScrollButtons(true);
    setCornerWidget(newButtons());
    addKeys();
    m_soon.setSingleShot(true);
    connect(&m_soon, &QTimer::timeout, this, &ViewerTabs::showFront);
    connect(this, &QTabWidget::currentChanged, this, &ViewerTabs::takeFront);
}

QWidget *ViewerTabs::newButtons() {
    m_pin = newButton("btnViewerPin", tr("Pin"),
                      tr("Pinned: this tab stays in front. Otherwise the tab that fits the record "
                         "comes to the front by itself"));
    m_pin->setCheckable(true);
    auto *window = newButton("btnViewerWindow", tr("Own window"),
                             tr("Show this pane in a window of its own (Shift+F11)"));
    m_full = newButton("btnViewerFull", tr("Full size"),
                       tr("Let the panes have the whole window (F11)"));
    m_full->setCheckable(true);
    auto *buttons = new QWidget;
    auto *row = new QHBoxLayout(buttons);
    row->setContentsMargins(0, 0, 4, 0);
    row->setSpacing(2);
    for (QToolButton *button : {m_pin, window, m_full})
        row->addWidget(button);
    connect(m_pin, &QToolButton::toggled, this, [this](bool pinned) {
        if (!pinned)
            look();
        emit pinnedChanged(pinned);
    });
    connect(window, &QToolButton::clicked, this, &ViewerTabs::detachFront);
    connect(m_full, &QToolButton::toggled, this, &ViewerTabs::fullSizeWanted);
    return buttons;
}

void ViewerTabs::addKeys() {
    connect(new QShortcut(Qt::Key_F11, this), &QShortcut::activated, m_full, &QToolButton::click);
    connect(new QShortcut(Qt::SHIFT | Qt::Key_F11, this), &QShortcut::activated, this,
            &ViewerTabs::detachFront);
    constexpr int kNumbers = 9;
    for (int number = 1; number <= kNumbers; ++number)
        connect(new QShortcut(QKeySequence(Qt::ALT | Qt::Key(Qt::Key_0 + number)), this),
                &QShortcut::activated, this, [this, number] {
                    if (number > count())
                        return;
                    setCurrentIndex(number - 1);
                    showFront(); // what is typed into has to be filled before
                    if (currentWidget()->focusProxy())
                        currentWidget()->setFocus(Qt::ShortcutFocusReason);
                });
}

void ViewerTabs::addPane(QWidget &widget, RecordPane &pane, const QString &title,
                         const char *procedure) {
    m_panes.push_back({&widget, &pane, procedure});
    // The toolkit asks for the height of a scroll bar, which a low window hasn't got.
    for (auto *content : widget.findChildren<QAbstractScrollArea *>())
        if (content->minimumHeight() == 0)
            content->setMinimumHeight(3 * fontMetrics().lineSpacing());
    m_choosing = true;
    addTab(&widget, title);
    m_choosing = false;
    markTabs();
}

void ViewerTabs::addAside(QWidget &widget, RecordPane &pane, const char *procedure) {
    m_panes.push_back({&widget, &pane, procedure});
}

void ViewerTabs::setCardTab(QWidget *card) {
    m_choosing = true;
    if (card != nullptr)
        insertTab(0, card, tr("Card"));
    else if (m_card != nullptr)
        removeTab(indexOf(m_card));
    if (card != nullptr && !isPinned())
        setCurrentIndex(0);
    m_choosing = false;
    m_card = card;
    markTabs();
    m_soon.start(0);
}

void ViewerTabs::setLook(std::function<std::optional<ViewedRecord>(UrlId)> look) {
    m_look = std::move(look);
}

bool ViewerTabs::isUp(const Entry &entry) const {
    return indexOf(entry.widget) < 0 ? entry.widget->isVisibleTo(entry.widget->window())
                                     : entry.widget == currentWidget() && isVisibleTo(window());
}

void ViewerTabs::setRecord(std::optional<UrlId> id) {
    // The table was loaded anew around the row: what is read stays in front.
    const bool isSame = id && id == m_id;
    m_id = id;
    if (!m_id)
        m_soon.stop();
    if (!isSame)
        look();
    for (const Entry &entry : m_panes)
        if (!m_id || (!isSame && !isUp(entry)))
            entry.pane->clear();
    refresh();
}

void ViewerTabs::refresh() {
    for (Entry &entry : m_panes)
        entry.isStale = true;
    showChange();
}

void ViewerTabs::refreshMarks() {
    for (Entry &entry : m_panes)
        entry.isStale = entry.isStale || entry.pane->showsMarks();
    showChange();
}

void ViewerTabs::showChange() {
    m_viewed = m_id && m_look ? m_look(*m_id) : std::nullopt;
    markTabs();
    if (m_id)
        m_soon.start(0);
}

/// Whoever goes to a tab wants it to stay.
void ViewerTabs::takeFront() {
    if (!m_choosing)
        setPinned(true);
    if (m_id)
        m_soon.start(0);
}

void ViewerTabs::showFront() {
    if (m_isBusy())
        return m_soon.start(kAgain);
    for (Entry &entry : m_panes)
        if (m_id && entry.isStale && isUp(entry)) {
            entry.isStale = false;
            m_run(entry.procedure, [&] { entry.pane->showRecord(*m_id); });
        }
}

void ViewerTabs::look() {
    m_viewed = m_id && m_look ? m_look(*m_id) : std::nullopt;
    const auto best = m_viewed ? bestViewer(*m_viewed) : std::nullopt;
    const bool readsCard = m_card != nullptr && currentWidget() == m_card;
    QWidget *pane = best && !isPinned() && !readsCard ? paneOf(*best) : nullptr;
    if (pane == nullptr || indexOf(pane) < 0)
        return;
    m_choosing = true;
    setCurrentWidget(pane);
    m_choosing = false;
}

QWidget *ViewerTabs::paneOf(Viewer viewer) const {
    const auto *const named = std::ranges::find(kViewers, viewer, &ViewerName::viewer);
    const QString name = toQt(named->pane);
    const auto found = std::ranges::find_if(
        m_panes, [&name](const Entry &entry) { return entry.widget->objectName() == name; });
    return found == m_panes.end() ? nullptr : found->widget;
}

bool ViewerTabs::enterBest() {
    const auto best = m_viewed ? bestViewer(*m_viewed) : std::nullopt;
    QWidget *pane = best ? paneOf(*best) : nullptr;
    if (pane == nullptr)
        return false;
    if (indexOf(pane) >= 0)
        showOnce(*pane);
    showFront(); // there is nothing to go to before
    pane->activateWindow();
    if (QWidget *content = contentOf(*pane))
        content->setFocus(Qt::ShortcutFocusReason);
    return true;
}

void ViewerTabs::showOnce(QWidget &pane) {
    m_choosing = true;
    setCurrentWidget(&pane);
    m_choosing = false;
    m_soon.start(0);
}

void ViewerTabs::setEmpty(QWidget &pane, const QString &why) {
    for (Entry &entry : m_panes)
        if (entry.widget == &pane)
            entry.whyEmpty = why;
    markTabs();
}

void ViewerTabs::markTabs() {
    if (m_card != nullptr)
        markTab(indexOf(m_card), !m_id, m_id ? QString() : noRowText());
    for (const Entry &entry : m_panes) {
        const int place = indexOf(entry.widget);
        const auto *const named = std::ranges::find_if(kViewers, [&](const ViewerName &each) {
            return entry.widget->objectName() == toQt(each.pane);
        });
        if (named != kViewers.end())
            markViewer(place, named->viewer);
        else if (entry.widget != m_card)
            markTab(place, !entry.whyEmpty.isEmpty(), entry.whyEmpty);
    }
}

void ViewerTabs::markViewer(int place, Viewer viewer) {
    if (!m_id)
        return markTab(place, true, noRowText());
    const bool isOfUse = !m_viewed || nv::isOfUse(viewer, *m_viewed);
    const bool isEmpty = m_viewed && !hasSomething(viewer, *m_viewed);
    markTab(place, !isOfUse,
            !isEmpty  ? QString()
            : isOfUse ? tr("No note of this record yet: write one here")
                      : tr("Nothing for this record"));
}

void ViewerTabs::markTab(int place, bool isDim, const QString &tip) {
    if (place < 0)
        return; // it stands elsewhere
    tabBar()->setTabTextColor(place, isDim ? dimColour(palette()) : QColor());
    setTabToolTip(place, tip);
}

void ViewerTabs::changeEvent(QEvent *event) {
    QTabWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        markTabs();
}

bool ViewerTabs::isPinned() const {
    return m_pin->isChecked();
}

void ViewerTabs::setPinned(bool pinned) {
    m_pin->setChecked(pinned);
}

bool ViewerTabs::isFullSize() const {
    return m_full->isChecked();
}

void ViewerTabs::setFullSize(bool full) {
    m_full->setChecked(full);
}

void ViewerTabs::detachFront() {
    QWidget *pane = currentWidget();
    if (pane == nullptr || pane == m_card || count() < 2)
        return;
    const int place = currentIndex();
    const QString title = tabText(place);
    m_choosing = true;
    removeTab(place);
    m_choosing = false;
    auto *own = new PaneWindow(*pane, title, window());
    connect(own, &PaneWindow::leaving, this, [this, pane, place, title] {
        m_choosing = true;
        insertTab(std::min(place, count()), pane, title);
        m_choosing = false;
        markTabs();
    });
    own->show();
    m_soon.start(0);
}

} // namespace nv

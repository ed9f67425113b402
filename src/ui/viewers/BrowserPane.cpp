#include "ui/viewers/BrowserPane.h"

#include "platform/qt/QtText.h"
#include "ui/viewers/ViewedPage.h"
#include "ui/widgets/NoRow.h"
#include "views/rows/CellText.h"

#include <QBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QStackedWidget>
#include <QTimer>
#include <QWebEngineLoadingInfo>
#include <QWebEngineView>

namespace nv {

namespace {

constexpr std::size_t kMostAddress = 2000; ///< characters
constexpr int kCountStep = 300;            ///< milliseconds between looks at the count of refusals

QLabel *newLabel(const char *name) {
    auto *label = new QLabel;
    label->setObjectName(QLatin1String(name));
    // Messages quote addresses of evidence, which are never rendered as rich text.
    label->setTextFormat(Qt::PlainText);
    return label;
}

QString blockedText(const QString &address) {
    return address.isEmpty() ? BrowserPane::tr("URL BLOCKED: a link that opens another window")
                             : QStringLiteral("URL BLOCKED: ") + toQt(displayText(fromQt(address)));
}

QString refusedText(std::uint64_t count) {
    if (count == 0)
        return BrowserPane::tr("No request refused.");
    if (count == 1)
        return BrowserPane::tr(
            "1 request refused: this page asked for a thing outside of its folder.");
    return BrowserPane::tr(
               "%L1 requests refused: this page asked for things outside of its folder.")
        .arg(count);
}

} // namespace

BrowserPane::BrowserPane(QWidget *parent) : QWidget(parent) {
    setObjectName(QStringLiteral("BrowserPane"));
    m_reason = newLabel("labBrowserReason");
    m_reason->setAlignment(Qt::AlignTop);
    m_reason->setWordWrap(true);
    m_reason->setContentsMargins(8, 6, 8, 6);
    m_pages = new QStackedWidget;
    m_pages->setObjectName(QStringLiteral("browserPages"));
    m_pages->addWidget(m_reason);
    m_refused = newLabel("labRefused");
    m_refused->setContentsMargins(8, 3, 8, 3);
    m_count = new QTimer(this);
    connect(m_count, &QTimer::timeout, this, &BrowserPane::showRefused);

    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(newLocationBar());
    column->addWidget(m_pages, 1);
    column->addWidget(m_refused);
    clear();
}

/// The page goes before the profile that it works with.
BrowserPane::~BrowserPane() {
    delete m_view;
}

QWidget *BrowserPane::newLocationBar() {
    m_back = new QPushButton(tr("Bac&k to Page"));
    m_back->setObjectName(QStringLiteral("btnBrowserBack"));
    connect(m_back, &QPushButton::clicked, this, &BrowserPane::goBack);
    m_kind = newLabel("labBrowserKind");
    m_location = new QLineEdit;
    m_location->setObjectName(QStringLiteral("txtLocation"));
    m_location->setAccessibleName(tr("Location of the page"));
    m_location->setReadOnly(true);
    auto *bar = new QWidget;
    bar->setObjectName(QStringLiteral("locationBar"));
    auto *row = new QHBoxLayout(bar);
    row->setContentsMargins(6, 4, 6, 4);
    row->addWidget(m_back);
    row->addWidget(m_kind);
    row->addWidget(m_location, 1);
    return bar;
}

void BrowserPane::startEngine() {
    m_profile = std::make_unique<GuardedProfile>();
    m_view = new QWebEngineView;
    m_view->setObjectName(QStringLiteral("browserView"));
    m_view->setAccessibleName(tr("Page"));
    // Its menu saves pages and opens windows.
    m_view->setContextMenuPolicy(Qt::NoContextMenu);
    auto *page = new ViewedPage(*m_profile, m_view);
    m_view->setPage(page);
    m_pages->addWidget(m_view);
    connect(page, &ViewedPage::blocked, this, [this](const QString &address) {
        // The very page that was asked for is refused when it has gone meanwhile.
        if (address == m_page.toString())
            return QTimer::singleShot(
                0, this, [this] { showFailure(tr("The page can't be shown: it is gone.")); });
        showRefused();
        emit navigationBlocked(blockedText(address));
    });
    connect(page, &QWebEnginePage::renderProcessTerminated, this,
            [this] { showFailure(tr("The page crashed the engine that draws it.")); });
    // One that is left before it is there was not meant to be shown any more.
    connect(page, &QWebEnginePage::loadingChanged, this, [this](const QWebEngineLoadingInfo &info) {
        if (info.status() == QWebEngineLoadingInfo::LoadFailedStatus && info.url() == m_page)
            showFailure(tr("The page can't be shown: %1").arg(info.errorString()));
    });
    connect(m_view, &QWebEngineView::urlChanged, this, &BrowserPane::showLocation);
    connect(m_view, &QWebEngineView::loadFinished, this, [this] {
        showLocation();
        showRefused();
        emit pageShown();
    });
}

void BrowserPane::showPage(const std::filesystem::path &page, const QString &kind,
                           const std::string &address) {
    m_address = toQt(displayText(address, kMostAddress));
    if (!m_view)
        startEngine();
    m_profile->guard().protect(page);
    m_page = QUrl::fromLocalFile(pathToQt(page));
    emit pageLeft();
    m_view->load(m_page);
    m_pages->setCurrentWidget(m_view);
    m_kind->setText(kind);
    m_count->start(kCountStep);
    showRefused();
}

void BrowserPane::showReason(const QString &text) {
    m_count->stop();
    if (m_view)
        m_view->setHtml({}); // what was shown before is gone, and asks for nothing more
    m_pages->setCurrentWidget(m_reason);
    m_reason->setText(text.isEmpty() ? noRowText() : text);
    m_kind->clear();
    m_location->clear();
    m_refused->clear();
    m_back->setEnabled(false);
    emit pageLeft();
}

QWebEnginePage *BrowserPane::page() const {
    return m_view && m_pages->currentWidget() == m_view ? m_view->page() : nullptr;
}

void BrowserPane::showFailure(const QString &reason) {
    showReason(reason);
    emit pageFailed(reason);
}

std::uint64_t BrowserPane::refused() const {
    return m_profile ? m_profile->guard().refused() : 0;
}

void BrowserPane::goBack() {
    m_view->load(m_page);
}

void BrowserPane::showLocation() {
    if (m_pages->currentWidget() != m_view)
        return;
    const bool isPage = m_view->url() == m_page;
    const QString file = toQt(displayText(fromQt(m_view->url().toLocalFile())));
    if (m_address.isEmpty())
        m_location->setText(file);
    else
        m_location->setText(isPage ? m_address
                                   : tr("%1, a file of the page").arg(file.section(u'/', -1)));
    m_location->setCursorPosition(0);
    m_back->setEnabled(!isPage);
}

void BrowserPane::showRefused() {
    if (m_pages->currentWidget() == m_view)
        m_refused->setText(refusedText(refused()));
}

} // namespace nv

#include "ui/viewers/ReportPane.h"

#include "platform/qt/QtText.h"
#include "ui/viewers/BrowserPane.h"

#include <QBoxLayout>
#include <QPushButton>

namespace nv {

namespace {

std::filesystem::path pathOf(const std::string &reportURL) {
    const QUrl url(toQt(reportURL));
    return url.isLocalFile() ? pathFromQt(url.toLocalFile()) : std::filesystem::path(reportURL);
}

} // namespace

ReportPane::ReportPane(std::function<std::string()> reportURL, QWidget *parent)
    : QWidget(parent), m_reportURL(std::move(reportURL)) {
    setObjectName(QStringLiteral("ReportPane"));
    m_browser = new BrowserPane;
    m_browser->setObjectName(QStringLiteral("ReportBrowser"));
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(m_browser);
    m_large = new QPushButton(tr("See it large..."));
    m_large->setObjectName(QStringLiteral("btnReportLarge"));
    m_large->setToolTip(tr("Shows the report at the size of the window"));
    column->addWidget(m_large, 0, Qt::AlignRight);
    connect(m_large, &QPushButton::clicked, this, &ReportPane::largeWanted);
    refresh();
}

void ReportPane::showRecord(UrlId) {
    refresh();
}

void ReportPane::refresh() {
    const std::string report = m_reportURL();
    std::error_code ignored;
    const bool isThere = std::filesystem::is_regular_file(pathOf(report), ignored);
    if (report.empty())
        m_browser->showReason(tr("No report has been made of this project since the program "
                                 "started. Tick the records that belong into it and choose the "
                                 "report command of the menu: it shows here when it is done."));
    else if (!isThere)
        m_browser->showReason(tr("The last report isn't there any more: %1").arg(toQt(report)));
    else if (report != m_shown)
        m_browser->showPage(pathOf(report), tr("Report"));
    m_shown = isThere ? report : std::string();
    m_large->setVisible(isThere);
    emit refreshed(isThere);
}

} // namespace nv

#include "ui/frame/RecentPane.h"

#include "base/DisplayText.h"
#include "base/Files.h"
#include "platform/qt/Icons.h"
#include "platform/qt/QtText.h"

#include <QBoxLayout>
#include <QCommandLinkButton>
#include <QDateTime>
#include <QFileInfo>
#include <QLabel>
#include <QToolButton>

namespace nv {

namespace {

constexpr int kTextWidth = 250; // pixels; it isn't to be wrapped, nor to press on the steps

/// Names may hold "&", which buttons take for a mnemonic.
QString literal(QString text) {
    return text.replace(u'&', QStringLiteral("&&"));
}

QString shown(const std::filesystem::path &path) {
    return toQt(displayText(textOf(path)));
}

/// By the clock of this computer, which the examiner knows.
QString changedText(const QFileInfo &file) {
    const QDateTime changed = file.lastModified();
    return RecentPane::tr("changed %1 %2")
        .arg(changed.toString(QStringLiteral("yyyy-MM-dd hh:mm")), changed.timeZoneAbbreviation());
}

} // namespace

RecentPane::RecentPane(QWidget *parent)
    : QWidget(parent), m_none(new QLabel(tr("No project was open yet."))), m_list(nullptr) {
    setObjectName(QStringLiteral("RecentPane"));
    auto *heading = new QLabel(tr("Recent projects"));
    QFont bold = heading->font();
    bold.setBold(true);
    heading->setFont(bold);
    m_none->setObjectName(QStringLiteral("labNoRecent"));
    m_list = new QVBoxLayout(this);
    m_list->setContentsMargins(0, 0, 0, 0);
    m_list->setSpacing(2);
    m_list->addWidget(heading);
    m_list->addWidget(m_none);
    m_list->addStretch();
}

void RecentPane::showFiles(const std::vector<RecentFile> &files) {
    for (QWidget *row : m_rows) {
        row->setParent(nullptr);
        row->deleteLater(); // in it may be what was clicked
    }
    m_rows.clear();
    for (const RecentFile &file : files)
        addFile(file.path);
    m_none->setVisible(files.empty());
}

void RecentPane::addFile(const std::filesystem::path &path) {
    const QFileInfo file(pathToQt(path));
    const bool isThere = file.exists();
    const QString name = shown(path.filename());
    const QString folder =
        fontMetrics().elidedText(shown(path.parent_path()), Qt::ElideMiddle, kTextWidth);
    QFont bold = font(); // as such buttons write the first line
    bold.setBold(true);
    auto *open = new QCommandLinkButton(
        literal(QFontMetrics(bold).elidedText(name, Qt::ElideMiddle, kTextWidth)),
        literal(folder) + u'\n' + (isThere ? changedText(file) : tr("is no longer there")));
    const int number = static_cast<int>(m_rows.size()) + 1;
    open->setObjectName(QStringLiteral("btnRecent%1").arg(number));
    open->setAccessibleName(isThere ? tr("Open %1").arg(name)
                                    : tr("%1, which is no longer there").arg(name));
    open->setToolTip(shown(path).toHtmlEscaped());
    open->setIcon(icon("open"));
    constexpr int kLines = 3;
    open->setMinimumHeight((kLines * fontMetrics().lineSpacing()) + 20); // no line is cut
    open->setEnabled(isThere);
    open->setAutoDefault(true); // Enter works as it does in a dialog
    connect(open, &QPushButton::clicked, this, [this, path] { emit openWanted(path); });
    auto *remove = new QToolButton;
    remove->setObjectName(QStringLiteral("btnForget%1").arg(number));
    remove->setText(QStringLiteral("\u00D7"));
    remove->setAutoRaise(true);
    remove->setFocusPolicy(Qt::StrongFocus);
    remove->setAccessibleName(tr("Take %1 off the list").arg(name));
    remove->setToolTip(tr("Take it off the list; the file stays"));
    connect(remove, &QToolButton::clicked, this, [this, path] { emit removalWanted(path); });
    auto *row = new QWidget;
    auto *line = new QHBoxLayout(row);
    line->setContentsMargins(0, 0, 0, 0);
    line->addWidget(open, 1);
    line->addWidget(remove);
    m_list->insertWidget(m_list->count() - 1, row);
    m_rows.push_back(row);
}

} // namespace nv

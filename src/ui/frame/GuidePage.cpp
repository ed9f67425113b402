#include "ui/frame/GuidePage.h"

#include <QDir>
#include <QFileInfo>
#include <QImage>
#include <QScrollBar>
#include <QTextBlock>
#include <QTextFrame>
#include <QTextTable>

namespace nv {

namespace {

constexpr int kMargin = 16; ///< pixels around the page

/// As links name a heading: lower case, blanks as dashes, no other punctuation.
QString anchorOf(const QString &heading) {
    QString anchor;
    for (const QChar c : heading.toLower()) {
        if (c.isLetterOrNumber() || c == u'-' || c == u'_')
            anchor += c;
        else if (c == u' ')
            anchor += u'-';
    }
    return anchor;
}

void collectTables(QTextFrame *frame, QList<QTextTable *> &tables) {
    for (QTextFrame *child : frame->childFrames()) {
        if (auto *table = qobject_cast<QTextTable *>(child))
            tables += table;
        collectTables(child, tables);
    }
}

/// A document on show is laid out anew with each word that its Markdown adds, which takes a second
/// for a page; one that nobody looks at isn't.
QString htmlOf(const QByteArray &markdown) {
    QTextDocument unseen;
    unseen.setMarkdown(QString::fromUtf8(markdown));
    return unseen.toHtml();
}

} // namespace

GuidePage::GuidePage(const QString &root, QWidget *parent)
    : QTextBrowser(parent), m_root(QDir::cleanPath(root)) {
    setObjectName(QStringLiteral("guidePage"));
    setAccessibleName(tr("Page of the guide"));
    setOpenExternalLinks(false);
    setFrameShape(QFrame::NoFrame);
    // Pictures are as wide as the page, which a bar that comes later would make narrower.
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    document()->setDocumentMargin(kMargin);
    // Pages that are gone back to come this way only.
    connect(this, &QTextBrowser::sourceChanged, this, &GuidePage::formatTables);
}

bool GuidePage::isOfGuide(const QUrl &url) const {
    if (!url.isLocalFile())
        return false;
    const QString path = QDir::cleanPath(url.toLocalFile());
    return path.startsWith(m_root + u'/') && QFileInfo(path).isFile();
}

QVariant GuidePage::loadResource(int type, const QUrl &name) {
    const QUrl url = m_current.resolved(name);
    if (!isOfGuide(url))
        return {};
    if (type != QTextDocument::ImageResource) {
        m_current = url.adjusted(QUrl::RemoveFragment);
        return htmlOf(QTextBrowser::loadResource(type, url).toByteArray());
    }
    QImage picture(url.toLocalFile());
    const int room = viewport()->width() - 2 * kMargin;
    return room > 0 && picture.width() > room
               ? picture.scaledToWidth(room, Qt::SmoothTransformation)
               : picture;
}

void GuidePage::doSetSource(const QUrl &url, QTextDocument::ResourceType /*type*/) {
    QUrl page = m_current.resolved(url);
    const QString anchor = page.fragment(QUrl::FullyDecoded);
    page.setFragment({});
    if (!isOfGuide(page)) {
        emit linkRefused(url.toString());
        return;
    }
    if (page != m_current)
        QTextBrowser::doSetSource(page, QTextDocument::HtmlResource);
    if (anchor.isEmpty())
        verticalScrollBar()->setValue(0);
    else
        goToHeading(anchor);
}

/// Links and lines of tables have the colours of the theme in which the page was read.
void GuidePage::changeEvent(QEvent *event) {
    QTextBrowser::changeEvent(event);
    if (event->type() != QEvent::PaletteChange || m_current.isEmpty())
        return;
    const int place = verticalScrollBar()->value();
    m_current.clear(); // the same page isn't read again otherwise
    reload();
    verticalScrollBar()->setValue(place);
}

/// Tables of Markdown come without lines, one cell's text right beside the next one's.
void GuidePage::formatTables() {
    QList<QTextTable *> tables;
    collectTables(document()->rootFrame(), tables);
    QTextCursor edit(document()); // all of it is laid out once
    edit.beginEditBlock();
    for (QTextTable *table : tables) {
        QTextTableFormat format = table->format();
        format.setCellPadding(4);
        format.setCellSpacing(0);
        format.setBorder(1);
        format.setBorderCollapse(true);
        format.setBorderStyle(QTextFrameFormat::BorderStyle_Solid);
        format.setBorderBrush(palette().brush(QPalette::Mid));
        table->setFormat(format);
    }
    edit.endEditBlock();
}

void GuidePage::goToHeading(const QString &anchor) {
    for (QTextBlock block = document()->begin(); block.isValid(); block = block.next()) {
        if (block.blockFormat().headingLevel() == 0 || anchorOf(block.text()) != anchor)
            continue;
        setTextCursor(QTextCursor(document()->lastBlock()));
        setTextCursor(QTextCursor(block)); // coming from below it ends at the top
        return;
    }
}

} // namespace nv

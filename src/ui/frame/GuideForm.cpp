#include "ui/frame/GuideForm.h"

#include "platform/qt/QtText.h"
#include "platform/qt/WithinScreen.h"
#include "ui/frame/GuidePage.h"

#include <QBoxLayout>
#include <QDialogButtonBox>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QShortcut>
#include <QSplitter>
#include <QTextDocument>

#include <algorithm>

namespace nv {

namespace {

constexpr const char *kFirst = "index.md";

/// The heading of a page, which is its first line.
QString titleOf(const QString &text) {
    return text.section(u'\n', 0, 0).trimmed();
}

QPushButton *newTurn(const char *name, const QString &text, const QKeySequence &keys) {
    auto *button = new QPushButton(text);
    button->setObjectName(QLatin1String(name));
    button->setShortcut(keys);
    button->setToolTip(keys.toString(QKeySequence::NativeText));
    button->setAutoDefault(false);
    return button;
}

} // namespace

GuideForm::GuideForm(const std::filesystem::path &folder, QWidget *parent) : QDialog(parent) {
    setObjectName(QStringLiteral("GuideForm"));
    setWindowTitle(tr("The User's Guide"));
    setWindowFlag(Qt::WindowMaximizeButtonHint);
    resizeWithinScreen(*this, {940, 520});
    const QString pages = pathToQt(std::filesystem::weakly_canonical(folder));
    m_page = new GuidePage(QDir::cleanPath(pages + QStringLiteral("/..")));
    auto *halves = new QSplitter;
    halves->setObjectName(QStringLiteral("guideHalves"));
    halves->setChildrenCollapsible(false);
    halves->addWidget(newListSide());
    halves->addWidget(newPageSide());
    halves->setStretchFactor(1, 1);
    halves->setSizes({220, 720});
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(halves);
    readPages(pages);
    listPages();
    showPage(QStringLiteral("index"));
}

QWidget *GuideForm::newListSide() {
    auto *side = new QWidget;
    auto *column = new QVBoxLayout(side);
    auto *label = new QLabel(tr("&Find in all pages:"));
    m_find = new QLineEdit;
    m_find->setObjectName(QStringLiteral("txtGuideFind"));
    m_find->setAccessibleName(tr("Find in all pages"));
    m_find->setPlaceholderText(tr("A word, then Enter"));
    m_find->setClearButtonEnabled(true);
    label->setBuddy(m_find);
    m_found = new QLabel;
    m_found->setObjectName(QStringLiteral("labGuideFound"));
    m_found->setWordWrap(true);
    m_found->setTextFormat(Qt::PlainText);
    m_list = new QListWidget;
    m_list->setObjectName(QStringLiteral("lstGuidePages"));
    m_list->setAccessibleName(tr("Pages of the guide"));
    column->addWidget(label);
    column->addWidget(m_find);
    column->addWidget(m_found);
    column->addWidget(m_list, 1);
    connect(m_find, &QLineEdit::textChanged, this, &GuideForm::listPages);
    connect(m_find, &QLineEdit::returnPressed, this, &GuideForm::findNext);
    connect(new QShortcut(QKeySequence::Find, this), &QShortcut::activated, this, [this] {
        m_find->setFocus();
        m_find->selectAll();
    });
    connect(new QShortcut(QKeySequence::FindNext, this), &QShortcut::activated, this,
            &GuideForm::findNext);
    connect(m_list, &QListWidget::itemClicked, this, [this](const QListWidgetItem *item) {
        m_page->setSource(QUrl::fromLocalFile(item->data(Qt::UserRole).toString()));
    });
    connect(m_list, &QListWidget::itemActivated, m_list, &QListWidget::itemClicked);
    return side;
}

QWidget *GuideForm::newPageSide() {
    QPushButton *back = newTurn("btnGuideBack", tr("&Back"), QKeySequence::Back);
    QPushButton *forward = newTurn("btnGuideForward", tr("F&orward"), QKeySequence::Forward);
    QPushButton *first = newTurn("btnGuideFirst", tr("First &Page"), Qt::ALT | Qt::Key_Home);
    auto *close = new QPushButton(tr("&Close"));
    close->setObjectName(QStringLiteral("btnGuideClose"));
    close->setAutoDefault(false);
    back->setEnabled(false);
    forward->setEnabled(false);
    auto *row = new QHBoxLayout;
    for (QPushButton *button : {back, forward, first})
        row->addWidget(button);
    row->addStretch(1);
    row->addWidget(close);
    auto *side = new QWidget;
    auto *column = new QVBoxLayout(side);
    column->addLayout(row);
    column->addWidget(m_page, 1);
    connect(back, &QPushButton::clicked, m_page, &QTextBrowser::backward);
    connect(forward, &QPushButton::clicked, m_page, &QTextBrowser::forward);
    connect(m_page, &QTextBrowser::backwardAvailable, back, &QWidget::setEnabled);
    connect(m_page, &QTextBrowser::forwardAvailable, forward, &QWidget::setEnabled);
    connect(first, &QPushButton::clicked, this, [this] { showPage(QStringLiteral("index")); });
    connect(close, &QPushButton::clicked, this, &QDialog::reject);
    connect(m_page, &QTextBrowser::sourceChanged, this, &GuideForm::followPage);
    connect(m_page, &GuidePage::linkRefused, this, [this](const QString &address) {
        m_found->setText(tr("Not in the guide: %1").arg(address));
        m_found->setVisible(true);
    });
    return side;
}

/// The first page comes first, the others by their titles.
void GuideForm::readPages(const QString &folder) {
    const QDir dir(folder);
    for (const QString &name : dir.entryList({QStringLiteral("*.md")}, QDir::Files)) {
        QFile file(dir.filePath(name));
        if (!file.open(QIODevice::ReadOnly))
            continue;
        QTextDocument page;
        page.setMarkdown(QString::fromUtf8(file.readAll()));
        const QString text = page.toPlainText();
        m_pages.push_back({dir.filePath(name), titleOf(text), text});
    }
    std::sort(m_pages.begin(), m_pages.end(), [](const Page &a, const Page &b) {
        const bool isFirst = a.file.endsWith(QLatin1String(kFirst));
        const bool otherIsFirst = b.file.endsWith(QLatin1String(kFirst));
        return isFirst != otherIsFirst ? isFirst : a.title.localeAwareCompare(b.title) < 0;
    });
    if (m_pages.empty())
        m_page->setPlainText(
            tr("The guide is not beside the program: there are no pages in \"%1\".").arg(folder));
}

void GuideForm::listPages() {
    const QString wanted = m_find->text().trimmed();
    m_list->clear();
    for (const Page &page : m_pages) {
        if (!wanted.isEmpty() && !page.text.contains(wanted, Qt::CaseInsensitive))
            continue;
        auto *item = new QListWidgetItem(page.title, m_list);
        item->setData(Qt::UserRole, page.file);
    }
    m_found->setText(wanted.isEmpty()       ? QString()
                     : m_list->count() == 0 ? tr("On no page.")
                                            : tr("Pages: %L1").arg(m_list->count()));
    m_found->setVisible(!m_found->text().isEmpty());
    followPage();
}

/// The list shows which page is looked at, when it is one of those listed.
void GuideForm::followPage() {
    const QString file = m_page->file();
    m_list->setCurrentItem(nullptr);
    for (int place = 0; place < m_list->count(); ++place)
        if (m_list->item(place)->data(Qt::UserRole).toString() == file)
            m_list->setCurrentRow(place);
}

void GuideForm::findNext() {
    const QString wanted = m_find->text().trimmed();
    const int count = m_list->count();
    if (wanted.isEmpty() || count == 0)
        return;
    const int from = m_list->currentRow();
    if (from >= 0 && m_page->find(wanted))
        return;
    m_page->setSource(
        QUrl::fromLocalFile(m_list->item((from + 1) % count)->data(Qt::UserRole).toString()));
    m_page->moveCursor(QTextCursor::Start);
    m_page->find(wanted);
}

void GuideForm::showPage(const QString &name) {
    const auto named = std::find_if(m_pages.begin(), m_pages.end(), [&name](const Page &page) {
        return page.file.endsWith(u'/' + name + QStringLiteral(".md"));
    });
    if (named != m_pages.end())
        m_page->setSource(QUrl::fromLocalFile(named->file));
    else if (!m_pages.empty())
        m_page->setSource(QUrl::fromLocalFile(m_pages.front().file));
}

} // namespace nv

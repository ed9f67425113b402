#include "gui/Desk.h"
#include "ui/frame/GuideForm.h"
#include "ui/frame/GuidePage.h"

#include <QAbstractTextDocumentLayout>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QRegularExpression>
#include <QScrollBar>
#include <QTabWidget>
#include <QTextBlock>

// The guide that the program ships, in its own window.
namespace nv {

using namespace test;

class GuideTest : public QObject {
    Q_OBJECT

  private slots:
    void init();
    void cleanup();

    void f1OpensItAtThePageOfTheTab();
    void everyLinkOfEveryPageLeadsSomewhere();
    void picturesAreShownWithinTheWindow();
    void aLinkGoesToItsHeadingAndBackAgain();
    void theFindBoxNarrowsTheListAndGoesOn();
    void nothingOutsideOfTheGuideIsLoaded();
    void aProgramWithoutTheGuideSaysSo();

  private:
    GuidePage &page() { return child<GuidePage>(*m_guide, "guidePage"); }
    QListWidget &list() { return child<QListWidget>(*m_guide, "lstGuidePages"); }
    QLineEdit &find() { return child<QLineEdit>(*m_guide, "txtGuideFind"); }
    QString file() { return page().source().fileName(); }
    void follow(const QString &link) { page().setSource(QUrl(link)); }

    std::unique_ptr<GuideForm> m_guide;
};

void GuideTest::init() {
    m_guide = std::make_unique<GuideForm>(docsFolder() / "guide");
    m_guide->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_guide.get()));
}

void GuideTest::cleanup() {
    m_guide.reset();
}

void GuideTest::f1OpensItAtThePageOfTheTab() {
    Desk desk;
    fs::create_directory_symlink(docsFolder(), desk.folder.path() / "program" / "docs");
    MainForm form(desk.program, desk.dialogs);
    form.show();
    QVERIFY(QTest::qWaitForWindowActive(&form));
    QTest::keyClick(&form, Qt::Key_F1);
    const auto shown = [&form] {
        auto *guide = form.findChild<GuideForm *>(QStringLiteral("GuideForm"));
        return guide && guide->isVisible()
                   ? child<GuidePage>(*guide, "guidePage").source().fileName()
                   : QString();
    };
    QCOMPARE(shown(), QStringLiteral("index.md"));
    openExample(desk, form);
    auto &tabs = child<QTabWidget>(form, "dataTabs");
    for (int tab = 0; tab < tabs.count(); ++tab) {
        tabs.setCurrentIndex(tab);
        child<QAction>(form, "actGuide").trigger();
        QCOMPARE(shown(), tabs.tabText(tab).toLower() + QStringLiteral(".md"));
    }
}

/// Of the guide's pages; those of the formats beside it lead to the sources, too.
void GuideTest::everyLinkOfEveryPageLeadsSomewhere() {
    QStringList refused;
    connect(&page(), &GuidePage::linkRefused, this,
            [&](const QString &link) { refused += file() + QStringLiteral(": ") + link; });
    int links = 0;
    for (int place = 0; place < list().count(); ++place) {
        const QString name = list().item(place)->data(Qt::UserRole).toString();
        QFile markdown(name);
        QVERIFY(markdown.open(QIODevice::ReadOnly));
        const QString text = QString::fromUtf8(markdown.readAll());
        static const QRegularExpression link(QStringLiteral(R"(\[[^\]]*\]\(([^)]+)\))"));
        for (auto each = link.globalMatch(text); each.hasNext();) {
            const QString target = each.next().captured(1);
            if (target.endsWith(QStringLiteral(".png")))
                continue;
            follow(QUrl::fromLocalFile(name).toString());
            follow(target);
            const QString anchor = QUrl(target).fragment();
            if (!anchor.isEmpty())
                QVERIFY2(page().textCursor().blockFormat().headingLevel() > 0, qPrintable(target));
            ++links;
        }
    }
    QVERIFY2(refused.isEmpty(), qPrintable(refused.join(u'\n')));
    QVERIFY(links > 50);
}

void GuideTest::picturesAreShownWithinTheWindow() {
    int pictures = 0;
    for (int place = 0; place < list().count(); ++place) {
        emit list().itemClicked(list().item(place));
        for (QTextBlock block = page().document()->begin(); block.isValid(); block = block.next())
            for (auto part = block.begin(); !part.atEnd(); ++part) {
                const QTextImageFormat format = part.fragment().charFormat().toImageFormat();
                if (!format.isValid())
                    continue;
                const auto picture =
                    page()
                        .loadResource(QTextDocument::ImageResource, QUrl(format.name()))
                        .value<QImage>();
                QVERIFY2(!picture.isNull(), qPrintable(format.name()));
                QVERIFY(picture.width() <= page().viewport()->width());
                ++pictures;
            }
    }
    QVERIFY(pictures > 20);
}

void GuideTest::aLinkGoesToItsHeadingAndBackAgain() {
    auto &back = child<QPushButton>(*m_guide, "btnGuideBack");
    QVERIFY(!back.isEnabled());
    follow(QStringLiteral("limits.md#records"));
    QCOMPARE(file(), QStringLiteral("limits.md"));
    QCOMPARE(page().textCursor().block().text(), QStringLiteral("Records"));
    QVERIFY(list().currentItem()->text().startsWith(QStringLiteral("Limits")));
    follow(QStringLiteral("../rebuilding.md"));
    QCOMPARE(file(), QStringLiteral("rebuilding.md"));
    back.click();
    back.click();
    QCOMPARE(file(), QStringLiteral("index.md"));
    child<QPushButton>(*m_guide, "btnGuideForward").click();
    QCOMPARE(file(), QStringLiteral("limits.md"));
}

void GuideTest::theFindBoxNarrowsTheListAndGoesOn() {
    const int all = list().count();
    QTest::keyClicks(&find(), QStringLiteral("daylight"));
    QVERIFY(list().count() > 0 && list().count() < all);
    const int listed = list().count();
    QSet<QString> visited;
    for (int i = 0; i < 200; ++i) {
        QTest::keyClick(&find(), Qt::Key_Return);
        QCOMPARE(page().textCursor().selectedText().toLower(), QStringLiteral("daylight"));
        visited += file();
    }
    QCOMPARE(visited.size(), listed);
    find().setText(QStringLiteral("no page has these words"));
    QCOMPARE(list().count(), 0);
    QCOMPARE(child<QLabel>(*m_guide, "labGuideFound").text(), QStringLiteral("On no page."));
    QTest::keyClick(&find(), Qt::Key_Return);
    find().clear();
    QCOMPARE(list().count(), all);
}

void GuideTest::nothingOutsideOfTheGuideIsLoaded() {
    for (const char *link : {"https://example.com/", "../../README.md", "file:///etc/passwd",
                             "../guide/../../CONTRIBUTING.md"}) {
        follow(QString::fromLatin1(link));
        QCOMPARE(file(), QStringLiteral("index.md"));
        QVERIFY(child<QLabel>(*m_guide, "labGuideFound").text().contains(QLatin1String(link)));
        QVERIFY(!page()
                     .loadResource(QTextDocument::ImageResource, QUrl(QString::fromLatin1(link)))
                     .isValid());
    }
}

void GuideTest::aProgramWithoutTheGuideSaysSo() {
    GuideForm none("/nowhere/docs/guide");
    QVERIFY(child<GuidePage>(none, "guidePage").toPlainText().contains(QStringLiteral("/nowhere")));
}

} // namespace nv

QTEST_MAIN(nv::GuideTest)
#include "guide_test.moc"
#include "support/Places.h"

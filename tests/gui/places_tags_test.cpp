#include "db/marks/NamedTags.h"
#include "db/marks/RecordTags.h"
#include "gui/LimitedTable.h"
#include "gui/PlacesTree.h"
#include "gui/Shot.h"
#include "ui/limits/PlacesPane.h"
#include "ui/tags/TagForm.h"

#include <QMenu>
#include <QPushButton>
#include <QToolButton>
#include <SQLiteCpp/Database.h>

// Lines and tags among the places, and what a right click on a place does with its rows.
namespace nv {

using namespace test;

class PlacesTagsTest : public QObject {
    Q_OBJECT

  private slots:
    void init();
    void cleanup() { m_on.reset(); }

    void allTreesCanBeSeenAtFirst();
    void aHeadingOutOfSightIsOneClickAway();
    void linesStayUnderTheMouse();
    void tagsAreATreeOfTheirOwn();
    void countsFollowTheTags();
    void theMenuTagsByName();
    void placesThatAreChosenTogetherAreTaggedTogether();
    void aNewTagIsMadeForAPlace();
    void aKeyTagsTheRowsOfAPlace();
    void aProjectThatIsOnlyReadIsNotTagged();

  private:
    PlacesPane &pane() { return child<PlacesPane>(m_on->form, "PlacesPane"); }
    QTreeView &tree() { return child<QTreeView>(m_on->form, "PlacesTree"); }
    TableTab &tab() { return m_on->tab(); }
    int rows() { return m_on->rows(); }
    QModelIndex placeOf(const QString &name) { return placeIn(tree(), name); }
    void click(const QString &name, Qt::KeyboardModifiers keys = Qt::NoModifier) {
        clickPlace(tree(), name, keys);
    }
    /// An entry of a menu within the menu of a place; its text is looked at up to the tabulator.
    QAction *entryOf(const QString &name, const char *within, const QString &text) {
        const QModelIndex index = placeOf(name);
        tree().scrollTo(index);
        emit tree().customContextMenuRequested(tree().visualRect(index).center());
        auto &menu = child<QMenu>(m_on->form, "PopupMenuPlaces");
        shot(m_on->form, QStringLiteral("places-menu"));
        menu.close();
        for (QAction *entry : child<QMenu>(menu, within).actions())
            if (entry->text().section(u'\t', 0, 0) == text)
                return entry;
        return nullptr;
    }
    void makeTag(const char *name) {
        NamedTags(m_on->project())
            .add({.tagID = 0, .name = name, .color = {}, .position = 0, .note = {}});
        trigger(m_on->form, "actRefresh");
        QTRY_VERIFY(placeOf(QString::fromLatin1(name)).isValid());
    }
    std::size_t taggedRows(const char *name) {
        const auto tag = NamedTags(m_on->project()).find(std::string_view(name));
        return tag ? RecordTags(m_on->project()).rowsOf(tag->tagID).size() : 0;
    }
    QString records(const QString &name) {
        return placeOf(name).siblingAtColumn(PlacesModel::kRecords).data().toString();
    }

    std::unique_ptr<LimitedTable> m_on;
};

/// Four rows: two of one site and two of another.
void PlacesTagsTest::init() {
    m_on = std::make_unique<LimitedTable>();
    m_on->project().exec("DELETE FROM URLs; INSERT INTO URLs (URL_ID, URL, Host, CacheType) VALUES "
                         "(1, 'http://www.harbour.example/', 'www.harbour.example', 'IE Cache'), "
                         "(2, 'http://img.harbour.example/', 'img.harbour.example', 'IE Cache'), "
                         "(3, 'http://forum.other.example/', 'forum.other.example', 'IE Cache'), "
                         "(4, 'http://forum.other.example/2', 'forum.other.example', 'IE Cookie')");
    trigger(m_on->form, "actRefresh");
    trigger(m_on->form, "actPlaces");
    QTRY_COMPARE(records(QStringLiteral("harbour.example")), QStringLiteral("2"));
}

void PlacesTagsTest::allTreesCanBeSeenAtFirst() {
    for (const char *name : {"Evidence", "Hosts", "Kinds", "Tags", "(untagged)"})
        QVERIFY2(tree().viewport()->rect().contains(
                     tree().visualRect(placeOf(QString::fromLatin1(name)))),
                 name);
    QVERIFY(!tree().isExpanded(placeOf(QStringLiteral("Hosts"))));
}

/// The next click is aimed before the line on what is chosen comes up.
void PlacesTagsTest::aHeadingOutOfSightIsOneClickAway() {
    for (int host = 0; host < 90; ++host)
        m_on->project().exec("INSERT INTO URLs (URL, Host, CacheType) VALUES ('http://x/', 'site" +
                             std::to_string(host) + ".example', 'IE Cache')");
    makeTag("Seen");
    QTRY_VERIFY(placeOf(QStringLiteral("site89.example")).isValid());
    QTRY_VERIFY(placeOf(QStringLiteral("Seen")).isValid());
    tree().expand(placeOf(QStringLiteral("Hosts")));
    tree().collapse(placeOf(QStringLiteral("Tags")));
    const auto inSight = [&](const QString &name) {
        return tree().viewport()->rect().contains(tree().visualRect(placeOf(name)));
    };
    QVERIFY(!inSight(QStringLiteral("Tags")));
    auto &button = child<QToolButton>(m_on->form, "btnPlaces3");
    QCOMPARE(button.text(), QStringLiteral("Tags"));
    QVERIFY(button.isVisible());
    QTest::mouseClick(&button, Qt::LeftButton);
    QVERIFY(inSight(QStringLiteral("Tags")));
    QVERIFY(inSight(QStringLiteral("Seen")));
    QCOMPARE(tree().currentIndex(), placeOf(QStringLiteral("Tags")));
    QCOMPARE(rows(), 94); // nothing is limited
    child<QLineEdit>(m_on->form, "txtPlaceFilter").setText(QStringLiteral("site7"));
    QVERIFY(!button.isEnabled());
    QVERIFY(child<QToolButton>(m_on->form, "btnPlaces1").isEnabled());
}

void PlacesTagsTest::linesStayUnderTheMouse() {
    const auto top = [this] {
        QApplication::processEvents();
        return tree().viewport()->mapTo(&m_on->form, QPoint()).y();
    };
    const int before = top();
    click(QStringLiteral("harbour.example"));
    QVERIFY(child<QWidget>(pane(), "btnAllPlaces").isVisible());
    QCOMPARE(top(), before);
}

void PlacesTagsTest::tagsAreATreeOfTheirOwn() {
    QCOMPARE(records(QStringLiteral("(untagged)")), QStringLiteral("4"));
    makeTag("Important");
    makeTag("Later");
    click(QStringLiteral("other.example"));
    tab().grid().selectAll();
    QTest::keyClick(&tab().grid(), Qt::Key_1);
    trigger(m_on->form, "actClearLimits");
    QCOMPARE(records(QStringLiteral("Important")), QStringLiteral("2"));
    QCOMPARE(records(QStringLiteral("Later")), QStringLiteral("0"));
    QVERIFY(!placeOf(QStringLiteral("Important")).data(Qt::DecorationRole).value<QIcon>().isNull());
    click(QStringLiteral("Important"));
    QCOMPARE(rows(), 2);
    QCOMPARE(child<QWidget>(m_on->form, "btnChip0")
                 .accessibleName()
                 .contains(QStringLiteral("Tag: Important")),
             true);
    QVERIFY(placeOf(QStringLiteral("Important")).data(Qt::FontRole).value<QFont>().bold());
    shot(m_on->form, QStringLiteral("places-tags"));
    click(QStringLiteral("(untagged)"), Qt::ControlModifier);
    QCOMPARE(rows(), 4);
    QVERIFY(child<QWidget>(m_on->form, "btnChip0")
                .accessibleName()
                .contains(QStringLiteral("Important or (untagged)")));
    click(QStringLiteral("Important"), Qt::ControlModifier);
    QCOMPARE(rows(), 2);
    // A place limits besides the tags.
    click(QStringLiteral("img.harbour.example"));
    QCOMPARE(rows(), 1);
    trigger(m_on->form, "actClearLimits");
    QCOMPARE(rows(), 4);
    QVERIFY(!placeOf(QStringLiteral("Important")).data(Qt::FontRole).value<QFont>().bold());
}

void PlacesTagsTest::countsFollowTheTags() {
    makeTag("Important");
    tree().expandAll();
    const QModelIndex hosts = placeOf(QStringLiteral("Hosts"));
    tab().grid().setCurrentUrl(UrlId{1});
    tab().grid().setFocus();
    QTest::keyClick(&tab().grid(), Qt::Key_1);
    QCOMPARE(records(QStringLiteral("Important")), QStringLiteral("1"));
    QCOMPARE(records(QStringLiteral("(untagged)")), QStringLiteral("3"));
    trigger(m_on->form, "actUndo");
    QCOMPARE(records(QStringLiteral("Important")), QStringLiteral("0"));
    QCOMPARE(records(QStringLiteral("(untagged)")), QStringLiteral("4"));
    QCOMPARE(placeOf(QStringLiteral("Hosts")), hosts); // the tree wasn't made anew
    click(QStringLiteral("Important"));
    QCOMPARE(rows(), 0);
    m_on->desk.examiner.script = {Answer::Yes};
    child<QPushButton>(m_on->form, "btnDeleteTag").click();
    QVERIFY(!placeOf(QStringLiteral("Important")).isValid());
    QCOMPARE(records(QStringLiteral("(untagged)")), QStringLiteral("4"));
    QCOMPARE(rows(), 4);
}

void PlacesTagsTest::theMenuTagsByName() {
    makeTag("A & B");
    makeTag("Later");
    QAction *later =
        entryOf(QStringLiteral("harbour.example"), "menuTagPlace", QStringLiteral("Later"));
    QVERIFY(later);
    QCOMPARE(later->text(), QStringLiteral("Later\t2"));
    later->trigger();
    QCOMPARE(taggedRows("Later"), 2U);
    QCOMPARE(records(QStringLiteral("Later")), QStringLiteral("2"));
    // To give it once more takes nothing away.
    entryOf(QStringLiteral("img.harbour.example"), "menuTagPlace", QStringLiteral("Later"))
        ->trigger();
    QCOMPARE(taggedRows("Later"), 2U);
    entryOf(QStringLiteral("img.harbour.example"), "menuUntagPlace", QStringLiteral("Later"))
        ->trigger();
    QCOMPARE(taggedRows("Later"), 1U);
    entryOf(QStringLiteral("(untagged)"), "menuTagPlace", QStringLiteral("A && B"))->trigger();
    QCOMPARE(taggedRows("A & B"), 3U);
    trigger(m_on->form, "actUndo");
    QCOMPARE(taggedRows("A & B"), 0U);
    trigger(m_on->form, "actUndo");
    QCOMPARE(taggedRows("Later"), 2U);
    trigger(m_on->form, "actUndo");
    QCOMPARE(taggedRows("Later"), 0U);
}

void PlacesTagsTest::placesThatAreChosenTogetherAreTaggedTogether() {
    makeTag("Later");
    click(QStringLiteral("img.harbour.example"));
    click(QStringLiteral("other.example"), Qt::ControlModifier);
    entryOf(QStringLiteral("other.example"), "menuTagPlace", QStringLiteral("Later"))->trigger();
    QCOMPARE(taggedRows("Later"), 3U);
    trigger(m_on->form, "actUndo");
    entryOf(QStringLiteral("www.harbour.example"), "menuTagPlace", QStringLiteral("Later"))
        ->trigger();
    QCOMPARE(taggedRows("Later"), 1U); // one that isn't chosen stands for itself
}

void PlacesTagsTest::aNewTagIsMadeForAPlace() {
    QAction *make =
        entryOf(QStringLiteral("harbour.example"), "menuTagPlace", QStringLiteral("&New Tag..."));
    QVERIFY(make);
    whenShown<TagForm>([](TagForm &form) {
        child<QLineEdit>(form, "txtTagName").setText(QStringLiteral("Harbour"));
        form.accept();
    });
    make->trigger();
    QCOMPARE(taggedRows("Harbour"), 2U);
    QCOMPARE(records(QStringLiteral("Harbour")), QStringLiteral("2"));
}

void PlacesTagsTest::aKeyTagsTheRowsOfAPlace() {
    makeTag("Important");
    tree().setFocus();
    tree().setCurrentIndex(placeOf(QStringLiteral("other.example")));
    QTest::keyClick(&tree(), Qt::Key_1);
    QCOMPARE(taggedRows("Important"), 2U);
    QTest::keyClick(&tree(), Qt::Key_2); // there is no such tag
    tree().setCurrentIndex(placeOf(QStringLiteral("Evidence")));
    QTest::keyClick(&tree(), Qt::Key_1); // a heading is no place
    QCOMPARE(taggedRows("Important"), 2U);
}

void PlacesTagsTest::aProjectThatIsOnlyReadIsNotTagged() {
    makeTag("Important");
    pane().setReadOnly(true);
    tree().setCurrentIndex(placeOf(QStringLiteral("other.example")));
    QTest::keyClick(&tree(), Qt::Key_1);
    QCOMPARE(taggedRows("Important"), 0U);
    QVERIFY(entryOf(QStringLiteral("other.example"), "menuTagPlace", QStringLiteral("Important")));
    QVERIFY(!child<QMenu>(m_on->form, "menuTagPlace").isEnabled());
}

} // namespace nv

QTEST_MAIN(nv::PlacesTagsTest)
#include "places_tags_test.moc"

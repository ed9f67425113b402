#include "app/program/ProjectHold.h"
#include "db/marks/NamedTags.h"
#include "db/marks/RecordTags.h"
#include "gui/Desk.h"
#include "platform/qt/QtText.h"
#include "ui/frame/Theme.h"
#include "ui/table/TableTab.h"
#include "ui/table/TagPills.h"
#include "ui/tags/TagForm.h"
#include "ui/tags/TagsPane.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QMenu>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTest>
#include <QToolButton>
#include <QTreeWidget>

#include <algorithm>
#include <cmath>

// Named tags in the main window.
namespace nv {

using namespace test;

class TagsTest : public QObject {
    Q_OBJECT

  private slots:
    void init();
    void cleanup();

    void aKeySetsATagOnTheChosenRowsAndTakesItAway();
    void taggingIsUndoneAndDoneAgain();
    void keysInATextAreNoTags();
    void theMenuShowsWhatTheRowsHave();
    void aNewTagIsMadeFromTheMenu();
    void theListLimitsTheTable();
    void aTagIsChangedMovedAndDeleted();
    void theFormSaysWhyANameCannotBe();
    void aCopyHasThem();
    void aReadOnlyProjectIsLookedAtOnly();
    void coloursCanBeReadInBothPalettes();

  private:
    UrlTable &table() { return *m_form->findChild<TableTab *>()->table(); }
    UrlGrid &grid() { return m_form->findChild<TableTab *>()->grid(); }
    SQLite::Database &project() { return m_desk->program.state.projectDB.connection(); }
    TagsPane &pane() { return child<TagsPane>(*m_form, "TagsPane"); }
    QTreeWidget &list() { return child<QTreeWidget>(*m_form, "lstTags"); }
    NamedTag make(const std::string &name) {
        const NamedTag tag = NamedTags(project()).add(
            {.tagID = 0, .name = name, .color = {}, .position = 0, .note = {}});
        trigger(*m_form, "actRefresh");
        return tag;
    }
    std::size_t rowsOf(const char *name) {
        const auto tag = NamedTags(project()).find(std::string_view(name));
        return tag ? RecordTags(project()).rowsOf(tag->tagID).size() : 0;
    }
    QMenu &openMenu() {
        auto &menu = child<QMenu>(*m_form, "menuTags");
        emit menu.aboutToShow();
        return menu;
    }
    void press(int key) { QTest::keyClick(&grid(), static_cast<Qt::Key>(key)); }

    std::unique_ptr<Desk> m_desk;
    std::unique_ptr<MainForm> m_form;
};

void TagsTest::init() {
    m_desk = std::make_unique<Desk>();
    m_form = std::make_unique<MainForm>(m_desk->program, m_desk->dialogs);
    m_form->resize(1280, 800);
    m_form->show();
    openExample(*m_desk, *m_form);
    m_form->activateWindow();
    grid().setFocus();
}

void TagsTest::cleanup() {
    m_form.reset();
    m_desk.reset();
}

void TagsTest::aKeySetsATagOnTheChosenRowsAndTakesItAway() {
    make("Important");
    make("Later");
    const std::size_t all = table().rowCount();
    grid().selectAll();
    press(Qt::Key_1);
    QCOMPARE(rowsOf("Important"), all);
    grid().selectRow(1);
    press(Qt::Key_2);
    QCOMPARE(rowsOf("Later"), 1u);
    const QModelIndex cell = grid().model()->index(1, UrlModel::sectionOf(UrlColumn::TagNames));
    QCOMPARE(cell.data().toString(), QStringLiteral("Important, Later"));
    QVERIFY(cell.data(Qt::ToolTipRole).toString().contains(QStringLiteral("Later")));
    press(Qt::Key_1);
    QCOMPARE(rowsOf("Important"), all - 1);
    // Not all of them have it: so the key gives it to the rest.
    grid().selectAll();
    press(Qt::Key_1);
    QCOMPARE(rowsOf("Important"), all);
    press(Qt::Key_1);
    QCOMPARE(rowsOf("Important"), 0u);
    const std::size_t heard = m_desk->examiner.heard.size();
    press(Qt::Key_9);
    QCOMPARE(m_desk->examiner.heard.size(), heard);
    QVERIFY(!table().isTagged(0));
}

void TagsTest::taggingIsUndoneAndDoneAgain() {
    make("Important");
    const std::size_t all = table().rowCount();
    grid().selectAll();
    press(Qt::Key_1);
    grid().selectRow(0);
    press(Qt::Key_1);
    QCOMPARE(rowsOf("Important"), all - 1);
    const auto &back = child<QAction>(*m_form, "actUndo");
    QCOMPARE(back.shortcut(), QKeySequence(Qt::CTRL | Qt::Key_Z));
    trigger(*m_form, "actUndo");
    QCOMPARE(rowsOf("Important"), all);
    trigger(*m_form, "actUndo");
    QCOMPARE(rowsOf("Important"), 0u);
    QVERIFY(!back.isEnabled());
    trigger(*m_form, "actRedo");
    QCOMPARE(rowsOf("Important"), all);
    QCOMPARE(list().topLevelItem(0)->text(1), QString::number(all));
}

void TagsTest::keysInATextAreNoTags() {
    make("Important");
    auto &host = child<QLineEdit>(*m_form, "txtHostFilter");
    host.setFocus();
    QTest::keyClicks(&host, QStringLiteral("1"));
    QCOMPARE(rowsOf("Important"), 0u);
    host.clear();
}

void TagsTest::theMenuShowsWhatTheRowsHave() {
    make("A & B");
    make("Later");
    grid().selectRow(0);
    press(Qt::Key_2);
    QMenu &menu = openMenu();
    QCOMPARE(menu.actions()[0]->text(), QStringLiteral("A && B\t1"));
    QVERIFY(!menu.actions()[0]->isChecked());
    QVERIFY(menu.actions()[1]->isChecked());
    menu.actions()[0]->trigger();
    QCOMPARE(rowsOf("A & B"), 1u);
    grid().customContextMenuRequested(QPoint(60, 10));
    auto &rows = child<QMenu>(*m_form, "PopupMenuURLs");
    QVERIFY(rows.actions().contains(menu.menuAction()));
    rows.close();
}

void TagsTest::aNewTagIsMadeFromTheMenu() {
    grid().selectRow(0);
    QMenu &menu = openMenu();
    whenShown<TagForm>([](TagForm &form) {
        child<QLineEdit>(form, "txtTagName").setText(QStringLiteral(" Für später "));
        child<QPlainTextEdit>(form, "txtTagNote").setPlainText(QStringLiteral("why"));
        form.accept();
    });
    child<QAction>(menu, "actNewTag").trigger();
    QCOMPARE(rowsOf("Für später"), 1u);
    QCOMPARE(NamedTags(project()).list().at(0).note, std::string("why"));
}

void TagsTest::theListLimitsTheTable() {
    make("Important");
    const std::size_t all = table().rowCount();
    grid().selectRow(0);
    press(Qt::Key_1);
    trigger(*m_form, "actTags");
    QVERIFY(pane().isVisible());
    child<QPushButton>(*m_form, "btnTagRows").click();
    QCOMPARE(table().rowCount(), 1u);
    QCOMPARE(table().hiddenCount(), all - 1);
    QVERIFY(child<QLabel>(*m_form, "labTagLimit").isVisible());
    child<QPushButton>(*m_form, "btnAllTagRows").click();
    QCOMPARE(table().rowCount(), all);
    child<QPushButton>(*m_form, "btnTagRows").click();
    trigger(*m_form, "actTags"); // its chip goes on saying so
    QCOMPARE(table().rowCount(), 1u);
    trigger(*m_form, "actClearLimits");
    QCOMPARE(table().rowCount(), all);
    trigger(*m_form, "actUndo");
    QCOMPARE(table().rowCount(), 1u);
}

void TagsTest::aTagIsChangedMovedAndDeleted() {
    make("Important");
    make("Later");
    trigger(*m_form, "actTags");
    grid().selectRow(0);
    press(Qt::Key_2);
    list().setCurrentItem(list().topLevelItem(1));
    child<QPushButton>(*m_form, "btnTagUp").click();
    QCOMPARE(list().topLevelItem(0)->text(0), QStringLiteral("Later"));
    whenShown<TagForm>([](TagForm &form) {
        child<QLineEdit>(form, "txtTagName").setText(QStringLiteral("Never"));
        form.findChildren<QToolButton *>(QStringLiteral("btnTagColor"))[4]->click();
        form.accept();
    });
    child<QPushButton>(*m_form, "btnEditTag").click();
    QCOMPARE(list().topLevelItem(0)->text(0), QStringLiteral("Never"));
    QCOMPARE(NamedTags(project()).find("Never")->color, firstTagColor(5));
    QCOMPARE(table().cell(0, UrlColumn::TagNames), std::string("Never"));
    m_desk->examiner.script = {Answer::No, Answer::Yes};
    child<QPushButton>(*m_form, "btnTagRows").click();
    child<QPushButton>(*m_form, "btnDeleteTag").click();
    QCOMPARE(rowsOf("Never"), 1u);
    child<QPushButton>(*m_form, "btnDeleteTag").click();
    QCOMPARE(m_desk->examiner.heard.back(), std::string("delete-tag"));
    QCOMPARE(list().topLevelItemCount(), 1);
    QVERIFY(table().rowCount() > 1); // the limit goes with its tag
    QVERIFY(!m_form->findChild<QAction *>(QStringLiteral("actUndo"))->isEnabled());
}

void TagsTest::theFormSaysWhyANameCannotBe() {
    TagForm form({.tagID = 0, .name = {}, .color = "#123456", .position = 1, .note = {}},
                 {{.tagID = 7, .name = "Important", .color = {}, .position = 1, .note = {}}});
    auto &name = child<QLineEdit>(form, "txtTagName");
    auto *okay = form.findChild<QDialogButtonBox *>()->button(QDialogButtonBox::Ok);
    QVERIFY(!okay->isEnabled());
    name.setText(QStringLiteral("IMPORTANT"));
    QVERIFY(!okay->isEnabled());
    QVERIFY(!child<QLabel>(form, "labTagFault").text().isEmpty());
    name.setText(QString(101, u'x'));
    QVERIFY(!okay->isEnabled());
    for (const char16_t *blanks : {u"   ", u"\t", u"\u00A0", u"\u3000 \u2800", u"\u200B"}) {
        name.setText(QString::fromUtf16(blanks));
        QVERIFY2(!okay->isEnabled(), qPrintable(QString::fromUtf16(blanks)));
        QVERIFY(!child<QLabel>(form, "labTagFault").text().isEmpty());
    }
    name.setText(QStringLiteral("Other"));
    QVERIFY(okay->isEnabled());
    QCOMPARE(form.tag().color, std::string("#123456"));
}

void TagsTest::aCopyHasThem() {
    make("Important");
    grid().selectRow(0);
    press(Qt::Key_1);
    m_desk->dialogs.answer = m_desk->folder.path() / "copy.nvp";
    trigger(*m_form, "actSaveAs");
    QCOMPARE(m_desk->program.state.projectDBPath, *m_desk->dialogs.answer);
    QCOMPARE(rowsOf("Important"), 1u);
    QCOMPARE(list().topLevelItemCount(), 1);
    QVERIFY(!m_form->findChild<QAction *>(QStringLiteral("actUndo"))->isEnabled());
}

void TagsTest::aReadOnlyProjectIsLookedAtOnly() {
    make("Important");
    grid().selectRow(0);
    press(Qt::Key_1);
    trigger(*m_form, "actClose");
    const ProjectHold other(m_desk->folder.path() / "case.nvp", Front::window, m_desk->clock);
    m_desk->examiner.script = {Answer::Yes};
    trigger(*m_form, "actOpen");
    QVERIFY(m_desk->program.state.projectDB.isReadOnly());
    QCOMPARE(table().cell(0, UrlColumn::TagNames), std::string("Important"));
    m_desk->examiner.heard.clear();
    press(Qt::Key_1);
    QCOMPARE(m_desk->examiner.heard.back(), std::string("reading-only"));
    QCOMPARE(rowsOf("Important"), 1u);
    m_form.reset(); // before the other window goes
}

void TagsTest::coloursCanBeReadInBothPalettes() {
    const auto luminance = [](const QColor &color) {
        const auto part = [](double value) {
            return value <= 0.03928 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
        };
        return 0.2126 * part(color.redF()) + 0.7152 * part(color.greenF()) +
               0.0722 * part(color.blueF());
    };
    for (int place = 1; place <= 9; ++place) {
        const QColor color(toQt(firstTagColor(place)));
        const double one = luminance(color);
        const double other = luminance(textOn(color));
        const double contrast = (std::max(one, other) + 0.05) / (std::min(one, other) + 0.05);
        QVERIFY2(contrast >= 4.5, qPrintable(color.name()));
    }
    for (const char *name : {"Important", "Later", "For the hearing", "Ask the provider"})
        make(name);
    NamedTag noted = *NamedTags(project()).find("Important");
    noted.note = "Exhibits of the first hearing";
    NamedTags(project()).change(noted);
    trigger(*m_form, "actRefresh");
    trigger(*m_form, "actTags");
    for (const auto &[row, key] :
         {std::pair(0, 1), {0, 2}, {1, 2}, {2, 3}, {2, 1}, {4, 4}, {5, 1}}) {
        grid().selectRow(row);
        press(Qt::Key_0 + key);
    }
    grid().selectRow(3);
    const QByteArray shots = qgetenv("NV_SHOTS");
    for (const Theme theme : {Theme::Light, Theme::Dark}) {
        applyTheme(theme);
        QTest::qWait(50);
        const QImage image = m_form->grab().toImage();
        QVERIFY(!image.isNull());
        if (!shots.isEmpty())
            image.save(QString::fromLocal8Bit(shots) +
                       (theme == Theme::Light ? "/tags-light.png" : "/tags-dark.png"));
        TagForm form(noted, {}, m_form.get());
        form.show();
        QTest::qWait(20);
        if (!shots.isEmpty() && theme == Theme::Light)
            form.grab().save(QString::fromLocal8Bit(shots) + "/tags-form.png");
        QMenu &menu = openMenu();
        menu.popup(m_form->mapToGlobal(QPoint(100, 100)));
        if (!shots.isEmpty())
            menu.grab().save(QString::fromLocal8Bit(shots) +
                             (theme == Theme::Light ? "/tags-menu.png" : "/tags-menu-dark.png"));
        menu.close();
    }
    applyTheme(Theme::System);
    m_form->resize(960, 540);
    QTest::qWait(50);
    if (!shots.isEmpty())
        m_form->grab().save(QString::fromLocal8Bit(shots) + "/tags-small.png");
    trigger(*m_form, "actTags");
}

} // namespace nv

QTEST_MAIN(nv::TagsTest)
#include "tags_test.moc"

#include "gui/Desk.h"
#include "platform/qt/QtText.h"
#include "ui/maintenance/UpgradeWizardForm.h"
#include "ui/table/TableTab.h"
#include "ui/widgets/PinnedHeader.h"

#include <QComboBox>
#include <QInputDialog>
#include <QLabel>
#include <QMenu>
#include <QPushButton>
#include <QScrollBar>
#include <QTabWidget>
#include <QTest>
#include <SQLiteCpp/SQLiteCpp.h>

// How the table shows its rows: named layouts, widths, columns that stay in sight, order.
namespace nv {

using namespace test;

constexpr int kBuiltIn = 4; ///< layouts

class LayoutsTest : public QObject {
    Q_OBJECT

  private slots:
    void init();
    void cleanup();

    void aNewProjectShowsDateAndAddressOfItsRows();
    void widthsFitWhatTheColumnsHold();
    void aNarrowWindowShortensAddressesFirst();
    void whatCantFitAnywayIsNotCut();
    void theSignOfAnOrderWidensNoOtherColumn();
    void rowsWithoutADateComeLastButInClassic();
    void ownLayoutsAreChosenAndKeptWithTheProject();
    void aLayoutIsKeptAtOnce();
    void aNameThatIsTakenIsAskedAgain();
    void resetBringsTheBuiltInColumnsBack();
    void aProjectWithoutLayoutsOpensAsItWasLeft();
    void saveAsAndUpgradeCarryTheLayouts();
    void tickAndDateStayInSight();
    void whatStaysInSightTakesTheMouse();
    void aSortOutlivesRefreshFiltersQueriesAndReopening();
    void anOrderByAHiddenColumnIsSaid();
    void theHeadingsMenuGoesBackToTheQuerysOrder();
    void ctrlHomeAndEndSelect();
    void aNoteShowsItsMarkAtOnce();

  private:
    TableTab &tab() { return child<TableTab>(*m_form, "TableTab"); }
    UrlGrid &grid() { return tab().grid(); }
    PinnedHeader &header() { return child<PinnedHeader>(*m_form, "URLGridHeader"); }
    QComboBox &layouts() { return child<QComboBox>(*m_form, "cbLayout"); }
    SQLite::Database &project() { return m_desk->program.state.projectDB.connection(); }
    static int sectionOf(UrlColumn column) { return UrlModel::sectionOf(column); }
    bool isShown(UrlColumn column) { return !header().isSectionHidden(sectionOf(column)); }
    QString cell(int row, UrlColumn column) {
        return grid().model()->index(row, sectionOf(column)).data().toString();
    }
    QStringList hosts() {
        QStringList hosts;
        for (int row = 0; row < grid().model()->rowCount(); ++row)
            hosts += cell(row, UrlColumn::Host);
        return hosts;
    }
    void choose(const QString &layout) {
        layouts().setCurrentIndex(layouts().findText(layout));
        emit layouts().activated(layouts().currentIndex());
    }
    void saveAs(const QString &name) {
        whenShown<QInputDialog>([name](QInputDialog &dialog) {
            dialog.setTextValue(name);
            dialog.accept();
        });
        trigger(*m_form, "actLayoutSaveAs");
    }
    void reopen(const char *name = "case.nvp") {
        trigger(*m_form, "actClose");
        m_form->takePath(m_desk->folder.path() / name);
    }

    std::unique_ptr<Desk> m_desk;
    std::unique_ptr<MainForm> m_form;
};

void LayoutsTest::init() {
    m_desk = std::make_unique<Desk>();
    m_form = std::make_unique<MainForm>(m_desk->program, m_desk->dialogs);
    m_form->resize(1280, 800);
    m_form->show();
    openExample(*m_desk, *m_form);
}

void LayoutsTest::cleanup() {
    m_form.reset();
    m_desk.reset();
}

void LayoutsTest::aNewProjectShowsDateAndAddressOfItsRows() {
    QCOMPARE(layouts().currentText(), QStringLiteral("Examiner"));
    const int room = grid().viewport()->width();
    for (const UrlColumn column : {UrlColumn::LocalDate, UrlColumn::Value, UrlColumn::Note}) {
        const int left = header().sectionViewportPosition(sectionOf(column));
        QVERIFY2(left >= 0 && left + header().sectionSize(sectionOf(column)) <= room,
                 qPrintable(QString::number(left)));
    }
    QVERIFY(header().sectionSize(sectionOf(UrlColumn::Tag)) < 60);
    QVERIFY(!cell(0, UrlColumn::LocalDate).isEmpty());
    QVERIFY(cell(0, UrlColumn::Value).startsWith(QStringLiteral("http")));
}

void LayoutsTest::widthsFitWhatTheColumnsHold() {
    m_form->resize(1600, 900);
    QTRY_COMPARE(m_form->width(), 1600);
    const QFontMetrics metrics = grid().fontMetrics();
    for (const UrlColumn column : {UrlColumn::LocalDate, UrlColumn::Host, UrlColumn::User})
        for (int row = 0; row < grid().model()->rowCount(); ++row)
            QVERIFY2(metrics.horizontalAdvance(cell(row, column)) <
                         header().sectionSize(sectionOf(column)),
                     qPrintable(cell(row, column)));
    QCOMPARE(header().length(), grid().viewport()->width()); // addresses get what is left
}

void LayoutsTest::aNarrowWindowShortensAddressesFirst() {
    m_form->resize(1600, 900);
    QTRY_COMPARE(m_form->width(), 1600);
    const int date = header().sectionSize(sectionOf(UrlColumn::LocalDate));
    const int address = header().sectionSize(sectionOf(UrlColumn::Value));
    m_form->resize(1280, 800);
    QTRY_VERIFY(header().sectionSize(sectionOf(UrlColumn::Value)) < address);
    QCOMPARE(header().sectionSize(sectionOf(UrlColumn::LocalDate)), date);
}

void LayoutsTest::whatCantFitAnywayIsNotCut() {
    choose(QStringLiteral("Classic"));
    trigger(*m_form, "actLayoutFit");
    const QFontMetrics metrics = grid().fontMetrics();
    for (int row = 0; row < grid().model()->rowCount(); ++row)
        QVERIFY(metrics.horizontalAdvance(cell(row, UrlColumn::Value)) <
                header().sectionSize(sectionOf(UrlColumn::Value)));
}

void LayoutsTest::theSignOfAnOrderWidensNoOtherColumn() {
    const int tick = header().sectionSize(sectionOf(UrlColumn::Tag));
    const int icon = header().sectionSize(sectionOf(UrlColumn::Icon));
    emit grid().sortRequested(UrlColumn::Host, SortDirection::Ascending);
    trigger(*m_form, "actLayoutFit");
    QCOMPARE(header().sectionSize(sectionOf(UrlColumn::Tag)), tick);
    QCOMPARE(header().sectionSize(sectionOf(UrlColumn::Icon)), icon);
}

void LayoutsTest::rowsWithoutADateComeLastButInClassic() {
    project().exec("INSERT INTO URLs(Host) VALUES('undated')");
    trigger(*m_form, "actRefresh");
    QCOMPARE(hosts().constLast(), QStringLiteral("undated"));
    for (const SortDirection direction : {SortDirection::Ascending, SortDirection::Descending}) {
        emit grid().sortRequested(UrlColumn::LocalDate, direction);
        QCOMPARE(hosts().constLast(), QStringLiteral("undated"));
    }
    emit grid().sortRequested(UrlColumn::LocalDate, SortDirection::Ascending);
    choose(QStringLiteral("Classic"));
    QCOMPARE(cell(0, UrlColumn::ActionDateUtc), QString());
    QVERIFY(isShown(UrlColumn::Md5Hash) && !isShown(UrlColumn::Note));
    choose(QStringLiteral("Examiner"));
    QCOMPARE(hosts().constLast(), QStringLiteral("undated"));
}

void LayoutsTest::ownLayoutsAreChosenAndKeptWithTheProject() {
    QVERIFY(!m_form->findChild<QAction *>(QStringLiteral("actLayoutDelete"))->isEnabled());
    grid().hideColumn(UrlColumn::User);
    saveAs(QStringLiteral("Without users"));
    grid().hideColumn(UrlColumn::Visits);
    QCOMPARE(layouts().currentText(), QStringLiteral("Without users"));
    choose(QStringLiteral("Examiner"));
    QVERIFY(isShown(UrlColumn::Visits) && !isShown(UrlColumn::User));
    choose(QStringLiteral("Without users"));
    reopen();
    QCOMPARE(layouts().currentText(), QStringLiteral("Without users"));
    QVERIFY(!isShown(UrlColumn::Visits) && !isShown(UrlColumn::User));
    whenShown<QInputDialog>([](QInputDialog &dialog) {
        QCOMPARE(dialog.textValue(), QStringLiteral("Without users"));
        dialog.setTextValue(QStringLiteral("Few"));
        dialog.accept();
    });
    trigger(*m_form, "actLayoutRename");
    QCOMPARE(layouts().currentText(), QStringLiteral("Few"));
    trigger(*m_form, "actLayoutDelete");
    QCOMPARE(layouts().currentText(), QStringLiteral("Examiner"));
    QCOMPARE(layouts().count(), kBuiltIn);
    reopen();
    QCOMPARE(layouts().count(), kBuiltIn);
    QVERIFY(!isShown(UrlColumn::User));
}

/// A program that is killed saves nothing at its end.
void LayoutsTest::aLayoutIsKeptAtOnce() {
    const auto kept = [this](const QString &name) {
        return project()
                   .execAndGet("SELECT count(*) FROM DefaultSettings WHERE DefaultValue = '" +
                               name.toStdString() + "'")
                   .getInt() > 0;
    };
    saveAs(QStringLiteral("Mine"));
    QVERIFY(kept(QStringLiteral("Mine")));
    choose(QStringLiteral("Classic"));
    QVERIFY(kept(QStringLiteral("Classic")));
}

void LayoutsTest::aNameThatIsTakenIsAskedAgain() {
    whenShown<QInputDialog>([](QInputDialog &dialog) {
        dialog.setTextValue(QStringLiteral("classic"));
        whenShown<QInputDialog>([](QInputDialog &again) {
            QVERIFY(again.labelText().contains(QStringLiteral("There is a layout of this name")));
            again.reject();
        });
        dialog.accept();
    });
    trigger(*m_form, "actLayoutSaveAs");
    QCOMPARE(layouts().count(), kBuiltIn);
}

void LayoutsTest::resetBringsTheBuiltInColumnsBack() {
    grid().hideColumn(UrlColumn::Value);
    header().resizeSection(sectionOf(UrlColumn::Host), 400);
    trigger(*m_form, "actLayoutReset");
    QVERIFY(isShown(UrlColumn::Value));
    QVERIFY(header().sectionSize(sectionOf(UrlColumn::Host)) < 400);
}

void LayoutsTest::aProjectWithoutLayoutsOpensAsItWasLeft() {
    trigger(*m_form, "actClose");
    {
        SQLite::Database file((m_desk->folder.path() / "case.nvp").string(),
                              SQLite::OPEN_READWRITE);
        file.exec("DELETE FROM DefaultSettings WHERE DefaultName LIKE '%Layout%' OR DefaultName "
                  "LIKE 'COL_URL%' OR DefaultName = 'TableSort'");
        TableLayout left;
        left.setHidden(UrlColumn::Visits, true);
        left.move(UrlColumn::Host, 1);
        left.save([&file](std::string_view name, std::string_view value) {
            SQLite::Statement row(file, "INSERT INTO DefaultSettings VALUES(?, ?)");
            row.bind(1, std::string(name));
            row.bind(2, std::string(value));
            row.exec();
        });
    }
    m_form->takePath(m_desk->folder.path() / "case.nvp");
    QCOMPARE(layouts().currentText(), QStringLiteral("Classic"));
    QVERIFY(!isShown(UrlColumn::Visits) && isShown(UrlColumn::Md5Hash));
    QCOMPARE(header().visualIndex(sectionOf(UrlColumn::Host)), 1);
}

void LayoutsTest::saveAsAndUpgradeCarryTheLayouts() {
    grid().hideColumn(UrlColumn::User);
    saveAs(QStringLiteral("Mine"));
    emit grid().sortRequested(UrlColumn::Host, SortDirection::Descending);
    m_desk->dialogs.answer = m_desk->folder.path() / "copy.nvp";
    trigger(*m_form, "actSaveAs");
    const auto isCarried = [this] {
        return layouts().currentText() == QStringLiteral("Mine") && !isShown(UrlColumn::User) &&
               tab().table()->columnSort() ==
                   ColumnSort{UrlColumn::Host, SortDirection::Descending};
    };
    QVERIFY(isCarried());
    project().exec("DROP INDEX URLIndex");
    m_desk->examiner.script = {Answer::Yes};
    whenShown<UpgradeWizardForm>([](UpgradeWizardForm &wizard) {
        QTest::mouseClick(&child<QPushButton>(wizard, "ScanBtn"), Qt::LeftButton);
        QTest::mouseClick(&child<QPushButton>(wizard, "FixBtn"), Qt::LeftButton);
        wizard.reject();
    });
    trigger(*m_form, "actUpgradeWizard");
    QVERIFY(fs::exists(m_desk->folder.path() / "copy.nvp.old"));
    QVERIFY(isCarried());
}

void LayoutsTest::tickAndDateStayInSight() {
    choose(QStringLiteral("Classic"));
    QVERIFY(header().stuck().empty());
    grid().horizontalScrollBar()->setValue(100);
    QCOMPARE(header().stuck().size(), std::size_t{1});
    grid().horizontalScrollBar()->setValue(grid().horizontalScrollBar()->maximum());
    QCOMPARE(header().stuck().size(), std::size_t{2});
    const QRect date = header().stuckColumn(sectionOf(UrlColumn::ActionDateUtc)).value();
    QCOMPARE(date.left(), header().sectionSize(sectionOf(UrlColumn::Tag)));
    // What is drawn there is the date: the same pixels as where it stands by itself.
    const QModelIndex cell = grid().model()->index(0, sectionOf(UrlColumn::ActionDateUtc));
    const QRect there = grid().visualRect(cell);
    QCOMPARE(there.left(), date.left());
    grid().clearSelection();
    grid().setCurrentIndex({});
    const QImage stuck = grid().viewport()->grab(there.adjusted(2, 2, -4, -2)).toImage();
    grid().horizontalScrollBar()->setValue(0);
    const QImage free =
        grid().viewport()->grab(grid().visualRect(cell).adjusted(2, 2, -3, -1)).toImage();
    QCOMPARE(stuck, free.copy(stuck.rect()));
}

void LayoutsTest::whatStaysInSightTakesTheMouse() {
    choose(QStringLiteral("Classic"));
    grid().horizontalScrollBar()->setValue(grid().horizontalScrollBar()->maximum());
    const QModelIndex tick = grid().model()->index(1, sectionOf(UrlColumn::Tag));
    QCOMPARE(grid().indexAt(grid().visualRect(tick).center()), tick);
    QTest::mouseClick(grid().viewport(), Qt::LeftButton, {}, grid().visualRect(tick).center());
    QVERIFY(tab().table()->isTagged(1));
    const int before = grid().horizontalScrollBar()->value();
    const int section = sectionOf(UrlColumn::ActionDateUtc);
    const QRect date = header().stuckColumn(section).value();
    QTest::mouseClick(header().viewport(), Qt::LeftButton, {}, date.center());
    QVERIFY(tab().table()->columnSort());
    QVERIFY(tab().table()->columnSort()->column == UrlColumn::ActionDateUtc);
    QCOMPARE(grid().horizontalScrollBar()->value(), before);
    // A column that is gone to doesn't stay hidden under them.
    grid().setCurrentIndex(grid().model()->index(0, sectionOf(UrlColumn::Action)));
    QVERIFY(grid().visualRect(grid().currentIndex()).left() >= header().stuckWidth());
}

void LayoutsTest::aSortOutlivesRefreshFiltersQueriesAndReopening() {
    emit grid().sortRequested(UrlColumn::Host, SortDirection::Descending);
    const QStringList sorted = hosts();
    QVERIFY(sorted.constFirst() > sorted.constLast());
    const auto isSorted = [this] {
        return header().isSortIndicatorShown() &&
               header().sortIndicatorSection() == sectionOf(UrlColumn::Host) &&
               header().sortIndicatorOrder() == Qt::DescendingOrder;
    };
    trigger(*m_form, "actRefresh");
    QVERIFY(hosts() == sorted && isSorted());
    m_desk->program.state.filters.enableFilters = true;
    trigger(*m_form, "actRefresh");
    QVERIFY(hosts() == sorted && isSorted());
    project().exec("UPDATE URLs SET Tagged = 1 WHERE URL_ID < 5");
    tab().chooseQuery(QStringLiteral("_Tagged Items"));
    QVERIFY(isSorted() && hosts().constFirst() > hosts().constLast());
    tab().chooseQuery({});
    reopen();
    QVERIFY(hosts() == sorted && isSorted());
}

void LayoutsTest::anOrderByAHiddenColumnIsSaid() {
    const auto said = [this] { return child<QLabel>(*m_form, "labQuery").text(); };
    choose(QStringLiteral("Classic"));
    emit grid().sortRequested(UrlColumn::ActionDateUtc, SortDirection::Descending);
    QVERIFY(!said().contains(QStringLiteral("by ")));
    choose(QStringLiteral("Examiner"));
    QVERIFY2(said().contains(QStringLiteral(", by ")), qPrintable(said()));
}

void LayoutsTest::theHeadingsMenuGoesBackToTheQuerysOrder() {
    const QStringList first = hosts();
    emit grid().sortRequested(UrlColumn::Host, SortDirection::Descending);
    QTimer::singleShot(0, qApp, [] {
        auto *menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
        QVERIFY(menu);
        menu->findChild<QAction *>(QStringLiteral("actForgetSort"))->trigger();
        menu->close();
    });
    emit grid().headerMenuRequested(UrlColumn::Host, QPoint(10, 10));
    QCOMPARE(hosts(), first);
    QVERIFY(!header().isSortIndicatorShown());
}

void LayoutsTest::ctrlHomeAndEndSelect() {
    grid().setFocus();
    const int last = grid().model()->rowCount() - 1;
    QTest::keyClick(&grid(), Qt::Key_End, Qt::ControlModifier);
    QCOMPARE(grid().currentIndex().row(), last);
    QVERIFY(grid().selectionModel()->isRowSelected(last));
    QCOMPARE(grid().selectedRowCount(), 1);
    QTest::keyClick(&grid(), Qt::Key_Home, Qt::ControlModifier);
    QVERIFY(grid().selectionModel()->isRowSelected(0));
    QCOMPARE(grid().selectedRowCount(), 1);
}

void LayoutsTest::aNoteShowsItsMarkAtOnce() {
    const int row = grid().currentIndex().row();
    QCOMPARE(cell(row, UrlColumn::Note), QString());
    auto &viewers = child<QTabWidget>(*m_form, "viewerTabs");
    auto &pane = child<QWidget>(*m_form, "NotesPane");
    viewers.setCurrentWidget(&pane);
    auto &text = child<QWidget>(*m_form, "NotesText");
    QTRY_VERIFY(text.isEnabled());
    text.setFocus();
    QTest::keyClicks(&text, QStringLiteral("Seen"));
    grid().setCurrentIndex(grid().model()->index(row + 1, sectionOf(UrlColumn::Host)));
    QTRY_COMPARE(cell(row, UrlColumn::Note), QStringLiteral("Yes"));
}

} // namespace nv

QTEST_MAIN(nv::LayoutsTest)
#include "layouts_test.moc"

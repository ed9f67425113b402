#include "app/project/RecentFiles.h"
#include "db/marks/NamedTags.h"
#include "db/project/StoredQueries.h"
#include "gui/Desk.h"
#include "ui/reports/ReportForm.h"
#include "ui/table/TableTab.h"
#include "ui/widgets/FlowLayout.h"
#include "ui/widgets/FormScroll.h"
#include "ui/window/WindowLayout.h"

#include <QCheckBox>
#include <QComboBox>
#include <QCommandLinkButton>
#include <QDialog>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScreen>
#include <QScrollBar>
#include <QTabWidget>
#include <QTest>
#include <QTimer>

// The window on a screen of 960 by 540 logical pixels, which a laptop of twice as many has.
namespace nv {

using namespace test;

class SmallScreenTest : public QObject {
    Q_OBJECT

  private slots:
    void init();
    void cleanup();
    void theWindowFitsWhateverIsInFront();
    void theListOfTagsFitsBesideThePlaces();
    void theBoxesOverBytesAreWideEnough_data();
    void theBoxesOverBytesAreWideEnough();
    void rowsAreReadUpToTheirAddress_data();
    void rowsAreReadUpToTheirAddress();
    void theReportFormCutsNothing_data();
    void theReportFormCutsNothing();
    void longNamesDontWidenIt();
    void aLongProjectNameLeavesTheStepsTheirRoom();
    void theStepsOfAnEmptyProjectFit();
    void dialogsFit_data();
    void dialogsFit();
    void itStartsNoLargerThanTheScreen();
    void aSizeThatWasKeptFromALargerScreenIsCut();
    void aFlowGoesOnInTheNextLine();

  private:
    /// What is left of 960 by 540 beside the frame.
    static constexpr QSize kRoom{952, 508};
    QString tooLarge() {
        const QSize least = m_form->minimumSizeHint();
        if (least.width() <= kRoom.width() && least.height() <= kRoom.height())
            return {};
        QString text = QStringLiteral("%1 by %2:").arg(least.width()).arg(least.height());
        for (const QWidget *widget : m_form->findChildren<QWidget *>())
            if (widget->minimumSizeHint().width() > 700 || widget->minimumSizeHint().height() > 250)
                text +=
                    QStringLiteral(" %1 %2 %3x%4")
                        .arg(QLatin1String(widget->metaObject()->className()), widget->objectName())
                        .arg(widget->minimumSizeHint().width())
                        .arg(widget->minimumSizeHint().height());
        return text;
    }

    std::unique_ptr<Desk> m_desk;
    std::unique_ptr<MainForm> m_form;
};

void SmallScreenTest::init() {
    m_desk = std::make_unique<Desk>();
    m_form = std::make_unique<MainForm>(m_desk->program, m_desk->dialogs);
    m_form->show();
    openExample(*m_desk, *m_form);
}

void SmallScreenTest::cleanup() {
    m_form.reset();
    m_desk.reset();
}

void SmallScreenTest::theWindowFitsWhateverIsInFront() {
    trigger(*m_form, "actHosts");
    trigger(*m_form, "actFind");
    auto &data = child<QTabWidget>(*m_form, "dataTabs");
    auto &viewers = child<QTabWidget>(*m_form, "viewerTabs");
    for (int tab = 0; tab < data.count(); ++tab)
        for (int pane = 0; pane < viewers.count(); ++pane) {
            data.setCurrentIndex(tab);
            viewers.setCurrentIndex(pane);
            QApplication::processEvents();
            QCOMPARE(tooLarge(), QString());
        }
    m_form->resize(kRoom);
    QCOMPARE(m_form->size(), kRoom);
}

void SmallScreenTest::theListOfTagsFitsBesideThePlaces() {
    child<QAction>(*m_form, "actHosts").setChecked(false);
    child<QAction>(*m_form, "actPlaces").setChecked(true);
    child<QAction>(*m_form, "actTags").setChecked(true);
    QApplication::processEvents();
    QCOMPARE(tooLarge(), QString());
}

void SmallScreenTest::theBoxesOverBytesAreWideEnough_data() {
    QTest::addColumn<QSize>("size");
    for (const QSize size : {QSize(960, 540), QSize(1280, 800), QSize(1920, 1080)})
        QTest::addRow("%d by %d", size.width(), size.height()) << size;
}

void SmallScreenTest::theBoxesOverBytesAreWideEnough() {
    QFETCH(QSize, size);
    m_form->resize(size);
    auto &pane = child<QWidget>(*m_form, "HexPane");
    child<QTabWidget>(*m_form, "viewerTabs").setCurrentWidget(&pane);
    child<TableTab>(*m_form, "TableTab").grid().setCurrentUrl(UrlId{1});
    auto &source = child<QPushButton>(pane, "btnHexSource");
    QTRY_VERIFY(source.isEnabled());
    source.click();
    QTRY_VERIFY(!child<QLabel>(pane, "labHexPlace").text().isEmpty());
    QTest::qWait(50);
    for (const char *name : {"txtFindInHex", "cbHexKind", "btnFindInHex", "txtHexOffset",
                             "btnHexSource", "labHexPlace"}) {
        auto &box = child<QWidget>(pane, name);
        QVERIFY2(box.width() >= box.sizeHint().width(), name);
        QVERIFY2(pane.rect().contains(QRect(box.mapTo(&pane, QPoint()), box.size())), name);
    }
    for (const char *name : {"txtFindInHex", "txtHexOffset"}) {
        auto &line = child<QLineEdit>(pane, name);
        QVERIFY2(line.width() > line.fontMetrics().horizontalAdvance(line.placeholderText()), name);
    }
}

void SmallScreenTest::dialogsFit_data() {
    QTest::addColumn<QString>("action");
    for (const char *action :
         {"actColumns", "actFilters", "actImport", "actExport", "actCreateReport", "actCaseTrail",
          "actImportSummary", "actOptions", "actTimeZone", "actErrorLog", "actTips", "actQueryForm",
          "actHashSets"})
        QTest::newRow(action) << QString::fromLatin1(action);
}

/// The screen of the tests is 800 by 800 pixels.
void SmallScreenTest::dialogsFit() {
    QFETCH(QString, action);
    QSize least(9999, 9999);
    QSize size = least;
    QTimer::singleShot(0, qApp, [&least, &size] {
        auto *dialog = qobject_cast<QDialog *>(QApplication::activeModalWidget());
        if (!dialog)
            return;
        least = dialog->minimumSizeHint().expandedTo(dialog->minimumSize());
        size = dialog->size();
        dialog->reject();
    });
    trigger(*m_form, qPrintable(action));
    QVERIFY2(least.width() <= kRoom.width() && least.height() <= kRoom.height(),
             qPrintable(QStringLiteral("%1 by %2").arg(least.width()).arg(least.height())));
    QVERIFY2(size.width() <= m_form->screen()->availableSize().width(),
             qPrintable(QString::number(size.width())));
    QVERIFY(size.height() <= m_form->screen()->availableSize().height());
}

void SmallScreenTest::theReportFormCutsNothing_data() {
    QTest::addColumn<int>("height");
    QTest::newRow("as high as it wants") << 0;
    QTest::newRow("in a low screen") << 420;
}

/// The tags of the project take a line of their own, and the words of some types two.
void SmallScreenTest::theReportFormCutsNothing() {
    QFETCH(int, height);
    SQLite::Database &project = m_desk->program.state.projectDB.connection();
    NamedTags(project).add({.tagID = 0, .name = "Seen", .color = {}, .position = 0, .note = {}});
    trigger(*m_form, "actRefresh");
    QStringList faults{QStringLiteral("no form came")};
    whenShown<ReportForm>([height, &faults](ReportForm &form) {
        faults.clear();
        if (height > 0)
            form.resize(form.width(), height);
        auto &type = child<QComboBox>(form, "cbReportType");
        for (int each = 0; each < type.count(); ++each) {
            type.setCurrentIndex(each);
            QTest::qWait(20);
            for (const auto *box : form.findChildren<QCheckBox *>())
                if (box->isVisible() && box->objectName().startsWith(u"chkInclude") &&
                    box->height() < box->sizeHint().height())
                    faults += QStringLiteral("%1 in %2").arg(box->objectName(), type.currentText());
            if (const QString shots = qEnvironmentVariable("NV_SCREENSHOTS"); !shots.isEmpty())
                form.grab().save(
                    QStringLiteral("%1/report-%2-%3.png").arg(shots).arg(height).arg(each));
        }
        if (height > 0 &&
            child<FormScroll>(form, "reportScroll").verticalScrollBar()->maximum() == 0)
            faults += QStringLiteral("the rest can't be scrolled to");
        form.reject();
    });
    trigger(*m_form, "actCreateReport");
    QVERIFY2(faults.isEmpty(), qPrintable(faults.join(u'|')));
}

void SmallScreenTest::rowsAreReadUpToTheirAddress_data() {
    QTest::addColumn<QSize>("size");
    QTest::addColumn<int>("letters"); // that are read of each column
    QTest::newRow("1280 by 800") << QSize(1280, 800) << 20;
    QTest::newRow("960 by 540") << kRoom << 10;
}

/// With the places beside it, there is no room for all columns.
void SmallScreenTest::rowsAreReadUpToTheirAddress() {
    QFETCH(QSize, size);
    QFETCH(int, letters);
    child<QAction>(*m_form, "actPlaces").setChecked(true);
    m_form->resize(size);
    m_desk->program.state.projectDB.connection().exec(
        "UPDATE URLs SET URL = 'http://www.harbour-news.example/a/long/way/to/it.html', "
        "WebPageTitle = 'Tide tables of the harbour and of its moles', Host = "
        "'www.harbour-news.example', Browser = 'Internet Explorer', Person = 'mara of the "
        "harbour'");
    trigger(*m_form, "actRefresh");
    trigger(*m_form, "actLayoutFit");
    QApplication::processEvents();
    const UrlGrid &grid = child<TableTab>(*m_form, "TableTab").grid();
    const QHeaderView &header = *grid.horizontalHeader();
    const int room = grid.viewport()->width();
    for (const UrlColumn column :
         {UrlColumn::LocalDate, UrlColumn::Host, UrlColumn::WebpageTitle, UrlColumn::Value}) {
        const int section = UrlModel::sectionOf(column);
        const int right = header.sectionViewportPosition(section) + header.sectionSize(section);
        QVERIFY2(right <= room, qPrintable(QString::number(right)));
        QVERIFY(header.sectionSize(section) >= letters * grid.fontMetrics().averageCharWidth());
    }
    const QModelIndex date = grid.model()->index(0, UrlModel::sectionOf(UrlColumn::LocalDate));
    QVERIFY2(header.sectionSize(date.column()) >
                 grid.fontMetrics().horizontalAdvance(date.data().toString()),
             "part of a date is another one");
    if (const QString shots = qEnvironmentVariable("NV_SCREENSHOTS"); !shots.isEmpty())
        m_form->grab().save(QStringLiteral("%1/rows-%2.png").arg(shots).arg(size.width()));
    QVERIFY(header.length() > room);
    const QVariant tip = grid.model()->headerData(UrlModel::sectionOf(UrlColumn::WebpageTitle),
                                                  Qt::Horizontal, Qt::ToolTipRole);
    QVERIFY(tip.toString().contains(QStringLiteral("Title")));
}

void SmallScreenTest::longNamesDontWidenIt() {
    const std::string longName(200, 'w');
    StoredQueries(m_desk->program.state.projectDB.connection())
        .save({longName, "SELECT * FROM URLs"});
    const fs::path base = m_desk->folder.path() / longName / longName;
    fs::create_directories(base);
    setRootPath(m_desk->program, base);
    trigger(*m_form, "actClose");
    m_form->takePath(m_desk->folder.path() / "case.nvp");
    child<TableTab>(*m_form, "TableTab").chooseQuery(QString::fromStdString(longName));
    QApplication::processEvents();
    QCOMPARE(tooLarge(), QString());
}

void SmallScreenTest::aLongProjectNameLeavesTheStepsTheirRoom() {
    trigger(*m_form, "actClose");
    const std::string name = std::string(200, 'w') + ".nvp";
    storeFilenameINI(m_desk->program.settings, m_desk->folder.write(name, "x"));
    m_form = std::make_unique<MainForm>(m_desk->program, m_desk->dialogs);
    m_form->resize(kRoom);
    m_form->show();
    auto &recent = child<QCommandLinkButton>(*m_form, "btnRecent1");
    QTRY_VERIFY(recent.isVisible());
    QVERIFY(recent.text().contains(QStringLiteral("\u2026")));
    QVERIFY(recent.accessibleName().contains(QString::fromStdString(name)));
    QVERIFY(recent.toolTip().contains(QString::fromStdString(name)));
    auto &steps = child<QWidget>(child<QWidget>(*m_form, "WelcomePage"), "StepsPane");
    QVERIFY2(steps.width() > recent.width(), qPrintable(QString::number(steps.width())));
}

void SmallScreenTest::theStepsOfAnEmptyProjectFit() {
    m_desk->dialogs.answer = m_desk->folder.path() / "empty.nvp";
    trigger(*m_form, "actNew");
    m_form->resize(kRoom);
    auto &empty = child<QWidget>(*m_form, "EmptyPage");
    m_desk->dialogs.answer = m_desk->folder.path() / "evidence";
    child<QPushButton>(empty, "btnStepFolder").click();
    QTRY_VERIFY(child<QPushButton>(empty, "btnStepClear").isVisible());
    auto &steps = child<QWidget>(empty, "StepsPane");
    QTRY_VERIFY2(steps.width() <= steps.parentWidget()->width(),
                 qPrintable(QString::number(steps.width())));
    for (const QPushButton *button : steps.findChildren<QPushButton *>())
        QVERIFY2(button->width() >= button->sizeHint().width(), qPrintable(button->objectName()));
}

void SmallScreenTest::itStartsNoLargerThanTheScreen() {
    const QSize screen = m_form->screen()->availableSize();
    QVERIFY(m_form->frameGeometry().width() <= screen.width());
    QVERIFY(m_form->frameGeometry().height() <= screen.height());
}

void SmallScreenTest::aSizeThatWasKeptFromALargerScreenIsCut() {
    const QSize screen = m_form->screen()->availableSize();
    m_form->resize(screen * 2);
    keepWindowLayout(*m_form, m_desk->program.settings);
    MainForm again(m_desk->program, m_desk->dialogs);
    again.show();
    QVERIFY(again.frameGeometry().width() <= screen.width());
    QVERIFY(again.frameGeometry().height() <= screen.height());
}

void SmallScreenTest::aFlowGoesOnInTheNextLine() {
    QWidget bar;
    auto *flow = new FlowLayout(&bar);
    flow->setContentsMargins(0, 0, 0, 0);
    std::vector<QPushButton *> buttons;
    for (int i = 0; i < 4; ++i) {
        buttons.push_back(new QPushButton(QStringLiteral("A button")));
        flow->addWidget(buttons.back());
    }
    const QSize whole = flow->sizeHint();
    bar.resize(whole);
    bar.show();
    QCOMPARE(buttons.back()->y(), buttons.front()->y());
    const int half = whole.width() / 2 + 10;
    QVERIFY(flow->heightForWidth(half) >= 2 * whole.height());
    bar.resize(half, flow->heightForWidth(half));
    QApplication::processEvents();
    QCOMPARE(buttons[2]->x(), buttons[0]->x());
    QVERIFY(buttons[2]->y() > buttons[0]->y());
    QVERIFY(flow->minimumSize().width() < whole.width() / 2);
}

} // namespace nv

QTEST_MAIN(nv::SmallScreenTest)
#include "small_screen_test.moc"

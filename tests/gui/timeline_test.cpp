#include "gui/Desk.h"
#include "platform/qt/ChartPainter.h"
#include "platform/qt/QtText.h"
#include "ui/limits/TimeStrip.h"
#include "ui/table/TableTab.h"

#include <QComboBox>
#include <QElapsedTimer>
#include <QHelpEvent>
#include <QLabel>
#include <QSignalSpy>
#include <QTest>
#include <QToolButton>
#include <QToolTip>
#include <QWheelEvent>

// The bar of time above the table.
namespace nv {

using namespace test;

class TimelineTest : public QObject {
    Q_OBJECT

  private slots:
    void init();

    void aDragChoosesASpan();
    void theWheelZoomsAroundThePointer();
    void keysStepAndChoose();
    void emptyBarsAreNotChosen();
    void barsSayWhatTheyHold();
    void aNarrowLegendLeavesOutTheSmallestParts();
    void aNarrowSummaryKeepsItsCounts();
    void textsFitOrAreLeftOut();
    void itLooksRightInBothPalettes();
    void aMillionEventsAreDrawnAtOnce();
    void theTableShowsTheChosenTimeOnly();
    void foldedItsChipSaysWhatItLimits();

  private:
    static std::int64_t secondOf(int day, int hour = 12) {
        return Date::fromCivil({2011, 3, day, hour, 0, 0}).unixSeconds();
    }
    /// An event on each day of March but from the 11th to the 14th, and ten on the 20th.
    static TimedEvents march() {
        TimedEvents events;
        events.parts = {"History", "Cache"};
        for (int day = 1; day <= 31; ++day)
            for (int event = 0; event < (day == 20 ? 10 : 1); ++event)
                if (day < 11 || day > 14) {
                    events.seconds.push_back(secondOf(day));
                    events.part.push_back(static_cast<std::uint8_t>(event % 2));
                }
        events.undated = 3;
        return events;
    }
    QPoint barPoint(std::size_t bar) {
        return {(m_strip->leftOf(bar) + m_strip->leftOf(bar + 1)) / 2, m_strip->height() / 2};
    }
    void turnWheel(std::size_t bar, int angle) {
        QWheelEvent wheel(barPoint(bar), m_strip->mapToGlobal(barPoint(bar)), {}, {0, angle},
                          Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
        QApplication::sendEvent(m_strip.get(), &wheel);
    }

    std::unique_ptr<TimeStrip> m_strip;
};

void TimelineTest::init() {
    m_strip = std::make_unique<TimeStrip>();
    m_strip->resize(900, 120);
    m_strip->show();
    m_strip->setEvents(march(), QStringLiteral("Europe/Berlin"));
    m_strip->setUnit(TimeUnit::day);
    m_strip->activateWindow();
    m_strip->setFocus();
}

void TimelineTest::aDragChoosesASpan() {
    const QSignalSpy chosen(m_strip.get(), &TimeStrip::spanChosen);
    QTest::mousePress(m_strip.get(), Qt::LeftButton, {}, barPoint(9));
    QTest::mouseMove(m_strip.get(), barPoint(4));
    QTest::mouseMove(m_strip.get(), barPoint(2));
    QTest::mouseRelease(m_strip.get(), Qt::LeftButton, {}, barPoint(2));
    QCOMPARE(chosen.size(), 1);
    QCOMPARE(chosen[0][0].toLongLong(), qint64{secondOf(3, 0)});
    QCOMPARE(chosen[0][1].toLongLong(), qint64{secondOf(11, 0)});
    const QSignalSpy cleared(m_strip.get(), &TimeStrip::spanCleared);
    QTest::keyClick(m_strip.get(), Qt::Key_Escape);
    QTest::keyClick(m_strip.get(), Qt::Key_Escape);
    QCOMPARE(cleared.size(), 1);
    QVERIFY(!m_strip->chosen());
}

void TimelineTest::theWheelZoomsAroundThePointer() {
    m_strip->setUnit(std::nullopt);
    QCOMPARE(m_strip->bars().unit, TimeUnit::day);
    const TimeSpan whole = m_strip->shown();
    turnWheel(19, 120);
    const TimeSpan half = m_strip->shown();
    QVERIFY(half.end - half.begin < (whole.end - whole.begin) * 6 / 10);
    QVERIFY(half.holds(secondOf(20)));
    QCOMPARE(m_strip->bars().unit, TimeUnit::hour);
    for (int turn = 0; turn < 40; ++turn)
        turnWheel(0, 120);
    QCOMPARE(m_strip->shown().end - m_strip->shown().begin, std::int64_t{1800});
    for (int turn = 0; turn < 40; ++turn)
        turnWheel(0, -120);
    QCOMPARE(m_strip->shown(), whole);
}

void TimelineTest::keysStepAndChoose() {
    const QSignalSpy chosen(m_strip.get(), &TimeStrip::spanChosen);
    QTest::keyClick(m_strip.get(), Qt::Key_Right);
    QTest::keyClick(m_strip.get(), Qt::Key_Right);
    QVERIFY2(m_strip->accessibleDescription().startsWith(QStringLiteral("2011-03-02: 1 events")),
             qPrintable(m_strip->accessibleDescription()));
    QTest::keyClick(m_strip.get(), Qt::Key_Right, Qt::ShiftModifier);
    QTest::keyClick(m_strip.get(), Qt::Key_Return);
    QCOMPARE(chosen.size(), 1);
    QCOMPARE(chosen[0][0].toLongLong(), qint64{secondOf(2, 0)});
    QCOMPARE(chosen[0][1].toLongLong(), qint64{secondOf(4, 0)});
    QTest::keyClick(m_strip.get(), Qt::Key_End);
    QVERIFY(m_strip->accessibleDescription().startsWith(QStringLiteral("2011-03-31")));
    const TimeSpan whole = m_strip->shown();
    QTest::keyClick(m_strip.get(), Qt::Key_Plus);
    QVERIFY(m_strip->shown().end - m_strip->shown().begin < whole.end - whole.begin);
    QTest::keyClick(m_strip.get(), Qt::Key_Minus);
    QCOMPARE(m_strip->shown(), whole);
}

void TimelineTest::emptyBarsAreNotChosen() {
    const QSignalSpy chosen(m_strip.get(), &TimeStrip::spanChosen);
    QTest::mouseClick(m_strip.get(), Qt::LeftButton, {}, barPoint(11));
    QCOMPARE(chosen.size(), 0);
    m_strip->setEvents({}, {});
    QTest::mouseClick(m_strip.get(), Qt::LeftButton, {}, {100, 60});
    for (const Qt::Key key :
         {Qt::Key_Left, Qt::Key_Home, Qt::Key_End, Qt::Key_Plus, Qt::Key_Return, Qt::Key_Escape})
        QTest::keyClick(m_strip.get(), key);
    turnWheel(0, 120);
    QCOMPARE(chosen.size(), 0);
    QCOMPARE(m_strip->summary(), QStringLiteral("No rows"));
}

void TimelineTest::barsSayWhatTheyHold() {
    QCOMPARE(m_strip->textOf(19), QStringLiteral("2011-03-20: 10 events (History 5, Cache 5)"));
    QCOMPARE(m_strip->textOf(99), QString());
    QCOMPARE(m_strip->summary(),
             QStringLiteral("2011-03-01 12:00 to 2011-03-31 12:00, Europe/Berlin; one bar is a "
                            "day; the highest has 10; 3 rows without a date"));
}

void TimelineTest::aNarrowLegendLeavesOutTheSmallestParts() {
    TimedEvents events;
    events.parts = {"Bookmarks", "Cookies", "Cache", "History"};
    for (std::uint8_t part = 0; part < 4; ++part)
        for (int event = 0; event <= part; ++event) {
            events.seconds.push_back(secondOf(1 + event));
            events.part.push_back(part);
        }
    m_strip->setEvents(events, QStringLiteral("UTC"));
    m_strip->resize(1600, 120);
    m_strip->grab();
    QCOMPARE(m_strip->legend().names,
             QStringList({QStringLiteral("History"), QStringLiteral("Cache"),
                          QStringLiteral("Cookies"), QStringLiteral("Bookmarks")}));
    QVERIFY(m_strip->legend().others.isEmpty());
    m_strip->resize(420, 120);
    const QImage image = m_strip->grab().toImage();
    if (const QString place = qEnvironmentVariable("NV_SCREENSHOTS"); !place.isEmpty())
        image.save(QStringLiteral("%1/time-narrow.png").arg(place));
    const TimeStrip::Legend legend = m_strip->legend();
    QVERIFY(!legend.names.isEmpty() && legend.names.size() < 4);
    QCOMPARE(legend.names.front(), QStringLiteral("History"));
    QCOMPARE(legend.others, QStringLiteral("+%1").arg(4 - legend.names.size()));
}

/// What it counts is read to the last, and the rest where the mouse rests.
void TimelineTest::aNarrowSummaryKeepsItsCounts() {
    const QString whole = m_strip->summary();
    QCOMPARE(m_strip->summaryIn(5000), whole);
    const int room = m_strip->fontMetrics().horizontalAdvance(whole) * 3 / 4;
    const QString cut = m_strip->summaryIn(room);
    QVERIFY2(cut.endsWith(QStringLiteral("; the highest has 10; 3 rows without a date")),
             qPrintable(cut));
    QVERIFY(m_strip->fontMetrics().horizontalAdvance(cut) <= room);
    QVERIFY(m_strip->summaryIn(room / 2).startsWith(QStringLiteral("the highest has 10")));
    QVERIFY(m_strip->legendText().startsWith(QStringLiteral("History: ")));
    QCOMPARE(m_strip->legendText().count(u'\n'), 1);
    QHelpEvent help(QEvent::ToolTip, {20, 8}, m_strip->mapToGlobal(QPoint(20, 8)));
    QApplication::sendEvent(m_strip.get(), &help);
    QTRY_VERIFY(QToolTip::text().contains(QStringLiteral("History:")));
    QVERIFY(QToolTip::text().replace(QChar::Nbsp, u' ').contains(QStringLiteral("0 shows all")));
    QToolTip::hideText();
}

void TimelineTest::textsFitOrAreLeftOut() {
    const QChar cut(0x2026);
    for (int width = 120; width < 1400; width += 40) {
        m_strip->resize(width, 120);
        m_strip->grab();
        const QString said = m_strip->summaryIn(width);
        const QString ofBar = m_strip->textIn(2, width);
        for (const QString &text : {said, ofBar}) {
            QVERIFY(m_strip->fontMetrics().horizontalAdvance(text) <= width);
            QVERIFY2(!text.contains(cut), qPrintable(text));
        }
        QVERIFY(width < 300 || !said.isEmpty());
        for (const QString &name : m_strip->legend().names)
            QVERIFY2(name == QStringLiteral("History") || name == QStringLiteral("Cache"),
                     qPrintable(name));
    }
}

/// NV_SCREENSHOTS keeps them to be looked at.
void TimelineTest::itLooksRightInBothPalettes() {
    m_strip->setHours(true);
    m_strip->resize(900, 240);
    m_strip->setChosen(TimeSpan{secondOf(16, 0), secondOf(23, 0)});
    for (const bool isDark : {false, true}) {
        QPalette palette;
        palette.setColor(QPalette::Base, isDark ? QColor(0x1E, 0x1E, 0x1E) : QColor(Qt::white));
        palette.setColor(QPalette::Text, isDark ? QColor(Qt::white) : QColor(Qt::black));
        m_strip->setPalette(palette);
        const QImage image = m_strip->grab().toImage();
        if (const QString place = qEnvironmentVariable("NV_SCREENSHOTS"); !place.isEmpty())
            image.save(QStringLiteral("%1/time-%2.png")
                           .arg(place, isDark ? QStringLiteral("dark") : QStringLiteral("light")));
        const auto isGround = [&](const QPoint &at) {
            return image.pixelColor(at) == palette.color(QPalette::Base);
        };
        bool isDrawn = false; // low above the axis
        for (int y = 60; y < 120; ++y)
            isDrawn |= image.pixelColor((m_strip->leftOf(0) + m_strip->leftOf(1)) / 2, y) ==
                       chartColor(1, palette);
        QVERIFY(isDrawn);
        QVERIFY(!isGround({(m_strip->leftOf(19) + m_strip->leftOf(20)) / 2, 40}));
        QVERIFY(isGround({(m_strip->leftOf(0) + m_strip->leftOf(1)) / 2, 40}));
    }
}

void TimelineTest::aMillionEventsAreDrawnAtOnce() {
    TimedEvents events;
    events.parts = {"History", "Cache"};
    std::uint64_t state = 1;
    for (int event = 0; event < 1'000'000; ++event) {
        state = state * 6364136223846793005U + 1442695040888963407U;
        events.seconds.push_back(1262304000 + static_cast<std::int64_t>(state >> 37));
        events.part.push_back(static_cast<std::uint8_t>(event % 2));
    }
    QElapsedTimer timer;
    timer.start();
    m_strip->setUnit(std::nullopt);
    m_strip->setEvents(std::move(events), QStringLiteral("UTC"));
    const QImage image = m_strip->grab().toImage();
    const qint64 first = timer.restart();
    turnWheel(3, 120);
    m_strip->grab();
    qInfo("drawn in %lld ms, zoomed in %lld ms", static_cast<long long>(first),
          static_cast<long long>(timer.elapsed()));
    QVERIFY(!image.isNull());
    QVERIFY2(first < 3000, "ten times as long as it may take");
}

void TimelineTest::theTableShowsTheChosenTimeOnly() {
    Desk desk;
    MainForm form(desk.program, desk.dialogs);
    form.resize(1280, 800);
    form.show();
    openExample(desk, form);
    auto &table = child<TableTab>(form, "TableTab");
    const std::size_t all = table.table()->rowCount();
    trigger(form, "actTime");
    auto &strip = child<TimeStrip>(form, "TimeStrip");
    QVERIFY(strip.isVisible());
    QVERIFY(strip.bars().count > 0);
    std::size_t bar = 0;
    while (strip.bars().totalOf(bar) == 0)
        ++bar;
    const std::size_t wanted = strip.bars().totalOf(bar);
    const QPoint place((strip.leftOf(bar) + strip.leftOf(bar + 1)) / 2, strip.height() / 2);
    QTest::mouseClick(&strip, Qt::LeftButton, {}, place);
    QCOMPARE(table.table()->rowCount(), wanted);
    QCOMPARE(table.table()->hiddenCount(), all - wanted);
    QVERIFY(child<QToolButton>(form, "btnChip0").isVisible());
    QVERIFY(child<QLabel>(form, "labFilters").text().contains(QStringLiteral("rows hidden")));
    if (const QString shots = qEnvironmentVariable("NV_SCREENSHOTS"); !shots.isEmpty())
        form.grab().save(shots + QStringLiteral("/time-window.png"));
    child<QComboBox>(form, "cbTimeStack").setCurrentIndex(1);
    emit child<QComboBox>(form, "cbTimeStack").activated(1);
    std::size_t shown = 0; // the strip goes on showing the times that are hidden
    for (std::size_t each = 0; each < strip.bars().count; ++each)
        shown += strip.bars().totalOf(each);
    QVERIFY(shown > wanted);
    child<QToolButton>(form, "btnChip0").click();
    QTRY_COMPARE(table.table()->rowCount(), all);
    QVERIFY(!strip.chosen());
    trigger(form, "actUndo");
    QCOMPARE(table.table()->rowCount(), wanted);
    QVERIFY(strip.chosen());
}

void TimelineTest::foldedItsChipSaysWhatItLimits() {
    Desk desk;
    MainForm form(desk.program, desk.dialogs);
    form.show();
    openExample(desk, form);
    auto &table = child<TableTab>(form, "TableTab");
    const std::size_t all = table.table()->rowCount();
    trigger(form, "actTime");
    auto &strip = child<TimeStrip>(form, "TimeStrip");
    std::size_t bar = 0;
    while (strip.bars().totalOf(bar) == 0)
        ++bar;
    QTest::mouseClick(&strip, Qt::LeftButton, {},
                      QPoint((strip.leftOf(bar) + strip.leftOf(bar + 1)) / 2, strip.height() / 2));
    QVERIFY(table.table()->rowCount() < all);
    trigger(form, "actTime");
    QVERIFY(table.table()->rowCount() < all);
    QVERIFY(child<QToolButton>(form, "btnChip0").isVisible());
    trigger(form, "actTime");
    trigger(form, "actClose");
    QCOMPARE(strip.summary(), QStringLiteral("No rows"));
}

} // namespace nv

QTEST_MAIN(nv::TimelineTest)
#include "timeline_test.moc"

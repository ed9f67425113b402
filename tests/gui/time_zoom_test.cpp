#include "time/Date.h"
#include "ui/limits/TimeStrip.h"

#include <QTest>
#include <QWheelEvent>

// Zooming in the bar of time: what the examiner aims at stays in sight.
namespace nv {

class TimeZoomTest : public QObject {
    Q_OBJECT

  private slots:
    void init();

    void theWheelLeadsToTheEventsBelowIt();
    void keysZoomAroundTheirBar();
    void keysZoomAroundTheChosenTime();

  private:
    static std::int64_t secondOf(const CivilTime &time) {
        return Date::fromCivil(time).unixSeconds();
    }
    /// Few events, fifteen years without any, some in an autumn, and a crowd on its last day but
    /// one.
    void showYears() {
        TimedEvents events;
        events.parts = {"Cache"};
        const auto add = [&events](const CivilTime &time, int count) {
            for (int event = 0; event < count; ++event) {
                events.seconds.push_back(secondOf(time));
                events.part.push_back(0);
            }
        };
        add({2011, 3, 1, 9, 0, 0}, 3);
        add({2026, 10, 17, 12, 0, 0}, 40);
        add({2026, 11, 21, 23, 0, 0}, 1000);
        add({2026, 11, 22, 0, 49, 0}, 5);
        m_strip.resize(1000, 120);
        m_strip.setUnit(std::nullopt);
        m_strip.setEvents(std::move(events), QStringLiteral("UTC"));
    }
    void zoomIn(int times) {
        for (int time = 0; time < times; ++time)
            QTest::keyClick(&m_strip, Qt::Key_Plus);
    }
    QPoint lastBar() {
        const std::size_t last = m_strip.bars().count - 1;
        return {(m_strip.leftOf(last) + m_strip.leftOf(last + 1)) / 2, m_strip.height() / 2};
    }
    void turnWheel(const QPoint &place, int angle) {
        QWheelEvent wheel(place, m_strip.mapToGlobal(place), {}, {0, angle}, Qt::NoButton,
                          Qt::NoModifier, Qt::NoScrollPhase, false);
        QApplication::sendEvent(&m_strip, &wheel);
    }

    TimeStrip m_strip;
};

void TimeZoomTest::init() {
    m_strip.setEvents({}, {}); // a new span is shown in whole
    m_strip.setChosen(std::nullopt);
    m_strip.show();
    m_strip.activateWindow();
    m_strip.setFocus();
    showYears();
}

void TimeZoomTest::theWheelLeadsToTheEventsBelowIt() {
    const std::int64_t crowd = secondOf({2026, 11, 21, 23, 0, 0});
    const TimeSpan whole = m_strip.shown();
    const QPoint pointer = lastBar();
    for (int notch = 0; notch < 20; ++notch) {
        turnWheel(pointer, 120);
        QVERIFY(m_strip.shown().holds(crowd));
        QVERIFY(m_strip.bars().highest() >= 1000);
        QVERIFY(m_strip.shown().begin >= whole.begin && m_strip.shown().end <= whole.end);
    }
    std::size_t bar = 0;
    while (m_strip.bars().totalOf(bar) < 1000)
        ++bar;
    QVERIFY(m_strip.leftOf(bar) <= pointer.x() && pointer.x() <= m_strip.leftOf(bar + 1));
    const QImage image = m_strip.grab().toImage();
    if (const QString place = qEnvironmentVariable("NV_SCREENSHOTS"); !place.isEmpty())
        image.save(QStringLiteral("%1/time-wheel.png").arg(place));
    for (int notch = 0; notch < 25; ++notch)
        turnWheel(pointer, -120);
    QCOMPARE(m_strip.shown(), whole);
}

void TimeZoomTest::keysZoomAroundTheirBar() {
    const TimeSpan whole = m_strip.shown();
    QTest::keyClick(&m_strip, Qt::Key_Home);
    zoomIn(12);
    QVERIFY(m_strip.shown().holds(whole.begin));
    QCOMPARE(m_strip.bars().highest(), std::uint64_t{3});
    QVERIFY2(m_strip.accessibleDescription().startsWith(QStringLiteral("2011-03-01")),
             qPrintable(m_strip.accessibleDescription()));
    QTest::keyClick(&m_strip, Qt::Key_0);
    QCOMPARE(m_strip.shown(), whole);
    QTest::keyClick(&m_strip, Qt::Key_End);
    zoomIn(4);
    QVERIFY(m_strip.bars().highest() >= 1000);
    QTest::keyClick(&m_strip, Qt::Key_0, Qt::ControlModifier);
    QCOMPARE(m_strip.shown(), whole);
    // At the edge of what is shown the next bar comes into sight.
    QTest::keyClick(&m_strip, Qt::Key_End);
    zoomIn(3);
    const std::int64_t begin = m_strip.shown().begin;
    for (std::size_t bar = 0; bar <= m_strip.bars().count; ++bar)
        QTest::keyClick(&m_strip, Qt::Key_Left);
    QVERIFY(m_strip.shown().begin < begin);
}

void TimeZoomTest::keysZoomAroundTheChosenTime() {
    const std::int64_t autumn = secondOf({2026, 10, 17, 12, 0, 0});
    m_strip.setChosen(TimeSpan{secondOf({2026, 10, 1, 0, 0, 0}), secondOf({2026, 11, 1, 0, 0, 0})});
    zoomIn(10);
    QVERIFY(m_strip.shown().holds(autumn));
    QCOMPARE(m_strip.bars().highest(), std::uint64_t{40});
    // The bar that was taken by Enter stays the one of the keys while the table loads.
    QTest::keyClick(&m_strip, Qt::Key_0);
    QTest::keyClick(&m_strip, Qt::Key_Home);
    QTest::keyClick(&m_strip, Qt::Key_Return);
    showYears();
    zoomIn(2);
    QVERIFY(m_strip.shown().holds(secondOf({2011, 3, 1, 9, 0, 0})));
}

} // namespace nv

QTEST_MAIN(nv::TimeZoomTest)
#include "time_zoom_test.moc"

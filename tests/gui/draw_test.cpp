#include <QTest>
class DrawTest : public QObject { Q_OBJECT };
QTEST_MAIN(DrawTest)
#include "draw_test.moc"

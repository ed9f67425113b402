#include "maintenance/ui/SettingBox.h"

#include <QComboBox>
#include <QSpinBox>
#include <QTest>
#include <QVBoxLayout>

namespace nv {

class SettingBoxTest : public QObject {
    Q_OBJECT

  private slots:
    void aSettingGetsAControlOfItsKind();
};

/// A new setting is a row; the dialog needs no line for it.
void SettingBoxTest::aSettingGetsAControlOfItsKind() {
    using namespace setting;
    QWidget tab;
    QVBoxLayout column(&tab);
    const auto boxOf = [&column](const SettingFacts &row, const char *value) {
        return addSettingBox(column, row, value);
    };
    const auto ofKind = boxOf(choice("BEYOND", "Sides", "Left;Right", "Left", "")
                                  .shownAs("cbSides", "&Sides:", "Where it stands."),
                              "Right");
    QCOMPARE(ofKind.value(), std::string("Right"));
    QCOMPARE(ofKind.control->objectName(), QStringLiteral("cbSides"));
    QCOMPARE(ofKind.control->accessibleName(), QStringLiteral("Sides"));
    QCOMPARE(ofKind.control->toolTip(), QStringLiteral("Where it stands."));
    qobject_cast<QComboBox *>(ofKind.control)->setCurrentText(QStringLiteral("Left"));
    QCOMPARE(ofKind.value(), std::string("Left"));
    const auto odd = boxOf(choice("BEYOND", "Sides", "Left;Right", "Left", "")
                               .shownAs("cbOdd", "&Sides:", "Where it stands."),
                           "Sideways");
    QCOMPARE(odd.value(), std::string("Left"));
    const auto count = boxOf(
        number("BEYOND", "Count", 2, 9, "3", "").shownAs("txtCount", "&Count:", "How many."), "4");
    QCOMPARE(count.value(), std::string("4"));
    qobject_cast<QSpinBox *>(count.control)->setValue(40);
    QCOMPARE(count.value(), std::string("9"));
    const auto words = boxOf(
        text("BEYOND", "Words", "", "").shownAs("txtWords", "&Words:", "What is said."), " a b ");
    QCOMPARE(words.value(), std::string("a b"));
    const auto on =
        boxOf(flag("BEYOND", "On", false, "").shownAs("chkOn", "&On", "Whether it is."), "True");
    QCOMPARE(on.value(), std::string("True"));
}

} // namespace nv

QTEST_MAIN(nv::SettingBoxTest)
#include "setting_box_test.moc"

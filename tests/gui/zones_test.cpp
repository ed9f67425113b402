// Exact and classic zones in the windows that ask for one.
#include "app/program/Zones.h"
#include "gui/Desk.h"
#include "ui/import/ImportForm.h"
#include "ui/import/ZoneForm.h"
#include "ui/table/TableTab.h"
#include "ui/table/UrlGrid.h"
#include "ui/table/UrlModel.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTabWidget>
#include <SQLiteCpp/SQLiteCpp.h>

namespace nv {

using namespace test;

class ZonesTest : public QObject {
    Q_OBJECT

  private slots:
    void init();
    void cleanup();
    void exactZonesStandFirst();
    void theSearchFindsPlacesOffsetsAndAbbreviations_data();
    void theSearchFindsPlacesOffsetsAndAbbreviations();
    void nothingFoundCantBeChosen();
    void anExactZoneNamesTheHeading();
    void aSystemWithoutZoneinfoOffersTheClassicOnes();
    void optionsTakeAnExactZone();
    void optionsNameTheNearestOfAnUnknownZone();
    void theWizardTakesTheZoneThatTheEvidenceNames();
    void theWizardOnlyTellsALaterImport();

  private:
    std::string zone() const { return zoneKey(m_desk->program.state.gmtZone); }
    void importFrom(const fs::path &evidence, const std::function<void(ImportForm &)> &look);

    std::unique_ptr<Desk> m_desk;
    std::unique_ptr<MainForm> m_form;
};

void ZonesTest::init() {
    m_desk = std::make_unique<Desk>();
    m_form = std::make_unique<MainForm>(m_desk->program, m_desk->dialogs);
    m_form->show();
}

void ZonesTest::cleanup() {
    m_form.reset();
    m_desk.reset();
}

void ZonesTest::exactZonesStandFirst() {
    ZoneForm dialog(m_desk->program, "15");
    auto &list = child<QListWidget>(dialog, "lstZones");
    QVERIFY(list.item(0)->text().startsWith(QStringLiteral("Exact zones (zoneinfo 20")));
    QVERIFY(list.item(1)->text().startsWith(QStringLiteral("Africa/Abidjan  (UTC+00:00) GMT")));
    QCOMPARE(dialog.key(), std::string("15"));
    QVERIFY(list.currentItem()->text().startsWith(QStringLiteral("(UTC-05:00) Eastern")));
    QVERIFY(child<QLabel>(dialog, "labZoneHint").text().contains(QStringLiteral("Classic zones")));
}

void ZonesTest::theSearchFindsPlacesOffsetsAndAbbreviations_data() {
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("key");
    QTest::newRow("place") << "berlin"
                           << "Europe/Berlin";
    QTest::newRow("two words") << "SAO paulo"
                               << "America/Sao_Paulo";
    QTest::newRow("offset") << "+05:45"
                            << "Asia/Kathmandu";
    QTest::newRow("abbreviation") << "sast johannes"
                                  << "Africa/Johannesburg";
    QTest::newRow("classic") << "stockholm, vienna"
                             << "51";
}

void ZonesTest::theSearchFindsPlacesOffsetsAndAbbreviations() {
    QFETCH(QString, typed);
    QFETCH(QString, key);
    ZoneForm dialog(m_desk->program, "15");
    dialog.show();
    QTest::keyClicks(&child<QLineEdit>(dialog, "txtFindZone"), typed);
    QCOMPARE(QString::fromStdString(dialog.key()), key);
    QTest::keyClick(&dialog, Qt::Key_Return);
    QCOMPARE(dialog.result(), int(QDialog::Accepted));
}

void ZonesTest::nothingFoundCantBeChosen() {
    ZoneForm dialog(m_desk->program, "15");
    dialog.show();
    auto &search = child<QLineEdit>(dialog, "txtFindZone");
    search.setText(QStringLiteral("../../etc/passwd"));
    QCOMPARE(dialog.key(), std::string());
    QTest::keyClick(&dialog, Qt::Key_Return);
    QCOMPARE(dialog.result(), int(QDialog::Rejected));
    auto &list = child<QListWidget>(dialog, "lstZones");
    const QListWidgetItem &last = *list.item(list.count() - 1);
    QCOMPARE(last.text(), QStringLiteral("No zone has all these words"));
    QVERIFY(!last.isHidden());
    search.clear();
    QVERIFY(!dialog.key().empty());
    QVERIFY(last.isHidden());
}

void ZonesTest::anExactZoneNamesTheHeading() {
    openExample(*m_desk, *m_form);
    whenShown<ZoneForm>([](ZoneForm &dialog) {
        QTest::keyClicks(&child<QLineEdit>(dialog, "txtFindZone"), "kolkata");
        QTest::keyClick(&dialog, Qt::Key_Return);
    });
    trigger(*m_form, "actTimeZone");
    QCOMPARE(zone(), std::string("Asia/Kolkata"));
    const int section = UrlModel::sectionOf(UrlColumn::ActionDateLocal);
    QAbstractItemModel &model = *child<TableTab>(*m_form, "TableTab").grid().model();
    const QString heading = model.headerData(section, Qt::Horizontal).toString();
    QVERIFY2(heading.endsWith(QStringLiteral("\n[Asia/Kolkata]")), qPrintable(heading));
    QVERIFY(model.index(0, section).data().toString().endsWith(QStringLiteral(" IST")));
    QCOMPARE(child<QLabel>(*m_form, "labZone").text(), QStringLiteral("Zone: Asia/Kolkata"));
}

void ZonesTest::aSystemWithoutZoneinfoOffersTheClassicOnes() {
    m_desk->program.paths.zoneinfo = m_desk->folder.path() / "none";
    ZoneForm dialog(m_desk->program, "20");
    auto &list = child<QListWidget>(dialog, "lstZones");
    QVERIFY(list.item(0)->text().contains(QStringLiteral("tzdata")));
    QCOMPARE(list.item(1)->text(), QStringLiteral("Classic zones"));
    QCOMPARE(dialog.key(), std::string("20"));
}

void ZonesTest::optionsTakeAnExactZone() {
    openExample(*m_desk, *m_form);
    whenShown<OptionsForm>([](OptionsForm &form) {
        child<QTabWidget>(form, "optionsTabs").setCurrentIndex(2);
        auto &name = child<QLineEdit>(form, "txtExactZone");
        QVERIFY(name.text().isEmpty());
        name.setText(QStringLiteral("Europe/Berlin"));
        QVERIFY(!child<QComboBox>(form, "cbTimeZone").isEnabled());
        QVERIFY(!child<QCheckBox>(form, "chkEnableDSTChanges").isEnabled());
        form.accept();
    });
    trigger(*m_form, "actOptions");
    QCOMPARE(zone(), std::string("Europe/Berlin"));
    QCOMPARE(m_desk->program.settings.readIniValue("OPTIONS", "TimeZoneID", ""),
             std::string("Europe/Berlin"));
    whenShown<OptionsForm>([](OptionsForm &form) {
        child<QTabWidget>(form, "optionsTabs").setCurrentIndex(2);
        auto &name = child<QLineEdit>(form, "txtExactZone");
        QCOMPARE(name.text(), QStringLiteral("Europe/Berlin"));
        name.clear();
        auto &classic = child<QComboBox>(form, "cbTimeZone");
        classic.setCurrentIndex(classic.findData(20));
        form.accept();
    });
    trigger(*m_form, "actOptions");
    QCOMPARE(zone(), std::string("20"));
}

void ZonesTest::optionsNameTheNearestOfAnUnknownZone() {
    whenShown<OptionsForm>([this](OptionsForm &form) {
        auto &name = child<QLineEdit>(form, "txtExactZone");
        name.setText(QStringLiteral("Europe/Berln"));
        form.accept();
        QCOMPARE(m_desk->examiner.heard.back(), std::string("exact-zone-not-set"));
        QVERIFY(form.isVisible());
        QCOMPARE(child<QTabWidget>(form, "optionsTabs").currentIndex(), 2);
        form.reject();
    });
    trigger(*m_form, "actOptions");
}

void ZonesTest::importFrom(const fs::path &evidence,
                           const std::function<void(ImportForm &)> &look) {
    whenShown<ImportForm>([&](ImportForm &wizard) {
        child<QLineEdit>(wizard, "txtStartingDirectory")
            .setText(QString::fromStdString(evidence.string()));
        auto &next = child<QPushButton>(wizard, "btnNext");
        next.click();
        look(wizard);
        next.click();
        next.click();
    });
    trigger(*m_form, "actImport");
}

void ZonesTest::theWizardTakesTheZoneThatTheEvidenceNames() {
    const fs::path evidence = makeEvidence(m_desk->folder);
    fs::create_directories(evidence / "etc");
    fs::create_symlink("/usr/share/zoneinfo/Asia/Kathmandu", evidence / "etc" / "localtime");
    m_desk->dialogs.answer = m_desk->folder.path() / "case.nvp";
    trigger(*m_form, "actNew");
    importFrom(evidence, [](ImportForm &wizard) {
        QVERIFY(child<QLabel>(wizard, "labZoneHint").isVisible());
        QVERIFY(child<QLabel>(wizard, "labZoneHint")
                    .text()
                    .contains(QStringLiteral("names the zone Asia/Kathmandu")));
        QCOMPARE(child<QLabel>(wizard, "labImportZone").text(),
                 QStringLiteral("Times are shown in: Asia/Kathmandu"));
    });
    QCOMPARE(zone(), std::string("Asia/Kathmandu"));
    const double minutes = m_desk->program.state.projectDB.connection()
                               .execAndGet("SELECT round(max(ActionDateLocal - ActionDateUTC) * "
                                           "1440) FROM URLs")
                               .getDouble();
    QCOMPARE(minutes, 345.0);
}

void ZonesTest::theWizardOnlyTellsALaterImport() {
    const fs::path evidence = makeEvidence(m_desk->folder);
    m_desk->dialogs.answer = m_desk->folder.path() / "case.nvp";
    trigger(*m_form, "actNew");
    importFrom(evidence, [this](ImportForm &wizard) {
        QVERIFY(!child<QLabel>(wizard, "labZoneHint").isVisible());
        whenShown<ZoneForm>([](ZoneForm &dialog) {
            QTest::keyClicks(&child<QLineEdit>(dialog, "txtFindZone"), "europe berlin");
            dialog.accept();
        });
        child<QPushButton>(wizard, "btnChooseZone").click();
    });
    QCOMPARE(zone(), std::string("Europe/Berlin"));
    m_desk->folder.write((evidence / "etc" / "timezone").lexically_relative(m_desk->folder.path()),
                         "Asia/Kolkata");
    importFrom(evidence, [](ImportForm &wizard) {
        QVERIFY(child<QLabel>(wizard, "labZoneHint")
                    .text()
                    .contains(QStringLiteral("names the zone Asia/Kolkata")));
    });
    QCOMPARE(zone(), std::string("Europe/Berlin"));
}

} // namespace nv

QTEST_MAIN(nv::ZonesTest)
#include "zones_test.moc"

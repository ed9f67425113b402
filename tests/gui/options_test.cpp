#include "Desk.h"
#include "db/trail/CaseTrail.h"
#include "ui/options/OptionsForm.h"
#include "ui/options/TimeZoneForm.h"
#include "ui/parts/GalleryPart.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QScrollBar>
#include <QSignalSpy>
#include <QSpinBox>
#include <QTabBar>
#include <QTabWidget>
#include <SQLiteCpp/SQLiteCpp.h>

namespace nv {

using namespace test;

class OptionsTest : public QObject {
    Q_OBJECT

  private slots:
    void init();
    void cleanup();
    void everyTabAndControlHasItsName();
    void theSampleFollowsTheFormatAndIsWrittenAtOnce();
    void cancelChangesNothingButTheFormat();
    void okayAppliesToTableAndGallery();
    void noZoneLeadsBackToTheList();
    void scrollBarsAndBoxesAreCoupled();
    void theConnectionIsSwitchedAtOnce();
    void browsingFillsTheBoxes();
    void zonePropertiesStoreNothing();
    void enterMakesANewProject();
    void cancelLeavesTheOpenProject();
    void aClickOutdatesTheGalleryBeforeOkay();
    void theZonesStandByOffset();
    void everyControlSaysWhatItIs();
    void aPlaceInTheEvidenceLeadsBackToItsField();
    void everySettingWithAControlIsShown();

  private:
    void options(const std::function<void(OptionsForm &)> &act) {
        whenShown<OptionsForm>(act);
        trigger(*m_form, "actOptions");
    }
    static void press(OptionsForm &form, const char *name) {
        QTest::mouseClick(&child<QPushButton>(form, name), Qt::LeftButton);
    }
    static void showTab(OptionsForm &form, int index) {
        child<QTabWidget>(form, "optionsTabs").setCurrentIndex(index);
    }
    std::string ini(std::string_view key) {
        return m_desk->program.settings.readIniValue("OPTIONS", key, "(none)");
    }

    std::unique_ptr<Desk> m_desk;
    std::unique_ptr<MainForm> m_form;
};

void OptionsTest::init() {
    m_desk = std::make_unique<Desk>();
    m_form = std::make_unique<MainForm>(m_desk->program, m_desk->dialogs);
    m_form->show();
}

void OptionsTest::cleanup() {
    m_form.reset();
    m_desk.reset();
}

void OptionsTest::everyTabAndControlHasItsName() {
    options([](OptionsForm &form) {
        QStringList tabs;
        const auto &all = child<QTabWidget>(form, "optionsTabs");
        for (int i = 0; i < all.count(); ++i)
            tabs += all.tabText(i);
        QCOMPARE(tabs.join(u','), QStringLiteral("Paths,Date/Time,Time Zone,Gallery,P.A.R.D.,"
                                                 "Thumbnails,Safety,Status,Beyond"));
        for (const char *name : {"txtPathProject",
                                 "txtPathBase",
                                 "txtPathTempFolder",
                                 "txtPathTemplatesFolder",
                                 "txtPathPublish",
                                 "txtPathAgencyLogo",
                                 "btnPath0",
                                 "btnPath5",
                                 "optDateFormat0",
                                 "txtDateFormat",
                                 "optTimeFormat0",
                                 "txtTimeFormat",
                                 "labCurrentDay",
                                 "labCurrentTime",
                                 "chkEnableDSTChanges",
                                 "btnConfigureTimeZone",
                                 "chkIncludeHTML",
                                 "chkIncludePictures",
                                 "chkRedrawHTMLThumbnails",
                                 "chkUsePARD",
                                 "txtPARDFrom",
                                 "txtPARDTo",
                                 "scrollPARDFrom",
                                 "scrollPARDTo",
                                 "labPARD",
                                 "optThumbnailViewers0",
                                 "optThumbnailReports2",
                                 "chkDisableScripts",
                                 "chkVerifyFileContents",
                                 "chkDisableVersionChecking",
                                 "optLocalAreaConnection0",
                                 "txtLocalAreaConnection",
                                 "btnLocalAreaConnection",
                                 "txtStatusRefreshRate",
                                 "VScroll1",
                                 "btnOkay",
                                 "btnCancel",
                                 "chkWideRecordIds",
                                 "chkKeepAllOptions"})
            QVERIFY2(form.findChild<QWidget *>(QLatin1String(name)), name);
        press(form, "btnCancel");
    });
}

void OptionsTest::theSampleFollowsTheFormatAndIsWrittenAtOnce() {
    options([this](OptionsForm &form) {
        showTab(form, 1);
        QCOMPARE(child<QLabel>(form, "labCurrentDay").text(), QStringLiteral("2011-06-15"));
        QVERIFY(child<QRadioButton>(form, "optDateFormat0").isChecked());
        child<QRadioButton>(form, "optDateFormat1").click();
        QCOMPARE(child<QLabel>(form, "labCurrentDay").text(), QStringLiteral("06/15/11"));
        QCOMPARE(ini("DateFormat"), std::string("MM/DD/YY"));
        auto &entry = child<QLineEdit>(form, "txtTimeFormat");
        entry.selectAll();
        QTest::keyClicks(&entry, "h:Nn AM/PM");
        QCOMPARE(child<QLabel>(form, "labCurrentTime").text(), QStringLiteral("12:00 PM"));
        QVERIFY(child<QRadioButton>(form, "optTimeFormat3").isChecked());
        press(form, "btnCancel");
    });
    QCOMPARE(m_desk->program.state.dateFormat, std::string("yyyy-mm-dd"));
}

void OptionsTest::cancelChangesNothingButTheFormat() {
    options([](OptionsForm &form) {
        showTab(form, 6);
        child<QCheckBox>(form, "chkVerifyFileContents").click();
        QTest::keyClick(&form, Qt::Key_Escape);
    });
    QVERIFY(m_desk->program.state.verifyFileSignatures);
    QCOMPARE(ini("VerifyFileSignatures"), std::string("(none)"));
}

void OptionsTest::okayAppliesToTableAndGallery() {
    openExample(*m_desk, *m_form);
    options([](OptionsForm &form) {
        showTab(form, 1);
        child<QRadioButton>(form, "optDateFormat1").click();
        showTab(form, 2);
        auto &zones = child<QComboBox>(form, "cbTimeZone");
        zones.setCurrentIndex(zones.findData(20));
        showTab(form, 3);
        child<QCheckBox>(form, "chkIncludeHTML").click();
        showTab(form, 4);
        child<QCheckBox>(form, "chkUsePARD").click();
        press(form, "btnOkay");
    });
    const ProgramState &state = m_desk->program.state;
    QCOMPARE(state.dateTimeFormat, std::string("MM/DD/YY 24:00:00"));
    QCOMPARE(state.gmtZone.tzTimeZoneID, 20);
    QVERIFY(!m_form->findChild<QCheckBox *>(QStringLiteral("chkIncludeHTML"))->isChecked());
    QVERIFY(m_form->findChild<QCheckBox *>(QStringLiteral("chkPARD"))->isChecked());
    auto &table = child<TableTab>(*m_form, "TableTab");
    QCOMPARE(table.table()->dates().dateFormat, std::string("MM/DD/YY"));
    const auto trail = CaseTrail(m_desk->program.state.projectDB.connection()).entries();
    QCOMPARE(trail.back().action, std::string("Options"));
}

void OptionsTest::noZoneLeadsBackToTheList() {
    options([this](OptionsForm &form) {
        child<QComboBox>(form, "cbTimeZone").setCurrentIndex(-1);
        press(form, "btnOkay");
        QCOMPARE(m_desk->examiner.heard.back(), std::string("zone-not-selected"));
        QVERIFY(form.isVisible());
        QCOMPARE(child<QTabWidget>(form, "optionsTabs").currentIndex(), 2);
        press(form, "btnCancel");
    });
}

void OptionsTest::scrollBarsAndBoxesAreCoupled() {
    options([](OptionsForm &form) {
        showTab(form, 4);
        child<QCheckBox>(form, "chkUsePARD").setChecked(true);
        child<QScrollBar>(form, "scrollPARDFrom").setValue(22);
        QCOMPARE(child<QSpinBox>(form, "txtPARDFrom").value(), 22);
        child<QSpinBox>(form, "txtPARDTo").setValue(50);
        QCOMPARE(child<QScrollBar>(form, "scrollPARDTo").value(), 50);
        QCOMPARE(child<QLabel>(form, "labPARD").text(),
                 QStringLiteral("Pictures of 22% to 50% are shown."));
        showTab(form, 7);
        auto &bar = child<QScrollBar>(form, "VScroll1");
        const int before = bar.value();
        bar.triggerAction(QAbstractSlider::SliderSingleStepAdd);
        QCOMPARE(child<QSpinBox>(form, "txtStatusRefreshRate").value(), before + 1);
        press(form, "btnCancel");
    });
}

void OptionsTest::theConnectionIsSwitchedAtOnce() {
    m_desk->network.status = "ENABLED";
    options([this](OptionsForm &form) {
        showTab(form, 6);
        auto &button = child<QPushButton>(form, "btnLocalAreaConnection");
        QCOMPARE(button.text(), QStringLiteral("Disable"));
        press(form, "btnLocalAreaConnection");
        QCOMPARE(m_desk->examiner.heard.back(), std::string("network-disabled"));
        QCOMPARE(button.text(), QStringLiteral("Enable"));
        press(form, "btnLocalAreaConnection");
        QCOMPARE(m_desk->network.status, std::string("ENABLED"));
        m_desk->network.status.clear();
        child<QRadioButton>(form, "optLocalAreaConnection1").click();
        QCOMPARE(child<QLabel>(form, "labConnectionStatus").text(),
                 QStringLiteral("Network Connection Not Found"));
        press(form, "btnCancel");
    });
}

void OptionsTest::browsingFillsTheBoxes() {
    m_desk->dialogs.answer = m_desk->folder.path();
    options([this](OptionsForm &form) {
        press(form, "btnPath4");
        QCOMPARE(child<QLineEdit>(form, "txtPathPublish").text().toStdString(),
                 m_desk->folder.path().string());
        press(form, "btnCancel");
    });
}

void OptionsTest::zonePropertiesStoreNothing() {
    const auto zone = m_desk->program.state.gmtZone.tzTimeZoneID;
    options([](OptionsForm &form) {
        showTab(form, 2);
        whenShown<TimeZoneForm>([](TimeZoneForm &properties) {
            QCOMPARE(properties.windowTitle(), QStringLiteral("Time Zone Properties"));
            child<QComboBox>(properties, "cbTimeZone").setCurrentIndex(0);
            QVERIFY(!child<QLabel>(properties, "labUTCOffset").text().isEmpty());
            properties.reject();
        });
        press(form, "btnConfigureTimeZone");
        press(form, "btnCancel");
    });
    QCOMPARE(m_desk->program.state.gmtZone.tzTimeZoneID, zone);
}

/// The window as an examiner meets it, not the quick way of the other tests.
struct RealNewProject final : WindowDialogs {
    std::optional<fs::path> chooseProject() override { return {}; }
    std::optional<fs::path> createNewProjectFilename() override { return {}; }
    std::optional<fs::path> chooseSaveAs() override { return {}; }
    std::optional<fs::path> chooseFolder(const std::string &, const fs::path &) override {
        return {};
    }
};

void OptionsTest::enterMakesANewProject() {
    QVERIFY(m_desk->program.settings.writeIniValue("FILE PATHS", "Project",
                                                   m_desk->folder.path().string()));
    RealNewProject dialogs;
    MainForm form(m_desk->program, dialogs);
    whenShown<OptionsForm>([](OptionsForm &options) {
        QCOMPARE(options.windowTitle(), QStringLiteral("New Project"));
        QTest::keyClick(&options, Qt::Key_Return);
    });
    trigger(form, "actNew");
    QCOMPARE(m_desk->program.state.projectDBPath, m_desk->folder.path() / "Case.nvp");
    QVERIFY(m_desk->examiner.heard.empty());
}

void OptionsTest::cancelLeavesTheOpenProject() {
    openExample(*m_desk, *m_form);
    const fs::path open = m_desk->program.state.projectDBPath;
    m_desk->dialogs.answer.reset();
    trigger(*m_form, "actNew");
    QCOMPARE(m_desk->program.state.projectDBPath, open);
}

void OptionsTest::aClickOutdatesTheGalleryBeforeOkay() {
    options([](OptionsForm &form) {
        QSignalSpy outdated(&form, &OptionsForm::galleryOutdated);
        showTab(form, 3);
        child<QCheckBox>(form, "chkIncludeHTML").click();
        child<QCheckBox>(form, "chkIncludePictures").click();
        QCOMPARE(outdated.count(), 2);
        child<QCheckBox>(form, "chkRedrawHTMLThumbnails").click();
        QCOMPARE(outdated.count(), 2);
        press(form, "btnCancel");
    });
    QVERIFY(m_desk->program.state.galleryIncludeHTML);
}

void OptionsTest::theZonesStandByOffset() {
    const fs::path file = m_desk->program.paths.zones();
    options([file](OptionsForm &form) {
        const auto &list = child<QComboBox>(form, "cbTimeZone");
        SQLite::Database zones(file.string());
        SQLite::Statement row(zones, "SELECT Time_Zone_ID, UTC_Offset, Landmarks FROM Time_Zones "
                                     "ORDER BY UTC_Offset ASC, Time_Zone_ID");
        int place = 0;
        for (; row.executeStep(); ++place) {
            QCOMPARE(list.itemData(place).toInt(), row.getColumn(0).getInt());
            const std::string text =
                "(UTC" + row.getColumn(1).getString() + ") " + row.getColumn(2).getString();
            QCOMPARE(list.itemText(place).toStdString(), text);
        }
        QCOMPARE(list.count(), place);
        press(form, "btnCancel");
    });
}

/// By its own text, an accessible name or a label that leads to it; and with a tooltip.
void OptionsTest::everyControlSaysWhatItIs() {
    options([](OptionsForm &form) {
        QList<QWidget *> labelled;
        for (const QLabel *label : form.findChildren<QLabel *>())
            labelled += label->buddy();
        for (QWidget *control : form.findChildren<QWidget *>()) {
            const auto *button = qobject_cast<QAbstractButton *>(control);
            const bool ofOurs = button || qobject_cast<QLineEdit *>(control) ||
                                qobject_cast<QComboBox *>(control) ||
                                qobject_cast<QSpinBox *>(control) ||
                                qobject_cast<QScrollBar *>(control);
            if (!ofOurs || control->objectName().isEmpty() ||
                qobject_cast<QTabBar *>(control->parentWidget()) ||
                control->objectName().startsWith(QStringLiteral("qt_")))
                continue;
            const QByteArray name = control->objectName().toUtf8();
            const bool isNamed = (button && !button->text().isEmpty()) ||
                                 !control->accessibleName().isEmpty() || labelled.contains(control);
            QVERIFY2(isNamed, name);
            const bool closes = name == "btnOkay" || name == "btnCancel";
            QVERIFY2(closes || !control->toolTip().isEmpty(), name);
        }
        press(form, "btnCancel");
    });
}

void OptionsTest::aPlaceInTheEvidenceLeadsBackToItsField() {
    openExample(*m_desk, *m_form);
    const fs::path base = m_desk->program.state.rootPath;
    options([this, base](OptionsForm &form) {
        showTab(form, 8);
        auto &publish = child<QLineEdit>(form, "txtPathPublish");
        publish.setText(QString::fromStdString((base / "reports").string()));
        press(form, "btnOkay");
        QCOMPARE(m_desk->examiner.heard.back(), std::string("lies-in-evidence"));
        QVERIFY(form.isVisible());
        QCOMPARE(child<QTabWidget>(form, "optionsTabs").currentIndex(), 0);
        QCOMPARE(form.focusWidget(), &publish);
        press(form, "btnCancel");
    });
}

void OptionsTest::everySettingWithAControlIsShown() {
    options([this](OptionsForm &form) {
        for (const SettingFacts &row : settingsTable()) {
            if (!row.control.name)
                continue;
            QVERIFY2(form.findChild<QWidget *>(QLatin1String(row.control.name)), row.control.name);
            if (row.kind != SettingKind::flag)
                continue;
            auto &box = child<QCheckBox>(form, row.control.name);
            QCOMPARE(box.text(), QString::fromUtf8(row.control.label));
            box.click();
        }
        press(form, "btnOkay");
    });
    for (const SettingFacts &row : settingsTable())
        if (row.control.name && row.kind == SettingKind::flag)
            QCOMPARE(m_desk->program.settings.readIniValue(row.section, row.key, "(none)"),
                     std::string(row.byDefault == "True" ? "False" : "True"));
}

} // namespace nv

QTEST_MAIN(nv::OptionsTest)
#include "options_test.moc"

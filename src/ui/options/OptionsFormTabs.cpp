// The tabs of the Options dialog.
#include "app/program/Zones.h"
#include "platform/qt/QtText.h"
#include "ui/options/OptionsForm.h"
#include "ui/options/OptionsWidgets.h"

#include <QButtonGroup>
#include <QCompleter>
#include <QGridLayout>
#include <QGroupBox>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTabWidget>

#include <algorithm>
#include <array>

namespace nv {

namespace {

constexpr int kLongestFormat = 200; // letters
constexpr int kBetweenZones = 8;    // pixels

struct Size {
    int width;
    const char *text;
};
constexpr std::array<Size, 3> kSizes = {
    {{200, "200 x 150 pixels"}, {160, "160 x 120 pixels"}, {120, "120 x 80 pixels"}}};

constexpr std::array<const char *, 15> kLetters = {
    "yyyy = year (eg: 2009)", "yy = year (eg: 09)",  "d = day (eg: 9)",     "dd = day (eg: 09)",
    "ddd = day (eg: Mon)",    "m = month (eg: 9)",   "mm = month (eg: 09)", "mmm = month (eg: Sep)",
    "h = hour (eg: 9)",       "Hh = hour (eg: 09)",  "n = minute (eg: 9)",  "Nn = minute (eg: 09)",
    "s = second (eg: 9)",     "Ss = second (eg: 9)", "AM/PM = 12hr clock"};

/// A tab and its column.
QVBoxLayout *columnOf(QWidget &tab) {
    return new QVBoxLayout(&tab);
}

} // namespace

QLineEdit *OptionsForm::addPath(QFormLayout &form, int index, const QString &label,
                                const char *name, const std::filesystem::path &path,
                                const QString &hint) {
    auto *line = new QWidget;
    auto *row = new QHBoxLayout(line);
    row->setContentsMargins(0, 0, 0, 0);
    auto *text = named(new QLineEdit(pathToQt(path)), name);
    text->setToolTip(hint);
    auto *button = new QPushButton(tr("Browse..."));
    button->setObjectName(QStringLiteral("btnPath%1").arg(index));
    const QString plain = QString(label).remove(u'&').remove(u':');
    text->setAccessibleName(plain);
    button->setAccessibleName(tr("Browse for: %1").arg(plain));
    button->setToolTip(tr("Choose: %1").arg(plain));
    button->setAutoDefault(false);
    connect(button, &QPushButton::clicked, this, [this, index] { btnPathClick(index); });
    row->addWidget(text, 1);
    row->addWidget(button);
    auto *caption = new QLabel(label);
    caption->setBuddy(text);
    form.addRow(caption, line);
    m_paths.push_back(text);
    return text;
}

QWidget *OptionsForm::addSetting(QVBoxLayout &column, const SettingFacts &row) {
    m_settings.emplace_back(&row, addSettingBox(column, row, shownText(m_start, row)));
    return m_settings.back().second.control;
}

QWidget *OptionsForm::newPaths() {
    auto *tab = new QWidget;
    auto *form = new QFormLayout(tab);
    const bool isNew = m_mode == Mode::newProject;
    const bool open = m_program.thisClass.projectDB.isOpen();
    QLineEdit *project = addPath(*form, 0, tr("&Project file:"), "txtPathProject",
                                 m_start.projectDBPath, tr("The file that holds the case"));
    project->setReadOnly(!isNew);
    QLineEdit *base = addPath(*form, 1, tr("&Base folder:"), "txtPathBase", m_start.rootPath,
                              tr("Cached files of the evidence are looked for below it"));
    base->setEnabled(isNew || open);
    if (isNew)
        base->setPlaceholderText(tr("The folder of the first import"));
    addPath(*form, 2, tr("&Temp folder:"), "txtPathTempFolder", m_start.tempFolderPath,
            tr("Scratch files, until the program ends"));
    addPath(*form, 3, tr("T&emplates folder:"), "txtPathTemplatesFolder", m_start.templatesPath,
            tr("Templates made of rebuilt pages"));
    addPath(*form, 4, tr("P&ublish folder:"), "txtPathPublish", m_start.publishTempFolder,
            tr("Offered when a report is published"));
    addPath(*form, 5, tr("Agency &logo:"), "txtPathAgencyLogo", m_start.agencyLogoPath,
            tr("The picture at the head of reports"));
    if (auto *browse = tab->findChild<QPushButton *>(QStringLiteral("btnPath0")))
        browse->setEnabled(isNew);
    if (auto *browse = tab->findChild<QPushButton *>(QStringLiteral("btnPath1")))
        browse->setEnabled(isNew || open);
    form->addRow(newHint(tr("The Temp folder holds until the program ends; at each start it is "
                            "TempFolderPath of the section [DEFAULT] of the settings file. Each "
                            "run works in a folder of its own in there.")));
    return tab;
}

QWidget *OptionsForm::newFormats(const char *group, const char *box, const QStringList &formats,
                                 const QString &chosen, QLineEdit *&entry, QLabel *&sample,
                                 const char *name,
                                 std::string (*choose)(Program &, std::string_view)) {
    auto *frame = new QGroupBox(QString::fromLatin1(name));
    auto *column = columnOf(*frame);
    entry = named(new QLineEdit(chosen), box);
    entry->setMaxLength(kLongestFormat);
    entry->setToolTip(tr("Any format of the letters below"));
    entry->setAccessibleName(tr("%1 format").arg(QLatin1String(name)));
    sample = named(new QLabel, name[0] == 'D' ? "labCurrentDay" : "labCurrentTime");
    sample->setTextFormat(Qt::PlainText);
    auto *choices = new QButtonGroup(this);
    for (const QString &format : formats) {
        auto *button = new QRadioButton(format);
        button->setObjectName(QLatin1String(group) + QString::number(choices->buttons().size()));
        button->setChecked(format == chosen);
        button->setToolTip(tr("Now it is %1").arg(toQt(sampleOf(m_program, fromQt(format)))));
        choices->addButton(button);
        column->addWidget(button);
        connect(button, &QRadioButton::clicked, entry, [entry, format] { entry->setText(format); });
    }
    column->addWidget(entry);
    column->addWidget(sample);
    const auto follow = [this, choices, &sample, choose](const QString &text) {
        choices->setExclusive(false);
        for (QAbstractButton *button : choices->buttons())
            button->setChecked(button->text() == text);
        choices->setExclusive(true);
        sample->setText(toQt(choose(m_program, fromQt(text))));
    };
    connect(entry, &QLineEdit::textChanged, this, follow);
    sample->setText(toQt(sampleOf(m_program, fromQt(chosen))));
    return frame;
}

QWidget *OptionsForm::newDateTime() {
    auto *tab = new QWidget;
    auto *grid = new QGridLayout(tab);
    grid->addWidget(newFormats("optDateFormat", "txtDateFormat",
                               {QStringLiteral("YYYY-MM-DD"), QStringLiteral("MM/DD/YY"),
                                QStringLiteral("DD/MM/YYYY"), QStringLiteral("dd mmm yyyy")},
                               toQt(m_start.dateFormat), m_dateFormat, m_day, "Date",
                               &chooseDateFormat),
                    0, 0);
    grid->addWidget(newFormats("optTimeFormat", "txtTimeFormat",
                               {QStringLiteral("24:00:00"), QStringLiteral("Hh:Nn"),
                                QStringLiteral("h:Nn:Ss AM/PM"), QStringLiteral("h:Nn AM/PM")},
                               toQt(m_start.timeFormat), m_timeFormat, m_time, "Time",
                               &chooseTimeFormat),
                    0, 1);
    auto *letters = new QGridLayout;
    constexpr int kColumns = 3;
    int place = 0;
    for (const char *text : kLetters) {
        letters->addWidget(newHint(QString::fromLatin1(text)), place / kColumns, place % kColumns);
        ++place;
    }
    grid->addLayout(letters, 1, 0, 1, 2);
    grid->addWidget(
        newHint(tr("A format is kept as soon as it is chosen; views follow with Okay.")), 2, 0, 1,
        2);
    grid->setRowStretch(3, 1);
    return tab;
}

QWidget *OptionsForm::newZone() {
    auto *tab = new QWidget;
    auto *column = columnOf(*tab);
    addExactZone(*column);
    m_zone = named(new QComboBox, "cbTimeZone");
    m_zone->setAccessibleName(tr("Time zone"));
    for (const ZoneRow &zone : m_zones)
        m_zone->addItem(toQt(zone.listText()), zone.timeZoneID);
    m_zone->setCurrentIndex(m_start.timeZoneID ? m_zone->findData(*m_start.timeZoneID) : -1);
    m_zone->setPlaceholderText(tr("Select a time zone"));
    m_zone->setToolTip(tr("All dates of the window, of reports and of exports"));
    auto *caption = new QLabel(tr("Class&ic zone:"));
    caption->setBuddy(m_zone);
    column->addSpacing(kBetweenZones);
    column->addWidget(caption);
    column->addWidget(m_zone);
    column->addWidget(newHint(
        tr("Those of earlier versions: each knows one offset for all years and the daylight rule "
           "of the United States, and shows no dates of more than ten years ago.")));
    m_dst = addBox(*column, "chkEnableDSTChanges", tr("&Daylight saving time changes"),
                   tr("Off, all dates are shown in standard time."), m_start.enableDSTChanges);
    auto *properties =
        named(new QPushButton(tr("Time Zone &Properties...")), "btnConfigureTimeZone");
    properties->setAutoDefault(false);
    properties->setToolTip(tr("Look at the offset and the daylight time of any zone"));
    connect(properties, &QPushButton::clicked, this, &OptionsForm::showZoneProperties);
    column->addWidget(properties, 0, Qt::AlignLeft);
    column->addStretch(1);
    showExactZone();
    return tab;
}

/// Its law is taken from the system, and goes before the classic zone.
void OptionsForm::addExactZone(QVBoxLayout &column) {
    m_exactZone = named(new QLineEdit(toQt(m_start.exactZone)), "txtExactZone");
    m_exactZone->setAccessibleName(tr("Exact zone"));
    m_exactZone->setPlaceholderText(tr("None: the classic zone below"));
    m_exactZone->setToolTip(tr("Times are shown by the law of each date"));
    QStringList names;
    for (const std::string &name : exactZones(m_program).names())
        names += toQt(name);
    auto *completer = new QCompleter(names, m_exactZone);
    completer->setCaseSensitivity(Qt::CaseInsensitive);
    completer->setFilterMode(Qt::MatchContains);
    m_exactZone->setCompleter(completer);
    connect(m_exactZone, &QLineEdit::textChanged, this, &OptionsForm::showExactZone);
    auto *caption = new QLabel(tr("E&xact zone:"));
    caption->setBuddy(m_exactZone);
    column.addWidget(caption);
    column.addWidget(m_exactZone);
    column.addWidget(newHint(tr("By name, such as Europe/Berlin: each date by the law of its time, "
                                "dates of any age.")));
}

void OptionsForm::showExactZone() {
    const bool isExact = !m_exactZone->text().trimmed().isEmpty();
    for (QWidget *classic : std::initializer_list<QWidget *>{m_zone, m_dst})
        classic->setEnabled(!isExact);
}

QWidget *OptionsForm::newGallery() {
    auto *tab = new QWidget;
    auto *column = columnOf(*tab);
    for (const FlagKey &key : {FlagKey("GalleryIncludeHTML"), FlagKey("GalleryIncludePictures")})
        connect(qobject_cast<QCheckBox *>(addSetting(*column, key.row())), &QCheckBox::clicked,
                this, &OptionsForm::galleryOutdated);
    addSetting(*column, FlagKey("RedrawThumbIfPageRebuilt").row());
    auto *form = new QFormLayout;
    m_perPage = newNumbers("cbThumbnailsPerPage", {50, 100, 200, 300, 500, 1000},
                           m_start.galleryRecordsPerPage);
    m_perPage->setAccessibleName(tr("Thumbnails per page"));
    m_perPage->setToolTip(tr("More on a page take longer to be drawn"));
    form->addRow(tr("Thumbnails per pa&ge:"), m_perPage);
    m_timeout =
        newNumbers("cbRedrawTimeout", {5, 10, 15, 20, 30, 60}, m_start.thumbnailRedrawTimeout);
    m_timeout->setAccessibleName(tr("Redraw time-out in seconds"));
    m_timeout->setToolTip(tr("A page that isn't drawn by then gets no thumbnail"));
    form->addRow(tr("Redraw &time-out (seconds):"), m_timeout);
    column->addLayout(form);
    column->addWidget(newHint(tr("Both numbers hold until the program ends.")));
    column->addStretch(1);
    return tab;
}

QWidget *OptionsForm::newPard() {
    auto *tab = new QWidget;
    auto *column = columnOf(*tab);
    m_pard = addBox(*column, "chkUsePARD", tr("&Use P.A.R.D."),
                    tr("Photograph Aspect Ratio Differential (Best range: 15% to 40%): the gallery "
                       "shows only pictures of these shapes, until the program ends."),
                    m_start.enablePARD);
    auto *form = new QFormLayout;
    m_from = addScrolled(*form, tr("&From:"), tr("The least difference that is shown"),
                         {"txtPARDFrom", "scrollPARDFrom", Qt::Horizontal, 100}, m_start.pardFrom);
    m_to = addScrolled(*form, tr("&To:"), tr("The greatest difference that is shown"),
                       {"txtPARDTo", "scrollPARDTo", Qt::Horizontal, 100}, m_start.pardTo);
    for (QSpinBox *number : {m_from, m_to})
        number->setSuffix(QStringLiteral(" %"));
    column->addLayout(form);
    m_pardText = named(new QLabel, "labPARD");
    column->addWidget(m_pardText);
    column->addStretch(1);
    connect(m_pard, &QCheckBox::toggled, this, &OptionsForm::showPard);
    connect(m_from, &QSpinBox::valueChanged, this, &OptionsForm::showPard);
    connect(m_to, &QSpinBox::valueChanged, this, &OptionsForm::showPard);
    return tab;
}

QButtonGroup *OptionsForm::addSizes(QFormLayout &form, const QString &label, const char *name,
                                    int width) {
    auto *group = new QButtonGroup(this);
    auto *box = new QWidget;
    auto *column = new QVBoxLayout(box);
    column->setContentsMargins(0, 0, 0, 12);
    for (const Size &size : kSizes) {
        auto *button = new QRadioButton(QString::fromLatin1(size.text));
        button->setObjectName(QLatin1String(name) + QString::number(group->buttons().size()));
        button->setChecked(size.width == width);
        button->setAccessibleName(tr("%1 %2").arg(label, button->text()));
        button->setToolTip(tr("Thumbnails that are drawn from now on have this size."));
        group->addButton(button, size.width);
        column->addWidget(button);
    }
    form.addRow(label, box);
    return group;
}

QWidget *OptionsForm::newThumbnails() {
    auto *tab = new QWidget;
    auto *form = new QFormLayout(tab);
    m_viewerSizes =
        addSizes(*form, tr("Viewers:"), "optThumbnailViewers", m_start.viewerThumbnailWidth);
    m_reportSizes =
        addSizes(*form, tr("Reports:"), "optThumbnailReports", m_start.reportThumbnailWidth);
    form->addRow(newHint(tr("Thumbnails that are drawn from now on have this size.")));
    return tab;
}

QWidget *OptionsForm::newSafety() {
    auto *tab = new QWidget;
    auto *column = columnOf(*tab);
    for (const FlagKey &key : {FlagKey("DisableScriptTags"), FlagKey("VerifyFileSignatures"),
                               FlagKey("DisableFileVersionCheck")})
        addSetting(*column, key.row());
    constexpr TextKey kDefaultConnection = "NetworkConnectionName";
    auto *frame = new QGroupBox(tr("Network connection"));
    auto *grid = new QGridLayout(frame);
    m_connection = new QButtonGroup(this);
    auto *usual =
        named(new QRadioButton(toQt(kDefaultConnection->byDefault)), "optLocalAreaConnection0");
    auto *other = named(new QRadioButton(tr("&Other:")), "optLocalAreaConnection1");
    m_connection->addButton(usual, 0);
    m_connection->addButton(other, 1);
    const bool isUsual = m_start.networkConnectionName == kDefaultConnection->byDefault;
    (isUsual ? usual : other)->setChecked(true);
    usual->setToolTip(tr("The connection that is taken when no other one is named"));
    other->setToolTip(tr("A connection of another name"));
    m_connectionName =
        named(new QLineEdit(toQt(m_start.networkConnectionName)), "txtLocalAreaConnection");
    m_connectionName->setAccessibleName(tr("Name of the connection"));
    m_connectionName->setToolTip(tr("As the system names it, such as eth0"));
    m_switch = named(new QPushButton, "btnLocalAreaConnection");
    m_switch->setAutoDefault(false);
    m_switch->setToolTip(tr("Cut the network before pages are looked at; it happens at once"));
    m_status = named(new QLabel, "labConnectionStatus");
    grid->addWidget(usual, 0, 0, 1, 2);
    grid->addWidget(other, 1, 0);
    grid->addWidget(m_connectionName, 1, 1);
    grid->addWidget(m_switch, 2, 0);
    grid->addWidget(m_status, 2, 1);
    column->addWidget(frame);
    column->addStretch(1);
    connect(m_connection, &QButtonGroup::idClicked, this, &OptionsForm::showConnection);
    connect(m_connectionName, &QLineEdit::editingFinished, this, &OptionsForm::showConnection);
    connect(m_switch, &QPushButton::clicked, this, &OptionsForm::btnLocalAreaConnectionClick);
    return tab;
}

QWidget *OptionsForm::newStatus() {
    auto *tab = new QWidget;
    auto *form = new QFormLayout(tab);
    constexpr int kMostSeconds = 60;
    m_rate = addScrolled(*form, tr("&Refresh rate (seconds):"),
                         tr("0 shows each step, which slows a task down"),
                         {"txtStatusRefreshRate", "VScroll1", Qt::Vertical, kMostSeconds},
                         m_start.progressBarRefreshRate);
    form->addRow(newHint(tr("The status window of a long task changes its texts this often.")));
    return tab;
}

/// All that have a control and stand on no other tab.
QWidget *OptionsForm::newBeyond() {
    auto *tab = new QWidget;
    auto *column = columnOf(*tab);
    for (const SettingFacts &row : settingsTable()) {
        const auto isIt = [&row](const auto &shown) { return shown.first == &row; };
        if (row.control.name && std::none_of(m_settings.begin(), m_settings.end(), isIt))
            addSetting(*column, row);
    }
    column->addStretch(1);
    return tab;
}

} // namespace nv

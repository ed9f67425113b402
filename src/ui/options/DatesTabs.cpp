#include "ui/options/DatesTabs.h"

#include "platform/qt/QtText.h"
#include "ui/options/OptionsWidgets.h"
#include "ui/options/TimeZoneForm.h"

#include <QButtonGroup>
#include <QCompleter>
#include <QGridLayout>
#include <QGroupBox>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>

#include <array>

namespace nv {

namespace {

constexpr int kLongestFormat = 200; // letters
constexpr int kBetweenZones = 8;    // pixels

constexpr std::array<const char *, 15> kLetters = {
    "yyyy = year (eg: 2009)", "yy = year (eg: 09)",  "d = day (eg: 9)",     "dd = day (eg: 09)",
    "ddd = day (eg: Mon)",    "m = month (eg: 9)",   "mm = month (eg: 09)", "mmm = month (eg: Sep)",
    "h = hour (eg: 9)",       "Hh = hour (eg: 09)",  "n = minute (eg: 9)",  "Nn = minute (eg: 09)",
    "s = second (eg: 9)",     "Ss = second (eg: 9)", "AM/PM = 12hr clock"};

} // namespace

DateTimeTab::DateTimeTab(Program &program, const Options &start) : m_program(program) {
    auto *grid = new QGridLayout(this);
    grid->addWidget(newFormats("optDateFormat", "txtDateFormat",
                               {QStringLiteral("YYYY-MM-DD"), QStringLiteral("MM/DD/YY"),
                                QStringLiteral("DD/MM/YYYY"), QStringLiteral("dd mmm yyyy")},
                               toQt(start.dateFormat), m_dateFormat, "Date", &chooseDateFormat),
                    0, 0);
    grid->addWidget(newFormats("optTimeFormat", "txtTimeFormat",
                               {QStringLiteral("24:00:00"), QStringLiteral("Hh:Nn"),
                                QStringLiteral("h:Nn:Ss AM/PM"), QStringLiteral("h:Nn AM/PM")},
                               toQt(start.timeFormat), m_timeFormat, "Time", &chooseTimeFormat),
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
}

QWidget *DateTimeTab::newFormats(const char *group, const char *box, const QStringList &formats,
                                 const QString &chosen, QLineEdit *&entry, const char *name,
                                 Choose choose) {
    auto *frame = new QGroupBox(QString::fromLatin1(name));
    auto *column = new QVBoxLayout(frame);
    entry = named(new QLineEdit(chosen), box);
    entry->setMaxLength(kLongestFormat);
    entry->setToolTip(tr("Any format of the letters below"));
    entry->setAccessibleName(tr("%1 format").arg(QLatin1String(name)));
    auto *sample = named(new QLabel, name[0] == 'D' ? "labCurrentDay" : "labCurrentTime");
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
    const auto follow = [this, choices, sample, choose](const QString &text) {
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

void DateTimeTab::putInto(Options &options) const {
    options.dateFormat = fromQt(m_dateFormat->text().trimmed());
    options.timeFormat = fromQt(m_timeFormat->text().trimmed());
}

ZoneTab::ZoneTab(const std::vector<ZoneRow> &zones, const std::vector<std::string> &exact,
                 const Options &start)
    : m_zones(zones) {
    auto *column = new QVBoxLayout(this);
    addExactZone(*column, exact, start.exactZone);
    m_zone = named(new QComboBox, "cbTimeZone");
    m_zone->setAccessibleName(tr("Time zone"));
    for (const ZoneRow &zone : m_zones)
        m_zone->addItem(toQt(zone.listText()), zone.timeZoneID);
    m_zone->setCurrentIndex(start.timeZoneID ? m_zone->findData(*start.timeZoneID) : -1);
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
                   tr("Off, all dates are shown in standard time."), start.enableDSTChanges);
    auto *properties =
        named(new QPushButton(tr("Time Zone &Properties...")), "btnConfigureTimeZone");
    properties->setAutoDefault(false);
    properties->setToolTip(tr("Look at the offset and the daylight time of any zone"));
    connect(properties, &QPushButton::clicked, this, &ZoneTab::showZoneProperties);
    column->addWidget(properties, 0, Qt::AlignLeft);
    column->addStretch(1);
    showExactZone();
}

/// Its law is taken from the system, and goes before the classic zone.
void ZoneTab::addExactZone(QVBoxLayout &column, const std::vector<std::string> &names,
                           const std::string &chosen) {
    m_exactZone = named(new QLineEdit(toQt(chosen)), "txtExactZone");
    m_exactZone->setAccessibleName(tr("Exact zone"));
    m_exactZone->setPlaceholderText(tr("None: the classic zone below"));
    m_exactZone->setToolTip(tr("Times are shown by the law of each date"));
    QStringList known;
    for (const std::string &name : names)
        known += toQt(name);
    auto *completer = new QCompleter(known, m_exactZone);
    completer->setCaseSensitivity(Qt::CaseInsensitive);
    completer->setFilterMode(Qt::MatchContains);
    m_exactZone->setCompleter(completer);
    connect(m_exactZone, &QLineEdit::textChanged, this, &ZoneTab::showExactZone);
    auto *caption = new QLabel(tr("E&xact zone:"));
    caption->setBuddy(m_exactZone);
    column.addWidget(caption);
    column.addWidget(m_exactZone);
    column.addWidget(newHint(tr("By name, such as Europe/Berlin: each date by the law of its time, "
                                "dates of any age.")));
}

void ZoneTab::showExactZone() {
    const bool isExact = !m_exactZone->text().trimmed().isEmpty();
    for (QWidget *classic : std::initializer_list<QWidget *>{m_zone, m_dst})
        classic->setEnabled(!isExact);
}

void ZoneTab::showZoneProperties() {
    TimeZoneForm(m_zones, m_zone->currentIndex(), this).exec();
}

void ZoneTab::stay() {
    (m_zone->isEnabled() ? static_cast<QWidget *>(m_zone) : m_exactZone)->setFocus();
}

void ZoneTab::putInto(Options &options) const {
    options.timeZoneID.reset();
    if (m_zone->currentIndex() >= 0)
        options.timeZoneID = m_zone->currentData().toInt();
    options.exactZone = fromQt(m_exactZone->text().trimmed());
    options.enableDSTChanges = m_dst->isChecked();
}

} // namespace nv

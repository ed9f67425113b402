#include "ui/import/ZoneForm.h"

#include "app/program/Zones.h"
#include "base/Trap.h"
#include "platform/qt/QtText.h"
#include "platform/qt/WithinScreen.h"
#include "time/ZoneDatabase.h"

#include <QBoxLayout>
#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <fmt/format.h>

#include <algorithm>

namespace nv {

namespace {

constexpr int kKey = Qt::UserRole;
constexpr int kSearched = Qt::UserRole + 1;

std::vector<ZoneRow> classicZones(Program &program) {
    // The list itself tells when it is empty; the failure is in the log.
    return ZoneDatabase(program.paths.zones(), program.log).listZones();
}

QLabel *newSentence(const char *name, const QString &text) {
    auto *label = new QLabel(text);
    label->setObjectName(QLatin1String(name));
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    return label;
}

bool isHeading(const QListWidgetItem &item) {
    return item.data(kKey).toString().isEmpty();
}

} // namespace

ZoneForm::ZoneForm(Program &program, const std::string &key, QWidget *parent) : QDialog(parent) {
    setObjectName(QStringLiteral("ZoneForm"));
    setWindowTitle(tr("Time Zone"));
    m_search = new QLineEdit;
    m_search->setObjectName(QStringLiteral("txtFindZone"));
    m_search->setAccessibleName(tr("Search for a zone"));
    m_search->setPlaceholderText(tr("Search, such as berlin, sao paulo or +05:30"));
    m_search->setClearButtonEnabled(true);
    m_list = new QListWidget;
    m_list->setObjectName(QStringLiteral("lstZones"));
    m_list->setAccessibleName(tr("Time zones"));
    m_list->setUniformItemSizes(true);
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    m_okay = buttons->button(QDialogButtonBox::Ok);
    auto *column = new QVBoxLayout(this);
    column->addWidget(newSentence("labZones", tr("Times are shown in:")));
    column->addWidget(m_search);
    column->addWidget(m_list, 1);
    column->addWidget(newSentence(
        "labZoneHint",
        tr("Exact zones go by the law of each date, with its own abbreviation. Classic zones are "
           "those of earlier versions: each knows one offset for all years and the daylight rule "
           "of the United States, and shows no dates of more than ten years ago.")));
    column->addWidget(buttons);
    addExact(program);
    addClassic(program);
    m_nothing = addHeading(tr("No zone has all these words"));
    m_nothing->setHidden(true);
    connect(m_search, &QLineEdit::textChanged, this, &ZoneForm::search);
    connect(m_list, &QListWidget::currentItemChanged, this, &ZoneForm::showChoice);
    connect(m_list, &QListWidget::itemDoubleClicked, this, [this] {
        if (!this->key().empty())
            accept();
    });
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    select(key);
    showChoice();
    resizeWithinScreen(*this, {520, 560});
    m_search->setFocus();
}

void ZoneForm::addExact(Program &program) {
    const ExactZones zones = exactZones(program);
    if (!zones.areThere()) {
        addHeading(tr("No exact zones: this system lacks %1 (package tzdata)")
                       .arg(pathToQt(program.paths.zoneinfo)));
        return;
    }
    addHeading(
        tr("Exact zones (zoneinfo %1), with their clock of today").arg(toQt(zones.version())));
    const Date now = Date::fromTimePoint(program.around.clock.now());
    for (const std::string &name : zones.names())
        // A zone whose file is damaged costs itself only.
        logFailureOf(program.log, "OptionsForm.InitTimeZone()", [&] {
            const ZoneMoment law = zones.find(name)->at(now);
            const std::string offset = offsetText(law.offset);
            addZone(toQt(fmt::format("{}  (UTC{}:{}) {}", name, offset.substr(0, 3),
                                     offset.substr(3), law.abbreviation)),
                    name);
        });
}

void ZoneForm::addClassic(Program &program) {
    const auto zones = classicZones(program);
    addHeading(zones.empty() ? tr("The list of the classic zones can't be read")
                             : tr("Classic zones"));
    for (const ZoneRow &zone : zones)
        addZone(toQt(zone.listText()), fmt::format("{}", zone.timeZoneID));
}

QListWidgetItem *ZoneForm::addHeading(const QString &text) {
    auto *item = new QListWidgetItem(text, m_list);
    QFont bold = m_list->font();
    bold.setBold(true);
    item->setFont(bold);
    item->setFlags(Qt::ItemIsEnabled);
    return item;
}

void ZoneForm::addZone(const QString &text, const std::string &key) {
    auto *item = new QListWidgetItem(text, m_list);
    item->setData(kKey, toQt(key));
    item->setData(kSearched, QString(text).replace(u'_', u' ').toLower());
}

void ZoneForm::select(const std::string &key) {
    for (int row = 0; row < m_list->count(); ++row) {
        if (!key.empty() && m_list->item(row)->data(kKey).toString() == toQt(key)) {
            m_list->setCurrentRow(row);
            m_list->scrollToItem(m_list->item(row), QAbstractItemView::PositionAtCenter);
            return;
        }
    }
}

/// All words must be in it. The selection stays where it is shown, else it goes to the first hit,
/// so that Enter takes what was searched for.
void ZoneForm::search(const QString &text) {
    const QStringList words =
        QString(text).replace(u'_', u' ').toLower().split(u' ', Qt::SkipEmptyParts);
    QListWidgetItem *first = nullptr;
    for (int row = 0; row < m_list->count(); ++row) {
        QListWidgetItem *item = m_list->item(row);
        const QString searched = item->data(kSearched).toString();
        const bool hit = isHeading(*item) ||
                         std::all_of(words.begin(), words.end(), [&searched](const QString &word) {
                             return searched.contains(word);
                         });
        item->setHidden(!hit);
        if (hit && !first && !isHeading(*item))
            first = item;
    }
    m_nothing->setHidden(first != nullptr);
    QListWidgetItem *current = m_list->currentItem();
    if (!current || current->isHidden() || isHeading(*current))
        m_list->setCurrentItem(first);
    if (m_list->currentItem())
        m_list->scrollToItem(m_list->currentItem());
    showChoice();
}

void ZoneForm::showChoice() {
    m_okay->setEnabled(!key().empty());
}

std::string ZoneForm::key() const {
    const QListWidgetItem *item = m_list->currentItem();
    return item && !item->isHidden() ? fromQt(item->data(kKey).toString()) : std::string();
}

QString zoneName(Program &program, const std::string &key) {
    for (const ZoneRow &zone : classicZones(program))
        if (fmt::format("{}", zone.timeZoneID) == key)
            return toQt(zone.listText());
    return toQt(key);
}

} // namespace nv

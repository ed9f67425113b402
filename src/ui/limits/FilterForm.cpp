#include "ui/limits/FilterForm.h"

#include "platform/qt/QtText.h"

#include <QBoxLayout>
#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

namespace nv {

namespace {

QString listed(const FilterWords &words) {
    QStringList texts;
    for (const std::string_view word : words.all())
        texts += toQt(word);
    return texts.join(QStringLiteral(", "));
}

/// What a flag admits, so that nobody has to guess.
QString ruleOf(const FilterFlag &flag) {
    if (flag.group == FilterGroup::Source)
        return FilterForm::tr("When it is off, these records are hidden whatever else is ticked");
    QStringList parts;
    const auto add = [&parts](const QString &what, const FilterWords &words) {
        if (words.count > 0)
            parts += what.arg(listed(words));
    };
    if (flag.flag == &RecordFilters::showMissingFileExt)
        return FilterForm::tr("The URL's file name has no extension");
    add(FilterForm::tr("Extension: %1"), flag.extensions);
    add(FilterForm::tr("Category: %1"), flag.categories);
    add(FilterForm::tr("Category contains: %1"), flag.categoryParts);
    add(FilterForm::tr("URL contains: %1"), flag.urlParts);
    return parts.join(u'\n');
}

} // namespace

FilterForm::FilterForm(const RecordFilters &filters, Examiner &examiner, QWidget *parent,
                       const OriginChoices &origins)
    : QDialog(parent), m_examiner(examiner), m_start(filters) {
    setObjectName(QStringLiteral("FilterForm"));
    setWindowTitle(tr("Filters"));
    auto *column = new QVBoxLayout(this);
    m_column = column;
    QCheckBox *enable = newBox(QStringLiteral("chkEnableFilters"), tr("&Enable filters"),
                               &RecordFilters::enableFilters);
    enable->setToolTip(tr("Hide the records that nothing ticked below shows"));
    column->addWidget(enable);

    m_groups = new QWidget;
    auto *groups = new QVBoxLayout(m_groups);
    groups->setContentsMargins(0, 0, 0, 0);
    groups->addWidget(newGroup(tr("Data sources"), FilterGroup::Source, 4));
    groups->addWidget(newOrigins(origins));
    groups->addWidget(newGroup(tr("Kinds of file"), FilterGroup::Kind, 5));
    groups->addWidget(newGroup(tr("Sites"), FilterGroup::Site, 5));
    m_all = newBox(QStringLiteral("chkShowAll"), tr("Show &all"), &RecordFilters::showAll);
    m_all->setToolTip(tr("Shows every kind of the ticked data sources. Ticks or clears all boxes "
                         "of this window, \"Enable filters\" too"));
    auto *hint = new QLabel(tr("A record is shown when its data source is ticked and one of its "
                               "kinds or sites is. Cookies and bookmarks need no kind."));
    hint->setWordWrap(true);
    auto *last = new QHBoxLayout; // low screens have no room for one below the other
    last->setSpacing(16);
    last->addWidget(m_all);
    last->addWidget(hint, 1);
    groups->addLayout(last);
    column->addWidget(m_groups);
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    buttons->button(QDialogButtonBox::Ok)->setText(tr("&Okay"));
    connect(buttons, &QDialogButtonBox::accepted, this, &FilterForm::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    column->addWidget(buttons);

    connect(enable, &QCheckBox::toggled, this, &FilterForm::enableBoxes);
    connect(m_all, &QCheckBox::toggled, this, &FilterForm::tickAll);
    enableBoxes();
}

void FilterForm::addMarks(QWidget &marks) {
    m_column->insertWidget(m_column->indexOf(m_groups) + 1, &marks);
}

QCheckBox *FilterForm::newBox(const QString &name, const QString &text, bool RecordFilters::*flag) {
    auto *box = new QCheckBox(text);
    box->setObjectName(name);
    box->setChecked(m_start.*flag);
    m_boxes.push_back({box, flag});
    return box;
}

QWidget *FilterForm::newGroup(const QString &title, FilterGroup group, int columns) {
    auto *frame = new QGroupBox(title);
    auto *grid = new QGridLayout(frame);
    int place = 0;
    for (const FilterFlag &each : filterFlags()) {
        if (each.group != group)
            continue;
        // "showGIF" has the box "chkShowGIF".
        const QString name = QStringLiteral("chkS") + toQt(each.name).mid(1);
        QCheckBox *box = newBox(name, toQt(each.label), each.flag);
        box->setToolTip(Qt::convertFromPlainText(ruleOf(each)));
        grid->addWidget(box, place / columns, place % columns);
        ++place;
    }
    for (int i = 0; i < columns; ++i)
        grid->setColumnStretch(i, 1);
    return frame;
}

/// A name that nothing was imported of may be typed too.
QWidget *FilterForm::newOrigins(const OriginChoices &origins) {
    constexpr int kNameWidth = 12; // characters
    auto *frame = new QWidget;
    auto *row = new QHBoxLayout(frame);
    row->setContentsMargins(0, 0, 0, 0);
    const std::vector<std::string> *names[] = {&origins.browsers, &origins.profiles,
                                               &origins.persons};
    for (const OriginFilter &each : originFilters()) {
        auto *box = new QComboBox;
        box->setObjectName(QStringLiteral("cb") + toQt(each.label)); // "cbBrowser"
        box->setEditable(true);
        // A long name doesn't widen the window.
        box->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
        box->setMinimumContentsLength(kNameWidth);
        box->addItem({});
        for (const std::string &name : *names[m_origins.size()])
            box->addItem(toQt(name));
        box->setCurrentText(toQt(m_start.*each.text));
        box->lineEdit()->setPlaceholderText(tr("any"));
        box->lineEdit()->setAccessibleName(toQt(each.label));
        box->setToolTip(tr("Only records of this one; empty shows those of all"));
        auto *label = new QLabel(toQt(each.label) + u':');
        label->setBuddy(box);
        row->addWidget(label);
        row->addWidget(box, 1);
        m_origins.push_back(box);
    }
    return frame;
}

void FilterForm::enableBoxes() {
    m_groups->setEnabled(m_boxes.front().box->isChecked());
}

/// All without exception: clearing it turns the filters off, as examiners know it.
void FilterForm::tickAll(bool ticked) {
    for (const FlagBox &each : m_boxes)
        each.box->setChecked(ticked);
}

RecordFilters FilterForm::filters() const {
    RecordFilters filters;
    for (const FlagBox &each : m_boxes)
        filters.*each.flag = each.box->isChecked();
    for (std::size_t i = 0; i < m_origins.size(); ++i)
        filters.*originFilters()[i].text = fromQt(m_origins[i]->currentText().trimmed());
    return filters;
}

void FilterForm::accept() {
    const RecordFilters chosen = filters();
    if (chosen.enableFilters && !hasSource(chosen))
        m_examiner.tell(missingRecordType());
    else
        QDialog::accept();
}

} // namespace nv

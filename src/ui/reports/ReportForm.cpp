#include "ui/reports/ReportForm.h"

#include "app/messages/ReportMessages.h"
#include "base/DisplayText.h"
#include "platform/qt/QtText.h"
#include "platform/qt/WithinScreen.h"
#include "reports/report/ReportFolder.h"
#include "ui/reports/CaseReportBox.h"
#include "ui/widgets/FormScroll.h"

#include <QBoxLayout>
#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QFormLayout>
#include <QGridLayout>
#include <QImageReader>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPixmap>
#include <QPushButton>
#include <QRadioButton>
#include <QStackedWidget>

#include <algorithm>
#include <array>
#include <utility>

namespace nv {

namespace {

constexpr QSize kPreview(160, 60);
constexpr int kWidth = 780; ///< pixels, in which the words of each type have two lines
constexpr std::array kWidths = {0, 300, 400, 500, 600, 800}; ///< pixels; 0 for any

template <class Widget>
Widget *named(const char *name, const QString &text) {
    auto *widget = new Widget(text);
    widget->setObjectName(QLatin1String(name));
    return widget;
}

QLineEdit *newText(const char *name) {
    return named<QLineEdit>(name, {});
}

QWidget *side(std::initializer_list<QWidget *> widgets) {
    auto *row = new QWidget;
    auto *layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    for (QWidget *widget : widgets)
        layout->addWidget(widget);
    layout->addStretch(1);
    return row;
}

} // namespace

ReportForm::ReportForm(const ReportWriter &report, Rows rows, Examiner &examiner, QWidget *parent)
    : QDialog(parent), m_rows(std::move(rows)), m_examiner(examiner) {
    setObjectName(QStringLiteral("ReportForm"));
    setWindowTitle(tr("Create Report"));
    auto *page = new QWidget;
    auto *form = new QFormLayout(page);
    form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    addWhat(*form);
    addTexts(*form);
    addPictures(*form);
    addContents(*form);
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    auto *scroll = new FormScroll(*page, kWidth);
    scroll->setObjectName(QStringLiteral("reportScroll"));
    column->addWidget(scroll, 1);
    column->addWidget(newButtons());
    show(report);
    if (m_named && !m_rows.chosenTags.empty())
        m_named->setChecked(true);
    resizeWithinScreen(*this, sizeHint());
}

QWidget *ReportForm::newButtons() {
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    buttons->setContentsMargins(9, 0, 9, 9);
    buttons->button(QDialogButtonBox::Ok)->setText(tr("Okay"));
    auto *publish = buttons->addButton(tr("Create and Publis&h..."), QDialogButtonBox::ActionRole);
    publish->setObjectName(QStringLiteral("btnCreateAndPublish"));
    publish->setAutoDefault(false);
    publish->setToolTip(tr("Makes the report and asks for the folder that is handed over"));
    connect(publish, &QPushButton::clicked, this, [this] {
        m_publishes = true;
        accept();
        m_publishes = result() == QDialog::Accepted;
    });
    connect(buttons, &QDialogButtonBox::accepted, this, &ReportForm::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    return buttons;
}

void ReportForm::addWhat(QFormLayout &form) {
    m_type = new QComboBox;
    m_type->setObjectName(QStringLiteral("cbReportType"));
    m_type->setAccessibleName(tr("Type"));
    m_type->addItem(tr("(choose a type)"), -1);
    m_type->addItem(tr("Graphical"), kGraphicalType);
    m_type->addItem(tr("Tabular"), kTabularType);
    m_type->addItem(tr("Case"), kCaseType);
    connect(m_type, &QComboBox::currentIndexChanged, this, &ReportForm::followType);
    form.addRow(tr("T&ype:"), m_type);
    m_explanation = named<QLabel>("labType", {});
    m_explanation->setWordWrap(true);
    m_explanation->setMinimumHeight(2 * fontMetrics().lineSpacing());
    m_explanation->setAlignment(Qt::AlignTop | Qt::AlignLeft);
    form.addRow(QString(), m_explanation);
    m_kinds = named<QLabel>("labTypeKinds", {});
    m_kinds->setWordWrap(true);
    m_kinds->setMinimumHeight(fontMetrics().lineSpacing()); // the form is as high without its text
    form.addRow(QString(), m_kinds);
    addRows(form);
    m_ascending = named<QRadioButton>("opSortAscending", tr("&Oldest first"));
    m_descending = named<QRadioButton>("opSortDescending", tr("Newest &first"));
    QWidget *order = side({m_ascending, m_descending});
    order->setObjectName(QStringLiteral("opSort"));
    form.addRow(tr("Order:"), order);
}

void ReportForm::addRows(QFormLayout &form) {
    m_all = named<QRadioButton>("opAll", tr("All %L1 rows of the &view").arg(m_rows.all));
    m_tagged = named<QRadioButton>("opTagged", tr("The %L1 ticked ones").arg(m_rows.ticked));
    m_tagged->setToolTip(tr("Rows with the tick that the table shows"));
    if (m_rows.tags.empty())
        return form.addRow(tr("Rows:"), side({m_all, m_tagged}));
    m_named = named<QRadioButton>("opNamedTags", {});
    m_named->setToolTip(tr("Rows that the table shows and that have one of the checked tags"));
    form.addRow(tr("Rows:"), side({m_all, m_tagged, m_named}));
    addTags(form);
}

void ReportForm::addTags(QFormLayout &form) {
    m_tags = new QListWidget;
    m_tags->setObjectName(QStringLiteral("lstReportTags"));
    m_tags->setAccessibleName(tr("Tags of the rows"));
    m_tags->setToolTip(tr("The tags, and how many rows of the table have each"));
    m_tags->setTextElideMode(Qt::ElideMiddle);
    m_tags->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    for (const ReportTag &each : m_rows.tags) {
        auto *item = new QListWidgetItem(
            tr("%1 (%L2)").arg(toQt(displayText(each.tag.name))).arg(each.rows.size()), m_tags);
        item->setFlags(item->flags() | Qt::ItemIsUserCheckable);
        const bool isChosen =
            std::ranges::find(m_rows.chosenTags, each.tag.name) != m_rows.chosenTags.end();
        item->setCheckState(isChosen ? Qt::Checked : Qt::Unchecked);
    }
    m_tags->setCurrentRow(0);
    constexpr int kMostLines = 3;
    const int lines = std::clamp(m_tags->count(), 1, kMostLines);
    m_tags->setFixedHeight(lines * m_tags->sizeHintForRow(0) + 2 * m_tags->frameWidth());
    form.addRow(QString(), m_tags);
    connect(m_tags, &QListWidget::itemChanged, this, [this] {
        m_named->setChecked(true); // who checks a tag means its rows
        countTagged();
    });
    connect(m_named, &QRadioButton::toggled, this, [this](bool chosen) {
        if (chosen)
            m_case->preferTaggedCards();
    });
    countTagged();
}

std::vector<std::string> ReportForm::checkedTags() const {
    std::vector<std::string> names;
    for (int row = 0; m_tags && row < m_tags->count(); ++row)
        if (m_tags->item(row)->checkState() == Qt::Checked)
            names.push_back(m_rows.tags.at(static_cast<std::size_t>(row)).tag.name);
    return names;
}

void ReportForm::countTagged() {
    m_named->setText(
        tr("The %L1 with a ta&g of these:").arg(rowsWithOneOf(m_rows.tags, checkedTags()).size()));
}

std::vector<std::string> ReportForm::chosenTags() const {
    return m_named && m_named->isChecked() ? checkedTags() : std::vector<std::string>();
}

void ReportForm::addTexts(QFormLayout &form) {
    form.addRow(tr("&Title:"), m_title = newText("txtReportTitle"));
    form.addRow(tr("&Case number:"), m_caseNumber = newText("txtCaseNumber"));
    form.addRow(tr("Organi&zation:"), m_organization = newText("txtOrganization"));
    form.addRow(tr("Prepared &by:"), m_reportedBy = newText("txtReportedBy"));
    m_title->setAccessibleName(tr("Title"));
    m_caseNumber->setAccessibleName(tr("Case number"));
    m_organization->setAccessibleName(tr("Organization"));
    m_reportedBy->setAccessibleName(tr("Prepared by"));
}

void ReportForm::addPictures(QFormLayout &form) {
    m_useLogo = named<QCheckBox>("chkUseCustomLogo", tr("Own &logo:"));
    form.addRow(m_useLogo, picturePath(m_logo, "txtLogoPath", tr("Logo")));
    m_logoPreview = named<QLabel>("picLogo", {});
    form.addRow(QString(), m_logoPreview);
    connect(m_logo, &QLineEdit::textChanged, this, &ReportForm::previewLogo);
    m_useThumbnail = named<QCheckBox>("chkUseDefaultThumbnail", tr("Own default &picture:"));
    m_useThumbnail->setToolTip(tr("Shown on cards whose row has no picture"));
    form.addRow(m_useThumbnail,
                picturePath(m_thumbnail, "txtDefaultThumbnail", tr("Default Thumbnail")));
    for (const auto &[box, path] : {std::pair(m_useLogo, m_logo), {m_useThumbnail, m_thumbnail}}) {
        connect(box, &QCheckBox::toggled, path->parentWidget(), &QWidget::setEnabled);
        path->parentWidget()->setEnabled(false);
    }
}

QWidget *ReportForm::picturePath(QLineEdit *&path, const char *name, const QString &title) {
    path = newText(name);
    path->setAccessibleName(title);
    auto *browse = new QPushButton(tr("Browse..."));
    browse->setAccessibleName(tr("Browse for: %1").arg(title));
    browse->setAutoDefault(false);
    auto *row = new QWidget;
    auto *layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(path, 1);
    layout->addWidget(browse);
    connect(browse, &QPushButton::clicked, this, [this, field = path, title] {
        const QString chosen = QFileDialog::getOpenFileName(
            this, title, field->text(), tr("Pictures (*.png *.jpg *.jpeg *.gif *.bmp)"));
        if (!chosen.isEmpty())
            field->setText(chosen);
    });
    return row;
}

void ReportForm::addContents(QFormLayout &form) {
    auto *boxes = new QWidget;
    auto *grid = new QGridLayout(boxes);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->addWidget(m_audit = named<QCheckBox>("chkIncludeAudit", tr("&Audit")), 0, 0);
    grid->addWidget(m_links = named<QCheckBox>("chkIncludeLinkAnalysis", tr("Lin&k analysis")), 0,
                    1);
    grid->addWidget(m_timeRebuilt = named<QCheckBox>("chkIncludeTimeRebuilt", tr("Time &rebuilt")),
                    1, 0);
    grid->addWidget(m_dataSource = named<QCheckBox>("chkIncludeDataSource", tr("&Data source")), 1,
                    1);
    grid->addWidget(m_user = named<QCheckBox>("chkIncludeUser", tr("&User")), 1, 2);
    m_contents = new QStackedWidget;
    m_contents->addWidget(boxes);
    m_contents->addWidget(m_case = new CaseReportBox);
    m_case->adviser = m_rows.adviser;
    form.addRow(tr("Include:"), m_contents);
    m_header = named<QCheckBox>("chkHeader", tr("&Skip the head"));
    m_trail = named<QCheckBox>("chkIncludeCaseTrail", tr("Case tra&il"));
    m_notes = named<QCheckBox>("chkIncludeNotes", tr("&Notes"));
    m_origins = named<QCheckBox>("chkIncludeOrigins", tr("Origins"));
    form.addRow(QString(), side({m_header, m_trail, m_origins, m_notes}));
    m_width = new QComboBox;
    m_width->setObjectName(QStringLiteral("cbURLColWidth"));
    m_width->setAccessibleName(tr("URL column width"));
    for (const int width : kWidths)
        m_width->addItem(width == 0 ? tr("As wide as it needs") : tr("%1 pixels").arg(width),
                         width);
    form.addRow(tr("URL column &width:"), m_width);
    explain();
}

void ReportForm::explain() {
    m_audit->setToolTip(tr("What stands for each reference of a rebuilt page"));
    m_links->setToolTip(tr("The visited pages that a page links to"));
    m_notes->setToolTip(tr("The notes of the rows that have some"));
    m_timeRebuilt->setToolTip(tr("When the page was rebuilt"));
    m_dataSource->setToolTip(tr("A column with the kind of record"));
    m_user->setToolTip(tr("A column with the user"));
    m_header->setToolTip(tr("Only the title, the date and the time zone stand above the rows"));
    m_trail->setToolTip(tr("What was done with the project, when and by which version"));
    m_origins->setToolTip(tr("Where each value of the rows with the tick comes from, of a case "
                             "report also of those with a tag; the evidence is read again"));
    m_width->setToolTip(tr("Of a tabular report; longer addresses go on in the next line"));
}

void ReportForm::show(const ReportWriter &report) {
    m_type->setCurrentIndex(std::max(0, m_type->findData(report.reportType)));
    (report.includeAll ? m_all : m_tagged)->setChecked(true);
    (report.sortAscending ? m_ascending : m_descending)->setChecked(true);
    m_title->setText(toQt(report.reportTitle));
    m_caseNumber->setText(toQt(report.caseNumber));
    m_organization->setText(toQt(report.organization));
    m_reportedBy->setText(toQt(report.reportedBy));
    m_logo->setText(pathToQt(report.agencyLogoPath));
    m_useLogo->setChecked(report.useCustomLogo);
    m_thumbnail->setText(pathToQt(report.defaultThumbnailPath));
    m_useThumbnail->setChecked(report.useDefaultThumbnailPath);
    m_audit->setChecked(report.includeAudit);
    m_links->setChecked(report.includeLinkAnalysis);
    m_notes->setChecked(report.includeNotes);
    m_timeRebuilt->setChecked(report.includeTimeRebuilt);
    m_dataSource->setChecked(report.includeDataSource);
    m_user->setChecked(report.includeUser);
    m_header->setChecked(report.skipHeader);
    m_trail->setChecked(report.includeCaseTrail);
    m_origins->setChecked(report.includeOrigins);
    m_width->setCurrentIndex(std::max(0, m_width->findData(report.urlColWidth)));
    m_case->show(report.caseOptions);
    previewLogo();
    followType();
}

void ReportForm::apply(ReportWriter &report) const {
    report.reportType = type();
    report.includeAll = !m_tagged->isChecked();
    report.sortAscending = m_ascending->isChecked();
    report.reportTitle = fromQt(m_title->text());
    report.caseNumber = fromQt(m_caseNumber->text());
    report.organization = fromQt(m_organization->text());
    report.reportedBy = fromQt(m_reportedBy->text());
    report.agencyLogoPath = pathFromQt(m_logo->text());
    report.useCustomLogo = m_useLogo->isChecked();
    report.defaultThumbnailPath = pathFromQt(m_thumbnail->text());
    report.useDefaultThumbnailPath = m_useThumbnail->isChecked();
    report.includeAudit = m_audit->isChecked();
    report.includeLinkAnalysis = m_links->isChecked();
    report.includeNotes = m_notes->isChecked();
    report.includeTimeRebuilt = m_timeRebuilt->isChecked();
    report.includeDataSource = m_dataSource->isChecked();
    report.includeUser = m_user->isChecked();
    report.skipHeader = m_header->isChecked();
    report.includeCaseTrail = m_trail->isChecked();
    report.includeOrigins = m_origins->isChecked();
    report.urlColWidth = m_width->currentData().toInt();
    m_case->apply(report.caseOptions);
}

int ReportForm::type() const {
    return m_type->currentData().toInt();
}

void ReportForm::accept() {
    if (type() < 0)
        m_examiner.tell(messages::reportTypeMissing());
    else if (m_named && m_named->isChecked() && checkedTags().empty())
        m_examiner.tell(messages::reportTagMissing());
    else
        QDialog::accept();
}

/// What belongs to the other type can't be chosen.
void ReportForm::followType() {
    const bool graphical = type() == kGraphicalType;
    const bool tabular = type() == kTabularType;
    const bool ofCase = type() == kCaseType;
    m_explanation->setText(
        graphical ? tr("Includes only web pages and picture files. Each URL is presented in a "
                       "'cue card' format, along with a thumbnail preview of the file.")
        : tabular ? tr("URL records, from cache and/or history data sources, are presented in a "
                       "columnar or table format.")
        : ofCase  ? tr("A cover with the evidence and its hashes, time, cards, and tables of all "
                        "rows with a list beside them. What is redacted isn't handed over.")
                  : QString());
    // The words above are those that examiners know, and promise less than the report holds.
    QStringList doubts;
    if (graphical)
        doubts += tr("In full: rows of any other kind get a card too, with the default thumbnail "
                     "in place of a preview.");
    if ((graphical || tabular) && !m_case->redactions().empty())
        doubts += tr("The redactions that the project keeps (%L1) hold for the type Case alone: "
                     "this report shows all.")
                      .arg(m_case->redactions().size());
    m_kinds->setText(doubts.join(u'\n'));
    m_thumbnail->setPlaceholderText(tabular ? tr(" [Tabular Default]")
                                            : tr(" [Graphical Default]"));
    for (QWidget *widget : {m_audit, m_links, m_timeRebuilt, m_useThumbnail})
        widget->setEnabled(!tabular && !ofCase);
    m_notes->setEnabled(!tabular);
    for (QWidget *widget : std::initializer_list<QWidget *>{m_dataSource, m_user, m_width})
        widget->setEnabled(!graphical && !ofCase);
    m_contents->setCurrentIndex(ofCase ? 1 : 0);
    previewLogo();
}

void ReportForm::previewLogo() {
    // Without a picture it takes no room of a small screen.
    m_logoPreview->setFixedHeight(m_logo->text().isEmpty() ? fontMetrics().lineSpacing()
                                                           : kPreview.height());
    if (m_logo->text().isEmpty())
        return m_logoPreview->setText(type() == kCaseType ? tr("No logo is shown.")
                                                          : tr("The program's logo is shown."));
    QImageReader reader(m_logo->text());
    reader.setDecideFormatFromContent(true);
    if (const QSize size = reader.size(); size.isValid())
        reader.setScaledSize(size.scaled(kPreview, Qt::KeepAspectRatio));
    const QImage logo = reader.read();
    if (logo.isNull())
        m_logoPreview->setText(tr("This is no picture."));
    else
        m_logoPreview->setPixmap(QPixmap::fromImage(logo));
}

} // namespace nv

#include "ui/reports/ReportForm.h"

#include "app/messages/ReportMessages.h"
#include "platform/qt/QtText.h"
#include "reports/ReportFolder.h"
#include "ui/reports/CaseReportBox.h"

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
#include <QPixmap>
#include <QPushButton>
#include <QRadioButton>
#include <QStackedWidget>

#include <array>

namespace nv {

namespace {

constexpr QSize kPreview(160, 60);
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

ReportForm::ReportForm(const ReportWriter &report, std::size_t rows, std::size_t tagged,
                       Examiner &examiner, QWidget *parent)
    : QDialog(parent), m_examiner(examiner) {
    setObjectName(QStringLiteral("ReportForm"));
    setWindowTitle(tr("Create Report"));
    auto *column = new QVBoxLayout(this);
    auto *form = new QFormLayout;
    form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    addWhat(*form, rows, tagged);
    addTexts(*form);
    addPictures(*form);
    addContents(*form);
    column->addLayout(form);
    column->addStretch(1);
    column->addWidget(newButtons());
    resize(640, sizeHint().height());
    show(report);
}

QWidget *ReportForm::newButtons() {
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
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

void ReportForm::addWhat(QFormLayout &form, std::size_t rows, std::size_t tagged) {
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
    m_all = named<QRadioButton>("opAll", tr("All %L1 rows of the &view").arg(rows));
    m_tagged = named<QRadioButton>("opTagged", tr("The %L1 ta&gged ones").arg(tagged));
    m_tagged->setToolTip(tr("Rows with the tick that the table shows"));
    form.addRow(tr("Rows:"), side({m_all, m_tagged}));
    m_ascending = named<QRadioButton>("opSortAscending", tr("&Oldest first"));
    m_descending = named<QRadioButton>("opSortDescending", tr("Newest &first"));
    QWidget *order = side({m_ascending, m_descending});
    order->setObjectName(QStringLiteral("opSort"));
    form.addRow(tr("Order:"), order);
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
    m_logoPreview->setFixedHeight(kPreview.height());
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
    report.includeAll = m_all->isChecked();
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

#include "ui/options/PicturesTabs.h"

#include "ui/options/OptionsWidgets.h"

#include <QButtonGroup>
#include <QRadioButton>

#include <array>

namespace nv {

namespace {

struct Size {
    int width;
    const char *text;
};
constexpr std::array<Size, 3> kSizes = {
    {{200, "200 x 150 pixels"}, {160, "160 x 120 pixels"}, {120, "120 x 80 pixels"}}};

} // namespace

GalleryOptionsTab::GalleryOptionsTab(const Options &start, SettingBoxes &settings) {
    auto *column = new QVBoxLayout(this);
    for (const FlagKey &key : {FlagKey("GalleryIncludeHTML"), FlagKey("GalleryIncludePictures")})
        connect(qobject_cast<QCheckBox *>(settings.add(*column, key.row())), &QCheckBox::clicked,
                this, &GalleryOptionsTab::galleryOutdated);
    settings.add(*column, FlagKey("RedrawThumbIfPageRebuilt").row());
    auto *form = new QFormLayout;
    m_perPage = newNumbers("cbThumbnailsPerPage", {50, 100, 200, 300, 500, 1000},
                           start.galleryRecordsPerPage);
    m_perPage->setAccessibleName(tr("Thumbnails per page"));
    m_perPage->setToolTip(tr("More on a page take longer to be drawn"));
    form->addRow(tr("Thumbnails per pa&ge:"), m_perPage);
    m_timeout =
        newNumbers("cbRedrawTimeout", {5, 10, 15, 20, 30, 60}, start.thumbnailRedrawTimeout);
    m_timeout->setAccessibleName(tr("Redraw time-out in seconds"));
    m_timeout->setToolTip(tr("A page that isn't drawn by then gets no thumbnail"));
    form->addRow(tr("Redraw &time-out (seconds):"), m_timeout);
    column->addLayout(form);
    column->addWidget(newHint(tr("Both numbers hold until the program ends.")));
    column->addStretch(1);
}

void GalleryOptionsTab::putInto(Options &options) const {
    options.galleryRecordsPerPage = m_perPage->currentData().toInt();
    options.thumbnailRedrawTimeout = m_timeout->currentData().toInt();
}

PardTab::PardTab(const Options &start) {
    auto *column = new QVBoxLayout(this);
    m_pard = addBox(*column, "chkUsePARD", tr("&Use P.A.R.D."),
                    tr("Photograph Aspect Ratio Differential (Best range: 15% to 40%): the gallery "
                       "shows only pictures of these shapes, until the program ends."),
                    start.enablePARD);
    auto *form = new QFormLayout;
    m_from = addScrolled(*form, tr("&From:"), tr("The least difference that is shown"),
                         {"txtPARDFrom", "scrollPARDFrom", Qt::Horizontal, 100}, start.pardFrom);
    m_to = addScrolled(*form, tr("&To:"), tr("The greatest difference that is shown"),
                       {"txtPARDTo", "scrollPARDTo", Qt::Horizontal, 100}, start.pardTo);
    for (QSpinBox *number : {m_from, m_to})
        number->setSuffix(QStringLiteral(" %"));
    column->addLayout(form);
    m_pardText = named(new QLabel, "labPARD");
    column->addWidget(m_pardText);
    column->addStretch(1);
    connect(m_pard, &QCheckBox::toggled, this, &PardTab::showPard);
    connect(m_from, &QSpinBox::valueChanged, this, &PardTab::showPard);
    connect(m_to, &QSpinBox::valueChanged, this, &PardTab::showPard);
    showPard();
}

void PardTab::showPard() {
    const bool on = m_pard->isChecked();
    for (QWidget *control : findChildren<QWidget *>()) {
        if (qobject_cast<QSpinBox *>(control) || qobject_cast<QScrollBar *>(control))
            control->setEnabled(on);
    }
    m_pardText->setText(
        !on ? tr("Pictures of every shape are shown.")
        : m_from->value() > m_to->value()
            ? tr("The range is empty: pictures of every shape are shown.")
            : tr("Pictures of %1% to %2% are shown.").arg(m_from->value()).arg(m_to->value()));
}

void PardTab::putInto(Options &options) const {
    options.enablePARD = m_pard->isChecked();
    options.pardFrom = m_from->value();
    options.pardTo = m_to->value();
}

ThumbnailSizesTab::ThumbnailSizesTab(const Options &start) {
    auto *form = new QFormLayout(this);
    m_viewerSizes =
        addSizes(*form, tr("Viewers:"), "optThumbnailViewers", start.viewerThumbnailWidth);
    m_reportSizes =
        addSizes(*form, tr("Reports:"), "optThumbnailReports", start.reportThumbnailWidth);
    form->addRow(newHint(tr("Thumbnails that are drawn from now on have this size.")));
}

QButtonGroup *ThumbnailSizesTab::addSizes(QFormLayout &form, const QString &label, const char *name,
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

/// A width that is none of those offered stays as it is.
void ThumbnailSizesTab::putInto(Options &options) const {
    if (m_viewerSizes->checkedId() > 0)
        options.viewerThumbnailWidth = m_viewerSizes->checkedId();
    if (m_reportSizes->checkedId() > 0)
        options.reportThumbnailWidth = m_reportSizes->checkedId();
}

} // namespace nv

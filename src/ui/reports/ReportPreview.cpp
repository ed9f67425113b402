#include "ui/reports/ReportPreview.h"

#include "ui/viewers/BrowserPane.h"

#include <QBoxLayout>
#include <QDialogButtonBox>

namespace nv {

ReportPreview::ReportPreview(const std::filesystem::path &page, QWidget *parent) : QDialog(parent) {
    setObjectName(QStringLiteral("ReportPreview"));
    setWindowTitle(tr("Report"));
    setWindowFlag(Qt::WindowMaximizeButtonHint);
    auto *column = new QVBoxLayout(this);
    auto *browser = new BrowserPane;
    browser->setObjectName(QStringLiteral("PreviewBrowser"));
    column->addWidget(browser, 1);
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Close);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    column->addWidget(buttons);
    if (parent)
        resize(parent->window()->size());
    browser->showPage(page, tr("Report"));
}

} // namespace nv

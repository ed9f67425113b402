#include "ui/import/ImportChoicePage.h"

#include "base/Text.h"
#include "import/ChoiceTable.h"
#include "platform/qt/QtText.h"

#include <QBoxLayout>
#include <QCheckBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

#include <algorithm>

namespace nv {

ImportChoicePage::ImportChoicePage(const ImportSettings &job, const std::filesystem::path &start,
                                   const std::filesystem::path &base, ChooseFolder chooseFolder)
    : m_chooseFolder(std::move(chooseFolder)) {
    setObjectName(QStringLiteral("ImportChoicePage"));
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(newFolders(start, base));
    column->addWidget(newKinds(job));
    column->addWidget(newOptions(job));
    column->addStretch();
}

QWidget *ImportChoicePage::newFolders(const std::filesystem::path &start,
                                      const std::filesystem::path &base) {
    auto *group = new QGroupBox(tr("Evidence"));
    auto *grid = new QGridLayout(group);
    m_start = addFolderRow(*grid, tr("&Starting folder:"), "txtStartingDirectory",
                           "Select the starting folder of the import:");
    m_base = addFolderRow(*grid, tr("&Base folder:"), "txtBaseFolder",
                          "Select the BASE root folder for all evidence in project:");
    m_start->setText(pathToQt(start));
    m_base->setText(pathToQt(base));
    m_base->setPlaceholderText(tr("The starting folder"));
    m_base->setToolTip(tr("Cached files are looked for below it. When the evidence moves to "
                          "another place, only this folder has to be changed."));
    return group;
}

QLineEdit *ImportChoicePage::addFolderRow(QGridLayout &grid, const QString &label, const char *name,
                                          const std::string &dialogTitle) {
    auto *edit = new QLineEdit;
    edit->setObjectName(QLatin1String(name));
    edit->setMinimumWidth(360);
    auto *caption = new QLabel(label);
    caption->setBuddy(edit);
    const QString plain = QString(label).remove(u'&').remove(u':');
    edit->setAccessibleName(plain);
    auto *browse = new QPushButton(tr("Browse..."));
    browse->setObjectName(QStringLiteral("btn") + QLatin1String(name).mid(3));
    browse->setAccessibleName(tr("Browse for: %1").arg(plain));
    browse->setAutoDefault(false);
    connect(browse, &QPushButton::clicked, this, [this, edit, dialogTitle] {
        if (const auto chosen = m_chooseFolder(dialogTitle, pathFromQt(edit->text())))
            edit->setText(pathToQt(*chosen));
    });
    const int row = grid.rowCount();
    grid.addWidget(caption, row, 0);
    grid.addWidget(edit, row, 1);
    grid.addWidget(browse, row, 2);
    return edit;
}

QCheckBox *ImportChoicePage::newBox(const QString &text, std::string_view name, bool on) {
    auto *box = new QCheckBox(text);
    box->setObjectName(toQt(name));
    box->setAccessibleName(text.isEmpty() ? toQt(name) : text);
    box->setChecked(on);
    return box;
}

QWidget *ImportChoicePage::newKinds(const ImportSettings &job) {
    auto *group = new QGroupBox(tr("What to look for"));
    auto *grid = new QGridLayout(group);
    grid->setHorizontalSpacing(8); // with it the page fits a small screen
    const ChoiceTable table = choiceTable();
    const auto add = [&](const SourceOption &option, std::string_view text, int row, int column) {
        m_kinds.push_back({newBox(toQt(text), option.name, wants(job, option)), &option});
        grid->addWidget(m_kinds.back().box, row, column);
    };
    const auto columns = static_cast<int>(table.columns.size());
    int row = 0;
    for (const ChoiceTable::Row &family : table.rows) {
        grid->addWidget(new QLabel(toQt(family.family->name)), row, 0);
        for (int column = 0; column < columns; ++column) {
            const auto at = static_cast<std::size_t>(column);
            if (const SourceOption *option = family.boxes[at])
                add(*option, groupWord(table.columns[at]), row, column + 1);
        }
        ++row;
    }
    int otherRow = 0;
    for (const SourceOption *option : table.others)
        add(*option, option->text, otherRow++, columns + 1);

    auto *buttons = new QHBoxLayout;
    const auto addButton = [&](const char *name, const QString &text, bool on) {
        auto *button = new QPushButton(text);
        button->setObjectName(QLatin1String(name));
        button->setAutoDefault(false);
        connect(button, &QPushButton::clicked, this, [this, on] { tickAllKinds(on); });
        buttons->addWidget(button);
    };
    addButton("btnAllKinds", tr("&All"), true);
    addButton("btnNoKinds", tr("N&one"), false);
    buttons->addStretch();
    grid->addLayout(buttons, std::max(row, otherRow), 0, 1, columns + 2);
    return group;
}

QWidget *ImportChoicePage::newOptions(const ImportSettings &job) {
    auto *group = new QGroupBox(tr("How"));
    m_recurse = newBox(tr("Look into s&ubfolders"), "RecurseSubfolders", job.recurseSubfolders);
    m_verify = newBox(tr("&Verify file contents, not names alone"), "chkVerifyFileContents",
                      job.verifyFileSignatures);
    m_classic = newBox(tr("Only the files and rows of the &classic rules"), "chkClassicOnly",
                       job.classicOnly);
    m_classic->setToolTip(
        tr("What the first version took, to compare with earlier cases. Each further visit, "
           "download and search, and whatever today's browsers keep, is left out."));
    m_metadata = newBox(tr("Read titles, texts and links of cached pages (advanced &metadata)"),
                        "chkParseAdvancedMetadata", job.parseAdvancedMetadata);
    m_thumbnails = newBox(tr("Make &thumbnails of pictures and pages while importing"),
                          "chkThumbnailsWhileImporting", job.makeThumbnails);
    m_thumbnails->setToolTip(
        tr("Makes the import slower: some seven pages and some hundred pictures are drawn in a "
           "second. The gallery can make them later."));
    // In two columns: the page has to fit a small screen.
    auto *columns = new QGridLayout(group);
    columns->setColumnStretch(1, 1);
    int row = 0;
    for (QCheckBox *box : {m_recurse, m_verify, m_classic})
        columns->addWidget(box, row++, 0);
    row = 0;
    for (QCheckBox *box : {m_metadata, m_thumbnails})
        columns->addWidget(box, row++, 1);
    return group;
}

void ImportChoicePage::tickAllKinds(bool on) {
    for (const Kind &kind : m_kinds)
        kind.box->setChecked(on);
}

void ImportChoicePage::applyTo(ImportSettings &job) const {
    job.startingDirectory = pathFromQt(m_start->text().trimmed()).string();
    job.recurseSubfolders = m_recurse->isChecked();
    job.verifyFileSignatures = m_verify->isChecked();
    job.parseAdvancedMetadata = m_metadata->isChecked();
    job.makeThumbnails = m_thumbnails->isChecked();
    job.classicOnly = m_classic->isChecked();
    for (const Kind &kind : m_kinds)
        setWanted(job, *kind.option, kind.box->isChecked());
}

std::filesystem::path ImportChoicePage::baseFolder() const {
    return pathFromQt(m_base->text().trimmed());
}

} // namespace nv

#include "ui/import/ImportChoicePage.h"

#include "base/DisplayText.h"
#include "base/Files.h"
#include "base/Text.h"
#include "import/ChoiceTable.h"
#include "platform/qt/QtText.h"
#include "ui/import/WizardParts.h"

#include <QBoxLayout>
#include <QCheckBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>

#include <algorithm>

namespace nv {

namespace {

constexpr int kPath = Qt::UserRole;

} // namespace

ImportChoicePage::ImportChoicePage(const ImportSettings &job,
                                   const std::vector<std::filesystem::path> &places,
                                   const std::filesystem::path &base, ChooseFolder chooseFolder)
    : m_chooseFolder(std::move(chooseFolder)) {
    setObjectName(QStringLiteral("ImportChoicePage"));
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(newFolders(base));
    column->addWidget(newKinds(job));
    column->addWidget(newOptions(job));
    column->addStretch();
    addPlaces(places);
}

QWidget *ImportChoicePage::newFolders(const std::filesystem::path &base) {
    auto *group = new QGroupBox(tr("Evidence"));
    auto *grid = new QGridLayout(group);
    m_start = addFolderRow(*grid, tr("&Starting folder:"), "txtStartingDirectory",
                           "Select the starting folder of the import:");
    auto *add = newWizardButton("btnAddPlace", tr("Add &Folder..."));
    add->setToolTip(tr("A further folder of evidence. Several folders and files can be dropped on "
                       "this window too."));
    add->setAutoDefault(false);
    connect(add, &QPushButton::clicked, this, [this] {
        if (const auto chosen =
                m_chooseFolder("Select a further folder of evidence:", pathFromQt(m_start->text())))
            addPlaces({*chosen});
    });
    grid->addWidget(add, grid->rowCount() - 1, 3);
    grid->addWidget(newFurther(), grid->rowCount(), 1, 1, 3);
    m_base = addFolderRow(*grid, tr("Bas&e folder:"), "txtBaseFolder",
                          "Select the BASE root folder for all evidence in project:");
    m_notTaken = newWizardLabel("labNotTaken");
    m_notTaken->hide();
    grid->addWidget(m_notTaken, grid->rowCount(), 1, 1, 3);
    m_base->setText(pathToQt(base));
    m_base->setPlaceholderText(tr("The starting folder"));
    m_base->setToolTip(tr("Cached files are looked for below it. When the evidence moves to "
                          "another place, only this folder has to be changed."));
    return group;
}

QWidget *ImportChoicePage::newFurther() {
    m_furtherArea = new QWidget;
    m_further = new QListWidget;
    m_further->setObjectName(QStringLiteral("lstFurtherPlaces"));
    m_further->setAccessibleName(tr("Further folders and files"));
    m_further->setTextElideMode(Qt::ElideMiddle);
    constexpr int kLines = 3;
    m_further->setFixedHeight((kLines * (m_further->fontMetrics().height() + 4)) +
                              (2 * m_further->frameWidth()));
    m_takeAway = newWizardButton("btnTakeAwayPlace", tr("&Remove"));
    m_takeAway->setAccessibleName(tr("Remove the chosen folder or file"));
    m_takeAway->setAutoDefault(false);
    connect(m_takeAway, &QPushButton::clicked, this, &ImportChoicePage::takeAway);
    auto *row = new QHBoxLayout(m_furtherArea);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(m_further, 1);
    row->addWidget(m_takeAway, 0, Qt::AlignTop);
    m_furtherArea->hide();
    return m_furtherArea;
}

void ImportChoicePage::takeAway() {
    delete m_further->takeItem(m_further->currentRow());
    showFurther();
}

void ImportChoicePage::showFurther() {
    if (m_further->count() == 0 && m_furtherArea->isVisible())
        m_start->setFocus();
    m_furtherArea->setVisible(m_further->count() > 0);
    if (m_further->currentRow() < 0)
        m_further->setCurrentRow(0);
}

std::vector<std::filesystem::path> ImportChoicePage::places() const {
    std::vector<std::filesystem::path> places;
    if (const QString first = m_start->text().trimmed(); !first.isEmpty())
        places.push_back(pathFromQt(first));
    for (int row = 0; row < m_further->count(); ++row)
        places.push_back(pathFromQt(m_further->item(row)->data(kPath).toString()));
    return places;
}

void ImportChoicePage::addPlaces(const std::vector<std::filesystem::path> &added) {
    std::vector<std::filesystem::path> known = places();
    for (const std::filesystem::path &place : added) {
        if (std::ranges::find(known, place) != known.end())
            continue;
        known.push_back(place);
        if (known.size() == 1) {
            m_start->setText(pathToQt(place));
            continue;
        }
        auto *item = new QListWidgetItem(toQt(displayText(textOf(place))), m_further);
        item->setData(kPath, pathToQt(place));
        item->setToolTip(item->text().toHtmlEscaped());
    }
    showFurther();
}

void ImportChoicePage::tellNotTaken(const QString &text) {
    m_notTaken->setText(text);
    m_notTaken->setVisible(!text.isEmpty());
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
    buttons->setSpacing(8);
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
    m_hashSets =
        newBox(tr("Look for cached content in the &hash sets"), "chkHashSetsWhileImporting", false);
    m_hashSets->setEnabled(false);
    // In two columns: the page has to fit a small screen.
    auto *columns = new QGridLayout(group);
    columns->setColumnStretch(1, 1);
    int row = 0;
    for (QCheckBox *box : {m_recurse, m_verify, m_classic})
        columns->addWidget(box, row++, 0);
    row = 0;
    for (QCheckBox *box : {m_metadata, m_thumbnails, m_hashSets})
        columns->addWidget(box, row++, 1);
    return group;
}

void ImportChoicePage::offerHashSets(bool wanted, const QString &whyNot) {
    const bool isOffered = whyNot.isEmpty();
    if (m_hashSets->isEnabled() != isOffered)
        m_hashSets->setChecked(isOffered && wanted);
    m_hashSets->setEnabled(isOffered);
    m_hashSets->setToolTip(isOffered ? tr("Makes the import slower: all cached content is hashed, "
                                          "also that of classic caches.")
                                     : whyNot);
}

bool ImportChoicePage::offersHashSets() const {
    return m_hashSets->isEnabled();
}

void ImportChoicePage::tickAllKinds(bool on) {
    for (const Kind &kind : m_kinds)
        kind.box->setChecked(on);
}

void ImportChoicePage::applyTo(ImportSettings &job) const {
    const std::vector<std::filesystem::path> chosen = places();
    job.startingDirectory = chosen.empty() ? std::string() : chosen.front().string();
    job.recurseSubfolders = m_recurse->isChecked();
    job.verifyFileSignatures = m_verify->isChecked();
    job.parseAdvancedMetadata = m_metadata->isChecked();
    job.makeThumbnails = m_thumbnails->isChecked();
    job.classicOnly = m_classic->isChecked();
    job.hashSets = m_hashSets->isEnabled() && m_hashSets->isChecked();
    for (const Kind &kind : m_kinds)
        setWanted(job, *kind.option, kind.box->isChecked());
}

std::filesystem::path ImportChoicePage::baseFolder() const {
    return pathFromQt(m_base->text().trimmed());
}

} // namespace nv

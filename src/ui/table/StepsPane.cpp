#include "ui/table/StepsPane.h"

#include "base/DisplayText.h"
#include "base/Files.h"
#include "platform/qt/Icons.h"
#include "platform/qt/QtText.h"
#include "ui/table/ImportSteps.h"
#include "ui/widgets/FlowLayout.h"

#include <QBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QPushButton>

#include <algorithm>

namespace nv {

namespace {

constexpr std::size_t kToldPlaces = 3;
constexpr int kTextWidth = 340; // pixels of a line of a path

QLabel *newText(const QString &text) {
    auto *label = new QLabel(text);
    label->setTextFormat(Qt::PlainText); // it quotes paths
    label->setWordWrap(true);
    label->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    return label;
}

/// The chosen places, a line each; of many the first ones.
QString placesText(const std::vector<std::filesystem::path> &places, const QFontMetrics &metrics,
                   int width) {
    QStringList lines;
    for (std::size_t i = 0; i < std::min(places.size(), kToldPlaces); ++i)
        lines += metrics.elidedText(toQt(displayText(textOf(places[i]))), Qt::ElideMiddle, width);
    if (places.size() > kToldPlaces)
        lines += StepsPane::tr("and %L1 more").arg(places.size() - kToldPlaces);
    return lines.join(u'\n');
}

} // namespace

/// The number of a step: filled where the way goes on, a tick where it was gone.
class StepSign final : public QWidget {
  public:
    enum class State { waiting, next, done };

    explicit StepSign(int number) : m_number(number) { setFixedSize(kSize, kSize); }
    void setState(State state) {
        m_state = state;
        update();
    }

  protected:
    void paintEvent(QPaintEvent *) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        const bool isNext = m_state == State::next;
        const QColor line =
            palette().color(m_state == State::waiting ? QPalette::Disabled : QPalette::Active,
                            isNext ? QPalette::Highlight : QPalette::WindowText);
        painter.setPen(QPen(line, 1.5));
        painter.setBrush(isNext ? QBrush(line) : QBrush(Qt::NoBrush));
        painter.drawEllipse(QRectF(rect()).adjusted(1, 1, -1, -1));
        painter.setPen(isNext ? palette().color(QPalette::HighlightedText) : line);
        painter.drawText(rect(), Qt::AlignCenter,
                         m_state == State::done ? QStringLiteral("\u2713")
                                                : QString::number(m_number));
    }

  private:
    static constexpr int kSize = 28; // pixels
    int m_number;
    State m_state = State::waiting;
};

StepsPane::StepsPane(ImportSteps &steps, Qt::Orientation orientation, QWidget *parent)
    : QWidget(parent), m_steps(steps) {
    setObjectName(QStringLiteral("StepsPane"));
    auto *layout = new QBoxLayout(
        orientation == Qt::Horizontal ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom, this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(orientation == Qt::Horizontal ? 24 : 14);
    m_choose = addStep(tr("Choose evidence"), "labStepChoose");
    m_folder = addButton(m_choose, "btnStepFolder", tr("Choose Fol&der..."));
    auto *files = addButton(m_choose, "btnStepFiles", tr("Choose File&s..."));
    m_clear = addButton(m_choose, "btnStepClear", tr("C&lear"));
    m_clear->setAccessibleName(tr("Clear the choice of evidence"));
    m_check = addStep(tr("Check what was found"), "labStepCheck");
    m_checkButton = addButton(m_check, "btnStepCheck", tr("Chec&k What Was Found..."));
    m_import = addStep(tr("Import"), "labStepImport");
    m_importButton = addButton(m_import, "btnStepImport", tr("I&mport..."));
    m_importButton->setIcon(icon("import"));
    connect(m_folder, &QPushButton::clicked, &m_steps, &ImportSteps::folderWanted);
    connect(files, &QPushButton::clicked, &m_steps, &ImportSteps::filesWanted);
    connect(m_clear, &QPushButton::clicked, &m_steps, &ImportSteps::clearingWanted);
    connect(m_checkButton, &QPushButton::clicked, &m_steps, &ImportSteps::checkWanted);
    connect(m_importButton, &QPushButton::clicked, &m_steps, &ImportSteps::importWanted);
    connect(&m_steps, &ImportSteps::changed, this, &StepsPane::showSteps);
    showSteps();
}

StepsPane::Step StepsPane::addStep(const QString &title, const char *name) {
    Step step;
    ++m_number;
    step.sign = new StepSign(m_number);
    auto *heading = new QLabel(title);
    QFont bold = heading->font();
    bold.setBold(true);
    heading->setFont(bold);
    heading->setAccessibleName(tr("Step %1 of 3: %2").arg(m_number).arg(title));
    step.text = newText({});
    step.text->setObjectName(QLatin1String(name));
    step.buttons = new FlowLayout; // three of them are wider than a third of a small screen
    step.buttons->setSpacing(8);
    auto *box = new QWidget;
    auto *grid = new QGridLayout(box);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setHorizontalSpacing(10);
    grid->setVerticalSpacing(4);
    grid->addWidget(step.sign, 0, 0, 2, 1, Qt::AlignTop);
    grid->addWidget(heading, 0, 1);
    grid->addWidget(step.text, 1, 1);
    grid->addLayout(step.buttons, 2, 1);
    grid->setColumnStretch(1, 1);
    grid->setRowStretch(3, 1);
    static_cast<QBoxLayout *>(layout())->addWidget(box, 1);
    return step;
}

QPushButton *StepsPane::addButton(const Step &step, const char *name, const QString &text) {
    auto *button = new QPushButton(text);
    button->setObjectName(QLatin1String(name));
    button->setAutoDefault(true); // Enter works as it does in a dialog
    step.buttons->addWidget(button);
    return button;
}

void StepsPane::showSteps() {
    const bool isChosen = !m_steps.places().empty();
    const bool isChecked = !m_steps.checkedText().isEmpty();
    m_choose.text->setText(
        isChosen ? placesText(m_steps.places(), fontMetrics(), kTextWidth)
                 : tr("Folders and files of browsers: a mounted disk, a user's folder, a profile. "
                      "Drop them here, several at once. Evidence is only read."));
    m_check.text->setText(isChecked  ? m_steps.checkedText()
                          : isChosen ? tr("Lists it by person, browser and profile, with boxes to "
                                          "leave things out. Nothing is imported yet.")
                                     : tr("Waits for evidence to be chosen."));
    m_import.text->setText(
        m_steps.isReady()
            ? tr("Reads what is chosen into the project: an open one, or the one that the "
                 "check has named.")
        : isChecked ? tr("Nothing that was found is chosen: check it again.")
                    : tr("Waits for the check."));
    const QWidget *focus = window()->focusWidget();
    const bool hadFocus = focus && isAncestorOf(focus);
    m_clear->setVisible(isChosen);
    m_checkButton->setEnabled(isChosen);
    m_importButton->setEnabled(m_steps.isReady());
    if (hadFocus)
        focusNext();
    using State = StepSign::State;
    m_choose.sign->setState(isChosen ? State::done : State::next);
    m_check.sign->setState(m_steps.isReady() ? State::done
                           : isChosen        ? State::next
                                             : State::waiting);
    m_import.sign->setState(m_steps.isReady() ? State::next : State::waiting);
}

void StepsPane::focusNext() {
    QPushButton *next = m_steps.isReady()           ? m_importButton
                        : !m_steps.places().empty() ? m_checkButton
                                                    : m_folder;
    next->setFocus();
}

} // namespace nv

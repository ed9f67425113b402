#include "ui/search/SearchNames.h"

#include "base/DisplayText.h"
#include "platform/qt/QtText.h"

#include <QHeaderView>
#include <QLineEdit>
#include <QLocale>

#include <algorithm>

namespace nv {

namespace {

constexpr int kName = 0;
constexpr int kRows = 1;
constexpr int kValueRole = Qt::UserRole;
constexpr std::size_t kMostShown = 80; // characters of a name

QString nameOf(const QTreeWidgetItem *item) {
    return item->data(kName, kValueRole).toString();
}

} // namespace

SearchNames::SearchNames(QLineEdit &box) : QTreeWidget(box.parentWidget()), m_box(box) {
    setObjectName(QStringLiteral("lstSearchNames"));
    setAccessibleName(tr("Names that fit"));
    setColumnCount(2);
    setHeaderHidden(true);
    header()->setStretchLastSection(false);
    header()->setSectionResizeMode(kName, QHeaderView::Stretch);
    header()->setSectionResizeMode(kRows, QHeaderView::ResizeToContents);
    setRootIsDecorated(false);
    setUniformRowHeights(true);
    setFocusPolicy(Qt::NoFocus);
    setTextElideMode(Qt::ElideMiddle);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    hide();
    // Behind the click, which still looks at the item: another list may come with the name.
    connect(this, &QTreeWidget::itemClicked, this, [this](const QTreeWidgetItem *item) {
        QMetaObject::invokeMethod(
            this, [this, name = nameOf(item)] { take(name); }, Qt::QueuedConnection);
    });
}

void SearchNames::offer(const NamedCounts &names) {
    clear();
    for (const auto &[name, rows] : names) {
        auto *item = new QTreeWidgetItem(this);
        item->setText(kName, toQt(displayText(name, kMostShown)));
        item->setText(kRows, QLocale().toString(qint64{rows}));
        item->setTextAlignment(kRows, Qt::AlignRight | Qt::AlignVCenter);
        item->setData(kName, kValueRole, toQt(name));
    }
    setVisible(!names.empty());
    if (!names.empty())
        place();
}

void SearchNames::place() {
    constexpr int kNarrowest = 36; // characters
    if (parentWidget() != m_box.window())
        setParent(m_box.window());
    const QPoint below = m_box.mapTo(m_box.window(), QPoint(0, m_box.height()));
    const int width = std::max(m_box.width(), kNarrowest * fontMetrics().averageCharWidth());
    const int height = topLevelItemCount() * sizeHintForRow(0) + 2 * frameWidth();
    setGeometry(below.x(), below.y(), std::min(width, m_box.window()->width() - below.x()),
                std::min(height, m_box.window()->height() - below.y()));
    show();
    raise();
}

bool SearchNames::takeKey(int key) {
    if (isHidden())
        return false;
    switch (key) {
    case Qt::Key_Down:
        step(1);
        return true;
    case Qt::Key_Up:
        step(-1);
        return true;
    case Qt::Key_Escape:
        hide();
        return true;
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Tab:
        // Whoever hasn't chosen one means what the box says.
        if (currentItem() == nullptr) {
            hide();
            return false;
        }
        take(nameOf(currentItem()));
        return true;
    case Qt::Key_Left:
    case Qt::Key_Right:
    case Qt::Key_Home:
    case Qt::Key_End:
        hide();
        return false;
    default:
        return false;
    }
}

void SearchNames::step(int by) {
    const int now = currentItem() ? indexOfTopLevelItem(currentItem()) : (by > 0 ? -1 : 0);
    const int count = topLevelItemCount();
    setCurrentItem(topLevelItem((now + by + count) % count));
}

void SearchNames::take(const QString &name) {
    hide();
    emit chosen(name);
}

} // namespace nv

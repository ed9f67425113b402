#include "platform/qt/ChartPainter.h"

#include "platform/posix/ChartFile.h"
#include "platform/qt/QtText.h"

#include <QFile>
#include <QFontDatabase>
#include <QImage>
#include <QLocale>
#include <QPainter>

#include <algorithm>
#include <array>
#include <cmath>

namespace nv {

namespace {

// All in pixels.
constexpr int kMargin = 16;
constexpr int kGap = 8;
constexpr int kAfterMark = 2; ///< from the mark of a label to its text
constexpr int kTitleSize = 20;
constexpr int kTextSize = 13;
constexpr int kLeastBar = 2; ///< high: one event is seen beside a million
constexpr int kSwatch = 12;
constexpr qint64 kLargestFile = qint64{64} << 20;
constexpr int kLargestSide = 16384;
constexpr int kHours = 24;
constexpr int kDarkBelow = 128; ///< of 255

/// Told apart by people who see red and green alike too.
constexpr std::array<QRgb, 8> kOnLight = {0xFF0B6FA4, 0xFFB8621B, 0xFF3A7D44, 0xFF8E4585,
                                          0xFFA8323E, 0xFF5B6770, 0xFF8A7A1D, 0xFF2F4B8F};
constexpr std::array<QRgb, 8> kOnDark = {0xFF6EC1E4, 0xFFF0A35E, 0xFF86C98F, 0xFFD69ACD,
                                         0xFFF08C95, 0xFFB4BEC6, 0xFFD8C55A, 0xFF93ACEB};

bool isDark(const QPalette &palette) {
    return palette.color(QPalette::Base).lightness() < kDarkBelow;
}

QFont fontOf(int size, QFont::Weight weight) {
    QFont font = QFontDatabase::systemFont(QFontDatabase::GeneralFont);
    font.setPixelSize(size);
    font.setWeight(weight);
    return font;
}

/// Small numbers are seen beside large ones: shades tell less than heights do.
double shareOf(std::uint64_t count, std::uint64_t most) {
    return most == 0 ? 0 : std::sqrt(static_cast<double>(count) / static_cast<double>(most));
}

QColor mixed(const QColor &from, const QColor &to, double share) {
    const auto between = [share](int one, int other) {
        return static_cast<int>(std::lround(one + (other - one) * share));
    };
    return {between(from.red(), to.red()), between(from.green(), to.green()),
            between(from.blue(), to.blue())};
}

} // namespace

QColor chartColor(std::size_t place, const QPalette &palette) {
    const auto &colors = isDark(palette) ? kOnDark : kOnLight;
    return QColor::fromRgb(colors.at(std::min(place, colors.size() - 1)));
}

ChartPainter::ChartPainter(const TimeChart &chart, const QRect &area, const QPalette &palette)
    : m_chart(chart), m_palette(palette), m_bars(area), m_axis(area) {
    const int axis = QFontMetrics(fontOf(kTextSize, QFont::Normal)).lineSpacing() + 4;
    const int hours = chart.hours.empty() ? 0 : area.height() / 2;
    m_bars.setBottom(area.bottom() - axis - hours);
    m_axis = QRect(area.left(), m_bars.bottom() + 1, area.width(), axis);
    if (hours > 0)
        m_hours = QRect(area.left(), m_axis.bottom() + 1, area.width(), hours);
    for (std::size_t bar = 0; bar < chart.bars; ++bar)
        m_most = std::max(m_most, totalOf(bar));
}

std::uint64_t ChartPainter::totalOf(std::size_t bar) const {
    std::uint64_t total = 0;
    for (std::size_t part = 0; part < m_chart.parts.size(); ++part)
        total += m_chart.counts[bar * m_chart.parts.size() + part];
    return total;
}

int ChartPainter::leftOf(std::size_t bar) const {
    const auto bars = static_cast<qint64>(std::max<std::size_t>(m_chart.bars, 1));
    return m_bars.left() + static_cast<int>(static_cast<qint64>(bar) * m_bars.width() / bars);
}

std::size_t ChartPainter::barAt(int x) const {
    if (m_chart.bars == 0 || m_bars.width() <= 0)
        return 0;
    const qint64 within = std::clamp(x - m_bars.left(), 0, m_bars.width() - 1);
    auto bar =
        static_cast<std::size_t>(within * static_cast<qint64>(m_chart.bars) / m_bars.width());
    while (bar + 1 < m_chart.bars && leftOf(bar + 1) <= x) // both divisions round down
        ++bar;
    return bar;
}

void ChartPainter::draw(QPainter &painter) const {
    painter.save();
    painter.setFont(fontOf(kTextSize, QFont::Normal));
    drawGaps(painter);
    drawBars(painter);
    drawAxis(painter);
    if (!m_hours.isEmpty())
        drawHours(painter);
    painter.restore();
}

void ChartPainter::drawGaps(QPainter &painter) const {
    QColor ground = m_palette.color(QPalette::Text);
    ground.setAlphaF(0.25F);
    for (const TimeChart::Gap &gap : m_chart.gaps) {
        const int left = leftOf(gap.first);
        const QRect box(left, m_bars.top(), leftOf(gap.last + 1) - left, m_bars.height());
        painter.fillRect(box, QBrush(ground, Qt::BDiagPattern));
    }
}

/// Parts stand on each other.
void ChartPainter::drawBars(QPainter &painter) const {
    const std::size_t parts = m_chart.parts.size();
    for (std::size_t bar = 0; bar < m_chart.bars; ++bar) {
        const std::uint64_t total = totalOf(bar);
        if (total == 0)
            continue;
        const int left = leftOf(bar);
        const int room = leftOf(bar + 1) - left;
        const int width = std::max(1, room > 3 ? room - 1 : room);
        const double share = static_cast<double>(total) / static_cast<double>(m_most);
        const int height =
            std::max(kLeastBar, static_cast<int>(std::lround(share * m_bars.height())));
        std::uint64_t below = 0;
        for (std::size_t part = 0; part < parts; ++part) {
            const std::uint64_t count = m_chart.counts[bar * parts + part];
            const auto heightOf = [&](std::uint64_t events) {
                return static_cast<int>(static_cast<double>(events) / static_cast<double>(total) *
                                        height);
            };
            const int from = heightOf(below);
            const int to = heightOf(below += count);
            painter.fillRect(left, m_bars.bottom() + 1 - to, width, to - from,
                             chartColor(m_chart.colorOf(part), m_palette));
        }
    }
}

void ChartPainter::drawAxis(QPainter &painter) const {
    const QFontMetrics metrics(painter.font());
    painter.setPen(m_palette.color(QPalette::Text));
    painter.drawLine(m_axis.topLeft(), m_axis.topRight());
    int end = m_axis.left() - 1;
    for (const TimeChart::Label &label : m_chart.labels) {
        const QString text = toQt(label.text);
        const int left = leftOf(label.bar);
        const int right = left + kAfterMark + metrics.horizontalAdvance(text);
        if (left <= end || right > m_axis.right())
            continue;
        painter.drawLine(left, m_axis.top(), left, m_axis.top() + 3);
        painter.drawText(QPoint(left + kAfterMark, m_axis.top() + 2 + metrics.ascent()), text);
        end = right + kGap;
    }
}

void ChartPainter::drawHours(QPainter &painter) const {
    std::uint32_t most = 0;
    for (const TimeChart::Hours &hours : m_chart.hours)
        most = std::max(most, std::ranges::max(hours));
    const QColor ground = m_palette.color(QPalette::Base);
    const QColor full = chartColor(0, m_palette);
    const auto topOf = [this](int hour) {
        return m_hours.top() + m_hours.height() * hour / kHours;
    };
    for (std::size_t bar = 0; bar < m_chart.hours.size(); ++bar) {
        const int left = leftOf(bar);
        const int width = std::max(1, leftOf(bar + 1) - left);
        for (int hour = 0; hour < kHours; ++hour) {
            const std::uint32_t count = m_chart.hours[bar].at(static_cast<std::size_t>(hour));
            if (count > 0) // one event is a quarter of the way, so that it is seen
                painter.fillRect(left, topOf(hour), width, topOf(hour + 1) - topOf(hour),
                                 mixed(ground, full, 0.25 + 0.75 * shareOf(count, most)));
        }
    }
    painter.setPen(m_palette.color(QPalette::Text));
    painter.drawLine(m_hours.topLeft(), m_hours.topRight());
    const QFontMetrics metrics(painter.font());
    for (const int hour : {0, 6, 12, 18})
        if (m_hours.height() / 4 >= metrics.height())
            painter.drawText(QPoint(m_hours.left() + 2, topOf(hour) + metrics.ascent() + 1),
                             QStringLiteral("%1:00").arg(hour, 2, 10, QLatin1Char('0')));
}

namespace {

/// The whole picture: title, lines, names of the parts, chart.
class Picture {
  public:
    Picture(const TimeChart &chart, const QSize &size)
        : m_chart(chart), m_image(size, QImage::Format_RGB32) {
        m_palette.setColor(QPalette::Base, Qt::white);
        m_palette.setColor(QPalette::Text, Qt::black);
    }

    QImage drawn() {
        if (m_image.isNull())
            return m_image;
        m_image.fill(Qt::white);
        QPainter painter(&m_image);
        painter.setPen(Qt::black);
        line(painter, fontOf(kTitleSize, QFont::Bold), toQt(m_chart.title));
        for (const std::string &text : m_chart.lines)
            line(painter, m_plain, toQt(text));
        drawNames(painter);
        const QRect area(kMargin, m_top, width(), m_image.height() - m_top - kMargin);
        if (area.height() > kMargin)
            ChartPainter(m_chart, area, m_palette).draw(painter);
        return m_image;
    }

  private:
    int width() const { return m_image.width() - 2 * kMargin; }

    void line(QPainter &painter, const QFont &font, const QString &text) {
        const QFontMetrics metrics(font);
        painter.setFont(font);
        painter.drawText(QRect(kMargin, m_top, width(), metrics.lineSpacing()),
                         Qt::AlignLeft | Qt::TextSingleLine,
                         metrics.elidedText(text, Qt::ElideMiddle, width()));
        m_top += metrics.lineSpacing();
    }

    void drawNames(QPainter &painter) {
        const QFontMetrics metrics(m_plain);
        painter.setFont(m_plain);
        int left = kMargin;
        m_top += kGap;
        bool isAny = false;
        for (std::size_t part = 0; part < m_chart.parts.size(); ++part) {
            const QString name =
                metrics.elidedText(toQt(m_chart.parts[part]), Qt::ElideRight, width() / 4);
            const int room = kSwatch + kGap + metrics.horizontalAdvance(name) + 2 * kGap;
            if (name.isEmpty() || left + room > kMargin + width())
                continue;
            painter.fillRect(left, m_top + (metrics.height() - kSwatch) / 2, kSwatch, kSwatch,
                             chartColor(m_chart.colorOf(part), m_palette));
            painter.drawText(QPoint(left + kSwatch + kGap, m_top + metrics.ascent()), name);
            left += room;
            isAny = true;
        }
        m_top += isAny ? metrics.lineSpacing() + kGap : 0;
    }

    const TimeChart &m_chart;
    QImage m_image;
    QPalette m_palette;
    QFont m_plain = fontOf(kTextSize, QFont::Normal);
    int m_top = kMargin;
};

} // namespace

Drawn ChartPicture::draw(const DrawJob &job) const {
    Drawn drawn;
    QFile file(pathToQt(job.source));
    std::optional<TimeChart> chart;
    if (file.size() <= kLargestFile && file.open(QIODevice::ReadOnly))
        chart = chartOf(file.readAll().toStdString());
    if (!chart || job.width > kLargestSide || job.height > kLargestSide) {
        drawn.failure = "The file is no chart.";
        return drawn;
    }
    const QImage image = Picture(*chart, {job.width, job.height}).drawn();
    drawn.done = !image.isNull() && image.save(pathToQt(job.target), "PNG");
    if (!drawn.done)
        drawn.failure = "The chart can't be written.";
    return drawn;
}

} // namespace nv

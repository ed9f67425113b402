#pragma once

#include "platform/Drawing.h"
#include "platform/TimeChart.h"

#include <QPalette>
#include <QRect>

class QPainter;

namespace nv {

/// The colour at a place of TimeChart::colors, told apart on light and dark ground; places behind
/// the last one have its colour. 0-based.
QColor chartColor(std::size_t place, const QPalette &palette);

/// Draws the bars, the axis and the hours of a chart into a part of a window or picture; title,
/// lines and names of parts are others' to draw.
class ChartPainter {
  public:
    /// All must outlive this.
    ChartPainter(const TimeChart &chart, const QRect &area, const QPalette &palette);

    void draw(QPainter &painter) const;

    /// The bar under a place, the nearest one for places beside the bars; 0 without any.
    std::size_t barAt(int x) const;
    /// Where bar `bar` begins; that after the last one is where the last one ends.
    int leftOf(std::size_t bar) const;
    /// Of the bars alone, without the axis.
    const QRect &bars() const { return m_bars; }

  private:
    void drawGaps(QPainter &painter) const;
    void drawBars(QPainter &painter) const;
    void drawAxis(QPainter &painter) const;
    void drawHours(QPainter &painter) const;
    std::uint64_t totalOf(std::size_t bar) const;

    const TimeChart &m_chart;
    const QPalette &m_palette;
    QRect m_bars;
    QRect m_axis;
    QRect m_hours; ///< empty without hours
    std::uint64_t m_most = 0;
};

/// Draws a chart as a picture. Needs the application object.
class ChartPicture {
  public:
    /// Writes a PNG of the job's width and height.
    Drawn draw(const DrawJob &job) const;
};

} // namespace nv

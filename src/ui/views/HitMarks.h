#pragma once

#include "search/Expression.h"

#include <QObject>

#include <cstddef>
#include <functional>
#include <string_view>
#include <vector>

class QPlainTextEdit;

namespace nv {

/// Marks in a box of text what a search looks for, whatever text the box comes to show.
class HitMarks final : public QObject {
    Q_OBJECT

  public:
    /// The places of a text in UTF-8, from the left.
    using Marker = std::function<std::vector<TextSpan>(std::string_view text)>;

    /// The box owns it.
    explicit HitMarks(QPlainTextEdit &box);

    /// Null marks nothing.
    void setMarker(Marker marker);
    std::size_t count() const { return m_marks.size(); }
    /// Chooses the next mark behind the cursor, or before it. False when there is none.
    bool goOn(bool forward);

  private:
    struct Mark {
        int begin = 0; ///< of the box's characters
        int end = 0;
    };
    void mark();

    QPlainTextEdit &m_box;
    Marker m_marker;
    std::vector<Mark> m_marks;
};

} // namespace nv

#pragma once

#include "ui/parts/ProjectLook.h"
#include "ui/parts/Workbench.h"
#include "views/limits/SearchValues.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

class QLabel;

namespace nv {

class SearchBar;

/// What helps with the operators of a search: the names that the project has, while one is written,
/// and why a name finds nothing.
class SearchHelp final : public QObject {
    Q_OBJECT

  public:
    SearchHelp(Workbench &bench, SearchBar &bar);

    /// Says beside the box why a text can't be read.
    void showFault(const QString &text, const QString &fault);
    /// Says below the box which part of a search can find no row, whatever the rest says.
    void explain(const QString &text, bool foundNone);
    /// What was said is of an earlier search.
    void forget();

  private:
    /// Does it at once, or when the names are there.
    void withNames(std::function<void()> act);
    bool areFresh() const;
    void load();
    void offer();
    void take(const QString &name);

    Workbench &m_bench;
    SearchBar &m_bar;
    QLabel *m_advice = nullptr;
    ProjectLook m_look;
    SearchValues m_values;
    std::int64_t m_readTo = -1; ///< highest record when they were read; -1 before that
    std::vector<std::function<void()>> m_waiting;
};

} // namespace nv

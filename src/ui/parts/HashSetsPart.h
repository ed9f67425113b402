#pragma once

#include "ui/parts/Workbench.h"

namespace nv {

class HashSetForm;
class HashSetsForm;
class PlacesPane;

/// Hash sets in the main window: their dialog, and the limit to rows by the sets that their files
/// were found in, which the tree of places offers too.
class HashSetsPart final : public QObject, public Limiter {
    Q_OBJECT

  public:
    /// After the part of the places.
    explicit HashSetsPart(Workbench &bench);

    // Limiter
    QVariant limit() const override;
    void setLimit(const QVariant &limit) override;
    std::vector<LimitChip> chips() const override;
    bool asksAgain() const override { return false; }

  private:
    void limitTo(const HashLimit &limit);
    void showLimit(const HashLimit &limit);

    void showForm();
    void fill(HashSetsForm &form);
    void add(HashSetsForm &form);
    void make(HashSetsForm &form, const HashSetForm &order);
    void remove(HashSetsForm &form, const QString &name);
    void match(HashSetsForm &form);

    Workbench &m_bench;
    PlacesPane *m_places;
};

} // namespace nv

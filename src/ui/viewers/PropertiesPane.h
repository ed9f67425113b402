#pragma once

#include "ui/viewers/RecordPane.h"
#include "views/record/Properties.h"

#include <QWidget>

#include <functional>
#include <optional>

class QCheckBox;
class QHBoxLayout;
class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;
class QTreeWidget;

namespace nv {

/// All properties of one record; below them the whole text of the chosen one. Empty ones are hidden
/// unless the examiner wants them, and a box leaves those that hold a text.
class PropertiesPane final : public QWidget, public RecordPane {
    Q_OBJECT

  public:
    /// `load` gives the properties of a record.
    explicit PropertiesPane(std::function<std::vector<Property>(UrlId)> load,
                            QWidget *parent = nullptr);

    /// Why a property of the shown record has no bytes to lead to; an empty text: it may have some.
    /// Asked for the chosen one.
    using WhyNoBytes = std::function<QString(const QString &field)>;
    void setWhyNoBytes(WhyNoBytes whyNoBytes);

    /// Keeps the chosen property, by its name, and of the same record what is read of it.
    void showRecord(UrlId id) override;
    void clear() override;
    bool showsMarks() const override { return true; }
    /// Where the chosen property's value comes from: it is told by answered().
    void showWhy(const QString &why);
    /// Asks anew whether the chosen property has bytes.
    void checkBytes();

    /// The number of values, the filter, and the two questions that a value raises. It is the first
    /// line of the pane, unless it is wanted elsewhere; then it comes back by takeBar().
    QWidget &bar() { return *m_bar; }
    void takeBar();

    /// The values that the list shows now, from above.
    std::size_t listedCount() const { return m_shown.size(); }
    const std::string &listedValue(std::size_t place) const {
        return m_properties.at(m_shown.at(place)).value;
    }
    std::optional<std::size_t> chosenPlace() const;
    void choose(std::size_t place);
    /// Those in which a search has found something are marked; a number for each.
    void markListed(const std::vector<std::size_t> &hits);
    QPlainTextEdit &wholeText() { return *m_whole; }

  signals:
    /// The list shows other values, or none.
    void listed();
    /// Where does the chosen property of the record come from?
    void whyWanted(const QString &field);
    /// Its bytes are wanted.
    void bytesWanted(const QString &field);
    /// Why the chosen value is as it is; an empty text: that isn't asked any more.
    void answered(const QString &why);

  private:
    /// What the last answer is about.
    struct Answer {
        QString name;
        std::string value;
    };

    void askWhy();
    void dropAnswer();
    QWidget *newBar();
    void addQuestions(QHBoxLayout &row);
    void fill();
    bool isWanted(const Property &property) const;
    void showChosen();

    std::function<std::vector<Property>(UrlId)> m_load;
    WhyNoBytes m_whyNoBytes;
    QWidget *m_bar = nullptr;
    QTreeWidget *m_list = nullptr;
    QPlainTextEdit *m_whole = nullptr;
    QPushButton *m_why = nullptr;
    QPushButton *m_bytes = nullptr;
    QLineEdit *m_filter = nullptr;
    QCheckBox *m_empty = nullptr;
    QLabel *m_count = nullptr;
    std::vector<Property> m_properties; ///< all of them
    std::vector<std::size_t> m_shown;   ///< places among them, in the order of the list
    QString m_chosen;
    UrlId m_id = UrlId::none;
    std::optional<Answer> m_answer;
};

} // namespace nv

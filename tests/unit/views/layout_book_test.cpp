#include "views/table/LayoutBook.h"

#include <gtest/gtest.h>

#include <map>
#include <string>

namespace nv {
namespace {

/// The project's settings.
struct Kept {
    std::map<std::string, std::string, std::less<>> texts;
    TableLayout::Read read() {
        return [this](std::string_view name) {
            const auto found = texts.find(name);
            return found == texts.end() ? std::string() : found->second;
        };
    }
    TableLayout::Write write() {
        return [this](std::string_view name, std::string_view value) {
            texts[std::string(name)] = value;
        };
    }
    LayoutBook reopened() {
        LayoutBook book;
        book.restore(read());
        return book;
    }
};

using Names = std::vector<std::string>;
const Names kBuiltIn{"Examiner", "Caches", "Pictures", "Classic"};

TEST(LayoutBook, aNewProjectOpensWithExaminer) {
    const LayoutBook book = Kept().reopened();
    EXPECT_EQ(book.active(), "Examiner");
    EXPECT_EQ(book.names(), kBuiltIn);
    using C = UrlColumn;
    EXPECT_EQ(book.layout().shownColumns(),
              (std::vector{C::Tag, C::TagNames, C::Icon, C::LocalDate, C::Browser, C::Type, C::Host,
                           C::WebpageTitle, C::Value, C::Person, C::User, C::Visits, C::Status,
                           C::Note}));
    for (const C column : book.layout().shownColumns())
        EXPECT_TRUE(book.layout().isFitted(column));
}

TEST(LayoutBook, cachesAndPicturesShowWhatTheyAreAbout) {
    using C = UrlColumn;
    LayoutBook book;
    ASSERT_TRUE(book.choose("caches"));
    EXPECT_TRUE(book.isBuiltIn());
    for (const C column : {C::LocalDate, C::MimeType, C::CacheFileSize, C::Value, C::Rebuilt})
        EXPECT_FALSE(book.layout().hidden(column)) << indexOf(column);
    ASSERT_TRUE(book.choose("Pictures"));
    for (const C column : {C::LocalDate, C::PictureWidth, C::PictureHeight, C::FileName})
        EXPECT_FALSE(book.layout().hidden(column)) << indexOf(column);
    book.layout().setHidden(C::FileName, true);
    book.reset();
    EXPECT_FALSE(book.layout().hidden(C::FileName));
}

TEST(LayoutBook, anOwnLayoutKeepsItsColumnsUnderANameThatIsBuiltInNow) {
    Kept kept;
    kept.texts["ColumnLayout1_Name"] = "Pictures";
    kept.texts["ColumnLayout1_Columns"] = "14:3000 0:0";
    LayoutBook book = kept.reopened();
    EXPECT_EQ(book.names(), kBuiltIn);
    ASSERT_TRUE(book.choose("Pictures"));
    EXPECT_EQ(book.layout().shownColumns(), (std::vector{UrlColumn::Value, UrlColumn::Tag}));
}

TEST(LayoutBook, classicHasTheDocumentedColumnsInTheirOrder) {
    LayoutBook book;
    EXPECT_TRUE(book.choose("classic"));
    EXPECT_TRUE(book.isClassic());
    std::vector<UrlColumn> documented;
    for (const UrlColumnFacts &facts : kUrlColumns)
        documented.push_back(facts.column);
    const std::vector<UrlColumn> &order = book.layout().order();
    EXPECT_EQ(std::vector(order.begin(), order.begin() + kUrlColumnCount), documented);
    EXPECT_EQ(book.layout().shownColumns().size(), 48u);
    EXPECT_FALSE(book.choose("Another"));
    EXPECT_TRUE(book.isClassic());
}

TEST(LayoutBook, aProjectWithoutLayoutsOpensAsItWasLeft) {
    Kept kept;
    TableLayout left;
    left.setHidden(UrlColumn::Host, true);
    left.move(UrlColumn::Value, 1);
    left.setWidthTwips(UrlColumn::Value, 7777);
    left.save(kept.write());
    std::erase_if(kept.texts, [](const auto &each) {
        return each.first.starts_with("COL_URL_NOTE") || each.first.starts_with("COL_URL_LOCAL");
    });
    const LayoutBook book = kept.reopened();
    EXPECT_EQ(book.active(), "Classic");
    EXPECT_EQ(book.layout(), left);
}

TEST(LayoutBook, ownLayoutsAreSavedRenamedAndDeleted) {
    LayoutBook book;
    book.layout().setHidden(UrlColumn::Host, true);
    book.saveAs(" Without hosts ");
    EXPECT_EQ(book.active(), "Without hosts");
    EXPECT_EQ(book.check("WITHOUT HOSTS", false), LayoutNameFault::Taken);
    EXPECT_EQ(book.check("WITHOUT HOSTS", true), LayoutNameFault::None);
    EXPECT_EQ(book.check("examiner", true), LayoutNameFault::Taken);
    EXPECT_EQ(book.check("  ", false), LayoutNameFault::Empty);
    EXPECT_EQ(book.check(std::string(41, 'x'), false), LayoutNameFault::TooLong);
    book.rename("Few");
    EXPECT_EQ(book.names(), (Names{"Examiner", "Caches", "Pictures", "Classic", "Few"}));
    book.remove();
    EXPECT_EQ(book.names(), kBuiltIn);
    EXPECT_EQ(book.active(), "Examiner");
    book.remove();
    book.rename("Mine"); // built-in ones stay
    EXPECT_EQ(book.names(), kBuiltIn);
    EXPECT_TRUE(book.layout().hidden(UrlColumn::Host)); // as it was when the copy was made
    book.reset();
    EXPECT_EQ(book.layout(), LayoutBook().layout());
}

TEST(LayoutBook, comesBackAsItWasKept) {
    Kept kept;
    LayoutBook book;
    book.layout().setWidthTwips(UrlColumn::Host, 1500);
    book.saveAs("First");
    book.layout().move(UrlColumn::Host, 0);
    book.layout().setHidden(UrlColumn::User, true);
    book.saveAs("Second; with: signs 0:1");
    book.layout().setHidden(UrlColumn::Note, true);
    book.choose("First");
    book.save(kept.write());
    LayoutBook again = kept.reopened();
    EXPECT_EQ(again.names(), book.names());
    EXPECT_EQ(again.active(), "First");
    for (const std::string &name : book.names()) {
        book.choose(name);
        again.choose(name);
        EXPECT_EQ(again.layout().shownColumns(), book.layout().shownColumns()) << name;
        for (const UrlColumn column : book.layout().shownColumns())
            EXPECT_EQ(again.layout().widthTwips(column), book.layout().widthTwips(column));
    }
    again.choose("First");
    again.remove();
    again.save(kept.write());
    EXPECT_EQ(kept.reopened().names(),
              (Names{"Examiner", "Caches", "Pictures", "Classic", "Second; with: signs 0:1"}));
}

TEST(LayoutBook, textsThatMakeNoSenseCostNothingButThemselves) {
    Kept kept;
    kept.texts = {{"ColumnLayout", "Gone"},
                  {"ColumnLayout1_Name", "Odd"},
                  {"ColumnLayout1_Columns", "14:5000 x 99:1 14:2 -1:3 27 27: 10:0 :"}};
    LayoutBook book = kept.reopened();
    EXPECT_EQ(book.names(), (Names{"Examiner", "Caches", "Pictures", "Classic", "Odd"}));
    EXPECT_EQ(book.active(), "Examiner");
    book.choose("Odd");
    EXPECT_EQ(book.layout().shownColumns(),
              (std::vector{UrlColumn::Value, UrlColumn::ActionDateLocal}));
    EXPECT_EQ(book.layout().widthTwips(UrlColumn::Value), 5000);
}

} // namespace
} // namespace nv

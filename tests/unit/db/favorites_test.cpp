#include "db/Favorites.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace nv {

namespace {

Favorite named(const char *name) {
    Favorite favorite;
    favorite.favoriteName = name;
    return favorite;
}

} // namespace

TEST(Favorites, aFavoriteIsAddedByItsMembersInTheirOrder) {
    Favorites favorites;
    favorites.add("Often visited", true, 3, 70000, 2, "SELECT * FROM URLs WHERE Visits > 9",
                  "C:\\favorites.ini", "en", "Often", "often");
    const Favorite expected{
        "Often visited",     true, 3,      70000, 2, "SELECT * FROM URLs WHERE Visits > 9",
        "C:\\favorites.ini", "en", "Often"};
    EXPECT_EQ(favorites.item("OFTEN"), expected);
    EXPECT_EQ(favorites.item(std::size_t{1}), expected);
}

TEST(Favorites, anEmptyKeyAddsWithoutOne) {
    Favorites favorites;
    favorites.add(named("a"));
    favorites.add(named("b"), "");
    EXPECT_EQ(favorites.count(), 2U);
    EXPECT_THROW(favorites.item(""), std::out_of_range);
}

TEST(Favorites, aKeyIsTakenOnce) {
    Favorites favorites;
    favorites.add(named("a"), "x");
    EXPECT_THROW(favorites.add(named("b"), "X"), std::invalid_argument);
    EXPECT_EQ(favorites.count(), 1U);
}

TEST(Favorites, theyAreRemovedWalkedAndCleared) {
    Favorites favorites;
    for (const char *name : {"a", "b", "\xC3\xA9"})
        favorites.add(named(name), name);
    favorites.remove("a");
    std::string names;
    for (const Favorite &favorite : favorites)
        names += favorite.favoriteName;
    EXPECT_EQ(names, "b\xC3\xA9");
    favorites.clear();
    EXPECT_EQ(favorites.count(), 0U);
    EXPECT_THROW(favorites.remove("b"), std::out_of_range);
}

} // namespace nv

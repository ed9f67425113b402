#include "db/Favorites.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace nv {

namespace {

FavoriteClass named(const char *name) {
    FavoriteClass favorite;
    favorite.FavoriteName = name;
    return favorite;
}

} // namespace

TEST(Favorites, aFavoriteIsAddedByItsMembersInTheirOrder) {
    Favorites favorites;
    favorites.Add("Often visited", true, 3, 70000, 2, "SELECT * FROM URLs WHERE Visits > 9",
                  "C:\\favorites.ini", "en", "Often", "often");
    const FavoriteClass expected{
        "Often visited",     true, 3,      70000, 2, "SELECT * FROM URLs WHERE Visits > 9",
        "C:\\favorites.ini", "en", "Often"};
    EXPECT_EQ(favorites.Item("OFTEN"), expected);
    EXPECT_EQ(favorites.Item(std::size_t{1}), expected);
}

TEST(Favorites, anEmptyKeyAddsWithoutOne) {
    Favorites favorites;
    favorites.Add(named("a"));
    favorites.Add(named("b"), "");
    EXPECT_EQ(favorites.Count(), 2U);
    EXPECT_THROW(favorites.Item(""), std::out_of_range);
}

TEST(Favorites, aKeyIsTakenOnce) {
    Favorites favorites;
    favorites.Add(named("a"), "x");
    EXPECT_THROW(favorites.Add(named("b"), "X"), std::invalid_argument);
    EXPECT_EQ(favorites.Count(), 1U);
}

TEST(Favorites, theyAreRemovedWalkedAndCleared) {
    Favorites favorites;
    for (const char *name : {"a", "b", "\xC3\xA9"})
        favorites.Add(named(name), name);
    favorites.Remove("a");
    std::string names;
    for (const FavoriteClass &favorite : favorites)
        names += favorite.FavoriteName;
    EXPECT_EQ(names, "b\xC3\xA9");
    favorites.Clear();
    EXPECT_EQ(favorites.Count(), 0U);
    EXPECT_THROW(favorites.Remove("b"), std::out_of_range);
}

} // namespace nv

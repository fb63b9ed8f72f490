#include "ui/removed_keys.h"

#include <gtest/gtest.h>

#include <string>

using namespace wegslot;
using namespace wegslot::panel;

namespace {

using Keys = std::vector<KeyDevice>;

KeyDevice lettered(char letter) {
    KeyDevice key;
    key.id.bytes[0] = static_cast<std::uint8_t>(letter);
    key.name = letter;
    return key;
}

Keys keysOf(std::string_view letters) {
    Keys keys;
    for (const char letter : letters)
        keys.push_back(lettered(letter));
    return keys;
}

/// As it is listed, the removed ones as small letters.
std::string textOf(const Keys& keys, const std::vector<RemovedKey>& removed) {
    std::string text;
    for (const ListedKey& listed : listedKeys(keys, removed))
        text += listed.isRemoved ? static_cast<char>(std::tolower(listed.key->name.front()))
                                 : listed.key->name.front();
    return text;
}

/// A list from which keys are removed one by one.
struct Shrinking {
    Keys keys;
    std::vector<RemovedKey> removed{};

    void remove(char letter) {
        removed.push_back(removedFrom(listedKeys(keys, removed), lettered(letter)));
        std::erase(keys, lettered(letter));
    }
    void putBack(std::size_t which) {
        const RemovedKey back = removed.at(which);
        const auto place = static_cast<std::ptrdiff_t>(placeAmong(keys, back));
        keys.insert(std::next(keys.begin(), place), back.key);
    }
    [[nodiscard]] std::string text() const { return textOf(keys, removed); }
};

} // namespace

TEST(RemovedKeys, EachStandsWhereItStoodInWhicheverOrderTheyWent) {
    std::string order = "ABCD";
    do {
        Shrinking list{keysOf("ABCD")};
        for (const char letter : order) {
            list.remove(letter);
            std::string shown = list.text();
            for (char& sign : shown)
                sign = static_cast<char>(std::toupper(sign));
            EXPECT_EQ(shown, "ABCD") << order << " " << letter;
        }
        EXPECT_EQ(list.text(), "abcd") << order;
    } while (std::ranges::next_permutation(order).found);
}

TEST(RemovedKeys, TheyComeBackInTheirOrderInWhicheverOrderTheyCome) {
    std::vector<std::size_t> order{0, 1, 2};
    do {
        Shrinking list{keysOf("ABCD")};
        for (const char letter : {'B', 'A', 'C'})
            list.remove(letter);
        for (const std::size_t which : order)
            list.putBack(which);
        EXPECT_EQ(list.text(), "ABCD");
    } while (std::ranges::next_permutation(order).found);
}

TEST(RemovedKeys, WhoCameMeanwhileStandsBehind) {
    Shrinking list{keysOf("AB")};
    list.remove('B');
    list.keys.push_back(lettered('X'));
    EXPECT_EQ(list.text(), "AbX");
    list.remove('A');
    EXPECT_EQ(list.text(), "abX");
}

TEST(RemovedKeys, WhoIsAKeyAgainIsListedOnce) {
    Shrinking list{keysOf("AB")};
    list.remove('A');
    list.keys.push_back(lettered('A'));
    EXPECT_EQ(list.text(), "BA");
}

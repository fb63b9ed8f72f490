#include "identity/linux/secret_text.h"

#include "tests/support/known_identities.h"

#include <gtest/gtest.h>

#include <array>
#include <string>
#include <thread>

#include <pty.h>
#include <termios.h>
#include <unistd.h>

using namespace wegslot;

namespace {

constexpr auto never = [](std::string_view) { return false; };

std::string piped(const std::string& content, std::size_t most) {
    std::array<int, 2> ends{};
    EXPECT_EQ(pipe(ends.data()), 0);
    EXPECT_EQ(write(ends[1], content.data(), content.size()), static_cast<ssize_t>(content.size()));
    close(ends[1]);
    auto text = pastedText(ends[0], most, ordinaryMemory(), [](std::string_view) { return true; });
    close(ends[0]);
    return std::string(text.value_or("nothing"));
}

} // namespace

TEST(SecretText, IsReadToItsEnd) {
    EXPECT_EQ(piped("een\ntwee\n", 100), "een\ntwee\n");
    EXPECT_EQ(piped("", 100), "");
}

TEST(SecretText, OfTooMuchItIsReadThatItIs) {
    EXPECT_EQ(piped("0123456789", 4).size(), 5U);
    EXPECT_EQ(piped("0123", 4).size(), 4U);
}

TEST(SecretText, ThatCannotBeReadIsNone) {
    EXPECT_FALSE(secretText(-1, 10, ordinaryMemory(), never));
}

TEST(SecretText, ATerminalShowsNothingOfItAndEndsWithTheLineThatIsEnough) {
    int person = -1;
    int terminal = -1;
    ASSERT_EQ(openpty(&person, &terminal, nullptr, nullptr, nullptr), 0);
    std::optional<std::pmr::string> text;
    std::thread reading([&] {
        text = pastedText(terminal, 100, ordinaryMemory(), [](std::string_view sofar) {
            return sofar.find("geheim") != std::string_view::npos;
        });
    });
    // Typed once the terminal has been told to be silent.
    termios now{};
    do
        tcgetattr(terminal, &now);
    while ((now.c_lflag & ECHO) != 0);
    const std::string typed = "eerst\nhet geheim\n";
    ASSERT_EQ(write(person, typed.data(), typed.size()), static_cast<ssize_t>(typed.size()));
    reading.join();
    ASSERT_TRUE(text);
    EXPECT_EQ(std::string(*text), typed);
    tcgetattr(terminal, &now);
    EXPECT_NE(now.c_lflag & ECHO, 0U);
    // What it has shown is what stands to be read: line ends alone.
    const std::string mark = "klaar";
    ASSERT_EQ(write(terminal, mark.data(), mark.size()), static_cast<ssize_t>(mark.size()));
    std::string shown;
    while (shown.find(mark) == std::string::npos) {
        std::array<char, 256> block{};
        const ssize_t got = read(person, block.data(), block.size());
        ASSERT_GT(got, 0);
        shown.append(block.data(), static_cast<std::size_t>(got));
    }
    EXPECT_EQ(shown.find("geheim"), std::string::npos) << shown;
    close(person);
    close(terminal);
}

#include "base/system_error.h"

#include "tests/support/glossary.h"

#include <gtest/gtest.h>

#include <cerrno>

using namespace wegslot;

TEST(SystemError, IsInTheSystemsWordsWhereTextsAreAsTheyStand) {
    EXPECT_EQ(systemError(ENOSPC).translated(), "No space left on device");
    EXPECT_EQ(systemError(123456).builtIn(), "123456");
}

TEST(SystemError, IsInTheUsersLanguageElsewhereOrANumberWithoutWordsOfAnother) {
    const Glossary german{{"er is geen ruimte meer", "kein Platz mehr"},
                          {"systeemfout %1", "Systemfehler %1"}};
    EXPECT_EQ(systemError(ENOSPC).translated(), "kein Platz mehr");
    EXPECT_EQ(systemError(ENOSPC).builtIn(), "No space left on device");
    EXPECT_EQ(systemError(ENOTTY).translated(), "Systemfehler " + std::to_string(ENOTTY));
}

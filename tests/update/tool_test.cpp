#include "update/linux/tool.h"

#include "tests/support/environment.h"
#include "tests/support/program.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/waiting.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

using namespace wegslot;
using namespace std::chrono_literals;

namespace {

Result<std::string> shell(const std::string& command, std::optional<Nanoseconds> patience = {}) {
    return runTool({"/bin/sh", "-c", command}, patience);
}

} // namespace

TEST(Tool, AnswersWithWhatTheProgramPrints) {
    EXPECT_EQ(*shell("echo een; echo fout >&2; echo twee"), "een\ntwee\n");
    EXPECT_EQ(*shell(":"), "");
}

TEST(Tool, AFailureNamesTheProgramAndItsStatus) {
    EXPECT_EQ(shell("exit 1").failure().message, "sh mislukt (1)");
    EXPECT_EQ(shell("echo half; exit 255").failure().message, "sh mislukt (255)");
    EXPECT_EQ(shell("kill -9 $$").failure().message, "sh mislukt (137)");
}

TEST(Tool, AProgramThatCannotBeStartedIsNamed) {
    const auto result = runTool({"/nergens/tar"});
    ASSERT_FALSE(result);
    EXPECT_TRUE(result.failure().message.builtIn().starts_with("/nergens/tar: "))
        << result.failure().message.builtIn();
}

TEST(Tool, EndsAProgramThatTakesTooLongAndWhatItStarted) {
    const TemporaryFolder folder;
    const std::string file = (folder.path() / "process").string();
    // A machine that is busy may need longer until there is something to be ended.
    for (Nanoseconds patience = 200ms; folder.lines("process").empty(); patience *= 2) {
        ASSERT_LT(patience, onlyAHang);
        const auto result =
            shell("(sleep 1000 & echo $! > " + file + "; wait) & trap '' TERM; wait", patience);
        EXPECT_EQ(result.failure().message, "sh mislukt (137)");
    }
    // Dead, though perhaps not yet laid to rest by whoever inherited it.
    const std::string status =
        "/proc/" + std::to_string(std::stoi(folder.read("process"))) + "/status";
    EXPECT_TRUE(becomesTrue([&status] {
        std::ifstream stream(status);
        const std::string text(std::istreambuf_iterator<char>(stream), {});
        return text.empty() || text.find("State:\tZ") != std::string::npos;
    }));
}

TEST(Tool, WhoEndsItsOutputAndGoesOnTakesTooLongAsWell) {
    EXPECT_EQ(shell("exec >&-; sleep 1000", 200ms).failure().message, "sh mislukt (137)");
}

TEST(Tool, ALongAnswerIsCutShort) {
    EXPECT_EQ(runTool({"/bin/sh", "-c", "yes | head -c 100000"}, {}, 10)->size(), 10U);
}

TEST(Tool, NothingOfTheEnvironmentIsHandedOn) {
    const Environment own({{"TAR_OPTIONS", "--to-command=false"}, {"DISPLAY", ":0"}});
    EXPECT_EQ(*shell("echo $TAR_OPTIONS$DISPLAY$PATH"), "/usr/bin:/bin\n");
    EXPECT_EQ(*shell("cat"), ""); // no input either
}

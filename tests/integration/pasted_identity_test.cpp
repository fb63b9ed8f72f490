// An identity given to the program as a person gives it, and the device behind it heard by the
// running one; what is kept, and where it does not appear.

#include "tests/integration/control_stage.h"
#include "tests/support/known_identities.h"

#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>

#include <sys/stat.h>

using namespace wegslot;

namespace {

const std::string phonesAddress = "70:81:94:0D:FB:AA";

struct PastedIdentityTest : ProgramStage {
    const std::string id = phonesIdentity().id().text();
    const std::filesystem::path file = home.path() / ".local/share/wegslot/identities.json";

    PastedIdentityTest() {
        variables["XDG_CACHE_HOME"] = "";
        sender = phonesAddress;
        bluez.addAdapter();
    }

    void start() { ProgramStage::start("Bluetooth-status: Bluetooth staat aan"); }
    /// From now on the phone is heard under its private address.
    void send() {
        strength = -51;
        bluez.addDevice(phonesAddress, strength, {{"AddressType", std::string("random")}});
    }
    [[nodiscard]] Ending paste(const std::string& text, const std::string& further = "") {
        return run({"sh", "-c", "printf %s \"$1\" | \"$0\" --add-irk Telefoon " + further,
                    WEGSLOT_PROGRAM, text});
    }
    [[nodiscard]] std::string kept() const {
        std::ifstream stream(file);
        return {std::istreambuf_iterator<char>(stream), {}};
    }
};

} // namespace

TEST_F(PastedIdentityTest, IsAKeyOfTheRunningOneAtOnceAndHeardUnderItsPrivateAddress) {
    start();
    send();
    const Ending added = paste(phonesKey);
    EXPECT_EQ(added.status, 0);
    EXPECT_EQ(added.said.find("Sleutel toegevoegd: Telefoon, drempel -75 dBm\nGehoord: -5"), 0U)
        << added.said;
    EXPECT_TRUE(happens([this] { return logs("Sleutel in de buurt, bewaking actief"); }))
        << home.log();
    EXPECT_NE(home.preferences().find(id), std::string::npos);

    // What only its own file may hold.
    EXPECT_NE(kept().find(phonesKey), std::string::npos);
    struct stat facts {};
    ASSERT_EQ(stat(file.c_str(), &facts), 0);
    EXPECT_EQ(facts.st_mode & 07777U, 0600U);
    ASSERT_EQ(stat(file.parent_path().c_str(), &facts), 0);
    EXPECT_EQ(facts.st_mode & 07777U, 0700U);
    for (const auto& entry : std::filesystem::recursive_directory_iterator(home.path())) {
        if (!entry.is_regular_file() || entry.path() == file) continue;
        std::ifstream stream(entry.path());
        const std::string content{std::istreambuf_iterator<char>(stream), {}};
        EXPECT_EQ(content.find("ec0234a3"), std::string::npos) << entry.path();
        EXPECT_EQ(content.find("EC0234A3"), std::string::npos) << entry.path();
    }
}

TEST_F(PastedIdentityTest, IsAKeyOfTheNextStartToo) {
    send();
    const Ending added = paste("irk: " + std::string(phonesKey) + "\n");
    EXPECT_EQ(added.status, 0) << added.said;
    EXPECT_NE(added.said.find("Gehoord: -5"), std::string::npos) << added.said;
    start();
    EXPECT_TRUE(happens([this] { return logs("Sleutel in de buurt, bewaking actief"); }))
        << home.log();
}

TEST_F(PastedIdentityTest, GoesWithItsKey) {
    start();
    send();
    ASSERT_EQ(paste(phonesKey).status, 0);
    application->signal(SIGTERM);
    ASSERT_TRUE(happens([this] { return !application->isRunning(); }));
    EXPECT_NE(kept().find(phonesKey), std::string::npos);
    const Ending removed = wegslot({"--remove-key", id});
    EXPECT_EQ(removed.status, 0) << removed.said;
    EXPECT_NE(kept(), "");
    EXPECT_EQ(kept().find(phonesKey), std::string::npos);
}

TEST_F(PastedIdentityTest, ThatIsNoneIsRefusedAndNothingIsMade) {
    start();
    const Ending refused = paste("ec0234a357c8ad05341010a60a397d9");
    EXPECT_EQ(refused.status, 1);
    EXPECT_EQ(refused.said,
              "wegslot: een identiteit heeft 32 hexadecimale cijfers; dit heeft er 31\n");
    EXPECT_FALSE(std::filesystem::exists(file));
}

TEST_F(PastedIdentityTest, AFileThatIsDamagedIsLeftAndToldOfByBoth) {
    home.write(".local/share/wegslot/identities.json", "{");
    start();
    EXPECT_TRUE(logs("Identiteiten niet te gebruiken: " + file.string() + ": regel 1: geen JSON"))
        << home.log();
    const Ending refused = paste(phonesKey);
    EXPECT_EQ(refused.status, 1);
    EXPECT_EQ(refused.said, "wegslot: Identiteiten niet te gebruiken: " + file.string() +
                                ": regel 1: geen JSON\n");
    EXPECT_EQ(kept(), "{");
}

TEST_F(PastedIdentityTest, AProgramOnTheBusCanOnlyHaveTheFileReadAgain) {
    start();
    const Ending called = run({"busctl", "--user", "call", "nl.wegslot.Wegslot",
                               "/nl/wegslot/Wegslot", "nl.wegslot.Wegslot1", "ReadIdentities"});
    EXPECT_EQ(called.status, 0) << called.said;
    EXPECT_TRUE(logs("Nieuwe identiteiten lezen gevraagd door busctl")) << home.log();
    EXPECT_EQ(wegslot({"keys"}).said, "Geen sleutels\n");
}

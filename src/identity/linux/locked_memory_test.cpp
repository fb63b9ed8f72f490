#include "identity/linux/locked_memory.h"

#include "identity/identities.h"
#include "identity/linux/identities_file.h"
#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace wegslot;

namespace {

/// A mapping of this process with its flags, as the kernel names them.
struct Mapping {
    std::uintptr_t first = 0;
    std::uintptr_t end = 0;
    std::string rights;
    std::string flags;
};

std::vector<Mapping> mappings() {
    std::vector<Mapping> all;
    std::ifstream file("/proc/self/smaps");
    for (std::string line; std::getline(file, line);) {
        Mapping mapping;
        char dash = 0;
        std::istringstream words(line);
        if (line.starts_with("VmFlags:")) {
            all.back().flags = line + " ";
        } else if (line.find(": ") == std::string::npos &&
                   words >> std::hex >> mapping.first >> dash >> mapping.end >> mapping.rights) {
            all.push_back(mapping);
        }
    }
    return all;
}

// The address sanitizer has mlock do nothing.
#if defined(__SANITIZE_ADDRESS__)
constexpr bool locks = false;
#elif defined(__has_feature)
constexpr bool locks = !__has_feature(address_sanitizer);
#else
constexpr bool locks = true;
#endif

bool isProtected(const Mapping& mapping) {
    const bool isDumped = mapping.flags.find(" dd ") == std::string::npos;
    const bool isLocked = mapping.flags.find(" lo ") != std::string::npos;
    return !isDumped && isLocked == locks;
}

/// Where `secret`, less what hides it in this program, stands in this process's memory outside of
/// what is protected.
std::vector<std::string> placesOf(const std::vector<std::uint8_t>& hidden) {
    std::vector<std::string> places;
    const int memory = open("/proc/self/mem", O_RDONLY | O_CLOEXEC);
    std::vector<std::uint8_t> page(std::size_t{1} << 20U);
    for (const Mapping& mapping : mappings()) {
        constexpr std::uintptr_t largest = std::uintptr_t{1} << 30U; // a sanitizer's own are larger
        if (!mapping.rights.starts_with("rw") || isProtected(mapping)) continue;
        if (mapping.end - mapping.first > largest) continue;
        for (std::uintptr_t at = mapping.first; at < mapping.end; at += page.size() / 2) {
            const std::size_t wanted = std::min<std::size_t>(page.size(), mapping.end - at);
            const ssize_t got = pread(memory, page.data(), wanted, static_cast<off_t>(at));
            if (got <= 0) break;
            const auto found = std::search(
                page.begin(), page.begin() + got, hidden.begin(), hidden.end(),
                [](std::uint8_t there, std::uint8_t sign) { return there == (sign ^ 0x5AU); });
            std::fill(page.begin(), page.end(), 0);
            if (found == page.begin() + got) continue;
            places.push_back(mapping.rights + mapping.flags);
            break;
        }
    }
    close(memory);
    return places;
}

std::vector<std::uint8_t> hiddenBytes() {
    // Drawn for this test; without what hides it, it stands nowhere but where it is put.
    return {0x91, 0x0C, 0x77, 0xE2, 0x3D, 0xB8, 0x46, 0xF5,
            0x1A, 0xC9, 0x60, 0x8E, 0xD3, 0x24, 0xAB, 0x5F};
}

} // namespace

TEST(LockedMemoryTest, IsNeitherSwappedNorDumped) {
    LockedMemory memory;
    auto* const block = static_cast<char*>(memory.allocate(100));
    const auto address = reinterpret_cast<std::uintptr_t>(block); // NOLINT
    const auto all = mappings();
    const auto mapping = std::ranges::find_if(
        all, [&](const Mapping& each) { return each.first <= address && address < each.end; });
    ASSERT_NE(mapping, all.end());
    EXPECT_TRUE(isProtected(*mapping)) << mapping->flags;
    EXPECT_TRUE(memory.isLocked());
    memory.deallocate(block, 100);
}

TEST(LockedMemoryTest, AnIdentityStandsNowhereElseFromItsFileToItsEnd) {
    const auto hidden = hiddenBytes();
    std::vector<std::uint8_t> digits;
    TemporaryFolder data;
    const auto path = IdentitiesFile::pathUnder(data.path());
    {
        // Written by a child, whose memory goes with it.
        const pid_t child = fork();
        if (child == 0) {
            LockedMemory memory;
            KnownIdentities one(&memory);
            one.push_back({.key = {}, .name = "Telefoon"});
            for (std::size_t i = 0; i < hidden.size(); ++i)
                one.front().key.bytes[i] = hidden[i] ^ 0x5AU;
            _exit(IdentitiesFile(path, memory).change({}, one) ? 1 : 0);
        }
        int status = 0;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        ASSERT_EQ(status, 0);
    }
    for (const std::uint8_t byte : hidden) {
        for (const unsigned digit : {(byte ^ 0x5AU) >> 4U, (byte ^ 0x5AU) & 0xFU})
            digits.push_back(static_cast<std::uint8_t>("0123456789abcdef"[digit] ^ 0x5A));
    }
    LockedMemory memory;
    {
        Identities identities(memory);
        IdentitiesFile file(path, memory);
        {
            const auto kept = file.read();
            ASSERT_TRUE(kept) << kept.failure().message.builtIn();
            ASSERT_EQ(kept->size(), 1U);
            identities.put(kept->front());
        }
        EXPECT_FALSE(identities.whose("70:81:94:0D:FB:AA"));
        EXPECT_EQ(placesOf(hidden), std::vector<std::string>{});
        EXPECT_EQ(placesOf(digits), std::vector<std::string>{});
    }
    // The search finds what is there.
    std::vector<std::uint8_t> copy;
    copy.reserve(hidden.size());
    for (const std::uint8_t byte : hidden)
        copy.push_back(byte ^ 0x5AU);
    EXPECT_EQ(placesOf(hidden).size(), 1U);
}

// An installed application, a server and a signed release of a newer one: what an update needs, and
// what an attacker may change of it.
#pragma once

#include "tests/support/application_folder.h"
#include "tests/support/environment.h"
#include "tests/support/signing.h"
#include "tests/support/tar_archive.h"
#include "tests/update/web_server.h"
#include "update/archive_reader.h"
#include "update/release.h"
#include "update/verify.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <string>
#include <vector>

namespace wegslot {

class PublishedUpdate {
public:
    PublishedUpdate() {
        std::filesystem::create_directories(app);
        std::filesystem::create_directories(temporary);
    }

    /// The application's folder as it is, packed by the system's tar.
    [[nodiscard]] Bytes imageOf(const std::filesystem::path& bundle) const {
        const auto file = home.path() / "packed.tar.gz";
        const std::string command = "tar -C '" + bundle.parent_path().string() +
                                    "' --format=ustar -czf '" + file.string() + "' Wegslot.app";
        EXPECT_EQ(std::system(command.c_str()), 0);
        const std::string bytes = home.read("packed.tar.gz");
        return {bytes.begin(), bytes.end()};
    }

    /// What an honest feed says of `image`.
    [[nodiscard]] Release releaseOf(const Bytes& image) const {
        return {.version = "1.4",
                .build = 27,
                .url = "image.tar.gz",
                .sha256 = sha256(image),
                .signature = owner.sign(image),
                .notes = std::nullopt};
    }

    void publish(const Release& release, const Bytes& image) const {
        writeText(folder / "image.tar.gz", std::string(image.begin(), image.end()));
        publishFeed(nlohmann::json{{"version", release.version},
                                   {"build", release.build},
                                   {"url", release.url},
                                   {"sha256", release.sha256},
                                   {"signature", release.signature}}
                        .dump());
    }

    void publishFeed(const std::string& feed) const { writeText(folder / "feed.json", feed); }

    /// The keys of Info.json that an application updates itself by.
    [[nodiscard]] std::string feedKeys(const std::string& feed = "feed.json") const {
        return R"(,"WSUpdateFeedURL":")" + server.https(feed) + R"(","WSUpdatePublicKey":")" +
               toBase64(owner.publicKey) + "\"";
    }

    /// What attempts left in the folder for temporary files.
    [[nodiscard]] std::vector<std::string> leftovers() const {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(temporary))
            names.push_back(entry.path().filename());
        return names;
    }

    TemporaryFolder home;
    std::filesystem::path app = home.path() / "Apps" / "Wegslot.app";
    std::filesystem::path temporary = home.path() / "tmp";
    std::filesystem::path folder = home.path() / "served";
    Signer owner;
    WebServer server{folder};
    Environment environment{{{"SSL_CERT_FILE", server.certificate()},
                             {"http_proxy", ""},
                             {"https_proxy", ""},
                             {"no_proxy", ""}}};
};

} // namespace wegslot

// A web server on loopback, with a certificate that is made for it and that nobody else trusts.
#pragma once

#include "tests/support/program.h"
#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <sstream>
#include <string>
#include <vector>

namespace wegslot {

class WebServer {
public:
    /// Serves the files of `folder`, under the number of this machine itself: a name would have to
    /// be looked up, and not every machine knows one. `subject`: whom its certificate is about.
    explicit WebServer(const std::filesystem::path& folder,
                       const std::string& subject = "IP:127.0.0.1") {
        const std::string key = (own_.path() / "key.pem").string();
        const std::string command =
            "openssl req -x509 -newkey ec -pkeyopt ec_paramgen_curve:P-256 -nodes -days 2 "
            "-subj /CN=Wegslot -addext subjectAltName=" +
            subject + " -keyout '" + key + "' -out '" + certificate() + "' 2>/dev/null";
        EXPECT_EQ(std::system(command.c_str()), 0) << "openssl is missing";
        program_.emplace(
            Program::Start{.words = {WEB_SERVER, certificate(), key, folder.string()}});
        EXPECT_TRUE(becomesTrue([this] {
            return program_->output().find('\n') != std::string::npos;
        })) << program_->output();
        std::istringstream(lines().empty() ? "" : lines().front()) >> ready_ >> https_ >> http_;
    }

    /// A file with the one authority that has signed the server's certificate.
    [[nodiscard]] std::string certificate() const { return (own_.path() / "cert.pem").string(); }

    [[nodiscard]] std::string https(const std::string& path) const {
        return "https://127.0.0.1:" + https_ + "/" + path;
    }

    [[nodiscard]] std::string http(const std::string& path) const {
        return "http://127.0.0.1:" + http_ + "/" + path;
    }

    /// How often an address that starts like this was asked for.
    [[nodiscard]] std::ptrdiff_t requests(const std::string& start) const {
        return std::ranges::count_if(lines(), [&](const std::string& line) {
            return line.starts_with("https /" + start) || line.starts_with("http /" + start);
        });
    }

    [[nodiscard]] std::vector<std::string> lines() const {
        std::vector<std::string> lines;
        std::istringstream text(program_->output());
        for (std::string line; std::getline(text, line);)
            lines.push_back(line);
        return lines;
    }

    [[nodiscard]] Program& program() { return *program_; }

private:
    TemporaryFolder own_;
    std::optional<Program> program_;
    std::string ready_;
    std::string https_;
    std::string http_;
};

} // namespace wegslot

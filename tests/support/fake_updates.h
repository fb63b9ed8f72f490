// A server and a disk that behave, in virtual time: addresses that answer after a while, and an
// installer that remembers what it was asked.
#pragma once

#include "base/virtual_time.h"
#include "update/updater.h"

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace wegslot {

/// Every request takes two seconds; an address without an answer does not exist.
class FakeHttp final : public HttpClient {
public:
    explicit FakeHttp(VirtualTime& time) : time_(time) {}

    /// Whole addresses stand for themselves, names for a file beside the base.
    [[nodiscard]] std::optional<std::string> resolve(std::string_view base,
                                                     std::string_view reference) const override {
        if (reference.find("://") != std::string_view::npos) return std::string(reference);
        const auto slash = base.rfind('/');
        if (reference.empty() || slash == std::string_view::npos) return std::nullopt;
        return std::string(base.substr(0, slash + 1)) + std::string(reference);
    }

    [[nodiscard]] Handle get(HttpRequest request, HttpClient::Done done) override {
        requests.push_back(request);
        return time_.after(std::chrono::seconds(2),
                           [this, url = request.url, most = request.most, done = std::move(done)] {
                               done(answerTo(url, most));
                           });
    }

    void serve(const std::string& url, std::string_view body) {
        answers.insert_or_assign(url, HttpResponse{200, {body.begin(), body.end()}});
    }

    std::map<std::string, Result<HttpResponse>> answers;
    std::vector<HttpRequest> requests;

private:
    [[nodiscard]] Result<HttpResponse> answerTo(const std::string& url, std::size_t most) const {
        const auto found = answers.find(url);
        if (found == answers.end()) return HttpResponse{404, {}};
        if (found->second && found->second->body.size() > most) return HttpResponse{};
        return found->second;
    }

    VirtualTime& time_;
};

/// Work takes a second.
class FakeBackground final : public Background {
public:
    explicit FakeBackground(VirtualTime& time) : time_(time) {}

    [[nodiscard]] Handle run(std::function<void()> work, std::function<void()> done) override {
        work();
        return time_.after(std::chrono::seconds(1), std::move(done));
    }

private:
    VirtualTime& time_;
};

/// Says what it was asked, in order, and answers as a test wants.
class FakeInstaller final : public Installer, public AppControl {
public:
    [[nodiscard]] Result<std::string> unpack(std::span<const std::uint8_t> image) override {
        calls.push_back("unpack " + std::string(image.begin(), image.end()));
        if (unpacking) return *unpacking;
        return std::string("/tmp/new/Wegslot.app");
    }

    [[nodiscard]] Result<Ready> examine(const std::string& app, const Release& release) override {
        return answer("examine " + app + " " + std::to_string(release.build), examining);
    }

    [[nodiscard]] bool mayReplace() const override { return replaceable; }

    [[nodiscard]] Result<Ready> launchSwap(const std::string& app) override {
        return answer("swap " + app, launching);
    }

    void discard(const std::string& app) override { calls.push_back("discard " + app); }

    void terminate() override { calls.emplace_back("terminate"); }

    void reveal(const std::string& path) override { calls.push_back("reveal " + path); }

    std::optional<Failure> unpacking;
    std::optional<Failure> examining;
    std::optional<Failure> launching;
    bool replaceable = true;
    std::vector<std::string> calls;

private:
    Result<Ready> answer(std::string call, const std::optional<Failure>& failure) {
        calls.push_back(std::move(call));
        if (failure) return *failure;
        return Ready{};
    }
};

} // namespace wegslot

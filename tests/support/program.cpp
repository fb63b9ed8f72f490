#include "tests/support/program.h"

#include "tests/support/waiting.h"

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <sstream>
#include <stdexcept>
#include <thread>

#include <fcntl.h>
#include <grp.h>
#include <pwd.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace wegslot {
namespace {

constexpr std::chrono::milliseconds betweenLooks{10};

const passwd& nobody() {
    const passwd* const entry = getpwnam("nobody");
    if (entry == nullptr) throw std::runtime_error("there is no user nobody");
    return *entry;
}

// Runs in the child, where nothing can be thrown.
[[noreturn]] void become(const Program::Start& start, int output, uid_t user, gid_t group) {
    setpgid(0, 0);
    prctl(PR_SET_PDEATHSIG, SIGKILL); // a test that crashes leaves nothing behind
    for (const auto& [name, value] : start.environment)
        value.empty() ? unsetenv(name.c_str()) : setenv(name.c_str(), value.c_str(), 1);
    dup2(output, STDOUT_FILENO);
    dup2(output, STDERR_FILENO);
    close(STDIN_FILENO);
    ::open("/dev/null", O_RDONLY);
    if (start.unprivileged && geteuid() == 0) {
        if (setgroups(0, nullptr) != 0 || setgid(group) != 0 || setuid(user) != 0) _exit(126);
        prctl(PR_SET_PDEATHSIG, SIGKILL); // forgotten with the user
    }
    std::vector<char*> words;
    for (const std::string& word : start.words)
        words.push_back(const_cast<char*>(word.c_str())); // NOLINT: execvp changes nothing
    words.push_back(nullptr);
    execvp(words[0], words.data());
    _exit(127);
}

} // namespace

Program::Program(const Start& start) {
    const int output = ::open((folder_.path() / "output").c_str(),
                              O_CREAT | O_WRONLY | O_APPEND | O_CLOEXEC, 0644);
    if (output < 0) throw std::runtime_error("cannot keep what a program prints");
    const passwd user = nobody();
    process_ = fork();
    if (process_ == 0) become(start, output, user.pw_uid, user.pw_gid);
    close(output);
    if (process_ < 0) throw std::runtime_error("fork");
    setpgid(process_, process_); // whichever of the two is first
}

Program::~Program() { stop(); }

bool Program::isRunning() {
    if (status_) return false;
    int status = 0;
    if (waitpid(process_, &status, WNOHANG) != process_) return true;
    status_ = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    return false;
}

std::optional<int> Program::ended() {
    static_cast<void>(becomesTrue([this] { return !isRunning(); }));
    return status_;
}

void Program::signal(int number) const {
    kill(-process_, number);
    if (number != SIGSTOP) return;
    siginfo_t stopped{}; // until then it may still answer; its end is left for others to see
    waitid(P_PID, static_cast<id_t>(process_), &stopped, WSTOPPED | WEXITED | WNOWAIT);
}

void Program::stop() {
    if (isRunning()) {
        signal(SIGCONT);
        signal(SIGTERM);
        const auto polite = std::chrono::steady_clock::now() + std::chrono::milliseconds{500};
        while (isRunning() && std::chrono::steady_clock::now() < polite)
            std::this_thread::sleep_for(betweenLooks);
    }
    signal(SIGKILL); // whatever it left behind in its group, too
    static_cast<void>(ended());
}

std::string displayOf(const Program& server) {
    std::istringstream said(server.output());
    for (std::string line; std::getline(said, line) && !said.eof();)
        if (!line.empty() && line.find_first_not_of("0123456789") == std::string::npos)
            return ":" + line;
    return {};
}

bool isInstalled(const std::string& program) {
    const char* const path = std::getenv("PATH");
    std::istringstream folders(path == nullptr ? "" : path);
    for (std::string folder; std::getline(folders, folder, ':');)
        if (access((folder + "/" + program).c_str(), X_OK) == 0) return true;
    return false;
}

bool becomesTrue(const std::function<bool()>& condition) {
    const auto deadline = std::chrono::steady_clock::now() + onlyAHang;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > deadline) return false;
        std::this_thread::sleep_for(betweenLooks);
    }
    return true;
}

RuntimeFolder::RuntimeFolder() {
    if (geteuid() != 0) return;
    const passwd user = nobody();
    if (chown(folder_.path().c_str(), user.pw_uid, user.pw_gid) != 0)
        throw std::runtime_error("cannot hand a folder to nobody");
}

} // namespace wegslot

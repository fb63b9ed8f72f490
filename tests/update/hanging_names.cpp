#include "tests/update/hanging_names.h"

#include <condition_variable>
#include <mutex>

#include <dlfcn.h>
#include <netdb.h>

namespace wegslot {
namespace {

struct Question {
    std::mutex mutex;
    std::condition_variable changed;
    bool hangs = false;
    bool wasAsked = false;
};

Question& question() {
    static Question one;
    return one;
}

} // namespace

HangingNames::HangingNames() {
    const std::scoped_lock lock(question().mutex);
    question().hangs = true;
    question().wasAsked = false;
}

HangingNames::~HangingNames() {
    const std::scoped_lock lock(question().mutex);
    question().hangs = false;
    question().changed.notify_all();
}

bool HangingNames::wereAsked() const {
    const std::scoped_lock lock(question().mutex);
    return question().wasAsked;
}

} // namespace wegslot

/// In the place of the C library's, for every library of the program.
extern "C" int getaddrinfo(const char* name, const char* service, const addrinfo* hints,
                           addrinfo** found) {
    using namespace wegslot;
    if (hints == nullptr || (hints->ai_flags & AI_NUMERICHOST) == 0) {
        std::unique_lock lock(question().mutex);
        if (question().hangs) {
            question().wasAsked = true;
            question().changed.notify_all();
            question().changed.wait(lock, [] { return !question().hangs; });
            return EAI_NONAME;
        }
    }
    using Original = int (*)(const char*, const char*, const addrinfo*, addrinfo**);
    static const auto original = reinterpret_cast<Original>(dlsym(RTLD_NEXT, "getaddrinfo"));
    return original(name, service, hints, found);
}

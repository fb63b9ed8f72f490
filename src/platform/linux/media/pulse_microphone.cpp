#include "platform/linux/media/pulse_microphone.h"

#include "base/application_id.h"
#include "platform/linux/media/recording_stream.h"

#include <pulse/context.h>
#include <pulse/error.h>
#include <pulse/introspect.h>
#include <pulse/proplist.h>
#include <pulse/thread-mainloop.h>

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <utility>
#include <vector>

namespace wegslot {
namespace {

RecordingStream::Properties copied(const pa_proplist* from) {
    RecordingStream::Properties properties;
    void* place = nullptr;
    while (const char* const name = pa_proplist_iterate(from, &place))
        if (const char* const value = pa_proplist_gets(from, name)) // null: no text
            properties[name] = value;
    return properties;
}

} // namespace

/// The connection and its thread. Those operations of the library that answer later do so on that
/// thread, with the loop locked; `mutex_` is taken after the loop's lock, never before it.
class PulseMicrophone::Server {
public:
    Server() : loop_(pa_threaded_mainloop_new()) {
        if (loop_ != nullptr) pa_threaded_mainloop_start(loop_);
    }
    Server(const Server&) = delete;
    Server& operator=(const Server&) = delete;
    ~Server();

    [[nodiscard]] bool isReady() const { return state_ == State::ready; }

    /// Begins to connect, unless that is under way or done.
    void connect();

    /// Nothing when there was no answer in time.
    [[nodiscard]] std::optional<std::vector<RecordingStream>> streams();

private:
    enum class State { down, connecting, ready };
    enum class Outcome { fine, failed };

    struct Stream {
        RecordingStream told;
        std::uint32_t source = PA_INVALID_INDEX;
        std::uint32_t client = PA_INVALID_INDEX;
    };

    class Lock {
    public:
        explicit Lock(pa_threaded_mainloop* loop) : loop_(loop) { pa_threaded_mainloop_lock(loop); }
        Lock(const Lock&) = delete;
        Lock& operator=(const Lock&) = delete;
        ~Lock() { pa_threaded_mainloop_unlock(loop_); }

    private:
        pa_threaded_mainloop* loop_;
    };

    void disconnect();
    void stateChanged();
    void begin();
    void asked(pa_operation* operation);
    void answered();
    void add(const pa_source_output_info& info);
    void askAboutStreams();

    static void onState(pa_context*, void* self) { static_cast<Server*>(self)->stateChanged(); }
    static void onStream(pa_context*, const pa_source_output_info* info, int end, void* self);
    static void onSource(pa_context*, const pa_source_info* info, int end, void* self);
    static void onClient(pa_context*, const pa_client_info* info, int end, void* self);

    pa_threaded_mainloop* loop_;
    pa_context* context_ = nullptr;
    std::atomic<State> state_ = State::down;

    std::mutex mutex_;
    std::condition_variable changed_;
    std::size_t unanswered_ = 0;
    Outcome outcome_ = Outcome::fine;
    std::vector<Stream> streams_;
};

PulseMicrophone::Server::~Server() {
    if (loop_ == nullptr) return;
    {
        const Lock lock(loop_);
        disconnect();
    }
    pa_threaded_mainloop_stop(loop_);
    pa_threaded_mainloop_free(loop_);
}

void PulseMicrophone::Server::connect() {
    if (loop_ == nullptr || state_ != State::down) return;
    const Lock lock(loop_);
    disconnect();
    pa_proplist* const properties = pa_proplist_new();
    pa_proplist_sets(properties, PA_PROP_APPLICATION_ID, applicationId);
    context_ =
        pa_context_new_with_proplist(pa_threaded_mainloop_get_api(loop_), "Wegslot", properties);
    pa_proplist_free(properties);
    if (context_ == nullptr) return;
    state_ = State::connecting;
    pa_context_set_state_callback(context_, onState, this);
    if (pa_context_connect(context_, nullptr, PA_CONTEXT_NOAUTOSPAWN, nullptr) < 0)
        state_ = State::down;
}

void PulseMicrophone::Server::disconnect() {
    if (context_ == nullptr) return;
    pa_context_set_state_callback(context_, nullptr, nullptr);
    pa_context_disconnect(context_); // what is unanswered stays so
    pa_context_unref(std::exchange(context_, nullptr));
}

void PulseMicrophone::Server::stateChanged() {
    const auto state = pa_context_get_state(context_);
    if (state == PA_CONTEXT_READY) state_ = State::ready;
    if (PA_CONTEXT_IS_GOOD(state)) return;
    state_ = State::down;
    {
        const std::lock_guard guard(mutex_); // the library gives up its questions without a word
        unanswered_ = 0;
        outcome_ = Outcome::failed;
    }
    changed_.notify_all();
}

std::optional<std::vector<RecordingStream>> PulseMicrophone::Server::streams() {
    if (!isReady()) return std::nullopt;
    {
        const Lock lock(loop_);
        if (!isReady()) return std::nullopt;
        {
            const std::lock_guard guard(mutex_);
            if (unanswered_ > 0) return std::nullopt; // it hangs; whoever asks has waited once
            streams_.clear();
            outcome_ = Outcome::fine;
        }
        begin();
        asked(pa_context_get_source_output_info_list(context_, onStream, this));
    }
    std::unique_lock guard(mutex_);
    const bool inTime =
        changed_.wait_for(guard, answerPatience, [this] { return unanswered_ == 0; });
    if (!inTime || outcome_ == Outcome::failed) return std::nullopt;
    std::vector<RecordingStream> told;
    for (const Stream& stream : streams_)
        told.push_back(stream.told);
    return told;
}

/// Before a question goes out: its answer may come at any time after.
void PulseMicrophone::Server::begin() {
    const std::lock_guard guard(mutex_);
    ++unanswered_;
}

void PulseMicrophone::Server::asked(pa_operation* operation) {
    if (operation != nullptr) return pa_operation_unref(operation);
    {
        const std::lock_guard guard(mutex_);
        outcome_ = Outcome::failed;
    }
    answered();
}

void PulseMicrophone::Server::answered() {
    {
        const std::lock_guard guard(mutex_);
        if (unanswered_ > 0) --unanswered_;
    }
    changed_.notify_all();
}

void PulseMicrophone::Server::add(const pa_source_output_info& info) {
    const std::lock_guard guard(mutex_);
    streams_.push_back(
        {.told = {.index = info.index,
                  .corked = info.corked != 0,
                  .hasClient = info.client != PA_INVALID_INDEX,
                  .resampleMethod = info.resample_method == nullptr ? "" : info.resample_method,
                  .properties = copied(info.proplist)},
         .source = info.source,
         .client = info.client});
}

void PulseMicrophone::Server::askAboutStreams() {
    std::vector<Stream> streams;
    {
        const std::lock_guard guard(mutex_);
        streams = streams_;
    }
    for (const Stream& stream : streams) {
        if (stream.source == PA_INVALID_INDEX || stream.client == PA_INVALID_INDEX) continue;
        begin();
        asked(pa_context_get_source_info_by_index(context_, stream.source, onSource, this));
        begin();
        asked(pa_context_get_client_info(context_, stream.client, onClient, this));
    }
}

void PulseMicrophone::Server::onStream(pa_context*, const pa_source_output_info* info, int end,
                                       void* self) {
    Server& server = *static_cast<Server*>(self);
    if (end == 0) return server.add(*info);
    if (end > 0) server.askAboutStreams();
    if (end < 0) return server.asked(nullptr);
    server.answered();
}

void PulseMicrophone::Server::onSource(pa_context*, const pa_source_info* info, int end,
                                       void* self) {
    Server& server = *static_cast<Server*>(self);
    if (end != 0) return server.answered(); // also of a source that is no more
    const std::lock_guard guard(server.mutex_);
    for (Stream& stream : server.streams_)
        if (stream.source == info->index)
            stream.told.source = info->monitor_of_sink == PA_INVALID_INDEX
                                     ? RecordingStream::Source::microphone
                                     : RecordingStream::Source::monitor;
}

void PulseMicrophone::Server::onClient(pa_context*, const pa_client_info* info, int end,
                                       void* self) {
    Server& server = *static_cast<Server*>(self);
    if (end != 0) return server.answered();
    const std::lock_guard guard(server.mutex_);
    for (Stream& stream : server.streams_)
        if (stream.client == info->index) stream.told.clientProperties = copied(info->proplist);
}

PulseMicrophone::PulseMicrophone(Scheduler& scheduler, const ApplicationNames& names)
    : names_(names),
      server_(std::make_unique<Server>()) {
    server_->connect();
    attempts_ = scheduler.every(betweenAttempts, [this] { server_->connect(); });
}

PulseMicrophone::~PulseMicrophone() = default;

bool PulseMicrophone::isThere() const { return server_->isReady(); }

std::optional<MicrophoneSource::Use> PulseMicrophone::use() {
    const auto streams = server_->streams();
    if (!streams) return std::nullopt;
    return Use{firstUser(*streams, [this](const std::string& id) {
        // Looking a name up reads every desktop entry, and a call asks for the same one each
        // second.
        if (named_.first != id) named_ = {id, names_.nameOf(id)};
        return named_.second;
    })};
}

} // namespace wegslot

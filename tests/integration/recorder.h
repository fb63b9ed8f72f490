// A program that records, within the test: for what the tools cannot be told to do.
#pragma once

#include <pulse/context.h>
#include <pulse/stream.h>
#include <pulse/thread-mainloop.h>

#include <string>

namespace wegslot {

class Recorder {
public:
    /// Begins to record from `source` under the name `application`, in the way of `flags`.
    Recorder(const std::string& application, const std::string& source, pa_stream_flags_t flags);
    Recorder(const Recorder&) = delete;
    Recorder& operator=(const Recorder&) = delete;
    ~Recorder();

    /// Waits until the server has the stream; false when that fails.
    [[nodiscard]] bool isReady();

    void cork(bool corked);

private:
    [[nodiscard]] bool becomes(bool (*reached)(Recorder& recorder));

    pa_threaded_mainloop* loop_;
    pa_context* context_ = nullptr;
    pa_stream* stream_ = nullptr;
};

} // namespace wegslot

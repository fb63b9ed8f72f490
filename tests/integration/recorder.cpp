#include "tests/integration/recorder.h"

#include "tests/support/program.h"

namespace wegslot {

Recorder::Recorder(const std::string& application, const std::string& source,
                   pa_stream_flags_t flags)
    : loop_(pa_threaded_mainloop_new()) {
    context_ = pa_context_new(pa_threaded_mainloop_get_api(loop_), application.c_str());
    pa_context_connect(context_, nullptr, PA_CONTEXT_NOAUTOSPAWN, nullptr);
    pa_threaded_mainloop_start(loop_);
    if (!becomes(
            [](Recorder& self) { return pa_context_get_state(self.context_) == PA_CONTEXT_READY; }))
        return;
    pa_threaded_mainloop_lock(loop_);
    const pa_sample_spec format{.format = PA_SAMPLE_FLOAT32NE, .rate = 25, .channels = 1};
    stream_ = pa_stream_new(context_, "opname", &format, nullptr);
    pa_stream_connect_record(stream_, source.c_str(), nullptr, flags);
    pa_threaded_mainloop_unlock(loop_);
}

Recorder::~Recorder() {
    pa_threaded_mainloop_lock(loop_);
    if (stream_ != nullptr) {
        pa_stream_disconnect(stream_);
        pa_stream_unref(stream_);
    }
    pa_context_disconnect(context_);
    pa_context_unref(context_);
    pa_threaded_mainloop_unlock(loop_);
    pa_threaded_mainloop_stop(loop_);
    pa_threaded_mainloop_free(loop_);
}

bool Recorder::isReady() {
    return stream_ != nullptr && becomes([](Recorder& self) {
               return pa_stream_get_state(self.stream_) == PA_STREAM_READY;
           });
}

void Recorder::cork(bool corked) {
    pa_threaded_mainloop_lock(loop_);
    pa_operation* const operation = pa_stream_cork(stream_, corked ? 1 : 0, nullptr, nullptr);
    if (operation != nullptr) pa_operation_unref(operation);
    pa_threaded_mainloop_unlock(loop_);
}

bool Recorder::becomes(bool (*reached)(Recorder& recorder)) {
    return becomesTrue([this, reached] {
        pa_threaded_mainloop_lock(loop_);
        const bool is = reached(*this);
        pa_threaded_mainloop_unlock(loop_);
        return is;
    });
}

} // namespace wegslot

// Listens to everything that reaches the core from outside and, while somebody wants it, records it
// as a trace that wegslot-replay plays. Stands there always, so that a recording can begin at any
// time; while there is none nothing is asked, formatted or written. While there is one it is the
// link between the radio and the scanner.
#pragma once

#include "core/app_model.h"
#include "recording/recording.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace wegslot {

class Recorder final : private CentralDelegate {
public:
    struct Request {
        Recording::Sink sink;
        bool anonymous = false; ///< without names and ids
    };

    /// Makes the model's monitor, which nobody may have done before: an event has to be written
    /// before the core handles it. `atOnce`: records from here on, so that a replay makes its core
    /// at the same instant. The model has been made over `platform`; both must outlive the
    /// recorder. `freshId` gives ids that nobody has.
    Recorder(AppModel& model, const Monitor::Platform& platform, std::function<Uuid()> freshId,
             std::optional<Request> atOnce = {});
    ~Recorder() override;

    /// Begins with how things stand now. Refused while another recording runs.
    [[nodiscard]] std::optional<Failure> record(Request request);

    /// Ends the recording, if there is one, so that a replay ends at this instant too.
    void stop();

    [[nodiscard]] bool isRecording() const { return recording_.has_value(); }

private:
    enum class CoreIs { fresh, running };

    void didUpdateState() override;
    void didDiscover(const Advertisement& advertisement) override;
    void didConnect(const Uuid& id) override;
    void didFailToConnect(const Uuid& id) override;
    void didDisconnect(const Uuid& id, const std::optional<std::string>& reason) override;
    void didReadRSSI(const Uuid& id, std::optional<int> rssi) override;
    void didDiscoverServices(const Uuid& id, std::span<const GattUuid> services) override;
    void didDiscoverCharacteristics(const Uuid& id, GattUuid service,
                                    std::span<const GattUuid> characteristics) override;
    void didUpdateValue(const Uuid& id, GattUuid characteristic,
                        const std::optional<std::string_view>& value) override;
    void didIdentify(const Uuid& from, const Uuid& to) override;

    void followSettings();
    void begin(Request request, CoreIs core);
    void letGo();
    void tellStanding(TimePoint now);
    void tellActivity(std::optional<TimePoint> at = {});
    void tell(trace::Event event, std::optional<TimePoint> at = {});
    [[nodiscard]] TimePoint beforeJudgement() const;
    void tellKnown(const std::set<Uuid>& ids, std::optional<TimePoint> at = {});

    AppModel& model_;
    BluetoothCentral& radio_;
    CentralDelegate& core_;
    Monitor::Platform platform_;
    std::function<Uuid()> freshId_;
    bool screenLocked_ = false;
    std::optional<Recording> recording_;
    std::vector<Subscription> subscriptions_;
    Timer activityTimer_;
};

} // namespace wegslot

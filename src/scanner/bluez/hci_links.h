// Low-energy links as the kernel's raw HCI socket shows them to anybody: which stand, how strong
// each is, and why one ended. Needs no privilege on an ordinary desktop; in a container or a strict
// sandbox the socket is refused, and then nothing is known.
#pragma once

#include "base/descriptors.h"
#include "base/scheduler.h"
#include "scanner/bluez/hci_wire.h"
#include "scanner/bluez/links.h"

#include <map>
#include <memory>
#include <vector>

namespace wegslot::bluez {

class HciLinks final : public Links {
public:
    /// A controller answers within milliseconds; one that does not is not waited for longer.
    static constexpr Nanoseconds patience = std::chrono::seconds{1};

    /// Both must outlive the links.
    HciLinks(Descriptors& descriptors, Scheduler& scheduler);
    ~HciLinks() override;

    [[nodiscard]] bool canRead(const std::string& adapter) override;
    [[nodiscard]] std::optional<bool> isLinked(const std::string& adapter,
                                               const std::string& address) override;
    [[nodiscard]] std::optional<StandingLinks> standing(const std::string& adapter,
                                                        const std::string& address) override;
    [[nodiscard]] Subscription read(const std::string& adapter, const std::string& address,
                                    Answer answer) override;
    [[nodiscard]] std::optional<std::uint8_t> lossCode(const std::string& adapter,
                                                       const std::string& address) override;

private:
    /// One socket, bound to one adapter.
    class Socket;
    struct Question;

    [[nodiscard]] Socket* socketOf(const std::string& adapter);
    [[nodiscard]] std::optional<hci::ListedConnection> find(const std::string& adapter,
                                                            const std::string& address);
    void receive();
    void answered(const hci::RssiRead& read);

    Descriptors& descriptors_;
    Scheduler& scheduler_;
    std::string adapter_; ///< that the socket is bound to
    std::unique_ptr<Socket> socket_;
    std::map<std::uint16_t, hci::Address> handles_;  ///< of links seen standing
    std::map<hci::Address, std::uint8_t> lossCodes_; ///< of links that have ended
    std::vector<std::shared_ptr<Question>> questions_;
};

} // namespace wegslot::bluez

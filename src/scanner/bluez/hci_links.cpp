#include "scanner/bluez/hci_links.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

namespace wegslot::bluez {
namespace {

// The kernel's own names for these are in no header that it exports (net/bluetooth/hci_sock.h).
constexpr int hciProtocol = 1;
constexpr int hciLevel = 0;
constexpr int hciFilterOption = 2;
constexpr std::uint16_t rawChannel = 0;
constexpr unsigned long listConnections = _IOR('H', 212, int);

struct HciAddress {
    sa_family_t family;
    std::uint16_t device;
    std::uint16_t channel;
};

struct HciFilter {
    std::uint32_t packetTypes;
    std::array<std::uint32_t, 2> events;
    std::uint16_t opcode;
};

constexpr std::size_t mostConnections = 32;

struct ConnectionList {
    std::uint16_t device;
    std::uint16_t count;
    std::array<hci::ListedConnection, mostConnections> connections;
};

} // namespace

class HciLinks::Socket {
public:
    /// Null when the kernel refuses.
    static std::unique_ptr<Socket> open(std::uint16_t adapter) {
        const int descriptor =
            ::socket(AF_BLUETOOTH, SOCK_RAW | SOCK_NONBLOCK | SOCK_CLOEXEC, hciProtocol);
        if (descriptor < 0) return nullptr;
        auto socket = std::make_unique<Socket>(descriptor, adapter);
        return socket->prepare() ? std::move(socket) : nullptr;
    }

    Socket(int descriptor, std::uint16_t adapter) : descriptor_(descriptor), adapter_(adapter) {}
    Socket(const Socket&) = delete;
    Socket& operator=(const Socket&) = delete;
    ~Socket() {
        watching.reset();
        ::close(descriptor_);
    }

    [[nodiscard]] int descriptor() const { return descriptor_; }

    [[nodiscard]] std::optional<std::vector<hci::ListedConnection>> connections() const {
        ConnectionList list{};
        list.device = adapter_;
        list.count = mostConnections;
        if (::ioctl(descriptor_, listConnections, &list) < 0) return std::nullopt;
        const auto count = std::min<std::size_t>(list.count, mostConnections);
        return std::vector(list.connections.begin(), list.connections.begin() + count);
    }

    [[nodiscard]] bool send(std::span<const std::uint8_t> packet) const {
        return ::write(descriptor_, packet.data(), packet.size()) ==
               static_cast<ssize_t>(packet.size());
    }

    /// The next packet; empty when there is none. Nothing when the socket is of no more use.
    std::optional<std::span<const std::uint8_t>> receive() {
        const ssize_t size = ::read(descriptor_, buffer_.data(), buffer_.size());
        if (size > 0) return std::span(buffer_).first(static_cast<std::size_t>(size));
        if (size < 0 && (errno == EAGAIN || errno == EINTR)) return std::span(buffer_).first(0);
        return std::nullopt;
    }

    Subscription watching;

private:
    [[nodiscard]] bool prepare() const {
        // Only what is read here: a room full of advertisements must not wake anybody.
        const HciFilter filter{
            .packetTypes = 1U << hci::eventPacket,
            .events = {1U << hci::commandComplete | 1U << hci::disconnectionComplete, 0},
            .opcode = hci::readRssiOpcode};
        const HciAddress address{AF_BLUETOOTH, adapter_, rawChannel};
        return ::setsockopt(descriptor_, hciLevel, hciFilterOption, &filter, sizeof filter) == 0 &&
               ::bind(descriptor_, reinterpret_cast<const sockaddr*>(&address), sizeof address) ==
                   0;
    }

    int descriptor_;
    std::uint16_t adapter_;
    std::array<std::uint8_t, 260> buffer_{};
};

struct HciLinks::Question {
    std::optional<std::uint16_t> handle; ///< none: not asked, and answered so
    Answer answer;
    Timer patience;
};

HciLinks::HciLinks(Descriptors& descriptors, Scheduler& scheduler)
    : descriptors_(descriptors),
      scheduler_(scheduler) {}

HciLinks::~HciLinks() = default;

HciLinks::Socket* HciLinks::socketOf(const std::string& adapter) {
    if (adapter != adapter_) {
        socket_.reset();
        handles_.clear();
        lossCodes_.clear();
        adapter_ = adapter;
    }
    const auto number = hci::adapterNumber(adapter);
    if (!socket_ && number) {
        socket_ = Socket::open(*number);
        if (socket_)
            socket_->watching =
                descriptors_.onReadable(socket_->descriptor(), [this] { receive(); });
    }
    return socket_.get();
}

bool HciLinks::canRead(const std::string& adapter) { return socketOf(adapter) != nullptr; }

std::optional<hci::ListedConnection> HciLinks::find(const std::string& adapter,
                                                    const std::string& address) {
    const Socket* const socket = socketOf(adapter);
    const auto wanted = hci::addressOf(address);
    const auto connections = socket == nullptr ? std::nullopt : socket->connections();
    if (!connections || !wanted) return std::nullopt;
    const auto found = std::ranges::find_if(*connections, [&](const auto& connection) {
        return connection.type == hci::lowEnergyLink && connection.address == *wanted;
    });
    return found == connections->end() ? std::nullopt : std::optional(*found);
}

std::optional<bool> HciLinks::isLinked(const std::string& adapter, const std::string& address) {
    const auto links = standing(adapter, address);
    return links ? std::optional(links->lowEnergy) : std::nullopt;
}

std::optional<StandingLinks> HciLinks::standing(const std::string& adapter,
                                                const std::string& address) {
    const Socket* const socket = socketOf(adapter);
    const auto connections = socket == nullptr ? std::nullopt : socket->connections();
    if (!connections) return std::nullopt;
    const auto wanted = hci::addressOf(address);
    return wanted ? hci::standingWith(*wanted, *connections) : StandingLinks{};
}

Subscription HciLinks::read(const std::string& adapter, const std::string& address, Answer answer) {
    const auto question = std::make_shared<Question>();
    question->answer = std::move(answer);
    questions_.push_back(question);
    const auto connection = find(adapter, address);
    const bool sent = connection && socket_->send(hci::readRssiCommand(connection->handle));
    if (sent) {
        question->handle = connection->handle;
        handles_[connection->handle] = connection->address;
        lossCodes_.erase(connection->address); // of an earlier link
    }
    const std::weak_ptr<Question> waiting = question;
    question->patience = scheduler_.after(sent ? patience : Nanoseconds{0}, [this, waiting] {
        const auto held = waiting.lock();
        if (held && std::erase(questions_, held) > 0) held->answer(std::nullopt);
    });
    return Subscription{[this, question] {
        std::erase(questions_, question);
        question->patience.reset();
    }};
}

std::optional<std::uint8_t> HciLinks::lossCode(const std::string& adapter,
                                               const std::string& address) {
    if (adapter != adapter_) return std::nullopt;
    receive(); // the event is here before BlueZ could tell of the loss
    const auto wanted = hci::addressOf(address);
    if (!wanted) return std::nullopt;
    const auto code = lossCodes_.extract(*wanted);
    return code.empty() ? std::nullopt : std::optional(code.mapped());
}

void HciLinks::receive() {
    while (socket_) {
        const auto packet = socket_->receive();
        if (!packet) { // the adapter went; the next question opens it anew
            socket_.reset();
            handles_.clear();
            return;
        }
        if (packet->empty()) return;
        if (const auto read = hci::rssiRead(*packet)) {
            answered(*read); // who may read on, so that the packet is gone
            continue;
        }
        const auto ended = hci::disconnection(*packet);
        if (!ended) continue;
        const auto handle = handles_.extract(ended->handle);
        if (!handle.empty()) lossCodes_[handle.mapped()] = ended->reason;
    }
}

void HciLinks::answered(const hci::RssiRead& read) {
    // Another program's question about the same link is as good an answer.
    const auto found = std::ranges::find_if(
        questions_, [&read](const auto& question) { return question->handle == read.handle; });
    if (found == questions_.end()) return;
    const auto question = *found;
    questions_.erase(found);
    question->patience.reset();
    question->answer(read.rssi);
}

} // namespace wegslot::bluez

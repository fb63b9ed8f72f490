// Hears an X11 panel say that it takes icons in from now on.
#pragma once

#include <QAbstractNativeEventFilter>

#include <cstdint>
#include <functional>

namespace wegslot {

class X11BarWatch final : private QAbstractNativeEventFilter {
public:
    /// Hears nothing where the display is no X server. There must be a QGuiApplication.
    explicit X11BarWatch(std::function<void()> came);
    X11BarWatch(const X11BarWatch&) = delete;
    X11BarWatch& operator=(const X11BarWatch&) = delete;
    ~X11BarWatch() override;

private:
    bool nativeEventFilter(const QByteArray& kind, void* message, qintptr* result) override;

    std::function<void()> came_;
    std::uint32_t manager_ = 0; ///< the name of the message
    std::uint32_t tray_ = 0;    ///< and what it is then about
};

} // namespace wegslot

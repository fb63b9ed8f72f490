// A Qt application that needs no display: what it draws stays in memory.
#pragma once

#include <cstdlib>
#include <string>

namespace wegslot {

/// `Application`: QGuiApplication or QApplication.
template <typename Application>
class Offscreen {
public:
    // The platform is chosen before the application is made; and the tests' fonts and colours are
    // those of no desktop.
    Offscreen() : platform_(choosePlatform()), application_(count_, arguments_) {}

private:
    static int choosePlatform() {
        unsetenv("QT_QPA_PLATFORMTHEME");
        unsetenv("QT_STYLE_OVERRIDE");
        return setenv("QT_QPA_PLATFORM", "offscreen", 1);
    }

    int platform_;
    std::string name_ = "test";
    char* arguments_[2] = {name_.data(), nullptr};
    int count_ = 1;
    Application application_;
};

} // namespace wegslot

// The emptiest Qt Widgets program: `empty_widgets NAME` announces itself at the first turn of its
// event loop and waits to be ended. Without a screen, as Wegslot is measured.

#include "announce.h"

#include <QApplication>
#include <QTimer>

#include <cstdlib>

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    if (argc != 2) return EXIT_FAILURE;
    QTimer::singleShot(0, [name = argv[1]] {
        if (wegslot::bench::announce(name) == nullptr) QApplication::exit(EXIT_FAILURE);
    });
    return QApplication::exec();
}

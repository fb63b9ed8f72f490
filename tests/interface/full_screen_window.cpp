// A program in full screen, as a film or a game is: one plain colour, and it says what happens to
// it: "focus" and "blur", and "key" with the number of each key that it gets.

#include <QApplication>
#include <QKeyEvent>
#include <QPainter>
#include <QWidget>

#include <cstdio>

namespace {

void say(const char* word, int number = 0) {
    std::printf("%s %d\n", word, number);
    std::fflush(stdout);
}

class FullScreenWindow final : public QWidget {
protected:
    void paintEvent(QPaintEvent*) override { QPainter(this).fillRect(rect(), Qt::darkGreen); }

    void keyPressEvent(QKeyEvent* event) override { say("key", event->key()); }

    void changeEvent(QEvent* event) override {
        if (event->type() == QEvent::ActivationChange) say(isActiveWindow() ? "focus" : "blur");
    }
};

} // namespace

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    FullScreenWindow window;
    window.showFullScreen();
    window.activateWindow();
    return QApplication::exec();
}

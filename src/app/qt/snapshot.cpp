#include "app/qt/snapshot.h"

#include "files/linux/own_file.h"

#include <QCoreApplication>
#include <QFile>
#include <QImage>

#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace wegslot {

Snapshot::Snapshot(MenuPanel::Parts parts, std::string path, bool isTall,
                   std::function<void()> done)
    : parts_(std::move(parts)),
      path_(std::move(path)),
      isTall_(isTall),
      done_(std::move(done)),
      model_(panelObjects(parts_), PanelModel::Expand::all, [] {}) {
    model_.appear();
    timer_ = parts_.scheduler.after(delay, [this] {
        take();
        done_();
    });
}

void Snapshot::take() {
    PanelView view(
        {model_, parts_.appearance.images, parts_.appearance.colors.scheme(), parts_.clock},
        isTall_ ? tallHeight : PanelWindow::heightOnScreen());
    view.setAttribute(Qt::WA_DontShowOnScreen); // what was never shown has no layout
    view.show(model_.content());
    view.show();
    for (int turns = 0; turns < 3; ++turns)
        QCoreApplication::processEvents();
    write(view, path_);
}

void Snapshot::write(QWidget& view, const std::string& path) {
    const QImage picture = view.grab().toImage();
    if (picture.isNull()) return;
    constexpr mode_t ownerOnly = 0600; // it names who is near
    const int descriptor = openOwn(path, O_WRONLY | O_CREAT | O_CLOEXEC | O_NOCTTY, ownerOnly);
    if (descriptor < 0) return;
    // One that was there may have been another's or for everybody, and a pipe has no mode.
    struct stat facts {};
    const bool isFile = fstat(descriptor, &facts) == 0 && S_ISREG(facts.st_mode);
    QFile file;
    if (isFile && (fchmod(descriptor, ownerOnly) != 0 || ftruncate(descriptor, 0) != 0))
        close(descriptor);
    else if (file.open(descriptor, QIODevice::WriteOnly, QFileDevice::AutoCloseHandle))
        picture.save(&file, "PNG");
}

} // namespace wegslot

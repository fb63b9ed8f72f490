#include "app/qt/snapshot.h"

#include <QCoreApplication>
#include <QFile>
#include <QImage>

#include <utility>

namespace wegslot {

Snapshot::Snapshot(MenuPanel::Parts parts, Scheduler& scheduler, std::string path, bool isTall,
                   std::function<void()> done)
    : parts_(std::move(parts)),
      path_(std::move(path)),
      isTall_(isTall),
      done_(std::move(done)),
      model_(panelObjects(parts_), PanelModel::Expand::all, [] {}) {
    model_.appear();
    timer_ = scheduler.after(delay, [this] {
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
    if (!picture.isNull()) picture.save(QFile::decodeName(path.c_str()), "PNG");
}

} // namespace wegslot

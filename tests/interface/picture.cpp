#include "tests/interface/picture.h"

#include <QColor>
#include <QDir>

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <vector>

namespace wegslot {
namespace {

bool differs(QRgb one, QRgb other) {
    const int most =
        std::max({std::abs(qRed(one) - qRed(other)), std::abs(qGreen(one) - qGreen(other)),
                  std::abs(qBlue(one) - qBlue(other)), std::abs(qAlpha(one) - qAlpha(other))});
    return most > Difference::shade;
}

/// Counts pixels that differ, in all and in any square.
class Count {
public:
    explicit Count(QSize size) : width_(size.width() + 1), sums_(cells(size)) {}

    /// Row by row, from the first one.
    void add(int x, int y, bool isDifferent) {
        at(x + 1, y + 1) = at(x, y + 1) + at(x + 1, y) - at(x, y) + (isDifferent ? 1 : 0);
    }

    [[nodiscard]] int in(const QRect& area) {
        const int right = area.x() + area.width();
        const int bottom = area.y() + area.height();
        return at(right, bottom) - at(area.x(), bottom) - at(right, area.y()) +
               at(area.x(), area.y());
    }

private:
    static std::size_t cells(QSize size) {
        return static_cast<std::size_t>(size.width() + 1) *
               static_cast<std::size_t>(size.height() + 1);
    }
    int& at(int x, int y) { return sums_.at(static_cast<std::size_t>(y * width_ + x)); }

    int width_;
    std::vector<int> sums_; ///< of all above and to the left
};

} // namespace

Difference difference(const QImage& one, const QImage& other) {
    if (one.size() != other.size() || one.isNull()) return {};
    // Premultiplied, because the colour of what is seen through is of no account.
    const QImage left = one.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    const QImage right = other.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    Count count(left.size());
    for (int y = 0; y < left.height(); ++y)
        for (int x = 0; x < left.width(); ++x)
            count.add(x, y, differs(left.pixel(x, y), right.pixel(x, y)));
    Difference result{.sameSize = true,
                      .differing = static_cast<double>(count.in(left.rect())) /
                                   (left.width() * left.height())};
    const QRect place(0, 0, Difference::place, Difference::place);
    for (int y = 0; y <= left.height() - place.height(); ++y)
        for (int x = 0; x <= left.width() - place.width(); ++x)
            result.together = std::max(result.together, count.in(place.translated(x, y)));
    return result;
}

testing::AssertionResult looksLike(const QImage& picture, const std::string& name) {
    const QString file = QString::fromStdString(name) + ".png";
    const QString reference = QString(WEGSLOT_PICTURES "/") + file;
    if (qEnvironmentVariableIsSet("WEGSLOT_KEEP_PICTURES")) {
        const bool saved = picture.save(reference);
        return testing::AssertionFailure() << (saved ? "kept as " : "could not be kept as ")
                                           << reference.toStdString() << "; look at it";
    }
    const QImage expected(reference);
    if (expected.isNull())
        return testing::AssertionFailure() << "there is no " << reference.toStdString();
    const Difference found = difference(picture, expected);
    if (found.isNone()) return testing::AssertionSuccess();
    QDir().mkpath(WEGSLOT_SEEN_PICTURES);
    const QString seen = QString(WEGSLOT_SEEN_PICTURES "/") + file;
    picture.save(seen);
    return testing::AssertionFailure()
           << 100 * found.differing << " % of the pixels differ, " << found.together
           << " at one place" << (found.sameSize ? "" : ", for it has another size") << "; compare "
           << seen.toStdString() << " with " << reference.toStdString();
}

} // namespace wegslot

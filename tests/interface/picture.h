// Pictures of windows against references that are kept beside the tests. Two of them are taken for
// the same when hardly any pixel differs by more than an eye can see, and nowhere several together:
// another version of the font renderer moves edges by a shade everywhere, another letter changes
// one place.
#pragma once

#include <QImage>
#include <QString>

#include <gtest/gtest.h>

#include <string>

namespace wegslot {

/// How far two pictures are apart.
struct Difference {
    /// A pixel differs when one of its channels does by more than this, of 255.
    static constexpr int shade = 16;
    /// What part of the pixels may differ.
    static constexpr double allowed = 0.005;
    /// A letter of a text is about as large as such a square, and how many pixels of one may
    /// differ, wherever it is laid.
    static constexpr int place = 10;
    static constexpr int allowedAtAPlace = 5;

    bool sameSize = false;
    double differing = 1; ///< the part of all pixels, 0 to 1
    int together = 0;     ///< the most of them that are at one place

    [[nodiscard]] bool isNone() const {
        return sameSize && differing <= allowed && together <= allowedAtAPlace;
    }
};

[[nodiscard]] Difference difference(const QImage& one, const QImage& other);

/// Compares `picture` with the reference `name` of tests/interface/pictures/. Where they differ
/// both are left in the build folder, for a person to look at. With WEGSLOT_KEEP_PICTURES set the
/// picture becomes the reference instead, and the test fails so that nobody forgets to look.
[[nodiscard]] testing::AssertionResult looksLike(const QImage& picture, const std::string& name);

} // namespace wegslot

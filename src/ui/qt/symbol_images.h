// The symbols of the interface as images, in any colour and size. They are compiled in; see
// `icons/`.
#pragma once

#include "ui/brand.h"

#include <QImage>

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

class QSvgRenderer;

namespace wegslot {

class SymbolImages {
public:
    SymbolImages();
    SymbolImages(const SymbolImages&) = delete;
    SymbolImages& operator=(const SymbolImages&) = delete;
    ~SymbolImages();

    /// A square of `side` device-independent pixels, transparent around the symbol; null for a
    /// symbol that there is none of. `ratio`: pixels of the device for each of those.
    [[nodiscard]] QImage image(std::string_view symbol, const Color& color, double side,
                               double ratio = 1) const;

    /// The same with a line of the other colour all around it, in the margin that symbols have:
    /// what can be told from any ground, if the one colour is light and the other dark.
    [[nodiscard]] QImage outlined(std::string_view symbol, const Color& color, const Color& outline,
                                  int side) const;

    /// The names of all that were compiled in, sorted.
    [[nodiscard]] static std::vector<std::string> names();

private:
    [[nodiscard]] QSvgRenderer* renderer(std::string_view symbol) const;

    mutable std::map<std::string, std::unique_ptr<QSvgRenderer>, std::less<>> renderers_;
};

} // namespace wegslot

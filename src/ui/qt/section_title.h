// The heading of a section: small, heavy capitals in the quiet colour.
#pragma once

#include <QLabel>

#include <string>

namespace wegslot {

class SectionTitle final : public QLabel {
public:
    /// `text` in ordinary letters, UTF-8; screen readers get it so.
    explicit SectionTitle(const std::string& text);

    void setTitle(const std::string& text);
};

} // namespace wegslot

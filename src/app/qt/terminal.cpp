#include "app/qt/terminal.h"

#include "base/text.h"

#include <QCoreApplication>

#include <cstdio>
#include <cstdlib>

#include <unistd.h>

namespace wegslot {

void printLine(std::string_view line) {
    std::fwrite(line.data(), 1, line.size(), stdout);
    std::fputc('\n', stdout);
    std::fflush(stdout);
}

int complain(const std::string& message) {
    std::fprintf(stderr, "wegslot: %s\n", printable(message).c_str());
    return EXIT_FAILURE;
}

int said(const Result<std::string>& outcome) {
    if (!outcome) return complain(outcome.failure().message.translated());
    printLine(*outcome);
    return EXIT_SUCCESS;
}

TeeLog::TeeLog(const std::filesystem::path& file, const Clock& clock)
    : file_(file, clock),
      before_(Log::setDestination(this)) {
    if (isatty(STDOUT_FILENO) == 1) terminal_.emplace();
}

void TeeLog::write(std::string_view message) {
    file_.write(message);
    if (terminal_) terminal_->print(message);
}

PrintLine GoingOn::printer() {
    return [this](std::string_view line) {
        if (!output_.print(line)) QCoreApplication::exit(EXIT_FAILURE);
    };
}

} // namespace wegslot

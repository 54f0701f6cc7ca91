// Progress on a terminal.
#include "app/cli/BXQProgressLine.h"

#include <cstdio>
#include <unistd.h>

namespace bxq {

BXQProgressLine::BXQProgressLine(QString label) : m_label(std::move(label)), m_terminal(isatty(STDERR_FILENO) == 1) {
    m_clock.start();
}

BXQProgressLine::~BXQProgressLine() { finish(); }

bool BXQProgressLine::show(int done, int total) {
    if (!m_terminal) return true;
    const qint64 now = m_clock.elapsed();
    // Work under a second shows nothing; then at most ten lines a second.
    if (now < 1000 || (m_shown && now - m_lastPrint < 100 && done < total)) return true;
    std::fprintf(stderr, "\r%s %d/%d", qUtf8Printable(m_label), done, total);
    std::fflush(stderr);
    m_shown = true;
    m_lastPrint = now;
    return true;
}

void BXQProgressLine::finish() {
    if (!m_shown) return;
    std::fputs("\r\033[K", stderr);
    std::fflush(stderr);
    m_shown = false;
}

}  // namespace bxq

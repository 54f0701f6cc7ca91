// A progress line for long work on a terminal: "label 120/10000" rewritten in place on standard
// error, at most ten times a second, and nothing at all when standard error is not a terminal.
#pragma once

#include <QElapsedTimer>
#include <QString>

namespace bxq {

class BXQProgressLine {
public:
    explicit BXQProgressLine(QString label);
    ~BXQProgressLine();
    // Shows done of total; always true (the command line has no cancel).
    bool show(int done, int total);
    // Clears the line.
    void finish();

private:
    QString m_label;
    bool m_terminal;
    bool m_shown = false;
    qint64 m_lastPrint = 0;
    QElapsedTimer m_clock;
};

}  // namespace bxq

// Replays fuzz inputs without libFuzzer, so that every input that once crashed or hung runs in the
// ordinary test suites: each argument is a file or a folder of files, each file one input.
#include "tests/fuzz/FuzzTarget.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cstdio>

int main(int argc, char** argv) {
    LLVMFuzzerInitialize(&argc, &argv);
    int inputs = 0;
    for (int i = 1; i < argc; ++i) {
        const QFileInfo argument(QString::fromLocal8Bit(argv[i]));
        QStringList files;
        if (argument.isDir()) {
            for (const QFileInfo& entry : QDir(argument.filePath()).entryInfoList(QDir::Files, QDir::Name))
                files << entry.filePath();
        } else {
            files << argument.filePath();
        }
        for (const QString& path : files) {
            QFile file(path);
            if (!file.open(QIODevice::ReadOnly)) {
                std::fprintf(stderr, "cannot read %s\n", qUtf8Printable(path));
                return 1;
            }
            const QByteArray bytes = file.readAll();
            LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.constData()), static_cast<size_t>(bytes.size()));
            ++inputs;
        }
    }
    // The plain closing line of the test runners.
    std::printf("%d passed, 0 failed\n", inputs);
    return 0;
}

#pragma once
// What the benchmarks share: one QApplication for forms, offscreen unless told otherwise.
#include <QApplication>

inline QApplication& benchApplication() {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    static int argc = 1;
    static char name[] = "quorvel_bench";
    static char* argv[] = {name, nullptr};
    static QApplication app(argc, argv);
    return app;
}

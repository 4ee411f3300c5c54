// SPDX-License-Identifier: GPL-3.0-or-later
// Runs one test class of this executable, named as the first argument; without a name, all of them.
// What follows the name goes to Qt Test.
#include "support/TestRegistry.h"

#include <QApplication>
#include <QTemporaryDir>
#include <QTest>

#include <cstdio>

int main(int argc, char** argv)
{
    // Nothing a test writes may reach the home directory of whoever runs it.
    const QTemporaryDir home;
    qputenv("HOME", home.path().toLocal8Bit());
    for (const char* variable : {"XDG_DATA_HOME", "XDG_CONFIG_HOME", "XDG_CACHE_HOME"}) {
        qunsetenv(variable);
    }
    const QApplication application(argc, argv);
    QStringList arguments = QCoreApplication::arguments();
    std::string wanted;
    if (arguments.size() > 1 && !arguments.at(1).startsWith(QLatin1Char('-'))) {
        wanted = arguments.takeAt(1).toStdString();
    }
    int failures = 0;
    bool ran = false;
    for (const auto& [name, create] : TestRegistry::factories()) {
        if (wanted.empty() || wanted == name) {
            ran = true;
            failures += QTest::qExec(create().get(), arguments);
        }
    }
    if (!ran) {
        std::fprintf(stderr, "no test class is called %s\n", wanted.c_str());
        return 1;
    }
    return failures == 0 ? 0 : 1;
}

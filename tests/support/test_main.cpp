// SPDX-License-Identifier: GPL-3.0-or-later
#include <QGuiApplication>
#include <QTemporaryDir>
#include <QThreadPool>

#include <gtest/gtest.h>

int main(int argc, char** argv)
{
    ::testing::InitGoogleTest(&argc, argv);
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QTemporaryDir cache; // nothing of a test stays in the cache of the user
    qputenv("XDG_CACHE_HOME", cache.path().toUtf8());
    const QGuiApplication application(argc, argv);
    const int result = RUN_ALL_TESTS();
    // Scaling pictures uses the pool. The leak checker, which runs at the end of the process, has crashed over threads
    // of it that were still there.
    QThreadPool::globalInstance()->waitForDone();
    return result;
}

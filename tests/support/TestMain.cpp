// GoogleTest main for every test binary: a headless QApplication, and XDG folders in a
// temporary directory so settings, caches and data never touch the user's own.
#include <gtest/gtest.h>

#include <QApplication>
#include <QDir>
#include <QTemporaryDir>

#include <cstdlib>

int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");

    QTemporaryDir home;
    if (!home.isValid())
        return 2;
    for (const char *name : {"XDG_CONFIG_HOME", "XDG_CACHE_HOME", "XDG_DATA_HOME"}) {
        const QString path = home.filePath(QString::fromLatin1(name));
        QDir().mkpath(path);
        qputenv(name, path.toLocal8Bit());
    }

    ::testing::InitGoogleTest(&argc, argv);
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("quorvel"));
    return RUN_ALL_TESTS();
}

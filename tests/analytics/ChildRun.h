#pragma once
// Runs analytics_test_child and tells how it ended, signal number included (QProcess only
// says that a process crashed). Test thread.

#include <QByteArray>
#include <QFile>
#include <QString>
#include <QStringList>

#include <csignal>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <vector>

extern char **environ;

namespace childrun {

#ifdef QUORVEL_ANALYTICS_TEST_CHILD
inline const QString kChildBinary = QStringLiteral(QUORVEL_ANALYTICS_TEST_CHILD);
#endif

struct Ending
{
    bool exited = false;
    int exitCode = -1;
    int signal = 0;     // the signal that ended it, or 0
};

// Starts the child with its stdout going to `outputPath` (when given); returns its pid or -1.
inline pid_t start(const QStringList &arguments, const QString &outputPath = QString())
{
    std::vector<QByteArray> storage{kChildBinary.toLocal8Bit()};
    for (const QString &argument : arguments)
        storage.push_back(argument.toLocal8Bit());
    std::vector<char *> argv;
    for (QByteArray &argument : storage)
        argv.push_back(argument.data());
    argv.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    const QByteArray output = outputPath.toLocal8Bit();
    if (!outputPath.isEmpty())
        posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, output.constData(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    pid_t pid = -1;
    const int failed = posix_spawn(&pid, argv[0], &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    return failed ? -1 : pid;
}

inline Ending wait(pid_t pid)
{
    int status = 0;
    Ending ending;
    if (waitpid(pid, &status, 0) != pid)
        return ending;
    if (WIFEXITED(status)) {
        ending.exited = true;
        ending.exitCode = WEXITSTATUS(status);
    } else if (WIFSIGNALED(status)) {
        ending.signal = WTERMSIG(status);
    }
    return ending;
}

inline Ending run(const QStringList &arguments)
{
    const pid_t pid = start(arguments);
    return pid < 0 ? Ending{} : wait(pid);
}

} // namespace childrun

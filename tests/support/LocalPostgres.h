#pragma once
// Test fixture: a throwaway PostgreSQL cluster in a temporary folder, on a free loopback
// port, run as the unprivileged "postgres" user when the tests run as root (PostgreSQL
// refuses root). Each test takes a fresh database copied from a template that holds the
// seeded demo forum, so seeding happens once per test program. Lives on the test's main
// thread; the cluster stops when the fixture is destroyed.
//
//   LocalPostgres &postgres = LocalPostgres::shared();
//   ASSERT_TRUE(postgres.isRunning()) << postgres.errorString();
//   const QString url = postgres.freshDatabase();  // "postgresql://quorvel@127.0.0.1:PORT/forum_3"

#include <QString>
#include <QTemporaryDir>

#include <functional>
#include <memory>

class LocalPostgres
{
public:
    static constexpr const char *kUser = "quorvel";

    // One cluster per test program, started on first use.
    static LocalPostgres &shared();

    LocalPostgres();
    ~LocalPostgres();
    LocalPostgres(const LocalPostgres &) = delete;
    LocalPostgres &operator=(const LocalPostgres &) = delete;

    bool isRunning() const { return m_running; }
    QString errorString() const { return m_error; }
    int port() const { return m_port; }

    // A new empty database's address; empty on failure (see errorString()).
    QString emptyDatabase();
    // A new database holding what `prepare` wrote into the template the first time it was
    // asked for (the same template for every later call); empty on failure.
    QString freshDatabase(const std::function<bool(const QString &url)> &prepareTemplate);

    // Stops the cluster (fast shutdown: connections are cut) and starts it again on the same
    // folder and port, for tests of a lost connection.
    bool stop();
    bool start();

private:
    bool initialise();
    bool runTool(const QString &tool, const QStringList &arguments);
    bool createDatabase(const QString &name, const QString &templateName);
    QString urlOf(const QString &name) const;

    QTemporaryDir m_folder;
    QString m_binaries;
    int m_port = 0;
    int m_databases = 0;
    bool m_running = false;
    bool m_templateReady = false;
    QString m_error;
};

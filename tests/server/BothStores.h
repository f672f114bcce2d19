#pragma once
// Test suites that run on both stores: a SQLite file, and a database of the throwaway
// PostgreSQL cluster (LocalPostgres), chosen by a StoreKind parameter:
//   class ServerPosting : public ::testing::TestWithParam<StoreKind> {};
//   QUORVEL_FOR_BOTH_STORES(ServerPosting);

#include "LocalPostgres.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <string>

enum class StoreKind { SQLite, PostgreSQL };

inline std::string storeName(const ::testing::TestParamInfo<StoreKind> &info)
{
    return info.param == StoreKind::SQLite ? "SQLite" : "PostgreSQL";
}

#define QUORVEL_FOR_BOTH_STORES(suite)                                                                      \
    INSTANTIATE_TEST_SUITE_P(, suite, ::testing::Values(StoreKind::SQLite, StoreKind::PostgreSQL), storeName)

// A new empty database of `kind`: a file in `folder`, or a database of the shared cluster.
// Empty, after a test failure, when it cannot be made.
inline QString emptyForum(StoreKind kind, const QTemporaryDir &folder)
{
    if (kind == StoreKind::SQLite)
        return folder.filePath(QStringLiteral("forum.sqlite"));
    LocalPostgres &postgres = LocalPostgres::shared();
    const QString url = postgres.emptyDatabase();
    EXPECT_FALSE(url.isEmpty()) << postgres.errorString().toStdString();
    return url;
}

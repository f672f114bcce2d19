#pragma once
// Fuzz targets feed garbage on purpose: the forum client's log lines about it are noise.

#include <QLoggingCategory>

inline void silenceForumLog()
{
    static const bool silenced = [] {
        QLoggingCategory::setFilterRules(QStringLiteral("quorvel.info=false"));
        return true;
    }();
    (void)silenced;
}

#pragma once
// Names for what a cached answer was made of, so a write can say which answers it changes:
// the board list, one board's topic lists, one topic. Stateless; any thread.

#include <QString>
#include <QStringList>

class AnswerTags
{
public:
    AnswerTags() = delete;

    static QString boards() { return QStringLiteral("boards"); }
    static QString board(qint64 sectionid) { return QStringLiteral("s%1").arg(sectionid); }
    static QString topic(qint64 tid) { return QStringLiteral("t%1").arg(tid); }

    // A new topic changes the board list (counts, latest), its board's lists, and the
    // (until now empty) answers about its own number.
    static QStringList forNewTopic(qint64 sectionid, qint64 tid) { return {boards(), board(sectionid), topic(tid)}; }
    // A reply changes its topic and the reply counts in its board's lists.
    static QStringList forNewReply(qint64 tid, qint64 sectionid) { return {topic(tid), board(sectionid)}; }
};

#pragma once
// The Chinese text pools the demo data is made from. Stateless; any thread.

#include <QString>
#include <QStringList>

namespace DemoTexts {

struct Board
{
    QString name;
    QString tag;
    QStringList titleTemplates;  // "%1" is replaced by one of `terms`
    QStringList terms;
    QStringList pinnedTitles;    // two pinned, then two guide topics
    QStringList pinnedBodies;
};

const QList<Board> &boards();
const QStringList &userNames();
const QStringList &sentences();
const QStringList &replies();
const QStringList &longReplies();

} // namespace DemoTexts

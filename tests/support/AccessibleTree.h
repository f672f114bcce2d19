#pragma once
// Reads the accessibility tree as an assistive tool does: from a window's interface down
// through child(i), finding nodes by role and name.

#include <QAccessible>
#include <QList>
#include <QString>
#include <QStringList>

namespace testsupport {

// `node` and every interface under it, depth first in child order.
inline void appendAccessibleSubtree(QAccessibleInterface *node, QList<QAccessibleInterface *> &nodes)
{
    nodes << node;
    for (int i = 0; i < node->childCount(); ++i) {
        if (QAccessibleInterface *child = node->child(i))
            appendAccessibleSubtree(child, nodes);
    }
}

// The interface of `root` and every one under it.
inline QList<QAccessibleInterface *> accessibleTree(QObject *root)
{
    QList<QAccessibleInterface *> nodes;
    if (QAccessibleInterface *top = QAccessible::queryAccessibleInterface(root))
        appendAccessibleSubtree(top, nodes);
    return nodes;
}

// The nodes under `root` with that role, in tree order.
inline QList<QAccessibleInterface *> accessibleWithRole(QObject *root, QAccessible::Role role)
{
    QList<QAccessibleInterface *> found = accessibleTree(root);
    found.removeIf([role](const QAccessibleInterface *node) { return node->role() != role; });
    return found;
}

// The nodes under `root` with that role and exactly that name.
inline QList<QAccessibleInterface *> accessibleNamed(QObject *root, QAccessible::Role role, const QString &name)
{
    QList<QAccessibleInterface *> found = accessibleWithRole(root, role);
    found.removeIf([&name](const QAccessibleInterface *node) { return node->text(QAccessible::Name) != name; });
    return found;
}

// The names of the nodes with that role that show on screen, in tree order.
inline QStringList shownAccessibleNames(QObject *root, QAccessible::Role role)
{
    QStringList names;
    for (const QAccessibleInterface *node : accessibleWithRole(root, role)) {
        if (!node->state().invisible)
            names << node->text(QAccessible::Name);
    }
    return names;
}

} // namespace testsupport

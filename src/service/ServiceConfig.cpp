#include "ServiceConfig.h"

#include <QtGlobal>

namespace {

QString &overriddenRoot()
{
    static QString root;
    return root;
}

QString withTrailingSlash(QString root)
{
    if (!root.endsWith(u'/'))
        root += u'/';
    return root;
}

} // namespace

QString ServiceConfig::apiRoot()
{
    if (!overriddenRoot().isEmpty())
        return overriddenRoot();
    const QString fromEnvironment = qEnvironmentVariable(kApiRootVariable);
    if (!fromEnvironment.isEmpty())
        return withTrailingSlash(fromEnvironment);
    return QString::fromLatin1(kDefaultApiRoot);
}

void ServiceConfig::setApiRoot(const QString &root)
{
    overriddenRoot() = root.isEmpty() ? QString() : withTrailingSlash(root);
}

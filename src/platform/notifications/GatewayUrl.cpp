#include "GatewayUrl.h"

QString GatewayUrl::join(QString root, QStringView path)
{
    while (root.endsWith(QLatin1Char('/')))
        root.chop(1);
    return root.isEmpty() ? QString() : root.append(path);
}

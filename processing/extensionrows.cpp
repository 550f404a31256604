#include "processing/extensionrows.h"

#include "profile/requestblock.h"
#include "resources/resources.h"

#include <QString>
#include <QVector>

namespace processing {

ExtensionRows parseExtensionRows(const QByteArray& text)
{
    ExtensionRows rows;
    const QString decoded = QString::fromLatin1(text);
    QVector<QStringRef> lines = decoded.splitRef(QLatin1Char('\n'));
    lines.removeFirst();
    for (const QStringRef& line : qAsConst(lines)) {
        const QString words = line.toString().simplified();
        const QVector<QStringRef> parts = words.splitRef(QLatin1Char(' '), Qt::SkipEmptyParts);
        if (parts.size() != 2)
            continue;
        const float depth = profile::listNumber(parts[0]);
        if (!rows.depths.isEmpty() && depth <= rows.depths.last())
            continue;
        rows.depths.append(depth);
        rows.speeds.append(profile::listNumber(parts[1]));
    }
    return rows;
}

const ExtensionRows& defaultExtensionRows()
{
    static const ExtensionRows rows = parseExtensionRows(resources::extensionProfile());
    return rows;
}

} // namespace processing

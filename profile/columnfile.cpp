#include "profile/columnfile.h"

#include "profile/castheader.h"
#include "profile/profilereply.h"
#include "profile/protocol.h"
#include "profile/textfile.h"

namespace profile {

namespace {

QString contentIdentifier(SalinityWord word)
{
    switch (word) {
    case SalinityWord::Salinity:
        return QStringLiteral("01");
    case SalinityWord::Conductivity:
        return QStringLiteral("03");
    case SalinityWord::Undefined:
        break;
    }
    return QStringLiteral("00");
}

} // namespace

OpenedProfile openColumnFile(const QByteArray& content, const tagDecodeFmt& format,
                             const QString& name)
{
    const QByteArray text = normalisedText(content);
    CastHeader header;
    const bool hasBoth = format.temperatureColumn >= 0 && format.salinityColumn >= 0;
    header.type =
        hasBoth ? contentIdentifier(format.salinityWord) : QString(protocol::soundVelocity);
    header.source = hasBoth ? QStringLiteral(".ssp") : baseName(name);
    OpenedProfile opened;
    insertCastHeader(opened.reply, header);
    const QVector<float> record = decodeColumns(
        std::string_view(text.constData(), std::size_t(text.size())), format, &opened.decimals);
    opened.reason = insertProfile(opened.reply, record, name);
    return opened;
}

} // namespace profile

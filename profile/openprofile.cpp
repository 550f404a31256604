#include "profile/openprofile.h"

#include "platform/platform.h"
#include "profile/asvpfile.h"
#include "profile/columnfile.h"
#include "profile/importfilter.h"
#include "profile/instrumentdecoders.h"
#include "profile/instrumentfile.h"
#include "profile/profilereply.h"
#include "profile/valeportfile.h"

#include <QByteArray>

#include <algorithm>

namespace profile {

namespace {

OpenedProfile refused(const QString& reason)
{
    return {{}, reason, {}};
}

OpenedProfile openAsvp(const QByteArray& content, const tagDecodeFmt& format, const QString& name)
{
    const AsvpFile file = readAsvp(content, format);
    if (file.header.isEmpty())
        return refused(QStringLiteral("Header not correct in file."));
    OpenedProfile opened;
    insertAsvpHeader(opened.reply, file.header);
    opened.reason = insertProfile(opened.reply, file.record, name);
    opened.decimals = file.decimals;
    return opened;
}

bool isLetterOrDigit(QChar character)
{
    return character.unicode() < 128 && character.isLetterOrNumber();
}

} // namespace

QString requestedFileName(const QString& request)
{
    QString name = request;
    name.remove(QLatin1Char('[')).remove(QLatin1String(",asvp]")).remove(QLatin1String(",ssp]"));
    const int comma = name.lastIndexOf(QLatin1Char(','));
    if (comma >= 0 && name.endsWith(QLatin1Char(']'))) {
        const QStringRef kind = name.midRef(comma + 1).chopped(1);
        if (!kind.isEmpty() && std::all_of(kind.begin(), kind.end(), isLetterOrDigit))
            name.truncate(comma);
    }
    return name;
}

OpenedProfile openProfile(const ProfileFolder& folder, const QString& name,
                          const QStringList& filters, const SspReader& readSsp)
{
    QByteArray content;
    const QString path = folder.pathOf(name);
    if (path.isEmpty() || !platform::readFile(path, content))
        return refused(QStringLiteral("File does not exist or cannot be opened for reading"));

    FilterRow filter;
    if (!findFilter(filters, name, filter))
        return refused(QStringLiteral("Filter not found."));
    const auto isKind = [&filter](const char* postfix) {
        return filter.postfix.compare(QLatin1String(postfix), Qt::CaseInsensitive) == 0;
    };
    if (isKind(".asvp"))
        return openAsvp(content, filter.format, name);
    if (isKind(".ssp"))
        return readSsp(content, name);
    if (isKind(".vp2"))
        return openInstrumentFile(content, name, fnDecodeValeportVP2,
                                  QStringLiteral("Valeport vp2 decode problem."));
    if (isKind(".aml") || isKind(".amlx"))
        return openInstrumentFile(content, name, fnDecodeAML_AML,
                                  QStringLiteral("AML aml format decode problem."));
    if (isKind(".valeport"))
        return openValeportFile(content, filter.format, name);
    return openColumnFile(content, filter.format, name);
}

} // namespace profile

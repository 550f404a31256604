#include "profile/columnfile.h"
#include "profile/importfilter.h"
#include "profile/instrumentdecoders.h"
#include "profile/instrumentfile.h"
#include "profile/protocol.h"
#include "profile/valeportfile.h"

#include <QJsonArray>

#include <cmath>
#include <cstdint>
#include <cstdlib>

namespace {

profile::tagDecodeFmt formatOf(const char* line)
{
    profile::FilterRow row;
    profile::parseFilterRow(QLatin1String(line), row);
    return row.format;
}

profile::OpenedProfile open(int kind, const QByteArray& content)
{
    const QString name = QStringLiteral("x");
    switch (kind) {
    case 0:
        return profile::openInstrumentFile(content, name, profile::fnDecodeValeportVP2, name);
    case 1:
        return profile::openInstrumentFile(content, name, profile::fnDecodeAML_AML, name);
    case 2:
        return profile::openValeportFile(
            content, formatOf("x,.valeport,0,2,-1,-1,-1,1,1,1,tab,undef"), name);
    default:
        return profile::openColumnFile(
            content, formatOf("x,.col,0,1,2,3,4,1;2,1,1,semicolon,salinity"), name);
    }
}

} // namespace

// The first byte chooses the kind of file, the rest is its content. What opens has levels of
// numbers alone.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size == 0)
        return 0;
    const QByteArray content(reinterpret_cast<const char*>(data) + 1, int(size - 1));
    const profile::OpenedProfile opened = open(*data % 4, content);
    if (!opened.reason.isEmpty())
        return 0;
    const int levels = opened.reply.value(protocol::header::samples).toInt();
    for (const QLatin1String key : protocol::sampleKeys) {
        const QJsonArray values = opened.reply.value(key).toArray();
        if (values.size() != levels || levels < 2)
            std::abort();
        for (const QJsonValue& value : values) {
            if (!value.isDouble() || !std::isfinite(value.toDouble()))
                std::abort();
        }
    }
    return 0;
}

#include "datagram/saverequest.h"
#include "datagram/sendrequest.h"
#include "datagram/sspdatagram.h"

#include <cstdint>
#include <cstdlib>

// The parsers of save and send requests, and the datagrams that they lead to.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QString text = QString::fromUtf8(reinterpret_cast<const char*>(data), int(size));
    const QString block = profile::withoutBrackets(text);
    const auto pieces = profile::splitPieces(block, Qt::KeepEmptyParts);
    datagram::shortDatagram(datagram::parseShortSend(pieces, false));
    datagram::shortDatagram(datagram::parseShortSend(pieces, true));
    const profile::ProfileForm form15 = profile::parseProfileForm(pieces);
    datagram::listsRefusal(profile::parseValueLists(form15.valueLists), form15.statedSamples, 3);
    datagram::datagramFileName(form15.fileName);

    const profile::SendForm form = profile::parseSendForm(pieces);
    const profile::ValueLists lists = profile::parseValueLists(form.profile.valueLists);
    if (datagram::listsRefusal(lists, form.profile.statedSamples, 2).isEmpty()) {
        const datagram::BuiltDatagram built = datagram::buildDatagram(
            {form.profile.kind, form.profile.statedSamples, form.profile.time,
             form.profile.latitude, form.profile.longitude, form.profile.comment,
             datagram::columnsOf(lists)},
            {});
        if (built.reason.isEmpty() && !built.bytes.endsWith("\\\r\n"))
            std::abort();
    }
    const profile::AsvpSaveForm save = profile::parseAsvpSaveForm(pieces);
    datagram::DepthSpeedPairs pairs;
    if (datagram::parseDepthSpeedPairs(save.depthSpeedList, pairs) &&
        pairs.depths.size() != pairs.speeds.size())
        std::abort();
    return 0;
}

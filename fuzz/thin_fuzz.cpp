#include "datagram/thinrequest.h"
#include "processing/thin.h"

#include <cstdint>
#include <cstdlib>

// The thin request down to the samples that are kept and the file's text.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QString text = QString::fromUtf8(reinterpret_cast<const char*>(data), int(size));
    const QString block = profile::withoutBrackets(text);
    const auto pieces = profile::splitPieces(block, Qt::SkipEmptyParts);
    const datagram::ThinRequest request = datagram::parseThinRequest(pieces);
    datagram::derivedName(request.form.fileName, QStringLiteral("_thinned.ssp"));
    if (!datagram::kindRefusal(request).isEmpty() || !datagram::thinRefusal(request).isEmpty())
        return 0;
    const raytrace::Layers samples =
        raytrace::makeLayers(request.lists.depth.constData(), request.lists.speed.constData(),
                             std::size_t(request.lists.depth.size()));
    const auto tolerance = double(profile::listNumber(QStringRef(&request.form.tolerance)));
    const std::vector<std::int32_t> kept = processing::thinnedSamples(samples, tolerance);
    if (kept.empty())
        return 0;
    if (kept.front() != 0 || std::size_t(kept.back()) + 1 != samples.size())
        std::abort();
    const profile::ValueLists thinned = profile::valuesAt(request.lists, kept);
    if (!datagram::haveEqualLengths(thinned, request))
        return 0;
    if (request.isAsvp) {
        profile::asvpText(thinned.depth, thinned.speed, datagram::asvpHeaderOf(request.form));
    } else {
        const datagram::BuiltDatagram built =
            datagram::buildDatagram(datagram::datagramPartsOf(request.form, thinned), {});
        if (built.reason.isEmpty() && !built.bytes.endsWith("\\\r\n"))
            std::abort();
    }
    return 0;
}

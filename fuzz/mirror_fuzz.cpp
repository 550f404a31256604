#include "settings/tokenstore_mirror.h"

#include <cstdint>
#include <cstdlib>

namespace {

void require(bool holds)
{
    if (!holds)
        std::abort();
}

bool isSame(const settings::Token& one, const settings::Token& other)
{
    return one.name == other.name && one.description == other.description &&
           settings::textOf(one) == settings::textOf(other) &&
           settings::integerOf(one) == settings::integerOf(other);
}

} // namespace

// A mirror that reads keeps each of its tokens when one is added and it is saved.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    settings::TokenMirror mirror;
    const QByteArray text(reinterpret_cast<const char*>(data), int(size));
    if (mirror.parse(text) != settings::TokenMirror::Parsed::Whole) {
        require(mirror.isEmpty() && mirror.tokens().isEmpty());
        return 0;
    }
    settings::TokenMap expected = mirror.tokens();
    const settings::Token added{QStringLiteral("SVP_WOA_EXTEND"), QStringLiteral("Use it"),
                                settings::TokenKind::Integer, qint64(size)};
    mirror.put(added);
    expected.insert(added.name, added);

    const QDateTime now = QDateTime::fromMSecsSinceEpoch(0, Qt::UTC);
    settings::TokenMirror again;
    require(again.parse(mirror.text(now)) == settings::TokenMirror::Parsed::Whole);
    const settings::TokenMap found = again.tokens();
    require(found.size() == expected.size());
    for (const settings::Token& token : expected)
        require(isSame(found.value(token.name), token));
    return 0;
}

#include "tests/support/requests.h"

namespace requests {

namespace {

const QString lists = QStringLiteral("1500,1490.5,1550;0,10.25,12000;0.1,0.2,0.3;9,9,9;"
                                     "10.4,9.6,1.5;35,34.4,34.7;40,41,42");

} // namespace

QString join(const QStringList& pieces)
{
    return QLatin1Char('[') + pieces.join(QLatin1Char('*')) + QLatin1Char(']');
}

QStringList changed(QStringList pieces, int place, const QString& text)
{
    pieces[place] = text;
    return pieces;
}

QStringList fullSend()
{
    QStringList pieces = datagramSave();
    pieces.swapItemsAt(0, 1);
    pieces.prepend(QStringLiteral("0"));
    return pieces;
}

QStringList shortSend()
{
    return {QStringLiteral("SoundVelocity"), QStringLiteral("cast.asvp"),
            QStringLiteral("0,10.25,12000"), QStringLiteral("1500,1490.5,1550"),
            QStringLiteral("-33.5"),         QStringLiteral("5.5"),
            QStringLiteral("20261115123456")};
}

QStringList datagramSave()
{
    return {lists,
            QStringLiteral("cast.ssp"),
            QStringLiteral("00"),
            QStringLiteral("1.0"),
            QStringLiteral("0"),
            QStringLiteral("20261115123456"),
            QStringLiteral("-33.5"),
            QStringLiteral("5.5"),
            QStringLiteral("0"),
            QStringLiteral("0"),
            QStringLiteral("0"),
            QStringLiteral("source"),
            QStringLiteral("NA"),
            QStringLiteral("3"),
            QStringLiteral("a comment %1")};
}

QStringList asvpSave()
{
    return {QStringLiteral("0,1500,10.256,1490.5,12000,1550"),
            QStringLiteral("cast"),
            QStringLiteral("SoundVelocity"),
            QStringLiteral("1.0"),
            QStringLiteral("7"),
            QStringLiteral("20261115123456"),
            QStringLiteral("-33.5"),
            QStringLiteral("S"),
            QStringLiteral("5.5"),
            QStringLiteral("E"),
            QStringLiteral("100"),
            QStringLiteral("1"),
            QStringLiteral("2"),
            QStringLiteral("my probe"),
            QStringLiteral("NA")};
}

} // namespace requests

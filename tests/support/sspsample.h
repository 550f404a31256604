#pragma once

#include <QByteArray>
#include <QList>

/// A sound speed profile datagram as a survey system writes it, to be changed piece by piece.
struct SspSample
{
    QByteArray identifier = "00";
    QByteArray number = "00000";
    QByteArray samples; ///< empty: as many as there are rows
    QByteArray time = "123456";
    QByteArray date = "15,11,2026";
    QList<QByteArray> rows = {"0.00,1500.00,,,", "100.00,1490.00,,,", "12000.00,1520.00,,,"};
    QByteArray position = "5930.000000,N,1015.000000,E";
    QByteArray comment = "Deep cast";

    QByteArray text() const
    {
        QByteArray all = "$QZS" + identifier + ',' + number + ',' +
                         (samples.isEmpty() ? QByteArray::number(rows.size()) : samples) + ',' +
                         time + ',' + date + ',';
        for (const QByteArray& row : rows)
            all += row + "\r\n";
        return all + position + ",,," + comment + "*5A\\\r\n";
    }
};

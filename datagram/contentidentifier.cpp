#include "datagram/contentidentifier.h"

namespace datagram {

namespace {

constexpr FirstColumn noRows = FirstColumn::NoRows;
constexpr FirstColumn byDepth = FirstColumn::Depth;
constexpr FirstColumn other = FirstColumn::Alternative;

// Identifiers that end in 3 above 10 are legal but have no rows: receivers know them, the builder
// never did. 53 is read like 40 to 43, not like 50 to 52.
constexpr ContentIdentifier table[] = {
    // number, legal, first, speed, temp., sal., abs.,   convertible, speed?, sal. from cond.,
    // pressure
    {0, true, byDepth, true, false, false, false, true, false, false, false},
    {1, true, byDepth, true, true, true, false, true, false, false, false},
    {2, true, byDepth, false, true, true, false, true, true, false, false},
    {3, true, byDepth, false, true, true, false, true, true, true, false},
    {4, true, other, false, true, true, false, true, true, false, true},
    {5, true, other, false, true, true, false, true, true, true, true},
    {6, true, byDepth, true, false, false, true, true, false, false, false},
    {7, true, other, true, true, true, false, true, false, true, true},
    {10, true, byDepth, true, false, false, false, true, false, false, false},
    {11, true, byDepth, true, false, false, true, true, false, false, false},
    {12, true, byDepth, true, true, true, false, true, false, false, false},
    {13, true, noRows, false, false, false, false, true, false, false, false},
    {14, true, other, true, true, true, false, true, false, true, true},
    {20, true, byDepth, false, true, true, false, true, true, false, false},
    {21, true, byDepth, false, true, true, true, true, true, false, false},
    {22, true, byDepth, false, true, true, false, true, true, false, false},
    {23, true, noRows, false, false, false, false, true, true, false, false},
    {30, true, byDepth, false, true, true, false, true, true, true, false},
    {31, true, byDepth, false, true, true, true, true, true, true, false},
    {32, true, byDepth, false, true, true, false, true, true, true, false},
    {33, true, noRows, false, false, false, false, true, true, true, false},
    {40, true, other, false, true, true, false, true, true, false, true},
    {41, true, other, false, true, true, true, true, true, false, true},
    {42, true, other, false, true, true, false, true, true, false, true},
    {43, true, noRows, false, false, false, false, true, true, false, true},
    {50, true, other, false, true, true, false, true, true, true, true},
    {51, true, other, false, true, true, true, true, true, true, true},
    {52, true, other, false, true, true, false, true, true, true, true},
    {53, true, noRows, false, false, false, false, true, true, false, true},
};

} // namespace

ContentIdentifier contentIdentifier(int number)
{
    for (const ContentIdentifier& entry : table) {
        if (entry.number == number)
            return entry;
    }
    ContentIdentifier unknown;
    unknown.number = number;
    return unknown;
}

ContentIdentifier legalIdentifier(const QString& text)
{
    bool isInteger = false;
    const int number = text.toInt(&isInteger);
    return isInteger ? contentIdentifier(number) : ContentIdentifier();
}

} // namespace datagram

#pragma once

#include <QByteArray>
#include <QImage>
#include <QSize>

namespace client {

// Turns the bytes of a picture file (JPEG, PNG, GIF, BMP, ICO) into an image no larger than
// `box`, keeping its proportions. A picture that cannot be read, is cut short, or claims more
// than kMaxSide pixels on a side gives a null image; nothing is decoded past that check.
class Picture
{
public:
    static constexpr int kMaxSide = 4096;

    static QImage load(const QByteArray &bytes, QSize box);
};

} // namespace client

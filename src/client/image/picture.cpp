#include "client/image/picture.h"

#include <QBuffer>
#include <QImageReader>

namespace client {

QImage Picture::load(const QByteArray &bytes, QSize box)
{
    QBuffer buffer;
    buffer.setData(bytes);
    buffer.open(QIODevice::ReadOnly);
    QImageReader reader(&buffer);
    const QSize size = reader.size();
    if (!size.isValid() || size.width() > kMaxSide || size.height() > kMaxSide)
        return {};
    QImage image;
    if (!reader.read(&image))
        return {};
    if (image.width() > box.width() || image.height() > box.height())
        image = image.scaled(box, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    return image;
}

} // namespace client

#pragma once

#include <QByteArray>
#include <QImage>
#include <QString>

namespace server {

class WebRoutes;

// The avatar pages "/avatar/HASH.jpg?s=SIZE": a picture drawn from the hash alone, so the same
// hash always gives the same picture and a lobby can serve avatars without a public service.
// The picture is a symmetric pattern of squares in a colour taken from the hash, SIZE pixels
// square (80 when not given, at most kMaxSide). A hash that is not 1 to 128 letters and digits
// is not found. A picture never changes, so browsers keep it a day, revalidated by its ETag.
class AvatarPages
{
public:
    static constexpr int kDefaultSide = 80;
    static constexpr int kMaxSide = 512;

    static void addRoutes(WebRoutes &routes);

    // The picture of `hash`, `side` pixels square.
    static QImage draw(const QString &hash, int side);
    // Its JPEG file; empty for a hash that is not served.
    static QByteArray jpeg(const QString &hash, int side);
};

} // namespace server

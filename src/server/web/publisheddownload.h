#pragma once

#include <QString>

namespace server {

class WebRoutes;

// The current client program, published on the web pages for clients to update themselves:
// /public/quorvel/quor_vel.exe is the file given with --publish, read afresh at each request so
// that replacing the file publishes the new one; /public/quorvel/quor_vel.exe.sha256 is its
// SHA-256 in "sha256sum" form, taken from FILE.sha256 when the publisher put one beside it and
// computed otherwise; /public/quorvel/quor_vel.exe.sig is FILE.sig, the signature made with
// `sign-update`, 404 when there is none. All are 404 while no file is published. The program is
// sent from its file by the web server, never held in memory, and is revalidated by browsers every
// time.
class PublishedDownload
{
public:
    static constexpr auto kPath = "/public/quorvel/quor_vel.exe";

    explicit PublishedDownload(QString file) : m_file(std::move(file)) {}

    void addRoutes(WebRoutes &routes) const;

private:
    QString m_file;
};

} // namespace server

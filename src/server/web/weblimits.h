#pragma once

namespace server {

// What one visitor, or all of them, may take of the web side. The defaults hold a few hundred
// browsers; a host with a low descriptor limit gets fewer connections, see WebServer.
struct WebLimits
{
    int maxConnections = 256;          // at once, from everyone
    int maxConnectionsPerAddress = 16; // at once, from one address
    int timeoutSeconds = 15;           // a connection idle this long is closed
    // Read and write buffers of one connection. The request line and headers must fit in about
    // half of it; longer ones are answered 414 or 431 and the connection is closed.
    int memoryPerConnection = 16 * 1024;
};

} // namespace server

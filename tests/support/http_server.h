#pragma once
#include "support/temp_folder.h"

#include <windows.h>
#include <map>
#include <string>
#include <vector>

/// A request as it came in. The names of headers are in small letters.
struct HttpRequest {
    std::string strMethod;
    std::string strTarget; // a path, or an address if it came to a proxy
    std::map<std::string, std::string> headers;
    std::string strBody;
};

/// The web server of http_server.py, which runs while the object lives. It answers as the path of a
/// request says ("text/4F4B"), or for any other path as Say told it; the kinds of answers are
/// listed in that file.
class HttpServer {
  public:
    /// Returns when it listens. IsRunning is 0 if it could not be started.
    HttpServer();
    /// Has it end, and waits until it has.
    ~HttpServer();
    HttpServer(const HttpServer&) = delete;
    HttpServer& operator=(const HttpServer&) = delete;

    int IsRunning() const { return nPort != 0; }
    WORD Port() const { return nPort; }
    /// Nobody listens there.
    WORD RefusedPort() const { return nRefusedPort; }
    /// Whoever connects there waits until he gives up.
    WORD FullPort() const { return nFullPort; }

    /// The answers to the next requests, one after the other; the last one stays.
    void Say(const std::vector<std::string>& lines);
    /// Ends all connections that would last, and lets in whoever waits at FullPort, which is no
    /// such port any more.
    void HangUp();
    /// The requests that came since the last time.
    std::vector<HttpRequest> TakeRequests();

  private:
    TempFolder folder;
    WORD nPort = 0, nRefusedPort = 0, nFullPort = 0;
    int nScript = 0;
    int nTaken = 0;
};

/// Bytes as the server's answers are told: "4F4B".
std::string HexOf(const std::string& strBytes);
/// The answer of that kind with these bytes: "text/4F4B".
std::string Answer(const std::string& strKind, const std::string& strBytes);

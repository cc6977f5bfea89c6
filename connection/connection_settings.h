// The plain fields of one connection file, in their declared order: everything the
// reader, the writer and the pages exchange except the reference count and the two
// icon handles, which VQCFileInfo (vqc_file_info.h) adds on Windows. Portable, so the
// byte-and-text logic that fills and reads it builds and is tested natively too.
#pragma once

#include <cstdint>
#include <string>

// Route values of ConnectionSettings::route.
enum : std::int32_t {
    kRouteDirect = 0,
    kRouteProxy = 1,   // -c
    kRouteBroker = 2,  // -f / -F
};

constexpr std::int32_t kServicePortNotGiven = -1;
constexpr std::int32_t kDefaultProxyPort = 8080;
constexpr std::int32_t kDefaultBrokerPort = 14600;
constexpr std::int32_t kUnknownClientVersion = 726;  // newer than every version gate

struct ConnectionSettings {
    // Construction from the file's path; a null path leaves filePath empty.
    explicit ConnectionSettings(const char* path = nullptr);

    std::string answerBack;      // -a
    std::string login;           // -u, or the user of a bare user@host:port
    std::string host;            // -h, or the host of a bare user@host:port
    std::string commandLine;     // -C, always last; the Connection page's "Bookmark"
    std::string localTarget;     // bare argument of a local connection, written after -d
    std::string serviceName;     // -v
    std::string startDirectory;  // -S, local connections only
    std::string proxyHost;       // host of -c
    std::string proxyUser;       // user of -c
    std::string brokerHost;      // host of -f / -F
    std::string clientPath;      // the installed client's DLL; never read or written to the file
    std::string spareText;       // kept so the field list stays as declared; unused

    std::int32_t servicePort = kServicePortNotGiven;  // -V
    std::int32_t proxyPort = kDefaultProxyPort;       // port of -c
    std::int32_t brokerPort = kDefaultBrokerPort;     // port of -f / -F
    std::uint32_t lastError = 0;                      // Windows error of the last failed read or write

    std::uint8_t modified = 0;
    std::uint8_t encrypt = 0;       // -l
    std::uint8_t disguiseHttp = 0;  // --disguise-http
    std::uint8_t optionT = 0;       // -T "Text window on connect"; written, never read
    std::uint8_t localConnect = 0;  // -d
    std::uint8_t optionR = 0;       // -R "Cache password"
    std::uint8_t optionN = 0;       // -N alone "NT domain authentication"
    std::uint8_t optionNM = 0;      // -N with -M "Use Windows domain credentials"
    std::uint8_t optionL = 0;       // -L "NT no logon"
    std::uint8_t optionK = 0;       // -K "Discover service"
    std::uint8_t brokerUpperF = 0;  // broker written as -F rather than -f
    std::uint8_t option_s = 0;      // -s
    std::uint8_t noOptionM = 0;     // "Use legacy protocol": neither -M nor -K; 1 after any read
    std::uint8_t inDomain = 0;      // cached answer of the domain check
    std::uint8_t inDomainKnown = 0;

    std::int32_t clientVersion = kUnknownClientVersion;
    std::int32_t route = kRouteDirect;
    std::string filePath;
};

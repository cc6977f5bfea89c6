// vqctool: shows what the reader makes of a connection file, and rewrites a file with
// the writer for a given client version. For administrators and for tests.
//   vqctool show FILE
//   vqctool rewrite IN OUT [--client-version N]
//   vqctool --version
// Exit status: 0 success, 1 reading or writing failed, 2 usage error.
#include <windows.h>

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "common/hresult_error.h"
#include "connection/vqc_file_info.h"
#include "tools/dump_text.h"

namespace {

constexpr int kExitOk = 0;
constexpr int kExitFailed = 1;
constexpr int kExitUsage = 2;

int Usage() {
    std::fputs("usage: vqctool show FILE\n"
               "       vqctool rewrite IN OUT [--client-version N]\n",
               stderr);
    return kExitUsage;
}

std::string IconText(HICON icon) {
    if (!icon) return "none";
    ICONINFO info{};
    if (!GetIconInfo(icon, &info)) return "none";
    BITMAP mask{};
    GetObjectA(info.hbmMask, sizeof(mask), &mask);
    const int height = info.hbmColor ? mask.bmHeight : mask.bmHeight / 2;
    if (info.hbmColor) DeleteObject(info.hbmColor);
    if (info.hbmMask) DeleteObject(info.hbmMask);
    return std::to_string(mask.bmWidth) + "x" + std::to_string(height);
}

void PrintText(const char* name, const std::string& value) {
    std::printf("%s=%s\n", name, QuotedForDump(value).c_str());
}

void PrintNumber(const char* name, long long value) { std::printf("%s=%lld\n", name, value); }

// Every field in the record's declared order.
void PrintRecord(const VQCFileInfo& r) {
    PrintText("answerBack", r.answerBack);
    PrintText("login", r.login);
    PrintText("host", r.host);
    PrintText("commandLine", r.commandLine);
    PrintText("localTarget", r.localTarget);
    PrintText("serviceName", r.serviceName);
    PrintText("startDirectory", r.startDirectory);
    PrintText("proxyHost", r.proxyHost);
    PrintText("proxyUser", r.proxyUser);
    PrintText("brokerHost", r.brokerHost);
    PrintText("clientPath", r.clientPath);
    PrintText("spareText", r.spareText);
    PrintNumber("servicePort", r.servicePort);
    PrintNumber("proxyPort", r.proxyPort);
    PrintNumber("brokerPort", r.brokerPort);
    PrintNumber("lastError", r.lastError);
    PrintNumber("modified", r.modified);
    PrintNumber("encrypt", r.encrypt);
    PrintNumber("disguiseHttp", r.disguiseHttp);
    PrintNumber("optionT", r.optionT);
    PrintNumber("localConnect", r.localConnect);
    PrintNumber("optionR", r.optionR);
    PrintNumber("optionN", r.optionN);
    PrintNumber("optionNM", r.optionNM);
    PrintNumber("optionL", r.optionL);
    PrintNumber("optionK", r.optionK);
    PrintNumber("brokerUpperF", r.brokerUpperF);
    PrintNumber("option_s", r.option_s);
    PrintNumber("noOptionM", r.noOptionM);
    PrintNumber("inDomain", r.inDomain);
    PrintNumber("inDomainKnown", r.inDomainKnown);
    PrintNumber("clientVersion", r.clientVersion);
    PrintNumber("route", r.route);
    PrintText("filePath", r.filePath);
    PrintNumber("refCount", r.refCount);
    std::printf("icon=%s\n", IconText(r.icon.Get()).c_str());
    std::printf("smallIcon=%s\n", IconText(r.smallIcon.Get()).c_str());
}

// "vqctool: <what> FILE: <Windows' text for the error>" on stderr.
int Failed(const char* what, const char* path, DWORD error) {
    char text[512] = {};
    const DWORD length = FormatMessageA(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
                                        nullptr, error, 0, text, sizeof(text), nullptr);
    std::fprintf(stderr, "vqctool: %s %s: %s", what, path, length ? text : "unknown error");
    if (!length || text[length - 1] != '\n') std::fputs("\n", stderr);
    return kExitFailed;
}

int Show(const char* path) {
    VQCFileInfo record(path);
    const std::int32_t result = record.Read(path);
    std::printf("result=%d\n", result);
    PrintRecord(record);
    return result == 0 ? kExitOk : Failed("cannot read", path, record.lastError);
}

// Digits with an optional sign, nothing else.
bool ParseVersion(const char* text, std::int32_t& version) {
    char* end = nullptr;
    errno = 0;
    const long value = std::strtol(text, &end, 10);
    if (!*text || *end || errno || value < INT32_MIN || value > INT32_MAX || std::strchr(" \t", *text))
        return false;
    version = static_cast<std::int32_t>(value);
    return true;
}

int Rewrite(const char* in, const char* out, std::int32_t clientVersion) {
    VQCFileInfo record(in);
    if (record.Read(in) != 0) return Failed("cannot read", in, record.lastError);
    record.clientVersion = clientVersion;
    if (record.Write(out) != 0) return Failed("cannot write", out, record.lastError);
    return kExitOk;
}

int Run(int argc, char** argv) {
    if (argc == 2 && std::strcmp(argv[1], "--version") == 0) {
        std::printf("vqctool %s\n", VQC_PRODUCT_VERSION);
        return kExitOk;
    }
    if (argc == 3 && std::strcmp(argv[1], "show") == 0) return Show(argv[2]);
    if ((argc == 4 || argc == 6) && std::strcmp(argv[1], "rewrite") == 0) {
        std::int32_t version = kUnknownClientVersion;
        if (argc == 6 && (std::strcmp(argv[4], "--client-version") != 0 || !ParseVersion(argv[5], version)))
            return Usage();
        return Rewrite(argv[2], argv[3], version);
    }
    return Usage();
}

}  // namespace

int main(int argc, char** argv) {
    try {
        return Run(argc, argv);
    } catch (const HResultError& error) {
        std::fprintf(stderr, "vqctool: failed with HRESULT 0x%08lX\n", static_cast<unsigned long>(error.code()));
    } catch (const std::exception& error) {
        std::fprintf(stderr, "vqctool: %s\n", error.what());
    }
    return kExitFailed;
}

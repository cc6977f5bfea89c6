#include "connection/option_line.h"

#include <cstring>
#include <string_view>

#include "common/ansi_text.h"

namespace {

// Client versions that decide what may be written.
constexpr std::int32_t kFirstVersionWithRoutes = 620;
constexpr std::int32_t kVersionWithoutEncryptOption = 640;  // never gets -l
constexpr std::int32_t kFirstVersionWithAutomaticM = 665;
constexpr std::int32_t kLastVersionWithAutomaticM = 689;

bool EnclosedInQuotes(const char* value, std::size_t length) {
    return length > 0 && value[0] == '"' && value[length - 1] == '"';
}

void EmitText(std::string& out, char letter, const std::string& value, bool alwaysQuote = false) {
    EmitOption(out, letter, value.c_str(), alwaysQuote);
}

void EmitRemoteOptions(std::string& out, const ConnectionSettings& s) {
    if (!s.host.empty()) EmitText(out, 'h', s.host);

    if (s.optionL) {
        EmitOption(out, 'L', nullptr, false);
    } else if (s.optionN) {
        EmitOption(out, 'N', nullptr, false);
    } else if (s.optionNM) {
        EmitOption(out, 'N', nullptr, false);
        EmitOption(out, 'M', nullptr, false);
    }

    const std::int32_t defaultPort = s.encrypt ? kDefaultEncryptedServicePort : kDefaultServicePort;
    if (!s.serviceName.empty() && s.servicePort != kServicePortNotGiven && s.servicePort != defaultPort) {
        std::string port;
        ansi_text::AppendFormat(port, "%d", s.servicePort);
        EmitText(out, 'V', port);
    }

    if (s.optionR) EmitOption(out, 'R', nullptr, false);

    if (s.clientVersion >= kFirstVersionWithAutomaticM && s.clientVersion <= kLastVersionWithAutomaticM &&
        !s.noOptionM && !s.serviceName.empty() && !s.optionNM)
        EmitOption(out, 'M', nullptr, false);

    if (s.clientVersion >= kFirstVersionWithRoutes && s.clientVersion != kVersionWithoutEncryptOption && s.encrypt)
        EmitOption(out, 'l', nullptr, false);

    if (s.option_s) EmitOption(out, 's', nullptr, false);

    if (s.clientVersion >= kFirstVersionWithRoutes) {
        if (!s.brokerHost.empty() && s.route == kRouteBroker) {
            std::string broker = s.brokerHost;
            if (s.brokerPort != kDefaultBrokerPort) ansi_text::AppendFormat(broker, ":%d", s.brokerPort);
            EmitText(out, s.brokerUpperF ? 'F' : 'f', broker);
        }
        if (!s.proxyHost.empty() && s.route == kRouteProxy) {
            std::string proxy;
            if (!s.proxyUser.empty()) proxy = s.proxyUser + "@";
            proxy += s.proxyHost;
            if (s.proxyPort != kDefaultProxyPort) ansi_text::AppendFormat(proxy, ":%d", s.proxyPort);
            EmitText(out, 'c', proxy);
        }
    }

    if (s.optionT) EmitOption(out, 'T', nullptr, false);
}

}  // namespace

void EmitOption(std::string& out, char letter, const char* value, bool alwaysQuote) {
    if (!value) {
        ansi_text::AppendFormat(out, "-%c ", letter);
        return;
    }
    const std::size_t length = std::strlen(value);
    const std::string_view text(value, length);
    // A tab separates arguments on reading as a blank does, so it is quoted the same way.
    const bool quote = !EnclosedInQuotes(value, length) && (alwaysQuote || text.find(' ') != std::string_view::npos ||
                                                            text.find('\t') != std::string_view::npos);
    // Appended piecewise rather than through "%s": the icon text alone can be large.
    out.push_back('-');
    out.push_back(letter);
    out.push_back(' ');
    if (quote) out.push_back('"');
    out.append(value, length);
    if (quote) out.push_back('"');
    out.push_back(' ');
}

std::string BuildOptionLine(const ConnectionSettings& s, const char* iconHexText) {
    std::string out;
    if (s.optionK) {
        EmitOption(out, 'K', nullptr, false);
    } else {
        if (s.localConnect) {
            EmitText(out, 'd', s.localTarget);
            if (!s.startDirectory.empty()) EmitText(out, 'S', s.startDirectory);
        } else {
            EmitRemoteOptions(out, s);
        }
        if (!s.serviceName.empty()) EmitText(out, 'v', s.serviceName);
        if (!s.answerBack.empty()) EmitText(out, 'a', s.answerBack);
    }
    if (!s.login.empty()) EmitText(out, 'u', s.login);

    if (iconHexText) {
        out += "\r\n";
        EmitOption(out, 'I', iconHexText, true);
    }

    if (!s.commandLine.empty()) {
        out += "-C ";
        out += s.commandLine.c_str();  // as "%s" would: up to a zero byte
    }
    return out;
}

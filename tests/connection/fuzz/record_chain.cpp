#include "record_chain.h"

#include <string>
#include <vector>

#include "command_line_split.h"
#include "common/ansi_text.h"
#include "connection/address_split.h"
#include "connection/argument_text.h"
#include "connection/option_line.h"
#include "connection/option_walk.h"
#include "not_fuzzed.h"

namespace record_chain {

namespace {

constexpr const char* kRecordPath = "C:\\files\\office.vqc";
constexpr const char* kProgramPath = "C:\\Windows\\explorer.exe";

// The writer escapes nothing, so a value holding a double quote does not survive, nor does
// one that is quoted (it holds a blank) and ends in a backslash, which then escapes the
// closing quote.
VQC_NOT_FUZZED bool WriterCanCarry(const std::string& value) {
    if (value.find('"') != std::string::npos) return false;
    const bool quoted = value.find_first_of(" \t") != std::string::npos;
    return !(quoted && value.back() == '\\');
}

VQC_NOT_FUZZED bool WriterCanCarryEveryValue(const ConnectionSettings& r) {
    // -d takes no argument, so the local target after it is met as a bare argument: one
    // that starts with '-' (a trimmed " -x") is taken for an option.
    if (r.localConnect && !r.optionK && !r.localTarget.empty() && r.localTarget[0] == '-') return false;
    // The route texts are read back through the address splitter, which cuts at the first
    // '@' and the first ':' of the whole text: a broker text keeps no user, so an '@' in it
    // is lost, and a host that starts with ':' (which the splitter gives when the colon comes
    // first) gains the written port.
    const auto has = [](const std::string& text, const char* bytes) {
        return text.find_first_of(bytes) != std::string::npos;
    };
    if (has(r.brokerHost, "@:") || has(r.proxyHost, ":") || has(r.proxyUser, "@:") ||
        (r.proxyUser.empty() && has(r.proxyHost, "@")))
        return false;
    // The route texts as the writer puts them together: user, host and port are one value.
    std::string proxy = r.proxyUser.empty() ? r.proxyHost : r.proxyUser + "@" + r.proxyHost;
    if (r.proxyPort != kDefaultProxyPort) proxy += ":" + std::to_string(r.proxyPort);
    std::string broker = r.brokerHost;
    if (r.brokerPort != kDefaultBrokerPort) broker += ":" + std::to_string(r.brokerPort);
    for (const std::string* value :
         {&r.host, &r.login, &r.serviceName, &r.answerBack, &r.startDirectory, &r.localTarget,
          static_cast<const std::string*>(&proxy), static_cast<const std::string*>(&broker)})
        if (!WriterCanCarry(*value)) return false;
    return true;
}

// The -C text as the reader gives it back: its elements joined by single blanks.
VQC_NOT_FUZZED std::string RejoinedCommandLine(const std::string& written, const std::string& commandLine) {
    if (commandLine.empty()) return commandLine;
    const std::string tail = written.substr(written.size() - commandLine.size());
    const std::vector<std::string> elements =
        fuzz_split::SplitCommandLine(argument_text::PrepareCommandLine(kProgramPath, true, tail));
    std::string joined;
    for (std::size_t i = 1; i < elements.size(); ++i) joined += (i > 1 ? " " : "") + elements[i];
    return joined;
}

// The record the second read gives back where the writer and the reader mean to differ:
// - the -C text comes back re-joined from its elements (quotes gone, runs of blanks one);
// - a local target with '@' comes back as the login (the reader tests for '@' first);
// - host and login come back trimmed (a bare user@host argument gives them untrimmed);
// - the broker letter comes back from the second character of the broker text;
// - -l is not written for clients before 620 nor for 640, so encrypt comes back clear, and
//   a -V the writer left out as the default comes back as not given.
VQC_NOT_FUZZED ConnectionSettings AsReadBack(const ConnectionSettings& written, const std::string& text) {
    ConnectionSettings expected = written;
    expected.commandLine = RejoinedCommandLine(text, written.commandLine);
    expected.host = ansi_text::Trimmed(written.host);
    expected.login = ansi_text::Trimmed(written.login);
    expected.brokerUpperF = written.brokerHost.size() > 1 && written.brokerHost[1] == 'F';
    if (written.localConnect && !written.optionK && written.localTarget.find('@') != std::string::npos) {
        // A local target with '@' is read as an address: its user becomes the login unless
        // a -u follows, and its host and port are not written for a local connection.
        std::string user;
        SplitAddress(written.localTarget.c_str(), &user, nullptr, nullptr);
        expected.localTarget.clear();
        if (written.login.empty()) expected.login = user;
    }
    const std::int32_t defaultPort = written.encrypt ? kDefaultEncryptedServicePort : kDefaultServicePort;
    if (written.serviceName.empty() || written.servicePort == defaultPort) expected.servicePort = kServicePortNotGiven;
    const std::int32_t v = written.clientVersion;
    if (v < 620 || v == 640) expected.encrypt = 0;
    return expected;
}

}  // namespace

ConnectionSettings ReadBytes(std::string_view bytes, std::int32_t clientVersion) {
    ConnectionSettings record(kRecordPath);
    record.clientVersion = clientVersion;
    if (bytes.empty()) return record;  // an empty file is refused and changes nothing
    const std::string line = argument_text::PrepareCommandLine(kProgramPath, true, bytes);
    const std::vector<std::string> elements = fuzz_split::SplitCommandLine(line);
    std::vector<const char*> argv;
    argv.reserve(elements.size() + 1);
    for (const std::string& element : elements) argv.push_back(element.c_str());
    argv.push_back(nullptr);
    LayOptions(argv.data(), static_cast<int>(elements.size()), record);
    return record;
}

std::string CheckChain(std::string_view input) {
    if (input.empty()) return std::string();
    const std::int32_t version = 600 + static_cast<unsigned char>(input[0]) % 130;
    const ConnectionSettings record = ReadBytes(input.substr(1), version);
    const std::string first = BuildOptionLine(record, nullptr);
    const std::string second = BuildOptionLine(ReadBytes(first, version), nullptr);
    // From a "-w '" on, the reader's quote rule turns every single quote into a double one,
    // which the writer cannot foresee either.
    if (!WriterCanCarryEveryValue(record) || first.find("-w '") != std::string::npos) return std::string();
    const std::string expected = BuildOptionLine(AsReadBack(record, first), nullptr);
    if (second == expected) return std::string();
    return "client " + std::to_string(version) + "\nfirst write:  [" + first + "]\nsecond write: [" + second +
           "]\nexpected:     [" + expected + "]\n";
}

}  // namespace record_chain

#include "connection/option_walk.h"

#include <cstring>
#include <string_view>

#include "common/ansi_text.h"
#include "connection/address_split.h"

namespace {

// The elements of a plain vector, without a virtual call per element: a -C line can hold
// hundreds of thousands of them.
class VectorSource {
public:
    VectorSource(const char* const* argv, int argc) : argv_(argv), argc_(argv ? argc : 0) {}
    int Count() const { return argc_; }
    const char* At(int index) const { return argv_[index]; }

private:
    const char* const* argv_;
    int argc_;
};

// Source: VectorSource or ArgumentSource, anything with Count() and At(index).
template <typename Source>
class Walk {
public:
    // withCommandText false: -C ends the walk without its text being made.
    Walk(Source& source, ConnectionSettings& settings, bool withCommandText)
        : source_(source), argc_(source.Count()), s_(settings), withCommandText_(withCommandText) {}

    IconInstruction Run() {
        s_.noOptionM = 1;
        for (index_ = 1; index_ < argc_; ++index_) {
            const char* element = At(index_);
            if (element[0] != '-') {
                TakeBareArgument(element);
                continue;
            }
            if (element[1] == 'C') {
                TakeCommandLine();
                break;
            }
            TakeOption(element);
        }
        if (s_.optionN && !s_.noOptionM) {
            s_.optionN = 0;
            s_.optionNM = 1;
        }
        return icon_;
    }

private:
    const char* At(int index) const {
        const char* element = source_.At(index);
        return element ? element : "";
    }

    // The next element, whatever it looks like; null when the line ends here.
    const char* NextArgument() {
        if (index_ + 1 >= argc_) return nullptr;
        return At(++index_);
    }

    static std::string TrimmedOrEmpty(const char* argument) {
        return argument ? ansi_text::Trimmed(argument) : std::string();
    }

    void TakeBareArgument(const char* element) {
        if (std::strchr(element, '@'))
            SplitAddress(element, &s_.login, &s_.host, &s_.servicePort);
        else if (s_.localConnect)
            s_.localTarget = ansi_text::Trimmed(element);
    }

    // Every later element, joined with single blanks, appended to what is there. A -C line
    // can run to megabytes of short tokens: the text is measured first and put into room of
    // exactly its size, because every fresh page a large buffer touches costs far more than
    // measuring the tokens again (a growing buffer touches about three times the pages).
    void TakeCommandLine() {
        if (!withCommandText_) {
            index_ = argc_;
            return;
        }
        const int first = index_ + 1;
        std::size_t length = 0;
        for (int i = first; i < argc_; ++i) length += std::strlen(At(i)) + (i > first ? 1 : 0);
        std::string& out = s_.commandLine;
        out.reserve(out.size() + length);
        for (int i = first; i < argc_; ++i) {
            if (i > first) out.push_back(' ');
            out.append(At(i));
        }
        index_ = argc_;
    }

    void TakeBroker() {
        SplitAddress(NextArgument(), nullptr, &s_.brokerHost, &s_.brokerPort);
        s_.route = kRouteBroker;
        // The letter is tested on the element reached, which is the consumed argument
        // (the option itself only when it had none): "-f xFoo" asks for -F, while
        // "-F broker" does not. Kept as the client's own files expect it.
        const char* reached = At(index_);
        if (reached[0] != '\0' && reached[1] == 'F') s_.brokerUpperF = 1;
    }

    void TakeOption(const char* element) {
        switch (element[1]) {
        case '-': s_.disguiseHttp = std::strcmp(element + 2, "disguise-http") == 0 ? 1 : 0; break;
        case 'F':
        case 'f': TakeBroker(); break;
        case 'I':
            icon_.kind = IconInstruction::Kind::Decode;
            icon_.text = NextArgument();
            break;
        case 'i':
            icon_.kind = IconInstruction::Kind::Clear;
            icon_.text = nullptr;
            break;
        case 'K':
            s_.optionK = 1;
            s_.noOptionM = 0;
            break;
        case 'L': s_.optionL = 1; break;
        case 'M': s_.noOptionM = 0; break;
        case 'N': s_.optionN = 1; break;
        case 'R': s_.optionR = 1; break;
        case 'S': s_.startDirectory = TrimmedOrEmpty(NextArgument()); break;
        case 's': s_.option_s = 1; break;
        case 'V': {
            const char* port = NextArgument();
            s_.servicePort = port ? ansi_text::ParseDecimal(port) : 0;
            break;
        }
        case 'a': s_.answerBack = TrimmedOrEmpty(NextArgument()); break;
        case 'c':
            SplitAddress(NextArgument(), &s_.proxyUser, &s_.proxyHost, &s_.proxyPort);
            s_.route = kRouteProxy;
            break;
        case 'd': s_.localConnect = 1; break;
        case 'h': s_.host = TrimmedOrEmpty(NextArgument()); break;
        case 'l': s_.encrypt = 1; break;
        case 'u': s_.login = TrimmedOrEmpty(NextArgument()); break;
        case 'v': s_.serviceName = TrimmedOrEmpty(NextArgument()); break;
        default: break;  // unknown letters (and '-' alone) take no argument
        }
    }

    Source& source_;
    int argc_;
    ConnectionSettings& s_;
    bool withCommandText_;
    int index_ = 1;
    IconInstruction icon_;
};

}  // namespace

IconInstruction LayOptions(const char* const* argv, int argc, ConnectionSettings& settings) {
    VectorSource source(argv, argc);
    return Walk<VectorSource>(source, settings, true).Run();
}

IconInstruction LayOptionsBeforeCommand(ArgumentSource& source, ConnectionSettings& settings) {
    return Walk<ArgumentSource>(source, settings, false).Run();
}

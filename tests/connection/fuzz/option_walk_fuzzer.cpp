// Any file text through the line-joining and quote rules, split at blanks, then walked
// onto a record; the record is then written back as an option line.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "connection/argument_text.h"
#include "connection/icon_stream.h"
#include "connection/option_line.h"
#include "connection/option_walk.h"

namespace {

struct Checked : IconImageSink {
    void TakeImage(std::uint32_t index, const std::uint8_t* bytes, std::uint32_t size) override {
        if (index > 1 || size > kMaxIconImageBytes) std::abort();
        volatile std::uint8_t sum = 0;
        for (std::uint32_t i = 0; i < size; ++i) sum = static_cast<std::uint8_t>(sum + bytes[i]);
    }
};

// The joining rule byte by byte, as plainly as it can be said, to hold the fast version to.
std::string JoinLinesPlainly(std::string_view text) {
    std::string joined;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        const bool hasNext = i + 1 < text.size();
        if (c == '\r' && hasNext && text[i + 1] == '\n') continue;
        if (c == '\r' || c == '\n') {
            if (hasNext && text[i + 1] == '-') joined.push_back(' ');
            continue;
        }
        joined.push_back(c);
    }
    return joined;
}

void ApplyQuoteRulePlainly(std::string& text) {
    const std::size_t start = text.find("-w '");
    if (start == std::string::npos) return;
    for (std::size_t i = start; i < text.size(); ++i)
        if (text[i] == '\'') text[i] = '"';
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const std::string line = argument_text::PrepareCommandLine("C:\\prog.exe", true, text);
    if (argument_text::JoinLines(text) != JoinLinesPlainly(text)) std::abort();
    if (argument_text::UpToFirstNul(text) != text.substr(0, text.find('\0'))) std::abort();
    std::string fast(text), plain(text);
    argument_text::ApplyQuoteRule(fast);
    ApplyQuoteRulePlainly(plain);
    if (fast != plain) std::abort();

    // Blanks and quotes split roughly as Windows does; the walk must cope with any list.
    std::vector<std::string> arguments;
    std::string current;
    bool quoted = false, any = false;
    for (char c : line) {
        if (c == '"') {
            quoted = !quoted;
            any = true;
        } else if ((c == ' ' || c == '\t') && !quoted) {
            if (any) arguments.push_back(current);
            current.clear();
            any = false;
        } else {
            current.push_back(c);
            any = true;
        }
    }
    if (any) arguments.push_back(current);
    std::vector<const char*> argv;
    for (const std::string& a : arguments) argv.push_back(a.c_str());
    argv.push_back(nullptr);

    ConnectionSettings settings;
    const IconInstruction icon = LayOptions(argv.data(), static_cast<int>(arguments.size()), settings);
    if (settings.optionN && settings.optionNM) std::abort();  // the fold leaves one of them
    if (settings.noOptionM > 1) std::abort();
    if (icon.kind == IconInstruction::Kind::Decode && icon.text) {
        Checked sink;
        ParseIconStream(icon.text, sink);
    }
    const std::string written = BuildOptionLine(settings, nullptr);
    if (!settings.commandLine.empty() && written.find("-C ") == std::string::npos) std::abort();
    return 0;
}

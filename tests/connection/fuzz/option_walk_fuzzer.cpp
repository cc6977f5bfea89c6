// Any file text through the line-joining and quote rules, split at blanks, then walked
// onto a record; the record is then written back as an option line.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include <sanitizer/asan_interface.h>

#include "connection/argument_text.h"
#include "connection/icon_stream.h"
#include "connection/option_line.h"
#include "connection/option_walk.h"
#include "not_fuzzed.h"

namespace {

struct Checked : IconImageSink {
    void TakeImage(std::uint32_t index, const std::uint8_t* bytes, std::uint32_t size) override {
        if (index > 1 || size > kMaxIconImageBytes) std::abort();
        volatile std::uint8_t sum = 0;
        for (std::uint32_t i = 0; i < size; ++i) sum = static_cast<std::uint8_t>(sum + bytes[i]);
    }
};

// The harness's own models and the splitting below are not instrumented (VQC_NOT_FUZZED)
// and their buffers live for the whole process, so a run allocates nothing of its own
// beyond what the code under test does.

// The joining rule byte by byte, as plainly as it can be said, to hold the fast version to:
// true when joined is text with the rule applied.
VQC_NOT_FUZZED bool JoinedPlainly(std::string_view text, std::string_view joined) {
    std::size_t out = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        const bool hasNext = i + 1 < text.size();
        if (c == '\r' && hasNext && text[i + 1] == '\n') continue;
        if (c == '\r' || c == '\n') {
            if (hasNext && text[i + 1] == '-') {
                if (out == joined.size() || joined[out] != ' ') return false;
                ++out;
            }
            continue;
        }
        if (out == joined.size() || joined[out] != c) return false;
        ++out;
    }
    return out == joined.size();
}

// The quote rule as plainly: true when quoted is text with every single quote from the
// first "-w '" on made a double quote.
VQC_NOT_FUZZED bool QuotedPlainly(std::string_view text, std::string_view quoted) {
    if (quoted.size() != text.size()) return false;
    const std::size_t start = text.find("-w '");
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char expected = (start != std::string_view::npos && i >= start && text[i] == '\'') ? '"' : text[i];
        if (quoted[i] != expected) return false;
    }
    return true;
}

// Ends the argument that began at start: its zero byte, then poison up to the next 8-byte
// boundary (at least one byte), where the next one begins.
VQC_NOT_FUZZED void EndArgument(std::vector<char>& buffer, std::size_t& start, std::size_t& end,
                                std::vector<std::size_t>& starts) {
    starts.push_back(start);
    buffer[end++] = '\0';
    const std::size_t next = (end + 8) & ~static_cast<std::size_t>(7);
    ASAN_POISON_MEMORY_REGION(buffer.data() + end, next - end);
    start = end = next;
}

// Blanks and quotes split roughly as Windows does; the walk must cope with any list. The
// arguments go one after another into one buffer, each ending in its zero byte and then at
// least one poisoned byte up to the next 8-byte boundary, so a read past an argument's end
// is reported as it would be if every argument had a block of its own.
VQC_NOT_FUZZED void SplitRoughly(std::string_view line, std::vector<char>& buffer, std::vector<const char*>& argv) {
    static std::vector<std::size_t> starts;
    ASAN_UNPOISON_MEMORY_REGION(buffer.data(), buffer.size());
    const std::size_t most = line.size() * 10 + 16;  // every byte an argument of its own
    if (buffer.size() < most) buffer.resize(most);
    starts.clear();
    std::size_t start = 0, end = 0;
    bool quoted = false, any = false;
    for (char c : line) {
        if (c == '"') {
            quoted = !quoted;
            any = true;
        } else if ((c == ' ' || c == '\t') && !quoted) {
            if (any) EndArgument(buffer, start, end, starts);
            any = false;
        } else {
            buffer[end++] = c;
            any = true;
        }
    }
    if (any) EndArgument(buffer, start, end, starts);
    ASAN_POISON_MEMORY_REGION(buffer.data() + end, buffer.size() - end);
    argv.clear();
    for (std::size_t offset : starts) argv.push_back(buffer.data() + offset);
    argv.push_back(nullptr);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const std::string line = argument_text::PrepareCommandLine("C:\\prog.exe", true, text);
    if (!JoinedPlainly(text, argument_text::JoinLines(text))) std::abort();
    if (argument_text::UpToFirstNul(text) != text.substr(0, text.find('\0'))) std::abort();
    static std::string fast;
    fast.assign(text);
    argument_text::ApplyQuoteRule(fast);
    if (!QuotedPlainly(text, fast)) std::abort();

    static std::vector<char> arguments;
    static std::vector<const char*> argv;
    SplitRoughly(line, arguments, argv);

    ConnectionSettings settings;
    const IconInstruction icon = LayOptions(argv.data(), static_cast<int>(argv.size() - 1), settings);
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

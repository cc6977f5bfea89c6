// The icon handler's road against the whole reader's walk, on any argument vector: walking
// only the elements before -C (asked for one at a time, as the icon handler converts them)
// must give the same icon instruction, with the same text, and every field but the -C text
// as the whole walk does; and it must never ask for an element after -C.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <string>
#include <string_view>
#include <vector>

#include "connection/argument_text.h"
#include "connection/option_line.h"
#include "connection/option_walk.h"

namespace {

// Hands out copies of the vector's elements, as the icon handler hands out each element
// converted on its own; remembers the furthest element asked for.
class CopyingSource : public ArgumentSource {
public:
    explicit CopyingSource(const std::vector<const char*>& argv) : argv_(argv) {}
    int Count() const override { return static_cast<int>(argv_.size()) - 1; }
    const char* At(int index) override {
        if (index < 1 || index >= Count()) std::abort();
        if (index > furthest) furthest = index;
        if (!argv_[static_cast<std::size_t>(index)]) return nullptr;
        copies_.emplace_back(argv_[static_cast<std::size_t>(index)]);
        return copies_.back().c_str();
    }
    int furthest = 0;

private:
    const std::vector<const char*>& argv_;
    std::deque<std::string> copies_;
};

// Blanks and quotes split roughly as Windows does.
std::vector<std::string> SplitRoughly(const std::string& line) {
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
    return arguments;
}

// Every element as its own text, cut at the bytes 0x01 (a 0x02 alone is a null element).
std::vector<std::string> SplitAtMarks(std::string_view text, std::vector<bool>& nulls) {
    std::vector<std::string> arguments(1, "C:\\prog.exe");
    nulls.assign(1, false);
    std::size_t start = 0;
    for (std::size_t i = 0; i <= text.size(); ++i) {
        if (i == text.size() || text[i] == '\x01') {
            const std::string_view piece = text.substr(start, i - start);
            nulls.push_back(piece == "\x02");
            arguments.emplace_back(piece);
            start = i + 1;
        }
    }
    return arguments;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    const std::string_view text(reinterpret_cast<const char*>(data) + 1, size - 1);
    std::vector<std::string> arguments;
    std::vector<bool> nulls;
    if (data[0] & 1) {
        arguments = SplitAtMarks(text, nulls);
    } else {
        arguments = SplitRoughly(argument_text::PrepareCommandLine("C:\\prog.exe", true, text));
        nulls.assign(arguments.size(), false);
    }
    std::vector<const char*> argv;
    for (std::size_t i = 0; i < arguments.size(); ++i) argv.push_back(nulls[i] ? nullptr : arguments[i].c_str());
    argv.push_back(nullptr);
    const int argc = static_cast<int>(arguments.size());

    ConnectionSettings whole("C:\\a.vqc");
    const IconInstruction wholeIcon = LayOptions(argv.data(), argc, whole);

    ConnectionSettings road("C:\\a.vqc");
    CopyingSource source(argv);
    const IconInstruction roadIcon = LayOptionsBeforeCommand(source, road);

    if (wholeIcon.kind != roadIcon.kind) std::abort();
    if ((wholeIcon.text == nullptr) != (roadIcon.text == nullptr)) std::abort();
    if (wholeIcon.text && std::strcmp(wholeIcon.text, roadIcon.text) != 0) std::abort();

    // Never an element after -C: when the whole walk made a -C text, the elements after the
    // furthest one the road asked for are exactly the ones that text was joined from.
    if (!whole.commandLine.empty()) {
        std::string after;
        for (int i = source.furthest + 1; i < argc; ++i) {
            if (i > source.furthest + 1) after.push_back(' ');
            const char* element = argv[static_cast<std::size_t>(i)];
            after.append(element ? element : "");
        }
        if (after != whole.commandLine) std::abort();
    }
    if (!road.commandLine.empty()) std::abort();

    // Every field but the -C text alike.
    whole.commandLine.clear();
    if (BuildOptionLine(whole, nullptr) != BuildOptionLine(road, nullptr)) std::abort();
    if (whole.noOptionM != road.noOptionM || whole.optionNM != road.optionNM || whole.route != road.route ||
        whole.localTarget != road.localTarget || whole.brokerUpperF != road.brokerUpperF)
        std::abort();
    return 0;
}

// Broken connection files fed to Read under Wine, from a fixed seed and in a bounded
// number: random bytes, truncated and corrupted icon blocks, huge image counts and sizes,
// strange bitmap headers, 2 MB lines, lone quotes and backslashes. None may crash, throw
// or hang; every non-empty file reads with result 0.
#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "connection/argument_vector.h"
#include "connection/vqc_file_info.h"
#include "test_files.h"
#include "tests/support/test_icons.h"

namespace {

constexpr unsigned kSeed = 20261121;

bool NoDebugger() { return false; }
void NoBreak() {}
void NoSleep(DWORD) {}
void NoAnnounce(const char*) {}

// Random bytes may well spell "--debug"; the wait must not stall the run.
class QuietDebuggerWait {
public:
    QuietDebuggerWait() : previous_(SetDebuggerWaitHooks({NoDebugger, NoBreak, NoSleep, NoAnnounce})) {}
    ~QuietDebuggerWait() { SetDebuggerWaitHooks(previous_); }

private:
    DebuggerWaitHooks previous_;
};

class Mutator {
public:
    Mutator() : random_(kSeed) {}

    std::uint32_t Number(std::uint32_t low, std::uint32_t high) {
        return std::uniform_int_distribution<std::uint32_t>(low, high)(random_);
    }
    template <typename T>
    const T& Pick(const std::vector<T>& choices) {
        return choices[Number(0, static_cast<std::uint32_t>(choices.size() - 1))];
    }

    std::string RandomBytes(std::size_t maxLength) {
        std::string bytes(Number(1, static_cast<std::uint32_t>(maxLength)), '\0');
        for (char& c : bytes) c = static_cast<char>(Number(0, 255));
        return bytes;
    }

    std::string FromAlphabet(const std::string& alphabet, std::size_t length) {
        std::string text(length, ' ');
        for (char& c : text) c = alphabet[Number(0, static_cast<std::uint32_t>(alphabet.size() - 1))];
        return text;
    }

    std::vector<std::uint8_t> ValidStream() {
        const IconImage images[] = {MakeTestIconImage(Pick<int>({16, 32, 48}), Pick<int>({1, 4, 8, 24, 32})),
                                    MakeTestIconImage(16, Pick<int>({1, 4, 8, 24, 32}))};
        return BuildIconStream(images, Number(1, 2));
    }

    static void Put32(std::vector<std::uint8_t>& s, std::size_t at, std::uint32_t value) {
        if (at + 4 > s.size()) return;
        for (int b = 0; b < 4; ++b) s[at + b] = static_cast<std::uint8_t>(value >> (8 * b));
    }

    std::uint32_t Extreme() {
        return Pick<std::uint32_t>(
            {0,      1,      2,       3,          12,         39,         40,
             41,     255,    256,     16347,      16348,      16349,      0x7FFF,
             0x8000, 0xFFFF, 0x10000, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF, Number(0, 0xFFFFFFFF)});
    }

    // A well-formed stream whose directory or first bitmap header says something odd.
    std::vector<std::uint8_t> OddStream() {
        std::vector<std::uint8_t> s = ValidStream();
        const std::size_t image = 6 + 16 * (s[4] | (s[5] << 8));
        switch (Number(0, 9)) {
        case 0:
            s[4] = static_cast<std::uint8_t>(Number(0, 255));
            s[5] = static_cast<std::uint8_t>(Number(0, 255));
            break;
        case 1: Put32(s, 6 + 8, Extreme()); break;      // image size
        case 2: Put32(s, image + 0, Extreme()); break;  // biSize
        case 3: Put32(s, image + 4, Extreme()); break;  // width
        case 4: Put32(s, image + 8, Extreme()); break;  // height
        case 5:
            s[image + 14] = static_cast<std::uint8_t>(Extreme());
            s[image + 15] = static_cast<std::uint8_t>(Extreme() >> 8);
            break;                                       // bits
        case 6: Put32(s, image + 16, Extreme()); break;  // compression
        case 7: Put32(s, image + 32, Extreme()); break;  // colours used
        case 8:
            Put32(s, image + 4, Extreme());
            Put32(s, image + 8, Extreme());
            break;
        default: s[image + 12] = static_cast<std::uint8_t>(Number(0, 255)); break;  // planes
        }
        return s;
    }

    std::string IconFile(const std::string& hex) {
        return Pick<std::string>({"-h server ", "", "-u bob "}) + "\r\n-I \"" + hex + "\" -C run";
    }

    std::string Next(int round) {
        switch (round % 9) {
        case 0: return RandomBytes(4096);
        case 1: {  // a good file, cut anywhere
            const std::string file = IconFile(HexTextOf(ValidStream()));
            return file.substr(0, Number(1, static_cast<std::uint32_t>(file.size())));
        }
        case 2: {  // a good icon block with random characters overwritten
            std::string hex = HexTextOf(ValidStream());
            for (std::uint32_t i = Number(1, 20); i > 0; --i)
                hex[Number(0, static_cast<std::uint32_t>(hex.size() - 1))] = static_cast<char>(Number(0, 255));
            return IconFile(hex);
        }
        case 3:
        case 4: return IconFile(HexTextOf(OddStream()));
        case 5:  // lone quotes, backslashes, dashes, line breaks
            return FromAlphabet("\"\\ -hCIiwcfFV@:'\r\nab0", Number(1, 2000));
        case 6: {  // options with strange arguments
            std::string line;
            for (std::uint32_t i = Number(1, 40); i > 0; --i)
                line += "-" + FromAlphabet("CFIKLMNRSTVacdfhilsuv-", 1) + " " +
                        FromAlphabet("ab@:\"\\ 0F", Number(0, 8)) + " ";
            return line;
        }
        case 7: {  // header fields out of every range
            std::vector<std::uint8_t> s = OddStream();
            s[0] = static_cast<std::uint8_t>(Number(0, 1));
            return IconFile(HexTextOf(s));
        }
        default: {  // the hex without its quotes or with its breaks in odd places
            std::string hex = HexTextOf(ValidStream());
            for (std::uint32_t i = Number(0, 5); i > 0; --i)
                hex.insert(Number(0, static_cast<std::uint32_t>(hex.size())),
                           Pick<std::string>({"\r\n", "\n-", "\"", " "}));
            return "-I " + hex;
        }
        }
    }

private:
    std::mt19937 random_;
};

// Reads content into a fresh record and reports what went wrong, if anything; true when
// the record came out with an icon.
bool ExpectReadsWithoutTrouble(const std::string& content, const std::string& what) {
    TempFile file("mutation", content);
    auto record = std::make_unique<VQCFileInfo>("x");
    std::int32_t result = -1;
    EXPECT_NO_THROW(result = record->Read(file.Path())) << what;
    EXPECT_EQ(result, 0) << what;
    return static_cast<bool>(record->icon);
}

}  // namespace

TEST(ReadMutations, BrokenFilesNeverCrashThrowOrFail) {
    const QuietDebuggerWait quiet;
    Mutator mutate;
    constexpr int kFiles = 9000;
    int withIcons = 0;
    for (int round = 0; round < kFiles; ++round) {
        withIcons += ExpectReadsWithoutTrouble(mutate.Next(round), "round " + std::to_string(round));
        if (HasFailure()) return;
    }
    // Many of the damaged blocks still decode, so the icon path was walked, not skipped.
    EXPECT_GT(withIcons, kFiles / 10);
}

TEST(ReadMutations, TwoMegabyteLinesRead) {
    const QuietDebuggerWait quiet;
    Mutator mutate;
    const std::size_t kTwoMegabytes = 2u << 20;
    const std::vector<std::string> files = {
        "-h server -C " + mutate.FromAlphabet("abc \"\\'", kTwoMegabytes),
        "-h " + std::string(kTwoMegabytes, 'h'),
        "-I " + std::string(kTwoMegabytes, 'F'),
        "-I \"000001000100" + std::string(kTwoMegabytes, '0') + "\"",
        std::string(kTwoMegabytes, '"'),
        std::string(kTwoMegabytes, '\\'),
        mutate.FromAlphabet("-\r\n", kTwoMegabytes),
        "-w '" + std::string(kTwoMegabytes, '\''),
    };
    for (std::size_t i = 0; i < files.size(); ++i) ExpectReadsWithoutTrouble(files[i], "file " + std::to_string(i));
}

TEST(ReadMutations, TwoMegabyteCommandLineIsKeptWhole) {
    const std::string words(2u << 20, 'w');
    TempFile file("mutation-big", "-C " + words);
    VQCFileInfo record("x");
    ASSERT_EQ(record.Read(file.Path()), 0);
    EXPECT_EQ(record.commandLine.size(), words.size());
}

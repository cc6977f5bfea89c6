// Measures VQCFileInfo::Read against its floor: the work no reader of the same file can
// avoid in this process (open, map and close the file, one copy of its bytes, the code-page
// conversions, CommandLineToArgvW, and the record's -C text and icons). Run by hand:
//   vqc_read_benchmark [ITERATIONS [ROUNDS] [breakdown | read-only | floor-only]]
// ITERATIONS are for the typical file (the 1 MB file gets a twentieth), spread over ROUNDS
// (default 7) that alternate the two sides. "breakdown" adds
// where Read's time goes; "read-only" and "floor-only" run one side alone, ITERATIONS times
// on the 1 MB file, so that what it costs the system can be counted from outside.
#include <windows.h>
#include <shellapi.h>

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <memory>
#include <string>
#include <vector>

#include "common/win_handles.h"
#include "connection/argument_vector.h"
#include "connection/icon_stream.h"
#include "connection/option_walk.h"
#include "connection/vqc_file_info.h"
#include "tests/support/file_bytes.h"
#include "tests/support/temp_folder.h"
#include "tests/support/test_icons.h"
#include "devtools/side_by_side.h"

namespace {

using side_by_side::Now;

struct Images {
    std::vector<std::uint8_t> large, small;
};

// What reading `path` leaves behind: the record's -C text and its two icons.
struct FloorResult {
    std::string commandText;
    HICON large = nullptr, small = nullptr;
    ~FloorResult() {
        if (large) DestroyIcon(large);
        if (small) DestroyIcon(small);
    }
};

// The unavoidable work of reading `path`, timed: the file's bytes copied once behind the
// program path, converted, split, converted back, and what a record keeps of them (the -C
// text and the icons). Its buffers are released inside the timing, as Read releases its
// own; what it leaves behind is released untimed, like the record.
double FloorOnce(const std::string& path, const Images& images) {
    char program[261] = {};
    GetModuleFileNameA(GetModuleHandleA(nullptr), program, sizeof(program));
    FloorResult result;
    const double start = Now();
    {
        std::string text;
        {
            const UniqueKernelHandle file(CreateFileA(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
                                                      OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
            const UniqueKernelHandle mapping(CreateFileMappingA(file.Get(), nullptr, PAGE_READONLY, 0, 0, nullptr));
            const DWORD size = GetFileSize(file.Get(), nullptr);
            const UniqueMappedView view(MapViewOfFileEx(mapping.Get(), FILE_MAP_READ, 0, 0, 0, nullptr));
            text.reserve(std::strlen(program) + 1 + size);
            text.append(program).append(1, ' ').append(static_cast<const char*>(view.Get()), size);
        }
        const int wideLength = MultiByteToWideChar(CP_ACP, 0, text.c_str(), -1, nullptr, 0);
        std::vector<wchar_t> wide(static_cast<std::size_t>(wideLength));
        MultiByteToWideChar(CP_ACP, 0, text.c_str(), -1, wide.data(), wideLength);
        int argc = 0;
        const UniqueLocalMemory args(reinterpret_cast<HLOCAL>(CommandLineToArgvW(wide.data(), &argc)));
        wchar_t** argv = static_cast<wchar_t**>(args.Get());
        std::size_t total = 0;
        for (int i = 0; i < argc; ++i)
            total += WideCharToMultiByte(CP_ACP, 0, argv[i], -1, nullptr, 0, nullptr, nullptr);
        std::vector<char> narrow(total);
        char* cursor = narrow.data();
        const char* commandStart = nullptr;
        for (int i = 0; i < argc; ++i) {
            cursor += WideCharToMultiByte(CP_ACP, 0, argv[i], -1, cursor,
                                          static_cast<int>(narrow.data() + total - cursor), nullptr, nullptr);
            if (!commandStart && std::wcscmp(argv[i], L"-C") == 0) commandStart = cursor;
        }
        // The arguments after -C lie side by side, each ending in a zero byte: one copy
        // with those bytes turned into blanks is the joined text.
        if (commandStart && commandStart < cursor) {
            result.commandText.assign(commandStart, static_cast<std::size_t>(cursor - commandStart - 1));
            std::replace(result.commandText.begin(), result.commandText.end(), '\0', ' ');
        }
        if (!images.large.empty()) {
            std::vector<std::uint8_t> a = images.large, b = images.small;
            result.large = CreateIconFromResourceEx(a.data(), static_cast<DWORD>(a.size()), TRUE, 0x00030000, 0, 0, 0);
            result.small = CreateIconFromResourceEx(b.data(), static_cast<DWORD>(b.size()), TRUE, 0x00030000,
                                                    GetSystemMetrics(SM_CXSMICON), GetSystemMetrics(SM_CYSMICON), 0);
        }
    }
    return Now() - start;
}

double ReadOnce(const std::string& path) {
    auto record = std::make_unique<VQCFileInfo>(path.c_str());
    const double start = Now();
    const std::int32_t result = record->Read(path.c_str());
    const double elapsed = Now() - start;
    if (result != 0) {
        std::fprintf(stderr, "Read failed: %lu\n", static_cast<unsigned long>(record->lastError));
        std::exit(1);
    }
    return elapsed;
}

double Median(std::vector<double> samples) {
    std::sort(samples.begin(), samples.end());
    return samples[samples.size() / 2];
}

// Where Read's time goes: splitting the text into arguments, and walking them.
void Breakdown(const std::string& path, int iterations) {
    std::string text;
    {
        const UniqueKernelHandle file(CreateFileA(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                                                  FILE_ATTRIBUTE_NORMAL, nullptr));
        text.resize(GetFileSize(file.Get(), nullptr));
        DWORD read = 0;
        ReadFile(file.Get(), text.data(), static_cast<DWORD>(text.size()), &read, nullptr);
    }
    std::vector<double> split, walk, prepare;
    for (int i = 0; i < iterations; ++i) {
        double begin = Now();
        const std::string line = argument_text::PrepareCommandLine("C:\\prog.exe", true, text.c_str());
        prepare.push_back(Now() - begin);
        int argc = 0;
        char** argv = nullptr;
        double start = Now();
        BuildArgumentVector(text.c_str(), &argc, &argv, true, nullptr, nullptr, nullptr);
        split.push_back(Now() - start);
        const UniqueLocalMemory block(argv);
        ConnectionSettings settings;
        start = Now();
        LayOptions(argv, argc, settings);
        walk.push_back(Now() - start);
    }
    std::printf("%-34s BuildArgumentVector %9.1f us (of which joining %7.1f us)   option walk %9.1f us\n", "",
                Median(split) * 1e6, Median(prepare) * 1e6, Median(walk) * 1e6);
}

// Rounds of `cycles` Reads and `cycles` floors, the side that goes first swapping every
// round so both see the same machine; reported as the other benchmarks report.
void Measure(const std::string& name, const char* measure, const std::string& path, const Images& images, int cycles,
             int rounds) {
    side_by_side::Comparison result;
    auto timeSide = [&](bool reader) {
        double total = 0;
        for (int i = 0; i < cycles; ++i) total += reader ? ReadOnce(path) : FloorOnce(path, images);
        (reader ? result.ours : result.floor).perCycle.push_back(total / cycles);
    };
    for (int round = 0; round < rounds; ++round) {
        timeSide(round % 2 == 0);
        timeSide(round % 2 != 0);
    }
    side_by_side::Report(name, "Read", "floor", result, rounds, cycles, measure);
}

}  // namespace

int main(int argc, char** argv) {
    const int iterations = argc > 1 ? std::max(1, std::atoi(argv[1])) : 2000;

    const IconImage images[] = {MakeTestIconImage(32, 4), MakeTestIconImage(16, 4)};
    const std::vector<std::uint8_t> stream = BuildIconStream(images, 2);
    const std::string typical =
        "-h server.example.com -V 5000 -l -c admin@proxy.example.com:3128 -v terminal "
        "-u bob \r\n-I \"" +
        HexTextOf(stream) + "\" -C bookmarks/main";
    const test_support::TempFolder folder("read-benchmark");
    const std::string typicalPath = folder.File("typical.vqc");
    WriteFileBytes(typicalPath, typical);

    std::string words = "-h server -C";
    while (words.size() < (1u << 20)) words += " word" + std::to_string(words.size() % 997);
    const std::string bigPath = folder.File("1mb.vqc");
    WriteFileBytes(bigPath, words);

    // One side alone on the 1 MB file, for counting what it costs outside the program
    // (perf stat -e minor-faults on this process, once with each side).
    const std::string side = argc > 2 && !std::isdigit(static_cast<unsigned char>(argv[2][0])) ? argv[2]
                             : argc > 3                                                        ? argv[3]
                                                                                               : "";
    if (side == "read-only" || side == "floor-only") {
        for (int i = 0; i < iterations; ++i) {
            if (side == "read-only")
                ReadOnce(bigPath);
            else
                FloorOnce(bigPath, Images{});
        }
        return 0;
    }

    Images typicalImages{images[0].dib, images[1].dib};
    for (int warm = 0; warm < 20; ++warm) {
        ReadOnce(typicalPath);
        FloorOnce(typicalPath, typicalImages);
    }
    const int rounds = argc > 2 ? std::max(1, std::atoi(argv[2])) : 7;
    Measure("Read of a typical file (" + std::to_string(typical.size()) + " bytes)", "read-typical", typicalPath,
            typicalImages, std::max(1, iterations / rounds), rounds);
    Measure("Read of a 1 MB -C line (" + std::to_string(words.size()) + " bytes)", "read-1mb", bigPath, Images{},
            std::max(1, iterations / 20 / rounds), rounds);

    if (side == "breakdown") {
        Breakdown(typicalPath, iterations);
        Breakdown(bigPath, std::max(5, iterations / 20));
    }

    return 0;
}

// VQCFileInfo::Read: maps the connection file, splits its text into arguments and lays
// the options over the record's fields; the embedded icon is decoded last. ReadForIcon takes
// the same road but converts and walks only the elements before -C.
#include <deque>
#include <new>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

#include "common/hresult_error.h"
#include "connection/argument_vector.h"
#include "connection/icon_codec.h"
#include "connection/mapped_file.h"
#include "connection/option_walk.h"
#include "connection/vqc_file_info.h"

namespace {

constexpr std::uint32_t kLargestReadableFile = 0x7FFFFFFF;

// The elements of a split line, each converted back to 8 bits only when the walk reaches it,
// to the very text the whole vector would hold; every text stays until the source goes.
class NarrowingSource : public ArgumentSource {
public:
    explicit NarrowingSource(const WideArguments& wide) : wide_(wide) {}
    int Count() const override { return wide_.Count(); }
    const char* At(int index) override {
        texts_.push_back(wide_.Narrow(index));
        return texts_.back().c_str();
    }

private:
    const WideArguments& wide_;
    std::deque<std::string> texts_;  // a deque keeps every text where it was
};

// Running out of memory for a text surfaces as the HRESULT the COM boundary hands on.
template <typename Read>
std::int32_t WithHResultErrors(Read read) {
    try {
        return read();
    } catch (const std::bad_alloc&) {
        throw HResultError(kResultOutOfMemory);
    } catch (const std::length_error&) {
        throw HResultError(kResultInvalidArg);
    }
}

}  // namespace

void VQCFileInfo::ApplyIconInstruction(const IconInstruction& instruction) {
    if (instruction.kind == IconInstruction::Kind::None) return;
    SetIcons(nullptr, nullptr);
    if (instruction.kind == IconInstruction::Kind::Decode) {
        DecodedIcon large, small;
        DecodeIconImages(instruction.text, &large, &small);
        icon.ResetDecoded(std::move(large));
        smallIcon.ResetDecoded(std::move(small));
    }
}

std::int32_t VQCFileInfo::Read(const char* path) {
    return WithHResultErrors([&] { return ReadMapped(path, true); });
}

std::int32_t VQCFileInfo::ReadForIcon(const char* path) {
    return WithHResultErrors([&] { return ReadMapped(path, false); });
}

std::int32_t VQCFileInfo::ReadMapped(const char* path, bool withCommandText) {
    int argc = 0;
    char** argv = nullptr;
    std::optional<WideArguments> wide;
    {
        MappedFile file;
        const bool opened = file.Open(path, MapAccess::ReadOnly);
        if (file.Size() == 0) {
            lastError = opened ? GetLastError() : file.Error();
            return 1;
        }
        if (!file.View() || file.Size() > kLargestReadableFile) throw HResultError(kResultInvalidArg);
        // The joined line is copied straight out of the view: a copy of the file's bytes of
        // their own first would double what a large file costs in fresh memory.
        const std::string_view bytes(static_cast<const char*>(file.View()), file.Size());
        if (withCommandText) {
            BuildArgumentVector(bytes, &argc, &argv, true, nullptr, nullptr, nullptr);
        } else {
            wide.emplace(bytes, true);
            // Every element that would start the debugger wait in the whole vector starts it
            // here too, converted or not.
            for (int i = 0; i < wide->Count(); ++i) {
                if (wide->StartsDebuggerWait(i)) WaitForDebugger();
            }
        }
    }  // unmapped and closed here, before the walk
    if (!withCommandText) {
        NarrowingSource source(*wide);
        ApplyIconInstruction(LayOptionsBeforeCommand(source, *this));
        return 0;
    }
    const UniqueLocalMemory vector(argv);  // the -I text points into it until decoded

    const IconInstruction icons = LayOptions(argv, argv ? argc : 0, *this);
    ApplyIconInstruction(icons);
    return 0;
}

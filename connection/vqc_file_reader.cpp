// VQCFileInfo::Read: maps the connection file, splits its text into arguments and lays
// the options over the record's fields; the embedded icon is decoded last.
#include <new>
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
    // Running out of memory for a text surfaces as the HRESULT the COM boundary hands on.
    try {
        return ReadMapped(path);
    } catch (const std::bad_alloc&) {
        throw HResultError(kResultOutOfMemory);
    } catch (const std::length_error&) {
        throw HResultError(kResultInvalidArg);
    }
}

std::int32_t VQCFileInfo::ReadMapped(const char* path) {
    int argc = 0;
    char** argv = nullptr;
    {
        MappedFile file;
        const bool opened = file.Open(path, MapAccess::ReadOnly);
        if (file.size() == 0) {
            lastError = opened ? GetLastError() : file.error();
            return 1;
        }
        if (!file.view() || file.size() > kLargestReadableFile) throw HResultError(kResultInvalidArg);
        // The joined line is copied straight out of the view: a copy of the file's bytes of
        // their own first would double what a large file costs in fresh memory.
        const std::string_view bytes(static_cast<const char*>(file.view()), file.size());
        BuildArgumentVector(bytes, &argc, &argv, true, nullptr, nullptr, nullptr);
    }  // unmapped and closed here, before the walk
    const UniqueLocalMemory vector(argv);  // the -I text points into it until decoded

    const IconInstruction icons = LayOptions(argv, argv ? argc : 0, *this);
    ApplyIconInstruction(icons);
    return 0;
}

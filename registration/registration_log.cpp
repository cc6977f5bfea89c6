#include "registration/registration_log.h"

#include <cstring>
#include <vector>

#include "common/win_handles.h"
#include "registration/log_text.h"

namespace {

constexpr char kLogFileVariable[] = "VOXA_REGISTRATE_LOG_FILE";
constexpr DWORD kLoadLibrarySearchDefaultDirs = 0x00001000;
constexpr int kKeyNameInformation = 3;
constexpr LONG kStatusBufferTooSmall = static_cast<LONG>(0xC0000023);

using NtQueryKeyFunction = LONG(NTAPI*)(HANDLE key, int informationClass, void* information, ULONG length,
                                        ULONG* resultLength);

// Kept for the life of the process once found; a failed look-up is tried again.
NtQueryKeyFunction g_ntQueryKey = nullptr;

NtQueryKeyFunction FindNtQueryKey() {
    if (!g_ntQueryKey) {
        if (HMODULE ntdll = LoadLibraryExA("ntdll.dll", nullptr, kLoadLibrarySearchDefaultDirs)) {
            g_ntQueryKey =
                reinterpret_cast<NtQueryKeyFunction>(reinterpret_cast<void*>(GetProcAddress(ntdll, "NtQueryKey")));
        }
    }
    return g_ntQueryKey;
}

std::string NativeKeyName(NtQueryKeyFunction ntQueryKey, HKEY key) {
    ULONG needed = 0;
    if (ntQueryKey(key, kKeyNameInformation, nullptr, 0, &needed) != kStatusBufferTooSmall) return {};
    std::vector<unsigned char> buffer((needed + 15) / 16 * 16);
    if (ntQueryKey(key, kKeyNameInformation, buffer.data(), static_cast<ULONG>(buffer.size()), &needed) < 0) {
        return {};
    }
    ULONG nameBytes = 0;
    std::memcpy(&nameBytes, buffer.data(), sizeof(nameBytes));
    const auto* name = reinterpret_cast<const wchar_t*>(buffer.data() + sizeof(ULONG));
    const int characters = static_cast<int>(nameBytes / 2);
    if (characters == 0) return {};
    const int size = WideCharToMultiByte(CP_ACP, 0, name, characters, nullptr, 0, nullptr, nullptr);
    if (size <= 0) return {};
    std::string converted(static_cast<std::size_t>(size), '\0');
    WideCharToMultiByte(CP_ACP, 0, name, characters, converted.data(), size, nullptr, nullptr);
    return converted;
}

}  // namespace

RegistrationLog::~RegistrationLog() { Flush(); }

void RegistrationLog::SetFileName() {
    fileName_.clear();
    const DWORD size = GetEnvironmentVariableA(kLogFileVariable, nullptr, 0);
    if (size == 0) return;
    std::string name(size, '\0');
    const DWORD length = GetEnvironmentVariableA(kLogFileVariable, name.data(), size);
    name.resize(length < size ? length : 0);
    fileName_ = std::move(name);
}

std::string RegistrationLog::GetRegistryKeyPath(HKEY key) {
    std::string path = "<unknown>";
    NtQueryKeyFunction ntQueryKey = FindNtQueryKey();
    if (key == HKEY_CLASSES_ROOT) return "HKEY_CLASSES_ROOT";
    if (key == HKEY_CURRENT_USER) return "HKEY_CURRENT_USER";
    if (key == HKEY_LOCAL_MACHINE) return "HKEY_LOCAL_MACHINE";
    if (ntQueryKey) {
        std::string native = NativeKeyName(ntQueryKey, key);
        if (!native.empty()) path = std::move(native);
    }
    return path;
}

std::string RegistrationLog::DescribeSystemError(DWORD errorCode) {
    char* buffer = nullptr;
    const DWORD length =
        FormatMessageA(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM, nullptr, errorCode,
                       MAKELANGID(LANG_NEUTRAL, SUBLANG_DEFAULT), reinterpret_cast<char*>(&buffer), 0, nullptr);
    UniqueLocalMemory owner(buffer);
    return ErrorTextOrPlaceholder(length && buffer ? std::string_view(buffer, length) : std::string_view());
}

void RegistrationLog::LogKeyCreateFailure(HKEY parentKey, const char* keyName, DWORD errorCode) {
    const std::string path = RegistryChildPath(GetRegistryKeyPath(parentKey), keyName);
    messages_.push_back(
        KeyCreateFailureLine(path, static_cast<std::int32_t>(errorCode), DescribeSystemError(errorCode)));
}

void RegistrationLog::LogValueSetFailure(HKEY key, const char* valueName, const char* data, DWORD errorCode) {
    const std::string path = RegistryChildPath(GetRegistryKeyPath(key), valueName);
    messages_.push_back(ValueSetFailureLine(path, data ? data : "", static_cast<std::int32_t>(errorCode),
                                            DescribeSystemError(errorCode)));
}

void RegistrationLog::Flush() noexcept {
    if (fileName_.empty() || messages_.empty()) return;
    try {
        // Replaces an existing file: each run leaves only its own messages. Others may
        // read and write it meanwhile. Bytes are written as they are, so a line ends in
        // exactly one line feed.
        const std::string contents = LogFileContents(messages_);
        const UniqueKernelHandle file(CreateFileA(fileName_.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                                  nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
        if (!file) return;
        DWORD written = 0;
        WriteFile(file.Get(), contents.data(), static_cast<DWORD>(contents.size()), &written, nullptr);
    } catch (...) {
        // A log that cannot be written loses its messages silently.
    }
}

// Real registry keys and files for the registration and DLL tests. Tests run in parallel
// in one prefix, so each one gets a private key under HKEY_CURRENT_USER and, where it
// registers, HKEY_CLASSES_ROOT pointed at that key for the length of the test.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

#include "common/win_handles.h"
#include "tests/support/file_bytes.h"
#include "tests/support/temp_folder.h"

namespace test_support {

// Deletes a key and everything below it (test clean-up only).
inline void RemoveTree(HKEY parent, const std::string& name) {
    RegDeleteTreeA(parent, name.c_str());
    RegDeleteKeyA(parent, name.c_str());
}

// A private key HKCU\Software\VqcTests\<tag>, deleted with its subtree at the end.
class PrivateKey {
public:
    explicit PrivateKey(const std::string& tag, DWORD options = REG_OPTION_NON_VOLATILE)
        : path_("Software\\VqcTests\\" + UniqueTag(tag)) {
        HKEY key = nullptr;
        RegCreateKeyExA(HKEY_CURRENT_USER, path_.c_str(), 0, nullptr, options, KEY_ALL_ACCESS, nullptr, &key, nullptr);
        key_.Reset(key);
    }
    ~PrivateKey() {
        key_.Reset();
        RemoveTree(HKEY_CURRENT_USER, path_);
    }
    PrivateKey(const PrivateKey&) = delete;
    PrivateKey& operator=(const PrivateKey&) = delete;

    HKEY Get() const { return key_.Get(); }
    const std::string& Path() const { return path_; }

private:
    std::string path_;
    UniqueRegKey key_;
};

// HKEY_CLASSES_ROOT redirected to a private key while the object lives.
class PrivateClassesRoot {
public:
    explicit PrivateClassesRoot(const std::string& tag, DWORD options = REG_OPTION_NON_VOLATILE) : key_(tag, options) {
        RegOverridePredefKey(HKEY_CLASSES_ROOT, key_.Get());
    }
    ~PrivateClassesRoot() { RegOverridePredefKey(HKEY_CLASSES_ROOT, nullptr); }
    PrivateClassesRoot(const PrivateClassesRoot&) = delete;
    PrivateClassesRoot& operator=(const PrivateClassesRoot&) = delete;

    HKEY Get() const { return key_.Get(); }
    const std::string& Path() const { return key_.Path(); }

private:
    PrivateKey key_;
};

// HKEY_CURRENT_USER redirected to a private key while the object lives, for code that reads
// fixed keys of the user's hive while other test processes share the registry.
class PrivateCurrentUser {
public:
    explicit PrivateCurrentUser(const std::string& tag) : key_(tag) {
        RegOverridePredefKey(HKEY_CURRENT_USER, key_.Get());
    }
    ~PrivateCurrentUser() { RegOverridePredefKey(HKEY_CURRENT_USER, nullptr); }
    PrivateCurrentUser(const PrivateCurrentUser&) = delete;
    PrivateCurrentUser& operator=(const PrivateCurrentUser&) = delete;

    HKEY Get() const { return key_.Get(); }

private:
    PrivateKey key_;
};

inline bool KeyExists(HKEY root, const std::string& path) {
    HKEY key = nullptr;
    if (RegOpenKeyExA(root, path.c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS) return false;
    RegCloseKey(key);
    return true;
}

inline void CreateKey(HKEY root, const std::string& path, DWORD options = REG_OPTION_NON_VOLATILE) {
    HKEY key = nullptr;
    if (RegCreateKeyExA(root, path.c_str(), 0, nullptr, options, KEY_ALL_ACCESS, nullptr, &key, nullptr) ==
        ERROR_SUCCESS) {
        RegCloseKey(key);
    }
}

// A value as the registry holds it: its type, its bytes and their count.
struct StoredValue {
    LONG result = -1;
    DWORD type = 0xdeadbeef;
    DWORD byteCount = 0xdeadbeef;
    std::string bytes;
    // The text without its terminating zero.
    std::string Text() const { return std::string(bytes.c_str()); }
};

inline StoredValue ReadValue(HKEY root, const std::string& keyPath, const char* valueName) {
    StoredValue value;
    HKEY key = nullptr;
    value.result = RegOpenKeyExA(root, keyPath.c_str(), 0, KEY_READ, &key);
    if (value.result != ERROR_SUCCESS) return value;
    char buffer[2048];
    DWORD size = sizeof(buffer);
    value.result = RegQueryValueExA(key, valueName, nullptr, &value.type, reinterpret_cast<BYTE*>(buffer), &size);
    RegCloseKey(key);
    if (value.result == ERROR_SUCCESS) {
        value.byteCount = size;
        value.bytes.assign(buffer, size);
    }
    return value;
}

// Number of subkeys and values of a key; -1 when it cannot be opened.
inline int SubkeyCount(HKEY root, const std::string& path) {
    HKEY key = nullptr;
    if (RegOpenKeyExA(root, path.c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS) return -1;
    DWORD subkeys = 0;
    RegQueryInfoKeyA(key, nullptr, nullptr, nullptr, &subkeys, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                     nullptr);
    RegCloseKey(key);
    return static_cast<int>(subkeys);
}

// The kernel's name of an open key, as NtQueryKey reports it (class 3).
inline std::string NativeKeyName(HKEY key) {
    using NtQueryKeyFunction = LONG(NTAPI*)(HANDLE, int, void*, ULONG, ULONG*);
    auto query = reinterpret_cast<NtQueryKeyFunction>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleA("ntdll.dll"), "NtQueryKey")));
    std::vector<unsigned char> buffer(4096);
    ULONG needed = 0;
    if (!query || query(key, 3, buffer.data(), static_cast<ULONG>(buffer.size()), &needed) < 0) return "<none>";
    ULONG bytes = 0;
    memcpy(&bytes, buffer.data(), sizeof(bytes));
    std::wstring wide(reinterpret_cast<const wchar_t*>(buffer.data() + sizeof(ULONG)), bytes / 2);
    std::string narrow(wide.size() * 2 + 1, '\0');
    const int length = WideCharToMultiByte(CP_ACP, 0, wide.data(), static_cast<int>(wide.size()), narrow.data(),
                                           static_cast<int>(narrow.size()), nullptr, nullptr);
    narrow.resize(length > 0 ? length : 0);
    return narrow;
}

inline std::string NativeKeyName(HKEY root, const std::string& path) {
    HKEY key = nullptr;
    if (RegOpenKeyExA(root, path.c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS) return "<none>";
    std::string name = NativeKeyName(key);
    RegCloseKey(key);
    return name;
}

// What FormatMessageA says about an error on this machine.
inline std::string SystemErrorText(DWORD code) {
    char* buffer = nullptr;
    const DWORD length =
        FormatMessageA(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM, nullptr, code,
                       MAKELANGID(LANG_NEUTRAL, SUBLANG_DEFAULT), reinterpret_cast<char*>(&buffer), 0, nullptr);
    std::string text = length && buffer ? std::string(buffer, length) : std::string();
    if (buffer) LocalFree(buffer);
    return text.empty() ? "??" : text;
}

inline bool FileExists(const std::string& path) { return GetFileAttributesA(path.c_str()) != INVALID_FILE_ATTRIBUTES; }

// Sets an environment variable for the test's length, then restores "unset".
class ScopedEnvironment {
public:
    ScopedEnvironment(const char* name, const char* value) : name_(name) { SetEnvironmentVariableA(name, value); }
    ~ScopedEnvironment() { SetEnvironmentVariableA(name_.c_str(), nullptr); }
    ScopedEnvironment(const ScopedEnvironment&) = delete;
    ScopedEnvironment& operator=(const ScopedEnvironment&) = delete;

private:
    std::string name_;
};

}  // namespace test_support

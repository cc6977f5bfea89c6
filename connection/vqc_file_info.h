// VQCFileInfo: the settings record of one connection file, shared by the shell extension
// object and every page of one property sheet. It completes ConnectionSettings with a
// plain (single-threaded) IUnknown reference count and ownership of the file's two icons.
#pragma once

#include <windows.h>
#include <unknwn.h>

#include <cstdint>

#include "common/win_handles.h"
#include "connection/connection_settings.h"
#include "connection/file_replacement.h"
#include "connection/record_icon.h"

struct IconInstruction;

class VQCFileInfo : public IUnknown, public ConnectionSettings {
public:
    explicit VQCFileInfo(const char* path);
    virtual ~VQCFileInfo();
    VQCFileInfo(const VQCFileInfo&) = delete;
    VQCFileInfo& operator=(const VQCFileInfo&) = delete;

    // The record answers no interface at all, IUnknown included; *object is left alone.
    STDMETHODIMP QueryInterface(REFIID iid, void** object) override;
    // Plain, non-atomic counting: the record lives on the shell's UI thread only.
    STDMETHODIMP_(ULONG) AddRef() override;
    STDMETHODIMP_(ULONG) Release() override;

    // Reads the connection file at path over the current fields; 0 on success, 1 on
    // failure with the Windows error in lastError. Raises HResultError (E_INVALIDARG for a
    // file of 2 GiB or more or a view that cannot be had, E_OUTOFMEMORY without memory).
    std::int32_t Read(const char* path);
    // Read as the icon handler needs it: the file is opened, mapped and split as Read does
    // it, but only the elements before -C are converted back to 8 bits and walked. Every
    // field and both icons come out as Read makes them, except commandLine (the -C text),
    // which is left as it is. Results and errors as Read.
    std::int32_t ReadForIcon(const char* path);
    // Replaces the file at path with the record's option line; 0 or 1 as Read. The file is
    // created anew and written; when that write fails, the bytes it held before are put
    // back. How it ended is in lastWrite.
    std::int32_t Write(const char* path);

    // Whether the user is in a Windows domain. Windows is asked once per record; the
    // answer is kept for the record's life.
    bool IsInDomain();

    // Replaces both icons, destroying the ones held.
    void SetIcons(HICON large, HICON small) noexcept;

    // Carries out the reader's last -I or -i on the two icons.
    void ApplyIconInstruction(const IconInstruction& instruction);

    ULONG refCount = 0;
    RecordIcon icon;       // the file's own icon at its natural size (-I)
    RecordIcon smallIcon;  // the same icon at the system small-icon size
    // How the last Write left the file: the pages say more when not even its old content
    // could be put back.
    Replacement lastWrite = Replacement::Written;

private:
    std::int32_t ReadMapped(const char* path, bool withCommandText);
};

// The domain check asks Windows through this function (GetUserNameExA by default).
// Tests substitute a counting probe; the previous function is returned.
using DomainNameQuery = BOOLEAN(WINAPI*)(int nameFormat, LPSTR buffer, PULONG size);
DomainNameQuery SetDomainNameQuery(DomainNameQuery query) noexcept;

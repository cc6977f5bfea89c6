// VQCProp: the one COM class of the DLL. The shell uses it as the property-sheet handler
// of a ".vqc" file (IShellExtInit, IShellPropSheetExt) and as its icon handler
// (IPersistFile, IExtractIconA).
#pragma once

#include <windows.h>
#include <shlobj.h>

#include <string>

#include "common/com_object.h"
#include "common/com_ptr.h"
#include "connection/vqc_file_info.h"

// The class's own interface; its IID is the class id itself. It adds no methods.
struct IVQCProp : public IUnknown {};

class VQCProp : public ComObject<VQCProp, IVQCProp, IShellExtInit, IShellPropSheetExt, IPersistFile, IExtractIconA> {
public:
    // The map's instance creator: aggregation is refused by the factory before this.
    static HRESULT CreateInstance(IUnknown* outer, REFIID iid, void** object);

    // The interface map walk, in the order IVQCProp (by the class id), IShellExtInit,
    // IShellPropSheetExt, IPersistFile, IExtractIconA; a null object is E_INVALIDARG.
    static HRESULT InternalQueryInterface(VQCProp* object, REFIID iid, void** result);

    // IUnknown: the map walk; AddRef and Release are ComObject's, plain counting (the object
    // lives on one apartment thread).
    STDMETHODIMP QueryInterface(REFIID iid, void** object) override;

    // IShellExtInit: accepts a selection of exactly one file and keeps its path.
    STDMETHODIMP Initialize(PCIDLIST_ABSOLUTE folder, IDataObject* dataObject, HKEY progId) override;

    // IShellPropSheetExt.
    STDMETHODIMP AddPages(LPFNSVADDPROPSHEETPAGE addPage, LPARAM lParam) override;
    STDMETHODIMP ReplacePage(EXPPS pageId, LPFNSVADDPROPSHEETPAGE replaceWith, LPARAM lParam) override;

    // IPersistFile: only Load, the icon handler's entry, does anything.
    STDMETHODIMP GetClassID(CLSID* classId) override;
    STDMETHODIMP IsDirty() override;
    STDMETHODIMP Load(LPCOLESTR fileName, DWORD mode) override;
    STDMETHODIMP Save(LPCOLESTR fileName, BOOL remember) override;
    STDMETHODIMP SaveCompleted(LPCOLESTR fileName) override;
    STDMETHODIMP GetCurFile(LPOLESTR* fileName) override;

    // IExtractIconA: the file's own icon when it carries one, the DLL's icon otherwise.
    STDMETHODIMP GetIconLocation(UINT flags, PSTR iconFile, UINT maxChars, int* index, UINT* outFlags) override;
    STDMETHODIMP Extract(PCSTR file, UINT index, HICON* largeIcon, HICON* smallIcon, UINT size) override;

    // What the object currently serves, for the shell's sake and for tests. Load reads the
    // record for the icon: every field but the -C text, which only the pages show; a file
    // whose data is not on the disk (a cloud placeholder, an offline file) is left unread.
    const std::string& FileName() const noexcept { return fileName_; }
    VQCFileInfo* FileRecord() const noexcept { return fileRecord_.Get(); }

protected:
    VQCProp() noexcept;
    virtual ~VQCProp();

private:
    friend ComObject;

    VQCProp(const VQCProp&) = delete;
    VQCProp& operator=(const VQCProp&) = delete;

    ULONG refCount_ = 0;
    static constexpr auto kReferenceCount = &VQCProp::refCount_;
    ComPtr<IDataObject> dataObject_;
    ComPtr<VQCFileInfo> fileRecord_;
    std::string fileName_;
};

#include "shellext/vqcprop.h"

#include <climits>
#include <cstring>
#include <memory>
#include <new>

#include <shellapi.h>

#include "common/ansi_text.h"
#include "common/com_boundary.h"
#include "common/hresult_error.h"
#include "pages/connection_page.h"
#include "pages/option_page.h"
#include "pages/proxy_page.h"
#include "resources/local_string_cache.h"
#include "shellext/client_probe.h"
#include "shellext/code_page_path.h"
#include "shellext/vqcprop_ids.h"
#include "shellext/vqcprop_module.h"

namespace {

// The count an object is given while it destroys itself, so that a stray AddRef and
// Release inside its destructor cannot delete it a second time.
constexpr ULONG kRefCountWhileDestroying = static_cast<ULONG>(-(LONG_MAX / 2));

constexpr CLIPFORMAT kClipboardHDrop = 15;  // CF_HDROP
constexpr UINT kQueryFileCount = 0xFFFFFFFF;

// The client version from which the sheet offers the Proxy page.
constexpr std::int32_t kProxyPageFromVersion = 620;

// Creates one page around the record and hands it to the shell at once. A page the shell
// refuses is deleted again (its sheet handle is left as it is); the caller goes on with the
// next page either way.
template <typename Page>
void OfferPage(VQCFileInfo* record, LPFNSVADDPROPSHEETPAGE addPage, LPARAM lParam) {
    std::unique_ptr<Page> page(new Page(record, GetLocalString(Page::kTitleStringId)));
    const HPROPSHEETPAGE handle = page->CreatePage();
    if (!handle) throw std::bad_alloc();  // comctl32 could not copy the description
    // From here the sheet's release callback owns the page, if the shell keeps it.
    Page* offered = page.release();
    // Without a callback every page counts as refused.
    if (!addPage || !addPage(handle, lParam)) delete offered;
}

// Sets the string's length to that of the zero-terminated text the API left in it.
void SetLengthToText(std::string& text) {
    const std::size_t length = std::strlen(text.c_str());
    if (length > text.size()) throw HResultError(kResultInvalidArg);
    text.resize(length);
}

}  // namespace

HRESULT VQCProp::CreateInstance(IUnknown* outer, REFIID iid, void** object) {
    if (!object) return E_POINTER;
    *object = nullptr;
    if (outer) return CLASS_E_NOAGGREGATION;
    auto* created = new (std::nothrow) VQCProp();
    if (!created) return E_OUTOFMEMORY;
    created->AddRef();
    const HRESULT result = created->QueryInterface(iid, object);
    created->Release();
    return result;
}

VQCProp::VQCProp() noexcept { TheModule().Lock(); }

VQCProp::~VQCProp() {
    refCount_ = kRefCountWhileDestroying;
    TheModule().Unlock();
    // The members then go in reverse order: file name, file record, data object.
}

HRESULT VQCProp::InternalQueryInterface(VQCProp* object, REFIID iid, void** result) {
    if (!object) return E_INVALIDARG;
    if (!result) return E_POINTER;
    IUnknown* answer = nullptr;
    if (IsEqualIID(iid, IID_IUnknown) || IsEqualIID(iid, IID_IVQCProp)) {
        answer = static_cast<IVQCProp*>(object);
    } else if (IsEqualIID(iid, IID_IShellExtInit)) {
        answer = static_cast<IShellExtInit*>(object);
    } else if (IsEqualIID(iid, IID_IShellPropSheetExt)) {
        answer = static_cast<IShellPropSheetExt*>(object);
    } else if (IsEqualIID(iid, IID_IPersistFile)) {
        answer = static_cast<IPersistFile*>(object);
    } else if (IsEqualIID(iid, IID_IExtractIconA)) {
        answer = static_cast<IExtractIconA*>(object);
    }
    *result = answer;
    if (!answer) return E_NOINTERFACE;
    answer->AddRef();
    return S_OK;
}

STDMETHODIMP VQCProp::QueryInterface(REFIID iid, void** object) { return InternalQueryInterface(this, iid, object); }

STDMETHODIMP_(ULONG) VQCProp::AddRef() { return ++refCount_; }

STDMETHODIMP_(ULONG) VQCProp::Release() {
    const ULONG count = --refCount_;
    if (count == 0) delete this;
    return count;
}

STDMETHODIMP VQCProp::Initialize(PCIDLIST_ABSOLUTE, IDataObject* dataObject, HKEY) {
    return GuardComCall([&]() -> HRESULT {
        if (dataObject != dataObject_.Get()) dataObject_ = ComPtr<IDataObject>(dataObject);
        if (!dataObject_) return E_FAIL;

        FORMATETC format = {kClipboardHDrop, nullptr, DVASPECT_CONTENT, -1, TYMED_HGLOBAL};
        STGMEDIUM medium = {};
        if (FAILED(dataObject_->GetData(&format, &medium))) return E_FAIL;
        // Any other medium than the global memory asked for carries no drop list.
        if (medium.tymed != TYMED_HGLOBAL || !medium.hGlobal) return E_FAIL;
        // The medium is deliberately not handed back with ReleaseStgMedium.
        auto drop = static_cast<HDROP>(medium.hGlobal);

        // Several files selected: no pages from this extension.
        if (DragQueryFileA(drop, kQueryFileCount, nullptr, 0) != 1) return E_FAIL;

        const UINT length = DragQueryFileA(drop, 0, nullptr, 0);
        fileName_.assign(length + 1, '\0');
        DragQueryFileA(drop, 0, fileName_.data(), length + 1);
        SetLengthToText(fileName_);

        // A name the code page cannot spell is reached by its short path.
        const UINT wideLength = DragQueryFileW(drop, 0, nullptr, 0);
        if (wideLength > 0) {
            std::wstring wide(wideLength + 1, L'\0');
            DragQueryFileW(drop, 0, wide.data(), wideLength + 1);
            fileName_ = PathForCodePage(wide.c_str(), CP_ACP, std::move(fileName_));
        }
        return S_OK;
    });
}

STDMETHODIMP VQCProp::AddPages(LPFNSVADDPROPSHEETPAGE addPage, LPARAM lParam) {
    // Pages handed over before a failure stay with the shell. Exhausted memory is the one
    // failure with an answer of its own; anything else is E_FAIL.
    const HRESULT result = GuardComCall([&]() -> HRESULT {
        auto* created = new (std::nothrow) VQCFileInfo(fileName_.c_str());
        if (!created) return E_OUTOFMEMORY;
        // This method's own reference; each page takes one more, and the record dies with
        // the last page.
        const ComPtr<VQCFileInfo> record(created);

        std::string clientPath;
        if (FindClientInstallation(TheModule().instance, &clientPath)) {
            record->clientPath = ansi_text::Trimmed(clientPath);
            record->clientVersion = ReadClientVersion(clientPath.c_str());
        }

        // A file that cannot be read still gets its pages, one too large to map included;
        // only exhausted memory ends the method.
        try {
            record->Read(record->filePath.c_str());
        } catch (const HResultError& error) {
            if (error.Code() == kResultOutOfMemory) throw;
        }

        OfferPage<CVQCConnectionPage>(record.Get(), addPage, lParam);
        if (record->clientVersion >= kProxyPageFromVersion) {
            OfferPage<CVQCProxyPage>(record.Get(), addPage, lParam);
        }
        OfferPage<CVQCOptionPage>(record.Get(), addPage, lParam);
        return S_OK;
    });
    return SUCCEEDED(result) || result == E_OUTOFMEMORY ? result : E_FAIL;
}

STDMETHODIMP VQCProp::ReplacePage(EXPPS, LPFNSVADDPROPSHEETPAGE, LPARAM) { return E_NOTIMPL; }

STDMETHODIMP VQCProp::GetClassID(CLSID*) { return E_NOTIMPL; }

STDMETHODIMP VQCProp::IsDirty() { return E_NOTIMPL; }

STDMETHODIMP VQCProp::Load(LPCOLESTR fileName, DWORD) {
    return GuardComCall([&]() -> HRESULT {
        if (!fileName) return E_INVALIDARG;

        const int size = WideCharToMultiByte(CP_THREAD_ACP, 0, fileName, -1, nullptr, 0, nullptr, nullptr);
        if (size < 1) {
            fileName_.clear();
        } else {
            fileName_.assign(static_cast<std::size_t>(size), '\0');
            WideCharToMultiByte(CP_THREAD_ACP, 0, fileName, -1, fileName_.data(), size, nullptr, nullptr);
            SetLengthToText(fileName_);
            // A name the code page cannot spell is reached by its short path.
            fileName_ = PathForCodePage(fileName, CP_THREAD_ACP, std::move(fileName_));
        }

        auto* record = new (std::nothrow) VQCFileInfo(fileName_.c_str());
        if (!record) return E_OUTOFMEMORY;
        fileRecord_ = ComPtr<VQCFileInfo>(record);  // the new one is referenced before the old goes

        // An unreadable file still answers S_OK; the icon then falls back to the DLL's. Only
        // the pages show the -C text, so the icon's read leaves it out.
        fileRecord_->ReadForIcon(fileRecord_->filePath.c_str());
        return S_OK;
    });
}

STDMETHODIMP VQCProp::Save(LPCOLESTR, BOOL) { return E_NOTIMPL; }

STDMETHODIMP VQCProp::SaveCompleted(LPCOLESTR) { return E_NOTIMPL; }

STDMETHODIMP VQCProp::GetCurFile(LPOLESTR*) { return E_NOTIMPL; }

STDMETHODIMP VQCProp::GetIconLocation(UINT, PSTR iconFile, UINT maxChars, int* index, UINT* outFlags) {
    return GuardComCall([&]() -> HRESULT {
        UINT answerFlags = GIL_PERINSTANCE;
        if (index) *index = 0;
        if (fileRecord_ && fileRecord_->icon) {
            // The shell then asks Extract for the icon and keeps no copy of it.
            if (iconFile) lstrcpynA(iconFile, fileName_.c_str(), static_cast<int>(maxChars));
            answerFlags |= GIL_NOTFILENAME | GIL_DONTCACHE;
        } else if (iconFile) {
            // The DLL's first icon group, index 0; an empty name when the system cannot give
            // it, never what the buffer held before.
            if (maxChars > 0) iconFile[0] = '\0';
            GetModuleFileNameA(TheModule().instance, iconFile, maxChars);
        }
        if (outFlags) *outFlags = answerFlags;
        return S_OK;
    });
}

STDMETHODIMP VQCProp::Extract(PCSTR, UINT, HICON* largeIcon, HICON* smallIcon, UINT) {
    return GuardComCall([&]() -> HRESULT {
        if (!fileRecord_) return S_FALSE;  // the shell extracts the icon itself
        // The handles the reader made go to the shell, which destroys them; the record keeps
        // their images and makes its own again only if something asks (a second Extract, a page).
        if (fileRecord_->smallIcon && smallIcon) *smallIcon = fileRecord_->smallIcon.HandOut();
        if (!fileRecord_->icon) return S_FALSE;
        if (!largeIcon) return S_OK;
        // An icon the system could not make leaves the icon to the shell, as no icon does.
        *largeIcon = fileRecord_->icon.HandOut();
        return *largeIcon ? S_OK : S_FALSE;
    });
}

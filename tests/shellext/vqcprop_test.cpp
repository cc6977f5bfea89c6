// VQCProp, linked into this program: its interface map, the methods it does not
// implement, the selection it accepts, and the icon handler's answers.
#include "shellext/vqcprop.h"

#include <gtest/gtest.h>
#include <shlobj.h>

#include <algorithm>
#include <cstring>
#include <vector>

#include "common/com_ptr.h"
#include "shellext/vqcprop_ids.h"
#include "shellext/vqcprop_module.h"
#include "tests/connection/icon_pixels.h"
#include "tests/shellext/shellext_test_support.h"
#include "tests/support/shell_selection.h"

using namespace test_support;

namespace {

class ComApartment {
public:
    ComApartment() { CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED); }
    ~ComApartment() { CoUninitialize(); }
};

ComPtr<IUnknown> NewObject() {
    ComPtr<IUnknown> object;
    EXPECT_EQ(VQCProp::CreateInstance(nullptr, IID_IUnknown, object.PutVoid()), S_OK);
    return object;
}

template <typename Interface>
ComPtr<Interface> As(const ComPtr<IUnknown>& object, REFIID iid) {
    ComPtr<Interface> result;
    EXPECT_EQ(object->QueryInterface(iid, result.PutVoid()), S_OK);
    return result;
}

std::string OwnModulePath() {
    char path[MAX_PATH + 1] = {};
    GetModuleFileNameA(TheModule().instance, path, sizeof(path));
    return path;
}

}  // namespace

TEST(VQCPropInterfaces, EveryMappedInterfaceIsAnswered) {
    ComPtr<IUnknown> object = NewObject();
    for (const IID* iid :
         {&IID_IUnknown, &IID_IShellExtInit, &IID_IShellPropSheetExt, &IID_IPersistFile, &IID_IExtractIconA}) {
        void* answer = reinterpret_cast<void*>(0xdeadbeef);
        EXPECT_EQ(object->QueryInterface(*iid, &answer), S_OK);
        ASSERT_NE(answer, nullptr);
        static_cast<IUnknown*>(answer)->Release();
    }
}

TEST(VQCPropInterfaces, ClassIdDoublesAsTheObjectsOwnInterface) {
    ComPtr<IUnknown> object = NewObject();
    void* answer = nullptr;
    EXPECT_EQ(object->QueryInterface(CLSID_VQCProp, &answer), S_OK);
    ASSERT_NE(answer, nullptr);
    // IVQCProp is the primary interface: the same pointer as IUnknown.
    EXPECT_EQ(answer, static_cast<void*>(object.Get()));
    static_cast<IUnknown*>(answer)->Release();
}

TEST(VQCPropInterfaces, EachInterfaceLeadsBackToTheSameIdentity) {
    ComPtr<IUnknown> object = NewObject();
    ComPtr<IExtractIconA> icon = As<IExtractIconA>(object, IID_IExtractIconA);
    ComPtr<IUnknown> identity;
    ASSERT_EQ(icon->QueryInterface(IID_IUnknown, identity.PutVoid()), S_OK);
    EXPECT_EQ(identity.Get(), object.Get());
}

TEST(VQCPropInterfaces, DispatchExtractIconWAndPersistAreRefused) {
    ComPtr<IUnknown> object = NewObject();
    for (const IID* iid : {&IID_IDispatch, &IID_IExtractIconW, &IID_IPersist, &IID_IClassFactory}) {
        void* answer = reinterpret_cast<void*>(0xdeadbeef);
        EXPECT_EQ(object->QueryInterface(*iid, &answer), E_NOINTERFACE);
        EXPECT_EQ(answer, nullptr);
    }
}

TEST(VQCPropInterfaces, NullOutputIsEPointerAndNullObjectIsEInvalidArg) {
    ComPtr<IUnknown> object = NewObject();
    EXPECT_EQ(object->QueryInterface(IID_IUnknown, nullptr), E_POINTER);
    void* answer = reinterpret_cast<void*>(0xdeadbeef);
    EXPECT_EQ(VQCProp::InternalQueryInterface(nullptr, IID_IUnknown, &answer), E_INVALIDARG);
    EXPECT_EQ(answer, reinterpret_cast<void*>(0xdeadbeef));
}

TEST(VQCPropInterfaces, ObjectHoldsOneModuleLockForItsLife) {
    const LONG before = TheModule().GetLockCount();
    ComPtr<IUnknown> object = NewObject();
    EXPECT_EQ(TheModule().GetLockCount(), before + 1);
    object.Reset();
    EXPECT_EQ(TheModule().GetLockCount(), before);
}

TEST(VQCPropInterfaces, ReferenceCountIsPlainCounting) {
    ComPtr<IUnknown> object = NewObject();
    EXPECT_EQ(object->AddRef(), 2u);
    EXPECT_EQ(object->AddRef(), 3u);
    EXPECT_EQ(object->Release(), 2u);
    EXPECT_EQ(object->Release(), 1u);
}

TEST(VQCPropNotImplemented, PersistFileMethodsOtherThanLoad) {
    ComPtr<IPersistFile> file = As<IPersistFile>(NewObject(), IID_IPersistFile);
    CLSID classId = {0xdeadbeef, 0xbeef, 0xdead, {1, 2, 3, 4, 5, 6, 7, 8}};
    const CLSID untouched = classId;
    EXPECT_EQ(file->GetClassID(&classId), E_NOTIMPL);
    EXPECT_TRUE(IsEqualCLSID(classId, untouched));
    EXPECT_EQ(file->IsDirty(), E_NOTIMPL);
    EXPECT_EQ(file->Save(L"C:\\x.vqc", TRUE), E_NOTIMPL);
    EXPECT_EQ(file->SaveCompleted(L"C:\\x.vqc"), E_NOTIMPL);
    LPOLESTR current = reinterpret_cast<LPOLESTR>(0xdeadbeef);
    EXPECT_EQ(file->GetCurFile(&current), E_NOTIMPL);
    EXPECT_EQ(current, reinterpret_cast<LPOLESTR>(0xdeadbeef));
}

TEST(VQCPropNotImplemented, ReplacePage) {
    ComPtr<IShellPropSheetExt> sheet = As<IShellPropSheetExt>(NewObject(), IID_IShellPropSheetExt);
    EXPECT_EQ(sheet->ReplacePage(0, nullptr, 0), E_NOTIMPL);
}

namespace {

// The shell's side of AddPages: every page is kept, and destroyed again at the end.
struct OfferedPages {
    std::vector<HPROPSHEETPAGE> pages;
    static BOOL CALLBACK Keep(HPROPSHEETPAGE page, LPARAM self) {
        reinterpret_cast<OfferedPages*>(self)->pages.push_back(page);
        return TRUE;
    }
    ~OfferedPages() {
        for (HPROPSHEETPAGE page : pages) DestroyPropertySheetPage(page);
    }
};

}  // namespace

TEST(VQCPropAddPages, OffersThreePagesWithoutAClientBesideTheModule) {
    ComApartment apartment;
    TempFolder folder("add-pages");
    const std::string file = folder.File("three.vqc");
    WriteFileBytes(file, "-h host");
    ComPtr<IDataObject> selection = ShellSelection({file});
    ASSERT_TRUE(selection);
    ComPtr<IUnknown> object = NewObject();
    ASSERT_EQ(As<IShellExtInit>(object, IID_IShellExtInit)->Initialize(nullptr, selection.Get(), nullptr), S_OK);
    const LONG locks = TheModule().GetLockCount();
    {
        OfferedPages offered;
        EXPECT_EQ(As<IShellPropSheetExt>(object, IID_IShellPropSheetExt)
                      ->AddPages(OfferedPages::Keep, reinterpret_cast<LPARAM>(&offered)),
                  S_OK);
        EXPECT_EQ(offered.pages.size(), 3u);
        for (HPROPSHEETPAGE page : offered.pages) EXPECT_NE(page, nullptr);
    }
    EXPECT_EQ(TheModule().GetLockCount(), locks);
}

TEST(VQCPropAddPages, WithoutACallbackEveryPageCountsAsRefused) {
    const LONG locks = TheModule().GetLockCount();
    {
        ComPtr<IUnknown> object = NewObject();
        EXPECT_EQ(As<IShellPropSheetExt>(object, IID_IShellPropSheetExt)->AddPages(nullptr, 0), S_OK);
        EXPECT_EQ(TheModule().WindowCreation().Count(), 0);
    }
    EXPECT_EQ(TheModule().GetLockCount(), locks);
}

TEST(VQCPropAddPages, WithoutAFileThePagesAreStillOffered) {
    ComPtr<IUnknown> object = NewObject();
    OfferedPages offered;
    EXPECT_EQ(As<IShellPropSheetExt>(object, IID_IShellPropSheetExt)
                  ->AddPages(OfferedPages::Keep, reinterpret_cast<LPARAM>(&offered)),
              S_OK);
    EXPECT_EQ(offered.pages.size(), 3u);
}

TEST(VQCPropInitialize, OneSelectedFileIsAccepted) {
    ComApartment apartment;
    TempFolder folder("init-one");
    const std::string file = folder.File("one.vqc");
    WriteFileBytes(file, "-h host");
    ComPtr<IDataObject> selection = ShellSelection({file});
    ASSERT_TRUE(selection);
    ComPtr<IUnknown> object = NewObject();
    EXPECT_EQ(As<IShellExtInit>(object, IID_IShellExtInit)->Initialize(nullptr, selection.Get(), nullptr), S_OK);
    auto* prop = static_cast<VQCProp*>(static_cast<IVQCProp*>(object.Get()));
    char full[MAX_PATH + 1] = {};
    GetFullPathNameA(file.c_str(), sizeof(full), full, nullptr);
    EXPECT_EQ(_stricmp(prop->FileName().c_str(), full), 0) << prop->FileName();
    EXPECT_EQ(prop->FileName().size(), std::string(full).size());
}

TEST(VQCPropInitialize, TwoSelectedFilesAreRefused) {
    ComApartment apartment;
    TempFolder folder("init-two");
    WriteFileBytes(folder.File("a.vqc"), "-h a");
    WriteFileBytes(folder.File("b.vqc"), "-h b");
    ComPtr<IDataObject> selection = ShellSelection({folder.File("a.vqc"), folder.File("b.vqc")});
    ASSERT_TRUE(selection);
    ComPtr<IUnknown> object = NewObject();
    EXPECT_EQ(As<IShellExtInit>(object, IID_IShellExtInit)->Initialize(nullptr, selection.Get(), nullptr), E_FAIL);
    auto* prop = static_cast<VQCProp*>(static_cast<IVQCProp*>(object.Get()));
    EXPECT_EQ(prop->FileName(), "");
}

TEST(VQCPropInitialize, NoDataObjectIsRefused) {
    ComPtr<IUnknown> object = NewObject();
    EXPECT_EQ(As<IShellExtInit>(object, IID_IShellExtInit)->Initialize(nullptr, nullptr, nullptr), E_FAIL);
}

TEST(VQCPropInitialize, DataWithoutAFileDropIsRefused) {
    ComApartment apartment;
    // Text on the clipboard's terms: no CF_HDROP in it.
    ComPtr<IDataObject> text;
    ASSERT_EQ(OleGetClipboard(text.Put()), S_OK);
    ComPtr<IUnknown> object = NewObject();
    EXPECT_EQ(As<IShellExtInit>(object, IID_IShellExtInit)->Initialize(nullptr, text.Get(), nullptr), E_FAIL);
}

namespace {

// A data object that answers every request with a stream, whatever medium was asked for.
class StreamDataObject : public IDataObject {
public:
    STDMETHODIMP QueryInterface(REFIID iid, void** object) override {
        if (IsEqualIID(iid, IID_IUnknown) || IsEqualIID(iid, IID_IDataObject)) {
            *object = static_cast<IDataObject*>(this);
            AddRef();
            return S_OK;
        }
        *object = nullptr;
        return E_NOINTERFACE;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return ++references; }
    STDMETHODIMP_(ULONG) Release() override { return --references; }
    STDMETHODIMP GetData(FORMATETC*, STGMEDIUM* medium) override {
        ++requests;
        medium->tymed = TYMED_ISTREAM;
        medium->pstm = stream.Get();  // not null, where a drop list's handle would be
        medium->pUnkForRelease = nullptr;
        return S_OK;
    }
    STDMETHODIMP GetDataHere(FORMATETC*, STGMEDIUM*) override { return E_NOTIMPL; }
    STDMETHODIMP QueryGetData(FORMATETC*) override { return E_NOTIMPL; }
    STDMETHODIMP GetCanonicalFormatEtc(FORMATETC*, FORMATETC*) override { return E_NOTIMPL; }
    STDMETHODIMP SetData(FORMATETC*, STGMEDIUM*, BOOL) override { return E_NOTIMPL; }
    STDMETHODIMP EnumFormatEtc(DWORD, IEnumFORMATETC**) override { return E_NOTIMPL; }
    STDMETHODIMP DAdvise(FORMATETC*, DWORD, IAdviseSink*, DWORD*) override { return E_NOTIMPL; }
    STDMETHODIMP DUnadvise(DWORD) override { return E_NOTIMPL; }
    STDMETHODIMP EnumDAdvise(IEnumSTATDATA**) override { return E_NOTIMPL; }

    ULONG references = 1;
    int requests = 0;
    ComPtr<IStream> stream;
};

}  // namespace

TEST(VQCPropInitialize, MediumOtherThanGlobalMemoryIsRefused) {
    StreamDataObject data;
    ASSERT_EQ(CreateStreamOnHGlobal(nullptr, TRUE, data.stream.Put()), S_OK);
    ComPtr<IUnknown> object = NewObject();
    EXPECT_EQ(As<IShellExtInit>(object, IID_IShellExtInit)->Initialize(nullptr, &data, nullptr), E_FAIL);
    EXPECT_EQ(data.requests, 1);
    auto* prop = static_cast<VQCProp*>(static_cast<IVQCProp*>(object.Get()));
    EXPECT_EQ(prop->FileName(), "");
}

namespace {

// Counts the references given back to it: a medium's release object.
class CountingUnknown : public IUnknown {
public:
    STDMETHODIMP QueryInterface(REFIID, void** object) override {
        *object = nullptr;
        return E_NOINTERFACE;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return ++references; }
    STDMETHODIMP_(ULONG) Release() override {
        ++releases;
        return --references;
    }
    ULONG references = 1;
    int releases = 0;
};

// A data object that hands out one file's drop list in global memory, with a release object:
// ReleaseStgMedium on that medium would call the release object's Release.
class DropListDataObject : public StreamDataObject {
public:
    explicit DropListDataObject(const std::string& file) : file_(file) {}
    STDMETHODIMP GetData(FORMATETC*, STGMEDIUM* medium) override {
        ++requests;
        const std::size_t size = sizeof(DROPFILES) + file_.size() + 2;
        drop = GlobalAlloc(GMEM_MOVEABLE | GMEM_ZEROINIT, size);
        auto* header = static_cast<DROPFILES*>(GlobalLock(drop));
        header->pFiles = sizeof(DROPFILES);
        std::memcpy(reinterpret_cast<char*>(header) + sizeof(DROPFILES), file_.c_str(), file_.size());
        GlobalUnlock(drop);
        medium->tymed = TYMED_HGLOBAL;
        medium->hGlobal = drop;
        medium->pUnkForRelease = &releaser;
        releaser.AddRef();
        return S_OK;
    }

    HGLOBAL drop = nullptr;
    CountingUnknown releaser;

private:
    std::string file_;
};

}  // namespace

TEST(VQCPropInitialize, TheDropMediumIsNotHandedBack) {
    TempFolder folder("init-medium");
    const std::string file = folder.File("medium.vqc");
    WriteFileBytes(file, "-h host");
    DropListDataObject data(file);
    ComPtr<IUnknown> object = NewObject();
    EXPECT_EQ(As<IShellExtInit>(object, IID_IShellExtInit)->Initialize(nullptr, &data, nullptr), S_OK);
    auto* prop = static_cast<VQCProp*>(static_cast<IVQCProp*>(object.Get()));
    EXPECT_EQ(prop->FileName(), file);
    ASSERT_EQ(data.requests, 1);
    // Nothing gave the medium back: its release object kept the reference GetData gave it,
    // and the global memory is still there.
    EXPECT_EQ(data.releaser.releases, 0);
    EXPECT_EQ(data.releaser.references, 2u);
    EXPECT_NE(GlobalSize(data.drop), 0u);
    GlobalFree(data.drop);
}

TEST(VQCPropLoad, NullNameIsInvalidArgument) {
    ComPtr<IPersistFile> file = As<IPersistFile>(NewObject(), IID_IPersistFile);
    EXPECT_EQ(file->Load(nullptr, STGM_READ), E_INVALIDARG);
}

TEST(VQCPropLoad, WideNameIsConvertedWithTheThreadCodePage) {
    const LCID before = GetThreadLocale();
    ASSERT_TRUE(SetThreadLocale(MAKELCID(MAKELANGID(LANG_RUSSIAN, SUBLANG_DEFAULT), SORT_DEFAULT)));
    ComPtr<IUnknown> object = NewObject();
    EXPECT_EQ(As<IPersistFile>(object, IID_IPersistFile)->Load(L"C:\\\x0416.vqc", STGM_READ), S_OK);
    SetThreadLocale(before);
    auto* prop = static_cast<VQCProp*>(static_cast<IVQCProp*>(object.Get()));
    EXPECT_EQ(prop->FileName(), "C:\\\xC6.vqc");  // code page 1251
    ASSERT_NE(prop->FileRecord(), nullptr);
    EXPECT_EQ(prop->FileRecord()->filePath, "C:\\\xC6.vqc");
}

TEST(VQCPropLoad, UnreadableFileStillSucceeds) {
    ComPtr<IUnknown> object = NewObject();
    EXPECT_EQ(As<IPersistFile>(object, IID_IPersistFile)->Load(L"C:\\no such folder\\none.vqc", STGM_READ), S_OK);
    auto* prop = static_cast<VQCProp*>(static_cast<IVQCProp*>(object.Get()));
    ASSERT_NE(prop->FileRecord(), nullptr);
    EXPECT_NE(prop->FileRecord()->lastError, 0u);
}

TEST(VQCPropLoad, SecondLoadReplacesTheRecord) {
    TempFolder folder("reload");
    WriteFileBytes(folder.File("a.vqc"), "-h first");
    WriteFileBytes(folder.File("b.vqc"), "-h second");
    ComPtr<IUnknown> object = NewObject();
    ComPtr<IPersistFile> file = As<IPersistFile>(object, IID_IPersistFile);
    auto* prop = static_cast<VQCProp*>(static_cast<IVQCProp*>(object.Get()));
    ASSERT_EQ(file->Load(Wide(folder.File("a.vqc")).c_str(), STGM_READ), S_OK);
    EXPECT_EQ(prop->FileRecord()->host, "first");
    ASSERT_EQ(file->Load(Wide(folder.File("b.vqc")).c_str(), STGM_READ), S_OK);
    EXPECT_EQ(prop->FileRecord()->host, "second");
    EXPECT_EQ(prop->FileRecord()->refCount, 1u);
}

TEST(VQCPropIcon, WithoutLoadExtractLeavesItToTheShell) {
    ComPtr<IExtractIconA> icon = As<IExtractIconA>(NewObject(), IID_IExtractIconA);
    HICON large = reinterpret_cast<HICON>(0xdeadbeef);
    HICON small = reinterpret_cast<HICON>(0xdeadbeef);
    EXPECT_EQ(icon->Extract("x", 0, &large, &small, MAKELONG(32, 16)), S_FALSE);
    EXPECT_EQ(large, reinterpret_cast<HICON>(0xdeadbeef));
    EXPECT_EQ(small, reinterpret_cast<HICON>(0xdeadbeef));
}

TEST(VQCPropIcon, WithoutLoadTheLocationIsTheModulesOwnIcon) {
    ComPtr<IExtractIconA> icon = As<IExtractIconA>(NewObject(), IID_IExtractIconA);
    char location[MAX_PATH + 1] = "unwritten";
    int index = 0xdeadbeef;
    UINT flags = 0xdeadbeef;
    EXPECT_EQ(icon->GetIconLocation(GIL_FORSHELL, location, sizeof(location), &index, &flags), S_OK);
    EXPECT_EQ(std::string(location), OwnModulePath());
    EXPECT_EQ(index, 0);
    EXPECT_EQ(flags, static_cast<UINT>(GIL_PERINSTANCE));
}

TEST(VQCPropIcon, FileWithoutIconPointsAtTheModuleWithFlagsTwo) {
    TempFolder folder("no-icon");
    const std::string path = folder.File("plain.vqc");
    WriteFileBytes(path, "-h server.example -u tester");
    ComPtr<IUnknown> object = NewObject();
    ASSERT_EQ(As<IPersistFile>(object, IID_IPersistFile)->Load(Wide(path).c_str(), STGM_READ), S_OK);
    ComPtr<IExtractIconA> icon = As<IExtractIconA>(object, IID_IExtractIconA);
    char location[MAX_PATH + 1] = "unwritten";
    int index = 0xdeadbeef;
    UINT flags = 0xdeadbeef;
    EXPECT_EQ(icon->GetIconLocation(0, location, sizeof(location), &index, &flags), S_OK);
    EXPECT_EQ(std::string(location), OwnModulePath());
    EXPECT_EQ(index, 0);
    EXPECT_EQ(flags, 2u);
    HICON large = reinterpret_cast<HICON>(0xdeadbeef);
    HICON small = reinterpret_cast<HICON>(0xdeadbeef);
    EXPECT_EQ(icon->Extract(location, 0, &large, &small, MAKELONG(32, 16)), S_FALSE);
    EXPECT_EQ(large, reinterpret_cast<HICON>(0xdeadbeef));
    EXPECT_EQ(small, reinterpret_cast<HICON>(0xdeadbeef));
}

TEST(VQCPropIcon, FileWithIconPointsAtItselfWithFlags26) {
    TempFolder folder("icon");
    const std::string path = folder.File("with icon.vqc");
    WriteFileBytes(path, ConnectionLineWithIcon({48, 24}));
    ComPtr<IUnknown> object = NewObject();
    ASSERT_EQ(As<IPersistFile>(object, IID_IPersistFile)->Load(Wide(path).c_str(), STGM_READ), S_OK);
    ComPtr<IExtractIconA> icon = As<IExtractIconA>(object, IID_IExtractIconA);
    char location[MAX_PATH + 1] = "unwritten";
    int index = 0xdeadbeef;
    UINT flags = 0xdeadbeef;
    EXPECT_EQ(icon->GetIconLocation(GIL_FORSHELL, location, sizeof(location), &index, &flags), S_OK);
    EXPECT_EQ(std::string(location), path);
    EXPECT_EQ(index, 0);
    EXPECT_EQ(flags, 26u);

    HICON large = nullptr;
    HICON small = nullptr;
    ASSERT_EQ(icon->Extract(location, 0, &large, &small, MAKELONG(32, 16)), S_OK);
    UniqueIcon largeOwner(large);
    UniqueIcon smallOwner(small);
    // Copies at the sizes the record holds them, not the record's own handles.
    auto* prop = static_cast<VQCProp*>(static_cast<IVQCProp*>(object.Get()));
    EXPECT_NE(large, prop->FileRecord()->icon.Get());
    EXPECT_NE(small, prop->FileRecord()->smallIcon.Get());
    EXPECT_EQ(IconSize(large).cx, 48);
    EXPECT_EQ(IconSize(small).cx, GetSystemMetrics(SM_CXSMICON));
}

TEST(VQCPropIcon, ExtractedCopiesShowTheFilesPixelsAndOutliveTheObject) {
    TempFolder folder("copies");
    const std::string path = folder.File("icon.vqc");
    WriteFileBytes(path, ConnectionLineWithIcon({32, 16}));
    ComPtr<IUnknown> object = NewObject();
    ASSERT_EQ(As<IPersistFile>(object, IID_IPersistFile)->Load(Wide(path).c_str(), STGM_READ), S_OK);
    auto* prop = static_cast<VQCProp*>(static_cast<IVQCProp*>(object.Get()));
    const Pixels recordLarge = PixelsOf(prop->FileRecord()->icon.Get());
    const Pixels recordSmall = PixelsOf(prop->FileRecord()->smallIcon.Get());
    HICON large = nullptr;
    HICON small = nullptr;
    ASSERT_EQ(As<IExtractIconA>(object, IID_IExtractIconA)->Extract(path.c_str(), 0, &large, &small, 0), S_OK);
    const UniqueIcon largeOwner(large), smallOwner(small);
    object.Reset();  // the record and its icons go with the object; the copies are the shell's
    const Pixels copyLarge = PixelsOf(large);
    const Pixels copySmall = PixelsOf(small);
    EXPECT_EQ(copyLarge.colour, recordLarge.colour);
    EXPECT_EQ(copyLarge.mask, recordLarge.mask);
    EXPECT_EQ(copySmall.colour, recordSmall.colour);
    EXPECT_EQ(copySmall.mask, recordSmall.mask);
    EXPECT_FALSE(copyLarge.colour.empty());
}

TEST(VQCPropIcon, LocationIsCutToMaxChars) {
    TempFolder folder("short");
    const std::string path = folder.File("icon.vqc");
    WriteFileBytes(path, ConnectionLineWithIcon({32}));
    ComPtr<IUnknown> object = NewObject();
    ASSERT_EQ(As<IPersistFile>(object, IID_IPersistFile)->Load(Wide(path).c_str(), STGM_READ), S_OK);
    char location[16];
    memset(location, 'x', sizeof(location));
    int index = 0xdeadbeef;
    UINT flags = 0xdeadbeef;
    EXPECT_EQ(As<IExtractIconA>(object, IID_IExtractIconA)->GetIconLocation(0, location, 6, &index, &flags), S_OK);
    EXPECT_EQ(std::string(location), path.substr(0, 5));
    EXPECT_EQ(location[6], 'x');
    EXPECT_EQ(flags, 26u);
}

TEST(VQCPropIcon, OneImageGivesTheLargeIconAndLeavesTheSmallOneUnwritten) {
    TempFolder folder("one-image");
    const std::string path = folder.File("icon.vqc");
    WriteFileBytes(path, ConnectionLineWithIcon({32}));
    ComPtr<IUnknown> object = NewObject();
    ASSERT_EQ(As<IPersistFile>(object, IID_IPersistFile)->Load(Wide(path).c_str(), STGM_READ), S_OK);
    HICON large = nullptr;
    HICON small = reinterpret_cast<HICON>(0xdeadbeef);
    ASSERT_EQ(As<IExtractIconA>(object, IID_IExtractIconA)->Extract(path.c_str(), 0, &large, &small, 0), S_OK);
    UniqueIcon largeOwner(large);
    EXPECT_EQ(IconSize(large).cx, 32);
    EXPECT_EQ(small, reinterpret_cast<HICON>(0xdeadbeef));
}

TEST(VQCPropIcon, SmallIconAloneIsHandedOverWithSFalse) {
    // The first image is damaged, so only the second (small) one becomes an icon.
    std::vector<std::uint8_t> icons = MakeIconFile({32, 16});
    const std::size_t firstImage = 6 + 2 * 16;
    std::fill(icons.begin() + firstImage, icons.begin() + firstImage + 40, std::uint8_t{0});  // no header
    TempFolder folder("small-only");
    const std::string path = folder.File("icon.vqc");
    WriteFileBytes(path, "-h server -I " + HexText(icons));
    ComPtr<IUnknown> object = NewObject();
    ASSERT_EQ(As<IPersistFile>(object, IID_IPersistFile)->Load(Wide(path).c_str(), STGM_READ), S_OK);
    auto* prop = static_cast<VQCProp*>(static_cast<IVQCProp*>(object.Get()));
    ASSERT_FALSE(prop->FileRecord()->icon);
    ASSERT_TRUE(prop->FileRecord()->smallIcon);

    HICON large = reinterpret_cast<HICON>(0xdeadbeef);
    HICON small = nullptr;
    EXPECT_EQ(As<IExtractIconA>(object, IID_IExtractIconA)->Extract(path.c_str(), 0, &large, &small, 0), S_FALSE);
    UniqueIcon smallOwner(small);
    EXPECT_EQ(large, reinterpret_cast<HICON>(0xdeadbeef));
    ASSERT_NE(small, nullptr);
    EXPECT_NE(small, prop->FileRecord()->smallIcon.Get());
    EXPECT_EQ(IconSize(small).cx, GetSystemMetrics(SM_CXSMICON));
    // Without the large icon the location is the module's own.
    char location[MAX_PATH + 1] = "";
    int index = 0xdeadbeef;
    UINT flags = 0xdeadbeef;
    EXPECT_EQ(
        As<IExtractIconA>(object, IID_IExtractIconA)->GetIconLocation(0, location, sizeof(location), &index, &flags),
        S_OK);
    EXPECT_EQ(flags, 2u);
}

TEST(VQCPropInitialize, HoldsOneReferenceOnTheDataObjectAndSwapsItForANewOne) {
    ComApartment apartment;
    TempFolder folder("init-swap");
    WriteFileBytes(folder.File("a.vqc"), "-h a");
    WriteFileBytes(folder.File("b.vqc"), "-h b");
    ComPtr<IDataObject> first = ShellSelection({folder.File("a.vqc")});
    ComPtr<IDataObject> second = ShellSelection({folder.File("b.vqc")});
    ASSERT_TRUE(first);
    ASSERT_TRUE(second);
    auto references = [](IUnknown* object) {
        object->AddRef();
        return object->Release();
    };
    const ULONG firstAlone = references(first.Get());
    const ULONG secondAlone = references(second.Get());
    ComPtr<IUnknown> object = NewObject();
    ComPtr<IShellExtInit> init = As<IShellExtInit>(object, IID_IShellExtInit);
    ASSERT_EQ(init->Initialize(nullptr, first.Get(), nullptr), S_OK);
    EXPECT_EQ(references(first.Get()), firstAlone + 1);
    ASSERT_EQ(init->Initialize(nullptr, first.Get(), nullptr), S_OK);  // the same one again: no second reference
    EXPECT_EQ(references(first.Get()), firstAlone + 1);
    ASSERT_EQ(init->Initialize(nullptr, second.Get(), nullptr), S_OK);
    EXPECT_EQ(references(first.Get()), firstAlone);
    EXPECT_EQ(references(second.Get()), secondAlone + 1);
    auto* prop = static_cast<VQCProp*>(static_cast<IVQCProp*>(object.Get()));
    EXPECT_EQ(prop->FileName().substr(prop->FileName().size() - 5), "b.vqc");
    object.Reset();
    init.Reset();
    EXPECT_EQ(references(second.Get()), secondAlone);
}

// The icon handler hands the shell the icons the reader made: they are the caller's, they
// outlive the object, a second Extract gives a second pair, and the record still answers
// with its icons afterwards.
namespace {

ComPtr<IUnknown> LoadedObject(const std::string& path) {
    ComPtr<IUnknown> object = NewObject();
    EXPECT_EQ(As<IPersistFile>(object, IID_IPersistFile)->Load(Wide(path).c_str(), STGM_READ), S_OK);
    return object;
}

}  // namespace

TEST(VQCPropIcon, ExtractedHandlesAreTheCallersToDestroyAfterTheObjectIsGone) {
    TempFolder folder("callers");
    const std::string path = folder.File("icon.vqc");
    WriteFileBytes(path, ConnectionLineWithIcon({32, 16}));
    ComPtr<IUnknown> object = LoadedObject(path);
    HICON large = nullptr, small = nullptr;
    ASSERT_EQ(As<IExtractIconA>(object, IID_IExtractIconA)->Extract(path.c_str(), 0, &large, &small, 0), S_OK);
    object.Reset();
    ICONINFO info{};
    ASSERT_TRUE(GetIconInfo(large, &info));
    DeleteObject(info.hbmColor);
    DeleteObject(info.hbmMask);
    EXPECT_EQ(IconSize(large).cx, 32);
    EXPECT_EQ(IconSize(small).cx, GetSystemMetrics(SM_CXSMICON));
    // Nobody destroyed them on the object's way out: the caller does, once each.
    EXPECT_TRUE(DestroyIcon(large));
    EXPECT_TRUE(DestroyIcon(small));
}

TEST(VQCPropIcon, TwoExtractCallsGiveTwoPairsOfDistinctHandlesWithTheSamePixels) {
    TempFolder folder("twice");
    const std::string path = folder.File("icon.vqc");
    WriteFileBytes(path, ConnectionLineWithIcon({32, 16}));
    ComPtr<IUnknown> object = LoadedObject(path);
    ComPtr<IExtractIconA> icon = As<IExtractIconA>(object, IID_IExtractIconA);
    HICON large1 = nullptr, small1 = nullptr, large2 = nullptr, small2 = nullptr;
    ASSERT_EQ(icon->Extract(path.c_str(), 0, &large1, &small1, 0), S_OK);
    const UniqueIcon ownLarge1(large1), ownSmall1(small1);
    ASSERT_EQ(icon->Extract(path.c_str(), 0, &large2, &small2, 0), S_OK);
    const UniqueIcon ownLarge2(large2), ownSmall2(small2);
    ASSERT_NE(large1, nullptr);
    ASSERT_NE(small1, nullptr);
    ASSERT_NE(large2, nullptr);
    ASSERT_NE(small2, nullptr);
    EXPECT_NE(large1, large2);
    EXPECT_NE(small1, small2);
    EXPECT_NE(large1, small2);
    EXPECT_NE(small1, large2);
    ExpectSamePixels(large1, large2);
    ExpectSamePixels(small1, small2);
    // The first pair still stands after the second was made.
    EXPECT_EQ(IconSize(large1).cx, 32);
}

TEST(VQCPropIcon, AnImageThePlatformRefusesCountsAsNoIcon) {
    // The stream itself is well formed; its one image has no bitmap header, so the platform
    // makes no icon of it.
    std::vector<std::uint8_t> icons = MakeIconFile({32});
    const std::size_t firstImage = 6 + 16;
    std::fill(icons.begin() + firstImage, icons.begin() + firstImage + 40, std::uint8_t{0});
    TempFolder folder("refused");
    const std::string path = folder.File("refused.vqc");
    WriteFileBytes(path, "-h server -I " + HexText(icons));
    ComPtr<IUnknown> object = LoadedObject(path);
    auto* prop = static_cast<VQCProp*>(static_cast<IVQCProp*>(object.Get()));
    EXPECT_FALSE(prop->FileRecord()->icon);
    ComPtr<IExtractIconA> icon = As<IExtractIconA>(object, IID_IExtractIconA);
    char location[MAX_PATH + 1] = "";
    int index = 0xdeadbeef;
    UINT flags = 0xdeadbeef;
    ASSERT_EQ(icon->GetIconLocation(GIL_FORSHELL, location, sizeof(location), &index, &flags), S_OK);
    EXPECT_EQ(flags, static_cast<UINT>(GIL_PERINSTANCE));
    EXPECT_EQ(std::string(location), OwnModulePath());
    HICON large = reinterpret_cast<HICON>(0xdeadbeef);
    HICON small = reinterpret_cast<HICON>(0xdeadbeef);
    EXPECT_EQ(icon->Extract(location, 0, &large, &small, 0), S_FALSE);
    EXPECT_EQ(large, reinterpret_cast<HICON>(0xdeadbeef));
    EXPECT_EQ(small, reinterpret_cast<HICON>(0xdeadbeef));
}

TEST(VQCPropIcon, AfterExtractTheRecordStillHoldsItsOwnIconsWithTheSamePixels) {
    TempFolder folder("record-after");
    const std::string path = folder.File("icon.vqc");
    WriteFileBytes(path, ConnectionLineWithIcon({32, 16}));
    ComPtr<IUnknown> object = LoadedObject(path);
    HICON large = nullptr, small = nullptr;
    ASSERT_EQ(As<IExtractIconA>(object, IID_IExtractIconA)->Extract(path.c_str(), 0, &large, &small, 0), S_OK);
    const UniqueIcon ownLarge(large), ownSmall(small);
    auto* prop = static_cast<VQCProp*>(static_cast<IVQCProp*>(object.Get()));
    ASSERT_TRUE(prop->FileRecord()->icon);
    ASSERT_TRUE(prop->FileRecord()->smallIcon);
    const HICON recordLarge = prop->FileRecord()->icon.Get();
    const HICON recordSmall = prop->FileRecord()->smallIcon.Get();
    ASSERT_NE(recordLarge, nullptr);
    ASSERT_NE(recordSmall, nullptr);
    EXPECT_NE(recordLarge, large);
    EXPECT_NE(recordSmall, small);
    // Asked twice, the record answers with the same handle of its own.
    EXPECT_EQ(prop->FileRecord()->icon.Get(), recordLarge);
    ExpectSamePixels(recordLarge, large);
    ExpectSamePixels(recordSmall, small);
}

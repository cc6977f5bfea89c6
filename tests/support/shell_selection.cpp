#include "tests/support/shell_selection.h"

#include <shlobj.h>

#include "tests/support/wide_text.h"

namespace test_support {

namespace {

// Absolute item ids, freed with the owner.
class ItemIds {
public:
    ItemIds() = default;
    ~ItemIds() {
        for (PIDLIST_ABSOLUTE id : ids_) CoTaskMemFree(id);
    }
    ItemIds(const ItemIds&) = delete;
    ItemIds& operator=(const ItemIds&) = delete;

    HRESULT Parse(const std::wstring& path) {
        PIDLIST_ABSOLUTE id = nullptr;
        const HRESULT result = SHParseDisplayName(path.c_str(), nullptr, &id, 0, nullptr);
        if (SUCCEEDED(result)) ids_.push_back(id);
        return result;
    }
    const std::vector<PIDLIST_ABSOLUTE>& Ids() const { return ids_; }

private:
    std::vector<PIDLIST_ABSOLUTE> ids_;
};

std::vector<std::wstring> WideNames(const std::vector<std::string>& files) {
    std::vector<std::wstring> wide;
    for (const std::string& file : files) wide.push_back(Wide(file));
    return wide;
}

}  // namespace

HRESULT ShellUiObject(const std::vector<std::wstring>& files, REFIID iid, void** object) {
    *object = nullptr;
    if (files.empty()) return E_INVALIDARG;
    ItemIds items;
    for (const std::wstring& file : files) {
        const HRESULT parsed = items.Parse(file);
        if (FAILED(parsed)) return parsed;
    }
    ComPtr<IShellFolder> folder;
    const HRESULT result = SHBindToParent(items.Ids()[0], IID_IShellFolder, folder.PutVoid(), nullptr);
    if (FAILED(result)) return result;
    std::vector<PCUITEMID_CHILD> children;
    for (PIDLIST_ABSOLUTE id : items.Ids()) children.push_back(ILFindLastID(id));
    return folder->GetUIObjectOf(nullptr, static_cast<UINT>(children.size()), children.data(), iid, nullptr, object);
}

HRESULT ShellUiObject(const std::vector<std::string>& files, REFIID iid, void** object) {
    return ShellUiObject(WideNames(files), iid, object);
}

ComPtr<IDataObject> ShellSelection(const std::vector<std::wstring>& files) {
    ComPtr<IDataObject> data;
    ShellUiObject(files, IID_IDataObject, data.PutVoid());
    return data;
}

ComPtr<IDataObject> ShellSelection(const std::vector<std::string>& files) { return ShellSelection(WideNames(files)); }

}  // namespace test_support

// What the shell's folder hands out for a selection of files in a folder view: the data
// object an extension's Initialize gets (CF_HDROP and the shell's own formats) and the
// context menu whose "properties" verb opens the files' Properties.
#pragma once

#include <windows.h>
#include <objidl.h>

#include <string>
#include <vector>

#include "common/com_ptr.h"

namespace test_support {

// The parent folder's GetUIObjectOf(iid) for the files, which share one folder; the
// failing step's result otherwise (E_INVALIDARG for no files). The shell names files in
// UTF-16; 8-bit names are read in the ANSI code page.
HRESULT ShellUiObject(const std::vector<std::wstring>& files, REFIID iid, void** object);
HRESULT ShellUiObject(const std::vector<std::string>& files, REFIID iid, void** object);

// The data object of the selection; null when it cannot be made.
ComPtr<IDataObject> ShellSelection(const std::vector<std::wstring>& files);
ComPtr<IDataObject> ShellSelection(const std::vector<std::string>& files);

}  // namespace test_support

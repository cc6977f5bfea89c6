// The shell's questions for one file of a folder view, asked of an icon handler object: Load,
// the icon's location, then Extract (the shell draws the location itself when Extract answers
// S_FALSE). What every question answered is kept, with the pixels of each icon handed out.
#pragma once

#include <windows.h>
#include <objidl.h>

#include <string>

#include "tests/connection/icon_pixels.h"
#include "tests/pages/page_test_support.h"

namespace icon_cycle {

struct IconAnswer {
    HRESULT load = E_FAIL;
    HRESULT location = E_FAIL;
    std::string file;
    int index = -1;
    UINT flags = 0;
    HRESULT extract = E_FAIL;
    bool large = false;
    bool small = false;
    Pixels largePixels;
    Pixels smallPixels;
};

// Asks `object` (no file loaded yet) about `file`. The icons handed out are the shell's: they
// leave the fault layer's books and are destroyed.
IconAnswer AskForTheIcon(IPersistFile* object, const std::wstring& file);

// Asks a new object of the class `classId`, made by the DLL's class factory in an apartment of
// this thread's own, about `file`, as the shell asks for each file of a folder view; the answer
// is all E_FAIL when the factory or the object cannot be had.
IconAnswer AskANewObject(page_test::GetClassObjectFunction getClassObject, REFCLSID classId, const std::wstring& file);

bool SameAnswer(const IconAnswer& a, const IconAnswer& b);

// "load 0x0, location 0x0 'C:\...\a.vqc' index 0 flags 26, extract 0x0, large 32x32, small 16x16"
std::string Describe(const IconAnswer& answer);

}  // namespace icon_cycle

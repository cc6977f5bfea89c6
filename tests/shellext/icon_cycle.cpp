#include "tests/shellext/icon_cycle.h"

#include <objbase.h>
#include <shlobj.h>

#include <cstdio>

#include "common/com_ptr.h"
#include "tests/faults/fault_layer.h"
#include "tests/support/hresult_text.h"

namespace icon_cycle {
namespace {

bool SamePixels(const Pixels& a, const Pixels& b) {
    return a.size.cx == b.size.cx && a.size.cy == b.size.cy && a.colour == b.colour && a.mask == b.mask;
}

std::string SizeText(const Pixels& pixels) {
    return std::to_string(pixels.size.cx) + "x" + std::to_string(pixels.size.cy);
}

}  // namespace

IconAnswer AskForTheIcon(IPersistFile* object, const std::wstring& file) {
    IconAnswer answer;
    answer.load = object->Load(file.c_str(), STGM_READ);
    ComPtr<IExtractIconA> extract;
    object->QueryInterface(IID_IExtractIconA, extract.PutVoid());
    if (!extract) return answer;
    char location[MAX_PATH + 1] = "unwritten";
    answer.location = extract->GetIconLocation(GIL_FORSHELL, location, sizeof(location), &answer.index, &answer.flags);
    answer.file = location;

    HICON large = nullptr;
    HICON small = nullptr;
    answer.extract = extract->Extract(location, static_cast<UINT>(answer.index), &large, &small, MAKELONG(32, 16));
    if (large) {
        answer.large = true;
        answer.largePixels = PixelsOf(large);
    }
    if (small) {
        answer.small = true;
        answer.smallPixels = PixelsOf(small);
    }
    for (HICON icon : {large, small}) {
        if (!icon) continue;
        faults::HandedOut(faults::ObjectKind::Icon, icon);
        DestroyIcon(icon);
    }
    return answer;
}

IconAnswer AskANewObject(page_test::GetClassObjectFunction getClassObject, REFCLSID classId, const std::wstring& file) {
    // The object and the factory go before the apartment does.
    const page_test::ComApartment apartment;
    ComPtr<IClassFactory> factory;
    if (getClassObject(classId, IID_IClassFactory, factory.PutVoid()) != S_OK || !factory) return {};
    ComPtr<IPersistFile> persist;
    if (factory->CreateInstance(nullptr, IID_IPersistFile, persist.PutVoid()) != S_OK || !persist) return {};
    return AskForTheIcon(persist.Get(), file);
}

bool SameAnswer(const IconAnswer& a, const IconAnswer& b) {
    return a.load == b.load && a.location == b.location && a.file == b.file && a.index == b.index &&
           a.flags == b.flags && a.extract == b.extract && a.large == b.large && a.small == b.small &&
           SamePixels(a.largePixels, b.largePixels) && SamePixels(a.smallPixels, b.smallPixels);
}

std::string Describe(const IconAnswer& a) {
    std::string text = "load " + test_support::HresultText(a.load) + ", location " +
                       test_support::HresultText(a.location) + " '" + a.file + "' index " + std::to_string(a.index) +
                       " flags " + std::to_string(a.flags) + ", extract " + test_support::HresultText(a.extract);
    if (a.large) text += ", large " + SizeText(a.largePixels);
    if (a.small) text += ", small " + SizeText(a.smallPixels);
    return text;
}

}  // namespace icon_cycle

// Whether a page as a sheet shows it is laid out by its resize map: the same template made
// into a plain dialog in this process gives every control's template rectangle; on the
// page, a mapped control is exactly as much wider (or further right, taller, lower) as the
// page is larger than its template, an unmapped one keeps its template rectangle, and every
// shown control ends inside the page's client area.
#pragma once

#include <windows.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "pages/connection_page.h"
#include "pages/option_page.h"
#include "pages/proxy_page.h"
#include "resources/dialog_template.h"
#include "ui/resize_layout.h"

namespace page_test {

struct ChildPlace {
    int id;
    RECT rect;  // in the parent's client coordinates
    bool shown;
    bool iconView;  // a static showing an icon takes the icon's size: only its corner is placed
};

inline bool IsIconView(HWND control) {
    char className[16] = {};
    GetClassNameA(control, className, sizeof(className));
    return lstrcmpiA(className, "Static") == 0 && (GetWindowLongPtrA(control, GWL_STYLE) & SS_TYPEMASK) == SS_ICON;
}

// The direct children of a window in z-order.
inline std::vector<ChildPlace> ChildPlaces(HWND parent) {
    std::vector<ChildPlace> places;
    for (HWND child = GetWindow(parent, GW_CHILD); child; child = GetWindow(child, GW_HWNDNEXT)) {
        RECT rect{};
        GetWindowRect(child, &rect);
        MapWindowPoints(HWND_DESKTOP, parent, reinterpret_cast<POINT*>(&rect), 2);
        places.push_back(
            {GetDlgCtrlID(child), rect, (GetWindowLongPtrA(child, GWL_STYLE) & WS_VISIBLE) != 0, IsIconView(child)});
    }
    return places;
}

inline unsigned MapFlagsOf(const ResizeMapEntry* map, int id) {
    for (std::size_t row = 0; row < ResizeMapLength(map); ++row)
        if (map[row].controlId == id) return map[row].flags;
    return 0;
}

inline INT_PTR CALLBACK PlainDialogProcedure(HWND, UINT message, WPARAM, LPARAM) { return message == WM_INITDIALOG; }

// The controls of template `templateIndex` where the dialog manager puts them, and the
// template's client size, from a plain dialog of this process made of the same template.
struct TemplatePlaces {
    SIZE client{0, 0};
    std::vector<ChildPlace> children;
};

inline TemplatePlaces PlacesOfTemplate(int templateIndex) {
    TemplatePlaces places;
    const UniqueDialogTemplate dialogTemplate(AllocDialogTemplate(templateIndex, 0));
    if (!dialogTemplate) return places;
    // The page templates are child windows: they need a parent, which stays hidden.
    const HWND parent = CreateWindowExA(0, "STATIC", "", WS_POPUP, 0, 0, 800, 800, nullptr, nullptr,
                                        GetModuleHandleA(nullptr), nullptr);
    const HWND dialog =
        CreateDialogIndirectParamA(GetModuleHandleA(nullptr), dialogTemplate.Get(), parent, PlainDialogProcedure, 0);
    if (dialog) {
        RECT client{};
        GetClientRect(dialog, &client);
        places.client = {client.right, client.bottom};
        places.children = ChildPlaces(dialog);
        DestroyWindow(dialog);
    }
    DestroyWindow(parent);
    return places;
}

// The check itself, one failure per control that is out of place.
inline void ExpectLaidOutByItsMap(HWND page, int templateIndex, const ResizeMapEntry* map, const std::string& what) {
    const TemplatePlaces reference = PlacesOfTemplate(templateIndex);
    ASSERT_FALSE(reference.children.empty()) << what;
    RECT client{};
    GetClientRect(page, &client);
    const int dx = client.right - reference.client.cx;
    const int dy = client.bottom - reference.client.cy;
    const std::vector<ChildPlace> shown = ChildPlaces(page);
    ASSERT_EQ(shown.size(), reference.children.size()) << what;
    for (std::size_t i = 0; i < shown.size(); ++i) {
        const ChildPlace& on = shown[i];
        const ChildPlace& at = reference.children[i];
        ASSERT_EQ(on.id, at.id) << what << ": controls in another order";
        const unsigned flags = MapFlagsOf(map, on.id);
        const RECT& t = at.rect;
        RECT want = t;
        if (flags & DLSZ_MOVE_X) OffsetRect(&want, dx, 0);
        if (flags & DLSZ_MOVE_Y) OffsetRect(&want, 0, dy);
        if (flags & DLSZ_SIZE_X) want.right += dx;
        if (flags & DLSZ_SIZE_Y) want.bottom += dy;
        const std::string control = what + ", control " + std::to_string(on.id);
        EXPECT_EQ(on.rect.left, want.left) << control;
        EXPECT_EQ(on.rect.top, want.top) << control;
        if (!on.iconView) {
            EXPECT_EQ(on.rect.right, want.right) << control << (flags ? " (mapped)" : " (unmapped)");
            EXPECT_EQ(on.rect.bottom, want.bottom) << control;
        }
        if (on.shown) {
            EXPECT_LE(on.rect.right, client.right) << control << " ends past the page's right edge";
            EXPECT_LE(on.rect.bottom, client.bottom) << control << " ends below the page";
        }
    }
}

// Our three pages as a sheet shows them after one page of another's (the shell's General
// page, or a test's own): their positions, templates and maps.
struct OurPage {
    int index;
    int templateIndex;
    const ResizeMapEntry* map;
    const char* name;
};

inline std::vector<OurPage> OurPagesAfterOneOther() {
    return {
        {1, CVQCConnectionPage::kTemplateIndex, CVQCConnectionPage::ResizeMap(), "Connection"},
        {2, CVQCProxyPage::kTemplateIndex, CVQCProxyPage::ResizeMap(), "Proxy"},
        {3, CVQCOptionPage::kTemplateIndex, CVQCOptionPage::ResizeMap(), "Options"},
    };
}

}  // namespace page_test

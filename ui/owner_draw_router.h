// OwnerDrawRouter<T>: hands the owner-draw messages a dialog receives for its controls
// (WM_DRAWITEM, WM_MEASUREITEM, WM_COMPAREITEM, WM_DELETEITEM) and their reflected forms
// (OCM_*, the same message plus 0x2000, as a control gets them back from its parent) to
// T's hooks DrawItem, MeasureItem, CompareItem and DeleteItem.
//
// A page opts in by deriving from OwnerDrawRouter<Page> beside CVQCPropertyPageImpl<Page>;
// the page base then routes these messages after resizing and before the sheet
// notifications. T overrides a hook by declaring a member of the same name and signature
// (reachable from this class: public, or befriend OwnerDrawRouter<T>); the defaults below
// answer everything else.
#pragma once

#include <windows.h>

#include "common/win_handles.h"

// The reflected forms: OCM__BASE (WM_USER + 0x1c00 = 0x2000) plus the message.
inline constexpr UINT kReflectedMessageBase = WM_USER + 0x1c00;
inline constexpr UINT OCM_DRAWITEM_MESSAGE = kReflectedMessageBase + WM_DRAWITEM;
inline constexpr UINT OCM_MEASUREITEM_MESSAGE = kReflectedMessageBase + WM_MEASUREITEM;
inline constexpr UINT OCM_COMPAREITEM_MESSAGE = kReflectedMessageBase + WM_COMPAREITEM;
inline constexpr UINT OCM_DELETEITEM_MESSAGE = kReflectedMessageBase + WM_DELETEITEM;

template <typename T>
class OwnerDrawRouter {
public:
    // Answers the owner-draw messages; false (not handled) for every other message.
    bool RouteOwnerDraw(UINT message, WPARAM, LPARAM lParam, LRESULT& result) {
        T* self = static_cast<T*>(this);
        switch (message) {
        case WM_DRAWITEM:
        case OCM_DRAWITEM_MESSAGE:
            self->DrawItem(reinterpret_cast<DRAWITEMSTRUCT*>(lParam));
            result = TRUE;
            return true;
        case WM_MEASUREITEM:
        case OCM_MEASUREITEM_MESSAGE:
            self->MeasureItem(reinterpret_cast<MEASUREITEMSTRUCT*>(lParam));
            result = TRUE;
            return true;
        case WM_COMPAREITEM:
        case OCM_COMPAREITEM_MESSAGE:
            result = self->CompareItem(reinterpret_cast<COMPAREITEMSTRUCT*>(lParam));
            return true;
        case WM_DELETEITEM:
        case OCM_DELETEITEM_MESSAGE:
            self->DeleteItem(reinterpret_cast<DELETEITEMSTRUCT*>(lParam));
            result = TRUE;
            return true;
        default: return false;
        }
    }

    // Default hooks.
    // Draws nothing: an owner-drawn control's owner draws its items itself.
    void DrawItem(DRAWITEMSTRUCT*) {}
    // An item is as high as a line of the control's font (the pages own no menus).
    // T::Window() is the dialog that owns the control.
    void MeasureItem(MEASUREITEMSTRUCT* item) {
        const HWND control = GetDlgItem(static_cast<T*>(this)->Window(), static_cast<int>(item->CtlID));
        const WindowDC dc(control);
        if (!dc.Get()) return;
        const auto font = reinterpret_cast<HFONT>(SendMessageA(control, WM_GETFONT, 0, 0));
        TEXTMETRICA metrics{};
        if (font) {
            const SelectedObject selected(dc.Get(), font);
            GetTextMetricsA(dc.Get(), &metrics);
        } else {
            GetTextMetricsA(dc.Get(), &metrics);
        }
        item->itemHeight = static_cast<UINT>(metrics.tmHeight);
    }
    // Every item compares equal.
    int CompareItem(COMPAREITEMSTRUCT*) { return 0; }
    // Nothing to free.
    void DeleteItem(DELETEITEMSTRUCT*) {}
};

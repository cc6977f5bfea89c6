// CVQCPropertyPageImpl<T>: the base of every property page of a connection file's sheet.
// It holds the page's reference on the one shared record of the file, owns the page's
// in-memory dialog template, fills the page description the sheet is built from, and
// runs the page's messages through one chain:
//
//   1. OnPageMessage      the page's own entries (WM_INITDIALOG, WM_COMMAND, WM_DESTROY);
//   2. resizing           WM_SIZE and WM_GETMINMAXINFO by T::ResizeMap() (DialogResizer);
//   3. owner draw         only when T also derives from OwnerDrawRouter<T>;
//   4. WM_NOTIFY          the sheet notifications: PSN_APPLY writes the whole record and
//                         tells the user when it cannot.
//
// What a page class T provides (private members are fine with `friend
// CVQCPropertyPageImpl<T>;`):
//   static const ResizeMapEntry* ResizeMap() noexcept;
//       its resize map (resize_maps.h);
//   void OnInitDialog();
//       fills the page; starts with DlgResize_Init(). The message is answered with
//       T::kInitDialogAnswer (TRUE unless T says otherwise: the sheet sets the default focus);
//   bool OnCommand(int id, int code);
//       true when the command is one of the page's own (the message is then handled);
//   bool OnDestroy();   (optional)
//       true when the page handles WM_DESTROY itself;
// or, instead of those three, its own
//   bool OnPageMessage(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result);
//       true when it handled the message, with the answer in `result`.
//
// Lifetime. The page object is created with `new` and handed to the sheet through
// CreatePage(). The sheet calls the page callback: on PSPCB_CREATE the object waits in the
// module's list of windows being created (keyed by thread), the sheet creates the window,
// and the start-up dialog procedure takes the object out on the window's first message,
// binds object and window, and installs the object's own dialog procedure with
// SetWindowLongPtrA(DWLP_DLGPROC). On PSPCB_RELEASE, when the sheet lets go of the page
// (whether its window was ever created or not), the callback deletes the object, which
// releases its record reference and frees its template.
//
// No exception leaves the callback or a dialog procedure: a PSN_APPLY that fails by
// exception answers PSNRET_INVALID_NOCHANGEPAGE, any other message is left unhandled.
#pragma once

#include <windows.h>
#include <commctrl.h>
#include <prsht.h>

#include <cstddef>
#include <new>
#include <string>
#include <type_traits>

#include "common/ansi_text.h"
#include "common/com_ptr.h"
#include "common/hresult_error.h"
#include "common/same_window.h"
#include "common/window_boundary.h"
#include "connection/vqc_file_info.h"
#include "ui/dialog_resizer.h"
#include "ui/owner_draw_router.h"
#include "pages/page_window.h"
#include "pages/save_failure_report.h"
#include "runtime/window_creation_list.h"
#include "resources/dialog_template.h"
#include "runtime/module_runtime.h"

// The page description as the shell's comctl32 reads it in full: 104 bytes on 64-bit
// Windows, 56 on 32-bit. MinGW's PROPSHEETPAGEA ends before the header bitmap, so it is
// completed here.
struct PropertySheetPageDescription {
    PROPSHEETPAGEA page;
    union {
        HBITMAP hbmHeader;
        LPCSTR pszbmHeader;
    };
};
static_assert(sizeof(PropertySheetPageDescription) == (sizeof(void*) == 8 ? 104 : 56), "the full PROPSHEETPAGEA");

template <typename T>
class CVQCPropertyPageImpl {
public:
    CVQCPropertyPageImpl(const CVQCPropertyPageImpl&) = delete;
    CVQCPropertyPageImpl& operator=(const CVQCPropertyPageImpl&) = delete;

    // Releases the record reference and frees the template. An object that dies while it
    // still waits for its window leaves the creation list; a window that outlives its
    // object answers nothing from then on.
    virtual ~CVQCPropertyPageImpl() {
        TheModuleRuntime().WindowCreation().Remove(m_creationEntry);
        if (m_window) UnbindPageObject(m_window);
    }

    // The description handed to CreatePropertySheetPageA: its full size, PSP_DLGINDIRECT |
    // PSP_USECALLBACK | PSP_USEREFPARENT (plus PSP_USETITLE with a title), the module's
    // instance, this page's template, the start-up procedure, the page callback, the page
    // object as lParam, and the module's lock count as reference parent.
    const PROPSHEETPAGEA& Description() const noexcept { return m_description.page; }

    // The sheet's handle for this page; null when comctl32 refuses it. From the first
    // successful call the sheet's release callback owns the object.
    HPROPSHEETPAGE CreatePage() noexcept { return CreatePropertySheetPageA(&m_description.page); }

    // The page window; null until the sheet creates it and after it is destroyed.
    HWND Window() const noexcept { return m_window; }
    // The shared record of the file; null for a page made without one.
    VQCFileInfo* Record() const noexcept { return m_record.Get(); }
    // A test seam: the page's in-memory dialog template.
    const DLGTEMPLATE* TemplateForTesting() const noexcept { return m_template.Get(); }

    // The page object bound to a page window of this class, or null.
    static T* FromWindow(HWND window) noexcept { return static_cast<T*>(BoundPageObject(window)); }

    // The message chain (see the top of this file). True when handled, with the answer in
    // result. Exceptions pass through; the dialog procedure catches them.
    bool ProcessWindowMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result) {
        T* self = static_cast<T*>(this);
        if (self->OnPageMessage(message, wParam, lParam, result)) return true;
        if (m_resizer.ProcessWindowMessage(window, message, wParam, lParam, result)) return true;
        if constexpr (std::is_base_of_v<OwnerDrawRouter<T>, T>) {
            if (self->RouteOwnerDraw(message, wParam, lParam, result)) return true;
        }
        if (message == WM_NOTIFY && lParam != 0) {
            return OnSheetNotification(*reinterpret_cast<const NMHDR*>(lParam), result);
        }
        return false;
    }

    // The page callback of the description (PSPCB_CREATE, PSPCB_RELEASE).
    static UINT CALLBACK PageCallback(HWND, UINT message, LPPROPSHEETPAGEA description) {
        return GuardWindowCall(
            [&]() -> UINT {
                if (!description) return 0;
                T* page = reinterpret_cast<T*>(description->lParam);
                switch (message) {
                case PSPCB_CREATE: {
                    WindowCreationList& waiting = TheModuleRuntime().WindowCreation();
                    if (!page || !waiting.Initialized()) return FALSE;
                    waiting.Add(static_cast<CVQCPropertyPageImpl*>(page)->m_creationEntry, page);
                    return TRUE;
                }
                case PSPCB_RELEASE: delete page; return 0;
                default: return 0;
                }
            },
            [] { return UINT{0}; });
    }

    // The dialog procedure of the description: binds the object waiting for this thread
    // to the new window on its first message, then gives way to PageDialogProc.
    static INT_PTR CALLBACK StartDialogProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
        auto* page = static_cast<T*>(TheModuleRuntime().WindowCreation().Take());
        if (!page) return FALSE;
        static_cast<CVQCPropertyPageImpl*>(page)->Bind(window);
        return PageDialogProc(window, message, wParam, lParam);
    }

    // The object's own dialog procedure, installed by StartDialogProc.
    static INT_PTR CALLBACK PageDialogProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
        T* page = FromWindow(window);
        if (!page) return FALSE;
        LRESULT result = 0;
        const bool handled =
            GuardWindowCall([&] { return page->ProcessWindowMessage(window, message, wParam, lParam, result); },
                            [&] {
                                if (!IsApplyNotification(message, lParam)) return false;
                                result = PSNRET_INVALID_NOCHANGEPAGE;  // keeps the sheet open on this page
                                return true;
                            });
        if (message == WM_NCDESTROY) static_cast<CVQCPropertyPageImpl*>(page)->Unbind();
        return handled ? AnswerDialogMessage(window, message, result) : FALSE;
    }

protected:
    // record may be null (the page then shows its controls and changes nothing); the page
    // takes its own reference. templateIndex is the dialog template (dialog_ids.h); title is
    // the tab's 8-bit text or null for none. Throws std::bad_alloc when no template can be had.
    CVQCPropertyPageImpl(VQCFileInfo* record, int templateIndex, const char* title)
        : m_record(record), m_template(AllocDialogTemplate(templateIndex, 0)) {
        if (!m_template) throw std::bad_alloc();
        PROPSHEETPAGEA& page = m_description.page;
        page.dwSize = sizeof(m_description);
        page.dwFlags = PSP_DLGINDIRECT | PSP_USECALLBACK;
        if (title) {
            page.dwFlags |= PSP_USETITLE;
            page.pszTitle = title;
        }
        page.dwFlags |= PSP_USEREFPARENT;
        page.hInstance = TheModuleRuntime().Instance();
        page.pResource = m_template.Get();
        page.pfnDlgProc = StartDialogProc;
        page.pfnCallback = PageCallback;
        page.lParam = reinterpret_cast<LPARAM>(static_cast<T*>(this));
        page.pcRefParent = TheModuleRuntime().LockCountAddress();
    }

    // Starts the resize layout by T's map; first thing in the page's WM_INITDIALOG.
    void DlgResize_Init() { m_resizer.Init(m_window, T::ResizeMap()); }

    // A control of the page by id.
    HWND Control(int id) const noexcept { return GetDlgItem(m_window, id); }

    // A control's whole text.
    static std::string ControlText(HWND control) {
        const int length = GetWindowTextLengthA(control);
        std::string text(static_cast<std::size_t>(length > 0 ? length : 0) + 1, '\0');
        const int copied = GetWindowTextA(control, text.data(), static_cast<int>(text.size()));
        text.resize(static_cast<std::size_t>(copied > 0 ? copied : 0));
        return text;
    }

    // Tells the sheet that this page changed something (enables Apply).
    void SendChanged() const noexcept { SendMessageA(GetParent(m_window), PSM_CHANGED, WPARAM(m_window), 0); }

    // The page's own entries of the chain, for a page that names no OnPageMessage of its own.
    bool OnPageMessage(UINT message, WPARAM wParam, LPARAM, LRESULT& result) {
        T* self = static_cast<T*>(this);
        switch (message) {
        case WM_INITDIALOG:
            self->OnInitDialog();
            result = T::kInitDialogAnswer;
            return true;
        case WM_DESTROY:
            if (!self->OnDestroy()) return false;
            result = 0;
            return true;
        case WM_COMMAND:
            if (!self->OnCommand(LOWORD(wParam), HIWORD(wParam))) return false;
            result = 0;
            return true;
        default: return false;
        }
    }

    // What WM_INITDIALOG answers unless the page says otherwise: TRUE, so the sheet gives
    // the default focus.
    static constexpr LRESULT kInitDialogAnswer = TRUE;
    // A page with nothing to give back when its window goes leaves WM_DESTROY unhandled.
    bool OnDestroy() { return false; }

    // The sheet notifications every page answers alike. A sender other than the page or
    // its sheet is not answered. PSN_APPLY writes the whole record to its file; ten more
    // codes are answered 0 with nothing done; any other code is not answered.
    bool OnSheetNotification(const NMHDR& header, LRESULT& result) {
        const bool fromPageOrSheet =
            SameWindow(header.hwndFrom, m_window) || SameWindow(header.hwndFrom, GetParent(m_window));
        if (!fromPageOrSheet) return false;
        switch (header.code) {
        case PSN_APPLY: result = ApplyRecord(); return true;
        case PSN_SETACTIVE:
        case PSN_KILLACTIVE:
        case PSN_RESET:
        case PSN_HELP:
        case PSN_WIZBACK:
        case PSN_WIZNEXT:
        case PSN_WIZFINISH:
        case PSN_QUERYCANCEL:
        case PSN_TRANSLATEACCELERATOR:
        case PSN_QUERYINITIALFOCUS:
            result = 0;  // activation allowed, nothing validated, cancel allowed
            return true;
        default: return false;
        }
    }

private:
    // Writes the record whether or not anything changed; each page of a sheet does, so
    // one Apply writes the same bytes once per created page. A write that fails is told
    // to the user once: the sheet asks no further page after a page refuses the Apply.
    LRESULT ApplyRecord() {
        if (!m_record) return PSNRET_INVALID_NOCHANGEPAGE;
        DWORD error = ERROR_SUCCESS;
        bool oldContentLost = false;
        try {
            if (m_record->Write(m_record->filePath.c_str()) != 0) {
                error = m_record->lastError;
                oldContentLost = m_record->lastWrite == Replacement::OldLost;
            }
        } catch (const HResultError& failure) {
            // No memory for the file's text: as much a failed save as a full disk.
            error = static_cast<DWORD>(failure.Code());
        }
        if (error != ERROR_SUCCESS) {
            ReportSaveFailure(GetParent(m_window), m_record->filePath, error, oldContentLost);
            return PSNRET_INVALID_NOCHANGEPAGE;
        }
        SendMessageA(GetParent(m_window), PSM_UNCHANGED, WPARAM(m_window), 0);
        return PSNRET_NOERROR;
    }

    void Bind(HWND window) noexcept {
        m_window = window;
        BindPageObject(window, static_cast<T*>(this));
        SetWindowLongPtrA(window, DWLP_DLGPROC, reinterpret_cast<LONG_PTR>(&PageDialogProc));
    }

    void Unbind() noexcept {
        UnbindPageObject(m_window);
        m_window = nullptr;
    }

    ComPtr<VQCFileInfo> m_record;
    UniqueDialogTemplate m_template;
    PropertySheetPageDescription m_description{};
    DialogResizer m_resizer;
    WindowCreationList::Entry m_creationEntry;
    HWND m_window = nullptr;
};

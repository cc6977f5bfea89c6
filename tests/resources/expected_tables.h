// What the resource tables must hold, written out again by hand for the tests: the
// English_UK column, which languages have their own texts, and every control of the
// four dialogs. Deliberately not derived from the code under test.
#pragma once

#include <cstdint>
#include <string_view>

namespace expected {

// English_UK text of every string id (id 40 is a list; its first string is here).
// clang-format off
inline constexpr std::u16string_view kEnglish[49] = {
    u"Use &encryption",
    u"&Use legacy protocol",
    u"Proxy &Server:",
    u"Proxy &Port:",
    u"Proxy &User:",
    u"Proxy Pass&word:",
    u"This connection uses a dial-up/&ISDN line",
    u"B&roker:",
    u"Broker P&ort:",
    u"&Answer back:",
    u"&Dynamic screen sizing",
    u"&Server:",
    u"&Login:",
    u"&VOXA Command Line:",
    u"&Password:",
    u"Connection &type:",
    u"Login type:",
    u"&Start directory:",
    u"Serv&ice Name:",
    u"&Service Port:",
    u"Application &Command Line:",
    u"Connection",
    u"&Browse Icon ...",
    u"Options",
    u"Look for icons in: %1",
    u"Icon: ",
    u"Connect as user ...",
    u"Manage cached passwords ...",
    u"Always require password",
    u"Cache password",
    u"Text window on connect",
    u"NT domain authentication",
    u"Use Windows domain credentials",
    u"NT no logon",
    u"Connect to remote server",
    u"Connect locally",
    u"Discover service",
    u"Connect directly",
    u"Connect via a proxy server",
    u"Connect via a connection broker",
    u"Executable and icon files",
    u"Connection Details",
    u"Enter details of the server you want to connect to",
    u"&Server:",
    u"Service N&ame:",
    u"Service &Port:",
    u"&Bookmark:",
    u"&Encrypt connection",
    u"Proxy",
};
// clang-format on

// The whole English filter list of id 40, both final NULs included.
inline constexpr std::u16string_view kEnglishFilter{u"Executable and icon files\0*.exe;*.dll;*.ico\0All files\0*.*\0\0",
                                                    59};

// Languages with their own text besides English_UK, per string id.
// clang-format off
inline constexpr std::string_view kOwnLanguages[49] = {
    "zs", "zs", "ko zt zs", "ko zt zs", "ko zt zs", "ko zt zs", "ko zt zs", "ko zt zs",
    "ko zt zs",
    "de fr es nl zt zs",           // 9
    "de fr es nl ko zt zs",        // 10
    "de fr es nl ko ja zt zs",     // 11
    "de es ko ja zt zs",           // 12
    "de fr es nl ko zt zs",        // 13
    "de fr es nl ko ja zt zs",     // 14
    "de fr es nl ko zt zs",        // 15
    "de fr es nl ko zt zs",        // 16
    "de fr es nl ko zt zs",        // 17
    "de fr es nl ko zt zs",        // 18
    "de fr es nl ko zt zs",        // 19
    "de fr es nl ko zt zs",        // 20
    "de es nl ko zt zs",           // 21
    "de fr es nl ko zt zs",        // 22
    "de es nl ko zt zs",           // 23
    "zs", "zs", "ko", "ko",        // 24-27
    "de fr es nl ko zt zs",        // 28
    "de fr es nl ko zt zs",        // 29
    "de fr es nl ko zt zs",        // 30
    "de fr es nl ko zt zs",        // 31
    "ko",                          // 32
    "de fr es nl zt zs",           // 33
    "de fr es nl ko zt zs",        // 34
    "de fr es nl ko zt zs",        // 35
    "ko", "ko", "ko", "ko",        // 36-39
    "de fr es nl ko zt",           // 40
    "ko", "ko", "ko", "ko", "ko", "ko", "ko",  // 41-47
    "zs",                          // 48
};
// clang-format on

// Language index of each short name used above.
struct OwnLanguage {
    std::string_view code;
    int index;
};
// clang-format off
inline constexpr OwnLanguage kOwnLanguageIndices[] = {
    {"de", 2}, {"fr", 3}, {"es", 4}, {"nl", 7}, {"ko", 10}, {"ja", 12}, {"zt", 13}, {"zs", 14},
};
// clang-format on

inline bool HasOwnText(int id, int languageIndex) {
    if (languageIndex == 1) return true;
    for (const OwnLanguage& own : kOwnLanguageIndices)
        if (own.index == languageIndex) return kOwnLanguages[id].find(own.code) != std::string_view::npos;
    return false;
}

constexpr int kNoCaption = -1;
constexpr int kGermanWidth = -90;  // marker: cx is 90 for German, 62 otherwise

struct Control {
    int id;
    std::u16string_view className;
    int captionId;
    int x, y, cx, cy;
    std::uint32_t style;
};

// clang-format off
inline constexpr Control kConnectionPage[] = {
    {1001, u"static", 15, 6, 6, 60, 8, 0x50000000},
    {1002, u"combobox", kNoCaption, 68, 4, 104, 100, 0x50210103},
    {1003, u"static", 12, 6, 24, 60, 9, 0x50000000},
    {1004, u"edit", kNoCaption, 68, 22, 104, 13, 0x50810080},
    {1005, u"static", 11, 6, 23, 60, 8, 0x50000000},
    {1006, u"combobox", kNoCaption, 68, 21, 104, 74, 0x50210042},
    {1007, u"static", 16, 6, 40, 60, 8, 0x50000000},
    {1008, u"combobox", kNoCaption, 68, 38, 104, 76, 0x50210043},
    {1009, u"static", 12, 6, 56, 60, 9, 0x50000000},
    {1010, u"edit", kNoCaption, 68, 54, 104, 13, 0x50810080},
    {1011, u"static", 13, 6, 21, 109, 8, 0x50000000},
    {1012, u"edit", kNoCaption, 6, 34, 166, 13, 0x50810080},
    {1013, u"static", 17, 6, 49, 109, 20, 0x50000000},
    {1014, u"edit", kNoCaption, 6, 60, 166, 13, 0x50810080},
    {1015, u"static", 18, 6, 72, 60, 8, 0x50000000},
    {1016, u"edit", kNoCaption, 68, 70, 104, 13, 0x50810080},
    {1017, u"static", 19, 6, 88, 60, 9, 0x50000000},
    {1018, u"edit", kNoCaption, 68, 86, 104, 13, 0x50812080},
    {1019, u"static", 46, 6, 104, 60, 8, 0x50000000},
    {1020, u"edit", kNoCaption, 68, 102, 104, 13, 0x50810080},
    {1021, u"static", 9, 6, 120, 60, 9, 0x50000000},
    {1022, u"edit", kNoCaption, 68, 118, 104, 13, 0x508100C4},
    {1023, u"button", 0, 6, 136, 140, 13, 0x50010003},
    {1024, u"button", 1, 6, 170, 200, 13, 0x50010003},
};
// clang-format on

// clang-format off
inline constexpr Control kProxyPage[] = {
    {1002, u"combobox", kNoCaption, 6, 4, 165, 47, 0x50010443},
    {1025, u"static", 2, 6, 25, 60, 9, 0x50000000},
    {1026, u"edit", kNoCaption, 68, 23, 104, 13, 0x50810080},
    {1027, u"static", 3, 6, 41, 60, 9, 0x50000000},
    {1028, u"edit", kNoCaption, 68, 39, 104, 13, 0x50812080},
    {1029, u"static", 4, 6, 57, 60, 9, 0x50000000},
    {1030, u"edit", kNoCaption, 68, 55, 104, 13, 0x50810080},
    {1031, u"static", 7, 6, 25, 65, 9, 0x50000000},
    {1032, u"edit", kNoCaption, 68, 23, 104, 13, 0x50810080},
    {1033, u"static", 8, 6, 41, 60, 9, 0x50000000},
    {1034, u"edit", kNoCaption, 68, 39, 104, 13, 0x50812080},
    {1035, u"button", 6, 6, 57, 165, 26, 0x50012403},
};
// clang-format on

// clang-format off
inline constexpr Control kOptionsPage[] = {
    {1036, u"static", 25, 9, 6, 25, 9, 0x50000000},
    {1037, u"static", kNoCaption, 35, 6, 32, 32, 0x50000003},
    {1038, u"static", kNoCaption, 74, 6, 16, 16, 0x50000003},
    {1039, u"static", kNoCaption, 9, 38, 70, 9, 0x50000000},
    {1040, u"button", 22, 82, 36, kGermanWidth, 14, 0x50010000},
    {1041, u"listbox", kNoCaption, 9, 52, 165, 120, 0x50900311},
    {1042, u"button", 10, 9, 180, 125, 13, 0x50010003},
};
// clang-format on

// clang-format off
inline constexpr Control kConnectionDetails[] = {
    {1043, u"static", 43, 16, 9, 75, 9, 0x50000000},
    {1044, u"edit", kNoCaption, 95, 7, 150, 13, 0x50810080},
    {1045, u"static", 44, 15, 33, 75, 9, 0x50000000},
    {1046, u"edit", kNoCaption, 95, 31, 150, 13, 0x50810080},
    {1047, u"static", 45, 15, 58, 75, 9, 0x50000000},
    {1048, u"edit", kNoCaption, 95, 56, 150, 13, 0x50812080},
    {1049, u"static", 46, 17, 82, 75, 9, 0x50000000},
    {1050, u"edit", kNoCaption, 95, 81, 150, 13, 0x50810080},
    {1051, u"button", 47, 17, 112, 88, 13, 0x50010003},
};
// clang-format on

struct Dialog {
    int index;
    std::uint32_t style;
    std::uint32_t exStyle;
    int x, y, cx, cy;
    int titleId;
    const Control* controls;
    int controlCount;
};

// clang-format off
inline constexpr Dialog kDialogs[4] = {
    {1, 0x80C80040, 0x10000, 0, 0, 184, 176, kNoCaption, kConnectionPage, 24},
    {2, 0x80C80040, 0x10000, 0, 0, 184, 196, kNoCaption, kProxyPage, 12},
    {3, 0x80C80040, 0x10000, 0, 0, 184, 196, kNoCaption, kOptionsPage, 7},
    {4, 0x40C00048, 0x10000, 0, 0, 320, 140, 41, kConnectionDetails, 9},
};
// clang-format on

inline int Width(const Control& control, int languageIndex) {
    if (control.cx != kGermanWidth) return control.cx;
    return languageIndex == 2 ? 90 : 62;
}

}  // namespace expected

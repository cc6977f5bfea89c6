#include "pages/resize_maps.h"

// clang-format off
const ResizeMapEntry kConnectionPageResizeMap[] = {
    {1002, DLSZ_SIZE_X},  // connection type
    {1006, DLSZ_SIZE_X},  // server
    {1010, DLSZ_SIZE_X},  // login (remote layout)
    {1004, DLSZ_SIZE_X},  // login (discovery layout)
    {1008, DLSZ_SIZE_X},  // login type
    {1012, DLSZ_SIZE_X},  // local command line
    {1014, DLSZ_SIZE_X},  // start directory
    {1020, DLSZ_SIZE_X},  // bookmark
    {1016, DLSZ_SIZE_X},  // service name
    {1018, DLSZ_SIZE_X},  // service port
    {1022, DLSZ_SIZE_X},  // answer back
    kResizeMapEnd,
};
// clang-format on

// clang-format off
const ResizeMapEntry kProxyPageResizeMap[] = {
    {1002, DLSZ_SIZE_X},  // route
    {1026, DLSZ_SIZE_X},  // proxy server
    {1028, DLSZ_SIZE_X},  // proxy port
    {1030, DLSZ_SIZE_X},  // proxy user
    {1035, DLSZ_SIZE_X},  // dial-up/ISDN check box
    {1032, DLSZ_SIZE_X},  // broker
    {1034, DLSZ_SIZE_X},  // broker port
    kResizeMapEnd,
};
// clang-format on

// clang-format off
const ResizeMapEntry kOptionPageResizeMap[] = {
    {1039, DLSZ_SIZE_X},                // text line above the icon list
    {1040, DLSZ_MOVE_X},                // "&Browse Icon ..."
    {1041, DLSZ_SIZE_X | DLSZ_SIZE_Y},  // icon list
    {1042, DLSZ_MOVE_Y},                // "&Dynamic screen sizing"
    kResizeMapEnd,
};
// clang-format on

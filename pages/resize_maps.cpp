#include "pages/resize_maps.h"

#include "resources/dialog_ids.h"

using namespace dialog_ids;

// clang-format off
const ResizeMapEntry kConnectionPageResizeMap[] = {
    {kConnectionTypeList, DLSZ_SIZE_X},
    {kServerBox, DLSZ_SIZE_X},
    {kLoginEdit, DLSZ_SIZE_X},
    {kDiscoveryLoginEdit, DLSZ_SIZE_X},
    {kLoginTypeList, DLSZ_SIZE_X},
    {kCommandLineEdit, DLSZ_SIZE_X},
    {kStartDirectoryEdit, DLSZ_SIZE_X},
    {kBookmarkEdit, DLSZ_SIZE_X},
    {kServiceNameEdit, DLSZ_SIZE_X},
    {kServicePortEdit, DLSZ_SIZE_X},
    {kAnswerBackEdit, DLSZ_SIZE_X},
    kResizeMapEnd,
};
// clang-format on

// clang-format off
const ResizeMapEntry kProxyPageResizeMap[] = {
    {kProxyRouteList, DLSZ_SIZE_X},
    {kProxyHostEdit, DLSZ_SIZE_X},
    {kProxyPortEdit, DLSZ_SIZE_X},
    {kProxyUserEdit, DLSZ_SIZE_X},
    {kDialUpCheckBox, DLSZ_SIZE_X},
    {kBrokerHostEdit, DLSZ_SIZE_X},
    {kBrokerPortEdit, DLSZ_SIZE_X},
    kResizeMapEnd,
};
// clang-format on

// clang-format off
const ResizeMapEntry kOptionPageResizeMap[] = {
    {kIconSourceLabel, DLSZ_SIZE_X},
    {kBrowseButton, DLSZ_MOVE_X},
    {kIconList, DLSZ_SIZE_X | DLSZ_SIZE_Y},
    {kDynamicSizingCheck, DLSZ_MOVE_Y},
    kResizeMapEnd,
};
// clang-format on

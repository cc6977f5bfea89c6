// The resize map of each page: which input controls follow the page's width (and, on the
// Options page, its height). Labels and the Connection page's check boxes are in no map.
#pragma once

#include "ui/resize_layout.h"

extern const ResizeMapEntry kConnectionPageResizeMap[];
extern const ResizeMapEntry kProxyPageResizeMap[];
extern const ResizeMapEntry kOptionPageResizeMap[];

#include "connection/connection_settings.h"

#include <new>

#include "common/hresult_error.h"

ConnectionSettings::ConnectionSettings(const char* path) {
    try {
        if (path) filePath = path;
    } catch (const std::bad_alloc&) {
        throw HResultError(kResultFail);  // never a half-made record
    }
}

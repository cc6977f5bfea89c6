#include "connection/record_icon.h"

#include <utility>

void RecordIcon::reset(HICON icon) noexcept {
    handle_.reset(icon);
    source_ = DecodedIcon{};
}

HICON RecordIcon::release() noexcept {
    source_ = DecodedIcon{};
    return handle_.release();
}

void RecordIcon::ResetDecoded(DecodedIcon&& decoded) noexcept {
    handle_.reset(std::exchange(decoded.handle, nullptr));
    source_ = std::move(decoded);
    if (!handle_) source_ = DecodedIcon{};
}

HICON RecordIcon::Copy() const {
    if (!handle_) return nullptr;
    if (!source_.image.empty()) {
        if (const HICON remade = RemakeIcon(source_)) return remade;
    }
    return CopyIcon(handle_.get());
}

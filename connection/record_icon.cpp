#include "connection/record_icon.h"

#include <utility>

void RecordIcon::Reset(HICON icon) noexcept {
    handle_.Reset(icon);
    source_ = DecodedIcon{};
}

HICON RecordIcon::Detach() noexcept {
    source_ = DecodedIcon{};
    return handle_.Detach();
}

void RecordIcon::ResetDecoded(DecodedIcon&& decoded) noexcept {
    handle_.Reset(decoded.handle.Detach());
    source_ = std::move(decoded);
    if (!handle_) source_ = DecodedIcon{};
}

HICON RecordIcon::Copy() const {
    if (!handle_) return nullptr;
    if (!source_.image.empty()) {
        if (const HICON remade = RemakeIcon(source_)) return remade;
    }
    return CopyIcon(handle_.Get());
}

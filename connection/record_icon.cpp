#include "connection/record_icon.h"

#include <utility>

HICON RecordIcon::Get() const noexcept {
    if (!handle_ && !source_.image.empty()) handle_.Reset(RemakeIcon(source_));
    return handle_.Get();
}

void RecordIcon::Reset(HICON icon) noexcept {
    handle_.Reset(icon);
    source_ = DecodedIcon{};
}

HICON RecordIcon::Detach() noexcept {
    Get();
    source_ = DecodedIcon{};
    return handle_.Detach();
}

void RecordIcon::ResetDecoded(DecodedIcon&& decoded) noexcept {
    handle_.Reset(decoded.handle.Detach());
    source_ = std::move(decoded);
    if (!handle_) source_ = DecodedIcon{};
}

HICON RecordIcon::Copy() const {
    if (!source_.image.empty()) {
        if (const HICON remade = RemakeIcon(source_)) return remade;
    }
    if (!handle_) return nullptr;
    return CopyIcon(handle_.Get());
}

HICON RecordIcon::HandOut() {
    if (handle_ && !source_.image.empty()) return handle_.Detach();
    return Copy();
}

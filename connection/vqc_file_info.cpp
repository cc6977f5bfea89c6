#include "connection/vqc_file_info.h"

#define SECURITY_WIN32
#include <secext.h>

namespace {

constexpr int kNameDnsDomain = 12;  // EXTENDED_NAME_FORMAT NameDnsDomain

BOOLEAN WINAPI AskWindowsForDomainName(int nameFormat, LPSTR buffer, PULONG size) {
    return GetUserNameExA(static_cast<EXTENDED_NAME_FORMAT>(nameFormat), buffer, size);
}

DomainNameQuery g_domainNameQuery = AskWindowsForDomainName;

}  // namespace

DomainNameQuery SetDomainNameQuery(DomainNameQuery query) noexcept {
    const DomainNameQuery previous = g_domainNameQuery;
    g_domainNameQuery = query ? query : AskWindowsForDomainName;
    return previous;
}

VQCFileInfo::VQCFileInfo(const char* path) : ConnectionSettings(path) {}

VQCFileInfo::~VQCFileInfo() = default;  // the icon owners destroy both icons

STDMETHODIMP VQCFileInfo::QueryInterface(REFIID, void**) { return E_NOINTERFACE; }

bool VQCFileInfo::IsInDomain() {
    if (!inDomainKnown) {
        inDomainKnown = 1;
        char name[261];
        ULONG size = sizeof(name);
        inDomain = g_domainNameQuery(kNameDnsDomain, name, &size) ? 1 : 0;
    }
    return inDomain != 0;
}

void VQCFileInfo::SetIcons(HICON large, HICON small) noexcept {
    icon.Reset(large);
    smallIcon.Reset(small);
}
